#include "HarbexClipCore/Paste/ClipPaster.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "HarbexClipCore/Panel/ClipPanelFocus.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Testing/ManualScheduler.hpp"
#include "HarbexClipCore/Testing/MemoryFrontmost.hpp"
#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"
#include "HarbexClipCore/Testing/RecordingActivator.hpp"
#include "HarbexClipCore/Testing/RecordingPasteTyper.hpp"

namespace harbex {
namespace {

using Journal = std::vector<std::string>;

// A memory pasteboard that also notes the two requirements the paster may use, in one journal
// shared with the other doubles, so the order of steps across them can be checked.
class JournalPasteboard final : public ClipPasteboard {
public:
    explicit JournalPasteboard(Journal& journal) : journal_(journal) {}

    std::int64_t changeCount() override {
        journal_.push_back("changeCount");
        return inner.changeCount();
    }
    std::vector<std::string> types() override { return inner.types(); }
    std::optional<std::string> markerValue(std::string_view type) override {
        return inner.markerValue(type);
    }
    std::optional<PasteboardSnapshot> snapshot() override { return inner.snapshot(); }
    std::int64_t write(const ClipPayload& payload,
                       std::optional<std::string_view> sourceID) override {
        journal_.push_back("write");
        return inner.write(payload, sourceID);
    }

    MemoryPasteboard inner;

private:
    Journal& journal_;
};

const ClipTargetApp kEditor{42, "org.gnome.TextEditor", "Text Editor"};

struct PasterRig {
    Journal journal;
    JournalPasteboard pasteboard{journal};
    RecordingPasteTyper typer;
    RecordingActivator activator;
    ManualScheduler scheduler;
    bool trusted = true;
    ClipPaster paster{pasteboard,
                      typer,
                      activator,
                      [this] {
                          journal.push_back("isTrusted");
                          return trusted;
                      },
                      kPasteKeystrokeDelay,
                      [this](double delay, std::function<void()> block) {
                          journal.push_back("schedule");
                          scheduler.schedule(delay, std::move(block));
                      }};

