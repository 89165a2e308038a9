#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <string_view>

namespace harbex {

// Start-up and panel timings for scripts/measure-app. With HARBEX_TRACE_TIMINGS=1 in the
// environment each event is one line on standard error:
//   harbex-timing <event> <milliseconds> items=<history size>
// Without it nothing is measured or written. Main thread.
class ClipTimings {
public:
    static constexpr const char* kEnvironmentVariable = "HARBEX_TRACE_TIMINGS";

    // Whether the environment asks for timings (read once).
    static bool enabled();
    // Milliseconds since this process was started by the kernel (10 ms steps), or since the
    // first call when /proc cannot tell.
    static double sinceProcessStart();
    // Writes one line when enabled.
    static void report(std::string_view event, double milliseconds, std::size_t items);
    // Runs `then` once, after `widget` has next been painted and the paint has reached the
    // screen (one turn of the event loop after the paint event).
    static void afterNextPaint(QWidget& widget, std::function<void()> then);
};

}  // namespace harbex
