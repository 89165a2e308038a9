#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace harbex {

// Copies that must never be kept: those whose writer marked them private, transient or
// generated, and those made in a password manager. Pure; any thread.

// The eight marker types, in their conventional order.
std::span<const std::string_view> privateMarkerTypes();

// True when any declared type is a private marker, or when `passwordManagerHint` (the value of a
// declared x-kde-passwordManagerHint, read by ClipPasteboard::markerValue) says "secret". The
// hint's name alone is not private: KDE tools also declare it with the value "public". An empty
// list is never private.
bool isPrivate(std::span<const std::string> types,
               std::optional<std::string_view> passwordManagerHint = std::nullopt);

// Whether the hint value marks a secret: "secret", ignoring ASCII case and surrounding white
// space or NUL bytes (some writers terminate the value).
bool isSecretHint(std::string_view value);

// Password managers by identity: the macOS bundle identifiers, matched exactly, and the Linux
// identities (desktop-file ids and WM_CLASS names), matched ignoring ASCII case because window
// classes differ in case between versions.
std::span<const std::string_view> passwordManagerIDs();
std::span<const std::string_view> linuxPasswordManagerIDs();
bool isPasswordManager(std::string_view appID);

}  // namespace harbex
