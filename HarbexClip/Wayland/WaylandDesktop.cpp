#include "HarbexClip/Wayland/WaylandDesktop.hpp"

#include <errno.h>
#include <poll.h>
#include <wayland-client.h>

#include <algorithm>
#include <chrono>
#include <string_view>

#include "virtual-keyboard-unstable-v1-client-protocol.h"
#include "wlr-foreign-toplevel-management-unstable-v1-client-protocol.h"

namespace harbex {

namespace {

constexpr std::uint32_t kToplevelVersion = 3;

}  // namespace

struct WaylandDesktopListeners {
    static void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t version) {
        auto& self = *static_cast<WaylandDesktop*>(data);
        const std::string_view which(interface);
        if (which == wl_seat_interface.name && !self.seat_) {
            self.seat_ =
                static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
        } else if (which == zwlr_foreign_toplevel_manager_v1_interface.name) {
            self.toplevelManager_ = static_cast<zwlr_foreign_toplevel_manager_v1*>(
                wl_registry_bind(registry, name, &zwlr_foreign_toplevel_manager_v1_interface,
                                 std::min(version, kToplevelVersion)));
            zwlr_foreign_toplevel_manager_v1_add_listener(self.toplevelManager_, &kManager, data);
        } else if (which == zwp_virtual_keyboard_manager_v1_interface.name) {
            self.keyboardManager_ = static_cast<zwp_virtual_keyboard_manager_v1*>(
                wl_registry_bind(registry, name, &zwp_virtual_keyboard_manager_v1_interface, 1));
        } else if (which == "zwlr_layer_shell_v1") {
            self.layerShell_ = true;
        } else if (which == "ext_data_control_manager_v1" ||
                   (which == "zwlr_data_control_manager_v1" &&
                    version >= WaylandPasteboard::kMinimumWlrVersion)) {
            self.dataControl_ = true;
        }
    }

    static constexpr wl_registry_listener kRegistry{global,
                                                    [](void*, wl_registry*, std::uint32_t) {}};

    static constexpr zwlr_foreign_toplevel_manager_v1_listener kManager{
        [](void* data, zwlr_foreign_toplevel_manager_v1*,
           zwlr_foreign_toplevel_handle_v1* toplevel) {
            static_cast<WaylandDesktop*>(data)->onToplevel(toplevel);
        },
        [](void* data, zwlr_foreign_toplevel_manager_v1* manager) {
            // The compositor withdrew the list: we can no longer tell who is in front.
            auto& self = *static_cast<WaylandDesktop*>(data);
            zwlr_foreign_toplevel_manager_v1_destroy(manager);
            self.toplevelManager_ = nullptr;
        },
    };

    static WaylandDesktop::Handle& handle(void* data) {
        return *static_cast<WaylandDesktop::Handle*>(data);
    }

