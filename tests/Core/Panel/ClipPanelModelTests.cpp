#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

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

class ClipPanelModelTests : public paneltest::PanelModelFixture {
protected:
    std::string pasteboardText() {
        const auto bytes = rig.pasteboard.contents("public.utf8-plain-text");
        return bytes ? std::string(bytes->begin(), bytes->end()) : std::string();
    }

    std::vector<std::string> rowTexts() {
        std::vector<std::string> out;
        for (const ClipPanelRow& row : model->rows()) {
            out.push_back(row.isHeader() ? "# " + std::string(rowGroupTitle(row.group))
                                         : row.item->title());
        }
        return out;
    }

    std::string selectedTitle() {
        const ClipItem* item = model->selectedItem();
        return item ? item->title() : "";
    }
};

TEST_F(ClipPanelModelTests, OpenTypeMoveAndPasteTypesIntoTheTarget) {
    start({textItem("meeting notes", kNow - 60), textItem("grocery list", kNow - 120),
           textItem("notes for Ada", kNow - 180)});
    EXPECT_EQ(selectedTitle(), "meeting notes");
    model->setQuery("notes");
    EXPECT_EQ(rowTexts(), (std::vector<std::string>{"# Today", "notes for Ada", "meeting notes"}));
    model->handle(K::down);
    EXPECT_EQ(selectedTitle(), "meeting notes");
    EXPECT_EQ(model->handle(K::returnKey), Effect::pasted);
    EXPECT_EQ(rig.activator.requests, std::vector<ClipTargetApp>{kEditor});
    EXPECT_EQ(rig.typer.count, 0) << "the keystroke waits for the activation";
    scheduler.advance(0.2);
    EXPECT_EQ(rig.typer.count, 1);
    EXPECT_EQ(engine->library().items.front().timesPasted, 1);
    EXPECT_EQ(model->notice(), std::nullopt);
}

// The model lists the engine's history where the engine keeps it, so every change (a copy
// arriving, a history replaced and grown past its old capacity, pins coming and going) must be
// listed afresh; pins the history lacks (one pinned twice, one whose history copy went) are
// listed once, from the model's own copy. Each step ends by copying the selected row, which must
// hand over that row's text (and brings a history copy to the top, as any copy does).
TEST_F(ClipPanelModelTests, RowsFollowEveryChangeToTheHistoryAndThePins) {
    struct Step {
        const char* name;
        std::function<void()> change;
        std::vector<std::string> rows;
    };
    const ClipItem outside = textItem("pinned elsewhere", kNow - 600);
    std::vector<ClipItem> many;
    for (int i = 0; i < 40; ++i) many.push_back(textItem("many " + std::to_string(i), kNow - i));
    const ClipItem alpha = textItem("alpha", kNow - 10);
    start({alpha, textItem("beta", kNow - 20)});
    const std::vector<Step> steps = {
        {"a pin the history lacks, pinned twice",
         [&] {
             (void)rig.pins.pin(outside);
             (void)rig.pins.pin(outside);
             rig.capture(textItem("gamma", kNow - 5));
         },
         {"# Pinned", "pinned elsewhere", "# Today", "gamma", "alpha", "beta"}},
        {"a history copy pinned",
         [&] { EXPECT_TRUE(engine->pin(alpha.id)); },
         {"# Pinned", "alpha", "pinned elsewhere", "# Today", "gamma", "beta"}},
        {"the history replaced by a larger one",
         [&] {
             std::vector<ClipItem> items(many.begin(), many.begin() + 3);
             rig.seed(std::move(items));
         },
         {"# Pinned", "alpha", "pinned elsewhere", "# Today", "many 0", "many 1", "many 2"}},
        {"copies arriving past the old capacity",
         [&] {
             for (int i = 3; i < 40; ++i) rig.capture(many[std::size_t(i)]);
             std::vector<ClipItem> items(many.begin() + 37, many.end());
             std::reverse(items.begin(), items.end());
             rig.seed(std::move(items));
         },
         {"# Pinned", "alpha", "pinned elsewhere", "# Today", "many 37", "many 38", "many 39"}},
        {"the outside pin taken away",
         [&] { EXPECT_TRUE(engine->unpin(outside.id)); },
         {"# Pinned", "alpha", "# Today", "many 37", "many 38", "many 39"}},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        step.change();
        EXPECT_EQ(rowTexts(), step.rows);
        const std::string selected = selectedTitle();
        ASSERT_FALSE(selected.empty());
        EXPECT_EQ(model->handle(K::commandC), Effect::copied);
        EXPECT_EQ(pasteboardText(), selected);
    }
}

