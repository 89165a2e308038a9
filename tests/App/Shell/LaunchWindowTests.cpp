#include <gtest/gtest.h>

#include "HarbexClip/App/AppDelegate.hpp"

namespace harbex {
namespace {

TEST(LaunchWindowTests, LoginStartsStaySilentAndTheFirstUserStartWelcomes) {
    const Date now = Date::fromUnix(1'800'000'000);
    struct Case {
        const char* name;
        ClipCommand command;
        std::optional<Date> relaunch;
        std::optional<bool> showAtLaunch;
        bool welcomeFinished;
        LaunchWindow expected;
    };
    const Case cases[] = {
        {"first start from the menu", ClipCommand::open, std::nullopt, std::nullopt, false,
         LaunchWindow::welcome},
        {"first start with a command", ClipCommand::panel, std::nullopt, std::nullopt, false,
         LaunchWindow::welcome},
        {"first start at login waits", ClipCommand::autostart, std::nullopt, std::nullopt, false,
         LaunchWindow::none},
        {"welcome wins over a relaunch", ClipCommand::open, now + -5, true, false,
         LaunchWindow::welcome},
        {"later start from the menu", ClipCommand::open, std::nullopt, std::nullopt, true,
         LaunchWindow::library},
        {"later start with the library switched off", ClipCommand::open, std::nullopt, false, true,
         LaunchWindow::none},
        {"later login start", ClipCommand::autostart, now + -5, true, true, LaunchWindow::none},
        {"self-relaunch", ClipCommand::open, now + -5, false, true, LaunchWindow::library},
        {"a stale relaunch mark", ClipCommand::open, now + -120, false, true, LaunchWindow::none},
        {"a relaunch mark from the future", ClipCommand::open, now + 30, false, true,
         LaunchWindow::none},
        {"a settings command opens its own window", ClipCommand::settings, std::nullopt, true, true,
         LaunchWindow::none},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(launchWindow(c.command, c.relaunch, c.showAtLaunch, c.welcomeFinished, now),
                  c.expected)
            << c.name;
    }
}

}  // namespace
}  // namespace harbex
