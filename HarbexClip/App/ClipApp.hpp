#pragma once

#include <QObject>

#include <expected>
#include <filesystem>
#include <memory>
#include <string>

#include "HarbexClip/App/CanberraSoundPlayer.hpp"
#include "HarbexClip/App/CopySound.hpp"
#include "HarbexClip/App/DBusDocumentNotifier.hpp"
#include "HarbexClip/App/QtImageCodec.hpp"
#include "HarbexClip/App/QtScheduler.hpp"
#include "HarbexClip/Linux/DesktopEntries.hpp"
#include "HarbexClip/Linux/FileDefaults.hpp"
#include "HarbexClip/Linux/X11Activator.hpp"
#include "HarbexClip/Linux/X11Connection.hpp"
#include "HarbexClip/Linux/X11Frontmost.hpp"
#include "HarbexClip/Linux/X11HotKeyRegistrar.hpp"
#include "HarbexClip/Linux/X11ModifierMonitor.hpp"
#include "HarbexClip/Linux/X11Pasteboard.hpp"
#include "HarbexClip/Linux/XTestPasteTyper.hpp"
#include "HarbexClipCore/Engine/ClipEngine.hpp"
#include "HarbexClipCore/Panel/ClipHotKeys.hpp"
#include "HarbexClipCore/Panel/ClipPanelFocus.hpp"
#include "HarbexClipCore/Paste/ClipPaster.hpp"
#include "HarbexClipCore/Store/ClipStore.hpp"
#include "HarbexKit/ClipPinsBridge.hpp"

namespace harbex {

// The bundle identifier on Linux: the desktop file's name and the D-Bus name.
inline constexpr const char* kAppIdentifier = "app.harbexapps.clip";
// The pause between bringing the target forward and typing Ctrl+V.
inline constexpr double kPasteDelay = 0.12;

// Where the assembled system keeps its files; the defaults are the XDG places.
struct ClipAppPlaces {
    std::filesystem::path historyFolder;  // $XDG_DATA_HOME/Harbex Clipboard
    std::filesystem::path sharedFolder;   // $XDG_DATA_HOME/Harbex/Shared
    std::filesystem::path defaultsFile;   // $XDG_CONFIG_HOME/harbex-clipboard/defaults.json

    static ClipAppPlaces standard();
};

// The assembled system: every long-lived service, built once in dependency order and torn down
// in reverse. Main thread. The shell owns one for the life of the process.
class ClipApp {
public:
    // Opens the X display and builds everything. The hot keys are created but not started, the
    // history is not opened and nothing samples yet: the shell does those in its own order.
    static std::expected<std::unique_ptr<ClipApp>, std::string> assemble(
        QObject* loopContext, ClipAppPlaces places = ClipAppPlaces::standard());
    ~ClipApp();

    X11Connection& connection() { return *connection_; }
    ClipEngine& engine() { return *engine_; }
    ClipPasteboard& pasteboard() { return *pasteboard_; }
    ClipHotKeys& hotKeys() { return *hotKeys_; }
    ClipPanelFocus& focus() { return *focus_; }
    ClipDefaults& defaults() { return *defaults_; }
    ClipFrontmost& frontmost() { return *frontmost_; }
    QtImageCodec& imageCodec() { return *codec_; }
    // The history's store, for the library's export and import of image files.
    ClipStore& store() { return *store_; }
    DesktopEntries& desktopEntries() { return desktopEntries_; }
    ScheduleFunction schedule() { return scheduleFunction(*scheduler_); }

    // The hot keys' actions; set by the shell before it starts them.
    ClipHotKeys::Actions& hotKeyActions() { return hotKeyActions_; }

private:
    ClipApp() = default;

    std::unique_ptr<QtScheduler> scheduler_;
    std::unique_ptr<SystemClock> clock_;
    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<FileDefaults> defaults_;
    std::unique_ptr<QtImageCodec> codec_;
    DesktopEntries desktopEntries_;
    std::unique_ptr<X11Pasteboard> pasteboard_;
    std::unique_ptr<XTestPasteTyper> typer_;
    std::unique_ptr<X11Activator> activator_;
    std::unique_ptr<X11Frontmost> frontmost_;
    std::unique_ptr<ClipPanelFocus> focus_;
    std::unique_ptr<ClipPaster> paster_;
    std::unique_ptr<ClipStore> store_;
    std::unique_ptr<DBusDocumentNotifier> notifier_;
    std::unique_ptr<ClipPinsBridge> pins_;
    std::unique_ptr<ClipEngine> engine_;
    std::unique_ptr<SoundPlayer> sound_;
    std::unique_ptr<CopySound> copySound_;  // plays the copy sound; goes before the engine
    std::unique_ptr<X11HotKeyRegistrar> registrar_;
    std::unique_ptr<X11ModifierMonitor> monitor_;
    ClipHotKeys::Actions hotKeyActions_;
    std::unique_ptr<ClipHotKeys> hotKeys_;
};

}  // namespace harbex
