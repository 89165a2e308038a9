// Measures the application as a user meets it, in a private session (Xvfb with openbox, a private
// bus with an unlocked keyring, empty XDG folders): start-up to ready with a sealed history of
// synthetic copies, the global shortcut to the panel on screen, resident memory and idle CPU.
// The program under test reports its own moments (HARBEX_TRACE_TIMINGS=1); memory and CPU are
// read from /proc. Run it through scripts/measure-app; it is not part of the test pass.

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "HarbexClip/Linux/FileDefaults.hpp"
#include "HarbexClip/Linux/SecretServiceKeyStore.hpp"
#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"
#include "HarbexClipCore/Store/ClipStore.hpp"
#include "bench/Support/SyntheticHistory.hpp"
#include "tests/Linux/Keyring/PrivateKeyring.hpp"
#include "tests/Linux/X11/X11TestServer.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

struct Options {
    std::size_t startItems = 1000;
    std::size_t panelItems = 10000;
    int idleSeconds = 60;
    int runs = 5;
};

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// A sealed history of `count` synthetic copies, kept under a key in the session's keyring, and
// settings that keep them all and skip the welcome.
bool seed(std::size_t count) {
    const fs::path folder = fs::path(std::getenv("XDG_DATA_HOME")) / "Harbex Clipboard";
    fs::remove_all(folder);
    ClipStore store(folder, std::make_unique<SecretServiceKeyStore>());
    if (!store.saveNow(bench::makeSyntheticHistory(count))) return false;
    FileDefaults defaults(FileDefaults::standardPath());
    ClipSettings settings;
    settings.maxItems = std::int64_t(count);
    settings.retention = ClipRetention::forever;
    settings.welcomeFinished = true;
    ClipSettingsStore::save(settings, defaults);
    return true;
}

// The application under test with its standard error read line by line.
class RunningApp {
public:
    RunningApp(const std::string& program, const std::string& display) {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0) return;
        process_ = testing_x11::Process({"/bin/sh", "-c", "exec \"$0\" --autostart 2>&1", program},
                                        display, -1, fds[1]);
        ::close(fds[1]);
        fd_ = fds[0];
    }
    ~RunningApp() {
        process_.stop();
        if (fd_ >= 0) ::close(fd_);
    }

    pid_t pid() const { return process_.pid(); }

    // The milliseconds of the next "harbex-timing <event>" line, or nothing by the deadline.
    std::optional<double> next(const std::string& event, std::chrono::milliseconds timeout) {
        const auto deadline = Clock::now() + timeout;
        const std::string prefix = "harbex-timing " + event + " ";
        while (true) {
            for (auto newline = buffer_.find('\n'); newline != std::string::npos;
                 newline = buffer_.find('\n')) {
                const std::string line = buffer_.substr(0, newline);
                buffer_.erase(0, newline + 1);
                if (line.rfind(prefix, 0) == 0)
                    return std::strtod(line.c_str() + prefix.size(), nullptr);
                if (line.rfind("harbex-timing", 0) != 0)
                    std::fprintf(stderr, "  app: %s\n", line.c_str());
            }
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
            if (left.count() <= 0 || fd_ < 0) return std::nullopt;
            pollfd descriptor{fd_, POLLIN, 0};
            if (::poll(&descriptor, 1, int(left.count())) <= 0) continue;
            char chunk[4096];
            const ssize_t n = ::read(fd_, chunk, sizeof chunk);
            if (n <= 0) return std::nullopt;
            buffer_.append(chunk, std::size_t(n));
        }
    }

private:
    testing_x11::Process process_;
    int fd_ = -1;
    std::string buffer_;
};

// Resident memory in MB, from /proc/<pid>/status.
double residentMegabytes(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0) return std::strtod(line.c_str() + 6, nullptr) / 1024;
    }
    return 0;
}

// User plus system CPU time in clock ticks, fields 14 and 15 of /proc/<pid>/stat.
long long cpuTicks(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    std::getline(file, line);
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string field;
    long long total = 0;
    for (int index = 3; index <= 15 && (fields >> field); ++index) {
        if (index >= 14) total += std::strtoll(field.c_str(), nullptr, 10);
    }
    return total;
}

