#include "HarbexClip/App/AppDelegate.hpp"

#include <QApplication>
#include <QButtonGroup>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>

#include <dirent.h>
#include <malloc.h>

#include <fstream>
#include <set>

#include "HarbexClip/App/ClipTimings.hpp"
#include "HarbexClipCore/Panel/ClipCodeLanguage.hpp"
#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"

// Resources compiled into a static library must be registered by hand, outside any namespace.
static void initialiseResources() { Q_INIT_RESOURCE(HarbexClip); }

namespace harbex {

namespace {

// A relaunch marker older than this belongs to an earlier run, not to this start.
constexpr double kRelaunchMarkLifetime = 60;

// Gives freed memory back once a window has gone away: showing the panel or the library makes
// and drops rows, texts and images whose pages would otherwise stay with the process while it
// waits in the background.
class ReleaseMemoryWhenHidden final : public QObject {
public:
    explicit ReleaseMemoryWhenHidden(QWidget& window) : QObject(&window) {
        window.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Hide) QTimer::singleShot(0, this, [] { ::malloc_trim(0); });
        return QObject::eventFilter(watched, event);
    }
};

QIcon trayIcon(bool paused) {
    return QIcon(paused ? ":/harbex/tray-paused.svg" : ":/harbex/tray.svg");
}

// Qt 6.4 cannot switch the platform's colour scheme, so a chosen appearance sets Fusion's
// palette; "system" keeps whatever the platform theme gave at start.
void applyAppearance(ClipAppearance appearance) {
    static const QPalette systemPalette = QApplication::palette();
    static const QString systemStyle = QApplication::style()->name();
    if (appearance == ClipAppearance::system) {
        QApplication::setStyle(systemStyle);
        QApplication::setPalette(systemPalette);
        return;
    }
    QApplication::setStyle("Fusion");
    if (appearance == ClipAppearance::light) {
        QApplication::setPalette(QApplication::style()->standardPalette());
        return;
    }
    QPalette dark;
    const QColor window(0x24, 0x24, 0x27), base(0x1c, 0x1c, 0x1e), text(0xec, 0xec, 0xee);
    dark.setColor(QPalette::Window, window);
    dark.setColor(QPalette::WindowText, text);
    dark.setColor(QPalette::Base, base);
    dark.setColor(QPalette::AlternateBase, window);
    dark.setColor(QPalette::Text, text);
    dark.setColor(QPalette::Button, QColor(0x33, 0x33, 0x38));
    dark.setColor(QPalette::ButtonText, text);
    dark.setColor(QPalette::Highlight, QColor(0x5e, 0x5c, 0xe6));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::ToolTipBase, window);
    dark.setColor(QPalette::ToolTipText, text);
    dark.setColor(QPalette::PlaceholderText, QColor(0x8e, 0x8e, 0x93));
    dark.setColor(QPalette::Disabled, QPalette::Text, QColor(0x6e, 0x6e, 0x73));
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x6e, 0x6e, 0x73));
    dark.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x6e, 0x6e, 0x73));
    QApplication::setPalette(dark);
}

}  // namespace

bool showsLibraryAtLaunch(ClipCommand command, std::optional<Date> relaunchMarkedAt,
                          std::optional<bool> showAtLaunch, Date now) {
    if (command == ClipCommand::autostart) return false;
    if (relaunchMarkedAt && now.seconds - relaunchMarkedAt->seconds >= 0 &&
        now.seconds - relaunchMarkedAt->seconds < kRelaunchMarkLifetime)
        return true;
    if (command != ClipCommand::open) return false;  // the command names its own window
    return showAtLaunch.value_or(true);
}

LaunchWindow launchWindow(ClipCommand command, std::optional<Date> relaunchMarkedAt,
                          std::optional<bool> showAtLaunch, bool welcomeFinished, Date now) {
    if (command == ClipCommand::autostart) return LaunchWindow::none;
    if (!welcomeFinished) return LaunchWindow::welcome;
    return showsLibraryAtLaunch(command, relaunchMarkedAt, showAtLaunch, now)
               ? LaunchWindow::library
               : LaunchWindow::none;
}

AppDelegate::AppDelegate(QObject* parent) : QObject(parent) { initialiseResources(); }

AppDelegate::~AppDelegate() {
    // The windows and the tray go before the system they observe.
    delete welcome_.data();
    delete settingsWindow_.data();
    delete libraryWindow_.data();
    panel_.reset();
    panelModel_.reset();
    trayMenu_.reset();
    settingsWatch_.cancel();
    historyWatch_.cancel();
    problemWatch_.cancel();
    readyWatch_.cancel();
    pump_.reset();
    app_.reset();
}

