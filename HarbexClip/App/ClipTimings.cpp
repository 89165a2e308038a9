#include "HarbexClip/App/ClipTimings.hpp"

#include <QEvent>
#include <QPointer>
#include <QTimer>

#include <time.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

namespace harbex {
namespace {

// The process's start in clock ticks since boot: field 22 of /proc/self/stat, counted after
// the parenthesised command name (which may itself hold spaces).
std::optional<long long> startTicks() {
    std::ifstream file("/proc/self/stat");
    std::string line;
    if (!std::getline(file, line)) return std::nullopt;
    const auto close = line.rfind(')');
    if (close == std::string::npos) return std::nullopt;
    std::istringstream fields(line.substr(close + 1));
    std::string field;
    for (int index = 3; index <= 22 && (fields >> field); ++index) {
        if (index != 22) continue;
        long long ticks = 0;
        const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), ticks);
        if (error != std::errc()) return std::nullopt;
        return ticks;
    }
    return std::nullopt;
}

class PaintProbe final : public QObject {
public:
    PaintProbe(QWidget& widget, std::function<void()> then)
        : QObject(&widget), then_(std::move(then)) {
        widget.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && !fired_) {
            fired_ = true;
            // The paint and its flush to the window finish before the loop turns again.
            QTimer::singleShot(0, this, [this, watched] {
                watched->removeEventFilter(this);
                then_();
                deleteLater();
            });
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> then_;
    bool fired_ = false;
};

}  // namespace

bool ClipTimings::enabled() {
    static const bool on = [] {
        const char* value = std::getenv(kEnvironmentVariable);
        return value && *value && std::strcmp(value, "0") != 0;
    }();
    return on;
}

double ClipTimings::sinceProcessStart() {
    static QElapsedTimer fallback = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
    static const std::optional<long long> start = startTicks();
    const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
    timespec now{};
    if (!start || ticksPerSecond <= 0 || ::clock_gettime(CLOCK_BOOTTIME, &now) != 0)
        return double(fallback.nsecsElapsed()) / 1e6;
    const double nowMs = double(now.tv_sec) * 1000 + double(now.tv_nsec) / 1e6;
    return nowMs - double(*start) * 1000 / double(ticksPerSecond);
}

void ClipTimings::report(std::string_view event, double milliseconds, std::size_t items) {
    if (!enabled()) return;
    std::fprintf(stderr, "harbex-timing %.*s %.1f items=%zu\n", int(event.size()), event.data(),
                 milliseconds, items);
    std::fflush(stderr);
}

void ClipTimings::afterNextPaint(QWidget& widget, std::function<void()> then) {
    new PaintProbe(widget, std::move(then));
}

}  // namespace harbex
