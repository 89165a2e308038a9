#include "HarbexClipCore/Text/MarkdownText.hpp"

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <array>
#include <cassert>
#include <memory>

namespace harbex {

namespace {

struct Replacement {
    const char* pattern;
    const char* replacement;  // "$1" keeps the captured text, "" removes the match
};

// In order; each runs over the whole text produced by the one before.
constexpr std::array kReplacements{
    Replacement{R"((?m)^#{1,6}\s*)", ""},
    Replacement{R"(\*\*(.+?)\*\*)", "$1"},
    Replacement{R"(__(.+?)__)", "$1"},
    Replacement{R"((?<![\w*])\*(?!\s)(.+?)\*)", "$1"},
    Replacement{R"(\x60{3}[a-zA-Z0-9]*\n?)", ""},
    Replacement{R"(\x60(.+?)\x60)", "$1"},
    Replacement{R"(!\[([^\]]*)\]\([^)]*\))", "$1"},
    Replacement{R"(\[([^\]]+)\]\([^)]*\))", "$1"},
    Replacement{R"((?m)^\s*>\s?)", ""},
    Replacement{R"((?m)^\s*[-*+]\s+)", ""},
    Replacement{R"(~~(.+?)~~)", "$1"},
};

using CompiledPatterns = std::array<std::unique_ptr<icu::RegexPattern>, kReplacements.size()>;

// Compiled once; ICU patterns are immutable and may be shared between threads (matchers may not).
const CompiledPatterns& compiledPatterns() {
    static const CompiledPatterns patterns = [] {
        CompiledPatterns out;
        for (std::size_t i = 0; i < kReplacements.size(); ++i) {
            UErrorCode status = U_ZERO_ERROR;
            UParseError where{};
            out[i].reset(icu::RegexPattern::compile(
                icu::UnicodeString::fromUTF8(kReplacements[i].pattern), where, status));
            assert(U_SUCCESS(status) && "a Markdown pattern does not compile");
        }
        return out;
    }();
    return patterns;
}

}  // namespace

std::string plainTextFromMarkdown(std::string_view markdown) {
    icu::UnicodeString text =
        icu::UnicodeString::fromUTF8(icu::StringPiece(markdown.data(), markdown.size()));
    const CompiledPatterns& patterns = compiledPatterns();
    for (std::size_t i = 0; i < kReplacements.size(); ++i) {
        if (!patterns[i]) continue;
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::RegexMatcher> matcher(patterns[i]->matcher(text, status));
        if (U_FAILURE(status)) continue;
        icu::UnicodeString replaced =
            matcher->replaceAll(icu::UnicodeString::fromUTF8(kReplacements[i].replacement), status);
        if (U_SUCCESS(status)) text = std::move(replaced);
    }
    std::string out;
    text.toUTF8String(out);
    return out;
}

}  // namespace harbex
