#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "HarbexClipCore/Paste/AppActivator.hpp"
#include "HarbexClipCore/Paste/ClipTargetApp.hpp"
#include "HarbexClipCore/Paste/PasteOutcome.hpp"
#include "HarbexClipCore/Paste/PasteTyper.hpp"
#include "HarbexClipCore/Pasteboard/ClipPasteboard.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardSnapshot.hpp"
#include "HarbexClipCore/Support/Clock.hpp"

namespace harbex {

// The source identifier written with every paste when the application has none of its own.
inline constexpr std::string_view kDefaultPasteSourceID = "app.harbexapps.clip";
// Seconds between asking for the target's activation and typing the paste keystroke: long
// enough for the window manager to move the keyboard focus.
inline constexpr double kPasteKeystrokeDelay = 0.12;

// True when the payload has nothing to write (no text, rich text, html, link, files or image).
// The concealed flag alone is not content.
bool isEmpty(const ClipPayload& payload);

// What `ClipPaster::paste` did, and the pasteboard change count to remember as our own write.
struct PasteResult {
    PasteOutcome outcome = PasteOutcome::failed;
    std::int64_t changeCount = 0;

    friend bool operator==(const PasteResult&, const PasteResult&) = default;
};

// Puts a copy back on the pasteboard and, where the system allows it, types it into the
// application that was in front. One per process; main thread only. Never throws; every path
// ends in an outcome.
class ClipPaster {
public:
    // `pasteboard`, `typer` and `activator` are observed, not owned, and must outlive the paster
    // and any keystroke it has scheduled. `isTrusted` says whether synthetic input is allowed;
    // `schedule(delay, block)` runs the block later on the main loop.
    ClipPaster(ClipPasteboard& pasteboard, PasteTyper& typer, AppActivator& activator,
               std::function<bool()> isTrusted, double delay, ScheduleFunction schedule,
               std::string sourceID = std::string(kDefaultPasteSourceID));

    // Writes `payload` and, with a target, trust and a successful activation, schedules the paste
    // keystroke `delay` seconds later; returns before it is typed. An empty payload writes
    // nothing and gives `failed` with the current change count; otherwise the count is always the
    // one the write returned. Two quick pastes schedule two independent keystrokes.
    PasteResult paste(const ClipPayload& payload, const std::optional<ClipTargetApp>& target);

    // The identifier written as the pasteboard source; an empty one writes no source marker.
    const std::string& sourceID() const { return sourceID_; }
    void setSourceID(std::string sourceID) { sourceID_ = std::move(sourceID); }

    double delay() const { return delay_; }

private:
    ClipPasteboard& pasteboard_;
    PasteTyper& typer_;
    AppActivator& activator_;
    std::function<bool()> isTrusted_;
    double delay_;
    ScheduleFunction schedule_;
    std::string sourceID_;
};

}  // namespace harbex
