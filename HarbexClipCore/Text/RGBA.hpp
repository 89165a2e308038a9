#pragma once

namespace harbex {

// A colour as it travels between capture, the colour text forms and the interface: sRGB red,
// green and blue plus alpha, each from 0 to 1.
struct RGBA {
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 1;

    friend bool operator==(const RGBA&, const RGBA&) = default;
};

}  // namespace harbex