TEST_F(ClipPanelModelTests, WithoutTrustReturnCopiesAndTheNoticeFades) {
    start({textItem("alpha", kNow)});
    rig.trusted = false;
    EXPECT_EQ(model->handle(K::returnKey), Effect::copied);
    EXPECT_EQ(model->notice(), "Copied, press Ctrl+V");
    EXPECT_TRUE(model->noticeFades());
    scheduler.advance(1.4);
    EXPECT_TRUE(model->notice());
    scheduler.advance(0.2);
    EXPECT_EQ(model->notice(), std::nullopt);
}

TEST_F(ClipPanelModelTests, AnOldFadeDoesNotClearANewerNotice) {
    start({textItem("alpha", kNow), textItem("beta", kNow - 5)});
    EXPECT_EQ(model->handle(K::commandC), Effect::copied);
    const auto first = model->noticeNumber();
    scheduler.advance(1.0);
    model->handle(K::commandReturn);  // a second, newer fading notice
    EXPECT_EQ(model->notice(), "Added to the paste stack");
    EXPECT_GT(model->noticeNumber(), first);
    scheduler.advance(0.6);  // the first fade runs now
    EXPECT_EQ(model->notice(), "Added to the paste stack");
    scheduler.advance(1.0);
    EXPECT_EQ(model->notice(), std::nullopt);
    model->handle(K::commandC);
    model.reset();
    scheduler.runAll();  // a fade after the model is gone does nothing
    EXPECT_EQ(scheduler.pendingCount(), 0u);
}

TEST_F(ClipPanelModelTests, ACopyDeletedWhileThePanelIsOpenCannotBePasted) {
    start({textItem("alpha", kNow), textItem("beta", kNow - 5)});
    model->handle(K::commandK);
    ASSERT_EQ(model->mode(), ClipPanelMode::actions);
    ASSERT_EQ(model->actionItem()->text, "alpha");
    engine->remove(model->actionItem()->id);  // deleted from the library window meanwhile
    EXPECT_EQ(model->selectedID(), engine->library().items.front().id);
    const auto pasteAction = model->actions().front();
    ASSERT_EQ(pasteAction.kind.kind, ClipPanelActionKind::Case::paste);
    EXPECT_EQ(model->perform(pasteAction), Effect::none);
    EXPECT_EQ(model->notice(), "That copy can’t be pasted");
    EXPECT_FALSE(model->noticeFades());
    EXPECT_EQ(model->mode(), ClipPanelMode::actions) << "a failure keeps the list up";
    EXPECT_EQ(rig.pasteboard.changeCount(), 0) << "nothing was written";
}

TEST_F(ClipPanelModelTests, NoResultsLeaveNothingSelectedAndEveryPasteKeyDoesNothing) {
    start({textItem("alpha", kNow)});
    model->setQuery("zzz");
    EXPECT_EQ(model->selectedID(), std::nullopt);
    for (ClipPanelKey key :
         {ClipPanelKey(K::returnKey), ClipPanelKey(K::shiftReturn), ClipPanelKey::commandNumber(1),
          ClipPanelKey(K::commandC), ClipPanelKey(K::commandReturn), ClipPanelKey(K::commandK),
          ClipPanelKey(K::commandP), ClipPanelKey(K::commandDelete), ClipPanelKey(K::space)}) {
        EXPECT_EQ(model->handle(key), Effect::none) << enumName(key.kind);
    }
    EXPECT_EQ(rig.pasteboard.changeCount(), 0);
    EXPECT_EQ(model->emptyState(),
              (ClipPanelMessage{"Nothing matches “zzz”",
                                "Try fewer words, or a time word like “last week”."}));
}

