#include "HarbexClipCore/Paste/PasteStack.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "HarbexClipCore/Paste/ClipStackSequence.hpp"

namespace harbex {
namespace {

using Separator = PasteStack::Separator;

TEST(PasteStackTests, EachJoiningModeHasItsSeparatorAndOnePerPasteHasNone) {
    EXPECT_EQ(PasteStack::separator(ClipStackMode::onePerPaste), std::nullopt);
    EXPECT_EQ(PasteStack::separator(ClipStackMode::newLines), Separator::newLine);
    EXPECT_EQ(PasteStack::separator(ClipStackMode::commas), Separator::comma);
    EXPECT_EQ(PasteStack::separator(ClipStackMode::spaces), Separator::space);
}

struct JoinCase {
    std::string name;
    std::vector<std::string> texts;
    Separator separator;
    std::string expected;
};

void PrintTo(const JoinCase& c, std::ostream* out) { *out << c.name; }

class PasteStackJoinTests : public testing::TestWithParam<JoinCase> {};

TEST_P(PasteStackJoinTests, Joins) {
    const JoinCase& c = GetParam();
    EXPECT_EQ(PasteStack::join(c.texts, c.separator), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PasteStackJoinTests,
    testing::Values(
        JoinCase{"commasAddABlank", {"red", "green", "blue"}, Separator::comma, "red, green, blue"},
        JoinCase{"commasTrimCopiedLineBreaks",
                 {"red\n", "  green ", "\tblue\r\n"},
                 Separator::comma,
                 "red, green, blue"},
        JoinCase{"spacesTrim", {"one\n", " two"}, Separator::space, "one two"},
        JoinCase{"newLinesKeepIndentation",
                 {"if x:\n", "    y()"},
                 Separator::newLine,
                 "if x:\n    y()"},
        JoinCase{"newLinesDropOnlyTrailingBreaks", {"a\r\n\n", "b"}, Separator::newLine, "a\nb"},
        JoinCase{"blankTextsAreSkipped", {"a", " \n", "", "b"}, Separator::comma, "a, b"},
        JoinCase{
            "lineBreakOnlyTextSkippedInNewLines", {"a", "\n\n", "b"}, Separator::newLine, "a\nb"},
        JoinCase{"singleText", {"only"}, Separator::space, "only"},
        JoinCase{"nothing", {}, Separator::newLine, ""},
        JoinCase{"multibyteKept", {"café ", " naïve"}, Separator::comma, "café, naïve"}),
    [](const auto& info) { return info.param.name; });

TEST(PasteStackTests, KeepsTheOrderOfAddingAndIgnoresARepeat) {
    const Uuid a = Uuid::random(), b = Uuid::random(), c = Uuid::random();
    PasteStack stack;
    EXPECT_TRUE(stack.add(b));
    EXPECT_TRUE(stack.add(a));
    EXPECT_FALSE(stack.add(b));
    EXPECT_TRUE(stack.add(c));
    EXPECT_EQ(stack.ids, (std::vector<Uuid>{b, a, c}));
    EXPECT_TRUE(stack.remove(a));
    EXPECT_FALSE(stack.remove(a));
    EXPECT_EQ(stack.ids, (std::vector<Uuid>{b, c}));
}

std::vector<Uuid> someIds(int n) {
    std::vector<Uuid> ids;
    for (int i = 0; i < n; ++i) ids.push_back(Uuid::random());
    return ids;
}

TEST(ClipStackSequenceTests, OneCopyShowsTheLastOneMessageAtOnce) {
    ClipStackSequence sequence(someIds(1));
    sequence.wait(12);
    EXPECT_EQ(sequence.notice(ClipKeyVocabulary::macSymbols), "Copied the last one, press ⌘V");
    EXPECT_EQ(sequence.notice(ClipKeyVocabulary::linuxNames), "Copied the last one, press Ctrl+V");
}

TEST(ClipStackSequenceTests, WalksThroughTheCopiesWithTheirNotices) {
    const auto ids = someIds(3);
    ClipStackSequence sequence(ids);
    EXPECT_EQ(sequence.position(), 1u);
    EXPECT_EQ(sequence.current(), ids[0]);

    sequence.wait(5);
    EXPECT_TRUE(sequence.isWaiting);
    EXPECT_EQ(sequence.waitingCount, 5);
    EXPECT_EQ(sequence.notice(ClipKeyVocabulary::macSymbols),
              "Copied 1 of 3, press ⌘V. Open the panel again for the next.");

    sequence.advance();
    EXPECT_FALSE(sequence.isWaiting);
    EXPECT_EQ(sequence.waitingCount, std::nullopt);
    EXPECT_EQ(sequence.notice(ClipKeyVocabulary::linuxNames),
              "Copied 2 of 3, press Ctrl+V. Open the panel again for the next.");

    sequence.advance();
    EXPECT_EQ(sequence.current(), ids[2]);
    EXPECT_EQ(sequence.notice(ClipKeyVocabulary::macSymbols), "Copied the last one, press ⌘V");

    sequence.advance();
    EXPECT_TRUE(sequence.isFinished());
    EXPECT_EQ(sequence.current(), std::nullopt);
    EXPECT_EQ(sequence.position(), 3u) << "the position never runs past the total";
}

TEST(ClipStackSequenceTests, AdvanceAndWaitOnAFinishedSequenceChangeNothing) {
    ClipStackSequence sequence(someIds(1));
    sequence.advance();
    const ClipStackSequence finished = sequence;
    sequence.advance();
    sequence.wait(9);
    EXPECT_EQ(sequence, finished);

    ClipStackSequence empty(std::vector<Uuid>{});
    EXPECT_TRUE(empty.isFinished());
    empty.wait(3);
    EXPECT_FALSE(empty.isWaiting);
}

TEST(ClipStackSequenceTests, SkipStopsAtTheFirstUsableCopyAndClearsWaiting) {
    const auto ids = someIds(4);
    ClipStackSequence sequence(ids);
    sequence.wait(7);
    // The first two were deleted from the history since they were stacked.
    sequence.skip([&](const Uuid& id) { return id != ids[0] && id != ids[1]; });
    EXPECT_EQ(sequence.next, 2u);
    EXPECT_FALSE(sequence.isWaiting);
    EXPECT_EQ(sequence.waitingCount, std::nullopt);

    // A usable current copy keeps the wait.
    sequence.wait(8);
    sequence.skip([](const Uuid&) { return true; });
    EXPECT_EQ(sequence.next, 2u);
    EXPECT_TRUE(sequence.isWaiting);

    sequence.skip([](const Uuid&) { return false; });
    EXPECT_TRUE(sequence.isFinished());
}

}  // namespace
}  // namespace harbex
