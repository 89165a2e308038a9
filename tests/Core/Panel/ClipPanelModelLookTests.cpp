#include <gtest/gtest.h>

#include <memory>

#include "HarbexClipCore/Panel/ClipCodeLanguage.hpp"
#include "HarbexClipCore/Panel/ClipPanelModel.hpp"
#include "tests/Core/Panel/PanelTestSupport.hpp"

namespace harbex {
namespace {

using paneltest::kindItem;
using paneltest::kNow;
using paneltest::textItem;
using Effect = ClipPanelModel::Effect;
using K = ClipPanelKey::Kind;

using paneltest::kEditor;

// What the model tells the view beyond its rows: each row's look, the preview, the hints.
class ClipPanelModelLookTests : public paneltest::PanelModelFixture {
protected:
    void changeSettings(const std::function<void(ClipSettings&)>& change) {
        ClipSettings settings = engine->settings().get();
        change(settings);
        engine->updateSettings(settings);
    }

    std::vector<std::string> hintLabels() {
        std::vector<std::string> out;
        for (const auto& hint : model->hints()) out.push_back(hint.key + " " + hint.label);
        return out;
    }
};

TEST_F(ClipPanelModelLookTests, NumbersCountCopiesNotHeadersAndMarksFollowTheModel) {
    // Two today, two yesterday: rows are header, a, b, header, c, d.
    start({textItem("a", kNow - 60), textItem("b", kNow - 120), textItem("c", kNow - 86400),
           textItem("d", kNow - 86400 - 60)});
    ASSERT_EQ(model->rows().size(), 6u);
    struct Case {
        std::size_t row;
        std::string title;
        int number;
    };
    const Case cases[] = {{1, "a", 1}, {2, "b", 2}, {4, "c", 3}, {5, "d", 4}};
    for (const Case& c : cases) {
        const auto look = model->look(c.row);
        EXPECT_EQ(look.title, c.title);
        EXPECT_EQ(look.number, c.number);
        EXPECT_EQ(look.numberKeys, "Ctrl+" + std::to_string(c.number));
        EXPECT_FALSE(look.isPinned);
        EXPECT_FALSE(look.isStacked);
    }
    model->handle(K::commandReturn);  // stacks "a"
    EXPECT_TRUE(model->look(1).isStacked);
    model->handle(K::down);
    model->handle(K::commandP);  // pins "b", which moves under "Pinned" at the top
    ASSERT_TRUE(model->rows()[1].item);
    EXPECT_EQ(model->rows()[1].item->text, "b");
    EXPECT_TRUE(model->look(1).isPinned);
    EXPECT_TRUE(model->isPinned(model->rows()[1].item->id));
}

TEST_F(ClipPanelModelLookTests, OnlyTheFirstNineCopiesAreNumbered) {
    std::vector<ClipItem> items;
    for (int i = 0; i < 12; ++i) items.push_back(textItem("copy " + std::to_string(i), kNow - i));
    start(items);
    EXPECT_EQ(model->look(9).number, 9);
    EXPECT_EQ(model->look(10).number, 0);
    EXPECT_EQ(model->look(10).numberKeys, "");
    EXPECT_EQ(model->look(12).number, 0);
}

TEST_F(ClipPanelModelLookTests, ThePreviewFollowsTheSelectionAndTheActionResult) {
    start({textItem("hello there", kNow - 60), kindItem(ClipKind::color, "#FF0000", kNow - 120)});
    ASSERT_TRUE(model->preview());
    EXPECT_EQ(model->preview()->body, "hello there");
    model->handle(K::down);
    EXPECT_EQ(model->preview()->kind, ClipPanelPreview::Kind::colour);

    model->handle(K::up);
    model->handle(K::commandK);
    ASSERT_EQ(model->mode(), ClipPanelMode::actions);
    EXPECT_EQ(model->preview()->body, "hello there") << "paste entries have no result";
    model->setActionQuery("uppercase");
    ASSERT_FALSE(model->actions().empty());
    ASSERT_TRUE(model->actionPreview());
    const auto result = model->preview();
    EXPECT_EQ(result->title, model->actions().front().title);
    EXPECT_EQ(result->body, "HELLO THERE");
    EXPECT_EQ(result->details, "Return pastes it, Ctrl+Return keeps it as a new copy");
}

TEST_F(ClipPanelModelLookTests, CodeCopiesNameTheirLanguageWhenTheApplicationOffersIt) {
    ClipItem hidden = kindItem(ClipKind::code, "let mut secret = \"hunter2\";", kNow - 180);
    hidden.isSensitive = true;
    start({kindItem(ClipKind::code, "fn main() {\n    println!(\"hi\");\n}", kNow - 60),
           textItem("fn main() {\n    println!(\"hi\");\n} as prose", kNow - 120), hidden,
           kindItem(ClipKind::code, "x = 1", kNow - 240)});
    struct Case {
        std::vector<std::string> languages;
        std::vector<std::optional<std::string>> looks;  // rows 1…4 under "Today"
    };
    const std::vector<Case> cases{
        {{}, {std::nullopt, std::nullopt, std::nullopt, std::nullopt}},
        {ClipCodeLanguage::knownNames(), {"Rust", std::nullopt, std::nullopt, std::nullopt}},
        {{"Python"}, {std::nullopt, std::nullopt, std::nullopt, std::nullopt}},
    };
    for (const Case& c : cases) {
        model->languages = c.languages;
        ASSERT_EQ(model->rows().size(), 5u);
        std::vector<std::optional<std::string>> looks;
        for (std::size_t row = 1; row < 5; ++row) looks.push_back(model->look(row).language);
        EXPECT_EQ(looks, c.looks);
        model->select(model->rows()[1].item->id);
        ASSERT_TRUE(model->preview());
        EXPECT_EQ(model->preview()->language, c.looks[0]);
        model->select(model->rows()[2].item->id);
        EXPECT_EQ(model->preview()->language, std::nullopt) << "text is not code";
    }
    // In actions mode the copy's own preview keeps its language.
    model->languages = ClipCodeLanguage::knownNames();
    model->select(model->rows()[1].item->id);
    model->handle(K::commandK);
    ASSERT_EQ(model->mode(), ClipPanelMode::actions);
    EXPECT_EQ(model->preview()->language, "Rust");
}

TEST_F(ClipPanelModelLookTests, NoCopyNoPreview) {
    start({});
    EXPECT_EQ(model->preview(), std::nullopt);
    EXPECT_EQ(hintLabels(), std::vector<std::string>{"Tab Filter"});
}

TEST_F(ClipPanelModelLookTests, ThePreviewShowsAsTheSettingsSay) {
    start({textItem("a", kNow)});
    struct Case {
        bool showsPreview;
        ClipPanelSize size;
        bool shown;
    };
    const Case cases[] = {
        {true, ClipPanelSize::regular, true},
        {true, ClipPanelSize::large, true},
        {true, ClipPanelSize::compact, false},
        {false, ClipPanelSize::large, false},
    };
    for (const Case& c : cases) {
        changeSettings([&](ClipSettings& s) {
            s.panel.showsPreview = c.showsPreview;
            s.panel.size = c.size;
        });
        EXPECT_EQ(model->showsPreview(), c.shown) << static_cast<int>(c.size);
    }
}

TEST_F(ClipPanelModelLookTests, ReturnCopiesOnlyWhenTheSettingSaysSo) {
    start({textItem("alpha", kNow)});
    changeSettings([](ClipSettings& s) { s.panel.returnCopiesOnly = true; });
    EXPECT_EQ(hintLabels().front(), "Return Copy");
    EXPECT_EQ(model->handle(K::returnKey), Effect::copied);
    EXPECT_EQ(rig.activator.requests.size(), 0u) << "nothing is typed into the target";
    EXPECT_EQ(model->notice(), "Copied, press Ctrl+V");
    changeSettings([](ClipSettings& s) { s.panel.returnCopiesOnly = false; });
    EXPECT_EQ(model->handle(K::returnKey), Effect::pasted);
}

TEST_F(ClipPanelModelLookTests, HintsFollowTheModeThePinAndTheStack) {
    start({textItem("alpha", kNow), textItem("beta", kNow - 5)});
    EXPECT_EQ(hintLabels(), (std::vector<std::string>{"Return Paste", "Ctrl+K Actions",
                                                      "Ctrl+P Pin", "Tab Filter"}));
    model->handle(K::commandP);
    model->handle(K::commandReturn);
    EXPECT_EQ(hintLabels(),
              (std::vector<std::string>{"Return Paste the stack (1)", "Ctrl+K Actions",
                                        "Ctrl+P Unpin", "Tab Filter"}));
    model->handle(K::commandK);
    EXPECT_EQ(hintLabels(), (std::vector<std::string>{"Return Run", "Tab Next group", "Esc Back"}));
}

TEST_F(ClipPanelModelLookTests, TheRowsRevisionMovesOnlyWhenTheRowsAreRebuilt) {
    start({textItem("alpha", kNow), textItem("beta", kNow - 5)});
    const auto before = model->rowsRevision();
    model->handle(K::down);
    model->handle(K::up);
    EXPECT_EQ(model->rowsRevision(), before) << "moving the selection keeps the rows";
    model->setQuery("alp");
    EXPECT_GT(model->rowsRevision(), before);
    const auto typed = model->rowsRevision();
    model->setFilter(ClipFilter::links);
    EXPECT_GT(model->rowsRevision(), typed);
}

}  // namespace
}  // namespace harbex
