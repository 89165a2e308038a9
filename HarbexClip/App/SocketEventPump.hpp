#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <functional>

namespace harbex {

// Feeds one of our own connections (the xcb connection, the Wayland pasteboard) from the Qt
// event loop: whenever its descriptor is readable `dispatch` runs, then `afterDispatch` (the
// shell samples the clipboard there, so a change is seen at once rather than at the next tick).
// `dispatch` also runs whenever the loop is about to sleep, for events a library read while
// waiting for a reply (which leaves the descriptor quiet) and requests still to be flushed.
// Main thread.
class SocketEventPump final : public QObject {
    Q_OBJECT

public:
    // `fd` must stay open for the life of the pump.
    SocketEventPump(int fd, std::function<void()> dispatch, std::function<void()> afterDispatch,
                    QObject* parent = nullptr);

    // Dispatches, then runs `afterDispatch`.
    void drain();
    // Stops watching the descriptor (a connection that has ended).
    void stop();

private:
    std::function<void()> dispatch_;
    std::function<void()> afterDispatch_;
    QSocketNotifier notifier_;
};

}  // namespace harbex
