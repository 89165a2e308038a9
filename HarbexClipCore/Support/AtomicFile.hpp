#pragma once

#include <sys/types.h>

#include <expected>
#include <filesystem>
#include <span>
#include <string>

#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex {

// A failed file-system call: which operation, on which path, and errno.
struct FileError {
    std::string operation;  // "open", "write", "fsync", "rename", "read", "mkdir", ...
    std::string path;
    int code = 0;  // errno

    bool isNotFound() const;
    // "couldn’t write “/path”: No space left on device"
    std::string description() const;
    friend bool operator==(const FileError&, const FileError&) = default;
};

using FileStatus = std::expected<void, FileError>;

// Replaces `path` with `bytes` in one step: a temporary file beside it opened with O_EXCL,
// written whole, fsync'd, renamed over the target, then the folder fsync'd. The file gets `mode`
// whatever the umask. On any failure the temporary file is removed and the old file stays.
FileStatus writeFileAtomically(const std::filesystem::path& path,
                               std::span<const std::uint8_t> bytes, mode_t mode = 0600);
inline FileStatus writeFileAtomically(const std::filesystem::path& path, std::string_view text,
                                      mode_t mode = 0600) {
    return writeFileAtomically(
        path, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), mode);
}

std::expected<Bytes, FileError> readFile(const std::filesystem::path& path);
// Reads the whole file into `out`, replacing what it held but keeping its memory, and without
// first zero-filling it: for large files read again and again. `out` is left empty on failure.
FileStatus readFileInto(const std::filesystem::path& path, std::string& out);

// Creates the folder and any missing parents; the folders it creates, and the last one in any
// case, get `mode` whatever the umask.
FileStatus createDirectories(const std::filesystem::path& folder, mode_t mode = 0700);

// Removes temporary files that a writer killed mid-write left in `folder`.
void removeStaleTemporaries(const std::filesystem::path& folder);

// True for the names writeFileAtomically uses for its temporary files.
bool isAtomicTemporaryName(std::string_view fileName);

}  // namespace harbex
