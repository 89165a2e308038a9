#include "HarbexClipCore/Capture/TextDetails.hpp"

#include <unicode/uchar.h>

#include "HarbexClipCore/Capture/CaptureRegex.hpp"
#include "HarbexClipCore/Capture/CaptureText.hpp"
#include "HarbexClipCore/Capture/CodePatterns.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {
namespace {

const CaptureRegex& emailPattern() {
    static const CaptureRegex pattern("^[A-Z0-9._%+-]+@[A-Z0-9.-]+\\.[A-Z]{2,}$",
                                      RegexCase::insensitive);
    return pattern;
}

const CaptureRegex& numberPattern() {
    static const CaptureRegex pattern("^-?[\\d,]*\\.?\\d+$");
    return pattern;
}

const CaptureRegex& phonePattern() {
    static const CaptureRegex pattern("^\\+?[\\d\\s().-]+$");
    return pattern;
}

std::size_t digitCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        if (u_isdigit(UChar32(nextCodePoint(text, offset)))) ++count;
    }
    return count;
}

}  // namespace

std::vector<ClipDetail> TextDetails::of(std::string_view text) {
    std::vector<ClipDetail> details;
    if (text.empty() || hasMoreCharactersThan(text, kMaximumCharacters)) return details;
    if (emailPattern().matchesWhole(text)) details.push_back(ClipDetail::email);
    const bool oneTimeCode = isOneTimeCodeText(text);
    if (oneTimeCode) {
        details.push_back(ClipDetail::oneTimeCode);
    } else if (numberPattern().matchesWhole(text)) {
        details.push_back(ClipDetail::number);
    }
    if (!oneTimeCode) {
        const std::size_t digits = digitCount(text);
        if (digits >= 7 && digits <= 15 && phonePattern().matchesWhole(text))
            details.push_back(ClipDetail::phone);
    }
    return details;
}

}  // namespace harbex
