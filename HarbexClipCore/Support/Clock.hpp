#pragma once

#include <functional>

#include "HarbexClipCore/Support/Date.hpp"

namespace harbex {

// Where "now" comes from. Injected everywhere so that tests move time by hand.
class Clock {
public:
    virtual ~Clock() = default;
    virtual Date now() const = 0;
};

class SystemClock final : public Clock {
public:
    Date now() const override;
};

// Deferral onto the owner's loop (the Qt event loop in the application, a ManualScheduler in
// tests). Nothing in the core sleeps; late work guards itself with a generation counter.
class Scheduler {
public:
    virtual ~Scheduler() = default;
    // Runs `block` on the calling thread's loop after at least `delaySeconds`.
    virtual void schedule(double delaySeconds, std::function<void()> block) = 0;
};

using NowFunction = std::function<Date()>;
using ScheduleFunction = std::function<void(double, std::function<void()>)>;

inline NowFunction nowFunction(const Clock& clock) {
    return [&clock] { return clock.now(); };
}
inline ScheduleFunction scheduleFunction(Scheduler& scheduler) {
    return [&scheduler](double delay, std::function<void()> block) {
        scheduler.schedule(delay, std::move(block));
    };
}

}  // namespace harbex
