#include "HarbexClip/App/ClipWelcome.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPushButton>

#include "tests/Support/OffscreenApplication.hpp"

namespace harbex {
namespace {

constexpr ClipShortcut kPauseShortcut{
    35, ClipShortcut::Modifiers::command | ClipShortcut::Modifiers::option};  // P

TEST(ClipWelcomeTests, OpeningSaysTheShortcutAndTapInTheSettingsKeys) {
    struct Case {
        const char* name;
        ClipPanelTrigger trigger;
        std::optional<ClipShortcut> fallback;
        std::optional<ClipShortcut> library;
        ClipKeyVocabulary vocabulary;
        std::string expected;
    };
    const Case cases[] = {
        {"defaults on Linux", ClipPanelTrigger::doubleCommand, kDefaultPanelShortcut,
         kDefaultLibraryShortcut, ClipKeyVocabulary::linuxNames,
         "Press Ctrl+Super+V, or tap Ctrl twice, to open the panel from any app. "
         "Ctrl+Alt+Super+V opens the library with your whole history."},
        {"defaults in symbols", ClipPanelTrigger::doubleCommand, kDefaultPanelShortcut,
         kDefaultLibraryShortcut, ClipKeyVocabulary::macSymbols,
         "Press ⌃⌘V, or tap ⌘ twice, to open the panel from any app. "
         "⌃⌥⌘V opens the library with your whole history."},
        {"shortcut only", ClipPanelTrigger::off, kDefaultPanelShortcut, std::nullopt,
         ClipKeyVocabulary::linuxNames, "Press Ctrl+Super+V to open the panel from any app."},
        {"double tap of Alt only", ClipPanelTrigger::doubleOption, std::nullopt, std::nullopt,
         ClipKeyVocabulary::linuxNames, "Tap Alt twice to open the panel from any app."},
        {"double tap of Super only", ClipPanelTrigger::doubleControl, std::nullopt, std::nullopt,
         ClipKeyVocabulary::linuxNames, "Tap Super twice to open the panel from any app."},
        {"neither", ClipPanelTrigger::off, std::nullopt, std::nullopt,
         ClipKeyVocabulary::linuxNames,
         "Open the panel from the tray icon, or choose a shortcut for it in Settings."},
        {"neither, with a library shortcut", ClipPanelTrigger::off, std::nullopt,
         ClipShortcut{37, ClipShortcut::Modifiers::command | ClipShortcut::Modifiers::shift},
         ClipKeyVocabulary::linuxNames,
         "Open the panel from the tray icon, or choose a shortcut for it in Settings. "
         "Ctrl+Shift+L opens the library with your whole history."},
    };
    for (const Case& c : cases) {
        ClipSettings settings;
        settings.panel.trigger = c.trigger;
        settings.panel.fallback = c.fallback;
        settings.libraryShortcut = c.library;
        EXPECT_EQ(welcomeText(settings, c.vocabulary).opening, c.expected) << c.name;
    }
}

TEST(ClipWelcomeTests, PausingNamesThePauseShortcutAndPasswordManagersWhenSet) {
    struct Case {
        std::optional<ClipShortcut> pauseShortcut;
        bool skipPasswordManagers;
        std::string expected;
    };
    const std::string start =
        "To keep copies out of your history for a while, pause from the "
        "tray menu";
    const std::string managers = " Copies from password managers are never kept.";
    const Case cases[] = {
        {std::nullopt, true, start + "." + managers},
        {std::nullopt, false, start + "."},
        {kPauseShortcut, true, start + " or with Ctrl+Alt+P." + managers},
        {kPauseShortcut, false, start + " or with Ctrl+Alt+P."},
    };
    for (const Case& c : cases) {
        ClipSettings settings;
        settings.window.pauseShortcut = c.pauseShortcut;
        settings.skipPasswordManagers = c.skipPasswordManagers;
        EXPECT_EQ(welcomeText(settings, ClipKeyVocabulary::linuxNames).pausing, c.expected);
    }
}

class ClipWelcomeWindowTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { testing::offscreenApplication(); }
};

TEST_F(ClipWelcomeWindowTests, EveryWayOutFinishesOnceAndOnlySettingsAsksForSettings) {
    struct Case {
        const char* name;
        const char* button;  // nothing: the window's own close, twice
        int settingsRequests;
    };
    const Case cases[] = {
        {"Close", "welcomeClose", 0},
        {"Open Settings", "welcomeSettings", 1},
        {"window close", nullptr, 0},
    };
    const ClipWelcomeText text = welcomeText(ClipSettings{}, ClipKeyVocabulary::linuxNames);
    for (const Case& c : cases) {
        auto* welcome = new ClipWelcome(text);
        welcome->setAttribute(Qt::WA_DeleteOnClose, false);
        int finished = 0;
        int settings = 0;
        QObject::connect(welcome, &ClipWelcome::finished, [&] { ++finished; });
        QObject::connect(welcome, &ClipWelcome::settingsRequested, [&] { ++settings; });
        welcome->show();
        QStringList shown;
        for (QLabel* label : welcome->findChildren<QLabel*>()) shown << label->text();
        for (const std::string* paragraph :
             {&text.title, &text.opening, &text.choosing, &text.pausing, &text.privacy})
            EXPECT_TRUE(shown.contains(QString::fromStdString(*paragraph))) << *paragraph;
        if (c.button) {
            auto* button = welcome->findChild<QPushButton*>(c.button);
            ASSERT_NE(button, nullptr) << c.name;
            button->click();
        } else {
            welcome->close();
            welcome->show();
            welcome->close();
        }
        EXPECT_FALSE(welcome->isVisible()) << c.name;
        EXPECT_EQ(finished, 1) << c.name;
        EXPECT_EQ(settings, c.settingsRequests) << c.name;
        delete welcome;
    }
}

}  // namespace
}  // namespace harbex