std::optional<std::string> AppDelegate::start(ClipCommand command) {
    auto assembled = ClipApp::assemble(this);
    if (!assembled) return assembled.error();
    app_ = std::move(*assembled);
    ClipEngine& engine = app_->engine();

    // 1. The login-item state and the launch default.
    const bool startsAtLogin = autostart_.isEnabled();
    (void)startsAtLogin;  // shown by the settings window; a login start is known by its flag
    const std::optional<bool> showAtLaunch = app_->defaults().boolean(kShowAtLaunchKey);

    // 2. Follow the settings and the history for the life of the process.
    lastSettings_ = engine.settings().get();
    settingsWatch_ = engine.settings().subscribe([this](const ClipSettings& settings) {
        if (lastSettings_ == settings) return;
        lastSettings_ = settings;
        applySettings(settings);
    });
    historyWatch_ = engine.history().subscribe([this](const std::vector<ClipItem>&) {
        if (tray_) tray_->setToolTip(tr("Harbex Clipboard"));
    });
    problemWatch_ =
        engine.problem().subscribe([this](const std::optional<std::string>&) { refreshTray(); });

    // 3. Open the history (the engine retries while the keyring does not answer).
    engine.ensureHistoryOpen(ClipEngine::OpenAttempt::force);

    // 4. Sampling, and an early look whenever the X server reports a new clipboard owner.
    pump_ = std::make_unique<X11EventPump>(app_->connection(), [this] {
        if (sampleQueued_ || !app_) return;
        sampleQueued_ = true;
        QTimer::singleShot(0, this, [this] {
            sampleQueued_ = false;
            if (app_) app_->engine().sample();
        });
    });
    startSampling();

    // 5. The tray and the global shortcuts.
    buildTray();
    app_->hotKeyActions() = ClipHotKeys::Actions{
        .openPanel = [this] { openPanelFromShortcut(); },
        .openLibrary = [this] { showLibrary(); },
        .pause = [this] { togglePause(); },
    };
    app_->hotKeys().start(engine.settings().get());
    applySettings(engine.settings().get());

    // 6. The window to show at launch.
    const Date now = Date::fromUnix(double(QDateTime::currentSecsSinceEpoch()));
    const std::optional<Date> relaunch = app_->defaults().date(kRelaunchMarkKey);
    if (relaunch) app_->defaults().remove(kRelaunchMarkKey);
    const LaunchWindow window =
        launchWindow(command, relaunch, showAtLaunch, engine.settings()->welcomeFinished, now);
    if (window == LaunchWindow::library) {
        showLibrary();
    } else if (command != ClipCommand::open && command != ClipCommand::autostart) {
        perform(command);
    }
    if (window == LaunchWindow::welcome) showWelcome();
    whenHistoryOpens();

    // Saving before exit: the engine writes a queued save and waits for the store.
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        if (timer_) timer_->stop();
        if (app_) app_->engine().shutdown();
    });
    return std::nullopt;
}

void AppDelegate::whenHistoryOpens() {
    // Once the history is open and the loop has come back (the tray and any window of the start
    // are up): that is "ready"; then the panel is built while idle, so that the first shortcut
    // only has to show it.
    auto afterOpen = [this] {
        QTimer::singleShot(0, this, [this] {
            if (!app_) return;
            ClipTimings::report("ready", ClipTimings::sinceProcessStart(),
                                app_->engine().history().get().size());
            QTimer::singleShot(0, this, [this] {
                preparePanel();
                // Opening the history and building the panel free a great deal on the way
                // (the parsed document, passing copies); give those pages back.
                ::malloc_trim(0);
            });
        });
    };
    if (app_->engine().isHistoryOpen().get()) {
        afterOpen();
        return;
    }
    readyWatch_ = app_->engine().isHistoryOpen().subscribe([this, afterOpen](bool open) {
        if (!open) return;
        afterOpen();
        QTimer::singleShot(0, this, [this] { readyWatch_.cancel(); });
    });
}

void AppDelegate::openPanelFromShortcut() {
    const bool opens = !(panel_ && panel_->isVisible());
    QElapsedTimer pressed;
    pressed.start();
    showPanel();
    if (!ClipTimings::enabled() || !opens || !panel_) return;
    ClipTimings::afterNextPaint(*panel_, [this, pressed] {
        if (!app_) return;
        ClipTimings::report("panel-shown", double(pressed.nsecsElapsed()) / 1e6,
                            app_->engine().history().get().size());
    });
}

