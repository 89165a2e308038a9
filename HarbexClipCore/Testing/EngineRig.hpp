#pragma once

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "HarbexClipCore/Engine/ClipEngine.hpp"
#include "HarbexClipCore/Paste/ClipPaster.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Store/ClipStore.hpp"
#include "HarbexClipCore/Testing/FixedClock.hpp"
#include "HarbexClipCore/Testing/ManualScheduler.hpp"
#include "HarbexClipCore/Testing/MemoryClipPins.hpp"
#include "HarbexClipCore/Testing/MemoryDefaults.hpp"
#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"
#include "HarbexClipCore/Testing/PngHeaderImageCodec.hpp"
#include "HarbexClipCore/Testing/RecordingActivator.hpp"
#include "HarbexClipCore/Testing/RecordingPasteTyper.hpp"
#include "HarbexClipCore/Testing/ScriptedKeyStore.hpp"

namespace harbex::testing {

// A fresh folder under the temporary folder, removed with everything in it.
class EngineFolder {
public:
    EngineFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "harbex-engine-XXXXXX");
        path_ = ::mkdtemp(pattern.data());
    }
    ~EngineFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    EngineFolder(const EngineFolder&) = delete;
    EngineFolder& operator=(const EngineFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// Blocks handed back from other threads, run when the test says so (the main loop's part).
class MainQueue {
public:
    void post(std::function<void()> block) {
        std::lock_guard guard(lock_);
        blocks_.push_back(std::move(block));
    }
    // Runs what has arrived; returns how many blocks ran.
    int drain() {
        int ran = 0;
        for (;;) {
            std::function<void()> block;
            {
                std::lock_guard guard(lock_);
                if (blocks_.empty()) return ran;
                block = std::move(blocks_.front());
                blocks_.pop_front();
            }
            block();
            ++ran;
        }
    }

private:
    std::mutex lock_;
    std::deque<std::function<void()>> blocks_;
};

struct EngineRigOptions {
    bool withStore = true;
    ClipEngineOptions engine{.saveDelay = 1.0,
                             .expirySweepInterval = 30.0,
                             .imageDetection = ClipBackgroundWork::off,
                             .saving = ClipBackgroundWork::off};
    std::string zone = "Europe/Berlin";
    Date now = Date{700000000};  // where the clock starts
    // Keeps every copy seeded, whatever its age or number (for benchmarks of large histories).
    bool keepsEverything = false;
    SealedFileWriter writeFile = {};
    ClipPins* pins = nullptr;  // the rig's in-memory pins if none
};

// The engine on in-memory doubles and a real store in a temporary folder, on a fixed clock and
// a manual scheduler. The engine is made by `start()` so a test can prepare the folder first.
class EngineRig {
public:
    explicit EngineRig(EngineRigOptions options = {}) : options_(std::move(options)) {}
    ~EngineRig() { engine.reset(); }

    ClipEngine& start() {
        if (options_.withStore && !store) makeStore();
        engine = std::make_unique<ClipEngine>(
            ClipEngineEnvironment{
                .pasteboard = pasteboard,
                .paster = paster,
                .store = store.get(),
                .pins = options_.pins ? options_.pins : &pins,
                .defaults = defaults,
                .frontApp = [this] { return frontApp; },
                .appName = [](std::string_view id) -> std::optional<std::string> {
                    return "Name of " + std::string(id);
                },
                .now = nowFunction(clock),
                .schedule = scheduleFunction(scheduler),
                .imageCodec = codec,
                .calendar = Calendar(options_.zone, "en_GB"),
                .postToMain = [this](std::function<void()> block) { mainQueue.post(block); },
            },
            options_.engine);
        if (options_.keepsEverything) {
            ClipSettings settings = engine->settings().get();
            settings.retention = ClipRetention::forever;
            settings.maxItems = std::numeric_limits<std::int32_t>::max();
            engine->updateSettings(std::move(settings));
        }
        return *engine;
    }

    // Writes `library` as the history found at start, sealed with a key the store then reads.
    void seedHistory(const ClipLibrary& library) {
        auto keyStore = std::make_unique<ScriptedKeyStore>();
        ScriptedKeyStore* writerKeys = keyStore.get();
        ClipStore writer(folder.path(), std::move(keyStore));
        if (!writer.saveNow(library)) std::abort();
        seededKey = writerKeys->stored();
    }

    void makeStore() {
        auto keyStore = std::make_unique<ScriptedKeyStore>(seededKey);
        keys = keyStore.get();
        ClipStoreOptions storeOptions;
        storeOptions.now = nowFunction(clock);
        storeOptions.writeFile = options_.writeFile;
        store = std::make_unique<ClipStore>(folder.path(), std::move(keyStore), storeOptions);
    }

    static ClipLibrary libraryOf(const std::vector<std::string>& texts, Date date) {
        ClipLibrary library;
        for (const std::string& text : texts) {
            ClipContent content;
            content.text = text;
            library.items.push_back(
                ClipItem::make(content, {}, {}, date, ClipSensitivity::ordinary));
        }
        return library;
    }

    // Opens the history with `items` (newest first) in it, as if it had been read at start, and
    // pins `pinned` among them.
    ClipEngine& seed(std::vector<ClipItem> items, const std::vector<Uuid>& pinned = {}) {
        if (!engine) start();
        engine->ensureHistoryOpen(ClipEngine::OpenAttempt::force);
        ClipLibrary library;
        library.items = std::move(items);
        engine->adoptImport(std::move(library), pinned);
        return *engine;
    }
    // Another application copies `item`'s text at its date, then the timer fires; the clock
    // stays where it was.
    void capture(const ClipItem& item) {
        const Date now = clock.now();
        clock.set(item.date);
        copyAndSample(item.text.value_or(""));
        clock.set(now);
    }

    // Another application copies `text`, then the timer fires.
    void copyAndSample(std::string_view text) {
        pasteboard.copyText(text);
        engine->sample();
    }
    // The published texts, newest first. The published history must always be the model's: when
    // it is not, the one text says so, and the test's comparison fails on it.
    std::vector<std::string> texts() const {
        if (engine->history().get() != engine->library().items)
            return {"(the published history differs from the engine's)"};
        std::vector<std::string> out;
        for (const ClipItem& item : engine->history().get()) out.push_back(item.text.value_or(""));
        return out;
    }
    // The history as a fresh store reads it from disk with the same key.
    ClipLibrary libraryOnDisk() {
        auto keyStore = std::make_unique<ScriptedKeyStore>(keys->stored());
        ClipStore reader(folder.path(), std::move(keyStore));
        auto loaded = reader.load();
        return loaded ? *loaded : ClipLibrary{};
    }

    EngineRigOptions options_;
    EngineFolder folder;
    FixedClock clock{options_.now};
    ManualScheduler scheduler{&clock};
    MemoryPasteboard pasteboard;
    RecordingPasteTyper typer;
    RecordingActivator activator;
    bool trusted = true;
    ClipPaster paster{pasteboard,
                      typer,
                      activator,
                      [this] { return trusted; },
                      kPasteKeystrokeDelay,
                      scheduleFunction(scheduler)};
    MemoryClipPins pins;
    MemoryDefaults defaults;
    PngHeaderImageCodec codec;
    MainQueue mainQueue;
    std::optional<std::string> frontApp = std::string("org.example.editor");
    std::optional<Bytes> seededKey;
    ScriptedKeyStore* keys = nullptr;  // owned by the store
    std::unique_ptr<ClipStore> store;
    std::unique_ptr<ClipEngine> engine;
};

}  // namespace harbex::testing
