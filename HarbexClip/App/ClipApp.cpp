#include "HarbexClip/App/ClipApp.hpp"

#include <QMetaObject>
#include <QPointer>

#include "HarbexClip/Linux/SecretServiceKeyStore.hpp"
#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"
#include "HarbexKit/LegacyPinsImport.hpp"
#include "HarbexKit/SharedFolder.hpp"

namespace harbex {

ClipAppPlaces ClipAppPlaces::standard() {
    return ClipAppPlaces{userDataFolder() / "Harbex Clipboard", sharedDocumentsFolder(),
                         FileDefaults::standardPath()};
}

std::expected<std::unique_ptr<ClipApp>, std::string> ClipApp::assemble(QObject* loopContext,
                                                                       ClipAppPlaces places) {
    std::unique_ptr<ClipApp> app(new ClipApp());
    app->scheduler_ = std::make_unique<QtScheduler>(loopContext);
    app->clock_ = std::make_unique<SystemClock>();
    auto connection = X11Connection::open();
    if (!connection) {
        return std::unexpected(connection.error() == X11Error::missingXFixes
                                   ? "Harbex Clipboard needs an X server with the XFixes "
                                     "extension to see copies."
                                   : "Harbex Clipboard couldn’t open the X display.");
    }
    app->connection_ = std::move(*connection);
    app->defaults_ = std::make_unique<FileDefaults>(places.defaultsFile);
    app->codec_ =
        std::make_unique<QtImageCodec>(ClipSettingsStore::load(*app->defaults_).window.keepsImages);

    // The clipboard, then the paste path: typer, activator (through the focus keeper, which is
    // the one that hands the front over), and the paster with its delay.
    X11Connection& x11 = *app->connection_;
    app->pasteboard_ = std::make_unique<X11Pasteboard>(x11);
    app->typer_ = std::make_unique<XTestPasteTyper>(x11);
    app->activator_ = std::make_unique<X11Activator>(x11);
    app->frontmost_ = std::make_unique<X11Frontmost>(x11);
    const ScheduleFunction schedule = scheduleFunction(*app->scheduler_);
    app->focus_ = std::make_unique<ClipPanelFocus>(*app->frontmost_, *app->activator_,
                                                   kPanelFocusSettle, schedule);
    const bool trusted = x11.hasXTest();
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
            // Our own windows make no copies: while the panel or the library has focus, a copy
            // comes from a program in the background, which is unknown.
            if (!front || front->pid == frontmost->ownPid()) return std::nullopt;
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

    // Global shortcuts: grabs on the root window and the modifier watch for the double tap.
    app->registrar_ = std::make_unique<X11HotKeyRegistrar>(x11);
    app->monitor_ = std::make_unique<X11ModifierMonitor>(x11);
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
