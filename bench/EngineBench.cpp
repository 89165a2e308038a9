// The engine's cost per timer tick and per kept copy: an idle sample, a megabyte text copy, and a
// copy into a full 10,000-item history (merging, pruning, search entries and publishing).

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "HarbexClipCore/Engine/ClipEngine.hpp"
#include "HarbexClipCore/Testing/FixedClock.hpp"
#include "HarbexClipCore/Testing/ManualScheduler.hpp"
#include "HarbexClipCore/Testing/MemoryClipPins.hpp"
#include "HarbexClipCore/Testing/MemoryDefaults.hpp"
#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"
#include "HarbexClipCore/Testing/PngHeaderImageCodec.hpp"
#include "HarbexClipCore/Testing/RecordingActivator.hpp"
#include "HarbexClipCore/Testing/RecordingPasteTyper.hpp"
#include "bench/Support/SyntheticHistory.hpp"

namespace harbex::bench {
namespace {

// An engine without a store (saving is the store's cost, measured in StoreBench), holding the
// synthetic history of `itemCount` copies.
struct EngineRig {
    explicit EngineRig(std::size_t itemCount, std::int64_t maxItems) {
        ClipSettings settings;
        settings.retention = ClipRetention::forever;
        settings.maxItems = maxItems;
        engine.updateSettings(settings);
        engine.sample();
        if (itemCount > 0) engine.adoptImport(makeSyntheticHistory(itemCount), {});
        scheduler.runAll();
    }

    FixedClock clock{kSyntheticNow};
    ManualScheduler scheduler{&clock};
    MemoryPasteboard pasteboard;
    RecordingPasteTyper typer;
    RecordingActivator activator;
    ClipPaster paster{pasteboard,
                      typer,
                      activator,
                      [] { return true; },
                      kPasteKeystrokeDelay,
                      scheduleFunction(scheduler)};
    MemoryClipPins pins;
    MemoryDefaults defaults;
    PngHeaderImageCodec codec;
    ClipEngine engine{
        ClipEngineEnvironment{
            .pasteboard = pasteboard,
            .paster = paster,
            .store = nullptr,
            .pins = &pins,
            .defaults = defaults,
            .frontApp = [] { return std::optional<std::string>("org.example.editor"); },
            .appName = [](std::string_view) { return std::optional<std::string>("Editor"); },
            .now = nowFunction(clock),
            .schedule = scheduleFunction(scheduler),
            .imageCodec = codec,
        },
        ClipEngineOptions{.imageDetection = ClipBackgroundWork::off,
                          .saving = ClipBackgroundWork::off}};
};

void changeCountAlone(benchmark::State& state) {
    MemoryPasteboard pasteboard;
    ClipPasteboard& board = pasteboard;
    for (auto _ : state) benchmark::DoNotOptimize(board.changeCount());
}
BENCHMARK(changeCountAlone);

void sampleWithoutChange(benchmark::State& state) {
    EngineRig rig(1000, 1000);
    rig.pasteboard.copyText("already seen");
    rig.engine.sample();
    for (auto _ : state) rig.engine.sample();
}
BENCHMARK(sampleWithoutChange);

void captureMegabyteText(benchmark::State& state) {
    EngineRig rig(0, 20);
    std::mt19937_64 random(kSyntheticSeed);
    std::string text = syntheticText(random, 1u << 20);
    std::uint64_t counter = 0;
    for (auto _ : state) {
        state.PauseTiming();
        // A different copy each time, so each one is kept rather than merged.
        const std::string stamp = std::to_string(++counter);
        text.replace(0, stamp.size(), stamp);
        rig.pasteboard.copyText(text);
        state.ResumeTiming();
        rig.engine.sample();
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t(text.size()));
}
BENCHMARK(captureMegabyteText)->Unit(benchmark::kMillisecond);

void captureIntoFullHistory(benchmark::State& state) {
    const auto count = std::size_t(state.range(0));
    EngineRig rig(count, std::int64_t(count));
    std::mt19937_64 random(kSyntheticSeed + 1);
    const std::string body = syntheticText(random, 80);
    std::uint64_t counter = 0;
    for (auto _ : state) {
        state.PauseTiming();
        rig.pasteboard.copyText(std::to_string(++counter) + " " + body);
        state.ResumeTiming();
        rig.engine.sample();  // kept at the top; the oldest unprotected copy goes
    }
    state.counters["items"] = double(rig.engine.history()->size());
}
BENCHMARK(captureIntoFullHistory)->Arg(10'000)->Unit(benchmark::kMicrosecond);

void recopyIntoFullHistory(benchmark::State& state) {
    EngineRig rig(10'000, 10'000);
    // The same copy again and again: found by fingerprint and moved to the top.
    std::string text;
    for (std::size_t index = 5000; index < rig.engine.history()->size(); ++index) {
        const ClipItem& item = rig.engine.history()->at(index);
        if (item.kind == ClipKind::text && item.text) {
            text = *item.text;
            break;
        }
    }
    for (auto _ : state) {
        state.PauseTiming();
        rig.pasteboard.copyText(text);
        state.ResumeTiming();
        rig.engine.sample();
    }
}
BENCHMARK(recopyIntoFullHistory)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace harbex::bench
