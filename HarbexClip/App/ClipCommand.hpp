#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// What one start of the program asks for. Desktops that own global shortcuts (GNOME, KDE on
// Wayland) bind `--panel`, `--library` and `--pause` to a key; each reaches the running instance.
enum class ClipCommand {
    open,       // started by the user: show the library when already running
    autostart,  // started at login: stay silent
    panel,      // open the quick panel
    library,    // open the library window
    pause,      // pause saving copies, or resume when paused
    settings,   // open the settings window
};

template <>
struct EnumNames<ClipCommand> {
    static constexpr std::array values{
        std::pair{ClipCommand::open, std::string_view("open")},
        std::pair{ClipCommand::autostart, std::string_view("autostart")},
        std::pair{ClipCommand::panel, std::string_view("panel")},
        std::pair{ClipCommand::library, std::string_view("library")},
        std::pair{ClipCommand::pause, std::string_view("pause")},
        std::pair{ClipCommand::settings, std::string_view("settings")},
    };
};

// The result of reading the command line: a command, a request for help or the version, or a
// message for an argument that is not understood.
struct ClipCommandLine {
    ClipCommand command = ClipCommand::open;
    bool help = false;
    bool version = false;
    std::optional<std::string> error;

    bool operator==(const ClipCommandLine&) const = default;
};

// Reads the arguments after the program name. Qt's own options (-platform, -display, …) are
// removed by QGuiApplication before this sees them. More than one command is an error.
ClipCommandLine parseCommandLine(const std::vector<std::string>& arguments);

// The text printed for --help.
std::string commandLineHelp();

}  // namespace harbex