    PasterRig() {
        typer.journal = &journal;
        activator.journal = &journal;
        // Other applications have copied a few times already.
        pasteboard.inner.copyText("one");
        pasteboard.inner.copyText("two");
    }
};

ClipPayload concealedOnly() {
    ClipPayload payload;
    payload.concealed = true;
    return payload;
}

ClipPayload textPayload(std::string text) {
    ClipPayload payload;
    payload.text = std::move(text);
    return payload;
}

struct StepCase {
    std::string name;
    ClipPayload payload;
    std::optional<ClipTargetApp> target;
    bool trusted;
    bool activates;
    PasteOutcome outcome;
    Journal steps;  // journal right after paste returns
};

void PrintTo(const StepCase& c, std::ostream* out) { *out << c.name; }

class ClipPasterStepTests : public testing::TestWithParam<StepCase> {};

TEST_P(ClipPasterStepTests, FollowsTheStepsInOrderAndStopsAtTheFirstRefusal) {
    const StepCase& c = GetParam();
    PasterRig rig;
    rig.trusted = c.trusted;
    rig.activator.result = c.activates;
    const std::int64_t before = rig.pasteboard.inner.changeCount();

    const PasteResult result = rig.paster.paste(c.payload, c.target);

    EXPECT_EQ(result.outcome, c.outcome);
    EXPECT_EQ(rig.journal, c.steps);
    if (c.outcome == PasteOutcome::failed) {
        EXPECT_EQ(result.changeCount, before);
        EXPECT_EQ(rig.pasteboard.inner.changeCount(), before) << "nothing may be written";
    } else {
        EXPECT_EQ(result.changeCount, before + 1);
    }

    // The keystroke comes only from the scheduler, never inside paste itself.
    EXPECT_EQ(rig.typer.count, 0);
    rig.scheduler.runAll();
    EXPECT_EQ(rig.typer.count, c.outcome == PasteOutcome::pasted ? 1 : 0);
}

const ClipPayload kText = textPayload("hello");

INSTANTIATE_TEST_SUITE_P(
    Cases, ClipPasterStepTests,
    testing::Values(
        StepCase{"emptyPayload",
                 ClipPayload{},
                 kEditor,
                 true,
                 true,
                 PasteOutcome::failed,
                 {"changeCount"}},
        StepCase{"concealedFlagAloneIsEmpty",
                 concealedOnly(),
                 kEditor,
                 true,
                 true,
                 PasteOutcome::failed,
                 {"changeCount"}},
        StepCase{"noTargetSkipsTrustAndActivation",
                 kText,
                 std::nullopt,
                 true,
                 true,
                 PasteOutcome::copied,
                 {"write"}},
        StepCase{
            "untrusted", kText, kEditor, false, true, PasteOutcome::copied, {"write", "isTrusted"}},
        StepCase{"activationRefused",
                 kText,
                 kEditor,
                 true,
                 false,
                 PasteOutcome::copied,
                 {"write", "isTrusted", "activate:42"}},
        StepCase{"pasted",
                 kText,
                 kEditor,
                 true,
                 true,
                 PasteOutcome::pasted,
                 {"write", "isTrusted", "activate:42", "schedule"}}),
    [](const auto& info) { return info.param.name; });

TEST(ClipPasterTests, ReturnsTheCountOfItsOwnWriteEvenWhenTheBoardMovesOnAtOnce) {
    PasterRig rig;
    // Another application copies while the target is being activated.
    rig.activator.onActivate = [&](const ClipTargetApp&) { rig.pasteboard.inner.copyText("x"); };
    const std::int64_t before = rig.pasteboard.inner.changeCount();

    const PasteResult result = rig.paster.paste(kText, kEditor);

    EXPECT_EQ(result, (PasteResult{PasteOutcome::pasted, before + 1}));
    EXPECT_EQ(rig.pasteboard.inner.changeCount(), before + 2);
}

TEST(ClipPasterTests, TwoQuickPastesTypeTwoIndependentKeystrokes) {
    PasterRig rig;
    rig.paster.paste(textPayload("first"), kEditor);
    EXPECT_EQ(rig.scheduler.pendingDelays(), std::vector<double>{kPasteKeystrokeDelay});
    rig.scheduler.advance(0.05);
    EXPECT_EQ(rig.typer.count, 0);
    rig.paster.paste(textPayload("second"), kEditor);
    rig.scheduler.advance(0.07);
    EXPECT_EQ(rig.typer.count, 1) << "the first keystroke keeps its own time";
    rig.scheduler.advance(0.05);
    EXPECT_EQ(rig.typer.count, 2);
}

TEST(ClipPasterTests, FilesOnlyPayloadWritesFileUrlsAndMarkersButNoString) {
    PasterRig rig;
    ClipPayload payload;
    payload.fileURLs = {"file:///home/ana/a.txt", "file:///home/ana/b%20c.pdf"};

    rig.paster.paste(payload, std::nullopt);

    const std::vector<std::string> expected{std::string(kFileUrlType), std::string(kOwnWriteType),
                                            std::string(kSourceType)};
    EXPECT_EQ(rig.pasteboard.inner.types(), expected);
    EXPECT_EQ(rig.pasteboard.inner.contents(kSourceType), bytesOf(kDefaultPasteSourceID));
}

TEST(ClipPasterTests, UnparseableUrlIsSkippedAndTheTextStillWritten) {
    PasterRig rig;
    ClipPayload payload = textPayload("see notes");
    payload.url = "not a url";

    const PasteResult result = rig.paster.paste(payload, std::nullopt);

    EXPECT_EQ(result.outcome, PasteOutcome::copied);
    const std::vector<std::string> expected{std::string(kPlainTextType), std::string(kOwnWriteType),
                                            std::string(kSourceType)};
    EXPECT_EQ(rig.pasteboard.inner.types(), expected);
}

TEST(ClipPasterTests, WritesTheSourceIdAsItStandsAtEachPaste) {
    PasterRig rig;
    rig.paster.setSourceID("org.example.custom");
    rig.paster.paste(kText, std::nullopt);
    EXPECT_EQ(rig.pasteboard.inner.contents(kSourceType), bytesOf("org.example.custom"));

    rig.paster.setSourceID("");
    rig.paster.paste(kText, std::nullopt);
    EXPECT_FALSE(rig.pasteboard.inner.contents(kSourceType)) << "no id, no source marker";
}

TEST(ClipPasterTests, TargetThatHasQuitThroughTheFocusKeeperIsCopiedWithNothingScheduled) {
    PasterRig rig;
    MemoryFrontmost system;
    ManualScheduler focusScheduler;
    ClipPanelFocus focus(system, rig.activator, kPanelFocusSettle,
                         scheduleFunction(focusScheduler));
    ClipPaster paster(
        rig.pasteboard, rig.typer, focus, [] { return true; }, kPasteKeystrokeDelay,
        scheduleFunction(rig.scheduler));
    // kEditor was never started in `system`: its process is gone.

    const PasteResult result = paster.paste(kText, kEditor);

    EXPECT_EQ(result.outcome, PasteOutcome::copied);
    EXPECT_TRUE(rig.activator.requests.empty());
    EXPECT_EQ(rig.scheduler.pendingCount(), 0u);
    EXPECT_EQ(rig.pasteboard.inner.contents(kPlainTextType), bytesOf("hello"));
}

}  // namespace
}  // namespace harbex
