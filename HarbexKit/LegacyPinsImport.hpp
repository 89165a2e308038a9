#pragma once

// The sibling application kept its clipboard pins in a private folder before the family's shared
// folder existed: "$XDG_DATA_HOME/Harbex Tidepool/Clipboard/clipboard-pins.json", in the shared
// document's own format. The first start after that brings those pins into the shared document
// once, guarded by the defaults flag "legacyTidepoolClipboard".

#include <cstddef>
#include <expected>
#include <filesystem>
#include <string_view>

#include "HarbexClipCore/Model/ClipPins.hpp"
#include "HarbexClipCore/Settings/ClipDefaults.hpp"
#include "HarbexKit/ClipPinsBridge.hpp"

namespace harbex {

inline constexpr std::string_view kLegacyTidepoolClipboardKey = "legacyTidepoolClipboard";

// $XDG_DATA_HOME/Harbex Tidepool/Clipboard (~/.local/share/... when unset).
std::filesystem::path legacyTidepoolClipboardFolder();

// Adds the pins of the old private document that the shared one lacks (by id), after the
// shared ones and in their old order, then sets the flag, so the import runs once. A missing
// old document sets the flag and imports nothing. An old document that cannot be read, or a
// shared document that cannot be written, fails with writeFailed and leaves the flag unset, so
// the next start tries again; the old file is never changed or removed.
// Returns how many pins were added. Thread: main (the bridge's).
std::expected<std::size_t, ClipPinsError> importLegacyPins(
    ClipDefaults& defaults, ClipPinsBridge& bridge,
    const std::filesystem::path& legacyFolder = legacyTidepoolClipboardFolder());

}  // namespace harbex
