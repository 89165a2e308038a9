#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex {

// SHA-256 of the bytes, as 64 lower-case hexadecimal digits.
std::string sha256Hex(std::span<const std::uint8_t> bytes);
std::string sha256Hex(std::string_view text);

// Standard base64 with padding, no line breaks.
std::string base64Encode(std::span<const std::uint8_t> bytes);
// Strict: rejects white space, bad characters, bad padding and lengths that are not a multiple
// of four.
std::optional<Bytes> base64Decode(std::string_view text);

}  // namespace harbex
