#pragma once

#include <QListWidget>
#include <QStackedWidget>
#include <QWidget>

#include <functional>
#include <vector>

#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Pasteboard/ClipPasteboard.hpp"
#include "HarbexClipCore/Settings/ClipDefaults.hpp"
#include "HarbexClipCore/Settings/ClipSettings.hpp"
#include "HarbexClipCore/Support/Observable.hpp"

namespace harbex {

// What the settings window reads and changes. The engine owns the settings and the pinboards;
// the window only shows them and asks.
struct SettingsWindowServices {
    Observable<ClipSettings>& settings;
    std::function<void(ClipSettings)> updateSettings;
    Observable<std::vector<Pinboard>>& pinboards;
    std::function<void(std::string name)> addPinboard;
    std::function<void(const Uuid&, std::string name)> renamePinboard;
    std::function<void(const Uuid&)> removePinboard;
    std::function<void()> clearHistory;  // opens "Clear History…"
    ClipDefaults& defaults;              // the page last shown, "clipShowAtLaunch"
    // The login item: whether it is on, and switching it (false when the entry can't be written).
    std::function<bool()> startsAtLogin;
    std::function<bool(bool)> setStartsAtLogin;
    // Applications to choose from for the excluded list: (id, name), running ones first.
    std::function<std::vector<std::pair<std::string, std::string>>()> applications;
    std::string historyFolder;
    // Who keeps the clipboard when an app quits (another manager may have that duty already).
    std::function<ClipKeepOnQuit()> keepOnQuit = [] { return ClipKeepOnQuit::ours; };
};

// The settings window: a sidebar of pages and one form per page. Every control writes the whole
// record back at once; changes made elsewhere (the tray's pause, another window) show at once.
// Fields that mean nothing on Linux (Dock icon, screen-sharing, haptics) are not shown. Main
// thread.
class SettingsWindow final : public QWidget {
    Q_OBJECT

public:
    explicit SettingsWindow(SettingsWindowServices services, QWidget* parent = nullptr);

    void showPage(ClipSettingsPage page);
    ClipSettingsPage currentPage() const;

private:
    QWidget* generalPage();
    QWidget* panelPage();
    QWidget* capturePage();
    QWidget* privacyPage();
    QWidget* historyPage();
    QWidget* pinboardsPage();
    QWidget* shortcutsPage();
    QWidget* aboutPage();
    // Applies `change` to the current record and hands it to the engine.
    void change(const std::function<void(ClipSettings&)>& change);
    // Brings every control in line with `settings` without echoing changes back.
    void refresh();

    SettingsWindowServices services_;
    QListWidget* sidebar_;
    QStackedWidget* pages_;
    std::vector<std::function<void(const ClipSettings&)>> refreshers_;
    std::vector<std::function<void()>> pinboardRefreshers_;
    std::function<void()> storageRefresher_;
    bool refreshing_ = false;
    Subscription settingsWatch_;
    Subscription pinboardsWatch_;
};

}  // namespace harbex
