#include "HarbexClip/Linux/X11Connection.hpp"

#include <poll.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace harbex {
namespace {

// Every atom this layer ever names. Atoms are never freed by the server, so interning names that
// come from outside (other clients' target names, say) would grow its table without bound.
constexpr std::array<std::string_view, 47> kAtomNames{
    "CLIPBOARD",
    "TARGETS",
    "TIMESTAMP",
    "MULTIPLE",
    "INCR",
    "ATOM_PAIR",
    "SAVE_TARGETS",
    "CLIPBOARD_MANAGER",
    "_HARBEX_SAVE",
    "DELETE",
    "UTF8_STRING",
    // Predefined (31), listed so it can be served by name like every other target.
    "STRING",
    "TEXT",
    "text/plain",
    "text/plain;charset=utf-8",
    "text/html",
    "text/rtf",
    "text/richtext",
    "text/uri-list",
    "x-special/gnome-copied-files",
    "text/x-moz-url",
    "image/png",
    "image/tiff",
    "image/jpeg",
    "image/heic",
    "app.harbexapps.clip.own",
    "org.nspasteboard.ConcealedType",
    "org.nspasteboard.source",
    "x-kde-passwordManagerHint",
    "_HARBEX_TIME",
    "_HARBEX_SELECTION_0",
    "_HARBEX_SELECTION_1",
    "_HARBEX_SELECTION_2",
    "_HARBEX_SELECTION_3",
    "_HARBEX_SELECTION_4",
    "_HARBEX_SELECTION_5",
    "_HARBEX_SELECTION_6",
    "_HARBEX_SELECTION_7",
    "_NET_ACTIVE_WINDOW",
    "_NET_WM_PID",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_CLIENT_LIST",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_GTK_APPLICATION_ID",
    "WM_CLASS",
    "CARDINAL",
};

constexpr std::size_t kMaxCachedNames = 4096;

}  // namespace

std::expected<std::unique_ptr<X11Connection>, X11Error> X11Connection::open(const char* display) {
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(display, &screenNumber);
    if (!connection || xcb_connection_has_error(connection)) {
        if (connection) xcb_disconnect(connection);
        return std::unexpected(X11Error::cannotConnect);
    }
    std::unique_ptr<X11Connection> self(new X11Connection());
    self->connection_ = connection;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem; ++i) xcb_screen_next(&screens);
    self->root_ = screens.data->root;

    // XFixes must be told our version before it sends selection events.
    const xcb_query_extension_reply_t* xfixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (!xfixes || !xfixes->present) return std::unexpected(X11Error::missingXFixes);
    XcbReply<xcb_xfixes_query_version_reply_t> fixesVersion(xcb_xfixes_query_version_reply(
        connection, xcb_xfixes_query_version(connection, 5, 0), nullptr));
    if (!fixesVersion) return std::unexpected(X11Error::missingXFixes);
    self->xfixesFirstEvent_ = xfixes->first_event;

    const xcb_query_extension_reply_t* xtest = xcb_get_extension_data(connection, &xcb_test_id);
    self->hasXTest_ = xtest && xtest->present;

    const xcb_query_extension_reply_t* xinput = xcb_get_extension_data(connection, &xcb_input_id);
    if (xinput && xinput->present) {
        XcbReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
            connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
        if (version && (version->major_version > 2 ||
                        (version->major_version == 2 && version->minor_version >= 2))) {
            self->xinputOpcode_ = xinput->major_opcode;
        }
    }

    self->window_ = xcb_generate_id(connection);
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, self->window_, self->root_, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);

    std::vector<xcb_intern_atom_cookie_t> cookies;
    cookies.reserve(kAtomNames.size());
    for (std::string_view name : kAtomNames) {
        cookies.push_back(
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    }
    for (std::size_t i = 0; i < kAtomNames.size(); ++i) {
        XcbReply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection, cookies[i], nullptr));
        if (!reply) continue;
        self->atoms_.emplace(std::string(kAtomNames[i]), reply->atom);
        self->names_.emplace(reply->atom, std::string(kAtomNames[i]));
    }
    xcb_flush(connection);
    return self;
}

X11Connection::~X11Connection() {
    if (connection_) xcb_disconnect(connection_);
}

int X11Connection::fd() const { return xcb_get_file_descriptor(connection_); }

xcb_atom_t X11Connection::atom(std::string_view name) const {
    auto it = atoms_.find(std::string(name));
    return it == atoms_.end() ? xcb_atom_t(XCB_ATOM_NONE) : it->second;
}

