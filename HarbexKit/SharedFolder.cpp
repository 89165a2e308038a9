#include "HarbexKit/SharedFolder.hpp"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace harbex {

namespace {

std::filesystem::path homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    if (const passwd* entry = ::getpwuid(::getuid()); entry && entry->pw_dir) return entry->pw_dir;
    return "/";
}

std::filesystem::path xdgFolder(const char* variable, const char* fallback) {
    // Relative values are invalid per the XDG base-directory rules and must be ignored.
    if (const char* value = std::getenv(variable); value && value[0] == '/') return value;
    return homeFolder() / fallback;
}

}  // namespace

std::filesystem::path userDataFolder() { return xdgFolder("XDG_DATA_HOME", ".local/share"); }
std::filesystem::path userConfigFolder() { return xdgFolder("XDG_CONFIG_HOME", ".config"); }
std::filesystem::path sharedDocumentsFolder() { return userDataFolder() / "Harbex" / "Shared"; }

}  // namespace harbex
