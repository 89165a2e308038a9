#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Capture/ClipCapture.hpp"
#include "HarbexClipCore/Capture/ClipDetector.hpp"
#include "HarbexClipCore/Capture/ClipImageCodec.hpp"
#include "HarbexClipCore/Capture/SkipReason.hpp"
#include "HarbexClipCore/Library/ClipLibraryEngine.hpp"
#include "HarbexClipCore/Model/ClipHistory.hpp"
#include "HarbexClipCore/Model/ClipPins.hpp"
#include "HarbexClipCore/Paste/ClipPaster.hpp"
#include "HarbexClipCore/Pasteboard/ClipPasteboard.hpp"
#include "HarbexClipCore/Settings/ClipDefaults.hpp"
#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"
#include "HarbexClipCore/Settings/ClipSettings.hpp"
#include "HarbexClipCore/Store/ClipStore.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Clock.hpp"
#include "HarbexClipCore/Support/Observable.hpp"
#include "HarbexClipCore/Text/ClipSearchIndex.hpp"

namespace harbex {

// A copy whose detection is still running off the main thread (an image being decoded). It is
// listed in `pending` until its entry arrives in the history or is refused.
struct ClipPendingCapture {
    Uuid id;
    Date date;
    std::optional<std::string> appID;
    std::optional<std::string> appName;

    friend bool operator==(const ClipPendingCapture&, const ClipPendingCapture&) = default;
};

// Everything the engine works with. The references and pointers are observed, not owned: the
// application shell owns them and keeps them alive longer than the engine.
struct ClipEngineEnvironment {
    ClipPasteboard& pasteboard;
    ClipPaster& paster;
    ClipStore* store = nullptr;  // absent in previews: nothing is loaded or saved
    ClipPins* pins = nullptr;    // absent: nothing is pinned and pins always fail
    ClipDefaults& defaults;      // where the settings record lives
    // The bundle identifier of the application in front, if any.
    std::function<std::optional<std::string>()> frontApp;
    // The display name of an application, by bundle identifier.
    std::function<std::optional<std::string>(std::string_view)> appName;
    NowFunction now;
    // Deferral on the main loop (saves, sweeps); called on the main thread only.
    ScheduleFunction schedule;
    const ClipImageCodec& imageCodec;
    Calendar calendar{};
    // Runs a block on the main thread; may be called from any thread. Needed for work handed
    // back from background threads; without it that work runs on the main thread instead.
    std::function<void(std::function<void()>)> postToMain = {};
    // The words the messages use for the machine ("this Mac’s key", "this computer’s key").
    ClipKeyVocabulary vocabulary = ClipKeyVocabulary::macSymbols;
};

enum class ClipBackgroundWork { off, on };

struct ClipEngineOptions {
    // Seconds between the first change of a burst and its one save.
    double saveDelay = 1.0;
    // Seconds between two looks for sensitive copies whose time has run out.
    double expirySweepInterval = 30.0;
    // Image detection off the main thread (the application); tests keep it on the main thread.
    ClipBackgroundWork imageDetection = ClipBackgroundWork::on;
    // Saving on the store's thread (the application) or at once on the main thread.
    ClipBackgroundWork saving = ClipBackgroundWork::on;
};

// The problems the engine shows, word for word.
std::string keychainProblemMessage();
std::string unreadableHistoryProblemMessage(ClipKeyVocabulary vocabulary);
std::string saveProblemMessage(const ClipStoreError& error);

// The one owner of the live history. It samples the pasteboard, applies the capture rules,
// turns accepted copies into entries, merges repeats, keeps the history within its limits,
// saves it through the store, carries the capture pause and the settings, and performs the
// panel's and the library's operations. Everything the interface shows is published.
//
// Thread: main. Only image detection and saving run elsewhere, and they hand their results back
// through `postToMain`. Every operation publishes before it returns.
class ClipEngine final : public ClipLibraryEngine {
public:
    // The number of seconds between two attempts to open a history that could not be opened.
    static constexpr double kOpenRetryInterval = 30.0;

    // Reads the settings from `environment.defaults`. Touches neither the pasteboard nor the
    // store: the history opens at the first `sample()` (or `ensureHistoryOpen`).
    explicit ClipEngine(ClipEngineEnvironment environment, ClipEngineOptions options = {});
    // Waits for background work; a save still scheduled is written (see `shutdown`).
    ~ClipEngine() override;
    ClipEngine(const ClipEngine&) = delete;
    ClipEngine& operator=(const ClipEngine&) = delete;

    // Published state.
    Observable<std::vector<ClipItem>>& history() override { return history_; }
    Observable<std::vector<ClipItem>>& pins() override { return pins_; }
    Observable<std::vector<Pinboard>>& pinboards() override { return pinboards_; }
    Observable<ClipPasteboardAccess>& access() { return access_; }
    Observable<std::vector<ClipPendingCapture>>& pending() { return pending_; }
    Observable<std::optional<SkipReason>>& lastSkip() { return lastSkip_; }
    // Advances by one each time a copy taken from the pasteboard is kept, new or a repeat;
    // pastes, edits and imports leave it alone. For the shell's feedback on a copy.
    Observable<std::uint64_t>& captured() { return captured_; }
    Observable<std::optional<std::string>>& problem() override { return problem_; }
    Observable<bool>& isHistoryOpen() { return isHistoryOpen_; }
    Observable<ClipSettings>& settings() override { return settings_; }

