#pragma once

#include <filesystem>

namespace harbex {

// The family's shared folder, where documents that several Harbex applications read and write
// live: $XDG_DATA_HOME/Harbex/Shared (default ~/.local/share/Harbex/Shared).
std::filesystem::path sharedDocumentsFolder();

// $XDG_DATA_HOME, or ~/.local/share when unset or not absolute (as the XDG rules say).
std::filesystem::path userDataFolder();
// $XDG_CONFIG_HOME, or ~/.config.
std::filesystem::path userConfigFolder();

}  // namespace harbex
