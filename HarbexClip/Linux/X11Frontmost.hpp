#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "HarbexClip/Linux/DesktopEntries.hpp"
#include "HarbexClip/Linux/X11Connection.hpp"
#include "HarbexClipCore/Paste/ClipFrontmost.hpp"

namespace harbex {

// The front application and our own windows, through EWMH root properties. Main thread.
class X11Frontmost final : public ClipFrontmost {
public:
    using OwnWindows = std::function<std::vector<xcb_window_t>()>;

    explicit X11Frontmost(X11Connection& connection);

    // The application's top-level windows; without it they are found by our pid.
    void setOwnWindows(OwnWindows ownWindows) { ownWindows_ = std::move(ownWindows); }

    std::optional<ClipTargetApp> frontApp() override;
    std::int32_t ownPid() override;
    bool isActive() override;
    bool hasVisibleWindow() override;
    void bringForward() override;
    bool isRunning(const ClipTargetApp& target) override;
    std::optional<ClipTargetApp> fallbackApp() override;

    // The process of a window: _NET_WM_PID, else the X-Resource client id; 0 when unknown.
    std::int32_t windowPid(xcb_window_t window);
    // The application a window belongs to.
    std::optional<ClipTargetApp> appOfWindow(xcb_window_t window);
    // WM_CLASS as (instance, class).
    std::pair<std::string, std::string> windowClass(xcb_window_t window);
    xcb_window_t activeWindow();

private:
    std::vector<xcb_window_t> ourWindows();

    X11Connection& connection_;
    OwnWindows ownWindows_;
    DesktopEntries entries_;
};

}  // namespace harbex
