#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "HarbexClipCore/Model/ClipKind.hpp"
#include "HarbexClipCore/Model/ClipRetention.hpp"
#include "HarbexClipCore/Settings/ClipSettingsChoices.hpp"
#include "HarbexClipCore/Settings/ClipShortcut.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/Json.hpp"

namespace harbex {

// ⌃⌘V: the ordinary shortcut that opens the panel beside the double tap.
inline constexpr ClipShortcut kDefaultPanelShortcut{
    9, ClipShortcut::Modifiers::control | ClipShortcut::Modifiers::command};
// ⌃⌥⌘V: opens the library window.
inline constexpr ClipShortcut kDefaultLibraryShortcut{9, ClipShortcut::Modifiers::control |
                                                             ClipShortcut::Modifiers::option |
                                                             ClipShortcut::Modifiers::command};

// The quick panel's settings. Fields in persisted key order; the initialisers are the defaults.
struct ClipPanelSettings {
    ClipPanelTrigger trigger = ClipPanelTrigger::doubleCommand;
    std::optional<ClipShortcut> fallback = kDefaultPanelShortcut;  // persisted as null when none
    ClipPanelSize size = ClipPanelSize::regular;
    ClipPanelPosition position = ClipPanelPosition::centre;
    bool showsPreview = true;
    bool showsAppIcons = true;
    bool returnCopiesOnly = false;
    ClipStackMode stackMode = ClipStackMode::onePerPaste;

    friend bool operator==(const ClipPanelSettings&, const ClipPanelSettings&) = default;
};

// The library window's settings and the later additions.
struct ClipWindowSettings {
    ClipAppearance appearance = ClipAppearance::system;
    bool soundOnCopy = false;
    bool hapticOnCopy = false;
    ClipLibrarySort sort = ClipLibrarySort::newest;
    ClipLibraryLayout layout = ClipLibraryLayout::list;
    bool recognisesDetails = true;
    bool stripsTrackingOnCopy = false;
    ClipImageKeeping keepsImages = ClipImageKeeping::original;
    bool ignoresSpacesOnly = true;
    std::int64_t minimumLength = 0;
    std::optional<ClipShortcut> pauseShortcut;  // left out of the JSON when absent
    bool clearKeepsPins = true;
    // Puts the last kept copy back when the application that made it quits.
    bool keepsClipboardOnQuit = true;

    friend bool operator==(const ClipWindowSettings&, const ClipWindowSettings&) = default;
};

// Every user choice of the application, one plain value. A default-constructed record is the
// record of all defaults, which is also what a fresh installation starts with.
struct ClipSettings {
    ClipRetention retention = ClipRetention::month;
    std::int64_t maxItems = 1000;
    std::int64_t imageLimit = 24'000'000;  // bytes
    // Bytes of UTF-8. A whole book is under 2 MB; past a few megabytes a copy is a log or a
    // data dump, and each save rewrites and each search scans all of it.
    std::int64_t textLimit = 8'000'000;
    std::vector<std::string> excludedApps;
    bool skipPasswordManagers = true;
    bool detectSensitive = true;
    double sensitiveLifetime = 600;  // seconds
    bool hideFromScreenSharing = true;
    std::optional<Date> pausedUntil;
    ClipPanelSettings panel;
    std::optional<ClipShortcut> libraryShortcut = kDefaultLibraryShortcut;  // null when none
    bool showsInDock = true;
    bool pastesPlainByDefault = false;
    bool closesAfterPasting = true;
    bool remembersFilter = false;
    bool ignoresShortCopies = false;
    std::set<ClipKind> keptKinds{ClipKind::text, ClipKind::richText, ClipKind::link,
                                 ClipKind::image};
    bool welcomeFinished = false;
    ClipWindowSettings window;

    static ClipSettings defaults() { return ClipSettings{}; }

    friend bool operator==(const ClipSettings&, const ClipSettings&) = default;
};

// Keys in declaration order. Decoding is lenient per field: a missing key, or a value that does
// not decode, leaves that field at its default; only a value that is not an object fails. A
// shortcut field that is present and null means "no shortcut"; a bad shortcut object gives the
// default. Unknown names in `keptKinds` (kinds of a newer version) are skipped.
JsonValue encodeJson(const ClipPanelSettings& settings);
JsonStatus decodeJson(const JsonValue& json, ClipPanelSettings& out);
JsonValue encodeJson(const ClipWindowSettings& settings);
JsonStatus decodeJson(const JsonValue& json, ClipWindowSettings& out);
JsonValue encodeJson(const ClipSettings& settings);
JsonStatus decodeJson(const JsonValue& json, ClipSettings& out);

}  // namespace harbex
