// The history on disk: one save (encode, seal, atomic write with fsync of file and folder) and one
// load (read, open, decode) of the synthetic history, plus the sealing alone.

#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>

#include "HarbexClipCore/Store/ClipStore.hpp"
#include "HarbexClipCore/Testing/MemoryKeyStore.hpp"
#include "bench/Support/SyntheticHistory.hpp"

namespace harbex::bench {
namespace {

namespace fs = std::filesystem;

class StoreFolder {
public:
    StoreFolder() {
        std::string pattern = (fs::temp_directory_path() / "harbex-store-bench-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
        store_ = std::make_unique<ClipStore>(
            path_, std::make_unique<MemoryKeyStore>(Bytes(kSealKeySize, 0x42)));
    }
    ~StoreFolder() {
        store_.reset();
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    ClipStore& store() { return *store_; }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
    std::unique_ptr<ClipStore> store_;
};

void saveHistory(benchmark::State& state) {
    const ClipLibrary library = makeSyntheticHistory(static_cast<std::size_t>(state.range(0)));
    StoreFolder folder;
    for (auto _ : state) {
        if (!folder.store().saveNow(library)) state.SkipWithError("save failed");
    }
    state.counters["fileBytes"] =
        static_cast<double>(fs::file_size(folder.path() / "History.sealed"));
}
BENCHMARK(saveHistory)->Arg(1000)->Arg(10000)->ArgNames({"items"})->Unit(benchmark::kMillisecond);

void loadHistory(benchmark::State& state) {
    const ClipLibrary library = makeSyntheticHistory(static_cast<std::size_t>(state.range(0)));
    StoreFolder folder;
    if (!folder.store().saveNow(library)) state.SkipWithError("save failed");
    for (auto _ : state) {
        auto loaded = folder.store().load();
        if (!loaded || loaded->items.size() != library.items.size()) {
            state.SkipWithError("load failed");
        }
        benchmark::DoNotOptimize(loaded);
    }
}
BENCHMARK(loadHistory)->Arg(1000)->Arg(10000)->ArgNames({"items"})->Unit(benchmark::kMillisecond);

// The cipher's share of a save: sealing the encoded document of 10,000 items.
void sealEncodedHistory(benchmark::State& state) {
    const std::string json = serializeJson(encodeJson(makeSyntheticHistory(10000)));
    const SealKey key = *SealKey::fromBytes(Bytes(kSealKeySize, 0x42));
    for (auto _ : state) {
        benchmark::DoNotOptimize(sealFile(
            key, std::span(reinterpret_cast<const std::uint8_t*>(json.data()), json.size()),
            "history"));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * json.size()));
}
BENCHMARK(sealEncodedHistory)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace harbex::bench
