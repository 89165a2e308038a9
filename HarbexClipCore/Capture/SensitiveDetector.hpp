#pragma once

#include <string_view>

namespace harbex {

// Whether a text looks like a secret that should be hidden and forgotten soon: a card number
// with a valid Luhn checksum, a one-time code, a token with a well-known prefix, a private key
// copied as one line, or a long token-like run of letters and digits. Multi-line texts and texts
// of more than 4,096 characters never are. Used only while `detectSensitive` is on. Pure; any
// thread.
class SensitiveDetector {
public:
    static constexpr std::size_t kMaximumCharacters = 4096;

    static bool isSensitive(std::string_view text);

    // Whether the text, trimmed, is a one-time code (the label differs for those).
    static bool isOneTimeCode(std::string_view text);

    // "One-time code, hidden" or "Sensitive, hidden": what a hidden row shows.
    static std::string_view hiddenLabel(std::string_view text);

    // The Luhn checksum over a string of ASCII digits; false for fewer than two digits.
    static bool passesLuhn(std::string_view digits);
};

// What the detail pane says about a hidden copy.
inline constexpr std::string_view kSensitiveExplanation =
    "Looks sensitive, so it\u2019s hidden and forgotten soon.";

}  // namespace harbex
