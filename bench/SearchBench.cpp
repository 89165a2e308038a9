// Search over the synthetic history: building the entries, and the cost of one keystroke.
//
// Keystroke figures are per keystroke over a fixed list of two-word queries typed a character at
// a time; `p95_ms` is the 95th percentile of those keystrokes in wall time, `p95_cpu_ms` in the
// thread's CPU time. `Rescore` scores every entry on each keystroke (what a first keystroke or a
// pasted query costs); `Typing` lets the index re-score only the last matches while the query
// grows, as the panel does; `Backspace` types each query whole and measures the keystrokes that
// take it back to its first character.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Text/ClipSearchEntry.hpp"
#include "HarbexClipCore/Text/ClipSearchIndex.hpp"
#include "bench/Support/SyntheticHistory.hpp"

namespace harbex {
namespace {

const ClipLibrary& history(std::size_t count) {
    static std::map<std::size_t, ClipLibrary> made;
    auto found = made.find(count);
    if (found == made.end()) found = made.emplace(count, bench::makeSyntheticHistory(count)).first;
    return found->second;
}

// The bytes of text the entries index: the searched prefix of the text and of the recognised
// text, the link title and the file paths, as the body holds them.
std::size_t indexedTextBytes(const std::vector<ClipItem>& items) {
    std::size_t total = 0;
    for (const ClipItem& item : items) {
        if (item.text) total += characterPrefix(*item.text, 20'000).size();
        if (item.linkTitle) total += item.linkTitle->size();
        if (item.ocrText) total += characterPrefix(*item.ocrText, 20'000).size();
        if (item.filePaths) {
            for (const std::string& path : *item.filePaths) total += path.size() + 1;
        }
    }
    return total;
}

// What people type: words they copied, a word they did not, accents typed plainly, and a
// second word that narrows the first.
const std::vector<std::string> kQueries = {
    "meeting notes", "invoice budget", "deploy error",  "server config",  "customer order",
    "release draft", "cafe review",    "team zebra",    "call tomorrow",  "project status",
    "grusse thanks", "quarter report", "github review", "address number", "update attached",
};

// CPU time of this thread: the machine that runs the benchmarks is shared, and wall time there
// mostly measures the neighbours.
double threadMillis() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

double percentile95(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, values.size() * 95 / 100)];
}

enum class Keys { rescore, typing, backspace };

// One keystroke: the query after it, whether it starts a new query (so nothing is remembered
// from the last one) and whether it counts in the figures.
struct Keystroke {
    std::string query;
    bool startsQuery = false;
    bool measured = true;
};

std::vector<Keystroke> keystrokes(Keys keys) {
    std::vector<Keystroke> out;
    for (const std::string& query : kQueries) {
        for (std::size_t length = 1; length <= query.size(); ++length) {
            out.push_back({query.substr(0, length), length == 1, keys != Keys::backspace});
        }
        if (keys != Keys::backspace) continue;
        for (std::size_t length = query.size() - 1; length >= 1; --length) {
            out.push_back({query.substr(0, length), false, true});
        }
    }
    return out;
}

void keystrokeBench(benchmark::State& state, Keys keys) {
    const ClipLibrary& library = history(static_cast<std::size_t>(state.range(0)));
    ClipSearchIndex index;
    index.rebuild(library.items);
    const Calendar calendar("UTC", "en_US");
    const std::unordered_set<Uuid> pinned;
    const std::vector<Keystroke> typed = keystrokes(keys);
    std::vector<double> millis;
    std::vector<double> cpuMillis;
    std::size_t results = 0;
    for (auto _ : state) {
        for (const Keystroke& key : typed) {
            if (keys == Keys::rescore || key.startsQuery) {
                index.forgetPreviousQuery();
            }
            const auto start = std::chrono::steady_clock::now();
            const double cpuStart = threadMillis();
            const ClipSearchOutcome outcome = index.search(
                {key.query, ClipFilter::all, std::nullopt}, pinned, bench::kSyntheticNow, calendar);
            const double cpu = threadMillis() - cpuStart;
            const auto end = std::chrono::steady_clock::now();
            benchmark::DoNotOptimize(outcome);
            if (!key.measured) continue;
            cpuMillis.push_back(cpu);
            millis.push_back(std::chrono::duration<double, std::milli>(end - start).count());
            results += outcome.results.size();
        }
    }
    state.counters["p95_ms"] = percentile95(millis);
    state.counters["p95_cpu_ms"] = percentile95(cpuMillis);
    state.counters["mean_ms"] = [&] {
        double sum = 0;
        for (double m : millis) sum += m;
        return sum / static_cast<double>(millis.size());
    }();
    state.counters["max_ms"] = *std::max_element(millis.begin(), millis.end());
    state.counters["results_per_keystroke"] =
        static_cast<double>(results) / static_cast<double>(millis.size());
}

void BM_KeystrokeRescore(benchmark::State& state) { keystrokeBench(state, Keys::rescore); }
void BM_KeystrokeTyping(benchmark::State& state) { keystrokeBench(state, Keys::typing); }
void BM_KeystrokeBackspace(benchmark::State& state) { keystrokeBench(state, Keys::backspace); }

void BM_BuildEntries(benchmark::State& state) {
    const ClipLibrary& library = history(static_cast<std::size_t>(state.range(0)));
    ClipSearchIndex index;
    for (auto _ : state) {
        index.rebuild(library.items);
        benchmark::ClobberMemory();
    }
    const double text = static_cast<double>(indexedTextBytes(library.items));
    state.counters["text_MB"] = text / 1e6;
    state.counters["entries_MB"] = static_cast<double>(index.textBytes()) / 1e6;
    state.counters["memory_ratio"] = static_cast<double>(index.textBytes()) / text;
}

BENCHMARK(BM_BuildEntries)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);
// Keystrokes over three history sizes; two passes over the list are enough for a percentile.
void keystrokeSizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(1'000)->Arg(10'000)->Arg(100'000)->Iterations(2)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_KeystrokeRescore)->Apply(keystrokeSizes);
BENCHMARK(BM_KeystrokeTyping)->Apply(keystrokeSizes);
BENCHMARK(BM_KeystrokeBackspace)->Apply(keystrokeSizes);

}  // namespace
}  // namespace harbex
