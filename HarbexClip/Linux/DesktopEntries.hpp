#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace harbex {

// An installed application as its desktop file describes it.
struct DesktopEntry {
    std::string id;  // the file name without ".desktop"
    std::string name;
    std::string startupWMClass;
    std::string icon;  // a theme icon name or an absolute path; empty when the file names none

    bool operator==(const DesktopEntry&) const = default;
};

// The desktop files of $XDG_DATA_HOME/applications and $XDG_DATA_DIRS/*/applications (earlier
// folders win), with names localised for $LANG. Read once, then again at most every minute
// when an identity is not found.
class DesktopEntries {
public:
    // The application id of a window: WM_CLASS instance, then class, against StartupWMClass,
    // then against desktop-file ids (ignoring case); then the GTK application id. Nothing when
    // none matches.
    std::optional<DesktopEntry> match(const std::string& instance, const std::string& windowClass,
                                      const std::string& gtkApplicationID);
    std::optional<DesktopEntry> byID(const std::string& id);
    // The desktop id of the default handler of `mimeType` from the mimeapps.list files.
    static std::optional<std::string> defaultHandler(const std::string& mimeType);
    // Parses one desktop file's text; nothing for hidden entries or non-applications.
    static std::optional<DesktopEntry> parse(const std::string& id, const std::string& text,
                                             const std::string& language);

private:
    void load(bool force);
    std::vector<DesktopEntry> entries_;
    std::optional<std::chrono::steady_clock::time_point> loadedAt_;
};

}  // namespace harbex
