#include "HarbexClip/Linux/X11Keyboard.hpp"

#include <algorithm>
#include <cstdlib>

namespace harbex {
namespace {
constexpr xcb_keysym_t kNumLock = 0xff7f;
constexpr xcb_keysym_t kScrollLock = 0xff14;
}  // namespace

X11Keyboard::X11Keyboard(X11Connection& connection) : connection_(connection) { refresh(); }

X11Keyboard::~X11Keyboard() {
    if (symbols_) xcb_key_symbols_free(symbols_);
}

void X11Keyboard::refresh() {
    if (symbols_) xcb_key_symbols_free(symbols_);
    symbols_ = xcb_key_symbols_alloc(connection_.raw());
    numLockMask_ = 0;
    scrollLockMask_ = 0;
    modifierKeycodes_.clear();
    xcb_connection_t* c = connection_.raw();
    XcbReply<xcb_get_modifier_mapping_reply_t> mapping(
        xcb_get_modifier_mapping_reply(c, xcb_get_modifier_mapping(c), nullptr));
    if (!mapping) return;
    const auto numLock = keycodes(kNumLock);
    const auto scrollLock = keycodes(kScrollLock);
    const xcb_keycode_t* codes = xcb_get_modifier_mapping_keycodes(mapping.get());
    const int perModifier = mapping->keycodes_per_modifier;
    for (int modifier = 0; modifier < 8; ++modifier) {
        for (int i = 0; i < perModifier; ++i) {
            const xcb_keycode_t code = codes[modifier * perModifier + i];
            if (code == 0) continue;
            if (std::ranges::find(numLock, code) != numLock.end())
                numLockMask_ = std::uint16_t(1u << modifier);
            if (std::ranges::find(scrollLock, code) != scrollLock.end())
                scrollLockMask_ = std::uint16_t(1u << modifier);
            if (modifier != 1 &&
                std::ranges::find(modifierKeycodes_, code) == modifierKeycodes_.end())
                modifierKeycodes_.push_back(code);
        }
    }
    // NumLock and ScrollLock are locks, not modifiers a keystroke carries.
    std::erase_if(modifierKeycodes_, [&](xcb_keycode_t code) {
        return std::ranges::find(numLock, code) != numLock.end() ||
               std::ranges::find(scrollLock, code) != scrollLock.end();
    });
}

std::vector<xcb_keycode_t> X11Keyboard::keycodes(xcb_keysym_t keysym) const {
    std::vector<xcb_keycode_t> result;
    if (!symbols_) return result;
    xcb_keycode_t* codes = xcb_key_symbols_get_keycode(symbols_, keysym);
    if (!codes) return result;
    for (xcb_keycode_t* code = codes; *code != XCB_NO_SYMBOL; ++code) result.push_back(*code);
    std::free(codes);
    return result;
}

std::optional<xcb_keycode_t> X11Keyboard::keycode(xcb_keysym_t keysym) const {
    const auto all = keycodes(keysym);
    if (all.empty()) return std::nullopt;
    return all.front();
}

}  // namespace harbex
