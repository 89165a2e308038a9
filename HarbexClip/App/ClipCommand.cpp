#include "HarbexClip/App/ClipCommand.hpp"

namespace harbex {

ClipCommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    ClipCommandLine line;
    bool commandSeen = false;
    for (const std::string& argument : arguments) {
        if (argument == "--help" || argument == "-h") {
            line.help = true;
            continue;
        }
        if (argument == "--version") {
            line.version = true;
            continue;
        }
        std::optional<ClipCommand> command;
        if (argument.starts_with("--")) command = enumFromName<ClipCommand>(argument.substr(2));
        if (!command || command == ClipCommand::open) {
            line.error = "Harbex Clipboard doesn’t understand “" + argument + "”.";
            return line;
        }
        if (commandSeen && command != line.command) {
            line.error =
                "Harbex Clipboard takes one of --panel, --library, --pause, --settings "
                "and --autostart at a time.";
            return line;
        }
        commandSeen = true;
        line.command = *command;
    }
    return line;
}

std::string commandLineHelp() {
    return "Usage: harbex-clipboard [--panel | --library | --pause | --settings | --autostart]\n"
           "\n"
           "Keeps what you copy, encrypted, and pastes it back. Started again while it runs,\n"
           "it passes the request to the running copy and exits.\n"
           "\n"
           "  --panel      open the quick panel\n"
           "  --library    open the library window\n"
           "  --pause      pause saving copies, or resume\n"
           "  --settings   open the settings\n"
           "  --autostart  start quietly, as at login\n"
           "  --version    show the version\n";
}

}  // namespace harbex
