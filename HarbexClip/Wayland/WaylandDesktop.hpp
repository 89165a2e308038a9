#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HarbexClip/Wayland/WaylandPasteboard.hpp"

struct wl_display;
struct wl_registry;
struct wl_seat;
struct zwlr_foreign_toplevel_manager_v1;
struct zwlr_foreign_toplevel_handle_v1;
struct zwp_virtual_keyboard_manager_v1;

namespace harbex {

// One window of any application as the compositor lists it. The compositor does not say which
// process owns a window, so `serial` (ours, counting from 1 in order of appearance, never reused)
// is what tells two windows apart.
struct WaylandToplevel {
    std::int32_t serial = 0;
    std::string appID;
    std::string title;
    bool activated = false;
};

// Our connection for the desktop jobs other than the clipboard: the list of windows and which
// one is active (zwlr_foreign_toplevel_manager_v1), activating one of them, and the virtual
// keyboard manager the paste keystroke goes through. Which of these the compositor offers is
// known once `open` returns; the rest of the system chooses its implementations from that.
//
// Main thread only. The owner watches `fd()` and calls `dispatch()` when it is readable; queries
// dispatch what is already queued first. A lost compositor makes `dispatch()` false for good and
// the lists empty; nothing spins.
class WaylandDesktop {
public:
    // Connects to `display` (nothing: $WAYLAND_DISPLAY) and reads the globals and the current
    // windows. Fails only when no compositor answers.
    static std::expected<std::unique_ptr<WaylandDesktop>, WaylandError> open(
        const char* display = nullptr);
    ~WaylandDesktop();
    WaylandDesktop(const WaylandDesktop&) = delete;
    WaylandDesktop& operator=(const WaylandDesktop&) = delete;

    int fd() const;
    bool dispatch();
    // Every event the compositor sent before now has been handled (bounded by a second).
    bool roundTrip();
    bool lost() const { return lost_; }

    bool hasForeignToplevels() const { return toplevelManager_ != nullptr; }
    bool hasVirtualKeyboard() const { return keyboardManager_ != nullptr && seat_ != nullptr; }
    bool hasLayerShell() const { return layerShell_; }
    bool hasDataControl() const { return dataControl_; }

    // The windows, oldest first, as of the last complete update from the compositor.
    std::vector<WaylandToplevel> toplevels();
    // The window with the keyboard, if any.
    std::optional<WaylandToplevel> activeToplevel();
    // Windows most recently active first (those never active since we connected at the end).
    std::vector<WaylandToplevel> byRecentActivity();
    // Asks the compositor to activate the window; false when it is gone or activation is not
    // offered. The compositor may still decline.
    bool activate(std::int32_t serial);

    wl_display* display() const { return display_; }
    wl_seat* seat() const { return seat_; }
    zwp_virtual_keyboard_manager_v1* virtualKeyboardManager() const { return keyboardManager_; }

private:
    struct Handle {
        WaylandDesktop* owner = nullptr;
        zwlr_foreign_toplevel_handle_v1* proxy = nullptr;
        WaylandToplevel pending;  // as the events arrive
        WaylandToplevel current;  // as of the last `done`
        bool complete = false;
        std::uint64_t lastActivated = 0;
    };

    WaylandDesktop() = default;
    void readDisplay(bool readable);
    Handle* find(std::int32_t serial);
    void onToplevel(zwlr_foreign_toplevel_handle_v1* proxy);
    void onDone(Handle& handle);
    void onClosed(Handle& handle);

    wl_display* display_ = nullptr;
    wl_registry* registry_ = nullptr;
    wl_seat* seat_ = nullptr;
    zwlr_foreign_toplevel_manager_v1* toplevelManager_ = nullptr;
    zwp_virtual_keyboard_manager_v1* keyboardManager_ = nullptr;
    bool layerShell_ = false;
    bool dataControl_ = false;
    bool lost_ = false;
    std::int32_t nextSerial_ = 1;
    std::uint64_t activations_ = 0;
    std::vector<std::unique_ptr<Handle>> handles_;

    friend struct WaylandDesktopListeners;
};

}  // namespace harbex
