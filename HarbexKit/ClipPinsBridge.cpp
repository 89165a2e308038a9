#include "HarbexKit/ClipPinsBridge.hpp"

#include <algorithm>
#include <set>

#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Support/Url.hpp"

namespace harbex {

namespace {

ClipPinsStatus writeResult(const std::expected<SharedDocumentWrite, FileError>& outcome) {
    if (outcome) return {};
    return std::unexpected(
        ClipPinsError{ClipPinsError::Code::writeFailed, outcome.error().description()});
}

}  // namespace

ClipPinsBridge::ClipPinsBridge(DocumentNotifier& notifier, std::filesystem::path folder,
                               NowFunction now)
    : document_(
          std::string(ClipboardPins::kDocumentName), ClipboardPins{},
          [this](const ClipboardPins&) {
              if (onChange_) onChange_();
          },
          notifier, std::move(folder), std::move(now)) {}

ClipPinsStatus ClipPinsBridge::pin(const ClipItem& item) {
    // The shared file is plain text that outlives the copy's lifetime.
    if (item.isSensitive) return std::unexpected(ClipPinsError{ClipPinsError::Code::sensitive, {}});
    std::optional<PinRecord> record = pinRecord(item);
    if (!record) return std::unexpected(ClipPinsError{ClipPinsError::Code::notShareable, {}});
    return writeResult(document_.update([&](ClipboardPins& pins) {
        auto existing = std::find_if(pins.pins.begin(), pins.pins.end(),
                                     [&](const PinRecord& pin) { return pin.id == record->id; });
        if (existing == pins.pins.end()) {
            pins.pins.push_back(*record);
            return;
        }
        // Refreshed in place: what the sibling added to the record stays.
        PinRecord refreshed = *record;
        refreshed.unknown = existing->unknown;
        *existing = std::move(refreshed);
    }));
}

ClipPinsStatus ClipPinsBridge::unpin(const Uuid& id) {
    return writeResult(document_.update([&](ClipboardPins& pins) {
        std::erase_if(pins.pins, [&](const PinRecord& pin) { return pin.id == id; });
    }));
}

std::expected<std::size_t, ClipPinsError> ClipPinsBridge::addMissingPins(
    const std::vector<PinRecord>& records) {
    std::size_t added = 0;
    auto written = writeResult(document_.update([&](ClipboardPins& pins) {
        added = 0;  // the change may run again on a re-read
        std::set<Uuid> present;
        for (const auto& pin : pins.pins) present.insert(pin.id);
        for (const auto& record : records) {
            if (!present.insert(record.id).second) continue;
            pins.pins.push_back(record);
            ++added;
        }
    }));
    if (!written) return std::unexpected(written.error());
    return added;
}

bool ClipPinsBridge::isPinned(const Uuid& id) const {
    const auto& pins = document_.value().pins;
    return std::any_of(pins.begin(), pins.end(),
                       [&](const PinRecord& pin) { return pin.id == id; });
}

std::vector<Uuid> ClipPinsBridge::pinnedIDs() const {
    std::vector<Uuid> ids;
    std::set<Uuid> seen;
    for (const auto& pin : document_.value().pins) {
        if (seen.insert(pin.id).second) ids.push_back(pin.id);
    }
    return ids;
}

std::vector<ClipItem> ClipPinsBridge::pinnedItems() const {
    std::vector<ClipItem> items;
    std::set<Uuid> seen;
    for (const auto& pin : document_.value().pins) {
        if (!seen.insert(pin.id).second) continue;
        if (auto item = clipItem(pin)) items.push_back(std::move(*item));
    }
    return items;
}

void ClipPinsBridge::setOnChange(std::function<void()> onChange) {
    onChange_ = std::move(onChange);
}

std::optional<PinRecord> ClipPinsBridge::pinRecord(const ClipItem& item) {
    PinRecord record;
    record.id = item.id;
    record.appID = item.appID;
    record.appName = item.appName;
    record.date = item.date;
    switch (item.kind) {
        case ClipKind::text:
        case ClipKind::richText:
        case ClipKind::color:
        case ClipKind::code:
            if (!item.text || utf16Length(*item.text) > kMaxSharedTextLength) return std::nullopt;
            record.kind = PinRecord::Kind::text;
            record.text = item.text;
            break;
        case ClipKind::link:
            if (!item.text || !Url::parse(*item.text)) return std::nullopt;
            record.kind = PinRecord::Kind::link;
            record.text = item.text;
            break;
        case ClipKind::file:
            if (!item.filePaths || item.filePaths->empty()) return std::nullopt;
            record.kind = PinRecord::Kind::files;
            record.paths = item.filePaths;
            break;
        case ClipKind::image:
            if (!item.image) return std::nullopt;
            record.kind = PinRecord::Kind::image;
            record.imageType = item.image->type;
            record.width = item.image->width;
            record.height = item.image->height;
            break;
    }
    return record;
}

std::optional<ClipItem> ClipPinsBridge::clipItem(const PinRecord& record) {
    ClipContent content;
    switch (record.kind) {
        case PinRecord::Kind::text:
            if (!record.text) return std::nullopt;
            content.kind = ClipKind::text;
            content.text = record.text;
            break;
        case PinRecord::Kind::link:
            if (!record.text) return std::nullopt;
            content.kind = ClipKind::link;
            content.text = record.text;
            break;
        case PinRecord::Kind::files:
            if (!record.paths || record.paths->empty()) return std::nullopt;
            content.kind = ClipKind::file;
            content.filePaths = record.paths;
            break;
        case PinRecord::Kind::image:
            // The image data is not shared; the copy shows its description.
            content.kind = ClipKind::image;
            content.image = ClipImageInfo{record.imageType.value_or(""), record.width.value_or(0),
                                          record.height.value_or(0), 0, ""};
            break;
    }
    return ClipItem::make(std::move(content), {}, ClipSource{record.appID, record.appName},
                          record.date, ClipSensitivity::ordinary, record.id);
}

}  // namespace harbex
