#include "HarbexClip/Linux/XTestPasteTyper.hpp"

#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "HarbexClip/Linux/X11Frontmost.hpp"

namespace harbex {
namespace {

constexpr xcb_keysym_t kControlL = 0xffe3;
constexpr xcb_keysym_t kShiftL = 0xffe1;
constexpr xcb_keysym_t kLowerV = 0x0076;

constexpr std::array<std::string_view, 22> kTerminals{"xterm",
                                                      "uxterm",
                                                      "urxvt",
                                                      "rxvt",
                                                      "gnome-terminal",
                                                      "gnome-terminal-server",
                                                      "konsole",
                                                      "alacritty",
                                                      "kitty",
                                                      "tilix",
                                                      "terminator",
                                                      "foot",
                                                      "footclient",
                                                      "wezterm",
                                                      "org.wezfurlong.wezterm",
                                                      "xfce4-terminal",
                                                      "lxterminal",
                                                      "mate-terminal",
                                                      "st",
                                                      "st-256color",
                                                      "qterminal",
                                                      "terminology"};

bool sameIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) ==
               std::tolower(static_cast<unsigned char>(y));
    });
}

}  // namespace

XTestPasteTyper::XTestPasteTyper(X11Connection& connection)
    : connection_(connection), keyboard_(connection) {}

bool XTestPasteTyper::isTerminal(std::string_view instance, std::string_view windowClass) {
    return std::ranges::any_of(kTerminals, [&](std::string_view name) {
        return sameIgnoringCase(name, instance) || sameIgnoringCase(name, windowClass);
    });
}

void XTestPasteTyper::fake(std::uint8_t type, xcb_keycode_t keycode) {
    xcb_test_fake_input(connection_.raw(), type, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

void XTestPasteTyper::typePaste() {
    if (!connection_.hasXTest()) return;
    xcb_connection_t* c = connection_.raw();
    keyboard_.refresh();
    const auto control = keyboard_.keycode(kControlL);
    const auto v = keyboard_.keycode(kLowerV);
    if (!control || !v) return;

    X11Frontmost windows(connection_);
    const auto [instance, windowClass] = windows.windowClass(windows.activeWindow());
    const bool terminal = isTerminal(instance, windowClass);
    const xcb_keycode_t shift = terminal ? keyboard_.keycode(kShiftL).value_or(0) : 0;

    // Modifier keys down right now (the user may still hold the panel's shortcut).
    std::vector<xcb_keycode_t> held;
    XcbReply<xcb_query_keymap_reply_t> keymap(
        xcb_query_keymap_reply(c, xcb_query_keymap(c), nullptr));
    if (keymap) {
        for (xcb_keycode_t code : keyboard_.modifierKeycodes()) {
            if (keymap->keys[code / 8] & (1u << (code % 8))) held.push_back(code);
        }
    }
    for (xcb_keycode_t code : held) fake(XCB_KEY_RELEASE, code);
    fake(XCB_KEY_PRESS, *control);
    if (shift != 0) fake(XCB_KEY_PRESS, shift);
    fake(XCB_KEY_PRESS, *v);
    fake(XCB_KEY_RELEASE, *v);
    if (shift != 0) fake(XCB_KEY_RELEASE, shift);
    fake(XCB_KEY_RELEASE, *control);
    for (xcb_keycode_t code : held) fake(XCB_KEY_PRESS, code);
    connection_.flush();
}

}  // namespace harbex
