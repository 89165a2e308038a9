#pragma once

// The libraries the crash writer saves, one per generation, rebuilt identically by the test so a
// loaded history can be checked whole.

#include <cstdint>
#include <string>

#include "HarbexClipCore/Model/ClipLibrary.hpp"

namespace harbex::crash {

inline constexpr int kItemsPerLibrary = 300;
inline constexpr std::uint8_t kKeyByte = 0x5A;

inline ClipLibrary library(std::int64_t generation) {
    ClipLibrary library;
    for (int index = 0; index < kItemsPerLibrary; ++index) {
        ClipItem item;
        item.id.bytes[0] = static_cast<std::uint8_t>(index);
        item.id.bytes[1] = static_cast<std::uint8_t>(index >> 8);
        item.text = "generation " + std::to_string(generation) + " item " + std::to_string(index) +
                    " " + std::string(static_cast<std::size_t>(200 + index % 50), 'x');
        item.date = Date{700000000.0 + static_cast<double>(generation)};
        item.firstCopied = item.date;
        item.fingerprint = fingerprint(ClipKind::text, item.text, std::nullopt, std::nullopt);
        library.items.push_back(std::move(item));
    }
    return library;
}

// The generation a library of this family was made for, read back from its first item.
inline std::int64_t generationOf(const ClipLibrary& library) {
    if (library.items.empty() || !library.items.front().text) return -1;
    const std::string& text = *library.items.front().text;
    return std::stoll(text.substr(std::string("generation ").size()));
}

}  // namespace harbex::crash
