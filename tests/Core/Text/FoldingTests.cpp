#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/utext.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Text/FoldedText.hpp"

namespace harbex {
namespace {

struct FoldCase {
    std::string input;
    std::string folded;  // the expected bytes, for cases that fold to plain UTF-8
};

TEST(FoldingTests, FoldsCaseDiacriticsAndWidthWithoutLocale) {
    const std::vector<FoldCase> cases = {
        {"Café", "cafe"},
        {"CAFE", "cafe"},
        {"cafe\xCC\x81", "cafe"},    // e + combining acute
        {"Straße", "strasse"},       // ß folds like ss
        {"STRAẞE", "strasse"},       // capital sharp s
        {"ＡＢＣ１２３", "abc123"},  // full-width letters and digits
        {"ｶﾞｲﾄﾞ", "カイト"},         // half-width kana widen, voicing marks go
        {"ガイド", "カイト"},        // and so do the composed ones
        {"a\xE3\x80\x80"
         "b",
         "a b"},  // ideographic space
        {"Ångström", "angstrom"},
        {"ÉLÈVE À L'ÉCOLE", "eleve a l'ecole"},
        {"İstanbul", "istanbul"},  // no Turkish rules: no locale
        {"ΣΊΣΥΦΟΣ", "σισυφοσ"},    // final sigma folds like any sigma
        {"Ǆemal", "ǆemal"},
        {"Ⅻ", "ⅻ"},            // case folds, compatibility forms stay
        {"ﬁ", "fi"},           // full case folding splits the ligature
        {"한국어", "한국어"},  // Hangul recomposes to single characters
        {"ÀÉÎÕÜ", "aeiou"},
        {"", ""},
        {"Tab\tAnd\nLine", "tab\tand\nline"},
    };
    for (const FoldCase& c : cases) {
        EXPECT_EQ(FoldedText::fold(c.input).bytes(), c.folded) << c.input;
    }
}

TEST(FoldingTests, EquivalentSpellingsFoldAlike) {
    const std::vector<std::pair<std::string, std::string>> pairs = {
        {"Café", "CAFE"},
        {"naïve", "NAIVE"},
        {"Ｈｅｌｌｏ", "hello"},
        {"straße", "STRASSE"},
        {"\xF0\x9F\x91\x8D\xF0\x9F\x8F\xBD", "\xF0\x9F\x91\x8D\xF0\x9F\x8F\xBD"},  // same emoji
        {"❤️", "❤"},  // the emoji variation selector is a mark and goes
    };
    for (const auto& [a, b] : pairs) {
        EXPECT_EQ(FoldedText::fold(a), FoldedText::fold(b)) << a << " / " << b;
    }
    EXPECT_NE(FoldedText::fold("👍🏽"), FoldedText::fold("👍"));
    EXPECT_NE(FoldedText::fold("résumé"), FoldedText::fold("resume!"));
}

TEST(FoldingTests, EveryCharacterIsOneToken) {
    struct CountCase {
        std::string input;
        std::size_t characters;
        bool ascii;
    };
    const std::vector<CountCase> cases = {
        {"hello", 5, true},
        {"a\r\nb", 3, false},  // CR LF is one character
        {"a\n\rb", 4, true},
        {"👍🏽x", 2, false},                                   // emoji with skin tone
        {"🇫🇷🇩🇪", 2, false},                                        // two flags
        {"\U0001F469\u200D\U0001F469\u200D\U0001F467", 1, false},  // family: one cluster
        {"e\xCC\x81\xCC\x82", 1, true},                            // marks go entirely
        {"\xE0\xA4\x95\xE0\xA4\xBF", 1, false},                    // Devanagari ki (spacing mark)
        {"ｘ", 1, true},
    };
    for (const CountCase& c : cases) {
        const FoldedText folded = FoldedText::fold(c.input);
        EXPECT_EQ(folded::characterCount(folded.bytes()), c.characters) << c.input;
        EXPECT_EQ(folded.isAscii(), c.ascii) << c.input;
    }
}

TEST(FoldingTests, FastRoadGivesTheSameBytesAsIcuAlone) {
    const std::vector<std::string> inputs = {
        "Plain ASCII only, with CAPITALS.",
        "ends with CR\r",
        "CR\r\nLF then é",
        "\r\n\xCC\x81 mark after a line break",
        "x\xCC\x81 mark after ASCII",
        "\xD8\x80"
        "1 prepend before a digit",
        "\xD8\x80\xCC\x81"
        "1 prepend, mark, digit",
        "mixed Café and 👍🏽 and ＡＢＣ in one line\r\nand Straße",
        "\xFF\xFE bad bytes \xC3 split \xE2\x82 tail \xF0",
        "a\xE2\x80\x8D"
        "b zero width joiner",
        "🇫🇷"
        "A flag then ASCII",
        "\xE1\x84\x80"
        "a leading jamo then ASCII",
    };
    for (const std::string& input : inputs) {
        EXPECT_EQ(FoldedText::fold(input, FoldingPath::fast),
                  FoldedText::fold(input, FoldingPath::unicodeOnly))
            << input;
    }
}

TEST(FoldingTests, CharacterPrefixMatchesTheGraphemeCount) {
    const std::vector<std::string> texts = {
        "plain words and more words",
        "line\r\nbreaks\r\neverywhere\r\n",
        "Café crème, Grüße aus Köln",
        "東京 会議 資料 서울 привет",
        "flags 🇫🇷🇩🇪 and 👨‍👩‍👧 families",
        "e\xCC\x81t\xCC\x81"
        "e\xCC\x81 marks",
        "\xFF bad \xC3 bytes",
        "a\r\n\xC3\xA9\r\nb\r",           // CR LF beside a non-ASCII character
        "x\xCC\x81\xCC\x81y then plain",  // two marks on an ASCII letter
        "\xCC\x81starts with a mark",
        "ascii run, then \xE6\x9D\xB1, then ascii",  // back to ASCII after one character
    };
    for (const std::string& text : texts) {
        // Every boundary from the break iterator run over the whole text, one at a time.
        std::vector<std::size_t> boundaries = {0};
        UErrorCode status = U_ZERO_ERROR;
        UText* utext =
            utext_openUTF8(nullptr, text.data(), static_cast<int64_t>(text.size()), &status);
        std::unique_ptr<icu::BreakIterator> iterator(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        ASSERT_TRUE(U_SUCCESS(status));
        iterator->setText(utext, status);
        iterator->first();
        for (int32_t at = iterator->next(); at != icu::BreakIterator::DONE; at = iterator->next()) {
            boundaries.push_back(static_cast<std::size_t>(at));
        }
        utext_close(utext);
        for (std::size_t count = 0; count <= 40; ++count) {
            EXPECT_EQ(characterPrefixLength(text, count),
                      boundaries[std::min(count, boundaries.size() - 1)])
                << text << " / " << count;
        }
    }
}

TEST(FoldingTests, InvalidBytesBecomeReplacementCharacters) {
    EXPECT_EQ(FoldedText::fold("a\xFF"
                               "b")
                  .bytes(),
              "a\xEF\xBF\xBD"
              "b");
    EXPECT_EQ(FoldedText::fold("\xC3").bytes(), "\xEF\xBF\xBD");
}

TEST(FoldingTests, MaskHoldsEveryCharacter) {
    const FoldedText text = FoldedText::fold("Hello, Wörld 42 👍🏽");
    const std::string_view bytes = text.bytes();
    for (std::size_t offset = 0; offset < bytes.size();) {
        const std::uint64_t bit = folded::characterBit(folded::nextToken(bytes, offset));
        EXPECT_EQ(text.characterMask() & bit, bit);
    }
    EXPECT_EQ(FoldedText::fold("ab").characterMask() & FoldedText::fold("z").characterMask(), 0u);
}

TEST(FoldingTests, SliceKeepsWholeCharacters) {
    const FoldedText text = FoldedText::fold("ab 👍🏽 cd");
    const std::string_view bytes = text.bytes();
    const std::size_t start = bytes.find(' ') + 1;
    const std::size_t end = bytes.rfind(' ');
    const FoldedText middle = text.slice(start, end - start);
    EXPECT_EQ(middle, FoldedText::fold("👍🏽"));
    EXPECT_FALSE(middle.isAscii());
    EXPECT_EQ(text.slice(0, 2), FoldedText::fold("AB"));
}

}  // namespace
}  // namespace harbex
