#pragma once

#include <functional>
#include <string>

#include "HarbexClip/Linux/DesktopEntries.hpp"
#include "HarbexClip/Wayland/WaylandDesktop.hpp"
#include "HarbexClipCore/Paste/ClipFrontmost.hpp"

namespace harbex {

// The front application from the compositor's window list: the active window's app_id is a
// desktop-file id (or matches one's StartupWMClass), which gives the identity and the name as on
// X11. The compositor does not name a window's process, so another application's target carries
// the negated serial of its window as `pid`: targets stay distinct, and activating one finds the
// very window again. Our own windows (app_id `ownAppID`) carry our real pid. Main thread.
class WaylandFrontmost final : public ClipFrontmost {
public:
    using OwnWindowsVisible = std::function<bool()>;

    WaylandFrontmost(WaylandDesktop& desktop, std::string ownAppID);

    // Whether one of our windows is shown; without it, whether the compositor lists one.
    void setOwnWindowsVisible(OwnWindowsVisible visible) { ownVisible_ = std::move(visible); }

    std::optional<ClipTargetApp> frontApp() override;
    std::int32_t ownPid() override;
    bool isActive() override;
    bool hasVisibleWindow() override;
    void bringForward() override;
    bool isRunning(const ClipTargetApp& target) override;
    std::optional<ClipTargetApp> fallbackApp() override;

    // The application a window belongs to.
    ClipTargetApp appOf(const WaylandToplevel& toplevel);

private:
    WaylandDesktop& desktop_;
    std::string ownAppID_;
    OwnWindowsVisible ownVisible_;
    DesktopEntries entries_;
};

}  // namespace harbex
