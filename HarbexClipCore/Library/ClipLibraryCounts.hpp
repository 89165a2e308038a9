#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"
#include "HarbexClipCore/Text/ClipFilter.hpp"

namespace harbex {

// One sidebar row per source application.
struct ClipLibraryApp {
    std::string id;    // bundle identifier
    std::string name;  // display name (the identifier when the copies carry none)
    std::int64_t count = 0;

    friend bool operator==(const ClipLibraryApp&, const ClipLibraryApp&) = default;
};

// The numbers shown in the sidebar.
struct ClipLibraryCounts {
    std::int64_t all = 0;
    std::int64_t today = 0;  // copies dated at or after the start of today
    std::int64_t pinned = 0;
    std::map<ClipFilter, std::int64_t> kinds;  // every filter but `all`, zeros included
    std::map<Uuid, std::int64_t> pinboards;    // copies of each board still in the history
    std::vector<ClipLibraryApp> apps;          // most copies first, then by name

    friend bool operator==(const ClipLibraryCounts&, const ClipLibraryCounts&) = default;

    // Counts over `items` at `now`. Thread: any.
    static ClipLibraryCounts of(const std::vector<ClipItem>& items,
                                const std::vector<Pinboard>& pinboards,
                                const std::unordered_set<Uuid>& pinnedIDs, Date now,
                                const Calendar& calendar);
};

// One run of the list under a heading; no heading when `title` is absent.
struct ClipLibraryGroup {
    std::optional<std::string> title;
    std::vector<ClipItem> items;

    friend bool operator==(const ClipLibraryGroup&, const ClipLibraryGroup&) = default;
};

// The storage figures of the settings' history page, in bytes. Images count their stored size
// (`ClipImageInfo::byteCount`); files count their paths (the files themselves stay where they
// are); text counts plain, rich text and code with their formatting; `other` holds links and
// colours. Custom titles and recognised text count with their copy's bucket.
struct ClipStorageBreakdown {
    std::int64_t images = 0;
    std::int64_t files = 0;
    std::int64_t text = 0;
    std::int64_t other = 0;

    std::int64_t total() const { return images + files + text + other; }
    static ClipStorageBreakdown of(const std::vector<ClipItem>& items);

    friend bool operator==(const ClipStorageBreakdown&, const ClipStorageBreakdown&) = default;
};

}  // namespace harbex
