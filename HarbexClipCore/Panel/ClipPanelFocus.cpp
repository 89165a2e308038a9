#include "HarbexClipCore/Panel/ClipPanelFocus.hpp"

#include <cassert>

namespace harbex {

ClipPanelFocus::ClipPanelFocus(ClipFrontmost& system, AppActivator& activator, double settle,
                               ScheduleFunction schedule)
    : system_(system), activator_(activator), settle_(settle), schedule_(std::move(schedule)) {
    assert(schedule_);
}

ClipPanelFocus::~ClipPanelFocus() = default;

void ClipPanelFocus::takeFront() {
    system_.bringForward();
    holdsFront_ = true;
}

std::optional<ClipTargetApp> ClipPanelFocus::open() {
    ++generation_;
    handedBackForPaste_ = false;
    const bool wasHandingBack = handingBackTo_.has_value();

    if (!isOpen_) {
        const auto front = system_.frontApp();
        if (front && front->pid != system_.ownPid()) {
            previous_ = front;
        } else if (wasHandingBack) {
            // The front has not reached the target yet (or came back to us): the target of that
            // hand-back is still where the person was working.
            previous_ = handingBackTo_;
        } else if (!holdsFront_) {
            previous_.reset();
        }
    }
    isOpen_ = true;

    if (!system_.isActive() || wasHandingBack) takeFront();

    handingBackTo_.reset();
    return previous_;
}

bool ClipPanelFocus::activate(const ClipTargetApp& target) {
    if (!system_.isRunning(target)) return false;
    ++generation_;
    holdsFront_ = false;
    handingBackTo_ = target;
    if (isOpen_) handedBackForPaste_ = true;
    return activator_.activate(target);
}

void ClipPanelFocus::reclaimAfterPaste() {
    if (!isOpen_ || !handedBackForPaste_) return;
    handedBackForPaste_ = false;
    if (!system_.isActive()) takeFront();
}

void ClipPanelFocus::regainFront() {
    if (!isOpen_ || system_.isActive()) return;
    ++generation_;
    handedBackForPaste_ = false;
    takeFront();
}

void ClipPanelFocus::close(Close reason) {
    if (!isOpen_) return;
    isOpen_ = false;
    handedBackForPaste_ = false;
    const std::uint64_t closedGeneration = ++generation_;

    switch (reason) {
        case Close::dismissed: giveFrontBack(); return;
        case Close::lostFront:
        case Close::toClip: holdsFront_ = false; return;
        case Close::clickedOutside:
        case Close::handedOff: {
            std::weak_ptr<int> alive = alive_;
            schedule_(settle_, [this, alive, reason, closedGeneration] {
                if (alive.expired()) return;
                settleAfterClose(reason, closedGeneration);
            });
            return;
        }
    }
}

void ClipPanelFocus::settleAfterClose(Close reason, std::uint64_t closedGeneration) {
    if (generation_ != closedGeneration || isOpen_) return;
    if (reason == Close::handedOff && system_.hasVisibleWindow()) {
        // One of our own windows took over; the front stays with it.
        holdsFront_ = false;
        return;
    }
    giveFrontBack();
}

void ClipPanelFocus::giveFrontBack() {
    if (!holdsFront_) return;
    holdsFront_ = false;
    // Someone else already has the front (the person clicked another application): leave it.
    if (!system_.isActive()) return;

    if (previous_ && system_.isRunning(*previous_)) {
        handingBackTo_ = previous_;
        activator_.activate(*previous_);
        return;
    }
    const auto fallback = system_.fallbackApp();
    if (fallback && fallback->pid != system_.ownPid()) {
        handingBackTo_ = fallback;
        activator_.activate(*fallback);
    }
}

}  // namespace harbex
