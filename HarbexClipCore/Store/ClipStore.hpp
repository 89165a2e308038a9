#pragma once

// The encrypted history on disk: "History.sealed" and sealed image files under "Images", all
// opened with one key kept in the login keyring.
//
// Thread: every operation runs on the caller's thread. load, saveNow, setAsideUnreadable and wipe
// are the engine's (main thread). The image operations may be called from any thread at once:
// the windows read thumbnails and images on worker threads and an export reads images on its
// own. They share nothing but the key, taken under `lock`, and each writes through its own
// temporary file; a read racing a removal of the same image gets a file error. save() only hands
// a snapshot to the store's own serial save thread; the save handler is called on that
// thread. `saveLock` guards the pending snapshot and is never held while encoding, sealing or
// writing. The store must outlive every thread that calls it.

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>

#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Store/ClipKeyStore.hpp"
#include "HarbexClipCore/Store/ClipStoreError.hpp"
#include "HarbexClipCore/Store/SealedBox.hpp"
#include "HarbexClipCore/Support/AtomicFile.hpp"
#include "HarbexClipCore/Support/Clock.hpp"

namespace harbex {

// Replaces a file in one step. The store's writes all go through one, so tests can count, hold
// or fail them; the default is writeFileAtomically with mode 0600.
using SealedFileWriter =
    std::function<FileStatus(const std::filesystem::path&, std::span<const std::uint8_t>)>;

struct ClipStoreOptions {
    NowFunction now = {};  // for the name of a set-aside history; the system clock if empty
    SealedFileWriter writeFile = {};  // writeFileAtomically if empty
};

template <class T>
using ClipStoreResult = std::expected<T, ClipStoreError>;

class ClipStore {
public:
    // The label of the save queue; the thread itself carries a shortened name (Linux allows 15
    // characters), see kSaveThreadName.
    static constexpr std::string_view kSaveQueueLabel = "app.harbexapps.clip.store.save";
    static constexpr const char* kSaveThreadName = "clip.store.save";
    static constexpr std::string_view kHistoryFileName = "History.sealed";
    static constexpr std::string_view kImagesFolderName = "Images";

    // Touches neither the disk nor the keyring. Takes ownership of `keyStore`.
    ClipStore(std::filesystem::path folder, std::unique_ptr<ClipKeyStore> keyStore,
              ClipStoreOptions options = {});
    // Writes a snapshot still waiting, then stops the save thread.
    ~ClipStore();
    ClipStore(const ClipStore&) = delete;
    ClipStore& operator=(const ClipStore&) = delete;

    const std::filesystem::path& folder() const { return folder_; }

    // The stored library, or an empty one when there is no history file yet. Fails with keychain,
    // cannotOpen, badFormat, a file error or a JSON error; never changes the file. The plain
    // document is wiped and freed before this returns.
    ClipStoreResult<ClipLibrary> load();

    // Queues a write of `library` and returns at once. Snapshots that arrive while a write runs
    // replace each other, so at most one more write follows it, holding the newest. Failures go
    // to the save handler.
    void save(ClipLibrary library);
    // Encodes, seals and writes `library` on the caller's thread before returning.
    ClipStoreResult<void> saveNow(const ClipLibrary& library);
    // Blocks until every snapshot handed to save() has been written or has failed.
    void waitForSaves();
    // The same, for at most `limit`; returns whether the saves were done by then.
    bool waitForSaves(std::chrono::milliseconds limit);
    // Called on the save thread with the outcome of each background write, success or failure.
    // Set it before the first save(); the engine hands the outcome on to its own thread.
    void setSaveHandler(std::function<void(const ClipStoreResult<void>&)> handler);

    // Renames "History.sealed" to "History (unreadable <unix seconds>).sealed" (with " 2", " 3"
    // ... before ".sealed" should that name be taken) and returns the new path.
    ClipStoreResult<std::filesystem::path> setAsideUnreadable();

    // One sealed file per image under "Images", and one per thumbnail. `name` is the engine's
    // name for the item's image; one path component, never "." or "..".
    ClipStoreResult<void> writeImage(std::span<const std::uint8_t> bytes, std::string_view name);
    ClipStoreResult<Bytes> readImage(std::string_view name);
    ClipStoreResult<void> writeThumbnail(std::span<const std::uint8_t> bytes,
                                         std::string_view name);
    ClipStoreResult<Bytes> readThumbnail(std::string_view name);
    // Deletes the image and its thumbnail; files that are not there are not an error.
    ClipStoreResult<void> removeImage(std::string_view name);

    // Deletes the history file, the images and the key, and forgets the cached key. A snapshot
    // still waiting is dropped and a write under way is let finish first, so nothing of the old
    // history is written after this returns. Tries every step and reports the first failure.
    ClipStoreResult<void> wipe();

    // Bytes the store keeps for the next save's document between saves (for tests and
    // measuring): at most kDocumentBufferKeptBytes, nothing after a larger save. Any thread.
    static constexpr std::size_t kDocumentBufferKeptBytes = 1u << 20;
    std::size_t documentBufferBytes();

private:
    enum class FileKind { image, thumbnail };

    ClipStoreResult<SealKey> key();
    ClipStoreResult<void> writeSealed(const std::filesystem::path& path,
                                      std::span<const std::uint8_t> plain,
                                      std::string_view associated);
    ClipStoreResult<void> writeSealedFile(const std::filesystem::path& path,
                                          std::span<const std::uint8_t> sealed);
    ClipStoreResult<Bytes> readSealed(const std::filesystem::path& path,
                                      std::string_view associated);
    ClipStoreResult<std::filesystem::path> imagePath(std::string_view name, FileKind kind) const;
    void prepareFolder();
    void runSaveThread();
    void startSaveThreadIfNeeded();

    std::filesystem::path folder_;
    std::unique_ptr<ClipKeyStore> keyStore_;
    std::optional<SealKey> cachedKey_;
    std::mutex lock_;  // guards cachedKey_ and every use of keyStore_
    std::thread saveQueue_;
    std::mutex saveLock_;  // guards the fields below
    std::optional<ClipLibrary> pendingSave_;
    bool draining_ = false;  // true exactly while a drain is queued or running
    bool stopping_ = false;
    std::condition_variable drainQueued_;
    std::condition_variable drainFinished_;
    std::function<void(const ClipStoreResult<void>&)> saveHandler_;

    // The buffer saves encode and seal in, kept between saves only while it is small. Its lock is
    // held while encoding, sealing and writing, which also keeps a saveNow() on the caller's thread
    // and a background write from overlapping.
    std::mutex documentLock_;
    std::string document_;
    std::size_t lastDocumentBytes_ = 0;  // the size of the last document encoded

    ClipStoreOptions options_;
    std::once_flag folderPrepared_;
};

}  // namespace harbex
