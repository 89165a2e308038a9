#include "HarbexClipCore/Support/Clock.hpp"

#include <chrono>

namespace harbex {

Date SystemClock::now() const {
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return Date::fromUnix(std::chrono::duration<double>(since).count());
}

}  // namespace harbex
