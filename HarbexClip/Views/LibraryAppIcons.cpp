#include "HarbexClip/Views/LibraryAppIcons.hpp"

#include <QFileInfo>

namespace harbex {

QIcon LibraryAppIcons::icon(const std::string& appID) {
    if (appID.empty()) return {};
    if (const auto found = icons_.find(appID); found != icons_.end()) return found->second;
    std::optional<DesktopEntry> entry = lookup_ ? lookup_(appID) : std::nullopt;
    const QString name =
        QString::fromStdString(entry && !entry->icon.empty() ? entry->icon : appID);
    QIcon icon;
    if (QFileInfo(name).isAbsolute()) {
        if (QFileInfo::exists(name)) icon = QIcon(name);
    } else {
        icon = QIcon::fromTheme(name);
        // Reverse-domain ids often ship their icon under the last part's lower-case name.
        if (icon.isNull() && name.contains('.')) {
            icon = QIcon::fromTheme(name.section('.', -1).toLower());
        }
    }
    icons_.emplace(appID, icon);
    return icon;
}

}  // namespace harbex
