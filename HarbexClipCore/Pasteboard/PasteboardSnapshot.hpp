#pragma once

#include <optional>
#include <string>
#include <vector>

#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex {

// Image bytes as read from or written to the pasteboard, unconverted. `type` is always one of
// the role identifiers of kImageTypes (PasteboardTypes.hpp), whatever the platform calls the
// flavour, so that stored copies mean the same everywhere.
struct ClipImagePayload {
    std::string type{};
    Bytes data{};

    bool operator==(const ClipImagePayload&) const = default;
};

// One reading of the pasteboard. File references are absolute URL strings ("file:///a%20b.txt"),
// the form both NSURL and text/uri-list give; `filePaths()` turns them into plain paths for the
// history. Texts are as the provider gave them and may hold invalid UTF-8: detection sanitises.
struct PasteboardSnapshot {
    std::vector<std::string> types{};  // as the platform declared them, in its order
    std::optional<std::string> string{};
    std::optional<Bytes> rtf{};
    std::optional<Bytes> html{};
    std::vector<std::string> fileURLs{};
    std::optional<std::string> url{};  // only read when there is no plain text
    std::optional<std::string> urlTitle{};
    std::optional<ClipImagePayload> image{};  // only read when there is neither text nor a file
    std::optional<std::string> sourceID{};
    // The value of x-kde-passwordManagerHint when declared: the marker is private only when the
    // value says "secret", so the name alone in `types` is not enough (see PrivacyMarkers.hpp).
    std::optional<std::string> passwordManagerHint{};
    // The plain text was larger than the reader was allowed to take (ClipPasteboard's
    // `setTextLimit`) and was left unread.
    bool textOverLimit = false;

    // The local paths of `fileURLs`, in order; remote and non-file URLs are left out.
    std::vector<std::string> filePaths() const;

    bool operator==(const PasteboardSnapshot&) const = default;
};

// What one write puts on the pasteboard.
struct ClipPayload {
    std::optional<std::string> text{};
    std::optional<Bytes> rtf{};
    std::optional<Bytes> html{};
    std::optional<std::string> url{};
    std::vector<std::string> fileURLs{};  // absolute file URL strings, as in PasteboardSnapshot
    std::optional<ClipImagePayload> image{};
    bool concealed = false;  // mark the copy so that clipboard tools skip it

    bool operator==(const ClipPayload&) const = default;
};

}  // namespace harbex
