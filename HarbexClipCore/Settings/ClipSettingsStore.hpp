#pragma once

#include <string_view>

#include "HarbexClipCore/Settings/ClipDefaults.hpp"
#include "HarbexClipCore/Settings/ClipSettings.hpp"

namespace harbex {

// Reads and writes the settings record as one JSON value in the user defaults. The record is
// always written whole; there is no partial update. Main thread (as ClipDefaults).
class ClipSettingsStore {
public:
    static constexpr std::string_view kSettingsKey = "clipSettings";
    // The settings window's last page, as the persisted name of a ClipSettingsPage.
    static constexpr std::string_view kPageKey = "harbex-clip-settings:page";

    // The stored record; defaults when nothing is stored or the stored value is not a JSON object.
    // Single bad fields fall back to their defaults (see ClipSettings' decoding).
    static ClipSettings load(const ClipDefaults& defaults);

    // Stores the record under kSettingsKey. A record that cannot be written as JSON (a
    // non-finite number) leaves the stored record as it was; no failure is reported.
    static void save(const ClipSettings& settings, ClipDefaults& defaults);

    // The settings page shown last; `general` when none or an unknown one is stored.
    static ClipSettingsPage loadPage(const ClipDefaults& defaults);
    static void savePage(ClipSettingsPage page, ClipDefaults& defaults);
};

}  // namespace harbex
