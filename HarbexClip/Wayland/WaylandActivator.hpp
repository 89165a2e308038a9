#pragma once

#include "HarbexClip/Wayland/WaylandDesktop.hpp"
#include "HarbexClipCore/Paste/AppActivator.hpp"

namespace harbex {

// Hands the keyboard back to a window the compositor listed, by the serial its target carries
// (see WaylandFrontmost). Main thread.
class WaylandActivator final : public AppActivator {
public:
    explicit WaylandActivator(WaylandDesktop& desktop) : desktop_(desktop) {}
    bool activate(const ClipTargetApp& target) override {
        return target.pid < 0 && desktop_.activate(-target.pid);
    }

private:
    WaylandDesktop& desktop_;
};

}  // namespace harbex
