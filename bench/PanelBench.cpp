// One keystroke in the quick panel over the synthetic history: the search, the grouped rows and
// the kept selection, exactly what `ClipPanelModel::setQuery` does between two key presses. The
// queries are typed one character at a time; `p95_ms` is the 95th percentile keystroke in wall
// time and `p95_cpu_ms` in the thread's CPU time (the figure that holds on a busy machine). Also
// measured: opening the panel (clearing the query lists every copy) and moving the
// selection down once.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "HarbexClipCore/Panel/ClipPanelModel.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"
#include "bench/Support/PanelOverHistory.hpp"
#include "bench/Support/SyntheticHistory.hpp"

namespace harbex {
namespace {

const std::vector<std::string> kQueries = {
    "meeting notes", "invoice budget", "deploy error", "server config", "customer order",
    "release draft", "cafe review",    "team zebra",   "call tomorrow", "notes last week",
};

double threadCpuMillis() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

double percentile95(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() * 95 / 100];
}

using Panel = bench::PanelOverHistory;

Panel& panel(std::size_t count) {
    static std::map<std::size_t, std::unique_ptr<Panel>> made;
    auto& slot = made[count];
    if (!slot) slot = std::make_unique<Panel>(count);
    return *slot;
}

void BM_PanelKeystroke(benchmark::State& state) {
    Panel& p = panel(static_cast<std::size_t>(state.range(0)));
    std::vector<double> millis;
    std::vector<double> cpuMillis;
    std::size_t rows = 0;
    for (auto _ : state) {
        for (const std::string& query : kQueries) {
            p.model->setQuery({});
            for (std::size_t length = 1; length <= query.size(); ++length) {
                const double cpuStart = threadCpuMillis();
                const auto start = std::chrono::steady_clock::now();
                p.model->setQuery(query.substr(0, length));
                const auto end = std::chrono::steady_clock::now();
                cpuMillis.push_back(threadCpuMillis() - cpuStart);
                millis.push_back(std::chrono::duration<double, std::milli>(end - start).count());
                rows += p.model->rows().size();
            }
        }
    }
    state.counters["p95_cpu_ms"] = percentile95(cpuMillis);
    std::ranges::sort(millis);
    state.counters["p95_ms"] = millis[millis.size() * 95 / 100];
    state.counters["max_ms"] = millis.back();
    state.counters["mean_ms"] = [&] {
        double total = 0;
        for (double m : millis) total += m;
        return total / static_cast<double>(millis.size());
    }();
    state.counters["rows_per_keystroke"] =
        static_cast<double>(rows) / static_cast<double>(millis.size());
}
BENCHMARK(BM_PanelKeystroke)->Arg(10'000)->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_PanelOpen(benchmark::State& state) {
    Panel& p = panel(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        p.model->setQuery("x");
        p.model->open(ClipTargetApp{1, "org.gnome.TextEditor", "Text Editor"});
        benchmark::DoNotOptimize(p.model->rows().size());
    }
}
BENCHMARK(BM_PanelOpen)->Arg(10'000)->Unit(benchmark::kMillisecond);

void BM_PanelMoveDown(benchmark::State& state) {
    Panel& p = panel(static_cast<std::size_t>(state.range(0)));
    p.model->open(std::nullopt);
    for (auto _ : state) {
        p.model->handle(ClipPanelKey::Kind::down);
        benchmark::DoNotOptimize(p.model->selectedID());
    }
}
BENCHMARK(BM_PanelMoveDown)->Arg(10'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace harbex
