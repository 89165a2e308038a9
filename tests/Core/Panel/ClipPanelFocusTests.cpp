#include "HarbexClipCore/Panel/ClipPanelFocus.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "HarbexClipCore/Testing/ManualScheduler.hpp"
#include "HarbexClipCore/Testing/MemoryFrontmost.hpp"
#include "HarbexClipCore/Testing/RecordingActivator.hpp"

namespace harbex {
namespace {

using Close = ClipPanelFocus::Close;

const ClipTargetApp kEditor{42, "org.gnome.TextEditor", "Text Editor"};
const ClipTargetApp kBrowser{43, "firefox", "Firefox"};
const ClipTargetApp kFiles{44, "org.gnome.Nautilus", "Files"};

// The person works in the editor; the window manager moves the front wherever it is asked.
struct FocusRig {
    MemoryFrontmost system;
    RecordingActivator activator;
    ManualScheduler scheduler;
    std::unique_ptr<ClipPanelFocus> focus = std::make_unique<ClipPanelFocus>(
        system, activator, kPanelFocusSettle, scheduleFunction(scheduler));

    FocusRig() {
        system.activateOther(kEditor);
        system.running.insert(kBrowser.pid);
        activator.onActivate = [this](const ClipTargetApp& target) {
            system.activateOther(target);
        };
    }
};

TEST(ClipPanelFocusTests, OpenRemembersTheFrontAppAndTakesTheFrontOnce) {
    FocusRig rig;
    EXPECT_EQ(rig.focus->open(), kEditor);
    EXPECT_TRUE(rig.focus->isOpen());
    EXPECT_TRUE(rig.focus->holdsFront());
    EXPECT_TRUE(rig.system.active);
    EXPECT_EQ(rig.system.bringForwardCount, 1);
    rig.system.activateOther(kBrowser);  // the front moved without the panel closing
    EXPECT_EQ(rig.focus->open(), kEditor);
    EXPECT_EQ(rig.focus->previous(), kEditor);
}

TEST(ClipPanelFocusTests, OpeningWhileAlreadyActiveLeavesTheFrontAlone) {
    FocusRig rig;
    rig.system.bringForward();  // the library window is in front
    rig.system.bringForwardCount = 0;
    EXPECT_EQ(rig.focus->open(), std::nullopt);
    EXPECT_EQ(rig.system.bringForwardCount, 0);
    EXPECT_FALSE(rig.focus->holdsFront());
}

TEST(ClipPanelFocusTests, OpeningWhenWeAreInFrontKeepsAHandBackTargetAsPrevious) {
    FocusRig rig;
    rig.focus->open();
    rig.activator.onActivate = nullptr;  // the switch to the editor has not happened yet
    ASSERT_TRUE(rig.focus->activate(kEditor));
    rig.focus->close(Close::lostFront);
    ASSERT_EQ(rig.system.front, rig.system.own);

    EXPECT_EQ(rig.focus->open(), kEditor);
    EXPECT_TRUE(rig.focus->holdsFront()) << "the hand-back is overtaken: take the front again";
    EXPECT_EQ(rig.focus->handingBackTo(), std::nullopt);
}

TEST(ClipPanelFocusTests, HandBackRefusesATargetThatQuitAndChangesNothing) {
    FocusRig rig;
    rig.focus->open();
    const auto generation = rig.focus->generation();
    rig.system.terminate(kBrowser);
    EXPECT_FALSE(rig.focus->activate(kBrowser));
    EXPECT_TRUE(rig.activator.requests.empty());
    EXPECT_EQ(rig.focus->generation(), generation);
    EXPECT_TRUE(rig.focus->holdsFront());
}

TEST(ClipPanelFocusTests, HandBackForPasteIsReclaimedWhileThePanelStaysOpen) {
    FocusRig rig;
    rig.focus->open();
    ASSERT_TRUE(rig.focus->activate(kEditor));
    EXPECT_TRUE(rig.focus->handedBackForPaste());
    EXPECT_FALSE(rig.focus->holdsFront());
    EXPECT_FALSE(rig.system.active);

    rig.focus->reclaimAfterPaste();
    EXPECT_FALSE(rig.focus->handedBackForPaste());
    EXPECT_TRUE(rig.focus->holdsFront());
    EXPECT_TRUE(rig.system.active);

    const int forwards = rig.system.bringForwardCount;
    rig.focus->reclaimAfterPaste();  // nothing was handed back since
    EXPECT_EQ(rig.system.bringForwardCount, forwards);

    FocusRig closed;
    ASSERT_TRUE(closed.focus->activate(kBrowser));
    EXPECT_FALSE(closed.focus->handedBackForPaste()) << "the panel was closed";
    EXPECT_EQ(closed.focus->handingBackTo(), kBrowser);
}

TEST(ClipPanelFocusTests, RegainFrontOnlyWhenOpenAndNotActive) {
    FocusRig rig;
    rig.focus->regainFront();
    EXPECT_EQ(rig.system.bringForwardCount, 0) << "closed panel";

    rig.focus->open();
    rig.focus->regainFront();
    EXPECT_EQ(rig.system.bringForwardCount, 1) << "already active";

    rig.system.activateOther(kBrowser);
    const auto generation = rig.focus->generation();
    rig.focus->regainFront();
    EXPECT_EQ(rig.system.bringForwardCount, 2);
    EXPECT_TRUE(rig.focus->holdsFront());
    EXPECT_GT(rig.focus->generation(), generation);
}

TEST(ClipPanelFocusTests, CloseGivesTheFrontBackOnlyWhenItShould) {
    struct Case {
        const char* name;
        Close reason;
        bool visibleWindow;
        bool othersTakeFront;  // the person clicked another application as the panel closed
        bool givesBackAtOnce;  // the editor is activated inside close()
        bool givesBackAfterSettle;
    };
    const Case cases[] = {
        {"dismissed", Close::dismissed, false, false, true, false},
        {"dismissed with our window showing", Close::dismissed, true, false, true, false},
        {"clicked outside on nothing", Close::clickedOutside, false, false, false, true},
        {"clicked outside on another app", Close::clickedOutside, false, true, false, false},
        {"handed off to our window", Close::handedOff, true, false, false, false},
        {"handed off with no window of ours", Close::handedOff, false, false, false, true},
        {"lost the front", Close::lostFront, false, false, false, false},
        {"to a copy", Close::toClip, false, false, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FocusRig rig;
        rig.system.visibleWindow = c.visibleWindow;
        rig.focus->open();
        rig.focus->close(c.reason);
        EXPECT_FALSE(rig.focus->isOpen());
        if (c.othersTakeFront) rig.system.activateOther(kBrowser);
        EXPECT_EQ(rig.activator.requests.size(), c.givesBackAtOnce ? 1u : 0u);
        rig.scheduler.advance(kPanelFocusSettle);
        const bool givesBack = c.givesBackAtOnce || c.givesBackAfterSettle;
        EXPECT_EQ(rig.activator.requests,
                  givesBack ? std::vector{kEditor} : std::vector<ClipTargetApp>{});
        EXPECT_EQ(rig.focus->handingBackTo(), givesBack ? std::optional(kEditor) : std::nullopt);
        EXPECT_FALSE(rig.focus->holdsFront());
        EXPECT_EQ(rig.focus->previous(), kEditor);
        EXPECT_EQ(rig.scheduler.pendingCount(), 0u);
    }
}

TEST(ClipPanelFocusTests, DismissedFallsBackWhenThePreviousAppQuit) {
    FocusRig rig;
    rig.system.fallback = kFiles;
    rig.focus->open();
    rig.system.terminate(kEditor);
    rig.focus->close(Close::dismissed);
    ASSERT_EQ(rig.activator.requests.size(), 1u);
    EXPECT_EQ(rig.activator.requests.front(), kFiles);
    EXPECT_EQ(rig.focus->handingBackTo(), kFiles);
}

TEST(ClipPanelFocusTests, DismissedWithNoPreviousUsesTheFallbackButNeverOurselves) {
    struct Case {
        std::optional<ClipTargetApp> fallback;
        std::size_t activations;
    };
    MemoryFrontmost probe;
    for (const Case& c : {Case{kFiles, 1}, Case{probe.own, 0}, Case{std::nullopt, 0}}) {
        FocusRig rig;
        rig.system.terminate(kEditor);  // nothing in front when the panel opens
        rig.system.fallback = c.fallback;
        EXPECT_EQ(rig.focus->open(), std::nullopt);
        rig.focus->close(Close::dismissed);
        EXPECT_EQ(rig.activator.requests.size(), c.activations);
        EXPECT_EQ(rig.system.fallbackQueries, 1);
    }
}

TEST(ClipPanelFocusTests, DismissedWithoutHoldingTheFrontGivesNothingBack) {
    FocusRig rig;
    rig.system.bringForward();  // opened over our own window: the front is left alone
    rig.focus->open();
    rig.focus->close(Close::dismissed);
    EXPECT_TRUE(rig.activator.requests.empty());
    EXPECT_EQ(rig.system.fallbackQueries, 0);
}

TEST(ClipPanelFocusTests, OnlyTheLatestSettleCheckActsAndOnlyWhileTheKeeperLives) {
    FocusRig reopened;
    reopened.focus->open();
    reopened.focus->close(Close::clickedOutside);
    reopened.focus->open();
    reopened.scheduler.advance(kPanelFocusSettle * 2);
    EXPECT_TRUE(reopened.activator.requests.empty());
    EXPECT_TRUE(reopened.focus->holdsFront());

    FocusRig overtaken;
    overtaken.focus->open();
    overtaken.focus->close(Close::handedOff);
    overtaken.scheduler.advance(0.1);
    overtaken.focus->open();
    overtaken.focus->close(Close::clickedOutside);
    overtaken.scheduler.advance(kPanelFocusSettle - 0.1);
    EXPECT_TRUE(overtaken.activator.requests.empty()) << "the first check is stale";
    overtaken.scheduler.advance(0.1);
    EXPECT_EQ(overtaken.activator.requests.size(), 1u);

    FocusRig gone;
    gone.focus->open();
    gone.focus->close(Close::clickedOutside);
    gone.focus.reset();
    gone.scheduler.runAll();
    EXPECT_TRUE(gone.activator.requests.empty());

    FocusRig closed;  // closing a closed panel changes nothing
    const auto generation = closed.focus->generation();
    closed.focus->close(Close::dismissed);
    closed.focus->close(Close::clickedOutside);
    EXPECT_EQ(closed.focus->generation(), generation);
    EXPECT_EQ(closed.scheduler.pendingCount(), 0u);
}

}  // namespace
}  // namespace harbex
