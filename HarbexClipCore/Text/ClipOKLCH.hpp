#pragma once

namespace harbex {

// Conversions between sRGB and OKLCH (the polar form of OKLab) with the published OKLab
// matrices. Pure functions; thread: any.
struct ClipOKLCH {
    // Lightness 0…1, chroma 0 and up, hue in degrees 0 up to 360.
    struct Value {
        double l = 0;
        double c = 0;
        double h = 0;
        friend bool operator==(const Value&, const Value&) = default;
    };
    struct Lab {
        double l = 0;
        double a = 0;
        double b = 0;
        friend bool operator==(const Lab&, const Lab&) = default;
    };
    struct RGB {
        double r = 0;
        double g = 0;
        double b = 0;
        friend bool operator==(const RGB&, const RGB&) = default;
    };

    // Below this chroma the hue is noise from rounding, so it is reported as 0.
    static constexpr double kAchromaticChroma = 0.0002;

    // Gamma-encoded sRGB channels (nominally 0…1; values outside pass through the transfer
    // function's extension unchanged in sign) to OKLCH.
    static Value fromSRGB(double r, double g, double b);
    // OKLCH to gamma-encoded sRGB. A colour outside the sRGB gamut gives channels outside 0…1;
    // the caller decides how to bring them in.
    static RGB toSRGB(const Value& value);

    static Lab labFromLinearSRGB(const RGB& linear);
    static RGB linearSRGBFromLab(const Lab& lab);
    static Value lchFromLab(const Lab& lab);
    static Lab labFromLCH(const Value& value);

    // The sRGB transfer function (IEC 61966-2-1) and its inverse, odd-extended below 0.
    static double linearFromEncoded(double channel);
    static double encodedFromLinear(double channel);
};

}  // namespace harbex
