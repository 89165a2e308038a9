#pragma once

#include <string>
#include <string_view>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"

namespace harbex {

// The few words of the interface that name parts of the platform, in each key vocabulary. The
// vocabulary that names keys also names the desktop around them, so one choice covers both:
//
//   macSymbols        linuxNames
//   "Finder"          "Files"            the file manager
//   "System Settings" "Settings"         the system's settings application
//   "Mac"             "computer"         the machine ("It stays on this Mac" / "this computer")
//   "⌘P"              "Ctrl+P"           a command-key hint (see `commandKeys`)
//
// Thread: any.
std::string_view fileManagerName(ClipKeyVocabulary vocabulary);
std::string_view systemSettingsName(ClipKeyVocabulary vocabulary);
std::string_view computerName(ClipKeyVocabulary vocabulary);

// A command-key chord as the vocabulary writes it: "⌘P" or "Ctrl+P". `keyCode` is the macOS
// virtual key code (35 is P); `shift` adds Shift ("⇧⌘P", "Ctrl+Shift+P").
enum class ClipChordShift { without, with };
std::string commandKeys(std::uint32_t keyCode, ClipKeyVocabulary vocabulary,
                        ClipChordShift shift = ClipChordShift::without);

// The key names the panel's hints and action shortcuts use, as virtual key codes.
namespace keycode {
inline constexpr std::uint32_t kS = 1;
inline constexpr std::uint32_t kC = 8;
inline constexpr std::uint32_t kV = 9;
inline constexpr std::uint32_t kY = 16;
inline constexpr std::uint32_t kO = 31;
inline constexpr std::uint32_t kP = 35;
inline constexpr std::uint32_t kReturn = 36;
inline constexpr std::uint32_t kK = 40;
inline constexpr std::uint32_t kDelete = 51;
}  // namespace keycode

}  // namespace harbex