TEST_F(ClipPanelModelTests, SelectionStopsAtTheEndsAndPagesByFive) {
    std::vector<ClipItem> items;
    for (int i = 0; i < 12; ++i) items.push_back(textItem("copy " + std::to_string(i), kNow - i));
    start(items);
    struct Step {
        ClipPanelKey key;
        std::string selected;
    };
    const std::vector<Step> steps{
        {K::up, "copy 0"},         {K::down, "copy 1"},    {K::shiftDown, "copy 6"},
        {K::shiftDown, "copy 11"}, {K::down, "copy 11"},   {K::shiftUp, "copy 6"},
        {K::shiftUp, "copy 1"},    {K::shiftUp, "copy 0"},
    };
    for (const Step& step : steps) {
        model->handle(step.key);
        EXPECT_EQ(selectedTitle(), step.selected) << enumName(step.key.kind);
    }
    EXPECT_EQ(model->handle(ClipPanelKey::commandNumber(3)), Effect::pasted);
    EXPECT_EQ(pasteboardText(), "copy 2");
    EXPECT_EQ(model->handle(ClipPanelKey::commandNumber(9)), Effect::pasted);
    EXPECT_EQ(pasteboardText(), "copy 8");
}

TEST_F(ClipPanelModelTests, RowsGroupByCalendarDayAroundMidnight) {
    const Calendar calendar = paneltest::london();
    const Date midnight = calendar.startOfDay(kNow);
    ClipItem pinned = textItem("pinned old", kNow - 40 * 86400);
    start({textItem("now", kNow), textItem("after midnight", midnight + 1),
           textItem("before midnight", midnight - 1), textItem("monday", midnight - 3 * 86400 + 60),
           textItem("last sunday", midnight - 4 * 86400 + 60), pinned},
          {pinned.id});
    EXPECT_EQ(rowTexts(),
              (std::vector<std::string>{
                  "# Pinned", "pinned old", "# Today", "now", "after midnight", "# Yesterday",
                  "before midnight", "# Earlier this week", "monday", "# Earlier", "last sunday"}));
}

TEST_F(ClipPanelModelTests, EscapeClearsTheQueryThenClosesAndLeavesActionsFirst) {
    start({textItem("alpha", kNow)});
    model->setQuery("al");
    model->handle(K::commandK);
    EXPECT_EQ(model->handle(K::escape), Effect::none);
    EXPECT_EQ(model->mode(), ClipPanelMode::browse);
    EXPECT_EQ(model->handle(K::escape), Effect::none);
    EXPECT_EQ(model->query(), "");
    EXPECT_EQ(model->handle(K::escape), Effect::close);
}

TEST_F(ClipPanelModelTests, TabCyclesFiltersAndDeleteOnEmptyDropsAppThenKind) {
    start({textItem("alpha", kNow), kindItem(ClipKind::link, "https://a.example", kNow - 1)});
    model->handle(K::shiftTab);
    EXPECT_EQ(model->filter(), ClipFilter::code);
    model->handle(K::tab);
    model->handle(K::tab);
    model->handle(K::tab);
    model->handle(K::tab);
    EXPECT_EQ(model->filter(), ClipFilter::links);
    EXPECT_EQ(selectedTitle(), "a.example");
    model->setAppFilter("firefox");
    model->handle(K::deleteOnEmpty);
    EXPECT_EQ(model->appFilter(), std::nullopt);
    EXPECT_EQ(model->filter(), ClipFilter::links);
    model->handle(K::deleteOnEmpty);
    EXPECT_EQ(model->filter(), ClipFilter::all);
}

