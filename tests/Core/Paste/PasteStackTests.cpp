#include "HarbexClipCore/Paste/PasteStack.hpp"

#include <gtest/gtest.h>

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

TEST(PasteStackTests, JoinsTrimmingBreaksAndSkippingBlankTexts) {
    using S = Separator;
    struct Case {
        std::vector<std::string> texts;
        Separator separator;
        std::string expected;
    };
    const Case cases[] = {
        {{"red", "green", "blue"}, S::comma, "red, green, blue"},
        {{"red\n", "  green ", "\tblue\r\n"}, S::comma, "red, green, blue"},
        {{"one\n", " two"}, S::space, "one two"},
        {{"if x:\n", "    y()"}, S::newLine, "if x:\n    y()"},  // indentation kept
        {{"a\r\n\n", "b"}, S::newLine, "a\nb"},
        {{"a", " \n", "", "b"}, S::comma, "a, b"},
        {{"a", "\n\n", "b"}, S::newLine, "a\nb"},
        {{"only"}, S::space, "only"},
        {{}, S::newLine, ""},
        {{"café ", " naïve"}, S::comma, "café, naïve"},
    };
    for (const Case& c : cases) EXPECT_EQ(PasteStack::join(c.texts, c.separator), c.expected);
}

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
