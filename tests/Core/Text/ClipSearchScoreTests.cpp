#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "HarbexClipCore/Testing/ReferenceSearchScore.hpp"
#include "HarbexClipCore/Text/ClipSearchEntry.hpp"
#include "HarbexClipCore/Text/ClipSearchScore.hpp"

namespace harbex {
namespace {

std::optional<int> score(const std::string& word, const std::string& text) {
    return wordScore(FoldedText::fold(word), FoldedText::fold(text));
}

// Bytes outside printable ASCII as \xNN, so that a failing case can be pasted back.
std::string escaped(std::string_view bytes) {
    std::string out;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
            out.push_back(c);
        } else {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\x%02X", byte);
            out += buffer;
        }
    }
    return out;
}

std::string repeated(const std::string& piece, int count) {
    std::string out;
    for (int i = 0; i < count; ++i) out += piece;
    return out;
}

TEST(ClipSearchScoreTests, WordScoresFollowTheTable) {
    struct Case {
        std::string word;
        std::string text;
        std::optional<int> expected;
    };
    const std::vector<Case> cases = {
        {"", "abc", std::nullopt},
        {"abc", "", std::nullopt},
        {"notes", "Notes", 1000},
        {"cafe", "CAFÉ", 1000},
        {"note", "Notes from Monday", 800},
        {"mon", "Notes from Monday", 600},          // starts a word
        {"mon", "Notes-monday", 600},               // after punctuation
        {"day", "Monday", 400},                     // inside a word, d = 3
        {"day", repeated("x", 57) + "day", 395},    // d = 57
        {"day", repeated("x", 1009) + "day", 300},  // d = 1009: 400 - 100
        {"day", repeated("x", 1010) + "day", 300},  // from 1,010 on
        {"day", repeated("x", 5000) + "day", 300},
        {"day", "Mondé" + repeated("x", 19) + "day", 398},  // distance counts characters
        {"day", "👍🏽" + repeated("x", 19) + "day", 398},
        {"ab", "a-b", 185},
        {"ab", "a" + repeated("x", 8) + "b", 80},
        {"ab", "a" + repeated("x", 9) + "b", std::nullopt},
        {"abc", "a-b--c", 155},                      // gaps 1 and 2
        {"abcdefgh", "a--b--c--d--e--f--g--h", 20},  // 200 - 15 × 14, floored
        {"ba", "abxa", 185},                         // first b, then the next a
        {"ab", "axxxxxxxxxxxa-b", std::nullopt},     // only the first a is tried
        {"ab", repeated("y", 1997) + "a-b", 185},    // ends at character 2,000
        {"ab", repeated("y", 1998) + "a-b", std::nullopt},
        {"a", "bcd", std::nullopt},  // one character never scatters
        {"q", "xqz", 400},
        {"ss", "Straße", 400},  // ß folds to ss
        {"ｎｏｔｅ", "notebook", 800},
        {"👍", "👍🏽 yes", std::nullopt},  // a skin tone makes another character
        {"yes", "👍🏽 yes", 600},
        {"x", "👍🏽x", 600},  // an emoji is neither letter nor digit
        {"2", "v2", 400},         // digits count as word characters
        {"b", "a\r\nb", 600},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(score(c.word, c.text), c.expected) << c.word << " in " << c.text;
        EXPECT_EQ(referenceWordScore(FoldedText::fold(c.word), FoldedText::fold(c.text)),
                  c.expected)
            << "reference: " << c.word << " in " << c.text;
    }
}

TEST(ClipSearchScoreTests, FastScorerAgreesWithReferenceOnRandomTexts) {
    // A small alphabet makes substrings, near misses and long gaps common.
    const std::vector<std::string> alphabet = {"a", "b",        "c",    "-", " ",
                                               "é", "👍🏽", "\r\n", "B"};
    std::mt19937 random(20260311);
    const auto text = [&](int maxLength) {
        std::string out;
        const int length = std::uniform_int_distribution<int>(0, maxLength)(random);
        for (int i = 0; i < length; ++i) {
            out += alphabet[std::uniform_int_distribution<std::size_t>(
                0, alphabet.size() - 1)(random)];
        }
        return out;
    };
    for (int round = 0; round < 20000; ++round) {
        const FoldedText word = FoldedText::fold(text(4));
        const FoldedText haystack = FoldedText::fold(text(round % 10 == 0 ? 2400 : 40));
        ASSERT_EQ(wordScore(word, haystack), referenceWordScore(word, haystack))
            << escaped(word.bytes()) << " in " << escaped(haystack.bytes());
    }
}

TEST(ClipSearchScoreTests, EntryScoreWeighsFieldsAndNeedsEveryWord) {
    ClipSearchEntry entry;
    entry.title = FoldedText::fold("Meeting notes");
    entry.appName = FoldedText::fold("Notes");
    entry.body = FoldedText::fold("Meeting notes\nAgenda: budget, hiring");

    struct Case {
        std::string query;
        std::optional<std::int64_t> expected;
    };
    const std::vector<Case> cases = {
        {"", 0},
        {"   ", 0},
        {"meeting notes", 3 * 800 + 2 * 1000},
        {"MEETING", 3 * 800},
        {"notes", 2 * 1000},  // the application name beats the title's 600 × 3
        {"budget", 600},      // only the body has it
        {"budget hiring", 600 + 600},
        {"budget zebra", std::nullopt},  // every word must match somewhere
        {"Meeting  Notes ", 4400},       // empty pieces are dropped
        {"mtg", 3 * 140},                // scattered in the title beats the body
    };
    for (const Case& c : cases) {
        EXPECT_EQ(entryScore(c.query, entry), c.expected) << c.query;
    }

    ClipSearchEntry exact;
    exact.title = FoldedText::fold("invoice");
    exact.body = FoldedText::fold("invoice");
    EXPECT_EQ(entryScore("invoice", exact), 3000);
}

TEST(ClipSearchScoreTests, QueryWordsAreFoldedAndSplitAtSpaces) {
    const ClipSearchQuery query = ClipSearchQuery::make("  Café　ＮＯＴＥＳ 👍🏽 ");
    ASSERT_EQ(query.words.size(), 3u);
    EXPECT_EQ(query.words[0].folded(), FoldedText::fold("cafe"));
    EXPECT_EQ(query.words[1].folded(), FoldedText::fold("notes"));
    EXPECT_EQ(query.words[2].characters().size(), 1u);
}

}  // namespace
}  // namespace harbex
