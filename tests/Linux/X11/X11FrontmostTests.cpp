#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "HarbexClip/Linux/DesktopEntries.hpp"
#include "HarbexClip/Linux/X11Activator.hpp"
#include "HarbexClip/Linux/X11Frontmost.hpp"
#include "tests/Linux/X11/X11TestSupport.hpp"
#include "tests/Linux/X11/X11TestWindow.hpp"

namespace harbex {
namespace {

using namespace testing_x11;

// Desktop files in a private XDG_DATA_HOME, so identity lookups see only what a test installs.
class DesktopFolder {
public:
    DesktopFolder() {
        for (const char* name : kVariables) {
            const char* value = std::getenv(name);
            saved_.emplace_back(name, value ? std::optional<std::string>(value) : std::nullopt);
        }
        root_ = std::filesystem::temp_directory_path() /
                ("harbex-desktop-" + std::to_string(::getpid()));
        std::filesystem::create_directories(root_ / "applications");
        ::setenv("XDG_DATA_HOME", root_.c_str(), 1);
        ::setenv("XDG_DATA_DIRS", (root_ / "none").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", root_.c_str(), 1);
        ::setenv("XDG_CONFIG_DIRS", (root_ / "none").c_str(), 1);
    }
    ~DesktopFolder() {
        std::filesystem::remove_all(root_);
        for (const auto& [name, value] : saved_) {
            if (value)
                ::setenv(name, value->c_str(), 1);
            else
                ::unsetenv(name);
        }
    }
    void add(const std::string& id, const std::string& text) {
        std::ofstream(root_ / "applications" / (id + ".desktop")) << text;
    }
    void setDefault(const std::string& mime, const std::string& id) {
        std::ofstream(root_ / "mimeapps.list") << "[Default Applications]\n"
                                               << mime << "=" << id << ".desktop;\n";
    }

private:
    static constexpr const char* kVariables[]{"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME",
                                              "XDG_CONFIG_DIRS", "LANG"};
    std::filesystem::path root_;
    std::vector<std::pair<const char*, std::optional<std::string>>> saved_;
};

TEST(DesktopEntriesTests, WindowsAreMatchedToDesktopFilesAsTheShellDoes) {
    DesktopFolder folder;
    folder.add("org.example.Editor",
               "[Desktop Entry]\nType=Application\nName=Editor\nName[de]=Bearbeiter\n"
               "StartupWMClass=ExampleEdit\n");
    folder.add("firefox", "[Desktop Entry]\nType=Application\nName=Firefox\n");
    folder.add("org.gnome.Gtk", "[Desktop Entry]\nType=Application\nName=Gtk App\n");
    folder.add("hidden", "[Desktop Entry]\nType=Application\nName=Gone\nHidden=true\n");
    ::setenv("LANG", "de_AT.UTF-8", 1);
    struct Case {
        std::string instance, windowClass, gtkID;
        std::optional<std::string> id, name;
    };
    const std::vector<Case> cases{
        {"exampleedit", "ExampleEdit", "", "org.example.Editor", "Bearbeiter"},
        {"Navigator", "firefox", "", "firefox", "Firefox"},
        {"FIREFOX", "Whatever", "", "firefox", "Firefox"},
        {"gtk-app", "Gtk-app", "org.gnome.Gtk", "org.gnome.Gtk", "Gtk App"},
        {"hidden", "Hidden", "", std::nullopt, std::nullopt},
        {"unknown", "Unknown", "", std::nullopt, std::nullopt},
    };
    DesktopEntries entries;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.instance);
        const auto entry = entries.match(c.instance, c.windowClass, c.gtkID);
        EXPECT_EQ(entry ? std::optional(entry->id) : std::nullopt, c.id);
        EXPECT_EQ(entry ? std::optional(entry->name) : std::nullopt, c.name);
    }
    folder.setDefault("inode/directory", "org.gnome.Nautilus");
    EXPECT_EQ(DesktopEntries::defaultHandler("inode/directory"), "org.gnome.Nautilus");
    EXPECT_EQ(DesktopEntries::defaultHandler("text/plain"), std::nullopt);
}

class X11FrontmostTests : public testing::Test {
protected:
    void SetUp() override {
        HARBEX_REQUIRE_X_SERVER();
        // After the server: openbox must not see the private folders.
        folder_.emplace();
        connection_ = connect();
        ASSERT_TRUE(connection_);
        frontmost_ = std::make_unique<X11Frontmost>(*connection_);
    }
    bool frontPidBecomes(std::int32_t pid) {
        return eventually([&] {
            const auto front = frontmost_->frontApp();
            return front && front->pid == pid;
        });
    }
    // Waits until the window manager manages `window`; it focuses new windows as it maps them,
    // so a test that activates one window must first let every window it made be managed.
    void waitUntilManaged(TestWindow& window) {
        ASSERT_TRUE(eventually([&] {
            const auto clients = connection_->property32(
                connection_->root(), connection_->atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW);
            return std::ranges::find(clients, window.id()) != clients.end();
        })) << "the window manager never managed the window";
    }
    // Asks the window manager to activate `window` once it manages it.
    void activate(TestWindow& window) {
        waitUntilManaged(window);
        X11Activator::requestActivation(*connection_, window.id());
        window.connection().dispatch();
    }

