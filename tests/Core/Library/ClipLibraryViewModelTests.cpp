#include <gtest/gtest.h>

#include <memory>

#include "HarbexClipCore/Library/ClipLibraryModel.hpp"
#include "HarbexClipCore/Library/ClipLibraryViewModel.hpp"
#include "tests/Core/Library/LibraryTestSupport.hpp"

namespace harbex {
namespace {

using librarytest::imageItem;
using librarytest::kNow;
using librarytest::textItem;

class ClipLibraryViewModelTests : public librarytest::LibraryFixture {
protected:
    std::vector<std::string> groupTitles() {
        std::vector<std::string> out;
        for (const auto& group : model->groups()) {
            out.push_back(group.title.value_or("-") + ":" + std::to_string(group.items.size()));
        }
        return out;
    }
};

TEST_F(ClipLibraryViewModelTests, DayGroupsUseCalendarDaysAndTodayCountsAgree) {
    const Date midnight = librarytest::london().startOfDay(kNow);
    struct Case {
        Date now;
        std::vector<std::string> groups;
        std::int64_t today;
    };
    const std::vector<ClipItem> items{textItem("a", midnight + 1), textItem("b", midnight - 1),
                                      textItem("c", midnight - 2 * 86400),
                                      textItem("d", midnight - 4 * 86400)};
    const std::vector<Case> cases{
        {kNow, {"Today:1", "Yesterday:1", "Earlier this week:1", "Earlier:1"}, 1},
        // One second before midnight the copy made "just after midnight" is still today.
        {midnight + 86400 - 1, {"Today:1", "Yesterday:1", "Earlier this week:1", "Earlier:1"}, 1},
        // A day later everything slides one heading down; nothing is today.
        {midnight + 86400 + 1, {"Yesterday:1", "Earlier this week:2", "Earlier:1"}, 0},
    };
    start(items);
    for (const Case& c : cases) {
        clock.set(c.now);
        seed(items);  // a refresh at the new time
        EXPECT_EQ(groupTitles(), c.groups);
        EXPECT_EQ(model->counts().today, c.today);
        model->setSection(ClipLibrarySection::today());
        EXPECT_EQ(static_cast<std::int64_t>(model->items().size()), c.today);
        model->setSection(ClipLibrarySection::all());
    }
}

TEST_F(ClipLibraryViewModelTests, CountsCoverKindsPinboardsAndApps) {
    ClipItem a = textItem("a", kNow, "firefox", "Firefox");
    ClipItem b = textItem("b", kNow - 1, "firefox", "Firefox");
    ClipItem c = imageItem("d1", kNow - 2);
    start({a, b, c});
    Pinboard board{Uuid::random(), "Work", "", "", {a.id, Uuid::random()}};
    engine.addPinboard(board);
    ASSERT_TRUE(engine.pin(c.id));
    const ClipLibraryCounts& counts = model->counts();
    EXPECT_EQ(counts.all, 3);
    EXPECT_EQ(counts.pinned, 1);
    EXPECT_EQ(counts.kinds.at(ClipFilter::text), 2);
    EXPECT_EQ(counts.kinds.at(ClipFilter::images), 1);
    EXPECT_EQ(counts.kinds.at(ClipFilter::links), 0);
    EXPECT_EQ(counts.pinboards.at(board.id), 1) << "a board id missing from the history";
    EXPECT_EQ(counts.apps,
              (std::vector<ClipLibraryApp>{{"firefox", "Firefox", 2},
                                           {"org.gnome.Screenshot", "Screenshot", 1}}));
}

TEST_F(ClipLibraryViewModelTests, PinboardSectionsKeepTheBoardOrderAndShowTheEmptyState) {
    ClipItem a = textItem("a", kNow), b = textItem("b", kNow - 1);
    start({a, b});
    Pinboard empty{Uuid::random(), "Empty", "", "", {}};
    Pinboard board{Uuid::random(), "Work", "", "", {b.id, a.id}};
    engine.addPinboard(empty);
    engine.addPinboard(board);
    model->setSection(ClipLibrarySection::pinboard(empty.id));
    EXPECT_EQ(model->emptyState(), "This pinboard is empty");
    model->setSection(ClipLibrarySection::pinboard(board.id));
    EXPECT_EQ(model->emptyState(), std::nullopt);
    ASSERT_EQ(model->items().size(), 2u);
    EXPECT_EQ(model->items()[0].id, b.id);
    EXPECT_EQ(groupTitles(), std::vector<std::string>{"-:2"});
}

TEST_F(ClipLibraryViewModelTests, CopiesOnTheShownBoardMoveInItsStoredOrder) {
    const std::vector<ClipItem> items{textItem("a", kNow), textItem("b", kNow - 1),
                                      textItem("c", kNow - 2), textItem("d", kNow - 3)};
    // The board also holds a copy that is gone (x): the list leaves it out, the board keeps it.
    const Uuid gone = Uuid::random();
    constexpr int kUp = -1, kDown = -2;  // the selected copy one step
    struct Case {
        const char* name;
        char copy;
        int to;
        const char* meanwhile;  // "search", "sort" or "all": a view the board's order is not
        bool moved;
        const char* listed;
        std::size_t goneAt;  // where the missing copy is in the stored order afterwards
    };
    const Case cases[] = {
        {"down past two", 'a', 2, "", true, "bcad", 0},
        {"up to the top", 'd', 0, "", true, "dabc", 2},
        {"onto its own place", 'b', 1, "", true, "abcd", 1},
        {"beyond the end", 'c', 99, "", true, "abdc", 1},
        {"a copy not on the board", 'x', 0, "", false, "abcd", 1},
        {"selected one down", 'b', kDown, "", true, "acbd", 1},
        {"selected one up, past the missing copy", 'b', kUp, "", true, "bacd", 2},
        {"the first cannot go up", 'a', kUp, "", false, "abcd", 1},
        {"the last cannot go down", 'd', kDown, "", false, "abcd", 1},
        {"not while searching", 'a', 1, "search", false, "abcd", 1},
        {"not while sorted otherwise", 'd', 0, "sort", false, "abcd", 1},
        {"not outside a board", 'd', 0, "all", false, "abcd", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        start(items);
        const Uuid id = c.copy == 'x' ? gone : items[std::size_t(c.copy - 'a')].id;
        const Pinboard board{Uuid::random(),
                             "Work",
                             "",
                             "",
                             {items[0].id, gone, items[1].id, items[2].id, items[3].id}};
        ASSERT_TRUE(engine.addPinboard(board));
        model->setSection(ClipLibrarySection::pinboard(board.id));
        EXPECT_TRUE(model->canRearrange());
        const std::string meanwhile = c.meanwhile;
        if (meanwhile == "search") model->setQuery("a");
        if (meanwhile == "sort") model->setSort(ClipLibrarySort::name);
        if (meanwhile == "all") model->setSection(ClipLibrarySection::all());
        if (c.to < 0) model->select(id);
        const bool moved =
            c.to >= 0
                ? model->moveOnPinboard(id, std::size_t(c.to))
                : model->moveSelectedOnPinboard(c.to == kUp ? ClipLibraryViewModel::Step::up
                                                            : ClipLibraryViewModel::Step::down);
        EXPECT_EQ(moved, c.moved);
        model->setQuery("");
        model->setSort(ClipLibrarySort::newest);
        model->setSection(ClipLibrarySection::pinboard(board.id));
        std::string listed;
        for (const ClipItem& item : model->items()) listed += *item.text;
        EXPECT_EQ(listed, c.listed);
        const auto stored = std::ranges::find(engine.pinboards().get(), board.id, &Pinboard::id);
        ASSERT_NE(stored, engine.pinboards()->end());
        ASSERT_EQ(stored->itemIDs.size(), 5u);
        EXPECT_EQ(stored->itemIDs[c.goneAt], gone);
        engine.removePinboard(board.id);
    }
}

TEST_F(ClipLibraryViewModelTests, ActionsLeaveTheirNotices) {
    ClipItem a = textItem("hello", kNow);
    start({a});
    model->select(a.id);
    EXPECT_EQ(model->draft(), "hello");
    model->paste();
    EXPECT_EQ(model->notice(), "Copied, press Ctrl+V") << "no target: copied only";
    model->togglePin();
    EXPECT_EQ(model->notice(), "Pinned, and in Harbex Tidepool too");
    model->saveDraft();
    EXPECT_EQ(model->notice(), "That doesn’t change this copy");
    model->setDraft("hello there");
    model->saveDraft();
    EXPECT_EQ(engine.library().items.front().text, "hello there");
    engine.remove(a.id);
    model->select(a.id);
    model->copy();
    EXPECT_EQ(model->notice(), "That copy can’t be copied");
    model->paste();
    EXPECT_EQ(model->notice(), "That copy can’t be pasted");
}

TEST_F(ClipLibraryViewModelTests, DetailLinesSayWhatTheCopyIs) {
    const Calendar calendar = librarytest::london();
    ClipItem rich = textItem("words", kNow - 100, "firefox", "Firefox");
    rich.kind = ClipKind::richText;
    rich.rtf = Bytes{'{', '}'};
    rich.timesCopied = 3;
    rich.timesPasted = 2;
    rich.lastPasted = calendar.startOfDay(kNow) - 60;
    auto detail = ClipLibraryViewModel::detailOf(rich, true, false, true, kNow, calendar);
    EXPECT_EQ(detail.kindLine, "Text, rich text kept");
    EXPECT_EQ(detail.sourceLine, "From Firefox · kept forever");
    EXPECT_EQ(detail.usageLine, "Copied 3 times, pasted 2 times · last yesterday");
    EXPECT_EQ(detail.pinLine, "Pinned, shared with Harbex Tidepool");

    ClipItem edited = rich;
    ASSERT_EQ(edited.edit("new words"), ClipEditOutcome::edited);
    detail = ClipLibraryViewModel::detailOf(edited, true, false, false, kNow, calendar);
    EXPECT_EQ(detail.kindLine, "Text, edited · rich text kept");
    EXPECT_EQ(detail.pinLine, "Also in Harbex Tidepool");

    const std::vector<std::pair<ClipItem, std::string>> hidden{
        {[&] {
             auto i = textItem("s3cret", kNow);
             i.isSensitive = true;
             return i;
         }(),
         "Sensitive, hidden"},
        {[&] {
             auto i = textItem("123456", kNow);
             i.isSensitive = true;
             i.details = {ClipDetail::oneTimeCode};
             return i;
         }(),
         "One-time code, hidden"},
    };
    for (const auto& [item, line] : hidden) {
        const auto d = ClipLibraryViewModel::detailOf(item, false, false, true, kNow, calendar);
        EXPECT_EQ(d.kindLine, line);
        EXPECT_EQ(d.sourceLine, "From Text Editor");
    }
}

TEST_F(ClipLibraryViewModelTests, ExportThenImportIntoAnotherLibraryAndRefuseADamagedFile) {
    ClipItem a = textItem("alpha", kNow), b = imageItem("img", kNow - 5);
    start({a, b});
    engine.addPinboard({Uuid::random(), "Work", "", "", {b.id}});
    ASSERT_TRUE(engine.pin(a.id));
    const std::string file = model->exportFile([](const ClipImageInfo&) -> std::optional<Bytes> {
        return Bytes{1, 2, 3};
    });

    librarytest::EngineAtNow other;
    ClipItem mine = textItem("mine", kNow - 100);
    other.seed({mine});
    ClipLibraryViewModel receiver(other.engine, nowFunction(other.clock), librarytest::london());

    int published = 0;
    const Subscription counting =
        other.engine.history().subscribe([&](const auto&) { ++published; });
    std::string damaged = file;
    damaged.replace(damaged.find("\"images\""), 8, "\"imagez\"");
    const auto refused = receiver.importFile(damaged);
    ASSERT_FALSE(refused);
    EXPECT_EQ(published, 0) << "a refused file changes nothing";
    EXPECT_EQ(other.engine.library().items, std::vector<ClipItem>{mine});
    EXPECT_EQ(receiver.notice(), refused.error().message);

    const auto imported = receiver.importFile(file);
    ASSERT_TRUE(imported) << imported.error().message;
    EXPECT_EQ(receiver.notice(), "Added 2 copies and 1 pinboard");
    EXPECT_EQ(receiver.counts().all, 3);
    EXPECT_EQ(receiver.counts().pinned, 1);
    EXPECT_EQ(imported->images.size(), 1u);
    EXPECT_TRUE(receiver.importFile(file));
    EXPECT_EQ(receiver.notice(), "Added 0 copies; 2 were here already");
    EXPECT_EQ(other.engine.library().items.size(), 3u);
}

TEST(ClipLibraryModelTests, SortsBreakTiesByNewest) {
    librarytest::EngineAtNow at;
    ClipItem old = textItem("banana", kNow - 30), mid = textItem("Apple", kNow - 20),
             fresh = textItem("apple", kNow - 10), newest = textItem("cherry", kNow);
    old.timesPasted = 5;
    mid.timesPasted = 1;
    fresh.timesPasted = 1;
    at.seed({newest, fresh, mid, old});
    ClipLibraryModel model(at.engine, nowFunction(at.clock), librarytest::london());
    const auto order = [&] {
        std::string out;
        for (const auto& item : model.items()) out += item.text->substr(0, 2) + " ";
        return out;
    };
    const std::vector<std::pair<ClipLibrarySort, std::string>> cases{
        {ClipLibrarySort::newest, "ch ap Ap ba "},
        {ClipLibrarySort::mostPasted, "ba ap Ap ch "},
        {ClipLibrarySort::name, "ap Ap ba ch "},
    };
    for (const auto& [sort, expected] : cases) {
        model.setSort(sort);
        EXPECT_EQ(order(), expected) << enumName(sort);
    }
    model.setQuery("apple");
    EXPECT_EQ(order(), "ap Ap ");
    model.setSection(ClipLibrarySection::ofKind(ClipFilter::images));
    EXPECT_TRUE(model.items().empty());
}

TEST(ClipStorageBreakdownTests, BucketsByKind) {
    ClipItem text = textItem("12345", kNow);
    ClipItem image = imageItem("d", kNow, 4000);
    ClipContent files;
    files.kind = ClipKind::file;
    files.filePaths = std::vector<std::string>{"/a/b", "/c"};
    ClipItem file = ClipItem::make(files, {}, {}, kNow, ClipSensitivity::ordinary);
    ClipContent link;
    link.kind = ClipKind::link;
    link.text = "https://x.io";
    ClipItem linkItem = ClipItem::make(link, {}, {}, kNow, ClipSensitivity::ordinary);
    const auto breakdown = ClipStorageBreakdown::of({text, image, file, linkItem});
    EXPECT_EQ(breakdown, (ClipStorageBreakdown{4000, 6, 5, 12}));
    EXPECT_EQ(breakdown.total(), 4023);
}

}  // namespace
}  // namespace harbex