void AppDelegate::startSampling() {
    if (timer_) return;
    app_->engine().sample();
    timer_ = new QTimer(this);
    timer_->setTimerType(Qt::CoarseTimer);
    timer_->setInterval(int(kSampleInterval * 1000));
    connect(timer_, &QTimer::timeout, this, [this] { app_->engine().sample(); });
    timer_->start();
}

void AppDelegate::perform(ClipCommand command) {
    switch (command) {
        case ClipCommand::open:
        case ClipCommand::library: showLibrary(); break;
        case ClipCommand::panel: showPanel(); break;
        case ClipCommand::pause: togglePause(); break;
        case ClipCommand::settings: showSettings(); break;
        case ClipCommand::autostart: break;
    }
}

void AppDelegate::applySettings(const ClipSettings& settings) {
    if (!app_) return;
    app_->hotKeys().apply(settings);
    app_->imageCodec().setKeeping(settings.window.keepsImages);
    applyAppearance(settings.window.appearance);
    refreshTray();
}

void AppDelegate::buildTray() {
    trayMenu_ = std::make_unique<QMenu>();
    tray_ = new QSystemTrayIcon(trayIcon(false), this);
    tray_->setToolTip(tr("Harbex Clipboard"));
    tray_->setContextMenu(trayMenu_.get());
    connect(tray_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason r) {
        if (r == QSystemTrayIcon::Trigger) showPanel();
    });
    connect(trayMenu_.get(), &QMenu::aboutToShow, this, &AppDelegate::refreshTray);
    refreshTray();
    tray_->show();
}

void AppDelegate::refreshTray() {
    if (!trayMenu_ || !app_) return;
    ClipEngine& engine = app_->engine();
    const bool paused = engine.isPaused();
    tray_->setIcon(trayIcon(paused));
    trayMenu_->clear();
    if (const auto& problem = engine.problem().get()) {
        QAction* message = trayMenu_->addAction(QString::fromStdString(*problem));
        message->setEnabled(false);
        trayMenu_->addSeparator();
    }
    trayMenu_->addAction(tr("Open Panel"), this, &AppDelegate::showPanel);
    trayMenu_->addAction(tr("Open Library"), this, &AppDelegate::showLibrary);
    trayMenu_->addSeparator();
    if (paused) {
        trayMenu_->addAction(tr("Resume"), this, [this] {
            app_->engine().resume();
            refreshTray();
        });
    } else {
        trayMenu_->addAction(tr("Pause for 1 Hour"), this, [this] {
            app_->engine().pauseFor(3600);
            refreshTray();
        });
        trayMenu_->addAction(tr("Pause Until Tomorrow"), this, [this] {
            app_->engine().pauseUntilTomorrow();
            refreshTray();
        });
        trayMenu_->addAction(tr("Pause Until I Resume"), this, [this] {
            app_->engine().pause(std::nullopt);
            refreshTray();
        });
    }
    trayMenu_->addAction(tr("Clear History…"), this, &AppDelegate::clearHistory);
    trayMenu_->addSeparator();
    trayMenu_->addAction(tr("Settings"), this, [this] { showSettings(); });
    trayMenu_->addAction(tr("About Harbex Clipboard"), this,
                         [this] { showSettings(ClipSettingsPage::about); });
    trayMenu_->addSeparator();
    trayMenu_->addAction(tr("Quit Harbex Clipboard"), qApp, &QCoreApplication::quit);
}

void AppDelegate::togglePause() {
    if (!app_) return;
    if (app_->engine().isPaused()) {
        app_->engine().resume();
    } else {
        app_->engine().pause(std::nullopt);
    }
    refreshTray();
}

