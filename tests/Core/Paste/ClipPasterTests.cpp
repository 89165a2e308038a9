#include "HarbexClipCore/Paste/ClipPaster.hpp"

#include <gtest/gtest.h>

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

const ClipPayload kText = textPayload("hello");

TEST(ClipPasterTests, FollowsTheStepsInOrderAndStopsAtTheFirstRefusal) {
    using O = PasteOutcome;
    struct Case {
        const char* name;
        ClipPayload payload;
        std::optional<ClipTargetApp> target;
        bool trusted;
        bool activates;
        PasteOutcome outcome;
        Journal steps;  // journal right after paste returns
    };
    const Case cases[] = {
        {"empty payload", ClipPayload{}, kEditor, true, true, O::failed, {"changeCount"}},
        {"concealed flag alone is empty",
         concealedOnly(),
         kEditor,
         true,
         true,
         O::failed,
         {"changeCount"}},
        {"no target skips trust and activation",
         kText,
         std::nullopt,
         true,
         true,
         O::copied,
         {"write"}},
        {"untrusted", kText, kEditor, false, true, O::copied, {"write", "isTrusted"}},
        {"activation refused",
         kText,
         kEditor,
         true,
         false,
         O::copied,
         {"write", "isTrusted", "activate:42"}},
        {"pasted",
         kText,
         kEditor,
         true,
         true,
         O::pasted,
         {"write", "isTrusted", "activate:42", "schedule"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PasterRig rig;
        rig.trusted = c.trusted;
        rig.activator.result = c.activates;
        const std::int64_t before = rig.pasteboard.inner.changeCount();
        const PasteResult result = rig.paster.paste(c.payload, c.target);
        EXPECT_EQ(result.outcome, c.outcome);
        EXPECT_EQ(rig.journal, c.steps);
        const std::int64_t written = c.outcome == O::failed ? before : before + 1;
        EXPECT_EQ(result.changeCount, written);
        EXPECT_EQ(rig.pasteboard.inner.changeCount(), written) << "nothing more may be written";
        // The keystroke comes only from the scheduler, never inside paste itself.
        EXPECT_EQ(rig.typer.count, 0);
        rig.scheduler.runAll();
        EXPECT_EQ(rig.typer.count, c.outcome == O::pasted ? 1 : 0);
    }
}

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
