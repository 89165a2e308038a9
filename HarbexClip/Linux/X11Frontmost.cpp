#include "HarbexClip/Linux/X11Frontmost.hpp"

#include <signal.h>
#include <unistd.h>
#include <xcb/res.h>

#include <algorithm>
#include <cerrno>

#include "HarbexClip/Linux/X11Activator.hpp"
#include "HarbexClip/Linux/X11SelectionData.hpp"

namespace harbex {

X11Frontmost::X11Frontmost(X11Connection& connection) : connection_(connection) {}

xcb_window_t X11Frontmost::activeWindow() {
    const auto active = connection_.property32(
        connection_.root(), connection_.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
    return active.empty() ? xcb_window_t(XCB_NONE) : active.front();
}

std::int32_t X11Frontmost::windowPid(xcb_window_t window) {
    if (window == XCB_NONE) return 0;
    if (auto pid = x11data::windowPid(
            connection_.property32(window, connection_.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL)))
        return *pid;
    // Clients that do not set _NET_WM_PID: ask the server which local process owns the window.
    xcb_connection_t* c = connection_.raw();
    xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    XcbReply<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(c, xcb_res_query_client_ids(c, 1, &spec), nullptr));
    if (!reply) return 0;
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem;
         xcb_res_client_id_value_next(&it)) {
        if (!(it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID)) continue;
        if (xcb_res_client_id_value_value_length(it.data) < 1) continue;
        return static_cast<std::int32_t>(*xcb_res_client_id_value_value(it.data));
    }
    return 0;
}

std::pair<std::string, std::string> X11Frontmost::windowClass(xcb_window_t window) {
    const auto value = connection_.propertyBytes(window, XCB_ATOM_WM_CLASS);
    if (!value) return {};
    return x11data::windowClass(*value);
}

std::optional<ClipTargetApp> X11Frontmost::appOfWindow(xcb_window_t window) {
    if (window == XCB_NONE) return std::nullopt;
    ClipTargetApp app;
    app.pid = windowPid(window);
    const auto [instance, windowClass] = this->windowClass(window);
    const auto gtkID = x11data::gtkApplicationId(
        connection_.propertyBytes(window, connection_.atom("_GTK_APPLICATION_ID")).value_or(""));
    if (auto entry = entries_.match(instance, windowClass, gtkID)) {
        app.bundleID = entry->id;
        app.name = entry->name.empty() ? entry->id : entry->name;
    } else if (!windowClass.empty() || !instance.empty()) {
        const std::string name = windowClass.empty() ? instance : windowClass;
        app.bundleID = name;
        app.name = name;
    }
    if (app.pid == 0 && !app.bundleID) return std::nullopt;
    return app;
}

std::optional<ClipTargetApp> X11Frontmost::frontApp() { return appOfWindow(activeWindow()); }

std::int32_t X11Frontmost::ownPid() { return static_cast<std::int32_t>(::getpid()); }

bool X11Frontmost::isActive() {
    const xcb_window_t active = activeWindow();
    if (active == XCB_NONE) return false;
    if (ownWindows_) {
        const auto own = ownWindows_();
        if (std::ranges::find(own, active) != own.end()) return true;
    }
    return windowPid(active) == ownPid();
}

std::vector<xcb_window_t> X11Frontmost::ourWindows() {
    if (ownWindows_) return ownWindows_();
    std::vector<xcb_window_t> result;
    for (xcb_window_t window : connection_.property32(
             connection_.root(), connection_.atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW)) {
        if (windowPid(window) == ownPid()) result.push_back(window);
    }
    return result;
}

bool X11Frontmost::hasVisibleWindow() {
    xcb_connection_t* c = connection_.raw();
    for (xcb_window_t window : ourWindows()) {
        XcbReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr));
        if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) return true;
    }
    return false;
}

void X11Frontmost::bringForward() {
    const auto windows = ourWindows();
    xcb_connection_t* c = connection_.raw();
    for (xcb_window_t window : windows) {
        XcbReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr));
        if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) {
            X11Activator::requestActivation(connection_, window);
            return;
        }
    }
}

bool X11Frontmost::isRunning(const ClipTargetApp& target) {
    if (target.pid <= 0) return false;
    return ::kill(target.pid, 0) == 0 || errno == EPERM;
}

std::optional<ClipTargetApp> X11Frontmost::fallbackApp() {
    const auto stacking = connection_.property32(
        connection_.root(), connection_.atom("_NET_CLIENT_LIST_STACKING"), XCB_ATOM_WINDOW);
    const xcb_atom_t typeAtom = connection_.atom("_NET_WM_WINDOW_TYPE");
    const xcb_atom_t normal = connection_.atom("_NET_WM_WINDOW_TYPE_NORMAL");
    // Bottom to top: the last normal window of another process is the topmost one.
    for (auto it = stacking.rbegin(); it != stacking.rend(); ++it) {
        const auto types = connection_.property32(*it, typeAtom, XCB_ATOM_ATOM);
        if (!types.empty() && types.front() != normal) continue;
        const auto pid = windowPid(*it);
        if (pid == 0 || pid == ownPid()) continue;
        if (auto app = appOfWindow(*it)) return app;
    }
    // Else a running file manager, the desktop's handler for folders.
    if (auto handler = DesktopEntries::defaultHandler("inode/directory")) {
        for (xcb_window_t window : stacking) {
            auto app = appOfWindow(window);
            if (app && app->bundleID == *handler && app->pid != ownPid()) return app;
        }
    }
    return std::nullopt;
}

}  // namespace harbex
