#pragma once

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QTimer>

#include <memory>
#include <optional>

#include "HarbexClip/App/ClipApp.hpp"
#include "HarbexClip/App/ClipAutostart.hpp"
#include "HarbexClip/App/ClipCommand.hpp"
#include "HarbexClip/App/ClipWelcome.hpp"
#include "HarbexClip/App/SocketEventPump.hpp"
#include "HarbexClip/Views/ClipPanel.hpp"
#include "HarbexClip/Views/LibraryWindow.hpp"
#include "HarbexClip/Views/SettingsWindow.hpp"

namespace harbex {

// Whether the library shows at launch: never at a login start; always after a self-relaunch
// (marked less than a minute ago); otherwise as "clipShowAtLaunch" says (on when never set).
bool showsLibraryAtLaunch(ClipCommand command, std::optional<Date> relaunchMarkedAt,
                          std::optional<bool> showAtLaunch, Date now);

// The window a start shows of its own accord.
enum class LaunchWindow { none, welcome, library };

// A login start shows nothing (the welcome waits for the user's own start); a first start by
// the user shows the welcome in place of the library; otherwise as showsLibraryAtLaunch says.
LaunchWindow launchWindow(ClipCommand command, std::optional<Date> relaunchMarkedAt,
                          std::optional<bool> showAtLaunch, bool welcomeFinished, Date now);

// The application shell: assembles the system, starts sampling, puts the tray icon up, answers
// commands from later starts and saves before the process ends. Main thread.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    static constexpr double kSampleInterval = 0.5;
    static constexpr const char* kShowAtLaunchKey = "clipShowAtLaunch";
    static constexpr const char* kRelaunchMarkKey = "harbex.launch.relaunchMarkedAt";

    explicit AppDelegate(QObject* parent = nullptr);
    ~AppDelegate() override;

    // Builds everything and starts; an error sentence when the system cannot run.
    std::optional<std::string> start(ClipCommand command);

    // Answers a command, from the command line or from a later start.
    void perform(ClipCommand command);

    void showPanel();
    void showLibrary();
    void showSettings(std::optional<ClipSettingsPage> page = std::nullopt);
    void togglePause();
    void clearHistory();
    // The first-run welcome; closing it (either way) marks the welcome finished in the settings.
    void showWelcome();

    ClipApp* app() { return app_.get(); }
    SettingsWindow* settingsWindow() { return settingsWindow_; }
    LibraryWindow* libraryWindow() { return libraryWindow_; }
    ClipPanel* panel() { return panel_.get(); }
    ClipPanelModel* panelModel() { return panelModel_.get(); }
    ClipWelcome* welcomeWindow() { return welcome_; }

private:
    void startSampling();
    void startPumps();
    // What the settings window shows of this session's platform choices.
    SettingsWindowServices::Session settingsSession();
    void sampleSoon();
    void openPanelFromShortcut();
    void whenHistoryOpens();
    void preparePanel();
    void buildTray();
    void refreshTray();
    void applySettings(const ClipSettings& settings);
    std::vector<std::pair<std::string, std::string>> applications();

    std::unique_ptr<ClipApp> app_;
    ClipAutostart autostart_;
    QTimer* timer_ = nullptr;
    Subscription settingsWatch_;
    Subscription historyWatch_;
    Subscription problemWatch_;
    Subscription readyWatch_;
    std::unique_ptr<SocketEventPump> pump_;         // the X display, when there is one
    std::unique_ptr<SocketEventPump> waylandPump_;  // the Wayland clipboard, when used
    std::unique_ptr<SocketEventPump> desktopPump_;  // the Wayland window list, when used
    // Set once when the Wayland compositor goes away; shown in the tray menu.
    std::optional<std::string> clipboardProblem_;
    bool sampleQueued_ = false;
    QSystemTrayIcon* tray_ = nullptr;
    std::unique_ptr<QMenu> trayMenu_;
    QPointer<SettingsWindow> settingsWindow_;
    QPointer<LibraryWindow> libraryWindow_;
    QPointer<ClipWelcome> welcome_;
    std::unique_ptr<ClipPanelModel> panelModel_;
    std::unique_ptr<ClipPanel> panel_;
    std::optional<ClipSettings> lastSettings_;
};

}  // namespace harbex
