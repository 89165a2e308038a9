#include <gtest/gtest.h>

#include "HarbexClip/Linux/X11ModifierMonitor.hpp"
#include "HarbexClipCore/Panel/ClipModifierTap.hpp"
#include "tests/Linux/X11/X11TestSupport.hpp"

namespace harbex {
namespace {

using namespace testing_x11;
using Held = ClipModifierTap::Held;

// xdotool types through XTest, the very device the monitor ignores in the application (our own
// paste keystroke comes from there). The monitor therefore takes a setting that lets these tests
// accept XTest input; one case keeps the default and proves that XTest taps are not seen.
class X11ModifierMonitorTests : public testing::Test {
protected:
    void SetUp() override {
        HARBEX_REQUIRE_X_SERVER();
        connection_ = connect();
        ASSERT_TRUE(connection_);
    }
    // Installs a monitor driving a double-tap recogniser for Ctrl, types `keys` with xdotool and
    // returns how often the tap fired.
    int tapsWhileTyping(XTestInput xtest, const std::vector<std::string>& keys,
                        int delayMilliseconds) {
        X11ModifierMonitor monitor(*connection_, xtest);
        EXPECT_TRUE(monitor.isAvailable());
        ClipModifierTap tap(Held::command());
        int fired = 0;
        monitor.install(
            [&](Held held, double at) {
                changes_.push_back(held);
                if (tap.handle(held, at)) ++fired;
            },
            [&] { tap.reset(); });
        connection_->flush();
        std::vector<std::string> command{"xdotool", "key", "--delay",
                                         std::to_string(delayMilliseconds)};
        command.insert(command.end(), keys.begin(), keys.end());
        run(command, sharedServer().display());
        eventually([] { return false; }, 300ms, [&] { connection_->dispatch(); });
        monitor.remove();
        return fired;
    }

    std::unique_ptr<X11Connection> connection_;
    std::vector<Held> changes_;
};

TEST_F(X11ModifierMonitorTests, ADoubleTapOfCtrlFiresOnceAndTypingBetweenCancelsIt) {
    struct Case {
        const char* name;
        std::vector<std::string> keys;
        int delay;
        int expected;
    };
    const std::vector<Case> cases{
        {"double tap", {"Control_L", "Control_L"}, 80, 1},
        {"right and left", {"Control_R", "Control_L"}, 80, 1},
        {"typing between", {"Control_L", "a", "Control_L"}, 60, 0},
        {"taps too far apart", {"Control_L", "Control_L"}, 700, 0},
        {"another modifier", {"Alt_L", "Alt_L"}, 80, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        changes_.clear();
        EXPECT_EQ(tapsWhileTyping(XTestInput::accepted, c.keys, c.delay), c.expected);
        EXPECT_FALSE(changes_.empty()) << "modifier changes were seen";
    }
}

TEST_F(X11ModifierMonitorTests, HeldModifiersAreReportedInShortcutTerms) {
    tapsWhileTyping(XTestInput::accepted, {"ctrl+alt+shift+super+x"}, 50);
    ASSERT_FALSE(changes_.empty());
    const auto all = std::ranges::max(changes_, {}, &Held::rawValue);
    EXPECT_EQ(all, Held::command() | Held::option() | Held::shift() | Held::control());
    EXPECT_TRUE(changes_.back().isEmpty()) << "everything is released at the end";
}

TEST_F(X11ModifierMonitorTests, KeystrokesFromXTestAreIgnoredByDefault) {
    EXPECT_EQ(tapsWhileTyping(XTestInput::ignored, {"Control_L", "Control_L"}, 80), 0);
    EXPECT_TRUE(changes_.empty());
}

}  // namespace
}  // namespace harbex