std::vector<std::string> X11Connection::atomNames(const std::vector<xcb_atom_t>& atoms) {
    std::vector<std::string> result(atoms.size());
    std::vector<std::pair<std::size_t, xcb_get_atom_name_cookie_t>> pending;
    for (std::size_t i = 0; i < atoms.size(); ++i) {
        if (atoms[i] == XCB_ATOM_NONE) continue;
        if (auto it = names_.find(atoms[i]); it != names_.end()) {
            result[i] = it->second;
        } else {
            pending.emplace_back(i, xcb_get_atom_name(connection_, atoms[i]));
        }
    }
    if (names_.size() + pending.size() > kMaxCachedNames) {
        // Keep the fixed set, drop what other clients taught us.
        std::erase_if(names_, [this](const auto& entry) { return !atoms_.contains(entry.second); });
    }
    for (auto& [index, cookie] : pending) {
        XcbReply<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(connection_, cookie, nullptr));
        if (!reply) continue;
        std::string name(xcb_get_atom_name_name(reply.get()),
                         static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())));
        names_.emplace(atoms[index], name);
        result[index] = std::move(name);
    }
    return result;
}

int X11Connection::addHandler(Handler handler, DuringWaits policy) {
    const int id = nextHandlerID_++;
    handlers_.push_back(Entry{id, std::move(handler), policy});
    return id;
}

void X11Connection::removeHandler(int id) {
    std::erase_if(handlers_, [id](const Entry& entry) { return entry.id == id; });
}

XcbEvent X11Connection::nextEvent() { return XcbEvent(xcb_poll_for_event(connection_)); }

void X11Connection::offer(const xcb_generic_event_t& event, bool waiting) {
    // Copy the list: a handler may add or remove handlers.
    const auto handlers = handlers_;
    bool held = false;
    for (const Entry& entry : handlers) {
        if (waiting && entry.policy == DuringWaits::deferred) {
            held = true;
            continue;
        }
        if (entry.handler(event)) return;
    }
    if (held) {
        // Events are at least 32 bytes; generic events carry more, sized by their length field.
        std::size_t size = sizeof(xcb_generic_event_t);
        if ((event.response_type & 0x7f) == XCB_GE_GENERIC) {
            size =
                32 + 4 * std::size_t(reinterpret_cast<const xcb_ge_generic_event_t&>(event).length);
        }
        auto* copy = static_cast<xcb_generic_event_t*>(std::malloc(size));
        std::memcpy(copy, &event, size);
        deferred_.emplace_back(copy);
    }
}

void X11Connection::dispatch() {
    if (dispatching_) return;
    dispatching_ = true;
    while (!deferred_.empty()) {
        XcbEvent event = std::move(deferred_.front());
        deferred_.pop_front();
        offer(*event, false);
    }
    while (XcbEvent event = nextEvent()) offer(*event, false);
    xcb_flush(connection_);
    dispatching_ = false;
}

XcbEvent X11Connection::waitFor(const std::function<bool(const xcb_generic_event_t&)>& match,
                                Clock::time_point deadline) {
    xcb_flush(connection_);
    for (;;) {
        while (XcbEvent event = nextEvent()) {
            if (match(*event)) return event;
            offer(*event, true);
            xcb_flush(connection_);
        }
        if (xcb_connection_has_error(connection_)) return nullptr;
        const auto now = Clock::now();
        if (now >= deadline) return nullptr;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now).count() + 1;
        pollfd descriptor{fd(), POLLIN, 0};
        ::poll(&descriptor, 1, static_cast<int>(std::min<long long>(left, 1000)));
    }
}

xcb_timestamp_t X11Connection::serverTime() {
    const xcb_atom_t property = atom("_HARBEX_TIME");
    xcb_change_property(connection_, XCB_PROP_MODE_APPEND, window_, property, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    XcbEvent event = waitFor(
        [&](const xcb_generic_event_t& candidate) {
            if ((candidate.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
            const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(candidate);
            return notify.window == window_ && notify.atom == property;
        },
        Clock::now() + std::chrono::seconds(1));
    if (!event) return XCB_CURRENT_TIME;
    return reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->time;
}

std::vector<std::uint32_t> X11Connection::property32(xcb_window_t window, xcb_atom_t property,
                                                     xcb_atom_t type) {
    XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, property, type, 0, 1 << 16),
        nullptr));
    if (!reply || reply->format != 32) return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return std::vector<std::uint32_t>(values,
                                      values + xcb_get_property_value_length(reply.get()) / 4);
}

std::optional<std::string> X11Connection::propertyBytes(xcb_window_t window, xcb_atom_t property) {
    XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 16),
        nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    const auto* data = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return std::string(data, static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
}

void X11Connection::flush() { xcb_flush(connection_); }

}  // namespace harbex
