#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <vector>

#include "HarbexClipCore/Library/ClipExport.hpp"

namespace harbex {

// Why an export or import file did not get written or read. `message` is a sentence for the
// person.
struct ClipTransferError {
    enum class Code { stopped, unwritable, unreadable, refused };
    Code code = Code::refused;
    std::string message;

    friend bool operator==(const ClipTransferError&, const ClipTransferError&) = default;
};

// Everything an export needs, copied on the main thread so the file can be made on another.
struct ClipExportSnapshot {
    ClipLibrary library;
    std::vector<Uuid> pinned;
    Date now;
};

// Writes the export file of `snapshot` to `path` in one step: the file appears whole or not at
// all, and a stopped or failed export leaves whatever was at `path` before. `readImage` is
// called on this thread. Thread: any (meant for a worker).
std::expected<void, ClipTransferError> writeClipExportFile(const std::filesystem::path& path,
                                                           const ClipExportSnapshot& snapshot,
                                                           const ClipImageReader& readImage,
                                                           const ClipProgress& progress);

// Reads and checks the export file at `path`, telling `progress` while it reads. Nothing is
// merged here: hand the file to the library model on the main thread. Thread: any.
std::expected<ClipExportFile, ClipTransferError> readClipExportFile(
    const std::filesystem::path& path, const ClipProgress& progress);

}  // namespace harbex