    static constexpr zwlr_foreign_toplevel_handle_v1_listener kHandle{
        [](void* data, zwlr_foreign_toplevel_handle_v1*, const char* title) {
            handle(data).pending.title = title ? title : "";
        },
        [](void* data, zwlr_foreign_toplevel_handle_v1*, const char* appID) {
            handle(data).pending.appID = appID ? appID : "";
        },
        [](void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {},
        [](void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {},
        [](void* data, zwlr_foreign_toplevel_handle_v1*, wl_array* states) {
            bool activated = false;
            const auto* state = static_cast<const std::uint32_t*>(states->data);
            for (std::size_t i = 0; i < states->size / sizeof(std::uint32_t); ++i) {
                if (state[i] == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED) activated = true;
            }
            handle(data).pending.activated = activated;
        },
        [](void* data, zwlr_foreign_toplevel_handle_v1*) {
            handle(data).owner->onDone(handle(data));
        },
        [](void* data, zwlr_foreign_toplevel_handle_v1*) {
            handle(data).owner->onClosed(handle(data));
        },
        [](void*, zwlr_foreign_toplevel_handle_v1*, zwlr_foreign_toplevel_handle_v1*) {},
    };
};

std::expected<std::unique_ptr<WaylandDesktop>, WaylandError> WaylandDesktop::open(
    const char* display) {
    std::unique_ptr<WaylandDesktop> desktop(new WaylandDesktop());
    desktop->display_ = wl_display_connect(display);
    if (!desktop->display_) return std::unexpected(WaylandError::noDisplay);
    desktop->registry_ = wl_display_get_registry(desktop->display_);
    wl_registry_add_listener(desktop->registry_, &WaylandDesktopListeners::kRegistry,
                             desktop.get());
    // The globals, then the windows the manager announces, then their first details.
    for (int i = 0; i < 3; ++i) {
        if (!desktop->roundTrip()) return std::unexpected(WaylandError::noDisplay);
    }
    return desktop;
}

WaylandDesktop::~WaylandDesktop() {
    if (!display_) return;
    for (auto& handle : handles_) {
        if (handle->proxy) zwlr_foreign_toplevel_handle_v1_destroy(handle->proxy);
    }
    if (toplevelManager_) {
        // `stop` asks for the list to end; the proxy itself is ours to free.
        zwlr_foreign_toplevel_manager_v1_stop(toplevelManager_);
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(toplevelManager_));
    }
    if (keyboardManager_) wl_proxy_destroy(reinterpret_cast<wl_proxy*>(keyboardManager_));
    if (seat_) wl_seat_destroy(seat_);
    if (registry_) wl_registry_destroy(registry_);
    wl_display_flush(display_);
    wl_display_disconnect(display_);
}

int WaylandDesktop::fd() const { return lost_ ? -1 : wl_display_get_fd(display_); }

void WaylandDesktop::readDisplay(bool readable) {
    if (lost_) return;
    auto lose = [this] {
        lost_ = true;
        // Nothing more reaches the compositor: the proxies are only freed on our side.
        for (auto& handle : handles_) {
            if (handle->proxy) wl_proxy_destroy(reinterpret_cast<wl_proxy*>(handle->proxy));
        }
        handles_.clear();
        if (toplevelManager_) wl_proxy_destroy(reinterpret_cast<wl_proxy*>(toplevelManager_));
        if (keyboardManager_) wl_proxy_destroy(reinterpret_cast<wl_proxy*>(keyboardManager_));
        toplevelManager_ = nullptr;
        keyboardManager_ = nullptr;
    };
    while (wl_display_prepare_read(display_) != 0) {
        if (wl_display_dispatch_pending(display_) < 0) return lose();
    }
    if (wl_display_flush(display_) < 0 && errno != EAGAIN) {
        wl_display_cancel_read(display_);
        return lose();
    }
    if (readable) {
        if (wl_display_read_events(display_) < 0) return lose();
    } else {
        wl_display_cancel_read(display_);
    }
    if (wl_display_dispatch_pending(display_) < 0 || wl_display_get_error(display_) != 0) lose();
    // Closed windows go once their events are handled.
    std::erase_if(handles_, [](const auto& handle) { return handle->proxy == nullptr; });
}

bool WaylandDesktop::dispatch() {
    if (lost_) return false;
    pollfd descriptor{wl_display_get_fd(display_), POLLIN, 0};
    readDisplay(::poll(&descriptor, 1, 0) > 0);
    return !lost_;
}

bool WaylandDesktop::roundTrip() {
    if (lost_) return false;
    bool done = false;
    wl_callback* callback = wl_display_sync(display_);
    static const wl_callback_listener listener{
        [](void* data, wl_callback*, std::uint32_t) { *static_cast<bool*>(data) = true; }};
    wl_callback_add_listener(callback, &listener, &done);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    readDisplay(false);
    while (!done && !lost_) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) break;
        pollfd descriptor{wl_display_get_fd(display_), POLLIN, 0};
        readDisplay(::poll(&descriptor, 1, int(left.count())) > 0);
    }
    wl_callback_destroy(callback);
    return done;
}

void WaylandDesktop::onToplevel(zwlr_foreign_toplevel_handle_v1* proxy) {
    auto handle = std::make_unique<Handle>();
    handle->owner = this;
    handle->proxy = proxy;
    handle->pending.serial = nextSerial_++;
    zwlr_foreign_toplevel_handle_v1_add_listener(proxy, &WaylandDesktopListeners::kHandle,
                                                 handle.get());
    handles_.push_back(std::move(handle));
}

WaylandDesktop::Handle* WaylandDesktop::find(std::int32_t serial) {
    for (auto& handle : handles_) {
        if (handle->proxy && handle->pending.serial == serial) return handle.get();
    }
    return nullptr;
}

void WaylandDesktop::onDone(Handle& handle) {
    if (handle.pending.activated && !handle.current.activated)
        handle.lastActivated = ++activations_;
    handle.current = handle.pending;
    handle.complete = true;
}

void WaylandDesktop::onClosed(Handle& handle) {
    zwlr_foreign_toplevel_handle_v1_destroy(handle.proxy);
    handle.proxy = nullptr;  // removed once the events in hand are handled
}

std::vector<WaylandToplevel> WaylandDesktop::toplevels() {
    dispatch();
    std::vector<WaylandToplevel> result;
    for (const auto& handle : handles_) {
        if (handle->proxy && handle->complete) result.push_back(handle->current);
    }
    return result;
}

std::optional<WaylandToplevel> WaylandDesktop::activeToplevel() {
    for (auto& toplevel : toplevels()) {
        if (toplevel.activated) return toplevel;
    }
    return std::nullopt;
}

std::vector<WaylandToplevel> WaylandDesktop::byRecentActivity() {
    toplevels();
    std::vector<const Handle*> live;
    for (const auto& handle : handles_) {
        if (handle->proxy && handle->complete) live.push_back(handle.get());
    }
    std::ranges::stable_sort(
        live, [](const Handle* a, const Handle* b) { return a->lastActivated > b->lastActivated; });
    std::vector<WaylandToplevel> result;
    for (const Handle* handle : live) result.push_back(handle->current);
    return result;
}

bool WaylandDesktop::activate(std::int32_t serial) {
    dispatch();
    Handle* handle = find(serial);
    if (!handle || !seat_) return false;
    zwlr_foreign_toplevel_handle_v1_activate(handle->proxy, seat_);
    wl_display_flush(display_);
    return true;
}

}  // namespace harbex
