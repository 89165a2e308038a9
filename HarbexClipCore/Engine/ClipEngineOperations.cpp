// The engine's operations for the panel, the library and the menus: pause and settings,
// pasting, editing and pinboards. Capture, opening and saving are in ClipEngine.cpp.

#include <algorithm>
#include <utility>

#include "HarbexClipCore/Capture/CaptureText.hpp"
#include "HarbexClipCore/Engine/ClipEngine.hpp"
#include "HarbexClipCore/Pasteboard/FileUrls.hpp"
#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"

namespace harbex {

// MARK: Pause and settings

void ClipEngine::pause(std::optional<Date> until) {
    ClipSettings settings = settings_.get();
    settings.pausedUntil = until.value_or(Date::distantFuture());
    storeSettings(std::move(settings));
}

void ClipEngine::pauseFor(double seconds) { pause(now_() + seconds); }

void ClipEngine::pauseUntilTomorrow() {
    pause(calendar_.addingDays(calendar_.startOfDay(now_()), 1));
}

void ClipEngine::resume() {
    ClipSettings settings = settings_.get();
    settings.pausedUntil.reset();
    storeSettings(std::move(settings));
}

bool ClipEngine::isPaused() const {
    return settings_->pausedUntil && *settings_->pausedUntil > now_();
}

void ClipEngine::updateSettings(ClipSettings settings) { storeSettings(std::move(settings)); }

void ClipEngine::storeSettings(ClipSettings settings) {
    const bool limitsChanged =
        settings.retention != settings_->retention || settings.maxItems != settings_->maxItems;
    ClipSettingsStore::save(settings, defaults_);
    rules_ = CaptureRuleSettings::from(settings);
    pasteboard_.setTextLimit(std::size_t(std::max<std::int64_t>(rules_.textLimit, 0)));
    settings_.set(std::move(settings));
    if (limitsChanged && isHistoryOpen_.get()) {
        const std::vector<ClipItem> removed = prune();
        if (!removed.empty()) {
            removeImages(removed);
            publish();
            scheduleSave();
        }
    }
}

// MARK: Pasting

ClipPayload ClipEngine::payloadFor(const ClipItem& item, ClipPasteForm form) {
    ClipPayload payload;
    switch (item.kind) {
        case ClipKind::file:
            if (item.filePaths) {
                for (const std::string& path : *item.filePaths) {
                    if (!path.empty() && path.front() == '/')
                        payload.fileURLs.push_back(fileUrlFromPath(path));
                }
            }
            break;
        case ClipKind::image:
            if (item.image && store_) {
                if (auto bytes = store_->readImage(item.image->digest))
                    payload.image = ClipImagePayload{item.image->type, std::move(*bytes)};
            }
            break;
        case ClipKind::link:
            payload.text = item.text;
            payload.url = item.text;
            break;
        default:
            payload.text = item.text;
            if (form == ClipPasteForm::rich) {
                payload.rtf = item.rtf;
                payload.html = item.html;
            }
            break;
    }
    payload.concealed = item.isSensitive && !isEmpty(payload);
    return payload;
}

PasteResult ClipEngine::deliver(const Uuid& id, ClipPasteForm form,
                                const std::optional<ClipTargetApp>& target) {
    const std::optional<ClipItem> found = item(id);
    if (!found) return PasteResult{PasteOutcome::failed, pasteboard_.changeCount()};
    const PasteResult result = paster_.paste(payloadFor(*found, form), target);
    if (result.outcome == PasteOutcome::failed) return result;
    capture_.setLastCount(result.changeCount);

    const ClipItem* live = model_.item(id);
    if (!live || !isHistoryOpen_.get()) return result;
    ClipItem touched = *live;
    const Date now = now_();
    if (result.outcome == PasteOutcome::pasted) {
        ++touched.timesPasted;
        touched.lastPasted = now;
    }
    if (isPinned(id)) {
        modelReplace(std::move(touched));
    } else {
        // Used again: it counts as recent, so it comes to the top with today's date.
        touched.date = now;
        modelMoveToFront(std::move(touched));
    }
    changed();
    return result;
}

PasteResult ClipEngine::paste(const Uuid& id, std::optional<ClipPasteForm> form,
                              const std::optional<ClipTargetApp>& target) {
    const ClipPasteForm chosen =
        form.value_or(settings_->pastesPlainByDefault ? ClipPasteForm::plain : ClipPasteForm::rich);
    return deliver(id, chosen, target);
}

PasteResult ClipEngine::paste(const ClipItem& item, std::optional<ClipPasteForm> form,
                              const std::optional<ClipTargetApp>& target) {
    // The id is taken first: `item` may live in the published history this changes.
    const Uuid id = item.id;
    return paste(id, form, target);
}

PasteResult ClipEngine::pasteText(const std::string& text,
                                  const std::optional<ClipTargetApp>& target) {
    ClipPayload payload;
    if (!text.empty()) payload.text = text;
    const PasteResult result = paster_.paste(payload, target);
    if (result.outcome != PasteOutcome::failed) capture_.setLastCount(result.changeCount);
    return result;
}

PasteResult ClipEngine::copy(const Uuid& id) {
    return deliver(id, ClipPasteForm::rich, std::nullopt);
}

PasteResult ClipEngine::copy(const ClipItem& item) {
    const Uuid id = item.id;
    return copy(id);
}

// MARK: Editing

std::optional<ClipItem> ClipEngine::item(const Uuid& id) const {
    if (const ClipItem* own = model_.item(id)) return *own;
    for (const ClipItem& pinned : pins_.get()) {
        if (pinned.id == id) return pinned;
    }
    return std::nullopt;
}

ClipIDSet ClipEngine::pinnedIDs() const {
    ClipIDSet ids;
    if (!pinsBridge_) return ids;
    for (const Uuid& id : pinsBridge_->pinnedIDs()) ids.insert(id);
    return ids;
}

bool ClipEngine::isPinned(const Uuid& id) const { return pinsBridge_ && pinsBridge_->isPinned(id); }

ClipIDSet ClipEngine::pinnedOrOnPinboard() const { return model_.protectedIDs(pinnedIDs()); }

std::size_t ClipEngine::remove(std::span<const Uuid> ids) {
    if (!isHistoryOpen_.get()) return 0;
    const std::vector<ClipItem> removed = model_.remove(ids);
    modelRemoved(removed);
    if (pinsBridge_) {
        for (const Uuid& id : ids) {
            if (pinsBridge_->isPinned(id)) (void)pinsBridge_->unpin(id);
        }
    }
    removeImages(removed);
    changed();
    return removed.size();
}

bool ClipEngine::remove(const Uuid& id) {
    const bool wasPinned = isPinned(id);
    const std::size_t removed = remove(std::span(&id, 1));
    return removed > 0 || (wasPinned && !isPinned(id));
}

ClipPinsStatus ClipEngine::pin(const Uuid& id) {
    if (!pinsBridge_)
        return std::unexpected(
            ClipPinsError{ClipPinsError::Code::writeFailed, "pins are not available"});
    const std::optional<ClipItem> found = item(id);
    if (!found)
        return std::unexpected(
            ClipPinsError{ClipPinsError::Code::notShareable, "the copy is no longer kept"});
    ClipPinsStatus status = pinsBridge_->pin(*found);
    publishPins();
    return status;
}

ClipPinsStatus ClipEngine::unpin(const Uuid& id) {
    if (!pinsBridge_) return {};
    ClipPinsStatus status = pinsBridge_->unpin(id);
    publishPins();
    if (status && isHistoryOpen_.get()) {
        // No longer protected: it may now be over the limits.
        const std::vector<ClipItem> removed = prune();
        if (!removed.empty()) {
            removeImages(removed);
            publish();
            scheduleSave();
        }
        recomputeNextExpiry();
        scheduleExpirySweep();
    }
    return status;
}

bool ClipEngine::replaceItem(const Uuid& id, const std::function<bool(ClipItem&)>& change) {
    if (!isHistoryOpen_.get()) return false;
    const ClipItem* live = model_.item(id);
    if (!live) return false;
    ClipItem changedItem = *live;
    if (!change(changedItem)) return true;
    noteExpiry(changedItem);
    modelReplace(std::move(changedItem));
    changed();
    return true;
}

std::optional<ClipEditOutcome> ClipEngine::edit(const Uuid& id, const std::string& text) {
    std::optional<ClipEditOutcome> outcome;
    replaceItem(id, [&](ClipItem& item) {
        outcome = item.edit(text);
        return *outcome != ClipEditOutcome::unchanged;
    });
    return outcome;
}

std::optional<ClipEditOutcome> ClipEngine::revert(const Uuid& id) {
    std::optional<ClipEditOutcome> outcome;
    replaceItem(id, [&](ClipItem& item) {
        if (!item.original) {
            outcome = ClipEditOutcome::unchanged;
            return false;
        }
        outcome = item.edit(item.original->text.value_or(std::string()));
        return *outcome != ClipEditOutcome::unchanged;
    });
    return outcome;
}

bool ClipEngine::setCustomTitle(const Uuid& id, std::optional<std::string> title) {
    if (title && trimmingWhiteSpace(*title).empty()) title.reset();
    return replaceItem(id, [&](ClipItem& item) {
        if (item.customTitle == title) return false;
        item.customTitle = std::move(title);
        return true;
    });
}

bool ClipEngine::setSensitive(const Uuid& id, ClipSensitivity sensitivity) {
    const bool sensitive = sensitivity == ClipSensitivity::sensitive;
    const Date expiry = now_() + settings_->sensitiveLifetime;
    return replaceItem(id, [&](ClipItem& item) {
        if (item.isSensitive == sensitive) return false;
        item.isSensitive = sensitive;
        if (sensitive) {
            item.expiresAt = expiry;
        } else {
            item.expiresAt.reset();
        }
        return true;
    });
}

std::size_t ClipEngine::clear(ClipHistory::ClearRange range) {
    if (!isHistoryOpen_.get()) return 0;
    const bool keepsPins = settings_->window.clearKeepsPins;
    const std::vector<ClipItem> removed =
        model_.clear(range, now_(), calendar_, keepsPins ? pinnedIDs() : ClipIDSet{});
    modelRemoved(removed);
    for (const ClipItem& item : removed) {
        // "Keep pinned copies" off: the pins of cleared copies go too.
        if (!keepsPins && isPinned(item.id)) (void)pinsBridge_->unpin(item.id);
    }
    removeImages(removed);
    recomputeNextExpiry();
    changed();
    return removed.size();
}

std::optional<ClipItem> ClipEngine::addText(const std::string& text, const ClipItem& from) {
    if (!isHistoryOpen_.get() || text.empty()) return std::nullopt;
    ClipContent content;
    content.kind = ClipKind::text;
    content.text = text;
    DetectedClip detected{
        ClipItem::make(std::move(content), {}, ClipSource{from.appID, from.appName}, now_(),
                       ClipSensitivity::ordinary),
        std::nullopt, std::nullopt, from.appID};
    const std::string fingerprintOfText = detected.item.fingerprint;
    if (!keep(std::move(detected))) return std::nullopt;
    if (const ClipItem* kept = model_.itemWithFingerprint(fingerprintOfText)) return *kept;
    return std::nullopt;
}

// MARK: Pinboards

bool ClipEngine::addPinboard(Pinboard board) {
    if (!isHistoryOpen_.get()) return false;
    model_.addPinboard(std::move(board));
    changed();
    return true;
}

bool ClipEngine::renamePinboard(const Uuid& board, std::string name) {
    if (!isHistoryOpen_.get() || !model_.renamePinboard(board, std::move(name))) return false;
    changed();
    return true;
}

bool ClipEngine::setPinboardColor(const Uuid& board, std::string color) {
    if (!isHistoryOpen_.get() || !model_.setPinboardColor(board, std::move(color))) return false;
    changed();
    return true;
}

bool ClipEngine::setPinboardSymbol(const Uuid& board, std::string symbol) {
    if (!isHistoryOpen_.get() || !model_.setPinboardSymbol(board, std::move(symbol))) return false;
    changed();
    return true;
}

bool ClipEngine::removePinboard(const Uuid& board) {
    if (!isHistoryOpen_.get() || !model_.removePinboard(board)) return false;
    // Its copies lose their protection and may now be over the limits.
    recomputeNextExpiry();
    changed();
    return true;
}

bool ClipEngine::movePinboards(std::span<const std::size_t> fromOffsets, std::size_t toOffset) {
    if (!isHistoryOpen_.get()) return false;
    model_.movePinboards(fromOffsets, toOffset);
    changed();
    return true;
}

bool ClipEngine::addToPinboard(const Uuid& board, const Uuid& itemID) {
    if (!isHistoryOpen_.get() || !model_.pinboard(board)) return false;
    if (!model_.item(itemID)) {
        // A pin from the sibling application joins the history so that the board can hold it.
        const std::optional<ClipItem> pinned = item(itemID);
        if (!pinned) return false;
        modelInsert(*pinned);
    }
    const bool added = model_.addToPinboard(board, itemID);
    changed();
    return added;
}

bool ClipEngine::removeFromPinboard(const Uuid& board, const Uuid& itemID) {
    if (!isHistoryOpen_.get() || !model_.removeFromPinboard(board, itemID)) return false;
    recomputeNextExpiry();
    changed();
    return true;
}

bool ClipEngine::moveOnPinboard(const Uuid& board, std::span<const std::size_t> fromOffsets,
                                std::size_t toOffset) {
    if (!isHistoryOpen_.get() || !model_.moveOnPinboard(board, fromOffsets, toOffset)) return false;
    changed();
    return true;
}

bool ClipEngine::adoptImport(ClipLibrary merged, const std::vector<Uuid>& pinIDs) {
    if (!isHistoryOpen_.get()) return false;
    modelReset(std::move(merged));
    if (pinsBridge_) {
        for (const Uuid& id : pinIDs) {
            if (const ClipItem* imported = model_.item(id)) (void)pinsBridge_->pin(*imported);
        }
    }
    recomputeNextExpiry();
    changed();
    return true;
}

}  // namespace harbex
