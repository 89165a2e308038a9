#include "HarbexClip/Views/ShortcutRecorder.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>

#include "HarbexClip/Views/QtKeyMapping.hpp"

#include "tests/Support/OffscreenApplication.hpp"

namespace harbex {
namespace {

using Mods = ClipShortcut::Modifiers;

TEST(QtKeyMappingTests, KeyPressesBecomeTheStoredKeyCodesAndModifiers) {
    struct Case {
        const char* name;
        int key;
        Qt::KeyboardModifiers modifiers;
        std::optional<ClipShortcut> expected;
    };
    const Case cases[] = {
        {"Ctrl+Super+V is the default panel shortcut", Qt::Key_V,
         Qt::ControlModifier | Qt::MetaModifier, ClipShortcut{9, Mods::command | Mods::control}},
        {"Ctrl+Alt+Super+V", Qt::Key_V, Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier,
         ClipShortcut{9, Mods{13}}},
        {"Shift+1 arrives as ! and is the 1 key", Qt::Key_Exclam,
         Qt::ControlModifier | Qt::ShiftModifier, ClipShortcut{18, Mods::command | Mods::shift}},
        {"Shift+Tab arrives as Backtab", Qt::Key_Backtab, Qt::AltModifier | Qt::ShiftModifier,
         ClipShortcut{48, Mods::option | Mods::shift}},
        {"keypad Enter is Return", Qt::Key_Enter, Qt::ControlModifier | Qt::KeypadModifier,
         ClipShortcut{36, Mods::command}},
        {"F5", Qt::Key_F5, Qt::AltModifier, ClipShortcut{96, Mods::option}},
        {"Space", Qt::Key_Space, Qt::MetaModifier, ClipShortcut{49, Mods::control}},
        {"Down arrow", Qt::Key_Down, Qt::ControlModifier, ClipShortcut{125, Mods::command}},
        {"semicolon", Qt::Key_Colon, Qt::ControlModifier | Qt::ShiftModifier,
         ClipShortcut{41, Mods::command | Mods::shift}},
        {"a modifier alone records nothing", Qt::Key_Control, Qt::ControlModifier, std::nullopt},
        {"keys outside the table record nothing", Qt::Key_VolumeUp, Qt::ControlModifier,
         std::nullopt},
        {"letters outside ASCII record nothing", Qt::Key_Adiaeresis, Qt::ControlModifier,
         std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(shortcutForKeyPress(c.key, c.modifiers), c.expected) << c.name;
}

class ShortcutRecorderTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { testing::offscreenApplication(); }

    static void press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&widget, &event);
    }
};

TEST_F(ShortcutRecorderTests, PressesAreCheckedAgainstTheOtherSlotsInLinuxWords) {
    ClipSettings settings;  // panel Ctrl+Super+V, library Ctrl+Alt+Super+V
    struct Case {
        const char* name;
        ClipShortcutSlot slot;
        int key;
        Qt::KeyboardModifiers modifiers;
        std::optional<ClipShortcut> chosen;  // nothing: refused, still recording
        const char* message;
    };
    const Case cases[] = {
        {"the panel's shortcut refused for pause", ClipShortcutSlot::pause, Qt::Key_V,
         Qt::ControlModifier | Qt::MetaModifier, std::nullopt,
         "Ctrl+Super+V already opens the panel."},
        {"the panel keeps its own", ClipShortcutSlot::panel, Qt::Key_V,
         Qt::ControlModifier | Qt::MetaModifier, ClipShortcut{9, Mods{9}}, ""},
        {"shift alone is not enough", ClipShortcutSlot::pause, Qt::Key_V, Qt::ShiftModifier,
         std::nullopt, "A shortcut needs Ctrl, Super or Alt."},
        {"every app's copy", ClipShortcutSlot::pause, Qt::Key_C, Qt::ControlModifier, std::nullopt,
         "Ctrl+C is every app’s own."},
        {"accepted with a warning", ClipShortcutSlot::pause, Qt::Key_V,
         Qt::ControlModifier | Qt::ShiftModifier, ClipShortcut{9, Mods{3}},
         "Many apps use Ctrl+Shift+V for Paste and Match Style."},
        {"accepted quietly", ClipShortcutSlot::mainWindow, Qt::Key_L,
         Qt::ControlModifier | Qt::AltModifier, ClipShortcut{37, Mods{5}}, ""},
    };
    for (const Case& c : cases) {
        ShortcutRecorder recorder(c.slot, [&] { return settings; });
        std::vector<std::optional<ClipShortcut>> chosen;
        QObject::connect(&recorder, &ShortcutRecorder::shortcutChosen,
                         [&](std::optional<ClipShortcut> s) { chosen.push_back(s); });
        recorder.startRecording();
        press(recorder, c.key, c.modifiers);
        EXPECT_EQ(recorder.message().toStdString(), c.message) << c.name;
        if (c.chosen) {
            EXPECT_EQ(chosen, std::vector<std::optional<ClipShortcut>>{c.chosen}) << c.name;
            EXPECT_FALSE(recorder.isRecording()) << c.name;
            EXPECT_EQ(recorder.displayText().toStdString(),
                      displayForm(*c.chosen, ClipKeyVocabulary::linuxNames))
                << c.name;
        } else {
            EXPECT_TRUE(chosen.empty()) << c.name;
            EXPECT_TRUE(recorder.isRecording()) << c.name;
        }
    }
}

TEST_F(ShortcutRecorderTests, EscapeCancelsBackspaceClearsAndModifiersAloneWait) {
    ClipSettings settings;
    ShortcutRecorder recorder(ClipShortcutSlot::pause, [&] { return settings; });
    recorder.setShortcut(ClipShortcut{37, Mods{5}});
    std::vector<std::optional<ClipShortcut>> chosen;
    QObject::connect(&recorder, &ShortcutRecorder::shortcutChosen,
                     [&](std::optional<ClipShortcut> s) { chosen.push_back(s); });

    recorder.startRecording();
    press(recorder, Qt::Key_Control, Qt::ControlModifier);
    EXPECT_TRUE(recorder.isRecording());
    press(recorder, Qt::Key_Escape, Qt::NoModifier);
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_EQ(recorder.shortcut(), (ClipShortcut{37, Mods{5}}));
    EXPECT_TRUE(chosen.empty());

    recorder.startRecording();
    press(recorder, Qt::Key_Backspace, Qt::NoModifier);
    EXPECT_EQ(recorder.shortcut(), std::nullopt);
    EXPECT_EQ(chosen, std::vector<std::optional<ClipShortcut>>{std::nullopt});
    EXPECT_EQ(recorder.displayText().toStdString(), "Record Shortcut");
}

}  // namespace
}  // namespace harbex
