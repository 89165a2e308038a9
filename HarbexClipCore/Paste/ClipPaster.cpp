#include "HarbexClipCore/Paste/ClipPaster.hpp"

#include <cassert>

namespace harbex {

bool isEmpty(const ClipPayload& payload) {
    return !payload.text && !payload.rtf && !payload.html && !payload.url &&
           payload.fileURLs.empty() && !payload.image;
}

ClipPaster::ClipPaster(ClipPasteboard& pasteboard, PasteTyper& typer, AppActivator& activator,
                       std::function<bool()> isTrusted, double delay, ScheduleFunction schedule,
                       std::string sourceID)
    : pasteboard_(pasteboard),
      typer_(typer),
      activator_(activator),
      isTrusted_(std::move(isTrusted)),
      delay_(delay),
      schedule_(std::move(schedule)),
      sourceID_(std::move(sourceID)) {
    assert(isTrusted_ && schedule_);
}

PasteResult ClipPaster::paste(const ClipPayload& payload,
                              const std::optional<ClipTargetApp>& target) {
    if (isEmpty(payload)) return {PasteOutcome::failed, pasteboard_.changeCount()};

    std::optional<std::string_view> source;
    if (!sourceID_.empty()) source = sourceID_;
    const std::int64_t written = pasteboard_.write(payload, source);

    if (!target) return {PasteOutcome::copied, written};
    if (!isTrusted_()) return {PasteOutcome::copied, written};
    if (!activator_.activate(*target)) return {PasteOutcome::copied, written};

    // Each paste owns its keystroke: a second paste within the delay adds another rather than
    // replacing this one, since the person asked for two pastes.
    PasteTyper* typer = &typer_;
    schedule_(delay_, [typer] { typer->typePaste(); });
    return {PasteOutcome::pasted, written};
}

}  // namespace harbex
