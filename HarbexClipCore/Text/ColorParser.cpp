#include "HarbexClipCore/Text/ColorParser.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "HarbexClipCore/Text/ClipOKLCH.hpp"

namespace harbex {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}
bool isDigit(char c) { return c >= '0' && c <= '9'; }

double clamped(double value) { return std::clamp(value, 0.0, 1.0); }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

std::string lowercased(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return out;
}

int hexDigit(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

std::optional<RGBA> parseHex(std::string_view digits) {
    if (digits.size() != 3 && digits.size() != 4 && digits.size() != 6 && digits.size() != 8)
        return std::nullopt;
    std::vector<int> values;
    for (char c : digits) {
        const int value = hexDigit(c);
        if (value < 0) return std::nullopt;
        values.push_back(value);
    }
    double channels[4] = {0, 0, 0, 1};
    if (digits.size() <= 4) {
        for (std::size_t i = 0; i < digits.size(); ++i) channels[i] = values[i] * 17 / 255.0;
    } else {
        for (std::size_t i = 0; i < digits.size() / 2; ++i)
            channels[i] = (values[2 * i] * 16 + values[2 * i + 1]) / 255.0;
    }
    return RGBA{channels[0], channels[1], channels[2], channels[3]};
}

// One argument of a colour function: a number and what follows it ("", "%", "deg", ...).
struct Argument {
    double value = 0;
    std::string unit;
};

enum class Separator { none, comma, space };

struct Arguments {
    std::vector<Argument> values;
    std::optional<Argument> alpha;
};

// A CSS number: optional sign, digits with an optional fraction (".5" counts), optional exponent.
std::optional<double> scanNumber(std::string_view text, std::size_t& position) {
    std::size_t end = position;
    const bool negative = end < text.size() && text[end] == '-';
    if (end < text.size() && (text[end] == '+' || text[end] == '-')) ++end;
    const std::size_t start = end;
    while (end < text.size() && isDigit(text[end])) ++end;
    if (end < text.size() && text[end] == '.') {
        ++end;
        const std::size_t fraction = end;
        while (end < text.size() && isDigit(text[end])) ++end;
        if (end == fraction) return std::nullopt;  // "1." is not a CSS number
    }
    if (end == start) return std::nullopt;
    if (end < text.size() && text[end] == 'e') {
        std::size_t exponent = end + 1;
        if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
        if (exponent < text.size() && isDigit(text[exponent])) {
            while (exponent < text.size() && isDigit(text[exponent])) ++exponent;
            end = exponent;
        }
    }
    double value = 0;
    const auto result = std::from_chars(text.data() + start, text.data() + end, value);
    if (result.ec != std::errc() || result.ptr != text.data() + end || !std::isfinite(value))
        return std::nullopt;
    position = end;
    return negative ? -value : value;
}

// Splits "1, 2, 3" or "1 2 3 / 0.5" into arguments; mixed or misplaced separators fail.
std::optional<Arguments> scanArguments(std::string_view body) {
    Arguments out;
    Separator separator = Separator::none;
    bool sawSlash = false;
    bool expectValue = true;  // after a comma or slash a value must follow
    std::size_t position = 0;
    std::vector<Argument> all;
    for (;;) {
        const std::size_t before = position;
        while (position < body.size() && isSpace(body[position])) ++position;
        if (position == body.size()) break;
        const char c = body[position];
        if (c == ',' || c == '/') {
            if (expectValue) return std::nullopt;
            if (c == ',') {
                if (sawSlash || separator == Separator::space) return std::nullopt;
                separator = Separator::comma;
            } else {
                if (sawSlash || separator == Separator::comma) return std::nullopt;
                sawSlash = true;
                out.values = all;
                all.clear();
            }
            ++position;
            expectValue = true;
            continue;
        }
        if (!expectValue) {
            // Two values in a row: only the space syntax allows that, and they must be apart.
            if (separator == Separator::comma || before == position || sawSlash)
                return std::nullopt;
            separator = Separator::space;
        }
        auto number = scanNumber(body, position);
        if (!number) return std::nullopt;
        Argument argument{*number, {}};
        while (position < body.size() &&
               (body[position] == '%' || (body[position] >= 'a' && body[position] <= 'z')))
            argument.unit += body[position++];
        all.push_back(std::move(argument));
        expectValue = false;
    }
    if (expectValue) return std::nullopt;  // empty, or ends in a separator
    if (sawSlash) {
        if (all.size() != 1) return std::nullopt;
        out.alpha = all.front();
    } else if (separator == Separator::comma && all.size() == 4) {
        out.alpha = all.back();
        all.pop_back();
        out.values = std::move(all);
    } else {
        out.values = std::move(all);
    }
    if (out.values.size() != 3) return std::nullopt;
    return out;
}

std::optional<double> alphaOf(const std::optional<Argument>& alpha) {
    if (!alpha) return 1.0;
    if (alpha->unit == "%") return clamped(alpha->value / 100);
    if (alpha->unit.empty()) return clamped(alpha->value);
    return std::nullopt;
}

// A 0…255 channel or a percentage, as a fraction.
std::optional<double> rgbChannel(const Argument& argument) {
    if (argument.unit == "%") return clamped(argument.value / 100);
    if (argument.unit.empty()) return clamped(argument.value / 255);
    return std::nullopt;
}

std::optional<double> degrees(const Argument& argument) {
    double value = argument.value;
    if (argument.unit == "rad") {
        value *= 180 / std::numbers::pi;
    } else if (argument.unit == "turn") {
        value *= 360;
    } else if (argument.unit == "grad") {
        value *= 0.9;
    } else if (!argument.unit.empty() && argument.unit != "deg") {
        return std::nullopt;
    }
    value = std::fmod(value, 360);
    return value < 0 ? value + 360 : value;
}

// Saturation and lightness: percentages, or bare numbers read as percentages.
std::optional<double> percentage(const Argument& argument) {
    if (argument.unit != "%" && !argument.unit.empty()) return std::nullopt;
    return clamped(argument.value / 100);
}

std::optional<RGBA> parseRGB(const Arguments& arguments) {
    const auto r = rgbChannel(arguments.values[0]);
    const auto g = rgbChannel(arguments.values[1]);
    const auto b = rgbChannel(arguments.values[2]);
    const auto a = alphaOf(arguments.alpha);
    if (!r || !g || !b || !a) return std::nullopt;
    return RGBA{*r, *g, *b, *a};
}

std::optional<RGBA> parseHSL(const Arguments& arguments) {
    const auto h = degrees(arguments.values[0]);
    const auto s = percentage(arguments.values[1]);
    const auto l = percentage(arguments.values[2]);
    const auto a = alphaOf(arguments.alpha);
    if (!h || !s || !l || !a) return std::nullopt;
    // The CSS Color 4 formulation: each channel from its own offset on the hue circle.
    auto channel = [&](double n) {
        const double k = std::fmod(n + *h / 30, 12);
        const double amount = *s * std::min(*l, 1 - *l);
        return clamped(*l - amount * std::max(-1.0, std::min({k - 3, 9 - k, 1.0})));
    };
    return RGBA{channel(0), channel(8), channel(4), *a};
}

std::optional<RGBA> parseOKLCH(const Arguments& arguments) {
    const Argument& lightness = arguments.values[0];
    const Argument& chroma = arguments.values[1];
    double l = 0;
    if (lightness.unit == "%") {
        l = lightness.value / 100;
    } else if (lightness.unit.empty()) {
        l = lightness.value;
    } else {
        return std::nullopt;
    }
    double c = 0;
    if (chroma.unit == "%") {
        c = chroma.value / 100 * 0.4;  // CSS maps 100% to a chroma of 0.4
    } else if (chroma.unit.empty()) {
        c = chroma.value;
    } else {
        return std::nullopt;
    }
    const auto h = degrees(arguments.values[2]);
    const auto a = alphaOf(arguments.alpha);
    if (!h || !a) return std::nullopt;
    const ClipOKLCH::Value value{std::clamp(l, 0.0, 1.0), std::max(c, 0.0), *h};
    const ClipOKLCH::RGB rgb = ClipOKLCH::toSRGB(value);
    return RGBA{clamped(rgb.r), clamped(rgb.g), clamped(rgb.b), *a};
}

enum class ColorFunction { rgb, hsl, oklch };

}  // namespace

