#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "HarbexClipCore/Support/Clock.hpp"

namespace harbex {

class FixedClock;

// A scheduler whose time moves only when the test says so. Blocks run in the order of their due
// time, then of scheduling; a block may schedule more, and those run too when due within the
// same `advance`. When given a clock, `advance` moves it to each block's due time first.
class ManualScheduler final : public Scheduler {
public:
    explicit ManualScheduler(FixedClock* clock = nullptr) : clock_(clock) {}

    void schedule(double delaySeconds, std::function<void()> block) override;

    // Moves time forward by `seconds`, running every block that falls due.
    void advance(double seconds);
    // Runs everything pending, however far ahead, including what those blocks schedule.
    void runAll();

    std::size_t pendingCount() const { return tasks_.size(); }
    // Delays of the pending blocks, as asked for, in due order.
    std::vector<double> pendingDelays() const;
    double elapsed() const { return elapsed_; }

private:
    struct Task {
        double due;
        double delay;
        std::uint64_t order;
        std::function<void()> block;
    };
    bool runNextDueBy(double limit);

    FixedClock* clock_;
    double elapsed_ = 0;
    std::uint64_t nextOrder_ = 0;
    std::vector<Task> tasks_;
};

}  // namespace harbex
