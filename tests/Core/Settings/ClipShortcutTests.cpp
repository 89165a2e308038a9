#include "HarbexClipCore/Settings/ClipShortcut.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"

namespace harbex {
namespace {

constexpr auto kMac = ClipKeyVocabulary::macSymbols;
constexpr auto kLinux = ClipKeyVocabulary::linuxNames;

struct DisplayCase {
    std::uint32_t keyCode;
    int modifiers;
    std::string mac;
    std::string linux;
};

TEST(ClipShortcutTests, DisplayFormsInBothVocabularies) {
    const DisplayCase cases[] = {
        {9, 13, "⌃⌥⌘V", "Ctrl+Alt+Super+V"},
        {9, 3, "⇧⌘V", "Ctrl+Shift+V"},
        {8, 1, "⌘C", "Ctrl+C"},
        {36, 10, "⌃⇧↩", "Shift+Super+Return"},
        {49, 4, "⌥Space", "Alt+Space"},
        {51, 15, "⌃⌥⇧⌘⌫", "Ctrl+Alt+Shift+Super+Backspace"},
        {53, 1, "⌘⎋", "Ctrl+Esc"},
        {117, 8, "⌃⌦", "Super+Delete"},
        {123, 0, "←", "Left"},
        {116, 2, "⇧⇞", "Shift+Page Up"},
        {122, 4, "⌥F1", "Alt+F1"},
        {42, 1, "⌘\\", "Ctrl+\\"},
        {29, 5, "⌥⌘0", "Ctrl+Alt+0"},
        {110, 1, "⌘Key 110", "Ctrl+Key 110"},
    };
    for (const auto& c : cases) {
        const ClipShortcut shortcut{c.keyCode, ClipShortcut::Modifiers{c.modifiers}};
        EXPECT_EQ(displayForm(shortcut, kMac), c.mac) << c.keyCode << "/" << c.modifiers;
        EXPECT_EQ(displayForm(shortcut, kLinux), c.linux) << c.keyCode << "/" << c.modifiers;
    }
}

TEST(ClipShortcutTests, DecodingNeedsBothKeys) {
    const std::pair<const char*, bool> cases[] = {
        {R"({"keyCode":9,"modifiers":9})", true},
        {R"({"keyCode":9})", false},
        {R"({"modifiers":9})", false},
        {R"({"keyCode":"9","modifiers":9})", false},
        {R"({"keyCode":9,"modifiers":1.5})", false},
        {R"({"keyCode":4294967296,"modifiers":1})", false},
        {R"({"keyCode":9,"modifiers":-2147483649})", false},
        {R"([9,9])", false},
    };
    for (const auto& [text, ok] : cases) {
        ClipShortcut shortcut{1, ClipShortcut::Modifiers{2}};
        EXPECT_EQ(static_cast<bool>(decodeJson(*parseJson(text), shortcut)), ok) << text;
        if (!ok) {
            EXPECT_EQ(shortcut, (ClipShortcut{1, ClipShortcut::Modifiers{2}})) << text;
        }
    }
}

TEST(ClipShortcutTests, UnknownModifierBitsSurviveARoundTrip) {
    const ClipShortcut shortcut{9, ClipShortcut::Modifiers{1 | 64}};
    EXPECT_EQ(decodeJsonAs<ClipShortcut>(encodeJson(shortcut)), shortcut);
}

// Public values: kVK_* from the macOS headers, XK_* from X11's keysymdef.h.
TEST(ClipKeyCodesTests, KnownKeysMatchThePublicConstants) {
    const std::pair<std::uint32_t, std::uint32_t> keysymToCode[] = {
        {0x61, 0},     {0x76, 9},     {0x63, 8},     {0x7a, 6},     {0x71, 12},    {0x31, 18},
        {0x35, 23},    {0x36, 22},    {0x30, 29},    {0x3d, 24},    {0x2d, 27},    {0x5d, 30},
        {0x5b, 33},    {0x27, 39},    {0x3b, 41},    {0x5c, 42},    {0x2c, 43},    {0x2f, 44},
        {0x2e, 47},    {0x60, 50},    {0x20, 49},    {0xff0d, 36},  {0xff09, 48},  {0xff08, 51},
        {0xff1b, 53},  {0xffff, 117}, {0xff50, 115}, {0xff57, 119}, {0xff55, 116}, {0xff56, 121},
        {0xff51, 123}, {0xff53, 124}, {0xff54, 125}, {0xff52, 126}, {0xffbe, 122}, {0xffbf, 120},
        {0xffc0, 99},  {0xffc1, 118}, {0xffc2, 96},  {0xffc3, 97},  {0xffc4, 98},  {0xffc5, 100},
        {0xffc6, 101}, {0xffc7, 109}, {0xffc8, 103}, {0xffc9, 111},
    };
    for (const auto& [keysym, code] : keysymToCode) {
        EXPECT_EQ(clipKeyCodeForKeysym(keysym), code) << std::hex << keysym;
        ASSERT_TRUE(clipKeyCode(code)) << code;
        EXPECT_EQ(clipKeyCode(code)->keysym, keysym) << code;
    }
}

TEST(ClipKeyCodesTests, EveryKeyIsNamedAndMapsBothWays) {
    std::set<std::uint32_t> keysyms;
    for (const auto& key : clipKeyCodes()) {
        EXPECT_FALSE(key.macName.empty()) << key.keyCode;
        EXPECT_FALSE(key.linuxName.empty()) << key.keyCode;
        EXPECT_TRUE(keysyms.insert(key.keysym).second) << "keysym used twice: " << key.keysym;
        EXPECT_EQ(clipKeyCodeForKeysym(key.keysym), key.keyCode);
        // Letters show as capitals of the key's own letter.
        if (key.keysym >= 'a' && key.keysym <= 'z') {
            EXPECT_EQ(key.macName, std::string(1, static_cast<char>(key.keysym - 0x20)));
        }
    }
    // Every key of the ANSI block has a name (10 is ISO-only; 52 is unused).
    for (std::uint32_t code = 0; code <= 53; ++code) {
        if (code == 10 || code == 52) continue;
        EXPECT_TRUE(clipKeyCode(code)) << code;
    }
}

TEST(ClipKeyCodesTests, ShiftedKeysymsFindTheirKeyAndStrangersFindNothing) {
    EXPECT_EQ(clipKeyCodeForKeysym(0x56), 9u);     // XK_V
    EXPECT_EQ(clipKeyCodeForKeysym(0x41), 0u);     // XK_A
    EXPECT_EQ(clipKeyCodeForKeysym(0xfe20), 48u);  // XK_ISO_Left_Tab
    EXPECT_EQ(clipKeyCodeForKeysym(0x1234), std::nullopt);
    EXPECT_EQ(clipKeyCodeForKeysym(0), std::nullopt);
    EXPECT_EQ(clipKeyCode(10), std::nullopt);  // the ISO-only key, not on the ANSI layout
    EXPECT_EQ(clipKeyCode(127), std::nullopt);
}

}  // namespace
}  // namespace harbex
