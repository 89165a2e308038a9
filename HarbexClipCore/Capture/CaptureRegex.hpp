#pragma once

#include <memory>
#include <string_view>

namespace harbex {

enum class RegexCase { sensitive, insensitive };

// An ICU regular expression compiled once. Matching makes a matcher per call, so one pattern can
// be shared by every thread. Invalid UTF-8 in the text reads as U+FFFD.
class CaptureRegex {
public:
    // `pattern` must compile (a programming error otherwise).
    CaptureRegex(std::string_view pattern, RegexCase caseMatching = RegexCase::sensitive);
    ~CaptureRegex();
    CaptureRegex(const CaptureRegex&) = delete;
    CaptureRegex& operator=(const CaptureRegex&) = delete;

    // Whether the whole text matches (the pattern is anchored at both ends).
    bool matchesWhole(std::string_view text) const;
    // Whether some part of the text matches.
    bool findsIn(std::string_view text) const;

private:
    struct Compiled;
    std::unique_ptr<Compiled> compiled_;
};

}  // namespace harbex
