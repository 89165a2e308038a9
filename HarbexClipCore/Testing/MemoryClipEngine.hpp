#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HarbexClipCore/Library/ClipLibraryEngine.hpp"
#include "HarbexClipCore/Model/ClipHistory.hpp"
#include "HarbexClipCore/Paste/ClipPaster.hpp"
#include "HarbexClipCore/Testing/FixedClock.hpp"
#include "HarbexClipCore/Testing/ManualScheduler.hpp"
#include "HarbexClipCore/Testing/MemoryClipPins.hpp"
#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"
#include "HarbexClipCore/Testing/RecordingActivator.hpp"
#include "HarbexClipCore/Testing/RecordingPasteTyper.hpp"

namespace harbex {

// An engine for panel and library tests: a ClipHistory, in-memory pins and a real ClipPaster
// over a MemoryPasteboard, a recording typer and activator, all on a fixed clock and a manual
// scheduler. It publishes after every change the way the engine does; nothing is saved.
class MemoryClipEngine final : public ClipLibraryEngine {
public:
    explicit MemoryClipEngine(FixedClock& clock, ManualScheduler& scheduler);

    // Seeds the history (newest first) and publishes it.
    void setItems(std::vector<ClipItem> items);
    // A copy arriving while the panel is open: inserted at the top, or moved there when its
    // fingerprint is known.
    void capture(ClipItem item);

    Observable<std::vector<ClipItem>>& history() override { return history_; }
    Observable<std::vector<ClipItem>>& pins() override { return pins_; }
    Observable<std::vector<Pinboard>>& pinboards() override { return pinboards_; }
    Observable<ClipSettings>& settings() override { return settings_; }
    Observable<std::optional<std::string>>& problem() override { return problem_; }

    PasteResult paste(const ClipItem& item, std::optional<ClipPasteForm> form,
                      const std::optional<ClipTargetApp>& target) override;
    PasteResult pasteText(const std::string& text,
                          const std::optional<ClipTargetApp>& target) override;
    PasteResult copy(const ClipItem& item) override;
    std::int64_t changeCount() override { return pasteboard.changeCount(); }
    bool remove(const Uuid& id) override;
    ClipPinsStatus pin(const Uuid& id) override;
    ClipPinsStatus unpin(const Uuid& id) override;
    bool addToPinboard(const Uuid& board, const Uuid& item) override;
    std::optional<ClipItem> addText(const std::string& text, const ClipItem& from) override;

    std::optional<ClipEditOutcome> edit(const Uuid& id, const std::string& text) override;
    bool removeFromPinboard(const Uuid& board, const Uuid& item) override;
    const ClipLibrary& library() override { return model.library(); }
    bool adoptImport(ClipLibrary merged, const std::vector<Uuid>& pinIDs) override;

    bool addPinboard(Pinboard board) override;
    bool renamePinboard(const Uuid& board, std::string name) override;
    bool setPinboardColor(const Uuid& board, std::string color) override;
    bool setPinboardSymbol(const Uuid& board, std::string symbol) override;
    bool removePinboard(const Uuid& board) override;
    bool movePinboards(std::span<const std::size_t> fromOffsets, std::size_t toOffset) override;
    bool moveOnPinboard(const Uuid& board, std::span<const std::size_t> fromOffsets,
                        std::size_t toOffset) override;
    void updateSettings(ClipSettings settings) override { settings_.set(std::move(settings)); }

    // The payload a copy puts on the pasteboard (plain drops the formatting).
    static ClipPayload payloadOf(const ClipItem& item, ClipPasteForm form);

    FixedClock& clock;
    ManualScheduler& scheduler;
    MemoryPasteboard pasteboard;
    RecordingPasteTyper typer;
    RecordingActivator activator;
    MemoryClipPins pinStore;
    ClipHistory model;
    ClipPaster paster;
    bool isTrusted = true;
    int publishCount = 0;

private:
    const ClipItem* find(const Uuid& id) const;
    void publish();

    Observable<std::vector<ClipItem>> history_;
    Observable<std::vector<ClipItem>> pins_;
    Observable<std::vector<Pinboard>> pinboards_;
    Observable<ClipSettings> settings_;
    Observable<std::optional<std::string>> problem_;
};

}  // namespace harbex
