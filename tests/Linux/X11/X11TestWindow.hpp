#pragma once

#include <xcb/xcb.h>
#include <xcb/xcb_icccm.h>

#include <mutex>
#include <string>
#include <vector>

#include "HarbexClip/Linux/X11Connection.hpp"

namespace harbex::testing_x11 {

// A normal top-level window on its own connection that records the keys typed into it, standing
// in for another application.
class TestWindow {
public:
    struct Key {
        xcb_keycode_t keycode;
        std::uint16_t state;
    };

    TestWindow(const std::string& display, const std::string& instance,
               const std::string& windowClass, std::uint32_t pid) {
        auto connection = X11Connection::open(display.c_str());
        connection_ = std::move(*connection);
        xcb_connection_t* c = connection_->raw();
        window_ = xcb_generate_id(c);
        const std::uint32_t mask = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_create_window(c, XCB_COPY_FROM_PARENT, window_, connection_->root(), 10, 10, 200, 100,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &mask);
        const std::string wmClass = instance + '\0' + windowClass + '\0';
        xcb_icccm_set_wm_class(c, window_, std::uint32_t(wmClass.size()), wmClass.data());
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, connection_->atom("_NET_WM_PID"),
                            XCB_ATOM_CARDINAL, 32, 1, &pid);
        xcb_map_window(c, window_);
        connection_->addHandler(
            [this](const xcb_generic_event_t& event) {
                if ((event.response_type & 0x7f) != XCB_KEY_PRESS) return false;
                const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
                keys_.push_back(Key{press.detail, press.state});
                return true;
            },
            DuringWaits::handled);
        connection_->flush();
    }

    xcb_window_t id() const { return window_; }
    X11Connection& connection() { return *connection_; }
    // Processes this window's events; returns the keys typed so far.
    const std::vector<Key>& keys() {
        connection_->dispatch();
        return keys_;
    }
    void unmap() {
        xcb_unmap_window(connection_->raw(), window_);
        connection_->flush();
    }

private:
    std::unique_ptr<X11Connection> connection_;
    xcb_window_t window_ = XCB_NONE;
    std::vector<Key> keys_;
};

}  // namespace harbex::testing_x11
