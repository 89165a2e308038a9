#include "HarbexClipCore/Store/ClipStore.hpp"

#include <fcntl.h>  // AT_FDCWD
#include <openssl/crypto.h>
#include <pthread.h>
#include <stdio.h>  // renameat2

#include <cerrno>
#include <cmath>
#include <system_error>

#include "HarbexClipCore/Support/JsonTextWriter.hpp"

namespace harbex {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kHistoryAssociated = "history";

FileError fileError(const char* operation, const fs::path& path, int code) {
    return FileError{operation, path.string(), code};
}

// Wipes a buffer of secrets (key bytes from the keyring, the plain history) when it goes out of
// scope, whatever path leaves it.
template <class Buffer>
struct Cleansed {
    Buffer& buffer;
    ~Cleansed() { OPENSSL_cleanse(buffer.data(), buffer.size()); }
};

ClipStoreResult<void> removeIfPresent(const fs::path& path) {
    if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
        return std::unexpected(fileError("remove", path, errno));
    }
    return {};
}

}  // namespace

ClipStore::ClipStore(fs::path folder, std::unique_ptr<ClipKeyStore> keyStore,
                     ClipStoreOptions options)
    : folder_(std::move(folder)), keyStore_(std::move(keyStore)), options_(std::move(options)) {
    if (!options_.now) options_.now = [] { return SystemClock().now(); };
    if (!options_.writeFile) {
        options_.writeFile = [](const fs::path& path, std::span<const std::uint8_t> bytes) {
            return writeFileAtomically(path, bytes, 0600);
        };
    }
}

ClipStore::~ClipStore() {
    {
        std::lock_guard guard(saveLock_);
        stopping_ = true;
    }
    drainQueued_.notify_all();
    if (saveQueue_.joinable()) saveQueue_.join();
}

// Getting the key. A keyring that fails is never answered with a new key: that would strand the
// history sealed under the old one. Only an answer of "nothing stored" makes a key.
ClipStoreResult<SealKey> ClipStore::key() {
    std::lock_guard guard(lock_);
    if (cachedKey_) return *cachedKey_;
    auto stored = keyStore_->read();
    if (!stored) return std::unexpected(ClipStoreError::keychain(stored.error()));
    if (*stored) {
        Cleansed<Bytes> cleanse{**stored};
        // Bytes of another length are not ours to use or to overwrite: the history stays closed
        // and the item is left for the user to look at, just as with a locked keyring.
        auto existing = SealKey::fromBytes(**stored);
        if (!existing) return std::unexpected(ClipStoreError::keychain(kKeychainDecodeFailed));
        cachedKey_ = *existing;
        return *existing;
    }
    auto fresh = SealKey::random();
    if (!fresh) return std::unexpected(ClipStoreError::cannotOpen());
    if (auto written = keyStore_->write(fresh->bytes); !written) {
        return std::unexpected(ClipStoreError::keychain(written.error()));
    }
    cachedKey_ = *fresh;
    return *fresh;
}

// A writer killed between creating its temporary file and renaming it leaves the file behind;
// the first use of the folder clears them, before any writer of ours can have started one.
void ClipStore::prepareFolder() {
    std::call_once(folderPrepared_, [this] {
        removeStaleTemporaries(folder_);
        removeStaleTemporaries(folder_ / kImagesFolderName);
    });
}

ClipStoreResult<void> ClipStore::writeSealed(const fs::path& path,
                                             std::span<const std::uint8_t> plain,
                                             std::string_view associated) {
    prepareFolder();
    auto sealKey = key();
    if (!sealKey) return std::unexpected(sealKey.error());
    auto sealed = sealFile(*sealKey, plain, associated);
    if (!sealed) return std::unexpected(sealed.error());
    return writeSealedFile(path, *sealed);
}

ClipStoreResult<void> ClipStore::writeSealedFile(const fs::path& path,
                                                 std::span<const std::uint8_t> sealed) {
    if (auto made = createDirectories(path.parent_path(), 0700); !made) {
        return std::unexpected(made.error());
    }
    if (auto written = options_.writeFile(path, sealed); !written) {
        return std::unexpected(written.error());
    }
    return {};
}

ClipStoreResult<Bytes> ClipStore::readSealed(const fs::path& path, std::string_view associated) {
    prepareFolder();
    auto sealed = readFile(path);
    if (!sealed) return std::unexpected(sealed.error());
    if (!hasSealedForm(*sealed)) return std::unexpected(ClipStoreError::badFormat());
    auto sealKey = key();
    if (!sealKey) return std::unexpected(sealKey.error());
    return openFile(*sealKey, *sealed, associated);
}

