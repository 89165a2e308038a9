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

}  // namespace
}  // namespace harbex
