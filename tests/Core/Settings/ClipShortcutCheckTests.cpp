#include "HarbexClipCore/Settings/ClipShortcutCheck.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

namespace harbex {
namespace {

using Modifiers = ClipShortcut::Modifiers;
using Slot = ClipShortcutSlot;

struct ProblemCase {
    const char* name;
    std::uint32_t keyCode;
    int modifiers;
    Slot slot;
    std::function<void(ClipSettings&)> arrange;  // applied to the defaults
    std::optional<std::string> mac;
    std::optional<std::string> linux;
};

void keepDefaults(ClipSettings&) {}

TEST(ClipShortcutCheckTests, ProblemsInBothVocabularies) {
    const ProblemCase cases[] = {
        {"ShiftAlone", 9, 2, Slot::pause, keepDefaults, "A shortcut needs ⌘, ⌃ or ⌥.",
         "A shortcut needs Ctrl, Super or Alt."},
        {"OnlyUnknownBits", 0, 16, Slot::pause, keepDefaults, "A shortcut needs ⌘, ⌃ or ⌥.",
         "A shortcut needs Ctrl, Super or Alt."},
        {"CommandC", 8, 1, Slot::pause, keepDefaults, "⌘C is every app’s own.",
         "Ctrl+C is every app’s own."},
        {"CommandTab", 48, 1, Slot::mainWindow, keepDefaults, "⌘⇥ is every app’s own.",
         "Ctrl+Tab is every app’s own."},
        {"CommandM", 46, 1, Slot::panel, keepDefaults, "⌘M is every app’s own.",
         "Ctrl+M is every app’s own."},
        {"CommandH", 4, 1, Slot::panel, keepDefaults, "⌘H is every app’s own.",
         "Ctrl+H is every app’s own."},
        {"OptionCommandC", 8, 5, Slot::pause, keepDefaults, std::nullopt, std::nullopt},
        {"ShiftCommandC", 8, 3, Slot::pause, keepDefaults, std::nullopt, std::nullopt},
        {"CommandB", 11, 1, Slot::pause, keepDefaults, std::nullopt, std::nullopt},
        {"ControlCommandV", 9, 9, Slot::pause, keepDefaults, "⌃⌘V already opens the panel.",
         "Ctrl+Super+V already opens the panel."},
        {"LibraryShortcutForPause", 9, 13, Slot::pause, keepDefaults,
         "⌃⌥⌘V already opens the main window.", "Ctrl+Alt+Super+V already opens the main window."},
        {"PauseShortcutForPanel", 35, 9, Slot::panel,
         [](ClipSettings& s) {
             s.window.pauseShortcut = ClipShortcut{35, Modifiers{9}};
         },
         "⌃⌘P already pauses saving copies.", "Ctrl+Super+P already pauses saving copies."},
        {"ClashComesBeforeTheStandardKeys", 8, 1, Slot::panel,
         [](ClipSettings& s) {
             s.window.pauseShortcut = ClipShortcut{8, Modifiers::command};
         },
         "⌘C already pauses saving copies.", "Ctrl+C already pauses saving copies."},
        {"PanelIsComparedFirst", 9, 9, Slot::pause,
         [](ClipSettings& s) { s.libraryShortcut = s.panel.fallback; },
         "⌃⌘V already opens the panel.", "Ctrl+Super+V already opens the panel."},
        {"SameKeyOtherModifiers", 9, 11, Slot::pause, keepDefaults, std::nullopt, std::nullopt},
    };
    for (const auto& c : cases) {
        ClipSettings settings;
        c.arrange(settings);
        const Modifiers modifiers{c.modifiers};
        EXPECT_EQ(ClipShortcutCheck(ClipKeyVocabulary::macSymbols)
                      .problem(c.keyCode, modifiers, c.slot, settings),
                  c.mac)
            << c.name;
        EXPECT_EQ(ClipShortcutCheck(ClipKeyVocabulary::linuxNames)
                      .problem(c.keyCode, modifiers, c.slot, settings),
                  c.linux)
            << c.name;
    }
}

// The slot being edited is never compared with itself, and absent shortcuts never clash.
TEST(ClipShortcutCheckTests, TheSlotBeingEditedAndAbsentShortcutsAreSkipped) {
    const ClipShortcutCheck check(ClipKeyVocabulary::macSymbols);
    const ClipShortcut pause{35, Modifiers{9}};
    ClipSettings settings;
    settings.window.pauseShortcut = pause;
    const std::pair<ClipShortcut, Slot> ownSlots[] = {
        {*settings.panel.fallback, Slot::panel},
        {*settings.libraryShortcut, Slot::mainWindow},
        {pause, Slot::pause},
    };
    for (const auto& [shortcut, slot] : ownSlots) {
        EXPECT_EQ(check.problem(shortcut.keyCode, shortcut.modifiers, slot, settings), std::nullopt)
            << enumName(slot);
    }

    settings.panel.fallback.reset();
    settings.libraryShortcut.reset();
    settings.window.pauseShortcut.reset();
    for (const auto slot : allCases<Slot>()) {
        EXPECT_EQ(check.problem(9, Modifiers{9}, slot, settings), std::nullopt) << enumName(slot);
        EXPECT_EQ(check.problem(9, Modifiers{13}, slot, settings), std::nullopt) << enumName(slot);
    }
}

TEST(ClipShortcutCheckTests, WarningsInBothVocabularies) {
    struct Case {
        std::uint32_t keyCode;
        int modifiers;
        std::optional<std::string> mac;
        std::optional<std::string> linux;
    };
    const Case cases[] = {
        {9, 3, "Many apps use ⇧⌘V for Paste and Match Style.",
         "Many apps use Ctrl+Shift+V for Paste and Match Style."},
        {9, 7, "Many apps use ⌥⇧⌘V for Paste and Match Style.",
         "Many apps use Ctrl+Alt+Shift+V for Paste and Match Style."},
        {9, 1, std::nullopt, std::nullopt},
        {9, 11, std::nullopt, std::nullopt},
        {9, 6, std::nullopt, std::nullopt},
        {8, 3, std::nullopt, std::nullopt},
    };
    for (const auto& c : cases) {
        const Modifiers modifiers{c.modifiers};
        EXPECT_EQ(ClipShortcutCheck(ClipKeyVocabulary::macSymbols).warning(c.keyCode, modifiers),
                  c.mac);
        EXPECT_EQ(ClipShortcutCheck(ClipKeyVocabulary::linuxNames).warning(c.keyCode, modifiers),
                  c.linux);
    }
    // Accepted despite the warning.
    EXPECT_EQ(ClipShortcutCheck(ClipKeyVocabulary::macSymbols)
                  .problem(9, Modifiers{3}, Slot::panel, ClipSettings::defaults()),
              std::nullopt);
}

}  // namespace
}  // namespace harbex
