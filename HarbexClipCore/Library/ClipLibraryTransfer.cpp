#include "HarbexClipCore/Library/ClipLibraryTransfer.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "HarbexClipCore/Support/AtomicFile.hpp"

namespace harbex {

namespace {

constexpr std::size_t kReadChunk = 1 << 20;
// Reading the bytes is the first part of an import; checking them is the rest.
constexpr double kReadShare = 0.6;

ClipTransferError stopped(std::string_view what) {
    return {ClipTransferError::Code::stopped, "The " + std::string(what) + " was stopped."};
}

}  // namespace

std::expected<void, ClipTransferError> writeClipExportFile(const std::filesystem::path& path,
                                                           const ClipExportSnapshot& snapshot,
                                                           const ClipImageReader& readImage,
                                                           const ClipProgress& progress) {
    const auto told = [&](double fraction) { return !progress || progress(fraction); };
    const std::optional<std::string> text =
        exportClips(snapshot.library, snapshot.pinned, readImage, snapshot.now,
                    [&](double fraction) { return told(0.95 * fraction); });
    if (!text) return std::unexpected(stopped("export"));
    // The last chance to stop: after this the file is written whole.
    if (!told(0.95)) return std::unexpected(stopped("export"));
    if (FileStatus written = writeFileAtomically(path, *text, 0644); !written) {
        return std::unexpected(
            ClipTransferError{ClipTransferError::Code::unwritable,
                              "The export couldn’t be written: " + written.error().description()});
    }
    told(1);
    return {};
}

std::expected<ClipExportFile, ClipTransferError> readClipExportFile(
    const std::filesystem::path& path, const ClipProgress& progress) {
    const auto told = [&](double fraction) { return !progress || progress(fraction); };
    std::ifstream file(path, std::ios::binary);
    std::error_code sizeError;
    const std::uintmax_t size = std::filesystem::file_size(path, sizeError);
    if (!file || sizeError) {
        const FileError error{"open", path.string(), sizeError ? sizeError.value() : errno};
        return std::unexpected(
            ClipTransferError{ClipTransferError::Code::unreadable,
                              "The file couldn’t be read: " + error.description()});
    }
    if (!told(0)) return std::unexpected(stopped("import"));
    std::string text;
    text.reserve(static_cast<std::size_t>(size));
    std::string chunk(kReadChunk, '\0');
    while (file) {
        file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        text.append(chunk.data(), static_cast<std::size_t>(file.gcount()));
        const double read = size == 0 ? 1.0 : static_cast<double>(text.size()) / double(size);
        if (!told(kReadShare * std::min(read, 1.0))) return std::unexpected(stopped("import"));
    }
    if (file.bad()) {
        const FileError error{"read", path.string(), errno};
        return std::unexpected(
            ClipTransferError{ClipTransferError::Code::unreadable,
                              "The file couldn’t be read: " + error.description()});
    }
    std::expected<ClipExportFile, ClipImportError> checked = readClipExport(text);
    if (!checked) {
        return std::unexpected(
            ClipTransferError{ClipTransferError::Code::refused, checked.error().message});
    }
    if (!told(1)) return std::unexpected(stopped("import"));
    return std::move(*checked);
}

}  // namespace harbex
