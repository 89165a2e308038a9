#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "HarbexClip/Wayland/VirtualKeyboardPasteTyper.hpp"
#include "HarbexClip/Wayland/WaylandActivator.hpp"
#include "HarbexClip/Wayland/WaylandFrontmost.hpp"
#include "tests/Linux/Wayland/WaylandTestServer.hpp"

namespace harbex {
namespace {

using namespace testing_wayland;

constexpr const char* kOwnAppID = "app.harbexapps.clip";

// The front application, hand-back and paste keystroke against real windows: foot terminals and
// the Qt receiver, under the shared headless sway.
class WaylandDesktopTests : public testing::Test {
protected:
    void SetUp() override {
        if (!sharedSway().ready()) GTEST_SKIP() << "headless sway could not be started";
        auto opened = WaylandDesktop::open(sharedSway().display().c_str());
        ASSERT_TRUE(opened.has_value());
        desktop_ = std::move(*opened);
        folder_ = std::filesystem::temp_directory_path() /
                  ("harbex-desktop-" + std::to_string(::getpid()));
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override {
        windows_.clear();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    // Starts a window and waits until it is the active one; returns its toplevel.
    WaylandToplevel open(std::vector<std::string> command, const std::string& appID) {
        auto environment = sharedSway().environment();
        environment.emplace_back("QT_QPA_PLATFORM", "wayland");
        windows_.emplace_back(command, environment);
        std::optional<WaylandToplevel> active;
        EXPECT_TRUE(eventually(
            [&] {
                active = desktop_->activeToplevel();
                return active && active->appID == appID;
            },
            10000ms))
            << command.front() << " never became the active window";
        return active.value_or(WaylandToplevel{});
    }
    // A foot terminal running `shell`.
    WaylandToplevel foot(const std::string& appID, const std::string& shell = "sleep 600") {
        return open({"foot", "--app-id=" + appID, "sh", "-c", shell}, appID);
    }
    std::string read(const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    // The app_id of the window sway gives the keyboard to, from its own tree.
    std::string swayFocus() {
        auto result = testing_x11::run({"sh", "-c",
                                        "swaymsg -s \"$(ls \"$XDG_RUNTIME_DIR\"/sway-ipc.*.sock "
                                        "| head -n1)\" -t get_tree"},
                                       sharedSway().environment());
        // The focused node is the one whose "focused" is true; its app_id follows in the record.
        const auto focused = result.output.find("\"focused\": true");
        if (focused == std::string::npos) return {};
        const auto appID = result.output.find("\"app_id\": \"", focused);
        if (appID == std::string::npos) return {};
        const auto start = appID + 11;
        return result.output.substr(start, result.output.find('"', start) - start);
    }

    std::unique_ptr<WaylandDesktop> desktop_;
    std::filesystem::path folder_;
    std::vector<Process> windows_;
};

TEST_F(WaylandDesktopTests, OffersWhatHeadlessSwayOffers) {
    EXPECT_TRUE(desktop_->hasForeignToplevels());
    EXPECT_TRUE(desktop_->hasVirtualKeyboard());
    EXPECT_TRUE(desktop_->hasLayerShell());
    EXPECT_TRUE(desktop_->hasDataControl());
}

// The active window's app_id becomes the identity: a desktop-file id gives the file's name, an
// unknown one stands for itself. Targets of two windows differ; a closed window's target is gone.
TEST_F(WaylandDesktopTests, FrontAppIsTheActiveWindowsApplication) {
    WaylandFrontmost frontmost(*desktop_, kOwnAppID);
    foot("foot");
    auto first = frontmost.frontApp();
    ASSERT_TRUE(first.has_value());
    EXPECT_EQ(first->bundleID, "foot");
    EXPECT_EQ(first->name, "Foot");
    EXPECT_LT(first->pid, 0);

    foot("org.example.Unlisted");
    auto second = frontmost.frontApp();
    ASSERT_TRUE(second.has_value());
    EXPECT_EQ(second->bundleID, "org.example.Unlisted");
    EXPECT_NE(second->pid, first->pid);
    EXPECT_TRUE(frontmost.isRunning(*first));
    EXPECT_FALSE(frontmost.isActive());
    EXPECT_EQ(frontmost.fallbackApp(), second);

    windows_.back().stop();
    EXPECT_TRUE(eventually([&] { return !frontmost.isRunning(*second); }, 5000ms));
    EXPECT_EQ(frontmost.fallbackApp(), first);
}

// Hand-back: activating a remembered target gives that very window the keyboard, as sway sees it.
TEST_F(WaylandDesktopTests, ActivatorGivesTheKeyboardBackToTheRememberedWindow) {
    WaylandFrontmost frontmost(*desktop_, kOwnAppID);
    WaylandActivator activator(*desktop_);
    foot("org.example.First");
    const auto first = frontmost.frontApp();
    ASSERT_TRUE(first.has_value());
    foot("org.example.Second");
    ASSERT_EQ(swayFocus(), "org.example.Second");

    ASSERT_TRUE(activator.activate(*first));
    EXPECT_TRUE(eventually([&] { return swayFocus() == "org.example.First"; }, 5000ms));
    EXPECT_TRUE(eventually([&] { return frontmost.frontApp() == first; }, 5000ms));

    windows_.front().stop();
    EXPECT_TRUE(eventually([&] { return !frontmost.isRunning(*first); }, 5000ms));
    EXPECT_FALSE(activator.activate(*first));
    EXPECT_FALSE(activator.activate(ClipTargetApp{int(::getpid()), std::nullopt, std::nullopt}));
}

// The keystroke arrives as a paste: Ctrl+Shift+V in a terminal (foot pastes the clipboard into
// the shell, which writes it out), Ctrl+V in an ordinary window (the receiver's field pastes;
// Ctrl+Shift+V there would paste too, but its terminal mode turns a bare Ctrl+V into "^V").
TEST_F(WaylandDesktopTests, VirtualKeyboardTypesThePasteKeystrokeTheWindowExpects) {
    const auto clipboard = "pasted through the virtual keyboard";
    Process copier({"wl-copy", "--foreground", clipboard}, sharedSway().environment());
    VirtualKeyboardPasteTyper typer(*desktop_);
    struct Case {
        const char* name;
        std::function<void(const std::filesystem::path&)> start;
        std::string expected;
    };
    std::vector<Case> cases{
        {"terminal",
         [&](const std::filesystem::path& out) {
             foot("foot", "stty -icanon -echo; cat > '" + out.string() + "'");
         },
         clipboard},
    };
    // The Qt receiver is built with the application; builds without it test the terminal only.
#ifdef HARBEX_PASTE_RECEIVER
    cases.insert(
        cases.end(),
        {
            {"ordinary window",
             [&](const std::filesystem::path& out) {
                 open({HARBEX_PASTE_RECEIVER, out.string()}, "PasteReceiver");
             },
             clipboard},
            {"window keyed like a terminal",
             [&](const std::filesystem::path& out) {
                 open({HARBEX_PASTE_RECEIVER, out.string(), "--terminal"}, "PasteReceiver");
             },
             "^V"},
        });
#endif
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const auto out = folder_ / (std::string(test.name) + ".txt");
        test.start(out);
        // A window is active a moment before it reads keys; nothing tells us when it does.
        std::this_thread::sleep_for(300ms);
        typer.typePaste();
        EXPECT_TRUE(eventually([&] { return read(out) == test.expected; }, 5000ms))
            << "received: " << read(out);
    }
}

// A compositor that goes away leaves no front app, nothing to activate and a keystroke that does
// nothing; nothing blocks or spins.
TEST(WaylandDesktopLossTests, ALostCompositorLeavesNoFrontAppAndATyperThatDoesNothing) {
    SwayServer sway;
    ASSERT_TRUE(sway.ready());
    auto desktop = WaylandDesktop::open(sway.display().c_str());
    ASSERT_TRUE(desktop.has_value());
    WaylandFrontmost frontmost(**desktop, kOwnAppID);
    VirtualKeyboardPasteTyper typer(**desktop);
    Process window({"foot", "--app-id=foot", "sleep", "600"}, sway.environment());
    ASSERT_TRUE(eventually([&] { return frontmost.frontApp().has_value(); }, 10000ms));
    const auto target = *frontmost.frontApp();

    sway.stop();
    EXPECT_TRUE(eventually([&] { return !(*desktop)->dispatch(); }, 5000ms));
    EXPECT_TRUE((*desktop)->lost());
    EXPECT_EQ(frontmost.frontApp(), std::nullopt);
    EXPECT_FALSE(frontmost.isRunning(target));
    EXPECT_FALSE(WaylandActivator(**desktop).activate(target));
    typer.typePaste();
    EXPECT_EQ((*desktop)->fd(), -1);
}

TEST(VirtualKeyboardPasteTyperTests, KnowsTerminalsByAppID) {
    const std::vector<std::pair<std::string, bool>> cases{
        {"foot", true},      {"org.kde.konsole", true},
        {"Alacritty", true}, {"org.wezfurlong.wezterm", true},
        {"firefox", false},  {"org.gnome.TextEditor", false},
        {"", false}};
    for (const auto& [appID, terminal] : cases) {
        EXPECT_EQ(VirtualKeyboardPasteTyper::isTerminal(appID), terminal) << appID;
    }
}

}  // namespace
}  // namespace harbex
