#pragma once

#include "HarbexClipCore/Support/Clock.hpp"

namespace harbex {

// A clock that moves only when told to.
class FixedClock final : public Clock {
public:
    explicit FixedClock(Date start = Date{700000000}) : now_(start) {}
    Date now() const override { return now_; }
    void set(Date date) { now_ = date; }
    void advance(double seconds) { now_ = now_ + seconds; }

private:
    Date now_;
};

}  // namespace harbex
