// The export file of the synthetic history with a megabyte of image bytes per 100 image copies:
// writing it, and reading and merging it back into the same library (every copy already there)
// and into an empty one. `file_mb` is the file's size; the time grows with it, not its square.
#include <benchmark/benchmark.h>

#include <map>
#include <string>

#include "HarbexClipCore/Library/ClipExport.hpp"
#include "bench/Support/SyntheticHistory.hpp"

namespace harbex {
namespace {

const ClipLibrary& history(std::size_t count) {
    static std::map<std::size_t, ClipLibrary> made;
    auto found = made.find(count);
    if (found == made.end()) found = made.emplace(count, bench::makeSyntheticHistory(count)).first;
    return found->second;
}

std::optional<Bytes> imageBytes(const ClipImageInfo&) { return Bytes(10'000, 0x5A); }

const std::string& file(std::size_t count) {
    static std::map<std::size_t, std::string> made;
    auto found = made.find(count);
    if (found == made.end()) {
        found = made.emplace(count, exportClips(history(count), {}, imageBytes, Date{})).first;
    }
    return found->second;
}

void BM_Export(benchmark::State& state) {
    const ClipLibrary& library = history(static_cast<std::size_t>(state.range(0)));
    std::size_t bytes = 0;
    for (auto _ : state) bytes = exportClips(library, {}, imageBytes, Date{}).size();
    state.counters["file_mb"] = static_cast<double>(bytes) / 1e6;
}
BENCHMARK(BM_Export)->Arg(10'000)->Arg(40'000)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_ImportInto(benchmark::State& state) {
    const std::size_t count = static_cast<std::size_t>(state.range(0));
    const bool overlapping = state.range(1) != 0;
    const std::string& text = file(count);
    const ClipLibrary empty;
    const ClipLibrary& existing = overlapping ? history(count) : empty;
    for (auto _ : state) {
        auto read = readClipExport(text);
        if (!read) state.SkipWithError("refused");
        auto merged = mergeClipExport(existing, {}, std::move(*read));
        benchmark::DoNotOptimize(merged.library.items.size());
    }
    state.counters["file_mb"] = static_cast<double>(text.size()) / 1e6;
}
BENCHMARK(BM_ImportInto)
    ->Args({10'000, 0})
    ->Args({40'000, 0})
    ->Args({40'000, 1})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace
}  // namespace harbex
