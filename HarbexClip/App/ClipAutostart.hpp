#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

#include "HarbexClipCore/Support/AtomicFile.hpp"

namespace harbex {

// Starting at login through XDG autostart: a desktop entry under $XDG_CONFIG_HOME/autostart named
// after the application id. Switching it off keeps the file but marks it hidden, which is how
// desktops themselves record "off" (and what a user who removed it by hand expects to stay).
// Main thread; every write replaces the file atomically.
class ClipAutostart {
public:
    // Passed by the autostart entry so that a start at login knows it and stays silent.
    static constexpr std::string_view kAutostartFlag = "--autostart";

    // $XDG_CONFIG_HOME/autostart/app.harbexapps.clip.desktop.
    static std::filesystem::path standardPath();

    explicit ClipAutostart(std::filesystem::path path = standardPath()) : path_(std::move(path)) {}

    // True when the entry exists and neither `Hidden=true` nor
    // `X-GNOME-Autostart-enabled=false` switches it off.
    bool isEnabled() const;

    // Writes the entry, starting `program` (an absolute path) with the autostart flag.
    FileStatus setEnabled(bool enabled, const std::filesystem::path& program);

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// The whole desktop entry for `program`, switched on or off.
std::string autostartEntry(bool enabled, const std::filesystem::path& program);

// One argument quoted for a desktop entry's Exec key: plain when it has no reserved character,
// else in double quotes with ", `, $ and \ escaped, and then every backslash doubled again
// because the value itself is a string with escapes.
std::string quotedExecArgument(std::string_view argument);

}  // namespace harbex
