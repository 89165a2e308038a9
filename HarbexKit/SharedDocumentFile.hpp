#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "HarbexClipCore/Support/AtomicFile.hpp"
#include "HarbexClipCore/Support/Clock.hpp"
#include "HarbexKit/DocumentNotifier.hpp"

namespace harbex {

// What reading a shared document found: a document, or nothing (no file, or a file that could
// not be read and was set aside).
enum class SharedDocumentRead { found, missing };
// What an update did on disk.
enum class SharedDocumentWrite { written, unchanged };

// The file side of SharedDocument, independent of the document's type: the lock, reading,
// setting unreadable files aside, atomic writes and the change notification. The document type
// comes in through two callbacks: `Decode` takes the file's text and says whether it could be
// read; `Apply` returns the text to write, or nothing when the document would not change.
// Thread: the owner's (main) thread; other processes are serialised by the lock file.
class SharedDocumentFile {
public:
    using Decode = std::function<bool(std::string_view text)>;
    using Apply = std::function<std::optional<std::string>(SharedDocumentRead onDisk)>;

    // `notifier` must outlive this object. `now` stamps the names of files set aside.
    SharedDocumentFile(std::string name, std::filesystem::path folder, DocumentNotifier& notifier,
                       NowFunction now);

    const std::string& name() const { return name_; }
    const std::filesystem::path& url() const { return url_; }
    // "<name>.lock" beside the document. It is created once and never replaced or removed, so
    // every process locks the same file.
    const std::filesystem::path& lockURL() const { return lockURL_; }
    // Writes made by this object.
    std::int64_t revision() const { return revision_; }

    // Reads without the lock (writes are atomic, so the old or the new file is seen). A file that
    // does not decode is re-read under the lock and, still unreadable, set aside.
    std::expected<SharedDocumentRead, FileError> read(const Decode& decode) const;

    // Under the lock: reads the file as it stands, asks `apply` for the new text, writes it
    // atomically (0600) and counts the revision; then unlocks and posts the change. When `apply`
    // returns nothing, nothing is written and nothing is posted. A file that cannot be read at
    // all (permissions, I/O) fails the update before `apply` is asked, so nothing is lost.
    std::expected<SharedDocumentWrite, FileError> update(const Decode& decode, const Apply& apply);

    // Moves the document aside as "<name> (unreadable <UTC time stamp>).json" in the same folder
    // and returns where it went. Requires the lock to be held by the caller (or the lock file to
    // be unavailable).
    std::expected<std::filesystem::path, FileError> setAside() const;

    // Calls `observer` when another application posts this document's name.
    [[nodiscard]] Subscription observe(std::function<void()> observer);

private:
    // Reads and decodes; an undecodable file is set aside when `repair` says so.
    enum class Repair { no, yes };
    std::expected<SharedDocumentRead, FileError> readOnce(const Decode& decode, Repair repair,
                                                          bool& unreadable) const;

    std::string name_;
    std::filesystem::path folder_;
    std::filesystem::path url_;
    std::filesystem::path lockURL_;
    DocumentNotifier& notifier_;
    NowFunction now_;
    std::int64_t revision_ = 0;
};

}  // namespace harbex