    std::optional<DesktopFolder> folder_;
    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11Frontmost> frontmost_;
};

TEST_F(X11FrontmostTests, TheFrontApplicationIsNamedByItsDesktopFile) {
    folder_->add("org.example.Notes",
                 "[Desktop Entry]\nType=Application\nName=Notes\n"
                 "StartupWMClass=ExampleNotes\n");
    TestWindow notes(sharedServer().display(), "examplenotes", "ExampleNotes", 4242);
    TestWindow plain(sharedServer().display(), "plaintool", "PlainTool", 4343);
    waitUntilManaged(notes);
    waitUntilManaged(plain);
    const ClipTargetApp named{4242, "org.example.Notes", "Notes"};
    activate(notes);
    EXPECT_TRUE(eventually([&] { return frontmost_->frontApp() == named; }))
        << "the desktop file names the application";
    const ClipTargetApp byClass{4343, "PlainTool", "PlainTool"};
    activate(plain);
    EXPECT_TRUE(eventually([&] { return frontmost_->frontApp() == byClass; }))
        << "without a desktop file the class names the application";
    EXPECT_FALSE(frontmost_->isActive());
}

TEST_F(X11FrontmostTests, OurOwnWindowIsSeenBroughtForwardAndSkippedAsFallback) {
    const auto own = static_cast<std::uint32_t>(::getpid());
    TestWindow other(sharedServer().display(), "othertool", "OtherTool", 5151);
    TestWindow ours(sharedServer().display(), "harbex", "Harbex", own);
    // Both windows managed (the window manager focuses new windows) before the real start.
    activate(ours);
    ASSERT_TRUE(frontPidBecomes(std::int32_t(own)));
    activate(other);
    ASSERT_TRUE(frontPidBecomes(5151));
    EXPECT_TRUE(eventually([&] { return frontmost_->hasVisibleWindow(); }));
    EXPECT_FALSE(frontmost_->isActive());

    frontmost_->bringForward();
    EXPECT_TRUE(eventually([&] { return frontmost_->isActive(); }));
    // Our window is on top now; the fallback is the topmost window of another process.
    const auto fallback = frontmost_->fallbackApp();
    ASSERT_TRUE(fallback.has_value());
    EXPECT_EQ(fallback->pid, 5151);

    X11Activator activator(*connection_);
    EXPECT_TRUE(activator.activate(ClipTargetApp{5151, "OtherTool", "OtherTool"}));
    EXPECT_TRUE(frontPidBecomes(5151));
    EXPECT_FALSE(activator.activate(ClipTargetApp{999999, std::nullopt, std::nullopt}))
        << "no window of that process";

    ours.unmap();
    EXPECT_TRUE(eventually([&] { return !frontmost_->hasVisibleWindow(); }));
}

TEST_F(X11FrontmostTests, IsRunningFollowsTheProcess) {
    Process finished({"true"}, sharedServer().display());
    const pid_t pid = finished.pid();
    finished.wait();
    struct Case {
        std::int32_t pid;
        bool running;
    };
    for (const Case& c : {Case{frontmost_->ownPid(), true}, Case{pid, false}, Case{0, false}}) {
        EXPECT_EQ(frontmost_->isRunning(ClipTargetApp{c.pid, std::nullopt, std::nullopt}),
                  c.running)
            << c.pid;
    }
}

}  // namespace
}  // namespace harbex