void AppDelegate::clearHistory() {
    if (!app_) return;
    QDialog dialog;
    dialog.setWindowTitle(tr("Clear History"));
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel(tr("Which copies should go?")));
    auto* group = new QButtonGroup(&dialog);
    const std::pair<ClipHistory::ClearRange, QString> ranges[] = {
        {ClipHistory::ClearRange::lastHour, tr("The last hour")},
        {ClipHistory::ClearRange::today, tr("Today")},
        {ClipHistory::ClearRange::everything, tr("Everything")},
    };
    for (const auto& [range, text] : ranges) {
        auto* button = new QRadioButton(text);
        group->addButton(button, static_cast<int>(range));
        layout->addWidget(button);
    }
    group->button(static_cast<int>(ClipHistory::ClearRange::lastHour))->setChecked(true);
    const bool keepsPins = app_->engine().settings()->window.clearKeepsPins;
    auto* pinsNote =
        new QLabel(keepsPins ? tr("Pinned copies stay.") : tr("Pinned copies go too."));
    pinsNote->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(pinsNote);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    buttons->addButton(tr("Clear"), QDialogButtonBox::DestructiveRole);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::clicked, &dialog, [&](QAbstractButton* b) {
        if (buttons->buttonRole(b) == QDialogButtonBox::DestructiveRole) dialog.accept();
    });
    layout->addWidget(buttons);
    if (dialog.exec() != QDialog::Accepted) return;
    app_->engine().clear(static_cast<ClipHistory::ClearRange>(group->checkedId()));
}

void AppDelegate::showSettings(std::optional<ClipSettingsPage> page) {
    if (!app_) return;
    if (!settingsWindow_) {
        ClipEngine& engine = app_->engine();
        SettingsWindowServices services{
            .settings = engine.settings(),
            .updateSettings = [&engine](ClipSettings s) { engine.updateSettings(std::move(s)); },
            .pinboards = engine.pinboards(),
            .addPinboard =
                [&engine](std::string name) {
                    Pinboard board;
                    board.id = Uuid::random();
                    board.name = std::move(name);
                    engine.addPinboard(std::move(board));
                },
            .renamePinboard = [&engine](const Uuid& id,
                                        std::string name) { engine.renamePinboard(id, name); },
            .removePinboard = [&engine](const Uuid& id) { engine.removePinboard(id); },
            .clearHistory = [this] { clearHistory(); },
            .defaults = app_->defaults(),
            .startsAtLogin = [this] { return autostart_.isEnabled(); },
            .setStartsAtLogin =
                [this](bool on) {
                    return autostart_
                        .setEnabled(on, QCoreApplication::applicationFilePath().toStdString())
                        .has_value();
                },
            .applications = [this] { return applications(); },
            .historyFolder = ClipAppPlaces::standard().historyFolder.string(),
            .keepOnQuit = [this] { return app_->pasteboard().keepOnQuit(); },
        };
        settingsWindow_ = new SettingsWindow(std::move(services));
        settingsWindow_->setAttribute(Qt::WA_DeleteOnClose);
        settingsWindow_->setWindowIcon(QIcon(":/harbex/app.harbexapps.clip.svg"));
    }
    if (page) settingsWindow_->showPage(*page);
    settingsWindow_->show();
    settingsWindow_->raise();
    settingsWindow_->activateWindow();
}

std::vector<std::pair<std::string, std::string>> AppDelegate::applications() {
    // The one in front first, then every installed application by its desktop file.
    std::vector<std::pair<std::string, std::string>> result;
    std::set<std::string> seen;
    if (auto front = app_->frontmost().frontApp(); front && front->bundleID) {
        result.emplace_back(*front->bundleID, front->name.value_or(*front->bundleID));
        seen.insert(*front->bundleID);
    }
    QStringList folders;
    folders << QDir::homePath() + "/.local/share/applications";
    const QByteArray dataHome = qgetenv("XDG_DATA_HOME");
    if (!dataHome.isEmpty()) folders.prepend(QString::fromLocal8Bit(dataHome) + "/applications");
    QByteArray dataDirs = qgetenv("XDG_DATA_DIRS");
    if (dataDirs.isEmpty()) dataDirs = "/usr/local/share:/usr/share";
    for (const QByteArray& dir : dataDirs.split(':'))
        folders << QString::fromLocal8Bit(dir) + "/applications";
    std::vector<std::pair<std::string, std::string>> installed;
    for (const QString& folder : folders) {
        for (const QString& file : QDir(folder).entryList({"*.desktop"}, QDir::Files)) {
            const std::string id = file.chopped(8).toStdString();
            if (seen.contains(id)) continue;
            auto entry = app_->desktopEntries().byID(id);
            if (!entry) continue;
            seen.insert(id);
            installed.emplace_back(id, entry->name.empty() ? id : entry->name);
        }
    }
    std::sort(installed.begin(), installed.end(),
              [](const auto& a, const auto& b) { return a.second < b.second; });
    result.insert(result.end(), installed.begin(), installed.end());
    return result;
}

