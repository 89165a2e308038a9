#include "HarbexClip/App/ClipPlatform.hpp"

#include <gtest/gtest.h>

namespace harbex {
namespace {

using P = ClipPlatform;

// Each session gets the implementations its compositor or display offers, and an honest absence
// for the rest: never an X11 request aimed at XWayland for a job a Wayland compositor declines.
TEST(ClipPlatformTests, ChoosesEachJobFromWhatTheSessionOffers) {
    struct Case {
        const char* name;
        ClipSessionFacts facts;
        ClipPlatform expected;
        const char* summary;
    };
    const ClipSessionFacts sway{
        .wayland = true, .dataControl = true, .foreignToplevels = true, .virtualKeyboard = true};
    ClipSessionFacts plasma = sway;
    plasma.shortcutsPortal = true;
    ClipSessionFacts gnome{.wayland = true, .x11 = true, .xtest = true, .shortcutsPortal = true};
    ClipSessionFacts nested = sway;
    nested.sessionTypeX11 = true;
    nested.x11 = true;
    nested.xtest = true;
    ClipSessionFacts noTyping = sway;
    noTyping.virtualKeyboard = false;
    const Case cases[] = {
        {"sway",
         sway,
         {P::Clipboard::waylandDataControl, P::Front::foreignToplevel, P::Paste::virtualKeyboard,
          P::Shortcuts::none, false},
         "Clipboard: Wayland data-control; Shortcuts: desktop key bindings; Paste: virtual "
         "keyboard; Front app: foreign-toplevel"},
        {"plasma",
         plasma,
         {P::Clipboard::waylandDataControl, P::Front::foreignToplevel, P::Paste::virtualKeyboard,
          P::Shortcuts::portal, false},
         "Clipboard: Wayland data-control; Shortcuts: portal; Paste: virtual keyboard; Front "
         "app: foreign-toplevel"},
        {"gnome",
         gnome,
         {P::Clipboard::x11, P::Front::none, P::Paste::none, P::Shortcuts::portal, false},
         "Clipboard: X11; Shortcuts: portal; Paste: none (Return copies); Front app: unknown"},
        {"no virtual keyboard",
         noTyping,
         {P::Clipboard::waylandDataControl, P::Front::foreignToplevel, P::Paste::none,
          P::Shortcuts::none, false},
         nullptr},
        {"x11",
         {.x11 = true, .xtest = true},
         {P::Clipboard::x11, P::Front::x11, P::Paste::xtest, P::Shortcuts::x11, true},
         "Clipboard: X11; Shortcuts: X11; Paste: XTest; Front app: X11"},
        {"x11 without XTEST",
         {.x11 = true},
         {P::Clipboard::x11, P::Front::x11, P::Paste::none, P::Shortcuts::x11, true},
         nullptr},
        {"compositor nested in an X11 session",
         nested,
         {P::Clipboard::x11, P::Front::x11, P::Paste::xtest, P::Shortcuts::x11, true},
         nullptr},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const auto chosen = ClipPlatform::choose(test.facts);
        EXPECT_EQ(chosen, test.expected);
        if (test.summary) {
            EXPECT_EQ(chosen.summary(), test.summary);
        }
    }
}

TEST(ClipPlatformTests, SwayBindingNamesTheShortcutAsSwayDoes) {
    using M = ClipShortcut::Modifiers;
    const std::pair<std::optional<ClipShortcut>, std::optional<std::string>> cases[] = {
        {ClipShortcut{9, M::command | M::control},
         "bindsym Ctrl+Mod4+v exec harbex-clipboard --panel"},
        {ClipShortcut{49, M::option | M::shift | M::command},
         "bindsym Ctrl+Mod1+Shift+Space exec harbex-clipboard --panel"},
        {ClipShortcut{9999, M::command}, std::nullopt},
        {std::nullopt, std::nullopt},
    };
    for (const auto& [shortcut, line] : cases) EXPECT_EQ(swayPanelBinding(shortcut), line);
}

}  // namespace
}  // namespace harbex