    // Capture.
    // One look at the pasteboard, on the shell's timer. Costs one change-count read when nothing
    // changed; a change while the history is closed is consumed and never captured.
    void sample();
    // Keeps what is on the pasteboard now, even when already seen, while paused or from an
    // excluded application; own writes, private copies and the kind and length rules still
    // refuse it. Does nothing while the history is closed.
    void captureNow();
    // Opens the history when it is closed; tries at most every 30 seconds unless `force`.
    // Returns whether the history is open.
    enum class OpenAttempt { whenDue, force };
    bool ensureHistoryOpen(OpenAttempt attempt = OpenAttempt::whenDue);
    // While held, `sample()` does nothing (set and cleared by the same owner).
    void hold() { isHeld_ = true; }
    void release() { isHeld_ = false; }
    bool isHeld() const { return isHeld_; }
    // The shell tells the engine whether the system lets it read other applications' copies.
    void setAccess(ClipPasteboardAccess access) { access_.setIfChanged(access); }

    // Pause. Each stores `pausedUntil` in the settings and saves them at once.
    // No date: until the user resumes (stored as the furthest date).
    void pause(std::optional<Date> until);
    void pauseFor(double seconds);
    // Until the start of the next day of the user's calendar.
    void pauseUntilTomorrow();
    void resume();
    // Whether a pause is in force now.
    bool isPaused() const;

    // Settings: published, stored at once; a change of retention or count limit prunes.
    void updateSettings(ClipSettings settings) override;

    // Pasting (see ClipPaster). `form` absent: `pastesPlainByDefault` decides. The returned
    // change count is remembered so the write is not captured. `pasted` counts the paste;
    // `pasted` and `copied` move an unpinned copy to the top with the date now; `failed`
    // (a copy that is gone or has nothing to write) changes nothing.
    PasteResult paste(const Uuid& id, std::optional<ClipPasteForm> form,
                      const std::optional<ClipTargetApp>& target);
    PasteResult paste(const ClipItem& item, std::optional<ClipPasteForm> form,
                      const std::optional<ClipTargetApp>& target) override;
    PasteResult pasteText(const std::string& text,
                          const std::optional<ClipTargetApp>& target) override;
    PasteResult copy(const Uuid& id);
    PasteResult copy(const ClipItem& item) override;
    std::int64_t changeCount() override { return pasteboard_.changeCount(); }
    // What a copy writes to the pasteboard; image bytes are read from the store.
    ClipPayload payloadFor(const ClipItem& item, ClipPasteForm form);

    // Editing. Each changes the history, publishes, prunes and schedules a save; each does
    // nothing and returns false (or nothing) while the history is closed.
    bool remove(const Uuid& id) override;
    // Returns how many copies were removed from the history (pins of the ids go as well).
    std::size_t remove(std::span<const Uuid> ids);
    ClipPinsStatus pin(const Uuid& id) override;
    ClipPinsStatus unpin(const Uuid& id) override;
    std::optional<ClipEditOutcome> edit(const Uuid& id, const std::string& text) override;
    // Puts the first captured content back; nothing when the copy is gone.
    std::optional<ClipEditOutcome> revert(const Uuid& id);
    // An empty or blank title removes the custom title.
    bool setCustomTitle(const Uuid& id, std::optional<std::string> title);
    // Marking a copy sensitive hides it and lets it expire after `sensitiveLifetime`;
    // unmarking keeps it for good.
    bool setSensitive(const Uuid& id, ClipSensitivity sensitivity);
    // Removes the unprotected copies in `range`; pins stay only while `clearKeepsPins` is on.
    // Returns the number of copies removed.
    std::size_t clear(ClipHistory::ClearRange range);
    std::optional<ClipItem> addText(const std::string& text, const ClipItem& from) override;

    // Pinboards.
    bool addPinboard(Pinboard board) override;
    bool renamePinboard(const Uuid& board, std::string name) override;
    bool setPinboardColor(const Uuid& board, std::string color) override;
    bool setPinboardSymbol(const Uuid& board, std::string symbol) override;
    bool removePinboard(const Uuid& board) override;
    bool movePinboards(std::span<const std::size_t> fromOffsets, std::size_t toOffset) override;
    bool addToPinboard(const Uuid& board, const Uuid& item) override;
    bool removeFromPinboard(const Uuid& board, const Uuid& item) override;
    bool moveOnPinboard(const Uuid& board, std::span<const std::size_t> fromOffsets,
                        std::size_t toOffset) override;

    // The library as it stands, and taking in an import.
    const ClipLibrary& library() override { return model_.library(); }
    bool adoptImport(ClipLibrary merged, const std::vector<Uuid>& pinIDs) override;

    // The ids the `pinned` filter takes: pinned copies and those on pinboards.
    ClipIDSet pinnedOrOnPinboard() const;

