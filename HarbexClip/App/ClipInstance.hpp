#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include "HarbexClip/App/ClipCommand.hpp"

namespace harbex {

// One running copy per session: the first start owns the well-known name "app.harbexapps.clip" on
// the session bus and serves commands on it; a later start hands its command over and exits.
// Thread: the Qt event loop's; command signals are emitted from it.
class ClipInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.harbexapps.clip.App")

public:
    static constexpr const char* kServiceName = "app.harbexapps.clip";
    static constexpr const char* kObjectPath = "/app/harbexapps/clip";
    static constexpr const char* kInterface = "app.harbexapps.clip.App";

    enum class Claim {
        primary,     // this process owns the name and serves commands
        handedOver,  // another copy runs and took the command: exit quietly
        noBus,       // no session bus: run alone, without commands from outside
        failed,      // the name is owned, but its owner did not answer
    };

    explicit ClipInstance(QDBusConnection connection = QDBusConnection::sessionBus(),
                          QObject* parent = nullptr);
    ~ClipInstance() override;

    // Takes the name, or passes `command` to the copy that holds it (a login start passes
    // nothing: a copy already running stays as it is). Blocks for at most a few seconds.
    Claim claim(ClipCommand command);

    // The running copy's method for `command`: "ShowLibrary" for `open`, empty for `autostart`.
    static QString methodFor(ClipCommand command);

public slots:
    // The bus methods. Each emits `requested` with its command.
    Q_SCRIPTABLE void ShowPanel();
    Q_SCRIPTABLE void ShowLibrary();
    Q_SCRIPTABLE void TogglePause();
    Q_SCRIPTABLE void ShowSettings();

signals:
    void requested(harbex::ClipCommand command);

private:
    QDBusConnection connection_;
    bool owns_ = false;
};

}  // namespace harbex
