// The way back under a private headless sway with the whole program: how long from the
// desktop's key binding running `harbex-clipboard --panel` until the panel has painted, and from
// Return in the panel until the window that was in front has received the copy (the program's
// 120 ms pause before the keystroke included).
// Run: WaylandPanelBench --benchmark_filter=...

#include <benchmark/benchmark.h>
#include <poll.h>

#include <filesystem>

#include "tests/Linux/Keyring/PrivateKeyring.hpp"
#include "tests/Linux/Wayland/WaylandTestServer.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;
using namespace testing_wayland;
using Clock = std::chrono::steady_clock;

// The program running under its own sway with a receiver window in front, kept for the run.
class Session {
public:
    Session()
        : root_(fs::temp_directory_path() / ("harbex-panel-bench-" + std::to_string(::getpid()))) {
        if (!sway_.ready() || !keyring_.start().empty()) return;
        for (const char* folder : {"data", "config", "runtime"})
            fs::create_directories(root_ / folder);
        fs::permissions(root_ / "runtime", fs::perms::owner_all, fs::perm_options::replace);
        environment_ = {{"WAYLAND_DISPLAY", sway_.display()},
                        {"XDG_RUNTIME_DIR", (root_ / "runtime").string()},
                        {"DISPLAY", std::nullopt},
                        {"QT_QPA_PLATFORM", "wayland"},
                        {"XDG_DATA_HOME", (root_ / "data").string()},
                        {"XDG_CONFIG_HOME", (root_ / "config").string()},
                        {"HARBEX_TRACE_TIMINGS", "1"}};
        int errors[2];
        if (::pipe2(errors, O_CLOEXEC) != 0) return;
        app_ = Process({HARBEX_APP_PROGRAM, "--autostart"}, environment_, -1, -1, errors[1]);
        ::close(errors[1]);
        errors_ = errors[0];
        if (!waitForLine("harbex-timing ready")) return;
        copy_ =
            Process({"wl-copy", "--foreground", "pasted by the benchmark"}, sway_.environment());
        auto windowEnvironment = sway_.environment();
        windowEnvironment.emplace_back("QT_QPA_PLATFORM", "wayland");
        received_ = root_ / "received.txt";
        receiver_ = Process({HARBEX_PASTE_RECEIVER, received_.string()}, windowEnvironment);
        // The copy is sampled and the receiver has come up and takes keys.
        std::this_thread::sleep_for(2000ms);
        ready_ = true;
    }
    ~Session() {
        receiver_.stop();
        app_.stop();
        if (errors_ >= 0) ::close(errors_);
        keyring_.stop();
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }

    bool ready() const { return ready_; }

    // Asks for the panel as a key binding would; returns the time until the program reports
    // the panel painted, and the program's own figure from the request's arrival.
    std::pair<double, double> requestPanel() {
        const auto start = Clock::now();
        Process request({HARBEX_APP_PROGRAM, "--panel"}, environment_);
        if (!waitForLine("harbex-timing panel-shown")) return {-1, -1};
        const double total = std::chrono::duration<double>(Clock::now() - start).count();
        request.wait(5000ms);
        const auto at = lines_.rfind("harbex-timing panel-shown ");
        const double inApp = std::atof(lines_.c_str() + at + 26) / 1000;
        consumed_ = lines_.size();
        return {total, inApp};
    }
    void key(const char* name) { testing_x11::run({"wtype", "-k", name}, sway_.environment()); }
    std::uintmax_t receivedSize() {
        std::error_code error;
        const auto size = fs::file_size(received_, error);
        return error ? 0 : size;
    }

private:
    bool waitForLine(const std::string& text) {
        const auto deadline = Clock::now() + 30s;
        while (lines_.find(text, consumed_) == std::string::npos) {
            if (Clock::now() > deadline) return false;
            pollfd descriptor{errors_, POLLIN, 0};
            if (::poll(&descriptor, 1, 100) <= 0) continue;
            char chunk[4096];
            const ssize_t n = ::read(errors_, chunk, sizeof chunk);
            if (n <= 0) return false;
            lines_.append(chunk, std::size_t(n));
        }
        // The line is whole once its newline has arrived.
        while (lines_.find('\n', lines_.find(text, consumed_)) == std::string::npos) {
            char chunk[256];
            const ssize_t n = ::read(errors_, chunk, sizeof chunk);
            if (n <= 0) break;
            lines_.append(chunk, std::size_t(n));
        }
        return true;
    }

    SwayServer sway_;
    testing::PrivateKeyring keyring_;
    fs::path root_;
    fs::path received_;
    ChildEnvironment environment_;
    Process app_;
    Process copy_;
    Process receiver_;
    int errors_ = -1;
    std::string lines_;
    std::size_t consumed_ = 0;
    bool ready_ = false;
};

Session& session() {
    static Session instance;
    return instance;
}

void BM_PanelRequestToPainted(benchmark::State& state) {
    if (!session().ready()) return state.SkipWithError("the program did not start under sway");
    double inApp = 0;
    for (auto _ : state) {
        const auto [total, own] = session().requestPanel();
        if (total < 0) return state.SkipWithError("the panel never painted");
        state.SetIterationTime(total);
        inApp += own;
        state.PauseTiming();
        session().key("Escape");
        std::this_thread::sleep_for(300ms);
        state.ResumeTiming();
    }
    state.counters["in_app_ms"] = benchmark::Counter(inApp * 1000 / double(state.iterations()));
}
BENCHMARK(BM_PanelRequestToPainted)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

void BM_ReturnToReceived(benchmark::State& state) {
    if (!session().ready()) return state.SkipWithError("the program did not start under sway");
    for (auto _ : state) {
        state.PauseTiming();
        session().requestPanel();
        std::this_thread::sleep_for(300ms);
        const auto before = session().receivedSize();
        state.ResumeTiming();
        const auto start = Clock::now();
        session().key("Return");
        if (!eventually([&] { return session().receivedSize() > before; }, 5000ms, {}))
            return state.SkipWithError("the receiver never got the paste");
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        state.PauseTiming();
        std::this_thread::sleep_for(300ms);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ReturnToReceived)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
}  // namespace harbex
