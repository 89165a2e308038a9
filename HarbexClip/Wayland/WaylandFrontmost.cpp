#include "HarbexClip/Wayland/WaylandFrontmost.hpp"

#include <signal.h>
#include <unistd.h>

#include <algorithm>

namespace harbex {

WaylandFrontmost::WaylandFrontmost(WaylandDesktop& desktop, std::string ownAppID)
    : desktop_(desktop), ownAppID_(std::move(ownAppID)) {}

ClipTargetApp WaylandFrontmost::appOf(const WaylandToplevel& toplevel) {
    ClipTargetApp app;
    app.pid = toplevel.appID == ownAppID_ ? ownPid() : -toplevel.serial;
    if (auto entry = entries_.match(toplevel.appID, toplevel.appID, std::string())) {
        app.bundleID = entry->id;
        if (!entry->name.empty()) app.name = entry->name;
    } else if (!toplevel.appID.empty()) {
        app.bundleID = toplevel.appID;
    }
    if (!app.name && app.bundleID) app.name = app.bundleID;
    return app;
}

std::optional<ClipTargetApp> WaylandFrontmost::frontApp() {
    auto active = desktop_.activeToplevel();
    if (!active) return std::nullopt;
    return appOf(*active);
}

std::int32_t WaylandFrontmost::ownPid() { return static_cast<std::int32_t>(::getpid()); }

bool WaylandFrontmost::isActive() {
    auto active = desktop_.activeToplevel();
    return active && active->appID == ownAppID_;
}

bool WaylandFrontmost::hasVisibleWindow() {
    if (ownVisible_) return ownVisible_();
    return std::ranges::any_of(desktop_.toplevels(), [&](const WaylandToplevel& toplevel) {
        return toplevel.appID == ownAppID_;
    });
}

void WaylandFrontmost::bringForward() {
    for (const auto& toplevel : desktop_.byRecentActivity()) {
        if (toplevel.appID == ownAppID_) {
            desktop_.activate(toplevel.serial);
            return;
        }
    }
}

bool WaylandFrontmost::isRunning(const ClipTargetApp& target) {
    if (target.pid == ownPid()) return true;
    if (target.pid > 0) return ::kill(target.pid, 0) == 0;
    return std::ranges::any_of(desktop_.toplevels(), [&](const WaylandToplevel& toplevel) {
        return toplevel.serial == -target.pid;
    });
}

std::optional<ClipTargetApp> WaylandFrontmost::fallbackApp() {
    for (const auto& toplevel : desktop_.byRecentActivity()) {
        if (toplevel.appID != ownAppID_) return appOf(toplevel);
    }
    return std::nullopt;
}

}  // namespace harbex