void AppDelegate::preparePanel() {
    if (!app_ || panel_) return;
    ClipEngine& engine = app_->engine();
    panelModel_ = std::make_unique<ClipPanelModel>(
        engine, [] { return Date::fromUnix(double(QDateTime::currentMSecsSinceEpoch()) / 1000); },
        app_->schedule());
    panelModel_->languages = ClipCodeLanguage::knownNames();
    ClipPanelServices services;
    services.readThumbnail = [this](const std::string& name) -> std::optional<Bytes> {
        auto bytes = app_->store().readThumbnail(name);
        if (!bytes) return std::nullopt;
        return std::move(*bytes);
    };
    services.readImage = [this](const std::string& name) -> std::optional<Bytes> {
        auto bytes = app_->store().readImage(name);
        if (!bytes) return std::nullopt;
        return std::move(*bytes);
    };
    services.appIconName = [this](const std::string& id) -> std::optional<std::string> {
        auto entry = app_->desktopEntries().byID(id);
        if (!entry || entry->icon.empty()) return std::nullopt;
        return entry->icon;
    };
    services.defaults = &app_->defaults();
    services.problem = &app_->engine().problem();
    panel_ = std::make_unique<ClipPanel>(
        *panelModel_, app_->focus(), [&engine] { return engine.settings().get(); },
        std::move(services));
    connect(panel_.get(), &ClipPanel::settingsRequested, this, [this] { showSettings(); });
    panel_->ensurePolished();
    panel_->createWinId();
    new ReleaseMemoryWhenHidden(*panel_);
}

void AppDelegate::showPanel() {
    if (!app_) return;
    preparePanel();
    if (panel_->isVisible()) {
        panel_->dismiss(ClipPanelFocus::Close::dismissed);
        return;
    }
    panel_->present();
}

void AppDelegate::showWelcome() {
    if (!app_) return;
    if (!welcome_) {
        ClipEngine& engine = app_->engine();
        welcome_ =
            new ClipWelcome(welcomeText(engine.settings().get(), ClipKeyVocabulary::linuxNames));
        welcome_->setWindowIcon(QIcon(":/harbex/app.harbexapps.clip.svg"));
        connect(welcome_, &ClipWelcome::settingsRequested, this,
                [this] { showSettings(ClipSettingsPage::shortcuts); });
        connect(welcome_, &ClipWelcome::finished, this, [this] {
            if (!app_ || app_->engine().settings()->welcomeFinished) return;
            ClipSettings settings = app_->engine().settings().get();
            settings.welcomeFinished = true;
            app_->engine().updateSettings(std::move(settings));
        });
    }
    welcome_->show();
    welcome_->raise();
    welcome_->activateWindow();
}

void AppDelegate::showLibrary() {
    if (!app_) return;
    if (!libraryWindow_) {
        libraryWindow_ = new LibraryWindow(LibraryWindowServices{
            .engine = app_->engine(),
            .now =
                [] { return Date::fromUnix(double(QDateTime::currentMSecsSinceEpoch()) / 1000); },
            .calendar = Calendar(),
            .readImage = [this](const ClipImageInfo& info) -> std::optional<Bytes> {
                auto bytes = app_->store().readImage(info.digest);
                if (!bytes) return std::nullopt;
                return std::move(*bytes);
            },
            .storeImage =
                [this](const ClipExportImage& image) {
                    return app_->store().writeImage(image.data, image.digest).has_value();
                },
            .clearHistory = [this] { clearHistory(); },
            .readThumbnail = [this](const ClipImageInfo& info) -> std::optional<Bytes> {
                auto bytes = app_->store().readThumbnail(info.digest);
                if (!bytes) bytes = app_->store().readImage(info.digest);
                if (!bytes) return std::nullopt;
                return std::move(*bytes);
            },
            .desktopEntry =
                [this](const std::string& id) { return app_->desktopEntries().byID(id); },
            .defaults = &app_->defaults(),
        });
        libraryWindow_->setWindowIcon(QIcon(":/harbex/app.harbexapps.clip.svg"));
        new ReleaseMemoryWhenHidden(*libraryWindow_);
    }
    // Return in the library pastes into the application that was in front before it.
    if (!libraryWindow_->isActiveWindow()) {
        std::optional<ClipTargetApp> front = app_->frontmost().frontApp();
        if (front && front->pid == app_->frontmost().ownPid()) front.reset();
        libraryWindow_->setPasteTarget(front);
    }
    libraryWindow_->show();
    libraryWindow_->raise();
    libraryWindow_->activateWindow();
}

}  // namespace harbex
