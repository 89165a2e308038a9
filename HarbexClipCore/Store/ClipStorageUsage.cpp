#include "HarbexClipCore/Store/ClipStorageUsage.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "HarbexClipCore/Store/ClipStore.hpp"

namespace harbex {
namespace fs = std::filesystem;

namespace {

// The size of a regular file that is not a link, or nothing.
std::optional<std::int64_t> regularFileSize(const fs::directory_entry& entry) {
    std::error_code error;
    if (!entry.is_regular_file(error) || entry.is_symlink(error)) return std::nullopt;
    const auto size = entry.file_size(error);
    if (error) return std::nullopt;
    return static_cast<std::int64_t>(size);
}

// Calls `visit` with each entry's name and size; a listing that fails part way ends early.
// Increments through the error_code overload: the plain one throws.
void forEachFile(const fs::path& folder,
                 const std::function<void(const std::string&, std::int64_t)>& visit) {
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        if (const auto size = regularFileSize(*it)) visit(it->path().filename().string(), *size);
    }
}

bool endsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

}  // namespace

ClipStorageUsage measureStorage(const fs::path& folder) {
    ClipStorageUsage usage;
    forEachFile(folder, [&](const std::string& name, std::int64_t size) {
        if (name == ClipStore::kHistoryFileName) {
            usage.historyBytes = size;
        } else if (name.starts_with("History (unreadable ") && endsWith(name, ").sealed")) {
            usage.setAsideBytes += size;
            ++usage.setAsideCount;
        }
    });
    forEachFile(folder / ClipStore::kImagesFolderName,
                [&](const std::string& name, std::int64_t size) {
                    if (endsWith(name, ".thumb.sealed")) {
                        usage.thumbnailBytes += size;
                    } else if (endsWith(name, ".sealed")) {
                        usage.imageBytes += size;
                        ++usage.imageCount;
                    }
                });
    return usage;
}

}  // namespace harbex
