#pragma once

#include <string>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Text/ClipDayGroups.hpp"

namespace harbex {

// One row of the panel's list: a header, or a copy. `item` points into the model's own copy of
// the history and stays valid until the model next changes its rows.
struct ClipPanelRow {
    enum class Content { header, item };

    std::string id;  // the copy's id, or "header.<group>"
    Content content = Content::header;
    ClipRowGroup group = ClipRowGroup::today;  // the header's group, or the group the copy is in
    const ClipItem* item = nullptr;            // set for items only

    bool isHeader() const { return content == Content::header; }
};

}  // namespace harbex
