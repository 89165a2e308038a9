#include "HarbexClip/Linux/X11Activator.hpp"

#include <xcb/res.h>

#include "HarbexClip/Linux/X11Frontmost.hpp"

namespace harbex {

void X11Activator::requestActivation(X11Connection& connection, xcb_window_t window) {
    const auto active = connection.property32(
        connection.root(), connection.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection.atom("_NET_ACTIVE_WINDOW");
    // Source 2 (a pager) makes window managers honour the request instead of only flagging the
    // window as demanding attention.
    message.data.data32[0] = 2;
    message.data.data32[1] = connection.serverTime();
    message.data.data32[2] = active.empty() ? 0 : active.front();
    xcb_send_event(connection.raw(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    connection.flush();
}

bool X11Activator::activate(const ClipTargetApp& target) {
    if (target.pid <= 0) return false;
    X11Frontmost windows(connection_);
    const auto stacking = connection_.property32(
        connection_.root(), connection_.atom("_NET_CLIENT_LIST_STACKING"), XCB_ATOM_WINDOW);
    for (auto it = stacking.rbegin(); it != stacking.rend(); ++it) {
        if (windows.windowPid(*it) != target.pid) continue;
        requestActivation(connection_, *it);
        return true;
    }
    return false;
}

}  // namespace harbex
