#include "HarbexClipCore/Testing/ManualScheduler.hpp"

#include <algorithm>
#include <limits>

#include "HarbexClipCore/Testing/FixedClock.hpp"

namespace harbex {

void ManualScheduler::schedule(double delaySeconds, std::function<void()> block) {
    tasks_.push_back(
        Task{elapsed_ + std::max(0.0, delaySeconds), delaySeconds, nextOrder_++, std::move(block)});
}

bool ManualScheduler::runNextDueBy(double limit) {
    auto next = std::min_element(tasks_.begin(), tasks_.end(), [](const Task& a, const Task& b) {
        return a.due != b.due ? a.due < b.due : a.order < b.order;
    });
    if (next == tasks_.end() || next->due > limit) return false;
    Task task = std::move(*next);
    tasks_.erase(next);
    if (task.due > elapsed_) {
        if (clock_) clock_->advance(task.due - elapsed_);
        elapsed_ = task.due;
    }
    task.block();
    return true;
}

void ManualScheduler::advance(double seconds) {
    const double target = elapsed_ + seconds;
    while (runNextDueBy(target)) {
    }
    if (clock_ && target > elapsed_) clock_->advance(target - elapsed_);
    elapsed_ = target;
}

void ManualScheduler::runAll() {
    while (runNextDueBy(std::numeric_limits<double>::infinity())) {
    }
}

std::vector<double> ManualScheduler::pendingDelays() const {
    std::vector<const Task*> ordered;
    for (const auto& task : tasks_) ordered.push_back(&task);
    std::sort(ordered.begin(), ordered.end(), [](const Task* a, const Task* b) {
        return a->due != b->due ? a->due < b->due : a->order < b->order;
    });
    std::vector<double> delays;
    for (const auto* task : ordered) delays.push_back(task->delay);
    return delays;
}

}  // namespace harbex
