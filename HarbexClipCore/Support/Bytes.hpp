#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace harbex {

// Raw bytes: image data, RTF and HTML flavours, sealed files.
using Bytes = std::vector<std::uint8_t>;

inline Bytes bytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }
inline std::string stringOf(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

}  // namespace harbex
