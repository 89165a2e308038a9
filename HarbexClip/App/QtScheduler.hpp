#pragma once

#include <QObject>
#include <QPointer>

#include "HarbexClipCore/Support/Clock.hpp"

namespace harbex {

// The core's deferrals on the Qt event loop of the thread that owns `context`. Blocks scheduled
// after `context` is destroyed, or still pending then, never run. Thread: the owner's.
class QtScheduler final : public Scheduler {
public:
    explicit QtScheduler(QObject* context) : context_(context) {}

    void schedule(double delaySeconds, std::function<void()> block) override;

private:
    QPointer<QObject> context_;
};

}  // namespace harbex