int measure(const std::string& program, const Options& options) {
    testing_x11::TestServer server;
    if (!server.ready()) {
        std::fputs("Xvfb or openbox did not start\n", stderr);
        return 2;
    }
    testing::PrivateKeyring keyring;
    if (const std::string error = keyring.start(); !error.empty()) {
        std::fprintf(stderr, "the keyring did not start: %s\n", error.c_str());
        return 2;
    }
    ::setenv("HARBEX_TRACE_TIMINGS", "1", 1);
    bool allMet = true;
    auto verdict = [&](bool met) {
        allMet = allMet && met;
        return met ? "met" : "MISSED";
    };

    // Start-up to ready.
    if (!seed(options.startItems)) {
        std::fputs("could not seed the history\n", stderr);
        return 2;
    }
    std::vector<double> starts;
    for (int run = 0; run < options.runs; ++run) {
        RunningApp app(program, server.display());
        const auto ready = app.next("ready", 20s);
        if (!ready) {
            std::fputs("the application never became ready\n", stderr);
            return 2;
        }
        starts.push_back(*ready);
    }
    const double start = median(starts);
    std::printf(
        "start-up to ready, %zu copies: median %.0f ms of %d runs (max %.0f)  "
        "target < 500 ms: %s\n",
        options.startItems, start, options.runs, *std::max_element(starts.begin(), starts.end()),
        verdict(start < 500));

    // The panel, memory and idle CPU with the large history.
    if (!seed(options.panelItems)) return 2;
    RunningApp app(program, server.display());
    const auto ready = app.next("ready", 30s);
    if (!ready) return 2;
    std::printf("start-up to ready, %zu copies: %.0f ms\n", options.panelItems, *ready);
    std::this_thread::sleep_for(1500ms);
    std::vector<double> inside;
    std::vector<double> outside;
    for (int run = 0; run < options.runs; ++run) {
        const auto pressed = Clock::now();
        testing_x11::run({"xdotool", "key", "--clearmodifiers", "ctrl+super+v"}, server.display());
        const auto shown = app.next("panel-shown", 10s);
        if (!shown) {
            std::fputs("the panel never showed\n", stderr);
            return 2;
        }
        outside.push_back(millisecondsSince(pressed));
        inside.push_back(*shown);
        std::this_thread::sleep_for(300ms);
        testing_x11::run({"xdotool", "key", "Escape"}, server.display());
        std::this_thread::sleep_for(500ms);
    }
    const double later = median(std::vector<double>(inside.begin() + 1, inside.end()));
    std::printf(
        "shortcut to panel shown, %zu copies: first %.1f ms, later median %.1f ms "
        "(key event to painted); with xdotool's own start: first %.0f ms, later median "
        "%.0f ms  target < 50 ms: %s\n",
        options.panelItems, inside.front(), later, outside.front(),
        median(std::vector<double>(outside.begin() + 1, outside.end())),
        verdict(std::max(inside.front(), later) < 50));

    const double resident = residentMegabytes(app.pid());
    std::printf("resident memory, %zu copies, panel opened: %.1f MB  target < 100 MB: %s\n",
                options.panelItems, resident, verdict(resident < 100));

    std::this_thread::sleep_for(1s);
    const long long before = cpuTicks(app.pid());
    const auto idleStart = Clock::now();
    std::this_thread::sleep_for(std::chrono::seconds(options.idleSeconds));
    const double seconds = millisecondsSince(idleStart) / 1000;
    const double ticks = double(cpuTicks(app.pid()) - before);
    const double percent = ticks / double(::sysconf(_SC_CLK_TCK)) / seconds * 100;
    std::printf("idle CPU over %.0f s: %.3f%% of a core (%.0f ticks)  target < 0.1%%: %s\n",
                seconds, percent, ticks, verdict(percent < 0.1));
    keyring.stop();
    return allMet ? 0 : 1;
}

}  // namespace
}  // namespace harbex

int main(int argc, char* argv[]) {
    harbex::Options options;
    std::string program = HARBEX_APP_PROGRAM;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string name = argv[i];
        const char* value = argv[i + 1];
        if (name == "--app")
            program = value;
        else if (name == "--start-items")
            options.startItems = std::strtoul(value, nullptr, 10);
        else if (name == "--panel-items")
            options.panelItems = std::strtoul(value, nullptr, 10);
        else if (name == "--idle-seconds")
            options.idleSeconds = std::atoi(value);
        else if (name == "--runs")
            options.runs = std::max(2, std::atoi(value));
        else {
            std::fprintf(stderr, "unknown option %s\n", name.c_str());
            return 2;
        }
    }
    return harbex::measure(program, options);
}
