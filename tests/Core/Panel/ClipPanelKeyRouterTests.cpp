#include "HarbexClipCore/Panel/ClipPanelKeyRouter.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace harbex {

void PrintTo(const ClipPanelKeyRoute& route, std::ostream* out) {
    *out << enumName(route.kind);
    if (route.key) {
        *out << "(" << enumName(route.key->kind);
        if (route.key->kind == ClipPanelKey::Kind::commandNumber) *out << " " << route.key->number;
        *out << ")";
    }
    if (route.command) *out << "(" << enumName(*route.command) << ")";
}

namespace {

using K = ClipPanelKey::Kind;
using N = ClipKeyPress::Name;
using NK = ClipKeyPress::Name::Kind;
using Route = ClipPanelKeyRoute;
using Context = ClipPanelKeyRouter::Context;

// "⌘⇧" + a key: the modifiers written as the symbols people read.
ClipKeyPress press(std::string_view modifiers, N name) {
    ClipKeyPress result;
    result.name = std::move(name);
    result.command = modifiers.find("⌘") != std::string_view::npos;
    result.shift = modifiers.find("⇧") != std::string_view::npos;
    result.option = modifiers.find("⌥") != std::string_view::npos;
    result.control = modifiers.find("⌃") != std::string_view::npos;
    return result;
}
N ch(std::string text) { return N::character(std::move(text)); }

const Context kEmpty{};
const Context kTyped{.fieldEmpty = false};
const Context kComposing{.fieldEmpty = false, .composing = true};
const Context kQuickLook{.quickLookOpen = true};
const Context kActions{.mode = ClipPanelMode::actions};

TEST(ClipPanelKeyRouterTests, RoutesEachPressInItsContext) {
    struct RouteCase {
        std::string name;
        ClipKeyPress press;
        Context context;
        Route expected;
    };
    const std::vector<RouteCase> cases{
        // Quick Look and input methods come first.
        {"quickLookSpaceCloses", press("", NK::space), kQuickLook, Route::closeQuickLook()},
        {"quickLookEscapeCloses", press("", NK::escape), kQuickLook, Route::closeQuickLook()},
        {"quickLookShiftSpaceCloses", press("⇧", NK::space), kQuickLook, Route::closeQuickLook()},
        {"quickLookCommandEscapeIsAPanelKey", press("⌘", NK::escape), kQuickLook,
         Route::panel(K::escape)},
        {"quickLookDownStillMoves", press("", NK::down), kQuickLook, Route::panel(K::down)},
        {"quickLookCommandY", press("⌘", ch("y")), kQuickLook, Route::panel(K::commandY)},
        {"quickLookCommandWCloses", press("⌘", ch("w")), kQuickLook, Route::close()},
        {"composingReturnStaysInTheField", press("", NK::returnKey), kComposing, Route::field()},
        {"composingEscapeStaysInTheField", press("", NK::escape), kComposing, Route::field()},
        {"composingArrowStaysInTheField", press("", NK::down), kComposing, Route::field()},
        {"composingCommandKeyStillWorks", press("⌘", ch("1")), kComposing,
         Route::panel(ClipPanelKey::commandNumber(1))},
        // Keys that close, open settings or never leave the panel.
        {"commandQCloses", press("⌘", ch("q")), kEmpty, Route::close()},
        {"commandWCloses", press("⌘", ch("w")), kEmpty, Route::close()},
        {"commandHCloses", press("⌘", ch("h")), kEmpty, Route::close()},
        {"commandMCloses", press("⌘", ch("m")), kEmpty, Route::close()},
        {"commandOptionWIsSwallowed", press("⌘⌥", ch("w")), kEmpty, Route::swallow()},
        {"commandCommaOpensSettings", press("⌘", ch(",")), kTyped, Route::settings()},
        {"commandShiftQIsSwallowed", press("⌘⇧", ch("Q")), kEmpty, Route::swallow()},
        {"commandControlVIsSwallowed", press("⌃⌘", ch("v")), kEmpty, Route::swallow()},
        {"unknownCommandChordIsSwallowed", press("⌘", ch("j")), kEmpty, Route::swallow()},
        {"commandWithNonLetterIsSwallowed", press("⌘", ch("é")), kEmpty, Route::swallow()},
        // Panel commands.
        {"commandNineSelectsNinth", press("⌘", ch("9")), kTyped,
         Route::panel(ClipPanelKey::commandNumber(9))},
        {"commandZeroIsSwallowed", press("⌘", ch("0")), kEmpty, Route::swallow()},
        {"commandK", press("⌘", ch("k")), kEmpty, Route::panel(K::commandK)},
        {"commandKInActionsMode", press("⌘", ch("k")), kActions, Route::panel(K::commandK)},
        {"commandP", press("⌘", ch("p")), kEmpty, Route::panel(K::commandP)},
        {"commandO", press("⌘", ch("o")), kEmpty, Route::panel(K::commandO)},
        {"commandY", press("⌘", ch("y")), kEmpty, Route::panel(K::commandY)},
        {"commandS", press("⌘", ch("s")), kEmpty, Route::panel(K::commandS)},
        {"commandCWithEmptyFieldCopiesTheCopy", press("⌘", ch("c")), kEmpty,
         Route::panel(K::commandC)},
        {"commandCWithTextCopiesTheSelection", press("⌘", ch("c")), kTyped,
         Route::edit(ClipEditCommand::copy)},
        // Field editing.
        {"commandX", press("⌘", ch("x")), kTyped, Route::edit(ClipEditCommand::cut)},
        {"commandV", press("⌘", ch("v")), kEmpty, Route::edit(ClipEditCommand::paste)},
        {"commandA", press("⌘", ch("a")), kTyped, Route::edit(ClipEditCommand::selectAll)},
        {"commandZ", press("⌘", ch("z")), kTyped, Route::edit(ClipEditCommand::undo)},
        {"commandShiftZ", press("⌘⇧", ch("Z")), kTyped, Route::edit(ClipEditCommand::redo)},
        {"commandShiftLowerZ", press("⌘⇧", ch("z")), kTyped, Route::edit(ClipEditCommand::redo)},
        {"return", press("", NK::returnKey), kTyped, Route::panel(K::returnKey)},
        {"enter", press("", NK::enter), kEmpty, Route::panel(K::returnKey)},
        {"shiftReturn", press("⇧", NK::returnKey), kEmpty, Route::panel(K::shiftReturn)},
        {"shiftEnter", press("⇧", NK::enter), kEmpty, Route::panel(K::shiftReturn)},
        {"commandReturn", press("⌘", NK::returnKey), kEmpty, Route::panel(K::commandReturn)},
        {"commandWinsOverShift", press("⌘⇧", NK::enter), kEmpty, Route::panel(K::commandReturn)},
        {"up", press("", NK::up), kEmpty, Route::panel(K::up)},
        {"down", press("", NK::down), kTyped, Route::panel(K::down)},
        {"shiftUp", press("⇧", NK::up), kEmpty, Route::panel(K::shiftUp)},
        {"shiftDown", press("⇧", NK::down), kEmpty, Route::panel(K::shiftDown)},
        {"escape", press("", NK::escape), kTyped, Route::panel(K::escape)},
        {"tab", press("", NK::tab), kEmpty, Route::panel(K::tab)},
        {"shiftTab", press("⇧", NK::tab), kTyped, Route::panel(K::shiftTab)},
        {"spaceOnEmptyFieldIsQuickLook", press("", NK::space), kEmpty, Route::panel(K::space)},
        {"spaceInAQueryIsTyped", press("", NK::space), kTyped, Route::field()},
        {"commandSpaceIsSwallowed", press("⌘", NK::space), kEmpty, Route::swallow()},
        {"commandDelete", press("⌘", NK::deleteKey), kTyped, Route::panel(K::commandDelete)},
        {"deleteOnEmpty", press("", NK::deleteKey), kEmpty, Route::panel(K::deleteOnEmpty)},
        {"deleteInAQueryEdits", press("", NK::deleteKey), kTyped, Route::field()},
        {"optionDeleteDeletesAWord", press("⌥", NK::deleteKey), kTyped, Route::field()},
        {"controlDeleteOnEmptyIsTheField", press("⌃", NK::deleteKey), kEmpty, Route::field()},
        {"left", press("", NK::left), kTyped, Route::field()},
        {"commandRight", press("⌘", NK::right), kTyped, Route::field()},
        {"forwardDelete", press("", NK::forwardDelete), kEmpty, Route::field()},
        {"letter", press("", ch("a")), kEmpty, Route::field()},
        {"shiftedLetter", press("⇧", ch("A")), kEmpty, Route::field()},
        {"optionChordTypesASpecialCharacter", press("⌥", ch("e")), kEmpty, Route::field()},
        {"controlChordEditsTheField", press("⌃", ch("a")), kTyped, Route::field()},
        {"digitWithoutCommandIsTyped", press("", ch("1")), kEmpty, Route::field()},
    };
    for (const RouteCase& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ClipPanelKeyRouter::route(c.press, c.context), c.expected);
    }
}

}  // namespace
}  // namespace harbex
