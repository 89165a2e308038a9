#include "HarbexClip/App/X11EventPump.hpp"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

namespace harbex {

X11EventPump::X11EventPump(X11Connection& connection, std::function<void()> afterDispatch,
                           QObject* parent)
    : QObject(parent),
      connection_(connection),
      afterDispatch_(std::move(afterDispatch)),
      notifier_(connection.fd(), QSocketNotifier::Read) {
    connect(&notifier_, &QSocketNotifier::activated, this, &X11EventPump::drain);
    // Replies read during a wait leave their events in xcb's queue with a quiet socket; look
    // again whenever the loop is about to sleep.
    if (auto* dispatcher = QAbstractEventDispatcher::instance()) {
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this,
                [this] { connection_.dispatch(); });
    }
}

void X11EventPump::drain() {
    connection_.dispatch();
    if (afterDispatch_) afterDispatch_();
}

}  // namespace harbex
