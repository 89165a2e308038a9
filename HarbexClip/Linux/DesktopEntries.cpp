#include "HarbexClip/Linux/DesktopEntries.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace harbex {
namespace {

std::string environment(const char* name, const std::string& fallback) {
    const char* value = std::getenv(name);
    return value && *value ? value : fallback;
}

std::string home() { return environment("HOME", "/"); }

std::vector<std::string> splitPaths(const std::string& paths) {
    std::vector<std::string> result;
    std::stringstream stream(paths);
    for (std::string part; std::getline(stream, part, ':');) {
        if (!part.empty()) result.push_back(part);
    }
    return result;
}

// Data folders in order of precedence.
std::vector<std::string> dataFolders() {
    std::vector<std::string> folders{environment("XDG_DATA_HOME", home() + "/.local/share")};
    for (auto& folder : splitPaths(environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share")))
        folders.push_back(folder);
    return folders;
}

std::string lower(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

std::optional<std::string> readText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    std::stringstream buffer;
    buffer << file.rdbuf();
    return buffer.str();
}

}  // namespace

std::optional<DesktopEntry> DesktopEntries::parse(const std::string& id, const std::string& text,
                                                  const std::string& language) {
    // LANG "de_DE.UTF-8" looks for Name[de_DE], then Name[de].
    std::string full = language.substr(0, language.find_first_of(".@"));
    std::string shortLanguage = full.substr(0, full.find('_'));
    DesktopEntry entry{id, {}, {}, {}};
    std::string fullName, shortName;
    bool inEntry = false, application = false, hidden = false;
    std::stringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == '[') {
            inEntry = line == "[Desktop Entry]";
            continue;
        }
        if (!inEntry) continue;
        const auto equals = line.find('=');
        if (equals == std::string::npos) continue;
        std::string key = line.substr(0, equals);
        while (!key.empty() && key.back() == ' ') key.pop_back();
        std::string value = line.substr(equals + 1);
        while (!value.empty() && value.front() == ' ') value.erase(0, 1);
        if (key == "Name")
            entry.name = value;
        else if (!full.empty() && key == "Name[" + full + "]")
            fullName = value;
        else if (!shortLanguage.empty() && key == "Name[" + shortLanguage + "]")
            shortName = value;
        else if (key == "StartupWMClass")
            entry.startupWMClass = value;
        else if (key == "Icon")
            entry.icon = value;
        else if (key == "Type")
            application = value == "Application";
        else if (key == "Hidden")
            hidden = value == "true";
    }
    if (!application || hidden) return std::nullopt;
    if (!fullName.empty())
        entry.name = fullName;
    else if (!shortName.empty())
        entry.name = shortName;
    return entry;
}

void DesktopEntries::load(bool force) {
    const auto now = std::chrono::steady_clock::now();
    if (loadedAt_ && (!force || now - *loadedAt_ < std::chrono::minutes(1))) return;
    loadedAt_ = now;
    entries_.clear();
    const std::string language =
        environment("LC_ALL", environment("LC_MESSAGES", environment("LANG", "")));
    std::error_code error;
    for (const auto& folder : dataFolders()) {
        const std::filesystem::path applications = std::filesystem::path(folder) / "applications";
        auto it = std::filesystem::recursive_directory_iterator(applications, error);
        if (error) continue;
        for (; it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
            if (error) break;
            const auto& path = it->path();
            if (path.extension() != ".desktop") continue;
            // Sub-folders make ids with dashes: kde4/kate.desktop is kde4-kate.
            std::string id = std::filesystem::relative(path, applications, error).string();
            id = id.substr(0, id.size() - 8);
            std::ranges::replace(id, '/', '-');
            if (std::ranges::find(entries_, id, &DesktopEntry::id) != entries_.end()) continue;
            if (auto text = readText(path)) {
                if (auto entry = parse(id, *text, language)) entries_.push_back(std::move(*entry));
            }
        }
    }
}

std::optional<DesktopEntry> DesktopEntries::match(const std::string& instance,
                                                  const std::string& windowClass,
                                                  const std::string& gtkApplicationID) {
    for (bool force : {false, true}) {
        load(force);
        for (const std::string& name : {instance, windowClass}) {
            if (name.empty()) continue;
            for (const auto& entry : entries_) {
                if (entry.startupWMClass == name) return entry;
            }
            for (const auto& entry : entries_) {
                if (lower(entry.id) == lower(name)) return entry;
            }
        }
        if (!gtkApplicationID.empty()) {
            if (auto entry = byID(gtkApplicationID)) return entry;
        }
    }
    return std::nullopt;
}

std::optional<DesktopEntry> DesktopEntries::byID(const std::string& id) {
    load(false);
    auto it = std::ranges::find(entries_, id, &DesktopEntry::id);
    if (it == entries_.end()) return std::nullopt;
    return *it;
}

std::optional<std::string> DesktopEntries::defaultHandler(const std::string& mimeType) {
    std::vector<std::filesystem::path> lists{
        std::filesystem::path(environment("XDG_CONFIG_HOME", home() + "/.config")) /
        "mimeapps.list"};
    for (auto& folder : splitPaths(environment("XDG_CONFIG_DIRS", "/etc/xdg")))
        lists.push_back(std::filesystem::path(folder) / "mimeapps.list");
    for (auto& folder : dataFolders())
        lists.push_back(std::filesystem::path(folder) / "applications" / "mimeapps.list");
    for (const auto& list : lists) {
        auto text = readText(list);
        if (!text) continue;
        bool inDefaults = false;
        std::stringstream stream(*text);
        for (std::string line; std::getline(stream, line);) {
            if (!line.empty() && line[0] == '[') {
                inDefaults = line.starts_with("[Default Applications]");
                continue;
            }
            if (!inDefaults || !line.starts_with(mimeType + "=")) continue;
            std::string value = line.substr(mimeType.size() + 1);
            value = value.substr(0, value.find(';'));
            if (value.ends_with(".desktop")) value.resize(value.size() - 8);
            if (!value.empty()) return value;
        }
    }
    return std::nullopt;
}

}  // namespace harbex