// The history is read, opened and parsed in a buffer of its own, wiped and given back before
// load returns: once decoded, the plain document is only a second copy of the history, and
// nothing else should be left holding it.
ClipStoreResult<ClipLibrary> ClipStore::load() {
    prepareFolder();
    const fs::path path = folder_ / kHistoryFileName;
    std::string buffer;
    const Cleansed<std::string> cleanse{buffer};
    if (auto read = readFileInto(path, buffer); !read) {
        if (read.error().isNotFound()) return ClipLibrary{};
        return std::unexpected(read.error());
    }
    const std::span sealed(reinterpret_cast<std::uint8_t*>(buffer.data()), buffer.size());
    if (!hasSealedForm(sealed)) return std::unexpected(ClipStoreError::badFormat());
    auto sealKey = key();
    if (!sealKey) return std::unexpected(sealKey.error());
    auto plain = openFileInPlace(*sealKey, sealed, kHistoryAssociated);
    if (!plain) return std::unexpected(plain.error());
    auto json =
        parseJson(std::string_view(reinterpret_cast<const char*>(plain->data()), plain->size()));
    if (!json) return std::unexpected(json.error());
    auto library = decodeJsonAs<ClipLibrary>(*json);
    if (!library) return std::unexpected(library.error());
    return std::move(*library);
}

// Saves encode and seal in the document buffer. A small history keeps the buffer from one save
// to the next; a large one gives it back after each write, so that an idle store holds no copy
// of the history, and the next save makes it again in one piece.
ClipStoreResult<void> ClipStore::saveNow(const ClipLibrary& library) {
    prepareFolder();
    std::lock_guard guard(documentLock_);
    std::string& buffer = document_;
    bool sealed = false;
    const auto release = [&] {
        // Until sealed, the buffer holds the plain document.
        if (!sealed) OPENSSL_cleanse(buffer.data(), buffer.size());
        if (buffer.capacity() <= kDocumentBufferKeptBytes) return;
        // A small document made in the room of a large one keeps only the room it needs.
        if (buffer.size() <= kDocumentBufferKeptBytes / 2) {
            buffer.shrink_to_fit();
        } else {
            std::string().swap(buffer);
        }
    };
    // A buffer given back is made again at the last document's size (and a little more for
    // growth), once, instead of doubling its way there.
    buffer.reserve(lastDocumentBytes_ + lastDocumentBytes_ / 8);
    buffer.assign(kSealedHeaderSize, '\0');
    JsonTextWriter writer(buffer);
    writeJson(writer, library);
    buffer.append(kSealTagSize, '\0');
    lastDocumentBytes_ = buffer.size();
    const std::span file(reinterpret_cast<std::uint8_t*>(buffer.data()), buffer.size());
    auto sealKey = key();
    if (!sealKey) {
        release();
        return std::unexpected(sealKey.error());
    }
    if (auto done = sealFileInPlace(*sealKey, file, kHistoryAssociated); !done) {
        release();
        return std::unexpected(done.error());
    }
    sealed = true;
    auto written = writeSealedFile(folder_ / kHistoryFileName, file);
    release();
    return written;
}

std::size_t ClipStore::documentBufferBytes() {
    std::lock_guard guard(documentLock_);
    // An empty string's own inline room is not memory kept.
    return document_.capacity() > std::string().capacity() ? document_.capacity() : 0;
}

void ClipStore::save(ClipLibrary library) {
    std::unique_lock guard(saveLock_);
    pendingSave_ = std::move(library);
    if (draining_) return;
    draining_ = true;
    if (!saveQueue_.joinable()) {
        try {
            saveQueue_ = std::thread([this] { runSaveThread(); });
        } catch (const std::system_error&) {
            // No thread to be had: write on the caller's thread rather than lose the snapshot.
            ClipLibrary snapshot = std::move(*pendingSave_);
            pendingSave_.reset();
            draining_ = false;
            const auto handler = saveHandler_;
            guard.unlock();
            drainFinished_.notify_all();
            const auto saved = saveNow(snapshot);
            if (handler) handler(saved);
            return;
        }
    }
    drainQueued_.notify_one();
}

void ClipStore::runSaveThread() {
    pthread_setname_np(pthread_self(), kSaveThreadName);
    std::unique_lock guard(saveLock_);
    for (;;) {
        drainQueued_.wait(guard, [this] { return draining_ || stopping_; });
        if (!draining_) return;
        // One drain: write the newest snapshot until none is waiting.
        while (pendingSave_) {
            ClipLibrary snapshot = std::move(*pendingSave_);
            pendingSave_.reset();
            const auto handler = saveHandler_;
            guard.unlock();
            const auto saved = saveNow(snapshot);
            if (handler) handler(saved);
            guard.lock();
        }
        draining_ = false;
        drainFinished_.notify_all();
    }
}

