#include "HarbexClip/App/SocketEventPump.hpp"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

namespace harbex {

SocketEventPump::SocketEventPump(int fd, std::function<void()> dispatch,
                                 std::function<void()> afterDispatch, QObject* parent)
    : QObject(parent),
      dispatch_(std::move(dispatch)),
      afterDispatch_(std::move(afterDispatch)),
      notifier_(fd, QSocketNotifier::Read) {
    connect(&notifier_, &QSocketNotifier::activated, this, &SocketEventPump::drain);
    if (auto* dispatcher = QAbstractEventDispatcher::instance()) {
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
            if (notifier_.isEnabled()) dispatch_();
        });
    }
}

void SocketEventPump::drain() {
    dispatch_();
    if (afterDispatch_) afterDispatch_();
}

void SocketEventPump::stop() { notifier_.setEnabled(false); }

}  // namespace harbex
