// The Wayland clipboard watcher against a private headless sway: how soon a copy by wl-copy is
// seen (process start included, and without it through a scripted source), and how long the
// snapshot of a 1 MB text copied by wl-copy takes once the change is seen.
// Run: WaylandClipboardBench --benchmark_filter=...

#include <benchmark/benchmark.h>
#include <poll.h>

#include <filesystem>
#include <fstream>

#include "HarbexClip/Wayland/WaylandPasteboard.hpp"
#include "tests/Linux/Wayland/WaylandTestServer.hpp"

namespace harbex {
namespace {

using namespace testing_wayland;
using Clock = std::chrono::steady_clock;

SwayServer& server() {
    static SwayServer instance;
    return instance;
}

std::unique_ptr<WaylandPasteboard> open() {
    auto pasteboard = WaylandPasteboard::open(server().display().c_str());
    return pasteboard ? std::move(*pasteboard) : nullptr;
}

// Waits on the pasteboard's descriptor as the application's event loop does, until the count
// moves.
void waitForChange(WaylandPasteboard& pasteboard, std::int64_t before) {
    while (pasteboard.changeCount() == before) {
        pollfd descriptor{pasteboard.fd(), POLLIN, 0};
        ::poll(&descriptor, 1, 1000);
    }
}

// wl-copy copying `path`'s contents, left running to serve them.
Process wlCopy(const std::filesystem::path& path) {
    const int input = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    Process process({"wl-copy", "--foreground"}, server().environment(), input);
    ::close(input);
    return process;
}

std::filesystem::path writeInput(const std::string& name, const std::string& data) {
    const auto path = std::filesystem::temp_directory_path() / name;
    std::ofstream(path, std::ios::binary) << data;
    return path;
}

void BM_WlCopyUntilCountChanges(benchmark::State& state) {
    if (!server().ready()) return state.SkipWithError("no headless sway");
    auto pasteboard = open();
    std::vector<Process> tools;
    int i = 0;
    for (auto _ : state) {
        const auto input = writeInput("harbex-bench-copy.txt", "copy " + std::to_string(++i));
        const auto before = pasteboard->changeCount();
        const auto start = Clock::now();
        tools.push_back(wlCopy(input));
        waitForChange(*pasteboard, before);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
}
BENCHMARK(BM_WlCopyUntilCountChanges)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(30);

// The compositor's part alone: a client already connected takes the selection.
void BM_ScriptedCopyUntilCountChanges(benchmark::State& state) {
    if (!server().ready()) return state.SkipWithError("no headless sway");
    auto pasteboard = open();
    ScriptedSource owner(server().display());
    int i = 0;
    for (auto _ : state) {
        const auto before = pasteboard->changeCount();
        const auto start = Clock::now();
        owner.offer({{"text/plain;charset=utf-8", bytesOf("copy " + std::to_string(++i))}});
        waitForChange(*pasteboard, before);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
}
BENCHMARK(BM_ScriptedCopyUntilCountChanges)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(50);

void BM_SnapshotOfOneMegabyteText(benchmark::State& state) {
    if (!server().ready()) return state.SkipWithError("no headless sway");
    auto pasteboard = open();
    const std::string text(1024 * 1024, 'm');
    const auto before = pasteboard->changeCount();
    Process tool = wlCopy(writeInput("harbex-bench-1mb.txt", text));
    waitForChange(*pasteboard, before);
    for (auto _ : state) {
        auto snapshot = pasteboard->snapshot();
        if (!snapshot || snapshot->string != text) return state.SkipWithError("not read whole");
        benchmark::DoNotOptimize(snapshot);
    }
}
BENCHMARK(BM_SnapshotOfOneMegabyteText)->Unit(benchmark::kMillisecond)->Iterations(30);

}  // namespace
}  // namespace harbex
