#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Capture/DetectedClip.hpp"
#include "HarbexClipCore/Capture/SkipReason.hpp"
#include "HarbexClipCore/Model/ClipKind.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardSnapshot.hpp"
#include "HarbexClipCore/Settings/ClipSettings.hpp"
#include "HarbexClipCore/Support/Date.hpp"

namespace harbex {

// Whether the user asked for this capture ("Capture Now") or the timer found a change. A forced
// capture skips the pause and the excluded applications, never the own-write and privacy checks.
enum class CaptureMode { sampled, forced };

// The settings fields the rules read (taken from ClipSettings by the engine).
struct CaptureRuleSettings {
    std::vector<std::string> excludedApps;
    bool skipPasswordManagers = true;
    std::optional<Date> pausedUntil;
    std::vector<ClipKind> keptKinds{ClipKind::text, ClipKind::richText, ClipKind::link,
                                    ClipKind::image};
    bool ignoresShortCopies = false;
    std::int64_t minimumLength = 0;
    // How an accepted copy is shaped before it is kept.
    bool ignoresSpacesOnly = true;
    bool recognisesDetails = true;
    bool stripsTrackingOnCopy = false;
    ClipImageKeeping keepsImages = ClipImageKeeping::original;
    std::int64_t imageLimit = ClipSettings{}.imageLimit;  // bytes
    std::int64_t textLimit = ClipSettings{}.textLimit;    // bytes of UTF-8

    // The fields of the user's settings record.
    static CaptureRuleSettings from(const ClipSettings& settings);

    bool operator==(const CaptureRuleSettings&) const = default;
};

// What is known about a change before any of its contents are read.
struct DeclaredCopy {
    std::span<const std::string> types;
    std::optional<std::string_view> passwordManagerHint;  // see PrivacyMarkers.hpp
    std::optional<std::string_view> frontAppID;           // the application in front, if any
};

// The shortest text kept while `ignoresShortCopies` is on and `minimumLength` is not set: single
// characters and pairs are almost always stray copies.
inline constexpr std::int64_t kDefaultMinimumLength = 3;

// The rules that need only the declared types, cheapest and most protective first: own write,
// private marker, pause, excluded application, password manager. Nothing when the copy may be
// read. A forced capture applies only the first two. Pure; main thread by convention.
std::optional<SkipReason> skipBeforeReading(const DeclaredCopy& copy,
                                            const CaptureRuleSettings& settings, Date now,
                                            CaptureMode mode);

// The rules that need the detected copy: `kindOff` when `kind` is not kept; `tooShort` when
// `ignoresShortCopies` is on and the text, trimmed of white space, has fewer characters than the
// minimum (so blank text is always too short then). The length rule looks at typed text only
// (text, rich text, code): a colour, link, image or file is never "short". Applies to forced
// captures too.
std::optional<SkipReason> skipAfterDetection(ClipKind kind, const std::optional<std::string>& text,
                                             const CaptureRuleSettings& settings);

// The settings that shape an accepted entry: blank typed text is refused as `tooShort` while
// `ignoresSpacesOnly` is on; details go when not recognised; tracking parameters leave links
// when asked; an image is kept as copied (`snapshot`'s bytes) rather than re-encoded when
// originals are kept. Returns a refusal when the entry is not to be kept.
std::optional<SkipReason> shapeForSettings(DetectedClip& detected,
                                           const PasteboardSnapshot& snapshot,
                                           const CaptureRuleSettings& settings);

}  // namespace harbex
