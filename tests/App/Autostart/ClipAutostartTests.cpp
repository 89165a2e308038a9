#include "HarbexClip/App/ClipAutostart.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace harbex {
namespace {

namespace fs = std::filesystem;

class ClipAutostartTests : public ::testing::Test {
protected:
    void SetUp() override {
        folder = fs::temp_directory_path() /
                 ("harbex-autostart-" + std::to_string(::getpid()) + "-" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(folder);
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string contents(const fs::path& path) { return stringOf(readFile(path).value()); }

    fs::path folder;
};

TEST_F(ClipAutostartTests, SwitchingOnAndOffWritesAnEntryDesktopsHonour) {
    ClipAutostart autostart(folder / "autostart" / "app.harbexapps.clip.desktop");
    EXPECT_FALSE(autostart.isEnabled());

    ASSERT_TRUE(autostart.setEnabled(true, "/usr/bin/harbex-clipboard"));
    EXPECT_TRUE(autostart.isEnabled());
    const std::string on = contents(autostart.path());
    EXPECT_TRUE(on.starts_with("[Desktop Entry]\n"));
    EXPECT_NE(on.find("\nExec=/usr/bin/harbex-clipboard --autostart\n"), std::string::npos);
    EXPECT_NE(on.find("\nHidden=false\n"), std::string::npos);
    EXPECT_NE(on.find("\nX-GNOME-Autostart-enabled=true\n"), std::string::npos);
    struct stat info {};
    ASSERT_EQ(::stat(autostart.path().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644u);

    ASSERT_TRUE(autostart.setEnabled(false, "/usr/bin/harbex-clipboard"));
    EXPECT_FALSE(autostart.isEnabled());
    const std::string off = contents(autostart.path());
    EXPECT_NE(off.find("\nHidden=true\n"), std::string::npos);
    EXPECT_NE(off.find("\nX-GNOME-Autostart-enabled=false\n"), std::string::npos);
    // Only the entry is left behind: no temporary files beside it.
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "autostart"), {}), 1);
}

TEST_F(ClipAutostartTests, EntriesEditedByHandOrByTheDesktopAreReadAsTheyMean) {
    struct Case {
        const char* name;
        const char* text;
        bool enabled;
    };
    const Case cases[] = {
        {"plain", "[Desktop Entry]\nExec=x\n", true},
        {"hidden", "[Desktop Entry]\nHidden=true\n", false},
        {"gnome switch off with spaces", "[Desktop Entry]\nX-GNOME-Autostart-enabled = false\n",
         false},
        {"crlf line ends", "[Desktop Entry]\r\nHidden=true\r\n", false},
        {"keys in another group do not count",
         "[Desktop Entry]\nExec=x\n[Desktop Action quit]\nHidden=true\n", true},
        {"explicitly on", "[Desktop Entry]\nHidden=false\nX-GNOME-Autostart-enabled=true\n", true},
    };
    fs::create_directories(folder);
    for (const Case& c : cases) {
        const fs::path path = folder / "entry.desktop";
        ASSERT_TRUE(writeFileAtomically(path, std::string_view(c.text)));
        EXPECT_EQ(ClipAutostart(path).isEnabled(), c.enabled) << c.name;
    }
}

TEST(ClipAutostartExecTests, ProgramPathsAreQuotedForTheExecKey) {
    struct Case {
        std::string_view argument;
        std::string_view quoted;
    };
    const Case cases[] = {
        {"/usr/bin/harbex-clipboard", "/usr/bin/harbex-clipboard"},
        {"/opt/Harbex Clipboard/harbex-clipboard", "\"/opt/Harbex Clipboard/harbex-clipboard\""},
        {"/home/a$b/x", "\"/home/a\\\\$b/x\""},
        {"/tmp/say \"hi\"", "\"/tmp/say \\\\\"hi\\\\\"\""},
        {"/tmp/back\\slash", "\"/tmp/back\\\\\\\\slash\""},
        {"", "\"\""},
    };
    for (const Case& c : cases) EXPECT_EQ(quotedExecArgument(c.argument), c.quoted) << c.argument;
}

}  // namespace
}  // namespace harbex
