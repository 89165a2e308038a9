#include "HarbexClip/Linux/X11HotKeyRegistrar.hpp"

#include <algorithm>

#include "HarbexClipCore/Panel/ClipHotKeys.hpp"
#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"

namespace harbex {

X11HotKeyRegistrar::X11HotKeyRegistrar(X11Connection& connection)
    : connection_(connection), keyboard_(connection) {
    // Presses call into the application, so they wait for the next dispatch rather than run
    // inside a clipboard read.
    handlerID_ = connection_.addHandler(
        [this](const xcb_generic_event_t& event) { return handleEvent(event); },
        DuringWaits::deferred);
}

X11HotKeyRegistrar::~X11HotKeyRegistrar() {
    connection_.removeHandler(handlerID_);
    for (const auto& grab : grabs_) {
        if (grab) ungrab(*grab);
    }
    connection_.flush();
}

std::span<const HotKeyModifierBit> X11HotKeyRegistrar::modifierTable() const {
    return kX11HotKeyModifiers;
}

void X11HotKeyRegistrar::install(std::function<void(HotKeyWhich)> onPressed) {
    onPressed_ = std::move(onPressed);
}

void X11HotKeyRegistrar::ungrab(const Grab& grab) {
    for (std::uint16_t variant : grab.variants)
        xcb_ungrab_key(connection_.raw(), grab.keycode, connection_.root(), variant);
}

int X11HotKeyRegistrar::registerHotKey(HotKeyWhich which, std::uint32_t keyCode,
                                       std::uint32_t platformModifiers) {
    auto& slot = grabs_[static_cast<std::size_t>(which)];
    if (slot) {
        ungrab(*slot);
        slot.reset();
    }
    keyboard_.refresh();
    const auto key = clipKeyCode(keyCode);
    if (!key) return kStatusNoSuchKey;
    const auto keycode = keyboard_.keycode(key->keysym);
    if (!keycode) return kStatusNoSuchKey;

    xcb_connection_t* c = connection_.raw();
    const auto modifiers = static_cast<std::uint16_t>(platformModifiers);
    // Every subset of the lock masks, each grabbed once.
    std::vector<std::uint16_t> locks{0};
    for (std::uint16_t lock :
         {std::uint16_t(XCB_MOD_MASK_LOCK), keyboard_.numLockMask(), keyboard_.scrollLockMask()}) {
        if (lock == 0 || (modifiers & lock)) continue;
        const auto count = locks.size();
        for (std::size_t i = 0; i < count; ++i) {
            const auto combined = std::uint16_t(locks[i] | lock);
            if (std::ranges::find(locks, combined) == locks.end()) locks.push_back(combined);
        }
    }
    std::vector<std::pair<std::uint16_t, xcb_void_cookie_t>> cookies;
    for (std::uint16_t lock : locks) {
        const auto variant = std::uint16_t(modifiers | lock);
        cookies.emplace_back(variant,
                             xcb_grab_key_checked(c, 1, connection_.root(), variant, *keycode,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    Grab grab{*keycode, modifiers, {}};
    int status = 0;
    for (auto& [variant, cookie] : cookies) {
        if (xcb_generic_error_t* error = xcb_request_check(c, cookie)) {
            if (status == 0)
                status = error->error_code == XCB_ACCESS ? kStatusKeyTaken : kStatusGrabFailed;
            std::free(error);
        } else {
            grab.variants.push_back(variant);
        }
    }
    if (status != 0) {
        // All or nothing: a half-grabbed key would work only with some lock keys lit.
        ungrab(grab);
        connection_.flush();
        return status;
    }
    slot = std::move(grab);
    return 0;
}

void X11HotKeyRegistrar::unregisterHotKey(HotKeyWhich which) {
    auto& slot = grabs_[static_cast<std::size_t>(which)];
    if (!slot) return;
    ungrab(*slot);
    slot.reset();
    connection_.flush();
}

bool X11HotKeyRegistrar::handleEvent(const xcb_generic_event_t& event) {
    const std::uint8_t type = event.response_type & 0x7f;
    if (type == XCB_MAPPING_NOTIFY) {
        keyboard_.refresh();
        return false;  // others may want it too
    }
    if (type != XCB_KEY_PRESS) return false;
    const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
    if (press.event != connection_.root()) return false;
    const auto state = std::uint16_t(press.state & ~keyboard_.lockMasks() & 0xff);
    for (std::size_t i = 0; i < grabs_.size(); ++i) {
        const auto& grab = grabs_[i];
        if (!grab || grab->keycode != press.detail || grab->modifiers != state) continue;
        if (onPressed_) onPressed_(static_cast<HotKeyWhich>(i));
        return true;
    }
    return false;
}

}  // namespace harbex
