#include "HarbexClipCore/Panel/ClipHotKeys.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "HarbexClipCore/Testing/RecordingHotKeyRegistrar.hpp"
#include "HarbexClipCore/Testing/RecordingModifierMonitor.hpp"

namespace harbex {
namespace {

using Which = ClipHotKeys::Which;
using M = ClipShortcut::Modifiers;
using Held = ClipModifierTap::Held;
using Calls = std::vector<std::string>;

// X11 masks: Shift 1, Ctrl 4, Alt 8, Super 64.
constexpr std::uint32_t kShift = 1, kCtrl = 4, kAlt = 8, kSuper = 64;

struct HotKeysRig {
    RecordingHotKeyRegistrar registrar;
    RecordingModifierMonitor monitor;
    int panelOpened = 0, libraryOpened = 0, paused = 0;
    std::unique_ptr<ClipHotKeys> hotKeys = std::make_unique<ClipHotKeys>(
        registrar, monitor,
        ClipHotKeys::Actions{[this] { ++panelOpened; }, [this] { ++libraryOpened; },
                             [this] { ++paused; }});

    void doubleTap(Held held, double at) {
        monitor.change(held, at);
        monitor.change(Held(), at + 0.1);
        monitor.change(held, at + 0.2);
        monitor.change(Held(), at + 0.3);
    }
};

TEST(ClipHotKeysTests, StartRegistersTheDefaultsWithLinuxModifiersAndTheDoubleTap) {
    HotKeysRig rig;
    rig.hotKeys->start(ClipSettings::defaults());
    const Calls expected{"install", "register:panel:9:" + std::to_string(kCtrl | kSuper),
                         "register:library:9:" + std::to_string(kCtrl | kAlt | kSuper)};
    EXPECT_EQ(rig.registrar.calls, expected);
    EXPECT_EQ(rig.hotKeys->status(Which::pause), 0);
    EXPECT_FALSE(rig.hotKeys->isRegistered(Which::pause));
    EXPECT_EQ(rig.hotKeys->installedTrigger(), ClipPanelTrigger::doubleCommand);
    EXPECT_TRUE(rig.monitor.isInstalled());
}

TEST(ClipHotKeysTests, PressesRunTheirSlotsActions) {
    HotKeysRig rig;
    ClipSettings settings;
    settings.window.pauseShortcut = ClipShortcut{35, M::option | M::command};
    rig.hotKeys->start(settings);
    rig.registrar.press(Which::panel);
    rig.registrar.press(Which::library);
    rig.registrar.press(Which::library);
    rig.registrar.press(Which::pause);
    EXPECT_EQ(rig.panelOpened, 1);
    EXPECT_EQ(rig.libraryOpened, 2);
    EXPECT_EQ(rig.paused, 1);

    HotKeysRig empty;  // no pause shortcut: a stale press for its slot does nothing
    empty.hotKeys->start(ClipSettings::defaults());
    empty.registrar.press(Which::pause);
    EXPECT_EQ(empty.paused, 0);
}

TEST(ClipHotKeysTests, AShortcutWithoutCommandControlOrOptionIsNeverRegistered) {
    for (int modifiers : {0, M::shift.rawValue}) {
        HotKeysRig rig;
        ClipSettings settings;
        settings.panel.fallback = ClipShortcut{9, M{modifiers}};
        rig.hotKeys->start(settings);
        for (const auto& call : rig.registrar.calls) {
            EXPECT_EQ(call.rfind("register:panel", 0), std::string::npos) << call;
        }
        EXPECT_FALSE(rig.hotKeys->isRegistered(Which::panel));
        EXPECT_EQ(rig.hotKeys->status(Which::panel), ClipHotKeys::kStatusInvalidShortcut);
        EXPECT_TRUE(rig.hotKeys->isRegistered(Which::library));
    }
}

TEST(ClipHotKeysTests, ChangingAShortcutReleasesTheOldOneFirst) {
    HotKeysRig rig;
    ClipSettings settings;
    rig.hotKeys->start(settings);
    rig.registrar.calls.clear();

    settings.panel.fallback = ClipShortcut{8, M::shift | M::command};  // ⇧⌘C
    rig.hotKeys->apply(settings);

    const Calls expected{"unregister:panel", "register:panel:8:" + std::to_string(kShift | kCtrl)};
    EXPECT_EQ(rig.registrar.calls, expected);
    EXPECT_EQ(rig.registrar.registered.at(Which::panel),
              (RecordingHotKeyRegistrar::Registration{8, kShift | kCtrl}));
    EXPECT_EQ(rig.hotKeys->status(Which::panel), 0);
}

TEST(ClipHotKeysTests, ClearingThePauseShortcutReleasesOnlyIt) {
    HotKeysRig rig;
    ClipSettings settings;
    settings.window.pauseShortcut = ClipShortcut{35, M::control | M::command};
    rig.hotKeys->start(settings);
    ASSERT_TRUE(rig.hotKeys->isRegistered(Which::pause));
    rig.registrar.calls.clear();

    settings.window.pauseShortcut.reset();
    rig.hotKeys->apply(settings);

    EXPECT_EQ(rig.registrar.calls, Calls{"unregister:pause"});
    EXPECT_FALSE(rig.hotKeys->isRegistered(Which::pause));
    EXPECT_TRUE(rig.hotKeys->isRegistered(Which::panel));
    EXPECT_TRUE(rig.hotKeys->isRegistered(Which::library));
}

TEST(ClipHotKeysTests, AnUnrelatedSettingsChangeTouchesNoRegistration) {
    HotKeysRig rig;
    ClipSettings settings;
    rig.hotKeys->start(settings);
    rig.registrar.calls.clear();
    settings.maxItems = 50;
    settings.panel.showsPreview = false;
    rig.hotKeys->apply(settings);
    EXPECT_TRUE(rig.registrar.calls.empty());
    EXPECT_EQ(rig.monitor.installCount, 1);
}

TEST(ClipHotKeysTests, AFailedRegistrationIsRecordedAndRetriedOnTheNextChange) {
    HotKeysRig rig;
    ClipSettings settings;
    settings.libraryShortcut = ClipShortcut{11, M::control | M::command};
    rig.registrar.failures[11] = RecordingHotKeyRegistrar::kStatusTaken;
    rig.hotKeys->start(settings);
    EXPECT_EQ(rig.hotKeys->status(Which::library), RecordingHotKeyRegistrar::kStatusTaken);
    EXPECT_FALSE(rig.hotKeys->isRegistered(Which::library));
    EXPECT_TRUE(rig.hotKeys->isRegistered(Which::panel));
    rig.registrar.press(Which::library);
    EXPECT_EQ(rig.libraryOpened, 0);

    rig.registrar.failures.clear();  // the other program let go of the key
    rig.registrar.calls.clear();
    settings.sensitiveLifetime = 60;
    rig.hotKeys->apply(settings);
    EXPECT_EQ(rig.registrar.calls, Calls{"register:library:11:" + std::to_string(kCtrl | kSuper)})
        << "a failed slot holds nothing, so there is nothing to release";
    EXPECT_EQ(rig.hotKeys->status(Which::library), 0);
}

TEST(ClipHotKeysTests, TheSameKeyInTwoSlotsRegistersOnceAndRecordsTheClash) {
    HotKeysRig rig;
    ClipSettings settings;
    settings.libraryShortcut = settings.panel.fallback;
    rig.hotKeys->start(settings);
    EXPECT_EQ(rig.hotKeys->status(Which::panel), 0);
    EXPECT_EQ(rig.hotKeys->status(Which::library), RecordingHotKeyRegistrar::kStatusTaken);
}

TEST(ClipHotKeysTests, ChangingTheTriggerSwapsTheMonitorForAFreshTap) {
    HotKeysRig rig;
    ClipSettings settings;
    rig.hotKeys->start(settings);
    rig.doubleTap(Held::command(), 10);
    EXPECT_EQ(rig.panelOpened, 1);

    // Half a gesture under the old trigger must not carry over.
    rig.monitor.change(Held::option(), 20);
    rig.monitor.change(Held(), 20.1);
    settings.panel.trigger = ClipPanelTrigger::doubleOption;
    rig.hotKeys->apply(settings);
    EXPECT_EQ(rig.monitor.removeCount, 1);
    EXPECT_EQ(rig.monitor.installCount, 2);
    EXPECT_EQ(rig.hotKeys->installedTrigger(), ClipPanelTrigger::doubleOption);
    rig.monitor.change(Held::option(), 20.2);
    rig.monitor.change(Held(), 20.3);
    EXPECT_EQ(rig.panelOpened, 1);

    rig.doubleTap(Held::command(), 30);
    EXPECT_EQ(rig.panelOpened, 1) << "command no longer triggers";
    rig.doubleTap(Held::option(), 40);
    EXPECT_EQ(rig.panelOpened, 2);

    settings.panel.trigger = ClipPanelTrigger::off;
    rig.hotKeys->apply(settings);
    EXPECT_FALSE(rig.monitor.isInstalled());
    EXPECT_EQ(rig.hotKeys->installedTrigger(), std::nullopt);
    EXPECT_EQ(rig.monitor.installCount, 2);
}

TEST(ClipHotKeysTests, EachTriggerWatchesItsModifier) {
    const std::vector<std::pair<ClipPanelTrigger, Held>> cases{
        {ClipPanelTrigger::doubleCommand, Held::command()},
        {ClipPanelTrigger::doubleOption, Held::option()},
        {ClipPanelTrigger::doubleControl, Held::control()},
        {ClipPanelTrigger::doubleShift, Held::shift()},
    };
    for (const auto& [trigger, held] : cases) {
        EXPECT_EQ(tapModifier(trigger), held);
        HotKeysRig rig;
        ClipSettings settings;
        settings.panel.trigger = trigger;
        rig.hotKeys->start(settings);
        rig.doubleTap(held, 5);
        EXPECT_EQ(rig.panelOpened, 1) << enumName(trigger);
    }
    EXPECT_EQ(tapModifier(ClipPanelTrigger::off), std::nullopt);

    HotKeysRig off;
    ClipSettings settings;
    settings.panel.trigger = ClipPanelTrigger::off;
    off.hotKeys->start(settings);
    EXPECT_EQ(off.monitor.installCount, 0);
}

TEST(ClipHotKeysTests, OtherInputBetweenTapsCancelsTheGesture) {
    HotKeysRig rig;
    rig.hotKeys->start(ClipSettings::defaults());
    rig.monitor.change(Held::command(), 1.0);
    rig.monitor.change(Held(), 1.1);
    rig.monitor.other();
    rig.monitor.change(Held::command(), 1.2);
    rig.monitor.change(Held(), 1.3);
    EXPECT_EQ(rig.panelOpened, 0);
}

TEST(ClipHotKeysTests, DestroyingReleasesEverything) {
    HotKeysRig rig;
    ClipSettings settings;
    settings.window.pauseShortcut = ClipShortcut{35, M::control | M::command};
    rig.hotKeys->start(settings);
    ASSERT_EQ(rig.registrar.registered.size(), 3u);
    rig.hotKeys.reset();
    EXPECT_TRUE(rig.registrar.registered.empty());
    EXPECT_FALSE(rig.monitor.isInstalled());
}

TEST(ClipHotKeysTests, TranslatesModifiersBitByBit) {
    struct Case {
        int modifiers;
        std::uint32_t x11;
        std::uint32_t carbon;
    };
    const std::vector<Case> cases{
        {0, 0, 0},
        {1, kCtrl, 0x100},
        {2, kShift, 0x200},
        {4, kAlt, 0x800},
        {8, kSuper, 0x1000},
        {15, kShift | kCtrl | kAlt | kSuper, 0x1b00},
        {16 | 1, kCtrl, 0x100},  // a bit the table does not know is dropped
    };
    for (const auto& c : cases) {
        EXPECT_EQ(translateHotKeyModifiers(M{c.modifiers}, kX11HotKeyModifiers), c.x11)
            << c.modifiers;
        EXPECT_EQ(translateHotKeyModifiers(M{c.modifiers}, kCarbonHotKeyModifiers), c.carbon)
            << c.modifiers;
    }
}

}  // namespace
}  // namespace harbex