std::optional<RGBA> ColorParser::parse(std::string_view text) {
    const std::string lower = lowercased(trimmed(text));
    const std::string_view colour(lower);
    if (colour.starts_with('#')) return parseHex(colour.substr(1));

    static constexpr std::pair<std::string_view, ColorFunction> kFunctions[] = {
        {"rgba(", ColorFunction::rgb},    {"rgb(", ColorFunction::rgb},
        {"hsla(", ColorFunction::hsl},    {"hsl(", ColorFunction::hsl},
        {"oklch(", ColorFunction::oklch},
    };
    for (const auto& [prefix, function] : kFunctions) {
        if (!colour.starts_with(prefix) || !colour.ends_with(')')) continue;
        const std::string_view body =
            colour.substr(prefix.size(), colour.size() - prefix.size() - 1);
        const auto arguments = scanArguments(body);
        if (!arguments) return std::nullopt;
        switch (function) {
            case ColorFunction::rgb: return parseRGB(*arguments);
            case ColorFunction::hsl: return parseHSL(*arguments);
            case ColorFunction::oklch:
                // OKLCH has only the modern syntax.
                if (body.find(',') != std::string_view::npos) return std::nullopt;
                return parseOKLCH(*arguments);
        }
    }
    return std::nullopt;
}

}  // namespace harbex
