#include "HarbexClipCore/Support/Unicode.hpp"

#include <gtest/gtest.h>

namespace harbex {
namespace {

TEST(UnicodeTests, CharacterPrefixesCutBetweenUserPerceivedCharacters) {
    struct Case {
        std::string text;
        std::size_t count;
        std::string expected;
    };
    const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";  // one character
    const std::string flag = "\U0001F1E9\U0001F1EA";                          // one character
    const Case cases[] = {
        {"hello", 3, "hel"},
        {"hello", 10, "hello"},
        {"a\r\nb", 2, "a\r\n"},          // CR LF is one character
        {"abe\u0301x", 3, "abe\u0301"},  // a combining accent stays with its letter
        {"e\u0301", 1, "e\u0301"},
        {family + "x", 1, family},
        {flag + flag, 1, flag},
        {"ab" + flag, 3, "ab" + flag},
        {"", 3, ""},
        {"abc", 0, ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(characterPrefix(c.text, c.count), c.expected) << c.text << " " << c.count;
    }
}

TEST(UnicodeTests, CountsCharactersWordsAndUtf16Units) {
    struct Case {
        std::string text;
        std::int64_t characters;
        std::int64_t words;
        std::size_t utf16;
    };
    const Case cases[] = {
        {"", 0, 0, 0},
        {"Hello, world!", 13, 2, 13},
        {"a\r\nb", 3, 2, 4},
        {"Café au lait", 12, 3, 12},
        {"e\u0301t\u00E9", 3, 1, 4},
        {"\U0001F600 smile", 7, 1, 8},
        {"東京 タワー", 6, 2, 6},
        {"it's 3.5 o'clock", 16, 3, 16},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(characterCount(c.text), c.characters) << c.text;
        EXPECT_EQ(wordCount(c.text), c.words) << c.text;
        EXPECT_EQ(utf16Length(c.text), c.utf16) << c.text;
    }
}

TEST(UnicodeTests, InvalidUtf8IsDetectedAndRepairedWithoutCrashing) {
    const std::string bad[] = {"\xFF",         "abc\xC3",  "\xE2\x82",
                               "\xED\xA0\x80", "\xC0\xAF", "ok\x80ok"};
    for (const auto& text : bad) {
        EXPECT_FALSE(isValidUtf8(text));
        const std::string repaired = sanitizedUtf8(text);
        EXPECT_TRUE(isValidUtf8(repaired));
        EXPECT_NE(repaired.find("\uFFFD"), std::string::npos);
        EXPECT_GE(characterCount(text), 1);
        EXPECT_LE(characterPrefixLength(text, 1), text.size());
    }
    EXPECT_EQ(sanitizedUtf8("ok\x80ok"), "ok\uFFFDok");
    EXPECT_TRUE(isValidUtf8("plain \u00E9 \U0001F600"));
}

TEST(UnicodeTests, CodePointsRoundTripThroughTheEncoder) {
    std::string out;
    for (char32_t c : {U'a', U'\u00E9', U'\u20AC', U'\U0001F600'}) appendUtf8(out, c);
    std::size_t offset = 0;
    EXPECT_EQ(nextCodePoint(out, offset), U'a');
    EXPECT_EQ(nextCodePoint(out, offset), U'\u00E9');
    EXPECT_EQ(nextCodePoint(out, offset), U'\u20AC');
    EXPECT_EQ(nextCodePoint(out, offset), U'\U0001F600');
    EXPECT_EQ(offset, out.size());
}

}  // namespace
}  // namespace harbex
