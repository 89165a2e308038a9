#include "HarbexClipCore/Capture/CaptureRegex.hpp"

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <cassert>
#include <cstdint>

namespace harbex {

struct CaptureRegex::Compiled {
    std::unique_ptr<icu::RegexPattern> pattern;
};

CaptureRegex::CaptureRegex(std::string_view pattern, RegexCase caseMatching)
    : compiled_(std::make_unique<Compiled>()) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError{};
    const uint32_t flags = caseMatching == RegexCase::insensitive ? UREGEX_CASE_INSENSITIVE : 0;
    compiled_->pattern.reset(icu::RegexPattern::compile(
        icu::UnicodeString::fromUTF8(icu::StringPiece(pattern.data(), int32_t(pattern.size()))),
        flags, parseError, status));
    assert(U_SUCCESS(status) && compiled_->pattern);
}

CaptureRegex::~CaptureRegex() = default;

namespace {

enum class Match { whole, anywhere };

bool run(const icu::RegexPattern* pattern, std::string_view text, Match match) {
    if (!pattern || text.size() > std::size_t(INT32_MAX)) return false;
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString input =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), int32_t(text.size())));
    std::unique_ptr<icu::RegexMatcher> matcher(pattern->matcher(input, status));
    if (U_FAILURE(status) || !matcher) return false;
    const bool found = match == Match::whole ? matcher->matches(status) : matcher->find(status);
    return U_SUCCESS(status) && found;
}

}  // namespace

bool CaptureRegex::matchesWhole(std::string_view text) const {
    return run(compiled_->pattern.get(), text, Match::whole);
}

bool CaptureRegex::findsIn(std::string_view text) const {
    return run(compiled_->pattern.get(), text, Match::anywhere);
}

}  // namespace harbex
