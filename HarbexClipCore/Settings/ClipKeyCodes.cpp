#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"

#include <algorithm>
#include <array>

namespace harbex {

namespace {

// macOS kVK_* codes of the ANSI layout beside the X11 keysyms of the same physical keys, so that
// a shortcut recorded on one platform names the same key on the other.
constexpr std::array kKeys{
    ClipKeyCode{0, "A", "A", 0x61},
    ClipKeyCode{1, "S", "S", 0x73},
    ClipKeyCode{2, "D", "D", 0x64},
    ClipKeyCode{3, "F", "F", 0x66},
    ClipKeyCode{4, "H", "H", 0x68},
    ClipKeyCode{5, "G", "G", 0x67},
    ClipKeyCode{6, "Z", "Z", 0x7a},
    ClipKeyCode{7, "X", "X", 0x78},
    ClipKeyCode{8, "C", "C", 0x63},
    ClipKeyCode{9, "V", "V", 0x76},
    ClipKeyCode{11, "B", "B", 0x62},
    ClipKeyCode{12, "Q", "Q", 0x71},
    ClipKeyCode{13, "W", "W", 0x77},
    ClipKeyCode{14, "E", "E", 0x65},
    ClipKeyCode{15, "R", "R", 0x72},
    ClipKeyCode{16, "Y", "Y", 0x79},
    ClipKeyCode{17, "T", "T", 0x74},
    ClipKeyCode{18, "1", "1", 0x31},
    ClipKeyCode{19, "2", "2", 0x32},
    ClipKeyCode{20, "3", "3", 0x33},
    ClipKeyCode{21, "4", "4", 0x34},
    ClipKeyCode{22, "6", "6", 0x36},
    ClipKeyCode{23, "5", "5", 0x35},
    ClipKeyCode{24, "=", "=", 0x3d},
    ClipKeyCode{25, "9", "9", 0x39},
    ClipKeyCode{26, "7", "7", 0x37},
    ClipKeyCode{27, "-", "-", 0x2d},
    ClipKeyCode{28, "8", "8", 0x38},
    ClipKeyCode{29, "0", "0", 0x30},
    ClipKeyCode{30, "]", "]", 0x5d},
    ClipKeyCode{31, "O", "O", 0x6f},
    ClipKeyCode{32, "U", "U", 0x75},
    ClipKeyCode{33, "[", "[", 0x5b},
    ClipKeyCode{34, "I", "I", 0x69},
    ClipKeyCode{35, "P", "P", 0x70},
    ClipKeyCode{36, "↩", "Return", 0xff0d},
    ClipKeyCode{37, "L", "L", 0x6c},
    ClipKeyCode{38, "J", "J", 0x6a},
    ClipKeyCode{39, "'", "'", 0x27},
    ClipKeyCode{40, "K", "K", 0x6b},
    ClipKeyCode{41, ";", ";", 0x3b},
    ClipKeyCode{42, "\\", "\\", 0x5c},
    ClipKeyCode{43, ",", ",", 0x2c},
    ClipKeyCode{44, "/", "/", 0x2f},
    ClipKeyCode{45, "N", "N", 0x6e},
    ClipKeyCode{46, "M", "M", 0x6d},
    ClipKeyCode{47, ".", ".", 0x2e},
    ClipKeyCode{48, "⇥", "Tab", 0xff09},
    ClipKeyCode{49, "Space", "Space", 0x20},
    ClipKeyCode{50, "`", "`", 0x60},
    ClipKeyCode{51, "⌫", "Backspace", 0xff08},
    ClipKeyCode{53, "⎋", "Esc", 0xff1b},
    ClipKeyCode{64, "F17", "F17", 0xffce},
    ClipKeyCode{79, "F18", "F18", 0xffcf},
    ClipKeyCode{80, "F19", "F19", 0xffd0},
    ClipKeyCode{90, "F20", "F20", 0xffd1},
    ClipKeyCode{96, "F5", "F5", 0xffc2},
    ClipKeyCode{97, "F6", "F6", 0xffc3},
    ClipKeyCode{98, "F7", "F7", 0xffc4},
    ClipKeyCode{99, "F3", "F3", 0xffc0},
    ClipKeyCode{100, "F8", "F8", 0xffc5},
    ClipKeyCode{101, "F9", "F9", 0xffc6},
    ClipKeyCode{103, "F11", "F11", 0xffc8},
    ClipKeyCode{105, "F13", "F13", 0xffca},
    ClipKeyCode{106, "F16", "F16", 0xffcd},
    ClipKeyCode{107, "F14", "F14", 0xffcb},
    ClipKeyCode{109, "F10", "F10", 0xffc7},
    ClipKeyCode{111, "F12", "F12", 0xffc9},
    ClipKeyCode{113, "F15", "F15", 0xffcc},
    ClipKeyCode{115, "↖", "Home", 0xff50},
    ClipKeyCode{116, "⇞", "Page Up", 0xff55},
    ClipKeyCode{117, "⌦", "Delete", 0xffff},
    ClipKeyCode{118, "F4", "F4", 0xffc1},
    ClipKeyCode{119, "↘", "End", 0xff57},
    ClipKeyCode{120, "F2", "F2", 0xffbf},
    ClipKeyCode{121, "⇟", "Page Down", 0xff56},
    ClipKeyCode{122, "F1", "F1", 0xffbe},
    ClipKeyCode{123, "←", "Left", 0xff51},
    ClipKeyCode{124, "→", "Right", 0xff53},
    ClipKeyCode{125, "↓", "Down", 0xff54},
    ClipKeyCode{126, "↑", "Up", 0xff52},
};

static_assert(std::is_sorted(kKeys.begin(), kKeys.end(),
                             [](const auto& a, const auto& b) { return a.keyCode < b.keyCode; }));

constexpr std::uint32_t kKeysymUpperA = 0x41;
constexpr std::uint32_t kKeysymUpperZ = 0x5a;
constexpr std::uint32_t kKeysymLowerOffset = 0x20;
constexpr std::uint32_t kKeysymIsoLeftTab = 0xfe20;
constexpr std::uint32_t kKeysymTab = 0xff09;

}  // namespace

std::span<const ClipKeyCode> clipKeyCodes() { return kKeys; }

std::optional<ClipKeyCode> clipKeyCode(std::uint32_t keyCode) {
    const auto it = std::lower_bound(
        kKeys.begin(), kKeys.end(), keyCode,
        [](const ClipKeyCode& entry, std::uint32_t code) { return entry.keyCode < code; });
    if (it == kKeys.end() || it->keyCode != keyCode) return std::nullopt;
    return *it;
}

std::optional<std::uint32_t> clipKeyCodeForKeysym(std::uint32_t keysym) {
    // Shift changes the keysym, not the key: fold the shifted forms back before looking up.
    if (keysym >= kKeysymUpperA && keysym <= kKeysymUpperZ) keysym += kKeysymLowerOffset;
    if (keysym == kKeysymIsoLeftTab) keysym = kKeysymTab;
    for (const auto& entry : kKeys) {
        if (entry.keysym == keysym) return entry.keyCode;
    }
    return std::nullopt;
}

std::string clipKeyName(std::uint32_t keyCode, ClipKeyVocabulary vocabulary) {
    if (const auto entry = clipKeyCode(keyCode)) {
        return std::string(vocabulary == ClipKeyVocabulary::macSymbols ? entry->macName
                                                                       : entry->linuxName);
    }
    return "Key " + std::to_string(keyCode);
}

}  // namespace harbex
