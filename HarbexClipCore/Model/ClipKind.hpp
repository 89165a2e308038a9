#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// What a copy is. The declaration order is the natural iteration order.
enum class ClipKind { text, richText, link, image, file, color, code };

template <>
struct EnumNames<ClipKind> {
    static constexpr std::array values{
        std::pair{ClipKind::text, std::string_view("text")},
        std::pair{ClipKind::richText, std::string_view("richText")},
        std::pair{ClipKind::link, std::string_view("link")},
        std::pair{ClipKind::image, std::string_view("image")},
        std::pair{ClipKind::file, std::string_view("file")},
        std::pair{ClipKind::color, std::string_view("color")},
        std::pair{ClipKind::code, std::string_view("code")},
    };
};

// Whether the system treats copies of this kind as text (editable, with text counts).
constexpr bool isTextual(ClipKind kind) {
    return kind == ClipKind::text || kind == ClipKind::richText || kind == ClipKind::color ||
           kind == ClipKind::code;
}

}  // namespace harbex
