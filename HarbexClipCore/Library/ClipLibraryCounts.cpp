#include "HarbexClipCore/Library/ClipLibraryCounts.hpp"

#include <algorithm>
#include <unordered_map>

namespace harbex {

ClipLibraryCounts ClipLibraryCounts::of(const std::vector<ClipItem>& items,
                                        const std::vector<Pinboard>& pinboards,
                                        const std::unordered_set<Uuid>& pinnedIDs, Date now,
                                        const Calendar& calendar) {
    ClipLibraryCounts counts;
    const Date today = calendar.startOfDay(now);
    for (const ClipFilter filter : allCases<ClipFilter>()) {
        if (filter != ClipFilter::all) counts.kinds[filter] = 0;
    }
    std::unordered_set<Uuid> present;
    present.reserve(items.size());
    std::unordered_map<std::string, std::size_t> appRows;
    for (const ClipItem& item : items) {
        present.insert(item.id);
        ++counts.all;
        if (item.date >= today) ++counts.today;
        const bool pinned = pinnedIDs.contains(item.id);
        if (pinned) ++counts.pinned;
        for (auto& [filter, count] : counts.kinds) {
            if (admits(filter, item.kind, pinned ? ClipPinState::pinned : ClipPinState::unpinned)) {
                ++count;
            }
        }
        if (!item.appID) continue;
        auto [row, added] = appRows.try_emplace(*item.appID, counts.apps.size());
        if (added) counts.apps.push_back({*item.appID, item.appName.value_or(*item.appID), 0});
        ++counts.apps[row->second].count;
    }
    for (const Pinboard& board : pinboards) {
        counts.pinboards[board.id] = std::ranges::count_if(
            board.itemIDs, [&](const Uuid& id) { return present.contains(id); });
    }
    std::ranges::stable_sort(counts.apps, [](const ClipLibraryApp& a, const ClipLibraryApp& b) {
        if (a.count != b.count) return a.count > b.count;
        return a.name < b.name;
    });
    return counts;
}

ClipStorageBreakdown ClipStorageBreakdown::of(const std::vector<ClipItem>& items) {
    ClipStorageBreakdown out;
    for (const ClipItem& item : items) {
        std::int64_t bytes = 0;
        if (item.text) bytes += static_cast<std::int64_t>(item.text->size());
        if (item.rtf) bytes += static_cast<std::int64_t>(item.rtf->size());
        if (item.html) bytes += static_cast<std::int64_t>(item.html->size());
        if (item.customTitle) bytes += static_cast<std::int64_t>(item.customTitle->size());
        if (item.ocrText) bytes += static_cast<std::int64_t>(item.ocrText->size());
        if (item.filePaths) {
            for (const auto& path : *item.filePaths)
                bytes += static_cast<std::int64_t>(path.size());
        }
        switch (item.kind) {
            case ClipKind::image:
                out.images += bytes + (item.image ? item.image->byteCount : 0);
                break;
            case ClipKind::file: out.files += bytes; break;
            case ClipKind::text:
            case ClipKind::richText:
            case ClipKind::code: out.text += bytes; break;
            case ClipKind::link:
            case ClipKind::color: out.other += bytes; break;
        }
    }
    return out;
}

}  // namespace harbex
