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

// The About page says which clipboard the session got and, when not everything works there,
// what does.
TEST_F(SettingsWindowTests, AboutNamesTheSessionsClipboard) {
    testing::TempFolder temp;
    auto withSession = services(temp.path());
    withSession.session = {"Clipboard: Wayland data-control", "Global shortcuts are not here."};
    SettingsWindow window(std::move(withSession));
    window.showPage(ClipSettingsPage::about);
    auto* clipboard = window.findChild<QLabel*>("aboutClipboard");
    auto* note = window.findChild<QLabel*>("aboutSessionNote");
    ASSERT_TRUE(clipboard && note);
    EXPECT_EQ(clipboard->text(), "Clipboard: Wayland data-control");
    EXPECT_EQ(note->text(), "Global shortcuts are not here.");

    SettingsWindow plain(services(temp.path()));
    plain.showPage(ClipSettingsPage::about);
    EXPECT_EQ(plain.findChild<QLabel*>("aboutSessionNote"), nullptr);
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
