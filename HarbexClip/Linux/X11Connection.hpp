#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace harbex {

// Why the display could not be used.
enum class X11Error { cannotConnect, missingXFixes };

// Frees an event or reply that xcb allocated.
struct XcbFree {
    void operator()(void* pointer) const { std::free(pointer); }
};
using XcbEvent = std::unique_ptr<xcb_generic_event_t, XcbFree>;
template <typename T>
using XcbReply = std::unique_ptr<T, XcbFree>;

// Whether an event handler may run while a blocking wait (a selection read, a timestamp) is in
// progress. Handlers that only serve or count are safe; those that call out into the application
// are not, and their events are held back until the next `dispatch()`.
enum class DuringWaits { deferred, handled };

// Our own connection to the X server, shared by the clipboard, shortcut and window adapters.
// Main thread only. The application watches `fd()` (a QSocketNotifier) and calls `dispatch()`;
// tests call `dispatch()` in a loop.
class X11Connection {
public:
    using Handler = std::function<bool(const xcb_generic_event_t& event)>;
    using Clock = std::chrono::steady_clock;

    // Connects to `display` (nothing: $DISPLAY), sets up XFixes (required), XTest and XInput 2.2
    // (optional), creates a hidden utility window and interns the fixed atom set in one round
    // trip.
    static std::expected<std::unique_ptr<X11Connection>, X11Error> open(
        const char* display = nullptr);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* raw() const { return connection_; }
    xcb_window_t root() const { return root_; }
    // An unmapped window of ours that owns selections and receives replies.
    xcb_window_t window() const { return window_; }
    int fd() const;

    std::uint8_t xfixesFirstEvent() const { return xfixesFirstEvent_; }
    bool hasXTest() const { return hasXTest_; }
    // The XInput major opcode, or nothing when XInput 2.2 is missing.
    std::optional<std::uint8_t> xinputOpcode() const { return xinputOpcode_; }

    // The atom of a name in the fixed set (see X11Connection.cpp); XCB_ATOM_NONE for others, so
    // arbitrary names never reach the server's atom table.
    xcb_atom_t atom(std::string_view name) const;
    // The names of `atoms`, fetched in one pipelined batch and cached (atoms live as long as the
    // server, so the cache never goes stale; it is bounded all the same). Unknown atoms give "".
    std::vector<std::string> atomNames(const std::vector<xcb_atom_t>& atoms);

    // Adds a handler; each event is offered to handlers in order until one returns true.
    // Returns an id for `removeHandler`.
    int addHandler(Handler handler, DuringWaits policy);
    void removeHandler(int id);

    // Processes every pending event without blocking. Re-entrant calls return at once.
    void dispatch();

    // Waits until an event satisfying `match` arrives or `deadline` passes. Meanwhile events go
    // to the handlers marked `DuringWaits::handled`; the others are held for `dispatch()`.
    XcbEvent waitFor(const std::function<bool(const xcb_generic_event_t&)>& match,
                     Clock::time_point deadline);

    // A real server timestamp: a zero-length append to a property of our window and the time of
    // its PropertyNotify. XCB_CURRENT_TIME when the server does not answer within a second.
    xcb_timestamp_t serverTime();

    // A window property as 32-bit values (windows, atoms, cardinals); empty when absent.
    std::vector<std::uint32_t> property32(xcb_window_t window, xcb_atom_t property,
                                          xcb_atom_t type);
    // A window property's raw bytes; nothing when absent.
    std::optional<std::string> propertyBytes(xcb_window_t window, xcb_atom_t property);

    void flush();

private:
    X11Connection() = default;
    struct Entry {
        int id;
        Handler handler;
        DuringWaits policy;
    };
    XcbEvent nextEvent();
    void offer(const xcb_generic_event_t& event, bool waiting);

    xcb_connection_t* connection_ = nullptr;
    xcb_window_t root_ = XCB_NONE;
    xcb_window_t window_ = XCB_NONE;
    std::uint8_t xfixesFirstEvent_ = 0;
    bool hasXTest_ = false;
    std::optional<std::uint8_t> xinputOpcode_;
    std::unordered_map<std::string, xcb_atom_t> atoms_;
    std::unordered_map<xcb_atom_t, std::string> names_;
    std::vector<Entry> handlers_;
    std::deque<XcbEvent> deferred_;
    int nextHandlerID_ = 1;
    bool dispatching_ = false;
};

}  // namespace harbex
