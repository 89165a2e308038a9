// The copy record and the history: titles of huge texts, the library document's coding, and
// the history operations one capture makes.

#include <benchmark/benchmark.h>

#include "HarbexClipCore/Model/ClipHistory.hpp"
#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "bench/Support/SyntheticHistory.hpp"

namespace harbex::bench {
namespace {

ClipItem megabyteItem(bool ascii) {
    std::mt19937_64 random(kSyntheticSeed);
    std::string text;
    if (ascii) {
        // One long first line: the title scans its whole 4,000-character window.
        while (text.size() < (1u << 20)) text += "lorem ipsum dolor sit amet ";
    } else {
        text = syntheticText(random, 1u << 20);
    }
    return ClipItem::make(ClipContent{.kind = ClipKind::text, .text = std::move(text)}, {}, {},
                          kSyntheticNow, ClipSensitivity::ordinary);
}

void titleOfMegabyteText(benchmark::State& state) {
    const ClipItem item = megabyteItem(state.range(0) == 0);
    for (auto _ : state) benchmark::DoNotOptimize(item.title());
}
BENCHMARK(titleOfMegabyteText)
    ->Arg(0)
    ->Arg(1)
    ->ArgNames({"mixedScripts"})
    ->Unit(benchmark::kMicrosecond);

void subtitleOfMegabyteText(benchmark::State& state) {
    const ClipItem item = megabyteItem(state.range(0) == 0);
    for (auto _ : state) benchmark::DoNotOptimize(item.subtitle());
}
BENCHMARK(subtitleOfMegabyteText)
    ->Arg(0)
    ->Arg(1)
    ->ArgNames({"mixedScripts"})
    ->Unit(benchmark::kMillisecond);

const ClipLibrary& library(std::size_t count) {
    static const ClipLibrary small = makeSyntheticHistory(1'000);
    static const ClipLibrary large = makeSyntheticHistory(10'000);
    return count == 1'000 ? small : large;
}

void encodeLibrary(benchmark::State& state) {
    const ClipLibrary& source = library(std::size_t(state.range(0)));
    std::size_t bytes = 0;
    for (auto _ : state) {
        const std::string text = serializeJson(encodeJson(source));
        bytes = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    state.counters["documentMB"] = double(bytes) / 1e6;
    state.SetBytesProcessed(std::int64_t(state.iterations() * bytes));
}
BENCHMARK(encodeLibrary)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

// What the store does on every save: the text written straight from the records into one string
// kept from the save before, so a steady run of saves touches no fresh memory.
void writeLibraryText(benchmark::State& state) {
    const ClipLibrary& source = library(std::size_t(state.range(0)));
    std::string text;
    for (auto _ : state) {
        text.clear();
        JsonTextWriter writer(text);
        writeJson(writer, source);
        benchmark::DoNotOptimize(text.data());
    }
    state.counters["documentMB"] = double(text.size()) / 1e6;
    state.SetBytesProcessed(std::int64_t(state.iterations() * text.size()));
}
BENCHMARK(writeLibraryText)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

// The same into a new string each time: what a caller without a kept buffer pays.
void writeLibraryTextFresh(benchmark::State& state) {
    const ClipLibrary& source = library(10'000);
    for (auto _ : state) benchmark::DoNotOptimize(jsonText(source));
}
BENCHMARK(writeLibraryTextFresh)->Unit(benchmark::kMillisecond);

// The two halves of encoding, to see where the time goes.
void encodeLibraryValue(benchmark::State& state) {
    const ClipLibrary& source = library(10'000);
    for (auto _ : state) benchmark::DoNotOptimize(encodeJson(source));
}
BENCHMARK(encodeLibraryValue)->Unit(benchmark::kMillisecond);

void serializeLibraryValue(benchmark::State& state) {
    const JsonValue value = encodeJson(library(10'000));
    for (auto _ : state) benchmark::DoNotOptimize(serializeJson(value));
}
BENCHMARK(serializeLibraryValue)->Unit(benchmark::kMillisecond);

void decodeLibrary(benchmark::State& state) {
    const std::string text = serializeJson(encodeJson(library(std::size_t(state.range(0)))));
    for (auto _ : state) {
        auto json = parseJson(text);
        ClipLibrary decoded;
        if (!json || !decodeJson(*json, decoded))
            state.SkipWithError("the document did not decode");
        benchmark::DoNotOptimize(decoded.items.data());
    }
    state.SetBytesProcessed(std::int64_t(state.iterations() * text.size()));
}
BENCHMARK(decodeLibrary)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

// What a capture does to a full history: a new copy at the front, then pruning back to the limit.
void captureIntoFullHistory(benchmark::State& state) {
    ClipHistory history(library(10'000));
    std::mt19937_64 random(1);
    const ClipIDSet pinned;
    Date now = kSyntheticNow;
    for (auto _ : state) {
        now = now + 1.0;
        history.insertAtFront(
            ClipItem::make(ClipContent{.kind = ClipKind::text, .text = syntheticText(random, 80)},
                           {}, {}, now, ClipSensitivity::ordinary));
        benchmark::DoNotOptimize(history.itemWithFingerprint(history.items().front().fingerprint));
        benchmark::DoNotOptimize(history.prune(now, ClipRetention::year, 10'000, pinned));
    }
}
BENCHMARK(captureIntoFullHistory)->Unit(benchmark::kMicrosecond);

// A re-copy of an old item: found by id, moved to the front.
void recopyIntoFullHistory(benchmark::State& state) {
    ClipHistory history(library(10'000));
    std::mt19937_64 random(2);
    for (auto _ : state) {
        ClipItem item = history.items()[5'000 + random() % 4'000];
        item.timesCopied += 1;
        benchmark::DoNotOptimize(history.moveToFront(std::move(item)));
    }
}
BENCHMARK(recopyIntoFullHistory)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace harbex::bench
