#include "HarbexClipCore/Text/ClipOKLCH.hpp"

#include <cmath>
#include <numbers>

namespace harbex {

namespace {
constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;
}

double ClipOKLCH::linearFromEncoded(double channel) {
    // Odd extension keeps out-of-range values (from wide-gamut sources) invertible.
    const double magnitude = std::fabs(channel);
    const double linear =
        magnitude <= 0.04045 ? magnitude / 12.92 : std::pow((magnitude + 0.055) / 1.055, 2.4);
    return std::copysign(linear, channel);
}

double ClipOKLCH::encodedFromLinear(double channel) {
    const double magnitude = std::fabs(channel);
    const double encoded =
        magnitude <= 0.0031308 ? magnitude * 12.92 : 1.055 * std::pow(magnitude, 1.0 / 2.4) - 0.055;
    return std::copysign(encoded, channel);
}

ClipOKLCH::Lab ClipOKLCH::labFromLinearSRGB(const RGB& c) {
    const double l = 0.4122214708 * c.r + 0.5363325363 * c.g + 0.0514459929 * c.b;
    const double m = 0.2119034982 * c.r + 0.6806995451 * c.g + 0.1073969566 * c.b;
    const double s = 0.0883024619 * c.r + 0.2817188376 * c.g + 0.6299787005 * c.b;
    const double l1 = std::cbrt(l);
    const double m1 = std::cbrt(m);
    const double s1 = std::cbrt(s);
    return {0.2104542553 * l1 + 0.7936177850 * m1 - 0.0040720468 * s1,
            1.9779984951 * l1 - 2.4285922050 * m1 + 0.4505937099 * s1,
            0.0259040371 * l1 + 0.7827717662 * m1 - 0.8086757660 * s1};
}

ClipOKLCH::RGB ClipOKLCH::linearSRGBFromLab(const Lab& lab) {
    const double l1 = lab.l + 0.3963377774 * lab.a + 0.2158037573 * lab.b;
    const double m1 = lab.l - 0.1055613458 * lab.a - 0.0638541728 * lab.b;
    const double s1 = lab.l - 0.0894841775 * lab.a - 1.2914855480 * lab.b;
    const double l = l1 * l1 * l1;
    const double m = m1 * m1 * m1;
    const double s = s1 * s1 * s1;
    return {+4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
            -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
            -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s};
}

ClipOKLCH::Value ClipOKLCH::lchFromLab(const Lab& lab) {
    const double chroma = std::hypot(lab.a, lab.b);
    if (chroma < kAchromaticChroma) return {lab.l, chroma, 0};
    double hue = std::atan2(lab.b, lab.a) * kDegreesPerRadian;
    if (hue < 0) hue += 360;
    if (hue >= 360) hue -= 360;  // -tiny + 360 rounds to exactly 360
    return {lab.l, chroma, hue};
}

ClipOKLCH::Lab ClipOKLCH::labFromLCH(const Value& value) {
    const double radians = value.h / kDegreesPerRadian;
    return {value.l, value.c * std::cos(radians), value.c * std::sin(radians)};
}

ClipOKLCH::Value ClipOKLCH::fromSRGB(double r, double g, double b) {
    return lchFromLab(
        labFromLinearSRGB({linearFromEncoded(r), linearFromEncoded(g), linearFromEncoded(b)}));
}

ClipOKLCH::RGB ClipOKLCH::toSRGB(const Value& value) {
    const RGB linear = linearSRGBFromLab(labFromLCH(value));
    return {encodedFromLinear(linear.r), encodedFromLinear(linear.g), encodedFromLinear(linear.b)};
}

}  // namespace harbex
