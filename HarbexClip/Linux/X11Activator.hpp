#pragma once

#include <xcb/xcb.h>

#include "HarbexClip/Linux/X11Connection.hpp"
#include "HarbexClipCore/Paste/AppActivator.hpp"

namespace harbex {

// Brings another application's window forward with an EWMH activation request.
class X11Activator final : public AppActivator {
public:
    explicit X11Activator(X11Connection& connection) : connection_(connection) {}
    bool activate(const ClipTargetApp& target) override;

    // Sends the _NET_ACTIVE_WINDOW request for `window` as a pager would (source 2), with a
    // real timestamp and our currently active window.
    static void requestActivation(X11Connection& connection, xcb_window_t window);

private:
    X11Connection& connection_;
};

}  // namespace harbex
