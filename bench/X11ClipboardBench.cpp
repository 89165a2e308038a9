// The X11 clipboard watcher against a private Xvfb: how soon a copy by another tool is seen,
// how long a 20 MB copy takes to read, and what an idle watcher costs in CPU.
// Run: X11ClipboardBench --benchmark_filter=... (the idle case runs for a minute).

#include <benchmark/benchmark.h>
#include <poll.h>
#include <sys/resource.h>

#include "HarbexClip/Linux/X11Pasteboard.hpp"
#include "tests/Linux/X11/X11TestServer.hpp"

namespace harbex {
namespace {

using namespace testing_x11;
using Clock = std::chrono::steady_clock;

TestServer& server() {
    static TestServer instance;
    return instance;
}

std::unique_ptr<X11Connection> open() {
    auto connection = X11Connection::open(server().display().c_str());
    return connection ? std::move(*connection) : nullptr;
}

// Waits on the connection as the application's event loop does, until the count moves.
void waitForChange(X11Connection& connection, X11Pasteboard& pasteboard, std::int64_t before) {
    while (pasteboard.changeCount() == before) {
        pollfd descriptor{connection.fd(), POLLIN, 0};
        ::poll(&descriptor, 1, 1000);
    }
}

void BM_CopyUntilCountChanges(benchmark::State& state) {
    if (!server().ready()) return state.SkipWithError("no Xvfb");
    auto connection = open();
    X11Pasteboard pasteboard(*connection);
    ScriptedOwner owner(server().display());
    int i = 0;
    for (auto _ : state) {
        const auto before = pasteboard.changeCount();
        const auto start = Clock::now();
        owner.offer({{"UTF8_STRING", bytesOf("copy " + std::to_string(++i))}});
        waitForChange(*connection, pasteboard, before);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
}
BENCHMARK(BM_CopyUntilCountChanges)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);

// The same through xclip, process start included: the figure a user would see.
void BM_XclipCopyUntilCountChanges(benchmark::State& state) {
    if (!server().ready()) return state.SkipWithError("no Xvfb");
    auto connection = open();
    X11Pasteboard pasteboard(*connection);
    std::vector<Process> tools;
    for (auto _ : state) {
        const auto before = pasteboard.changeCount();
        const auto start = Clock::now();
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0) return state.SkipWithError("pipe");
        tools.emplace_back(std::vector<std::string>{"xclip", "-selection", "clipboard", "-i"},
                           server().display(), fds[0]);
        ::close(fds[0]);
        [[maybe_unused]] auto written = ::write(fds[1], "text", 4);
        ::close(fds[1]);
        waitForChange(*connection, pasteboard, before);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
}
BENCHMARK(BM_XclipCopyUntilCountChanges)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);

void BM_Read20MegabyteCopy(benchmark::State& state) {
    if (!server().ready()) return state.SkipWithError("no Xvfb");
    auto writerConnection = open();
    auto readerConnection = open();
    X11Pasteboard reader(*readerConnection);
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        X11Pasteboard pasteboard(*writerConnection);
        pasteboard.write(ClipPayload{.text = std::string(20 * 1024 * 1024, 'z')}, std::nullopt);
        while (!stop) {
            pollfd descriptor{writerConnection->fd(), POLLIN, 0};
            ::poll(&descriptor, 1, 10);
            writerConnection->dispatch();
        }
    });
    while (reader.changeCount() == 0) std::this_thread::sleep_for(1ms);
    std::size_t size = 0;
    for (auto _ : state) {
        auto snapshot = reader.snapshot();
        size = snapshot && snapshot->string ? snapshot->string->size() : 0;
    }
    stop = true;
    writer.join();
    state.counters["bytes"] = double(size);
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(size));
}
BENCHMARK(BM_Read20MegabyteCopy)->Unit(benchmark::kMillisecond)->Iterations(5);

// An idle watcher sampling twice a second, as the application does, for `seconds`.
void BM_IdleWatcherCpu(benchmark::State& state) {
    if (!server().ready()) return state.SkipWithError("no Xvfb");
    auto connection = open();
    X11Pasteboard pasteboard(*connection);
    const auto seconds = state.range(0);
    double cpu = 0;
    for (auto _ : state) {
        rusage before{};
        ::getrusage(RUSAGE_SELF, &before);
        const auto end = Clock::now() + std::chrono::seconds(seconds);
        while (Clock::now() < end) {
            pollfd descriptor{connection->fd(), POLLIN, 0};
            ::poll(&descriptor, 1, 500);
            benchmark::DoNotOptimize(pasteboard.changeCount());
        }
        rusage after{};
        ::getrusage(RUSAGE_SELF, &after);
        auto micros = [](const timeval& t) { return t.tv_sec * 1e6 + t.tv_usec; };
        cpu = (micros(after.ru_utime) - micros(before.ru_utime) + micros(after.ru_stime) -
               micros(before.ru_stime)) /
              (seconds * 1e6);
    }
    state.counters["cpu_percent_of_core"] = cpu * 100;
}
BENCHMARK(BM_IdleWatcherCpu)->Arg(60)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
}  // namespace harbex
