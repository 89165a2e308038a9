#include <gtest/gtest.h>

#include <algorithm>

#include "HarbexClipCore/Panel/ClipPanelActions.hpp"
#include "tests/Core/Panel/PanelTestSupport.hpp"

namespace harbex {
namespace {

using paneltest::kindItem;
using paneltest::kNow;
using Case = ClipPanelActionKind::Case;

std::vector<std::string> titles(const std::vector<ClipPanelAction>& actions) {
    std::vector<std::string> out;
    for (const auto& action : actions) out.push_back(action.title);
    return out;
}

const ClipPanelAction* find(const std::vector<ClipPanelAction>& actions, std::string_view title) {
    const auto it = std::ranges::find(actions, title, &ClipPanelAction::title);
    return it == actions.end() ? nullptr : &*it;
}

ClipPanelActions::Context context(ClipKeyVocabulary vocabulary = ClipKeyVocabulary::linuxNames) {
    ClipPanelActions::Context c;
    c.targetName = "Firefox";
    c.vocabulary = vocabulary;
    return c;
}

TEST(ClipPanelActionsTests, EachKindGetsItsSectionsInOrder) {
    struct Case {
        ClipKind kind;
        std::string text;
        std::vector<std::string> expectedHead;  // the list up to the colour or transform sections
    };
    const std::vector<Case> cases{
        {ClipKind::text,
         "hello world",
         {"Paste in Firefox", "Add to Paste Stack", "Copy", "Pin", "Delete", "Quick Look"}},
        {ClipKind::richText,
         "bold words",
         {"Paste in Firefox", "Paste as Plain Text", "Add to Paste Stack", "Copy", "Pin", "Delete",
          "Quick Look"}},
        {ClipKind::link,
         "https://example.com/a",
         {"Paste in Firefox", "Add to Paste Stack", "Copy", "Pin", "Delete", "Open Link",
          "Quick Look"}},
        {ClipKind::file,
         "notes.txt",
         {"Paste in Firefox", "Add to Paste Stack", "Copy", "Pin", "Delete", "Show in Files",
          "Quick Look"}},
        {ClipKind::image,
         "",
         {"Paste in Firefox", "Copy", "Pin", "Delete", "Quick Look", "Save Image"}},
        {ClipKind::color,
         "#5E5CE6",
         {"Paste in Firefox", "Add to Paste Stack", "Copy", "Pin", "Delete", "Quick Look",
          "Convert to HEX", "Convert to RGB", "Convert to HSL", "Convert to OKLCH"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(enumName(c.kind)));
        const auto all =
            titles(ClipPanelActions::actions(kindItem(c.kind, c.text, kNow), context()));
        ASSERT_GE(all.size(), c.expectedHead.size());
        EXPECT_EQ(std::vector(all.begin(), all.begin() + c.expectedHead.size()), c.expectedHead);
        const bool hasTransforms = std::ranges::find(all, "Title Case") != all.end();
        EXPECT_EQ(hasTransforms, c.kind == ClipKind::text || c.kind == ClipKind::richText);
        if (c.kind != ClipKind::color) {
            EXPECT_EQ(all.size() == c.expectedHead.size(), !hasTransforms);
        }
    }
}

TEST(ClipPanelActionsTests, ColourConversionsCarryGlyphsAndTheirResult) {
    const auto actions =
        ClipPanelActions::actions(kindItem(ClipKind::color, "rgb(94, 92, 230)", kNow), context());
    const std::vector<std::pair<std::string, std::pair<std::string, std::string>>> expected{
        {"Convert to HEX", {"#", "#5E5CE6"}},
        {"Convert to RGB", {"rgb", "rgb(94, 92, 230)"}},
        {"Convert to HSL", {"hsl", "hsl(241, 73%, 63%)"}},
        {"Convert to OKLCH", {"ok", "oklch(55.6% 0.203 278.1)"}},
    };
    for (const auto& [title, glyphAndExample] : expected) {
        const ClipPanelAction* action = find(actions, title);
        ASSERT_NE(action, nullptr) << title;
        EXPECT_EQ(action->section, "Colour");
        EXPECT_EQ(action->category, ClipActionCategory::transform);
        EXPECT_EQ(action->glyph, glyphAndExample.first);
        EXPECT_EQ(action->example, glyphAndExample.second);
    }
}

TEST(ClipPanelActionsTests, PinStatePinboardsAndStackChangeTheOrganiseEntries) {
    ClipItem item = kindItem(ClipKind::text, "hello", kNow);
    Pinboard work{Uuid::random(), "Work", "blue", "briefcase", {}};
    Pinboard home{Uuid::random(), "Home", "green", "", {item.id}};
    std::vector<Pinboard> boards{work, home};

    auto c = context();
    auto plain = ClipPanelActions::actions(item, c);
    EXPECT_EQ(find(plain, "Add to Work"), nullptr) << "no boards, no board entries";
    EXPECT_EQ(find(plain, "Pin")->symbol, "pin");

    c.pin = ClipPinState::pinned;
    c.stack = ClipStackState::stacked;
    c.pinboards = boards;
    const auto pinned = ClipPanelActions::actions(item, c);
    EXPECT_EQ(find(pinned, "Pin"), nullptr);
    EXPECT_EQ(find(pinned, "Unpin")->symbol, "pin.slash");
    EXPECT_NE(find(pinned, "Remove from Paste Stack"), nullptr);
    const ClipPanelAction* toWork = find(pinned, "Add to Work");
    ASSERT_NE(toWork, nullptr);
    EXPECT_EQ(toWork->kind, ClipPanelActionKind::addTo(work.id));
    EXPECT_EQ(toWork->symbol, "briefcase");
    EXPECT_EQ(find(pinned, "Add to Home"), nullptr) << "the board already holds the copy";
    EXPECT_TRUE(find(pinned, "Delete")->isDestructive);
    EXPECT_EQ(std::ranges::count_if(pinned, [](const auto& a) { return a.isDestructive; }), 1);
}

TEST(ClipPanelActionsTests, VocabularyNamesTheFileManagerAndShortcuts) {
    const ClipItem file = kindItem(ClipKind::file, "a.txt", kNow);
    const auto mac = ClipPanelActions::actions(file, context(ClipKeyVocabulary::macSymbols));
    const auto linux = ClipPanelActions::actions(file, context(ClipKeyVocabulary::linuxNames));
    EXPECT_NE(find(mac, "Show in Finder"), nullptr);
    EXPECT_NE(find(linux, "Show in Files"), nullptr);
    EXPECT_EQ(find(mac, "Pin")->shortcut, "⌘P");
    EXPECT_EQ(find(linux, "Pin")->shortcut, "Ctrl+P");
    EXPECT_EQ(find(linux, "Delete")->shortcut, "Ctrl+Backspace");
    EXPECT_EQ(find(mac, "Paste in Firefox")->shortcut, "↩");
}

TEST(ClipPanelActionsTests, TransformsCarryTitleCaseLabelsSectionsAndPreviews) {
    const auto actions =
        ClipPanelActions::actions(kindItem(ClipKind::text, "hello wide world", kNow), context());
    struct Expect {
        std::string title, section;
        std::optional<std::string> example;
    };
    const std::vector<Expect> expected{
        {"Title Case", "Change case", "Hello Wide World"},
        {"UPPERCASE", "Change case", "HELLO WIDE WORLD"},
        {"Trim Spaces", "Clean up", "hello wide world"},
        {"Base64 Encode", "Encode and format", "aGVsbG8gd2lkZSB3b3JsZA=="},
        {"Base64 Decode", "Encode and format", std::nullopt},  // not Base64: listed, no preview
        {"Minify JSON", "Encode and format", std::nullopt},
    };
    for (const auto& e : expected) {
        const ClipPanelAction* action = find(actions, e.title);
        ASSERT_NE(action, nullptr) << e.title;
        EXPECT_EQ(action->section, e.section) << e.title;
        EXPECT_EQ(action->example, e.example) << e.title;
        EXPECT_EQ(action->kind.kind, Case::transform);
    }
    EXPECT_EQ(find(actions, "Colour as HEX"), nullptr) << "colour forms belong to colours";
}

TEST(ClipPanelActionsTests, CategoryAndQueryFilterTheList) {
    auto c = context();
    std::vector<Pinboard> boards{{Uuid::random(), "Recipes", "", "", {}}};
    c.pinboards = boards;
    const auto all = ClipPanelActions::actions(kindItem(ClipKind::richText, "Some text", kNow), c);
    struct Filter {
        ClipActionCategory category;
        std::string query;
        std::vector<std::string> expected;
    };
    const std::vector<Filter> cases{
        {ClipActionCategory::paste,
         "",
         {"Paste in Firefox", "Paste as Plain Text", "Add to Paste Stack", "Copy"}},
        {ClipActionCategory::organise, "", {"Pin", "Add to Recipes", "Delete"}},
        {ClipActionCategory::share, "", {"Quick Look"}},
        {ClipActionCategory::all, "plain", {"Paste as Plain Text", "Markdown to Plain Text"}},
        {ClipActionCategory::all, "PASTE pl", {"Paste as Plain Text"}},
        {ClipActionCategory::all, "ase", {}},  // inside a word only
        {ClipActionCategory::paste, "case", {}},
        {ClipActionCategory::transform, "case", {"Title Case", "Sentence case"}},
        {ClipActionCategory::all, "réc", {"Add to Recipes"}},
    };
    for (const auto& f : cases) {
        EXPECT_EQ(titles(ClipPanelActions::filtered(all, f.category, f.query)), f.expected)
            << enumName(f.category) << " / " << f.query;
    }
    EXPECT_EQ(ClipPanelActions::filtered(all, ClipActionCategory::all, "  ").size(), all.size());
}

TEST(ClipPanelActionsTests, PreviewShowsTheFirstLineCut) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"one line", "one line"},
        {"\n  \nfirst\nsecond", "first…"},
        {"first\n\n", "first"},
        {std::string(70, 'x'), std::string(60, 'x') + "…"},
        {std::string(59, 'x') + "é€", std::string(59, 'x') + "é…"},
    };
    for (const auto& [input, expected] : cases) {
        EXPECT_EQ(ClipPanelActions::preview(input), expected);
    }
}

TEST(ClipPanelActionsTests, IdentifiersAreStableAndDistinct) {
    auto c = context();
    std::vector<Pinboard> boards{{Uuid::random(), "A", "", "", {}},
                                 {Uuid::random(), "B", "", "", {}}};
    c.pinboards = boards;
    const auto actions = ClipPanelActions::actions(kindItem(ClipKind::color, "#5E5CE6", kNow), c);
    std::vector<std::string> ids;
    for (const auto& a : actions) ids.push_back(a.id());
    std::ranges::sort(ids);
    EXPECT_EQ(std::ranges::adjacent_find(ids), ids.end());
    EXPECT_EQ(find(actions, "Convert to HSL")->id(), "colour.hsl");
    EXPECT_EQ(find(actions, "Add to B")->id(), "addToPinboard." + boards[1].id.string());
}

}  // namespace
}  // namespace harbex
