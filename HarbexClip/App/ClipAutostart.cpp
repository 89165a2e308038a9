#include "HarbexClip/App/ClipAutostart.hpp"

#include <sstream>

#include "HarbexKit/SharedFolder.hpp"

namespace harbex {

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

}  // namespace

std::filesystem::path ClipAutostart::standardPath() {
    return userConfigFolder() / "autostart" / "app.harbexapps.clip.desktop";
}

bool ClipAutostart::isEnabled() const {
    auto bytes = readFile(path_);
    if (!bytes) return false;
    std::istringstream lines(stringOf(*bytes));
    std::string line;
    bool inEntry = false;
    bool enabled = true;
    while (std::getline(lines, line)) {
        std::string_view text = trimmed(line);
        if (text.starts_with('[')) {
            inEntry = text == "[Desktop Entry]";
            continue;
        }
        if (!inEntry) continue;
        const auto equals = text.find('=');
        if (equals == std::string_view::npos) continue;
        const std::string_view key = trimmed(text.substr(0, equals));
        const std::string_view value = trimmed(text.substr(equals + 1));
        if (key == "Hidden" && value == "true") enabled = false;
        if (key == "X-GNOME-Autostart-enabled" && value == "false") enabled = false;
    }
    return enabled;
}

FileStatus ClipAutostart::setEnabled(bool enabled, const std::filesystem::path& program) {
    if (auto made = createDirectories(path_.parent_path(), 0700); !made) return made;
    return writeFileAtomically(path_, autostartEntry(enabled, program), 0644);
}

std::string quotedExecArgument(std::string_view argument) {
    constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
    if (!argument.empty() && argument.find_first_of(reserved) == std::string_view::npos)
        return std::string(argument);
    std::string quoted = "\"";
    for (char c : argument) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
        quoted += c;
    }
    quoted += '"';
    // The key's value is itself a string with escapes: each backslash is written twice.
    std::string escaped;
    for (char c : quoted) {
        escaped += c;
        if (c == '\\') escaped += '\\';
    }
    return escaped;
}

std::string autostartEntry(bool enabled, const std::filesystem::path& program) {
    const char* on = enabled ? "true" : "false";
    const char* hidden = enabled ? "false" : "true";
    std::string entry;
    entry += "[Desktop Entry]\n";
    entry += "Type=Application\n";
    entry += "Name=Harbex Clipboard\n";
    entry += "Comment=Keeps what you copy, encrypted, and pastes it back\n";
    entry += "Exec=" + quotedExecArgument(program.string()) + " " +
             std::string(ClipAutostart::kAutostartFlag) + "\n";
    entry += "Icon=app.harbexapps.clip\n";
    entry += "Terminal=false\n";
    entry += "NoDisplay=true\n";
    entry += std::string("Hidden=") + hidden + "\n";
    entry += std::string("X-GNOME-Autostart-enabled=") + on + "\n";
    entry += "X-GNOME-Autostart-Delay=2\n";
    return entry;
}

}  // namespace harbex
