#include "HarbexClipCore/Engine/ClipEngine.hpp"

#include <algorithm>
#include <utility>

#include "HarbexClipCore/Settings/ClipPlatformWords.hpp"
#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"

namespace harbex {

std::string keychainProblemMessage() {
    return "Harbex Clipboard can’t read its key from the keychain yet, so your history stays "
           "closed for now and nothing new is kept. It tries again every half minute.";
}

std::string unreadableHistoryProblemMessage(ClipKeyVocabulary vocabulary) {
    return "The saved history couldn’t be opened with this " +
           std::string(computerName(vocabulary)) +
           "’s key, so Harbex Clipboard started a new one. The old file was kept.";
}

std::string saveProblemMessage(const ClipStoreError& error) {
    return "Harbex Clipboard couldn’t save its history: " + error.description();
}

namespace {

// A history that exists but cannot be read for another reason (a file-system failure, or an
// unreadable file that could not be moved aside) stays closed, so nothing overwrites it.
std::string openProblemMessage(const ClipStoreError& error) {
    return "Harbex Clipboard couldn’t open its history: " + error.description();
}

}  // namespace

ClipEngine::ClipEngine(ClipEngineEnvironment environment, ClipEngineOptions options)
    : pasteboard_(environment.pasteboard),
      paster_(environment.paster),
      store_(environment.store),
      pinsBridge_(environment.pins),
      defaults_(environment.defaults),
      frontApp_(std::move(environment.frontApp)),
      appName_(std::move(environment.appName)),
      now_(std::move(environment.now)),
      schedule_(std::move(environment.schedule)),
      postToMain_(std::move(environment.postToMain)),
      calendar_(std::move(environment.calendar)),
      vocabulary_(environment.vocabulary),
      options_(options),
      capture_(environment.pasteboard, environment.imageCodec) {
    ClipSettings loaded = ClipSettingsStore::load(defaults_);
    rules_ = CaptureRuleSettings::from(loaded);
    settings_.set(std::move(loaded));
    if (store_) {
        // Called on the store's thread: the error waits in the shared slot for the main thread.
        std::weak_ptr<bool> alive = alive_;
        store_->setSaveFailureHandler(
            [failures = saveFailures_, post = postToMain_, alive, this](const ClipStoreError& e) {
                {
                    std::lock_guard guard(failures->lock);
                    failures->errors.push_back(e);
                    failures->waiting.store(true, std::memory_order_release);
                }
                if (post) {
                    post([alive, this] {
                        if (alive.lock()) takeSaveFailures();
                    });
                }
            });
    }
    if (pinsBridge_) pinsBridge_->setOnChange([this] { publishPins(); });
    publishPins();
    pasteboard_.setTextLimit(std::size_t(std::max<std::int64_t>(rules_.textLimit, 0)));
    pasteboard_.setKeepOnQuitJudge(
        [this](std::int64_t count) { return keepableOnQuit(count) != nullptr; });
}

ClipEngine::~ClipEngine() {
    pasteboard_.setKeepOnQuitJudge({});
    shutdown();
    if (pinsBridge_) pinsBridge_->setOnChange({});
    if (store_) store_->setSaveFailureHandler({});
}

// MARK: Capture

void ClipEngine::sample() {
    if (isHeld_) return;
    if (!isHistoryOpen_.get() && !ensureHistoryOpen(OpenAttempt::whenDue)) {
        // Copies made while the history is closed are never captured later.
        capture_.consumeCurrentChange();
        return;
    }
    if (saveFailures_->waiting.load(std::memory_order_acquire)) takeSaveFailures();
    if (nextExpiry_ && now_() >= *nextExpiry_) sweepExpired();

    const std::optional<std::int64_t> previous = capture_.lastCount();
    if (previous == pasteboard_.changeCount()) return;
    if (previous && pasteboard_.ownerLeft() && restoreAfterOwnerLeft(*previous)) return;
    std::optional<std::string> appID = frontApp_ ? frontApp_() : std::nullopt;
    const SampleInputs inputs{appID, rules_, now_(), access_.get()};
    SampleResult result = capture_.sample(inputs);
    switch (result.kind) {
        case SampleResult::Kind::unchanged:
        case SampleResult::Kind::notAllowed:
        case SampleResult::Kind::empty: return;
        case SampleResult::Kind::skipped: lastSkip_.setIfChanged(result.skip); return;
        case SampleResult::Kind::read: capture(*result.snapshot, appID); return;
    }
}

void ClipEngine::captureNow() {
    if (!ensureHistoryOpen(OpenAttempt::whenDue)) {
        capture_.consumeCurrentChange();
        return;
    }
    std::optional<std::string> appID = frontApp_ ? frontApp_() : std::nullopt;
    const SampleInputs inputs{appID, rules_, now_(), access_.get()};
    SampleResult result = capture_.captureNow(inputs);
    if (result.kind == SampleResult::Kind::skipped) {
        lastSkip_.setIfChanged(result.skip);
    } else if (result.kind == SampleResult::Kind::read) {
        capture(*result.snapshot, appID);
    }
}

DetectionContext ClipEngine::detectionContext(const std::optional<std::string>& appID,
                                              const std::optional<std::string>& appName) const {
    const ClipSettings& settings = settings_.get();
    DetectionContext context;
    context.appID = appID;
    context.appName = appName;
    context.now = now_();
    context.sensitiveDetection =
        settings.detectSensitive ? SensitiveDetection::on : SensitiveDetection::off;
    context.sensitiveLifetime = settings.sensitiveLifetime;
    return context;
}

void ClipEngine::capture(const PasteboardSnapshot& read, const std::optional<std::string>& appID) {
    const std::optional<std::string> appName =
        appID && appName_ ? appName_(*appID) : std::optional<std::string>();
    const DetectionContext context = detectionContext(appID, appName);

    const std::int64_t count = capture_.lastCount().value_or(0);
    const bool background = ClipCapture::decodesImage(read, rules_) &&
                            options_.imageDetection == ClipBackgroundWork::on && postToMain_;
    if (!background) {
        finishCapture(capture_.decide(read, context, rules_), count);
        return;
    }

    // Decoding a large image takes long enough to be felt: it runs on a worker, the copy is
    // listed as pending meanwhile and its entry arrives through the main loop.
    const ClipPendingCapture pendingCapture{Uuid::random(), context.now, appID, appName};
    auto pendingList = pending_.get();
    pendingList.push_back(pendingCapture);
    pending_.set(std::move(pendingList));

    reapWorkers();
    std::weak_ptr<bool> alive = alive_;
    workers_.push_back(
        std::async(std::launch::async, [this, alive, post = postToMain_, context, rules = rules_,
                                        snapshot = read, id = pendingCapture.id, count]() mutable {
            CaptureDecision decision = capture_.decide(snapshot, context, rules);
            post([this, alive, id, count, decision = std::move(decision)]() mutable {
                if (!alive.lock()) return;
                auto list = pending_.get();
                std::erase_if(list, [&](const ClipPendingCapture& p) { return p.id == id; });
                pending_.set(std::move(list));
                if (decision.clip) decision.clip->item.id = id;
                finishCapture(std::move(decision), count);
            });
        }));
}

void ClipEngine::finishCapture(CaptureDecision decision, std::int64_t count) {
    if (decision.skip) {
        lastSkip_.setIfChanged(decision.skip);
        return;
    }
    if (!decision.clip || !isHistoryOpen_.get()) return;
    const std::string keptFingerprint = decision.clip->item.fingerprint;
    if (!keep(std::move(*decision.clip))) return;
    if (const ClipItem* kept = model_.itemWithFingerprint(keptFingerprint))
        lastKept_ = KeptChange{count, kept->id};
    lastSkip_.setIfChanged(std::nullopt);
    captured_.set(captured_.get() + 1);
}

const ClipItem* ClipEngine::keepableOnQuit(std::int64_t count) const {
    if (!lastKept_ || lastKept_->count != count || !isHistoryOpen_.get()) return nullptr;
    if (!settings_->window.keepsClipboardOnQuit || isPaused()) return nullptr;
    const ClipItem* item = model_.item(lastKept_->id);
    return item && !item->isSensitive ? item : nullptr;
}

bool ClipEngine::restoreAfterOwnerLeft(std::int64_t previousCount) {
    // Only when leaving is the one change since the kept copy: a copy made and abandoned
    // between two looks was never judged, and the one before it is not what the user expects.
    if (pasteboard_.keepOnQuit() != ClipKeepOnQuit::ours ||
        pasteboard_.changeCount() != previousCount + 1)
        return false;
    const ClipItem* item = keepableOnQuit(previousCount);
    if (!item) return false;
    // The copy is put back as it was: the entry neither moves nor counts a paste.
    const ClipPayload payload = payloadFor(*item, ClipPasteForm::rich);
    if (isEmpty(payload)) return false;
    const std::int64_t written = pasteboard_.write(payload, item->appID);
    capture_.setLastCount(written);
    lastKept_->count = written;
    return true;
}

bool ClipEngine::keep(DetectedClip detected) {
    ClipItem fresh = std::move(detected.item);
    if (const ClipItem* known = model_.itemWithFingerprint(fresh.fingerprint)) {
        // A repeat: the existing entry comes to the top and remembers this copy; the user's
        // edits, title and counters stay.
        ClipItem merged = *known;
        merged.date = fresh.date;
        ++merged.timesCopied;
        merged.appID = std::move(fresh.appID);
        merged.appName = std::move(fresh.appName);
        if (fresh.isSensitive) {
            merged.isSensitive = true;
            merged.expiresAt = fresh.expiresAt;
        }
        noteExpiry(merged);
        modelMoveToFront(std::move(merged));
        changed();
        return true;
    }

    // A pin made in the sibling application has no entry yet: the copy takes its identity, so
    // the pin and the entry are one.
    for (const ClipItem& pinned : pins_.get()) {
        if (pinned.fingerprint == fresh.fingerprint && !model_.item(pinned.id)) {
            fresh.id = pinned.id;
            break;
        }
    }
    if (fresh.image && store_ && detected.imageData) {
        if (auto stored = storeImage(fresh, detected); !stored) {
            // An image entry without its bytes could be neither shown nor pasted.
            setProblem(saveProblemMessage(stored.error()));
            return false;
        }
    }
    noteExpiry(fresh);
    modelInsert(std::move(fresh));
    changed();
    return true;
}

ClipStoreResult<void> ClipEngine::storeImage(const ClipItem& item, const DetectedClip& detected) {
    const std::string& name = item.image->digest;
    if (auto written = store_->writeImage(*detected.imageData, name); !written) return written;
    if (detected.thumbnail) return store_->writeThumbnail(*detected.thumbnail, name);
    return {};
}

void ClipEngine::removeImages(const std::vector<ClipItem>& removed) {
    if (!store_) return;
    for (const ClipItem& item : removed) {
        if (!item.image || item.image->digest.empty()) continue;
        // Images are named by digest: another entry may still show the same picture.
        const bool shared = std::ranges::any_of(model_.items(), [&](const ClipItem& other) {
            return other.image && other.image->digest == item.image->digest;
        });
        // A file left behind costs space only; it is not worth a message.
        if (!shared) (void)store_->removeImage(item.image->digest);
    }
}

// MARK: Opening

bool ClipEngine::ensureHistoryOpen(OpenAttempt attempt) {
    if (isHistoryOpen_.get()) return true;
    const Date now = now_();
    if (attempt == OpenAttempt::whenDue && nextOpenAttempt_ && now < *nextOpenAttempt_)
        return false;
    nextOpenAttempt_ = now + kOpenRetryInterval;

    ClipLibrary library;
    bool startedAfresh = false;
    if (store_) {
        auto loaded = store_->load();
        if (loaded) {
            library = std::move(*loaded);
        } else if (loaded.error().is(ClipStoreError::Case::keychain)) {
            setProblem(keychainProblemMessage());
            return false;
        } else if (loaded.error().is(ClipStoreError::Case::file)) {
            setProblem(openProblemMessage(loaded.error()));
            return false;
        } else {
            // The file is there but does not open or does not decode: it is moved aside, never
            // overwritten, and a new history begins.
            if (auto aside = store_->setAsideUnreadable(); !aside) {
                setProblem(openProblemMessage(aside.error()));
                return false;
            }
            startedAfresh = true;
        }
    }

    modelReset(std::move(library));
    capture_.consumeCurrentChange();
    recomputeNextExpiry();
    isHistoryOpen_.set(true);
    if (startedAfresh) setProblem(unreadableHistoryProblemMessage(vocabulary_));
    const std::vector<ClipItem> removed = prune();
    removeImages(removed);
    publish();
    if (!removed.empty() || startedAfresh) scheduleSave();
    scheduleExpirySweep();
    if (problem_.get() == keychainProblemMessage()) setProblem(std::nullopt);
    return true;
}

// MARK: Keeping the history in shape

void ClipEngine::changed() {
    removeImages(prune());
    publish();
    scheduleSave();
    scheduleExpirySweep();
}

std::vector<ClipItem> ClipEngine::prune() {
    const ClipSettings& settings = settings_.get();
    const Date now = now_();
    std::vector<ClipItem> removed =
        model_.prune(now, settings.retention,
                     std::size_t(std::max<std::int64_t>(0, settings.maxItems)), pinnedIDs());
    modelRemoved(removed);
    // Removing copies never makes the bound wrong: it only moves on once it is due.
    if (nextExpiry_ && *nextExpiry_ <= now) recomputeNextExpiry();
    return removed;
}

void ClipEngine::modelInsert(ClipItem item) {
    historyEdits_.push_back([item](std::vector<ClipItem>& items) mutable {
        items.insert(items.begin(), std::move(item));
    });
    model_.insertAtFront(std::move(item));
}

void ClipEngine::modelMoveToFront(ClipItem item) {
    historyEdits_.push_back([item](std::vector<ClipItem>& items) mutable {
        auto found = std::ranges::find(items, item.id, &ClipItem::id);
        if (found == items.end()) {
            items.insert(items.begin(), std::move(item));
            return;
        }
        std::rotate(items.begin(), found, found + 1);
        items.front() = std::move(item);
    });
    model_.moveToFront(std::move(item));
}

void ClipEngine::modelReplace(ClipItem item) {
    historyEdits_.push_back([item](std::vector<ClipItem>& items) mutable {
        auto found = std::ranges::find(items, item.id, &ClipItem::id);
        if (found != items.end()) *found = std::move(item);
    });
    model_.replace(std::move(item));
}

void ClipEngine::modelRemoved(const std::vector<ClipItem>& removed) {
    if (removed.empty()) return;
    std::vector<Uuid> ids;
    ids.reserve(removed.size());
    for (const ClipItem& item : removed) {
        ids.push_back(item.id);
    }
    historyEdits_.push_back([ids = std::move(ids)](std::vector<ClipItem>& items) {
        // Pruning takes the oldest, at the end: a few are found fastest from there.
        if (ids.size() <= 8) {
            for (const Uuid& id : ids) {
                auto found = std::find_if(items.rbegin(), items.rend(),
                                          [&](const ClipItem& item) { return item.id == id; });
                if (found != items.rend()) items.erase(std::next(found).base());
            }
            return;
        }
        const ClipIDSet set(ids.begin(), ids.end());
        std::erase_if(items, [&](const ClipItem& item) { return set.contains(item.id); });
    });
}

void ClipEngine::modelReset(ClipLibrary library) {
    model_.setLibrary(std::move(library));
    historyEdits_.clear();
    historyReset_ = true;
}

void ClipEngine::publish() {
    if (historyReset_) {
        historyReset_ = false;
        historyEdits_.clear();
        history_.set(model_.items());
    } else if (!historyEdits_.empty()) {
        auto edits = std::exchange(historyEdits_, {});
        history_.modify([&](std::vector<ClipItem>& items) {
            for (auto& edit : edits) edit(items);
        });
    }
    pinboards_.setIfChanged(model_.pinboards());
    publishPins();
}

void ClipEngine::publishPins() {
    std::vector<ClipItem> pinned;
    if (pinsBridge_) {
        pinned = pinsBridge_->pinnedItems();
        // The history's own copy carries more than the shared record (formatting, counters).
        for (ClipItem& item : pinned) {
            if (const ClipItem* own = model_.item(item.id)) item = *own;
        }
    }
    pins_.setIfChanged(std::move(pinned));
}

void ClipEngine::noteExpiry(const ClipItem& item) {
    if (item.expiresAt && (!nextExpiry_ || *item.expiresAt < *nextExpiry_))
        nextExpiry_ = item.expiresAt;
}

void ClipEngine::recomputeNextExpiry() {
    nextExpiry_.reset();
    const ClipIDSet protectedSet = model_.protectedIDs(pinnedIDs());
    for (const ClipItem& item : model_.items()) {
        if (item.expiresAt && !protectedSet.contains(item.id)) noteExpiry(item);
    }
}

void ClipEngine::scheduleExpirySweep() {
    if (!nextExpiry_ || sweepScheduled_ || !schedule_) return;
    sweepScheduled_ = true;
    // At the expiry, but never later than one interval from now, so that a clock that jumped
    // (a machine asleep) is noticed soon.
    const double delay =
        std::clamp(*nextExpiry_ - now_(), 0.0, std::max(0.0, options_.expirySweepInterval));
    std::weak_ptr<bool> alive = alive_;
    schedule_(delay, [this, alive, generation = generation_] {
        if (!alive.lock() || generation != generation_) return;
        sweepScheduled_ = false;
        sweepExpired();
        scheduleExpirySweep();
    });
}

void ClipEngine::sweepExpired() {
    if (!isHistoryOpen_.get() || !nextExpiry_ || now_() < *nextExpiry_) return;
    const std::vector<ClipItem> removed = prune();
    if (removed.empty()) return;
    removeImages(removed);
    publish();
    scheduleSave();
}

// MARK: Saving

void ClipEngine::scheduleSave() {
    if (!store_ || !isHistoryOpen_.get() || saveScheduled_) return;
    saveScheduled_ = true;
    std::weak_ptr<bool> alive = alive_;
    schedule_(options_.saveDelay, [this, alive, generation = generation_] {
        if (!alive.lock() || generation != generation_ || !saveScheduled_) return;
        performSave();
    });
}

void ClipEngine::performSave() {
    saveScheduled_ = false;
    if (!store_ || !isHistoryOpen_.get()) return;
    if (options_.saving == ClipBackgroundWork::on) {
        store_->save(model_.library());
        return;
    }
    if (auto saved = store_->saveNow(model_.library()); !saved)
        setProblem(saveProblemMessage(saved.error()));
}

void ClipEngine::takeSaveFailures() {
    std::vector<ClipStoreError> errors;
    {
        std::lock_guard guard(saveFailures_->lock);
        errors.swap(saveFailures_->errors);
        saveFailures_->waiting.store(false, std::memory_order_release);
    }
    if (!errors.empty()) setProblem(saveProblemMessage(errors.back()));
}

void ClipEngine::setProblem(std::optional<std::string> problem) {
    problem_.setIfChanged(std::move(problem));
}

void ClipEngine::shutdown() {
    for (auto& worker : workers_) worker.wait();
    workers_.clear();
    if (saveScheduled_) {
        ++generation_;  // the scheduled block does nothing now
        performSave();
    }
    if (store_) store_->waitForSaves();
    takeSaveFailures();
}

void ClipEngine::reapWorkers() {
    std::erase_if(workers_, [](const std::future<void>& worker) {
        return worker.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    });
}

}  // namespace harbex
