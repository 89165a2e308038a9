#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "HarbexClipCore/Model/ClipPins.hpp"
#include "HarbexKit/ClipboardPins.hpp"
#include "HarbexKit/SharedDocument.hpp"

namespace harbex {

// The pins as the family shares them: copies of the history turned into records of
// "clipboard-pins.json", and records (some made by the sibling application) turned back into
// copies. Thread: the owner's (main) thread.
class ClipPinsBridge final : public ClipPins {
public:
    // Longer texts are not shared: the sibling measures in UTF-16 code units.
    static constexpr std::size_t kMaxSharedTextLength = 200'000;

    // Opens the pins document in `folder` (the family's shared folder unless a test says
    // otherwise). `notifier` must outlive the bridge.
    explicit ClipPinsBridge(DocumentNotifier& notifier,
                            std::filesystem::path folder = sharedDocumentsFolder(),
                            NowFunction now = {});

    ClipPinsStatus pin(const ClipItem& item) override;
    ClipPinsStatus unpin(const Uuid& id) override;
    bool isPinned(const Uuid& id) const override;
    std::vector<Uuid> pinnedIDs() const override;
    std::vector<ClipItem> pinnedItems() const override;
    void setOnChange(std::function<void()> onChange) override;
    // Appends the records whose ids are not pinned yet, in their order, in one write; returns how
    // many were added (none: nothing is written).
    std::expected<std::size_t, ClipPinsError> addMissingPins(const std::vector<PinRecord>& records);

    const SharedDocument<ClipboardPins>& document() const { return document_; }

    // The record shared for `item`, or nothing when the pins cannot hold it (a text over
    // kMaxSharedTextLength, a link that does not parse as a URL, a file copy without paths, an
    // image without its description). Formatting, details, counters, titles, OCR text and the
    // sensitive mark stay private.
    static std::optional<PinRecord> pinRecord(const ClipItem& item);
    // The copy a record stands for, of the matching kind, with its fingerprint; nothing when the
    // record lacks what its kind needs (a text pin without text).
    static std::optional<ClipItem> clipItem(const PinRecord& record);

private:
    SharedDocument<ClipboardPins> document_;
    std::function<void()> onChange_;
};

}  // namespace harbex
