#include "HarbexClipCore/Testing/MemoryClipEngine.hpp"

#include <algorithm>

namespace harbex {

MemoryClipEngine::MemoryClipEngine(FixedClock& clock, ManualScheduler& scheduler)
    : clock(clock),
      scheduler(scheduler),
      paster(
          pasteboard, typer, activator, [this] { return isTrusted; }, kPasteKeystrokeDelay,
          scheduleFunction(scheduler)) {}

void MemoryClipEngine::setItems(std::vector<ClipItem> items) {
    model.setItems(std::move(items));
    publish();
}

void MemoryClipEngine::capture(ClipItem item) {
    if (const ClipItem* known = model.itemWithFingerprint(item.fingerprint)) {
        ClipItem moved = *known;
        moved.date = item.date;
        ++moved.timesCopied;
        model.moveToFront(std::move(moved));
    } else {
        model.insertAtFront(std::move(item));
    }
    publish();
}

const ClipItem* MemoryClipEngine::find(const Uuid& id) const {
    if (const ClipItem* item = model.item(id)) return item;
    for (const ClipItem& pinned : pins_.get()) {
        if (pinned.id == id) return &pinned;
    }
    return nullptr;
}

ClipPayload MemoryClipEngine::payloadOf(const ClipItem& item, ClipPasteForm form) {
    ClipPayload payload;
    payload.text = item.text;
    if (form == ClipPasteForm::rich) {
        payload.rtf = item.rtf;
        payload.html = item.html;
    }
    if (item.kind == ClipKind::link) payload.url = item.text;
    if (item.filePaths) {
        for (const std::string& path : *item.filePaths)
            payload.fileURLs.push_back("file://" + path);
    }
    if (item.image) payload.image = ClipImagePayload{item.image->type, Bytes{0x89, 0x50}};
    payload.concealed = item.isSensitive && !isEmpty(payload);
    return payload;
}

PasteResult MemoryClipEngine::paste(const ClipItem& item, std::optional<ClipPasteForm> form,
                                    const std::optional<ClipTargetApp>& target) {
    const ClipItem* stored = find(item.id);
    if (!stored) return {PasteOutcome::failed, pasteboard.changeCount()};
    const ClipPasteForm chosen =
        form.value_or(settings_->pastesPlainByDefault ? ClipPasteForm::plain : ClipPasteForm::rich);
    const PasteResult result = paster.paste(payloadOf(*stored, chosen), target);
    if (result.outcome == PasteOutcome::failed) return result;
    if (const ClipItem* live = model.item(item.id)) {
        ClipItem touched = *live;
        if (result.outcome == PasteOutcome::pasted) {
            ++touched.timesPasted;
            touched.lastPasted = clock.now();
        }
        model.replace(std::move(touched));
        publish();
    }
    return result;
}

PasteResult MemoryClipEngine::pasteText(const std::string& text,
                                        const std::optional<ClipTargetApp>& target) {
    ClipPayload payload;
    if (!text.empty()) payload.text = text;
    return paster.paste(payload, target);
}

PasteResult MemoryClipEngine::copy(const ClipItem& item) {
    const ClipItem* stored = find(item.id);
    if (!stored) return {PasteOutcome::failed, pasteboard.changeCount()};
    return paster.paste(payloadOf(*stored, ClipPasteForm::rich), std::nullopt);
}

bool MemoryClipEngine::remove(const Uuid& id) {
    const bool removed = !model.remove(id).empty();
    const bool unpinned = pinStore.isPinned(id);
    if (unpinned) (void)pinStore.unpin(id);
    publish();
    return removed || unpinned;
}

ClipPinsStatus MemoryClipEngine::pin(const Uuid& id) {
    const ClipItem* item = find(id);
    if (!item) return std::unexpected(ClipPinsError{ClipPinsError::Code::notShareable, "gone"});
    ClipPinsStatus status = pinStore.pin(*item);
    publish();
    return status;
}

ClipPinsStatus MemoryClipEngine::unpin(const Uuid& id) {
    ClipPinsStatus status = pinStore.unpin(id);
    publish();
    return status;
}

bool MemoryClipEngine::addToPinboard(const Uuid& board, const Uuid& item) {
    if (!find(item)) return false;
    const bool added = model.addToPinboard(board, item);
    publish();
    return added;
}

std::optional<ClipItem> MemoryClipEngine::addText(const std::string& text, const ClipItem& from) {
    ClipContent content;
    content.text = text;
    ClipItem item = ClipItem::make(content, {}, ClipSource{from.appID, from.appName}, clock.now(),
                                   ClipSensitivity::ordinary);
    capture(item);
    return item;
}

std::optional<ClipEditOutcome> MemoryClipEngine::edit(const Uuid& id, const std::string& text) {
    const ClipItem* stored = model.item(id);
    if (!stored) return std::nullopt;
    ClipItem edited = *stored;
    const ClipEditOutcome outcome = edited.edit(text);
    if (outcome != ClipEditOutcome::unchanged) {
        model.replace(std::move(edited));
        publish();
    }
    return outcome;
}

bool MemoryClipEngine::removeFromPinboard(const Uuid& board, const Uuid& item) {
    const bool removed = model.removeFromPinboard(board, item);
    publish();
    return removed;
}

bool MemoryClipEngine::adoptImport(ClipLibrary merged, const std::vector<Uuid>& pinIDs) {
    model.setLibrary(std::move(merged));
    for (const Uuid& id : pinIDs) {
        if (const ClipItem* item = model.item(id)) (void)pinStore.pin(*item);
    }
    publish();
    return true;
}

bool MemoryClipEngine::addPinboard(Pinboard board) {
    model.addPinboard(std::move(board));
    publish();
    return true;
}

bool MemoryClipEngine::renamePinboard(const Uuid& board, std::string name) {
    const bool found = model.renamePinboard(board, std::move(name));
    publish();
    return found;
}

bool MemoryClipEngine::setPinboardColor(const Uuid& board, std::string color) {
    const bool found = model.setPinboardColor(board, std::move(color));
    publish();
    return found;
}

bool MemoryClipEngine::setPinboardSymbol(const Uuid& board, std::string symbol) {
    const bool found = model.setPinboardSymbol(board, std::move(symbol));
    publish();
    return found;
}

bool MemoryClipEngine::removePinboard(const Uuid& board) {
    const bool found = model.removePinboard(board);
    publish();
    return found;
}

bool MemoryClipEngine::movePinboards(std::span<const std::size_t> fromOffsets,
                                     std::size_t toOffset) {
    model.movePinboards(fromOffsets, toOffset);
    publish();
    return true;
}

bool MemoryClipEngine::moveOnPinboard(const Uuid& board, std::span<const std::size_t> fromOffsets,
                                      std::size_t toOffset) {
    const bool moved = model.moveOnPinboard(board, fromOffsets, toOffset);
    publish();
    return moved;
}

void MemoryClipEngine::publish() {
    ++publishCount;
    pins_.set(pinStore.pinnedItems());
    pinboards_.set(model.pinboards());
    history_.set(model.items());
}

}  // namespace harbex
