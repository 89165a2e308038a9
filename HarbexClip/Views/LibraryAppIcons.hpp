#pragma once

#include <QIcon>

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

#include "HarbexClip/Linux/DesktopEntries.hpp"

namespace harbex {

// The icons of the applications copies came from: the desktop file's Icon (a theme name or a
// path), else a theme icon named like the application id. Looked up once per id. Main thread.
class LibraryAppIcons {
public:
    using Lookup = std::function<std::optional<DesktopEntry>(const std::string& appID)>;

    explicit LibraryAppIcons(Lookup lookup = {}) : lookup_(std::move(lookup)) {}

    // A null icon when nothing is found; the caller draws its own stand-in.
    QIcon icon(const std::string& appID);

private:
    Lookup lookup_;
    std::unordered_map<std::string, QIcon> icons_;
};

}  // namespace harbex
