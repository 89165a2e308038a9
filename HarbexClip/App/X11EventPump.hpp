#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <functional>

#include "HarbexClip/Linux/X11Connection.hpp"

namespace harbex {

// Feeds our own xcb connection from the Qt event loop: whenever its socket is readable the
// connection dispatches its events, then `afterDispatch` runs (the shell samples the clipboard
// there, so an owner change is seen at once rather than at the next tick). Main thread.
class X11EventPump final : public QObject {
    Q_OBJECT

public:
    // `connection` must outlive the pump.
    X11EventPump(X11Connection& connection, std::function<void()> afterDispatch,
                 QObject* parent = nullptr);

    // Dispatches what is already queued (xcb may have read events while waiting for a reply,
    // which leaves the socket quiet).
    void drain();

private:
    X11Connection& connection_;
    std::function<void()> afterDispatch_;
    QSocketNotifier notifier_;
};

}  // namespace harbex
