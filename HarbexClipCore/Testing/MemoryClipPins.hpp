#pragma once

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "HarbexClipCore/Model/ClipPins.hpp"

namespace harbex {

// Pins kept in memory, for engine and library tests. `changeFromOutside` plays the sibling
// application; `failNextWith` makes the next pin or unpin fail as the shared file could.
class MemoryClipPins final : public ClipPins {
public:
    ClipPinsStatus pin(const ClipItem& item) override {
        if (auto failure = std::exchange(nextFailure_, std::nullopt)) {
            return std::unexpected(*failure);
        }
        if (item.isSensitive)
            return std::unexpected(ClipPinsError{ClipPinsError::Code::sensitive, {}});
        ++writeCount_;
        auto existing = find(item.id);
        if (existing != items_.end()) {
            *existing = item;
        } else {
            items_.push_back(item);
        }
        return {};
    }

    ClipPinsStatus unpin(const Uuid& id) override {
        if (auto failure = std::exchange(nextFailure_, std::nullopt)) {
            return std::unexpected(*failure);
        }
        if (std::erase_if(items_, [&](const ClipItem& item) { return item.id == id; }) > 0) {
            ++writeCount_;
        }
        return {};
    }

    bool isPinned(const Uuid& id) const override { return find(id) != items_.end(); }

    std::vector<Uuid> pinnedIDs() const override {
        std::vector<Uuid> ids;
        ids.reserve(items_.size());
        for (const auto& item : items_) ids.push_back(item.id);
        return ids;
    }

    std::vector<ClipItem> pinnedItems() const override { return items_; }

    void setOnChange(std::function<void()> onChange) override { onChange_ = std::move(onChange); }

    // Replaces the pins as another application would, and tells the owner.
    void changeFromOutside(std::vector<ClipItem> items) {
        items_ = std::move(items);
        if (onChange_) onChange_();
    }
    void failNextWith(ClipPinsError error) { nextFailure_ = std::move(error); }
    // Successful pins and unpins that changed something.
    int writeCount() const { return writeCount_; }

private:
    std::vector<ClipItem>::iterator find(const Uuid& id) {
        return std::find_if(items_.begin(), items_.end(),
                            [&](const ClipItem& item) { return item.id == id; });
    }
    std::vector<ClipItem>::const_iterator find(const Uuid& id) const {
        return std::find_if(items_.begin(), items_.end(),
                            [&](const ClipItem& item) { return item.id == id; });
    }

    std::vector<ClipItem> items_;
    std::function<void()> onChange_;
    std::optional<ClipPinsError> nextFailure_;
    int writeCount_ = 0;
};

}  // namespace harbex
