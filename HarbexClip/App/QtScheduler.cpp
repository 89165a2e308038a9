#include "HarbexClip/App/QtScheduler.hpp"

#include <QTimer>

#include <algorithm>
#include <cmath>
#include <limits>

namespace harbex {

void QtScheduler::schedule(double delaySeconds, std::function<void()> block) {
    if (!context_) return;
    // Rounded up so "at least" holds; coarse timers are fine for everything the core defers.
    const double milliseconds = std::ceil(std::max(0.0, delaySeconds) * 1000.0);
    const int delay = int(std::min(milliseconds, double(std::numeric_limits<int>::max())));
    QTimer::singleShot(delay, delay >= 1000 ? Qt::CoarseTimer : Qt::PreciseTimer, context_.data(),
                       [block = std::move(block)] { block(); });
}

}  // namespace harbex
