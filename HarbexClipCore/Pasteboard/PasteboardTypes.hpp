#pragma once

#include <array>
#include <string_view>

namespace harbex {

// Pasteboard type identifiers by role. The core speaks only these names; a platform adapter maps
// them to its own flavour names (X11 targets, for instance) when it reads and writes. The three
// markers are public conventions and keep exactly these names on every platform.

inline constexpr std::string_view kPlainTextType = "public.utf8-plain-text";
inline constexpr std::string_view kRtfType = "public.rtf";
inline constexpr std::string_view kHtmlType = "public.html";
inline constexpr std::string_view kUrlType = "public.url";
inline constexpr std::string_view kUrlTitleType = "public.url-name";
// File references; the flavour's data is a text/uri-list (see FileUrls.hpp).
inline constexpr std::string_view kFileUrlType = "public.file-url";

inline constexpr std::string_view kPngType = "public.png";
inline constexpr std::string_view kTiffType = "public.tiff";
inline constexpr std::string_view kJpegType = "public.jpeg";
inline constexpr std::string_view kHeicType = "public.heic";
// In order of preference: the first one the pasteboard offers is the one read.
inline constexpr std::array<std::string_view, 4> kImageTypes{kPngType, kTiffType, kJpegType,
                                                             kHeicType};

// Written with every write of our own, so that capture recognises and skips it.
inline constexpr std::string_view kOwnWriteType = "app.harbexapps.clip.own";
// Set by a writer that wants clipboard tools to leave its copy alone.
inline constexpr std::string_view kConcealedType = "org.nspasteboard.ConcealedType";
// Names the application that made the copy; not a privacy marker.
inline constexpr std::string_view kSourceType = "org.nspasteboard.source";
// KDE's convention (KeePassXC, wl-copy --sensitive): private only when its value is "secret".
inline constexpr std::string_view kPasswordManagerHintType = "x-kde-passwordManagerHint";
inline constexpr std::string_view kPasswordManagerHintSecret = "secret";

inline bool isImageType(std::string_view type) {
    for (std::string_view image : kImageTypes) {
        if (image == type) return true;
    }
    return false;
}

}  // namespace harbex