    // The item with this id in the history or, failing that, among the pins.
    std::optional<ClipItem> item(const Uuid& id) const;
    // The change count last seen or written by the engine.
    std::optional<std::int64_t> lastCount() const { return capture_.lastCount(); }
    bool isSaveScheduled() const { return saveScheduled_; }

    // Writes a scheduled save at once and waits until the store has written everything;
    // background image work is waited for. Call before the process ends.
    void shutdown();

private:
    void capture(const PasteboardSnapshot& snapshot, const std::optional<std::string>& appID);
    // `count` is the change count the copy was read at, remembered when it is kept.
    void finishCapture(CaptureDecision decision, std::int64_t count);
    // The entry kept from the copy with change count `count`, when it may outlive the
    // application that made it: nothing refused it, it is not hidden as sensitive, capture is
    // not paused and the setting is on.
    const ClipItem* keepableOnQuit(std::int64_t count) const;
    // The owner of the copy last kept quit and left the pasteboard empty: puts that copy back.
    bool restoreAfterOwnerLeft(std::int64_t previousCount);
    DetectionContext detectionContext(const std::optional<std::string>& appID,
                                      const std::optional<std::string>& appName) const;
    // Inserts or merges the entry; false when it could not be kept (its image not stored).
    bool keep(DetectedClip detected);
    ClipStoreResult<void> storeImage(const ClipItem& item, const DetectedClip& detected);
    void removeImages(const std::vector<ClipItem>& removed);

    // Every change of the model's items goes through these, which note the same edit for the
    // published history: publishing then moves items instead of copying the whole history.
    void modelInsert(ClipItem item);
    void modelMoveToFront(ClipItem item);
    void modelReplace(ClipItem item);
    void modelRemoved(const std::vector<ClipItem>& removed);
    void modelReset(ClipLibrary library);

    // After every change of the history: prune, republish, schedule a save.
    void changed();
    std::vector<ClipItem> prune();
    void publish();
    void publishPins();
    void scheduleSave();
    void performSave();
    void takeSaveFailures();
    void setProblem(std::optional<std::string> problem);

    void sweepExpired();
    void noteExpiry(const ClipItem& item);
    void recomputeNextExpiry();
    void scheduleExpirySweep();

    void storeSettings(ClipSettings settings);
    ClipIDSet pinnedIDs() const;
    bool isPinned(const Uuid& id) const;
    PasteResult deliver(const Uuid& id, ClipPasteForm form,
                        const std::optional<ClipTargetApp>& target);
    bool replaceItem(const Uuid& id, const std::function<bool(ClipItem&)>& change);
    void reapWorkers();

    // Collaborators.
    ClipPasteboard& pasteboard_;
    ClipPaster& paster_;
    ClipStore* store_;
    ClipPins* pinsBridge_;
    ClipDefaults& defaults_;
    std::function<std::optional<std::string>()> frontApp_;
    std::function<std::optional<std::string>(std::string_view)> appName_;
    NowFunction now_;
    ScheduleFunction schedule_;
    std::function<void(std::function<void()>)> postToMain_;
    Calendar calendar_;
    ClipKeyVocabulary vocabulary_;
    ClipEngineOptions options_;

    // Published state.
    Observable<std::vector<ClipItem>> history_;
    Observable<std::vector<ClipItem>> pins_;
    Observable<std::vector<Pinboard>> pinboards_;
    Observable<ClipPasteboardAccess> access_{ClipPasteboardAccess::allowed};
    Observable<std::vector<ClipPendingCapture>> pending_;
    Observable<std::optional<SkipReason>> lastSkip_;
    Observable<std::uint64_t> captured_{0};
    Observable<std::optional<std::string>> problem_;
    Observable<bool> isHistoryOpen_{false};
    Observable<ClipSettings> settings_;

    // The live history and what is kept beside it.
    ClipHistory model_;
    ClipCapture capture_;  // holds the change count last seen (`lastCount`)
    CaptureRuleSettings rules_;
    bool saveScheduled_ = false;
    bool isHeld_ = false;
    std::optional<Date> nextOpenAttempt_;
    // The entry kept from the last change captured, with that change's count.
    struct KeptChange {
        std::int64_t count = 0;
        Uuid id;
    };
    std::optional<KeptChange> lastKept_;
    // No unprotected copy expires before this; a lower bound, so a look may find nothing.
    std::optional<Date> nextExpiry_;
    bool sweepScheduled_ = false;
    std::uint64_t generation_ = 0;  // scheduled blocks from before a shutdown do nothing

    // Save failures arrive on the store's thread; they wait here for the main thread.
    struct SaveFailures {
        std::mutex lock;
        std::vector<ClipStoreError> errors;
        std::atomic<bool> waiting = false;  // read at every sample without the lock
    };
    std::shared_ptr<SaveFailures> saveFailures_ = std::make_shared<SaveFailures>();
    // Expires with the engine, so late blocks from other threads or the loop do nothing.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::vector<std::future<void>> workers_;
    // Edits of the model not yet applied to the published history, or a whole new history.
    std::vector<std::function<void(std::vector<ClipItem>&)>> historyEdits_;
    bool historyReset_ = false;
};

}  // namespace harbex
