#pragma once

#include <array>
#include <string_view>

namespace harbex {

// The colours and symbols a pinboard can wear, by the names stored in `Pinboard::color` and
// `Pinboard::symbol`. The views draw them; a stored name missing here (a board from a newer
// version) is drawn as the first of its list.
inline constexpr std::array<std::string_view, 8> kPinboardColors{
    "blue", "purple", "pink", "red", "orange", "yellow", "green", "grey"};
inline constexpr std::array<std::string_view, 8> kPinboardSymbols{
    "pin", "star", "heart", "bookmark", "folder", "tag", "flag", "briefcase"};

}  // namespace harbex
