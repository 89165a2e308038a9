#include "HarbexClip/Views/QtKeyMapping.hpp"

#include <array>
#include <utility>

#include <QString>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"

namespace harbex {

namespace {

// Keys that are not printable characters, by their X11 keysym.
constexpr std::array<std::pair<int, std::uint32_t>, 14> kNamedKeys{{
    {Qt::Key_Return, 0xff0d},
    {Qt::Key_Enter, 0xff0d},
    {Qt::Key_Tab, 0xff09},
    {Qt::Key_Backtab, 0xff09},  // Shift+Tab arrives as Backtab
    {Qt::Key_Backspace, 0xff08},
    {Qt::Key_Escape, 0xff1b},
    {Qt::Key_Delete, 0xffff},
    {Qt::Key_Home, 0xff50},
    {Qt::Key_End, 0xff57},
    {Qt::Key_PageUp, 0xff55},
    {Qt::Key_PageDown, 0xff56},
    {Qt::Key_Left, 0xff51},
    {Qt::Key_Right, 0xff53},
    {Qt::Key_Up, 0xff52},
}};

// What Shift gives on each key of the US layout, mapped back to the key itself.
constexpr std::array<std::pair<char, char>, 21> kShifted{{
    {'!', '1'},  {'@', '2'}, {'#', '3'},  {'$', '4'}, {'%', '5'}, {'^', '6'}, {'&', '7'},
    {'*', '8'},  {'(', '9'}, {')', '0'},  {'_', '-'}, {'+', '='}, {'{', '['}, {'}', ']'},
    {'|', '\\'}, {':', ';'}, {'"', '\''}, {'<', ','}, {'>', '.'}, {'?', '/'}, {'~', '`'},
}};

}  // namespace

std::optional<std::uint32_t> keysymForQtKey(int qtKey) {
    if (qtKey == Qt::Key_Down) return 0xff54;
    for (const auto& [key, keysym] : kNamedKeys) {
        if (key == qtKey) return keysym;
    }
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F20) {
        return std::uint32_t(0xffbe + (qtKey - Qt::Key_F1));
    }
    if (qtKey == Qt::Key_Space) return 0x20;
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) return std::uint32_t(qtKey - 'A' + 'a');
    if (qtKey > 0x20 && qtKey < 0x7f) {
        for (const auto& [shifted, plain] : kShifted) {
            if (shifted == qtKey) return std::uint32_t(plain);
        }
        return std::uint32_t(qtKey);
    }
    return std::nullopt;
}

ClipShortcut::Modifiers shortcutModifiers(Qt::KeyboardModifiers modifiers) {
    ClipShortcut::Modifiers result;
    if (modifiers & Qt::ControlModifier) result = result | ClipShortcut::Modifiers::command;
    if (modifiers & Qt::ShiftModifier) result = result | ClipShortcut::Modifiers::shift;
    if (modifiers & Qt::AltModifier) result = result | ClipShortcut::Modifiers::option;
    if (modifiers & Qt::MetaModifier) result = result | ClipShortcut::Modifiers::control;
    return result;
}

std::optional<ClipShortcut> shortcutForKeyPress(int qtKey, Qt::KeyboardModifiers modifiers) {
    const auto keysym = keysymForQtKey(qtKey);
    if (!keysym) return std::nullopt;
    const auto keyCode = clipKeyCodeForKeysym(*keysym);
    if (!keyCode) return std::nullopt;
    return ClipShortcut{*keyCode, shortcutModifiers(modifiers)};
}

ClipKeyPress keyPressFor(int qtKey, Qt::KeyboardModifiers modifiers, const QString& text) {
    using Kind = ClipKeyPress::Name::Kind;
    ClipKeyPress press;
    switch (qtKey) {
        case Qt::Key_Up: press.name = Kind::up; break;
        case Qt::Key_Down: press.name = Kind::down; break;
        case Qt::Key_Left: press.name = Kind::left; break;
        case Qt::Key_Right: press.name = Kind::right; break;
        case Qt::Key_Escape: press.name = Kind::escape; break;
        case Qt::Key_Return: press.name = Kind::returnKey; break;
        case Qt::Key_Enter: press.name = Kind::enter; break;
        case Qt::Key_Backspace: press.name = Kind::deleteKey; break;
        case Qt::Key_Delete: press.name = Kind::forwardDelete; break;
        case Qt::Key_Tab:
        case Qt::Key_Backtab: press.name = Kind::tab; break;
        case Qt::Key_Space: press.name = Kind::space; break;
        default: {
            // Shortcuts match the unmodified character: Ctrl+C gives a control code as text.
            QString character = text;
            if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) {
                character = QChar(char('a' + (qtKey - Qt::Key_A)));
            } else if (qtKey >= 0x20 && qtKey < 0x7f) {
                character = QChar(char(qtKey));
            }
            press.name = ClipKeyPress::Name::character(character.toStdString());
        }
    }
    const ClipShortcut::Modifiers held = shortcutModifiers(modifiers);
    press.command = held.contains(ClipShortcut::Modifiers::command);
    press.shift = held.contains(ClipShortcut::Modifiers::shift) || qtKey == Qt::Key_Backtab;
    press.option = held.contains(ClipShortcut::Modifiers::option);
    press.control = held.contains(ClipShortcut::Modifiers::control);
    return press;
}

}  // namespace harbex