void ClipStore::waitForSaves() {
    std::unique_lock guard(saveLock_);
    drainFinished_.wait(guard, [this] { return !draining_; });
}

bool ClipStore::waitForSaves(std::chrono::milliseconds limit) {
    std::unique_lock guard(saveLock_);
    return drainFinished_.wait_for(guard, limit, [this] { return !draining_; });
}

void ClipStore::setSaveHandler(std::function<void(const ClipStoreResult<void>&)> handler) {
    std::lock_guard guard(saveLock_);
    saveHandler_ = std::move(handler);
}

ClipStoreResult<fs::path> ClipStore::setAsideUnreadable() {
    const fs::path history = folder_ / kHistoryFileName;
    const auto seconds = static_cast<std::int64_t>(std::floor(options_.now().unixSeconds()));
    const std::string stem = "History (unreadable " + std::to_string(seconds);
    for (int attempt = 1;; ++attempt) {
        const std::string suffix = attempt == 1 ? "" : " " + std::to_string(attempt);
        const fs::path target = folder_ / (stem + suffix + ").sealed");
        // Never over an earlier set-aside file: each may be the only copy of some history.
        if (::renameat2(AT_FDCWD, history.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) ==
            0) {
            return target;
        }
        if (errno != EEXIST || attempt >= 1000) {
            return std::unexpected(fileError("rename", history, errno));
        }
    }
}

ClipStoreResult<fs::path> ClipStore::imagePath(std::string_view name, FileKind kind) const {
    const fs::path images = folder_ / kImagesFolderName;
    if (name.empty() || name == "." || name == ".." ||
        name.find_first_of(std::string_view("/\0", 2)) != std::string_view::npos) {
        return std::unexpected(fileError("open", images / std::string(name), EINVAL));
    }
    const std::string suffix = kind == FileKind::image ? ".sealed" : ".thumb.sealed";
    return images / (std::string(name) + suffix);
}

ClipStoreResult<void> ClipStore::writeImage(std::span<const std::uint8_t> bytes,
                                            std::string_view name) {
    auto path = imagePath(name, FileKind::image);
    if (!path) return std::unexpected(path.error());
    return writeSealed(*path, bytes, "image " + std::string(name));
}

ClipStoreResult<Bytes> ClipStore::readImage(std::string_view name) {
    auto path = imagePath(name, FileKind::image);
    if (!path) return std::unexpected(path.error());
    return readSealed(*path, "image " + std::string(name));
}

ClipStoreResult<void> ClipStore::writeThumbnail(std::span<const std::uint8_t> bytes,
                                                std::string_view name) {
    auto path = imagePath(name, FileKind::thumbnail);
    if (!path) return std::unexpected(path.error());
    return writeSealed(*path, bytes, "thumbnail " + std::string(name));
}

ClipStoreResult<Bytes> ClipStore::readThumbnail(std::string_view name) {
    auto path = imagePath(name, FileKind::thumbnail);
    if (!path) return std::unexpected(path.error());
    return readSealed(*path, "thumbnail " + std::string(name));
}

ClipStoreResult<void> ClipStore::removeImage(std::string_view name) {
    for (FileKind kind : {FileKind::image, FileKind::thumbnail}) {
        auto path = imagePath(name, kind);
        if (!path) return std::unexpected(path.error());
        if (auto removed = removeIfPresent(*path); !removed) return removed;
    }
    return {};
}

ClipStoreResult<void> ClipStore::wipe() {
    {
        std::unique_lock guard(saveLock_);
        pendingSave_.reset();
        drainFinished_.wait(guard, [this] { return !draining_; });
    }
    {
        // The last document read or written goes with the history.
        std::lock_guard documentGuard(documentLock_);
        OPENSSL_cleanse(document_.data(), document_.size());
        std::string().swap(document_);
    }
    std::lock_guard guard(lock_);
    std::optional<ClipStoreError> firstFailure;
    if (auto removed = removeIfPresent(folder_ / kHistoryFileName); !removed) {
        firstFailure = removed.error();
    }
    std::error_code error;
    const fs::path images = folder_ / kImagesFolderName;
    fs::remove_all(images, error);
    if (error && !firstFailure) firstFailure = fileError("remove", images, error.value());
    if (auto removed = keyStore_->remove(); !removed && !firstFailure) {
        firstFailure = ClipStoreError::keychain(removed.error());
    }
    cachedKey_.reset();
    if (firstFailure) return std::unexpected(*firstFailure);
    return {};
}

}  // namespace harbex