TEST_F(ClipPanelModelTests, OnePerPasteStackGivesOutOneCopyPerOpening) {
    start({textItem("first", kNow), textItem("second", kNow - 1), textItem("oops", kNow - 2),
           textItem("third", kNow - 3)});
    model->handle(K::commandReturn);  // first
    model->handle(K::down);
    model->handle(K::commandReturn);  // second
    model->handle(K::down);
    model->handle(K::commandReturn);  // oops: a mistake…
    model->handle(K::commandReturn);  // …undone
    model->handle(K::down);
    model->handle(K::commandReturn);  // third
    ASSERT_EQ(model->stack().count(), 3u);

    EXPECT_EQ(model->handle(K::returnKey), Effect::copied);
    EXPECT_EQ(pasteboardText(), "first");
    EXPECT_EQ(model->notice(), "Copied 1 of 3, press Ctrl+V. Open the panel again for the next.");
    EXPECT_TRUE(model->stack().isEmpty());
    model->open(kEditor);
    EXPECT_EQ(pasteboardText(), "second");
    engine->remove(engine->library().items[3].id);  // "third" is deleted before its turn
    model->open(kEditor);
    EXPECT_EQ(model->sequence(), std::nullopt);
    EXPECT_EQ(pasteboardText(), "second");
}

TEST_F(ClipPanelModelTests, ASequenceOfOneShowsTheLastOneAtOnce) {
    start({textItem("only", kNow)});
    model->handle(K::commandReturn);
    EXPECT_EQ(model->handle(K::returnKey), Effect::copied);
    EXPECT_EQ(model->notice(), "Copied the last one, press Ctrl+V");
}

TEST_F(ClipPanelModelTests, JoiningStackPastesOnceAndEmptiesTheStack) {
    ClipSettings settings;
    settings.panel.stackMode = ClipStackMode::commas;
    engine->updateSettings(settings);
    start({textItem("apples\n", kNow), textItem(" pears", kNow - 1)});
    model->handle(K::commandReturn);
    model->handle(K::down);
    model->handle(K::commandReturn);
    EXPECT_EQ(model->handle(K::returnKey), Effect::pasted);
    EXPECT_EQ(pasteboardText(), "apples, pears");
    EXPECT_TRUE(model->stack().isEmpty());
}

TEST_F(ClipPanelModelTests, PinUnpinAndForgetAnswerWithNotices) {
    start({textItem("alpha", kNow), textItem("beta", kNow - 1)});
    model->handle(K::commandP);
    EXPECT_EQ(model->notice(), "Pinned, and in Harbex Tidepool too");
    EXPECT_EQ(model->rows().front().group, ClipRowGroup::pinned);
    model->handle(K::commandP);
    EXPECT_EQ(model->notice(), "Unpinned");
    EXPECT_EQ(model->rows().front().group, ClipRowGroup::today);
    model->handle(K::commandDelete);
    EXPECT_EQ(model->notice(), "Deleted");
    EXPECT_EQ(selectedTitle(), "beta");
    EXPECT_EQ(engine->library().items.size(), 1u);
}

TEST_F(ClipPanelModelTests, OpenQuickLookAndSaveAnswerByKind) {
    start({kindItem(ClipKind::link, "https://a.example", kNow),
           kindItem(ClipKind::file, "a.txt", kNow - 1), kindItem(ClipKind::image, "", kNow - 2),
           textItem("words", kNow - 3)});
    struct Case {
        ClipPanelKey key;
        std::array<Effect, 4> effects;  // link, file, image, text
    };
    const std::vector<Case> cases{
        {K::commandO, {Effect::open, Effect::reveal, Effect::none, Effect::none}},
        {K::commandY, {Effect::quickLook, Effect::quickLook, Effect::quickLook, Effect::quickLook}},
        {K::space, {Effect::quickLook, Effect::quickLook, Effect::quickLook, Effect::quickLook}},
        {K::commandS, {Effect::none, Effect::none, Effect::saveImage, Effect::none}},
    };
    for (const Case& c : cases) {
        model->handle(K::shiftUp);
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(model->handle(c.key), c.effects[i]) << enumName(c.key.kind) << " " << i;
            if (c.effects[i] == Effect::none) {
                EXPECT_EQ(model->notice(), "That doesn’t work on this copy");
            }
            model->handle(K::down);
        }
    }
}

