#pragma once

#include <QString>
#include <Qt>

#include <cstdint>
#include <optional>

#include "HarbexClipCore/Panel/ClipKeyPress.hpp"
#include "HarbexClipCore/Settings/ClipShortcut.hpp"

namespace harbex {

// Qt's keys and the settings' shortcuts. A shortcut is stored as a macOS key code and modifier
// bits; here Ctrl is ⌘, Alt is ⌥, Shift is ⇧ and Super (Qt's Meta) is ⌃, as everywhere on Linux.

// The X11 keysym of the unshifted key that gives `qtKey` on a US layout: letters in lower case,
// "!" as "1", Return, Tab, F1, arrows, … Nothing for keys the settings cannot name.
std::optional<std::uint32_t> keysymForQtKey(int qtKey);

// The shortcut modifiers of Qt's modifiers; keypad and group-switch flags are ignored.
ClipShortcut::Modifiers shortcutModifiers(Qt::KeyboardModifiers modifiers);

// The shortcut a key press records, or nothing when the key is a modifier alone or a key outside
// the settings' table.
std::optional<ClipShortcut> shortcutForKeyPress(int qtKey, Qt::KeyboardModifiers modifiers);

// The key press a Qt key event describes, in the panel's terms, with the modifiers mapped as for
// shortcuts.
ClipKeyPress keyPressFor(int qtKey, Qt::KeyboardModifiers modifiers, const QString& text);

}  // namespace harbex
