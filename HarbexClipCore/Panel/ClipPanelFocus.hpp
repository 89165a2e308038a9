#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "HarbexClipCore/Paste/AppActivator.hpp"
#include "HarbexClipCore/Paste/ClipFrontmost.hpp"
#include "HarbexClipCore/Paste/ClipTargetApp.hpp"
#include "HarbexClipCore/Support/Clock.hpp"

namespace harbex {

// How long after the panel closes by a click elsewhere, or by handing off to another window, the
// focus keeper waits before judging who has the front: long enough for the window manager to
// move the focus to what was clicked.
inline constexpr double kPanelFocusSettle = 0.25;

// Remembers which application was in front when the panel opened, takes the front for the panel
// and hands it back (to paste, or on close) without fighting the window system. One per process,
// shared with the paster as its activator. Main thread only.
class ClipPanelFocus final : public AppActivator {
public:
    // Why the panel closes.
    enum class Close {
        dismissed,       // Escape or a close key: give the front back at once
        clickedOutside,  // another window was clicked: judge after the settle delay
        lostFront,       // something else took the front: leave it there
        toClip,          // the library window takes over: keep the front here
        handedOff,       // another window of ours may take over: judge after the settle delay
    };

    // `system` and `activator` are observed and must outlive this object; `schedule(delay,
    // block)` runs a block later on the main loop. A block still pending when this object is
    // destroyed does nothing.
    ClipPanelFocus(ClipFrontmost& system, AppActivator& activator, double settle,
                   ScheduleFunction schedule);
    ~ClipPanelFocus() override;
    ClipPanelFocus(const ClipPanelFocus&) = delete;
    ClipPanelFocus& operator=(const ClipPanelFocus&) = delete;

    // Called as the panel shows. Remembers the front application (unless the panel was already
    // open), takes the front when this application does not have it, and returns the application
    // to paste into.
    std::optional<ClipTargetApp> open();

    // Hands the front to `target` on purpose (the paster's activation). False, with nothing
    // changed, when the target is no longer running; otherwise the wrapped activator's answer.
    bool activate(const ClipTargetApp& target) override;

    // After a paste while the panel stays open: take the front back for the panel.
    void reclaimAfterPaste();
    // The open panel noticed it lost the front (not by a hand-back): take it back.
    void regainFront();

    // Called as the panel hides; does nothing when it is not open.
    void close(Close reason);

    const std::optional<ClipTargetApp>& previous() const { return previous_; }
    bool isOpen() const { return isOpen_; }
    bool holdsFront() const { return holdsFront_; }
    bool handedBackForPaste() const { return handedBackForPaste_; }
    double settle() const { return settle_; }
    std::uint64_t generation() const { return generation_; }
    const std::optional<ClipTargetApp>& handingBackTo() const { return handingBackTo_; }

private:
    void takeFront();
    void giveFrontBack();
    void settleAfterClose(Close reason, std::uint64_t closedGeneration);

    ClipFrontmost& system_;
    AppActivator& activator_;
    std::optional<ClipTargetApp> previous_;
    bool isOpen_ = false;
    bool holdsFront_ = false;
    bool handedBackForPaste_ = false;
    double settle_;
    ScheduleFunction schedule_;
    std::uint64_t generation_ = 0;
    std::optional<ClipTargetApp> handingBackTo_;
    // Scheduled checks hold a weak reference to this token; once the keeper is destroyed they
    // find it expired and do nothing.
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

}  // namespace harbex
