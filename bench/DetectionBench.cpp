// Capture's cost per copy: detection of the synthetic history's texts, a megabyte copy, and a
// timer tick when nothing changed.

#include <benchmark/benchmark.h>

#include "HarbexClipCore/Capture/ClipCapture.hpp"
#include "HarbexClipCore/Capture/ClipDetector.hpp"
#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"
#include "HarbexClipCore/Testing/PngHeaderImageCodec.hpp"
#include "bench/Support/SyntheticHistory.hpp"

namespace harbex::bench {
namespace {

std::vector<PasteboardSnapshot> syntheticSnapshots() {
    std::vector<PasteboardSnapshot> snapshots;
    for (const ClipItem& item : makeSyntheticHistory(1000).items) {
        if (!item.text) continue;
        PasteboardSnapshot snapshot;
        snapshot.string = item.text;
        snapshot.rtf = item.rtf;
        snapshot.html = item.html;
        snapshots.push_back(std::move(snapshot));
    }
    return snapshots;
}

void detectSyntheticCopies(benchmark::State& state) {
    const auto snapshots = syntheticSnapshots();
    PngHeaderImageCodec codec;
    const ClipDetector detector(codec);
    DetectionContext context;
    context.now = kSyntheticNow;
    for (auto _ : state) {
        for (const auto& snapshot : snapshots)
            benchmark::DoNotOptimize(detector.detect(snapshot, context));
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(snapshots.size()));
}
BENCHMARK(detectSyntheticCopies)->Unit(benchmark::kMillisecond);

void detectMegabyteCopy(benchmark::State& state) {
    std::mt19937_64 random(kSyntheticSeed);
    PasteboardSnapshot snapshot;
    snapshot.string = syntheticText(random, 1u << 20);
    PngHeaderImageCodec codec;
    const ClipDetector detector(codec);
    DetectionContext context;
    for (auto _ : state) benchmark::DoNotOptimize(detector.detect(snapshot, context));
}
BENCHMARK(detectMegabyteCopy)->Unit(benchmark::kMillisecond);

void sampleWithoutChange(benchmark::State& state) {
    MemoryPasteboard pasteboard;
    pasteboard.copyText("unchanged");
    PngHeaderImageCodec codec;
    ClipCapture capture(pasteboard, codec);
    const SampleInputs inputs;
    capture.sample(inputs);
    for (auto _ : state) benchmark::DoNotOptimize(capture.sample(inputs));
}
BENCHMARK(sampleWithoutChange);

}  // namespace
}  // namespace harbex::bench
