#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Text/RGBA.hpp"

namespace harbex {

// The text forms a colour copy can be written in. Persisted as its case name.
enum class ClipColorFormat { hex, rgb, hsl, oklch };

template <>
struct EnumNames<ClipColorFormat> {
    static constexpr std::array values{
        std::pair{ClipColorFormat::hex, std::string_view("hex")},
        std::pair{ClipColorFormat::rgb, std::string_view("rgb")},
        std::pair{ClipColorFormat::hsl, std::string_view("hsl")},
        std::pair{ClipColorFormat::oklch, std::string_view("oklch")},
    };
};

// "HEX", "RGB", "HSL", "OKLCH".
std::string_view colorFormatLabel(ClipColorFormat format);

// Which form a colour text is written in, judged by its prefix alone after trimming white space
// and lowercasing; it does not check that the rest parses (ColorParser does). Thread: any.
std::optional<ClipColorFormat> colorFormatOf(std::string_view text);

// The colour in the given form. Red, green and blue are clamped to 0…1 first, so an
// out-of-gamut colour (from OKLCH, say) is clipped channel by channel; alpha is clamped too.
// Alpha below 1 is shown by hex (eight digits), rgba() and OKLCH's " / a"; HSL never shows it.
// Thread: any.
std::string colorText(double r, double g, double b, double alpha, ClipColorFormat format);
inline std::string colorText(const RGBA& color, ClipColorFormat format) {
    return colorText(color.r, color.g, color.b, color.a, format);
}

// Hue, saturation and lightness of clamped sRGB: hue in degrees 0 up to 360, the others 0…1.
struct ClipHSL {
    double h = 0;
    double s = 0;
    double l = 0;
};
ClipHSL hslFromSRGB(double r, double g, double b);

}  // namespace harbex
