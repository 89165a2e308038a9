#include "HarbexClip/Views/SettingsWindow.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>

#include <fstream>

#include "HarbexClipCore/Testing/MemoryDefaults.hpp"
#include "tests/Core/Store/StoreTestSupport.hpp"

#include "tests/Support/OffscreenApplication.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;

class SettingsWindowTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { testing::offscreenApplication(); }

    SettingsWindowServices services(const fs::path& folder) {
        return SettingsWindowServices{
            .settings = settings,
            .updateSettings = [this](ClipSettings changed) { settings.set(std::move(changed)); },
            .pinboards = pinboards,
            .addPinboard = {},
            .renamePinboard = {},
            .removePinboard = {},
            .clearHistory = {},
            .defaults = defaults,
            .startsAtLogin = {},
            .setStartsAtLogin = {},
            .applications = {},
            .historyFolder = folder.string(),
        };
    }

    static void writeFile(const fs::path& path, std::size_t size) {
        std::ofstream(path, std::ios::binary) << std::string(size, 'x');
    }

    Observable<ClipSettings> settings;
    Observable<std::vector<Pinboard>> pinboards;
    MemoryDefaults defaults;
};

// The About page says what does each platform job and, when not everything works, what does
// not.
TEST_F(SettingsWindowTests, AboutNamesTheSessionsPlatform) {
    testing::TempFolder temp;
    auto withSession = services(temp.path());
    withSession.session.platform = "Clipboard: Wayland data-control; Shortcuts: portal";
    withSession.session.note = "Return copies.";
    SettingsWindow window(std::move(withSession));
    window.showPage(ClipSettingsPage::about);
    auto* platform = window.findChild<QLabel*>("aboutPlatform");
    auto* note = window.findChild<QLabel*>("aboutSessionNote");
    ASSERT_TRUE(platform && note);
    EXPECT_EQ(platform->text(), "Clipboard: Wayland data-control; Shortcuts: portal");
    EXPECT_EQ(note->text(), "Return copies.");

    SettingsWindow plain(services(temp.path()));
    plain.showPage(ClipSettingsPage::about);
    EXPECT_EQ(plain.findChild<QLabel*>("aboutSessionNote"), nullptr);
}

// Under Wayland without the portal: no double-tap choice that would do nothing, and the sway
// line for the panel's own shortcut, following the setting. With the portal: its answer per slot.
TEST_F(SettingsWindowTests, WaylandSessionsShowWhatTheDesktopDoesWithTheKeys) {
    testing::TempFolder temp;
    auto withoutPortal = services(temp.path());
    withoutPortal.session.doubleTap = false;
    withoutPortal.session.compositorBindings = true;
    SettingsWindow window(std::move(withoutPortal));
    EXPECT_NE(window.findChild<QLabel*>("doubleTapNote"), nullptr);
    auto* line = window.findChild<QLabel*>("compositorBinding");
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->text(), "bindsym Ctrl+Mod4+v exec harbex-clipboard --panel");
    ClipSettings changed = settings.get();
    changed.panel.fallback =
        ClipShortcut{8, ClipShortcut::Modifiers::option | ClipShortcut::Modifiers::shift};
    settings.set(changed);
    EXPECT_EQ(line->text(), "bindsym Mod1+Shift+c exec harbex-clipboard --panel");
    EXPECT_EQ(window.findChild<QLabel*>("shortcutStatus-panel"), nullptr);

    std::string answer = "Waiting";
    auto withPortal = services(temp.path());
    withPortal.session.shortcutStatus = [&](ClipShortcutSlot slot) -> std::optional<std::string> {
        if (slot == ClipShortcutSlot::pause) return std::nullopt;
        return answer;
    };
    SettingsWindow portal(std::move(withPortal));
    EXPECT_EQ(portal.findChild<QLabel*>("doubleTapNote"), nullptr);
    EXPECT_EQ(portal.findChild<QLabel*>("compositorBinding"), nullptr);
    auto* panel = portal.findChild<QLabel*>("shortcutStatus-panel");
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->text(), "Waiting");
    answer = "Bound by the desktop to Ctrl+Super+V";
    portal.refreshShortcutStatus();
    EXPECT_EQ(panel->text(), "Bound by the desktop to Ctrl+Super+V");
    EXPECT_TRUE(portal.findChild<QLabel*>("shortcutStatus-pause")->isHidden());
}

// The breakdown is measured again each time the page is shown, so space freed or taken since
// the window opened shows.
TEST_F(SettingsWindowTests, TheStorageBreakdownIsMeasuredAgainWhenTheHistoryPageIsShown) {
    testing::TempFolder temp;
    writeFile(temp.path() / "History.sealed", 1'500'000);
    SettingsWindow window(services(temp.path()));
    auto* breakdown = window.findChild<QLabel*>("storageBreakdown");
    ASSERT_NE(breakdown, nullptr);
    EXPECT_EQ(breakdown->text(),
              "History: 1.5 MB\nImages: Zero KB in 0 files\nThumbnails: Zero KB\nIn all: 1.5 MB");

    fs::create_directory(temp.path() / "Images");
    writeFile(temp.path() / "Images" / "A.sealed", 2'000);
    writeFile(temp.path() / "History (unreadable 1700000000).sealed", 3'000);
    window.showPage(ClipSettingsPage::general);
    window.showPage(ClipSettingsPage::history);
    EXPECT_EQ(breakdown->text(),
              "History: 1.5 MB\nImages: 2 KB in 1 file\nThumbnails: Zero KB\n"
              "Unreadable histories set aside: 3 KB in 1 file\nIn all: 1.5 MB");
}

}  // namespace
}  // namespace harbex
