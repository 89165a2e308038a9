#include "HarbexClipCore/Text/ClipFilter.hpp"

#include "HarbexClipCore/Model/ClipLibrary.hpp"

namespace harbex {

std::unordered_set<Uuid> pinnedOrOnPinboard(const std::vector<Uuid>& pinnedIDs,
                                            const std::vector<Pinboard>& pinboards) {
    std::unordered_set<Uuid> ids(pinnedIDs.begin(), pinnedIDs.end());
    for (const Pinboard& board : pinboards) ids.insert(board.itemIDs.begin(), board.itemIDs.end());
    return ids;
}

}  // namespace harbex
