#pragma once

#include <cstdint>
#include <filesystem>

namespace harbex {

// How much disk the history takes, by what it is made of, for the settings window's storage
// breakdown. Sizes are of the sealed files as they lie on disk.
struct ClipStorageUsage {
    std::int64_t historyBytes = 0;  // "History.sealed"
    std::int64_t imageBytes = 0;    // full images under "Images"
    std::int64_t imageCount = 0;
    std::int64_t thumbnailBytes = 0;
    // Histories set aside because they could not be read; kept until the user removes them.
    std::int64_t setAsideBytes = 0;
    std::int64_t setAsideCount = 0;

    std::int64_t totalBytes() const {
        return historyBytes + imageBytes + thumbnailBytes + setAsideBytes;
    }
    bool operator==(const ClipStorageUsage&) const = default;
};

// Measures the store's folder. A missing folder or file counts as empty; links are not followed,
// and files the store did not write (temporaries, strangers) are left out. Never throws; reads
// only the folder listing. Thread: any.
ClipStorageUsage measureStorage(const std::filesystem::path& folder);

}  // namespace harbex
