#include "HarbexClipCore/Capture/SensitiveDetector.hpp"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <string>

#include "HarbexClipCore/Capture/CaptureRegex.hpp"
#include "HarbexClipCore/Capture/CaptureText.hpp"
#include "HarbexClipCore/Capture/CodePatterns.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {
namespace {

constexpr std::array<std::string_view, 17> kTokenPrefixes{
    "sk-",  "sk_live_", "sk_test_",    "pk_live_", "rk_live_", "ghp_",
    "gho_", "ghs_",     "github_pat_", "xoxb-",    "xoxp-",    "AKIA",
    "ASIA", "AIza",     "glpat-",      "npm_",     "eyJ",
};

const CaptureRegex& cardPattern() {
    static const CaptureRegex pattern("^[\\d -]{13,23}$");
    return pattern;
}

const CaptureRegex& privateKeyPattern() {
    static const CaptureRegex pattern("-----BEGIN [A-Z ]*PRIVATE KEY-----");
    return pattern;
}

const CaptureRegex& tokenPattern() {
    static const CaptureRegex pattern("^[A-Za-z0-9_\\-+/=.]+$");
    return pattern;
}

bool isCardNumber(std::string_view text) {
    if (text.size() > 128 || !cardPattern().matchesWhole(text)) return false;
    std::string digits;
    for (std::size_t offset = 0; offset < text.size();) {
        const int32_t value = u_charDigitValue(UChar32(nextCodePoint(text, offset)));
        if (value >= 0) digits.push_back(char('0' + value));
    }
    return digits.size() >= 13 && digits.size() <= 19 && SensitiveDetector::passesLuhn(digits);
}

bool hasKnownTokenPrefix(std::string_view text) {
    if (containsWhiteSpace(text) || !hasMoreCharactersThan(text, 15)) return false;
    return std::ranges::any_of(
        kTokenPrefixes, [text](std::string_view prefix) { return text.starts_with(prefix); });
}

bool isTokenLike(std::string_view text) {
    // The pattern admits ASCII only, so bytes are characters here.
    if (text.size() < 32 || text.size() > 512 || containsWhiteSpace(text)) return false;
    if (!tokenPattern().matchesWhole(text)) return false;
    const bool hasDigit = std::ranges::any_of(text, [](char c) { return c >= '0' && c <= '9'; });
    const bool hasLetter = std::ranges::any_of(
        text, [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); });
    if (!hasDigit || !hasLetter) return false;
    return text.find('/') == std::string_view::npos || text.find('.') == std::string_view::npos;
}

}  // namespace

bool SensitiveDetector::passesLuhn(std::string_view digits) {
    if (digits.size() < 2) return false;
    int sum = 0;
    bool doubled = false;
    for (auto it = digits.rbegin(); it != digits.rend(); ++it) {
        if (*it < '0' || *it > '9') return false;
        int value = *it - '0';
        if (doubled) {
            value *= 2;
            if (value > 9) value -= 9;
        }
        sum += value;
        doubled = !doubled;
    }
    return sum % 10 == 0;
}

bool SensitiveDetector::isSensitive(std::string_view text) {
    text = trimmingWhiteSpace(text);
    if (text.empty() || hasMoreCharactersThan(text, kMaximumCharacters)) return false;
    if (containsLineBreak(text)) return false;
    if (isCardNumber(text)) return true;
    if (isOneTimeCodeText(text)) return true;
    if (hasKnownTokenPrefix(text)) return true;
    if (privateKeyPattern().findsIn(text)) return true;
    return isTokenLike(text);
}

bool SensitiveDetector::isOneTimeCode(std::string_view text) {
    return isOneTimeCodeText(trimmingWhiteSpace(text));
}

std::string_view SensitiveDetector::hiddenLabel(std::string_view text) {
    return isOneTimeCode(text) ? "One-time code, hidden" : "Sensitive, hidden";
}

}  // namespace harbex
