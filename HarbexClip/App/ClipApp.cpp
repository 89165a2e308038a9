#include "HarbexClip/App/ClipApp.hpp"

#include <QMetaObject>
#include <QPointer>

#include <cstdio>
#include <cstdlib>

#include "HarbexClip/App/AbsentDesktop.hpp"
#include "HarbexClip/Linux/SecretServiceKeyStore.hpp"
#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"
#include "HarbexKit/LegacyPinsImport.hpp"
#include "HarbexKit/SharedFolder.hpp"

namespace harbex {

namespace {

// What the About page adds to the platform line: what does not work in this session, when
// something does not.
std::string sessionNote(const ClipPlatform& platform, std::optional<WaylandError> waylandProblem,
                        bool waylandSession) {
    if (platform.clipboard == ClipPlatform::Clipboard::x11 &&
        waylandProblem == WaylandError::noDataControl) {
        return "This Wayland desktop gives clipboard managers no access of their own, so the "
               "clipboard is read and written through XWayland: copies made in Wayland windows "
               "may only arrive once an X11 window has had the focus.";
    }
    if (!waylandSession) return std::string();
    if (platform.paste == ClipPlatform::Paste::none || platform.front == ClipPlatform::Front::none)
        return "This desktop does not let other applications type into its windows, so Return "
               "copies the chosen item and you press Ctrl+V.";
    return std::string();
}

bool nonEmpty(const char* value) { return value && *value; }

}  // namespace

ClipAppPlaces ClipAppPlaces::standard() {
    return ClipAppPlaces{userDataFolder() / "Harbex Clipboard", sharedDocumentsFolder(),
                         FileDefaults::standardPath()};
}

std::expected<std::unique_ptr<ClipApp>, std::string> ClipApp::assemble(QObject* loopContext,
                                                                       ClipAppPlaces places) {
    std::unique_ptr<ClipApp> app(new ClipApp());
    app->scheduler_ = std::make_unique<QtScheduler>(loopContext);
    app->clock_ = std::make_unique<SystemClock>();
    // What the session offers, then one decision of which implementation does each job.
    ClipSessionFacts facts;
    if (nonEmpty(std::getenv("WAYLAND_DISPLAY"))) {
        if (auto desktop = WaylandDesktop::open()) {
            app->desktop_ = std::move(*desktop);
            facts.wayland = true;
            facts.dataControl = app->desktop_->hasDataControl();
            facts.foreignToplevels = app->desktop_->hasForeignToplevels();
            facts.virtualKeyboard = app->desktop_->hasVirtualKeyboard();
        }
    }
    const char* sessionType = std::getenv("XDG_SESSION_TYPE");
    facts.sessionTypeX11 = sessionType && std::string_view(sessionType) == "x11";
    // The X display only when something may use it: an X11 session, or a Wayland one whose
    // clipboard has to go through XWayland.
    if (!facts.wayland || !facts.dataControl || facts.sessionTypeX11) {
        if (auto connection = X11Connection::open()) {
            app->connection_ = std::move(*connection);
            facts.x11 = true;
            facts.xtest = app->connection_->hasXTest();
        } else if (!facts.wayland || !facts.dataControl) {
            return std::unexpected(connection.error() == X11Error::missingXFixes
                                       ? "Harbex Clipboard needs an X server with the XFixes "
                                         "extension to see copies."
                                       : "Harbex Clipboard couldn’t open the X display.");
        }
    }
    facts.shortcutsPortal = facts.wayland && PortalHotKeyRegistrar::available();
    ClipPlatform platform = ClipPlatform::choose(facts);

    std::optional<WaylandError> waylandProblem;
    if (facts.wayland && !facts.dataControl) waylandProblem = WaylandError::noDataControl;
    if (platform.clipboard == ClipPlatform::Clipboard::waylandDataControl) {
        if (auto opened = WaylandPasteboard::open()) {
            app->wayland_ = opened->get();
            app->pasteboard_ = std::move(*opened);
        } else {
            std::fprintf(stderr, "harbex-clipboard: %s\n", describe(opened.error()).c_str());
            return std::unexpected(
                std::string("Harbex Clipboard couldn’t open the Wayland clipboard."));
        }
    }
    app->platform_ = platform;
    app->session_ =
        ClipSessionInfo{platform.summary(), sessionNote(platform, waylandProblem, facts.wayland)};
    std::fprintf(stderr, "harbex-clipboard: %s\n", app->session_.platform.c_str());
    app->defaults_ = std::make_unique<FileDefaults>(places.defaultsFile);
    app->codec_ =
        std::make_unique<QtImageCodec>(ClipSettingsStore::load(*app->defaults_).window.keepsImages);

    // The clipboard, then the paste path: typer, activator (through the focus keeper, which is
    // the one that hands the front over), and the paster with its delay.
    X11Connection* x11 = app->connection_.get();
    if (!app->pasteboard_) app->pasteboard_ = std::make_unique<X11Pasteboard>(*x11);
    switch (platform.front) {
        case ClipPlatform::Front::x11:
            app->activator_ = std::make_unique<X11Activator>(*x11);
            app->frontmost_ = std::make_unique<X11Frontmost>(*x11);
            break;
        case ClipPlatform::Front::foreignToplevel:
            app->activator_ = std::make_unique<WaylandActivator>(*app->desktop_);
            app->frontmost_ = std::make_unique<WaylandFrontmost>(*app->desktop_, kAppIdentifier);
            break;
        case ClipPlatform::Front::none:
            app->activator_ = std::make_unique<AbsentActivator>();
            app->frontmost_ = std::make_unique<AbsentFrontmost>();
            break;
    }
    switch (platform.paste) {
        case ClipPlatform::Paste::xtest:
            app->typer_ = std::make_unique<XTestPasteTyper>(*x11);
            break;
        case ClipPlatform::Paste::virtualKeyboard:
            app->typer_ = std::make_unique<VirtualKeyboardPasteTyper>(*app->desktop_);
            break;
        case ClipPlatform::Paste::none: app->typer_ = std::make_unique<AbsentPasteTyper>(); break;
    }
    const ScheduleFunction schedule = scheduleFunction(*app->scheduler_);
    app->focus_ = std::make_unique<ClipPanelFocus>(*app->frontmost_, *app->activator_,
                                                   kPanelFocusSettle, schedule);
    // Without a keystroke or a window to type into, the paster copies and says so.
    const bool trusted =
        platform.paste != ClipPlatform::Paste::none && platform.front != ClipPlatform::Front::none;
    app->paster_ = std::make_unique<ClipPaster>(
        *app->pasteboard_, *app->typer_, *app->focus_, [trusted] { return trusted; }, kPasteDelay,
        schedule, kAppIdentifier);

    // The keyring key, the sealed store and the pins shared with the sibling application.
    SecretServiceKeyStore::Options keyOptions;
    keyOptions.service = std::string(kAppIdentifier) + ".history";
    app->store_ = std::make_unique<ClipStore>(places.historyFolder,
                                              std::make_unique<SecretServiceKeyStore>(keyOptions));
    app->notifier_ = std::make_unique<DBusDocumentNotifier>();
    app->pins_ = std::make_unique<ClipPinsBridge>(*app->notifier_, places.sharedFolder);
    // Pins the sibling kept privately before the shared folder existed join the shared ones once;
    // an old file that cannot be read now is tried again at the next start.
    (void)importLegacyPins(*app->defaults_, *app->pins_);

    ClipFrontmost* frontmost = app->frontmost_.get();
    DesktopEntries* entries = &app->desktopEntries_;
    QPointer<QObject> context(loopContext);
    ClipEngineEnvironment environment{
        .pasteboard = *app->pasteboard_,
        .paster = *app->paster_,
        .store = app->store_.get(),
        .pins = app->pins_.get(),
        .defaults = *app->defaults_,
        .frontApp = [frontmost]() -> std::optional<std::string> {
            auto front = frontmost->frontApp();
            if (!front) return std::nullopt;
            return front->bundleID;
        },
        .appName = [entries](std::string_view id) -> std::optional<std::string> {
            auto entry = entries->byID(std::string(id));
            if (!entry || entry->name.empty()) return std::nullopt;
            return entry->name;
        },
        .now = nowFunction(*app->clock_),
        .schedule = schedule,
        .imageCodec = *app->codec_,
        .postToMain =
            [context](std::function<void()> block) {
                if (!context) return;
                QMetaObject::invokeMethod(context.data(), std::move(block), Qt::QueuedConnection);
            },
        .vocabulary = ClipKeyVocabulary::linuxNames,
    };
    app->engine_ = std::make_unique<ClipEngine>(std::move(environment));
    app->sound_ = std::make_unique<CanberraSoundPlayer>();
    app->copySound_ = std::make_unique<CopySound>(*app->engine_, *app->sound_);

    // Global shortcuts: grabs on the root window and the modifier watch for the double tap on
    // X11; the desktop portal's shortcuts on Wayland, where it offers them.
    switch (platform.shortcuts) {
        case ClipPlatform::Shortcuts::x11:
            app->registrar_ = std::make_unique<X11HotKeyRegistrar>(*x11);
            break;
        case ClipPlatform::Shortcuts::portal:
            app->registrar_ = std::make_unique<PortalHotKeyRegistrar>();
            break;
        case ClipPlatform::Shortcuts::none:
            app->registrar_ = std::make_unique<AbsentHotKeyRegistrar>();
            break;
    }
    if (platform.doubleTap) {
        app->monitor_ = std::make_unique<X11ModifierMonitor>(*x11);
    } else {
        app->monitor_ = std::make_unique<AbsentModifierMonitor>();
    }
    ClipApp* self = app.get();
    app->hotKeys_ =
        std::make_unique<ClipHotKeys>(*app->registrar_, *app->monitor_,
                                      ClipHotKeys::Actions{
                                          .openPanel =
                                              [self] {
                                                  if (self->hotKeyActions_.openPanel)
                                                      self->hotKeyActions_.openPanel();
                                              },
                                          .openLibrary =
                                              [self] {
                                                  if (self->hotKeyActions_.openLibrary)
                                                      self->hotKeyActions_.openLibrary();
                                              },
                                          .pause =
                                              [self] {
                                                  if (self->hotKeyActions_.pause)
                                                      self->hotKeyActions_.pause();
                                              },
                                      });
    return app;
}

ClipApp::~ClipApp() {
    // The hot keys let go of the grabs before the connection closes; the engine finishes its
    // saves before the store goes.
    hotKeys_.reset();
    if (engine_) engine_->shutdown();
}

}  // namespace harbex
