// The store's save thread. These run under ThreadSanitizer in CI
// (--gtest_filter='ClipStoreSaveQueueTests.*').

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "HarbexClipCore/Store/ClipStore.hpp"
#include "HarbexClipCore/Testing/ScriptedKeyStore.hpp"
#include "tests/Core/Store/StoreTestSupport.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;
using testing::TempFolder;
using testing::textLibrary;

const Bytes kStoredKey(kSealKeySize, 0x33);

// Counts history writes and can hold the first one until the test lets it go.
class WriteGate {
public:
    SealedFileWriter writer(FileStatus (*underlying)(const fs::path&,
                                                     std::span<const std::uint8_t>) = nullptr) {
        return [this, underlying](const fs::path& path, std::span<const std::uint8_t> bytes) {
            {
                std::unique_lock guard(mutex_);
                ++writes_;
                if (holdsFirst_ && writes_ == 1) {
                    entered_ = true;
                    changed_.notify_all();
                    changed_.wait(guard, [this] { return released_; });
                }
            }
            return underlying ? underlying(path, bytes) : writeFileAtomically(path, bytes, 0600);
        };
    }
    void holdFirstWrite() { holdsFirst_ = true; }
    void waitUntilFirstWriteIsHeld() {
        std::unique_lock guard(mutex_);
        changed_.wait(guard, [this] { return entered_; });
    }
    void release() {
        std::lock_guard guard(mutex_);
        released_ = true;
        changed_.notify_all();
    }
    int writes() {
        std::lock_guard guard(mutex_);
        return writes_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool holdsFirst_ = false;
    bool entered_ = false;
    bool released_ = false;
    int writes_ = 0;
};

std::unique_ptr<ClipStore> makeStore(const fs::path& folder, WriteGate& gate,
                                     std::optional<Bytes> key = kStoredKey,
                                     ScriptedKeyStore** keys = nullptr) {
    auto keyStore = std::make_unique<ScriptedKeyStore>(std::move(key));
    if (keys) *keys = keyStore.get();
    return std::make_unique<ClipStore>(folder, std::move(keyStore),
                                       ClipStoreOptions{.writeFile = gate.writer()});
}

TEST(ClipStoreSaveQueueTests, TenSavesDuringAWriteGiveExactlyOneMoreWriteHoldingTheTenth) {
    TempFolder temp;
    WriteGate gate;
    gate.holdFirstWrite();
    auto store = makeStore(temp.path(), gate);
    store->save(textLibrary(1, "first"));
    gate.waitUntilFirstWriteIsHeld();
    std::vector<ClipLibrary> queued;
    for (int index = 1; index <= 10; ++index) {
        queued.push_back(textLibrary(2, "queued " + std::to_string(index)));
        store->save(queued.back());
    }
    gate.release();
    store->waitForSaves();
    EXPECT_EQ(gate.writes(), 2);
    EXPECT_EQ(store->load(), queued.back());
}

TEST(ClipStoreSaveQueueTests, WaitForSavesReturnsOnceTheNewestSnapshotIsOnDisk) {
    TempFolder temp;
    WriteGate gate;
    auto store = makeStore(temp.path(), gate);
    ClipLibrary last;
    for (int round = 0; round < 20; ++round) {
        last = textLibrary(3, "round " + std::to_string(round));
        store->save(last);
        if (round % 5 == 4) {
            store->waitForSaves();
            EXPECT_EQ(store->load(), last);
        }
    }
    EXPECT_LE(gate.writes(), 20);
}

TEST(ClipStoreSaveQueueTests, AStoreThatGoesWritesTheSnapshotStillWaiting) {
    TempFolder temp;
    WriteGate gate;
    gate.holdFirstWrite();
    const ClipLibrary newest = textLibrary(4, "newest");
    {
        auto store = makeStore(temp.path(), gate);
        store->save(textLibrary(1, "first"));
        gate.waitUntilFirstWriteIsHeld();
        store->save(newest);
        gate.release();
    }
    WriteGate reader;
    EXPECT_EQ(makeStore(temp.path(), reader)->load(), newest);
}

FileStatus failingWrite(const fs::path& path, std::span<const std::uint8_t>) {
    return std::unexpected(FileError{"write", path.string(), ENOSPC});
}

TEST(ClipStoreSaveQueueTests, AFailedWriteGoesToTheHandlerAndTheNextSnapshotIsStillWritten) {
    TempFolder temp;
    std::mutex mutex;
    std::vector<ClipStoreError> failures;
    int calls = 0;
    auto keyStore = std::make_unique<ScriptedKeyStore>(kStoredKey);
    ClipStore store(temp.path(), std::move(keyStore),
                    {.writeFile = [&](const fs::path& path, std::span<const std::uint8_t> bytes) {
                        std::lock_guard guard(mutex);
                        return ++calls == 1 ? failingWrite(path, bytes)
                                            : writeFileAtomically(path, bytes, 0600);
                    }});
    store.setSaveHandler([&](const ClipStoreResult<void>& outcome) {
        std::lock_guard guard(mutex);
        if (!outcome) failures.push_back(outcome.error());
    });
    store.save(textLibrary(1, "lost"));
    store.waitForSaves();
    const ClipLibrary kept = textLibrary(1, "kept");
    store.save(kept);
    store.waitForSaves();
    {
        // Not held across load(): the store calls the writer above under its document lock.
        std::lock_guard guard(mutex);
        ASSERT_EQ(failures.size(), 1u);
        ASSERT_TRUE(failures[0].fileError());
        EXPECT_EQ(failures[0].fileError()->code, ENOSPC);
    }
    EXPECT_EQ(store.load(), kept);
}

TEST(ClipStoreSaveQueueTests, KeyringFailuresOnTheSaveThreadAreReportedAndMakeNoKey) {
    TempFolder temp;
    WriteGate gate;
    ScriptedKeyStore* keys = nullptr;
    auto store = makeStore(temp.path(), gate, kStoredKey, &keys);
    keys->readFailure = kKeychainInteractionNotAllowed;
    std::mutex mutex;
    std::vector<ClipStoreError> failures;
    store->setSaveHandler([&](const ClipStoreResult<void>& outcome) {
        std::lock_guard guard(mutex);
        if (!outcome) failures.push_back(outcome.error());
    });
    store->save(textLibrary(1));
    store->waitForSaves();
    std::lock_guard guard(mutex);
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_EQ(failures[0], ClipStoreError::keychain(kKeychainInteractionNotAllowed));
    EXPECT_EQ(keys->writes(), 0);
    EXPECT_EQ(gate.writes(), 0);
}

// The main thread and the save thread both ask for the key the first time; exactly one is made.
TEST(ClipStoreSaveQueueTests, AKeyAskedForFromBothThreadsIsMadeOnce) {
    for (int round = 0; round < 20; ++round) {
        TempFolder temp;
        WriteGate gate;
        ScriptedKeyStore* keys = nullptr;
        auto store = makeStore(temp.path(), gate, std::nullopt, &keys);
        store->save(textLibrary(2));
        ASSERT_TRUE(store->writeImage(bytesOf("png"), "A"));
        store->waitForSaves();
        EXPECT_EQ(keys->writes(), 1);
        EXPECT_TRUE(store->load());
        EXPECT_TRUE(store->readImage("A"));
    }
}

TEST(ClipStoreSaveQueueTests, WipeAfterQueuedSavesLeavesNoHistoryBehind) {
    for (int round = 0; round < 20; ++round) {
        TempFolder temp;
        WriteGate gate;
        ScriptedKeyStore* keys = nullptr;
        auto store = makeStore(temp.path(), gate, kStoredKey, &keys);
        store->save(textLibrary(50, "a"));
        store->save(textLibrary(50, "b"));
        ASSERT_TRUE(store->wipe());
        store->waitForSaves();
        EXPECT_FALSE(fs::exists(temp.path() / "History.sealed"));
        EXPECT_FALSE(keys->stored());
    }
}

TEST(ClipStoreSaveQueueTests, TheSaveThreadCarriesTheQueueName) {
    TempFolder temp;
    std::string threadName;
    auto keyStore = std::make_unique<ScriptedKeyStore>(kStoredKey);
    ClipStore store(temp.path(), std::move(keyStore),
                    {.writeFile = [&](const fs::path& path, std::span<const std::uint8_t> bytes) {
                        char name[16] = {};
                        pthread_getname_np(pthread_self(), name, sizeof name);
                        threadName = name;
                        return writeFileAtomically(path, bytes, 0600);
                    }});
    store.save(textLibrary(1));
    store.waitForSaves();
    EXPECT_EQ(threadName, "clip.store.save");
    EXPECT_TRUE(ClipStore::kSaveQueueLabel.ends_with(threadName));
}

}  // namespace
}  // namespace harbex
