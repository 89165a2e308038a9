#pragma once

#include <optional>
#include <string_view>

#include "HarbexClipCore/Text/RGBA.hpp"

namespace harbex {

// Reads a colour written the way people write colours in CSS. The whole text, after trimming
// white space and line breaks, must be one colour; case does not matter.
//   #rgb, #rgba, #rrggbb, #rrggbbaa   (the "#" is required: a bare 123456 is a one-time code and
//                                     words such as "facade" are words)
//   rgb()/rgba()  r g b [/ a]  or  r, g, b[, a]; channels 0…255 or percentages
//   hsl()/hsla()  h s l [/ a]  or  h, s, l[, a]; hue a number of degrees or with deg, grad, rad
//                 or turn; saturation and lightness percentages (a bare number counts as one)
//   oklch()       L C h [/ a]; L as a percentage or 0…1, C a number (or a percentage of 0.4)
// Alpha is a number 0…1 or a percentage. Out-of-range values are clamped, as CSS does; an
// OKLCH colour outside sRGB is clipped channel by channel. Anything else gives nothing.
// Thread: any.
class ColorParser {
public:
    static std::optional<RGBA> parse(std::string_view text);
};

}  // namespace harbex
