#include "HarbexClip/App/ClipCommand.hpp"

#include <gtest/gtest.h>

#include "HarbexClip/App/AppDelegate.hpp"

namespace harbex {
namespace {

TEST(ClipCommandTests, ArgumentsBecomeOneCommandOrAPlainRefusal) {
    struct Case {
        std::vector<std::string> arguments;
        ClipCommandLine expected;
    };
    const std::string unknown = "Harbex Clipboard doesn’t understand “--open”.";
    const std::string two =
        "Harbex Clipboard takes one of --panel, --library, --pause, "
        "--settings and --autostart at a time.";
    const Case cases[] = {
        {{}, {ClipCommand::open, false, false, std::nullopt}},
        {{"--panel"}, {ClipCommand::panel, false, false, std::nullopt}},
        {{"--library"}, {ClipCommand::library, false, false, std::nullopt}},
        {{"--pause"}, {ClipCommand::pause, false, false, std::nullopt}},
        {{"--settings"}, {ClipCommand::settings, false, false, std::nullopt}},
        {{"--autostart"}, {ClipCommand::autostart, false, false, std::nullopt}},
        {{"--panel", "--panel"}, {ClipCommand::panel, false, false, std::nullopt}},
        {{"--help"}, {ClipCommand::open, true, false, std::nullopt}},
        {{"--version", "--panel"}, {ClipCommand::panel, false, true, std::nullopt}},
        {{"--open"}, {ClipCommand::open, false, false, unknown}},
        {{"--panel", "--library"}, {ClipCommand::panel, false, false, two}},
        {{"panel"},
         {ClipCommand::open, false, false, "Harbex Clipboard doesn’t understand “panel”."}},
    };
    for (const Case& c : cases) {
        std::string joined;
        for (const auto& a : c.arguments) joined += a + " ";
        EXPECT_EQ(parseCommandLine(c.arguments), c.expected) << joined;
    }
}

TEST(ClipCommandTests, OnlyAUserStartOrARelaunchShowsTheLibraryAtLaunch) {
    const Date now = Date::fromUnix(1'800'000'000);
    struct Case {
        const char* name;
        ClipCommand command;
        std::optional<Date> relaunch;
        std::optional<bool> showAtLaunch;
        bool shows;
    };
    const Case cases[] = {
        {"login start stays silent", ClipCommand::autostart, std::nullopt, true, false},
        {"login start stays silent even after a relaunch mark", ClipCommand::autostart, now + -5,
         true, false},
        {"user start with the default unset", ClipCommand::open, std::nullopt, std::nullopt, true},
        {"user start with the default off", ClipCommand::open, std::nullopt, false, false},
        {"self-relaunch wins over the default", ClipCommand::open, now + -5, false, true},
        {"an old relaunch mark is ignored", ClipCommand::open, now + -3600, false, false},
        {"a mark from the future is ignored", ClipCommand::open, now + 30, false, false},
        {"a panel command opens its own window", ClipCommand::panel, std::nullopt, true, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(showsLibraryAtLaunch(c.command, c.relaunch, c.showAtLaunch, now), c.shows)
            << c.name;
    }
}

}  // namespace
}  // namespace harbex