TEST_F(ClipPanelModelTests, ActionsPasteOrKeepATransformedText) {
    start({textItem("hello world", kNow)});
    model->handle(K::commandK);
    model->setActionQuery("upper");
    ASSERT_EQ(model->actions().size(), 1u);
    EXPECT_EQ(model->actionPreview(), "HELLO WORLD");
    EXPECT_EQ(model->handle(K::returnKey), Effect::pasted);
    EXPECT_EQ(pasteboardText(), "HELLO WORLD");
    EXPECT_EQ(model->mode(), ClipPanelMode::browse);

    model->handle(K::commandK);
    model->setActionCategory(ClipActionCategory::transform);
    model->setActionQuery("title");
    EXPECT_EQ(model->handle(K::commandReturn), Effect::none);
    EXPECT_EQ(model->notice(), "Saved as a new copy");
    EXPECT_EQ(engine->library().items.front().text, "Hello World");
    EXPECT_EQ(selectedTitle(), "Hello World");

    model->handle(K::commandK);
    model->setActionQuery("base64 decode");
    EXPECT_EQ(model->handle(K::returnKey), Effect::none);
    EXPECT_EQ(model->notice(), "That doesn’t work on this copy");
}

TEST_F(ClipPanelModelTests, EmptyStatesFollowTheFilterAndCountWhatAllHolds) {
    start({});
    EXPECT_EQ(model->emptyState()->title, "Your clipboard history starts here");
    rig.seed({textItem("budget 2024", kNow), textItem("budget notes", kNow - 1)});
    EXPECT_EQ(model->emptyState(), std::nullopt);
    model->setFilter(ClipFilter::images);
    EXPECT_EQ(model->emptyState()->body, "Copy an image or a screenshot and it shows up here.");
    model->setQuery("budget");
    EXPECT_EQ(model->emptyState(),
              (ClipPanelMessage{"No images match “budget”",
                                "Try All instead of Images, fewer words, or a time word like "
                                "“last week”. 2 matches in All."}));
}

TEST_F(ClipPanelModelTests, TimeWordsAndRememberedFilters) {
    start({textItem("notes today", kNow), textItem("notes old", kNow - 10 * 86400)});
    model->setQuery("notes yesterday");
    EXPECT_EQ(model->timeWord(), ClipTimeWord::yesterday);
    EXPECT_TRUE(model->results().empty());
    model->setQuery("notes today");
    EXPECT_EQ(model->results().size(), 1u);

    model->setFilter(ClipFilter::text);
    model->open(kEditor);
    EXPECT_EQ(model->filter(), ClipFilter::all);
    ClipSettings settings;
    settings.remembersFilter = true;
    engine->updateSettings(settings);
    model->setFilter(ClipFilter::text);
    model->open(kEditor);
    EXPECT_EQ(model->filter(), ClipFilter::text);
    EXPECT_EQ(model->query(), "");
}

TEST_F(ClipPanelModelTests, PauseBannerFollowsTheSettings) {
    start({});
    EXPECT_EQ(model->pauseBanner(), std::nullopt);
    ClipSettings settings;
    settings.pausedUntil = kNow + 1800;
    engine->updateSettings(settings);
    EXPECT_EQ(model->pauseBanner(),
              "New copies aren’t saved until 15:00. Everything already here still pastes.");
}

TEST_F(ClipPanelModelTests, ACopyArrivingWhileOpenKeepsTheSelection) {
    start({textItem("alpha", kNow - 10), textItem("beta", kNow - 20)});
    model->handle(K::down);
    rig.capture(textItem("gamma", kNow));
    EXPECT_EQ(selectedTitle(), "beta");
    EXPECT_EQ(model->rows()[1].item->title(), "gamma");
}

}  // namespace
}  // namespace harbex
