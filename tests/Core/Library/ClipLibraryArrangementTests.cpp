#include <gtest/gtest.h>

#include <memory>

#include "HarbexClipCore/Library/ClipLibraryViewModel.hpp"
#include "tests/Core/Library/LibraryTestSupport.hpp"

namespace harbex {
namespace {

using librarytest::kNow;
using librarytest::textItem;

// Pinboard upkeep, order and layout, and the empty-list texts of the library's view model.
class ClipLibraryArrangementTests : public librarytest::LibraryFixture {
protected:
    std::string boardNames() {
        std::string out;
        for (const Pinboard& board : engine.pinboards().get()) out += board.name + " ";
        return out;
    }

    Uuid boardNamed(const std::string& name) {
        for (const Pinboard& board : engine.pinboards().get()) {
            if (board.name == name) return board.id;
        }
        ADD_FAILURE() << "no board " << name;
        return Uuid::random();
    }
};

TEST_F(ClipLibraryArrangementTests, NewBoardsTakeANameAndTheNextColour) {
    start({});
    struct Case {
        std::string typed;
        std::string name;
        std::string_view color;
    };
    const Case cases[] = {
        {"Work", "Work", kPinboardColors[0]},
        {"  ", "New Pinboard", kPinboardColors[1]},
        {"", "New Pinboard", kPinboardColors[2]},
    };
    for (const Case& c : cases) {
        const std::optional<Uuid> id = model->addPinboard(c.typed);
        ASSERT_TRUE(id) << c.typed;
        const Pinboard& board = engine.pinboards().get().back();
        EXPECT_EQ(board.id, *id);
        EXPECT_EQ(board.name, c.name);
        EXPECT_EQ(board.color, c.color);
        EXPECT_EQ(board.symbol, kPinboardSymbols[0]);
    }
}

TEST_F(ClipLibraryArrangementTests, RenameRefusesBlankNamesAndUnknownBoards) {
    start({});
    const Uuid id = *model->addPinboard("Work");
    EXPECT_FALSE(model->renamePinboard(id, " \n"));
    EXPECT_EQ(boardNames(), "Work ");
    EXPECT_TRUE(model->renamePinboard(id, "Recipes"));
    EXPECT_EQ(boardNames(), "Recipes ");
    EXPECT_FALSE(model->renamePinboard(Uuid::random(), "Gone"));
}

TEST_F(ClipLibraryArrangementTests, BoardsMoveToAnIndexOrOneStep) {
    struct Case {
        std::string board;
        std::optional<std::size_t> index;  // otherwise `step`
        ClipLibraryViewModel::Step step;
        bool moved;
        std::string order;
    };
    const Case cases[] = {
        {"A", 2, {}, true, "B C A D "},
        {"D", 0, {}, true, "D A B C "},
        {"B", 1, {}, true, "A B C D "},
        {"B", 99, {}, true, "A C D B "},
        {"C", std::nullopt, ClipLibraryViewModel::Step::up, true, "A C B D "},
        {"C", std::nullopt, ClipLibraryViewModel::Step::down, true, "A B D C "},
        {"A", std::nullopt, ClipLibraryViewModel::Step::up, false, "A B C D "},
        {"D", std::nullopt, ClipLibraryViewModel::Step::down, false, "A B C D "},
    };
    for (const Case& c : cases) {
        start({});
        for (const char* name : {"A", "B", "C", "D"}) model->addPinboard(name);
        const Uuid id = boardNamed(c.board);
        const bool moved =
            c.index ? model->movePinboard(id, *c.index) : model->movePinboard(id, c.step);
        EXPECT_EQ(moved, c.moved) << c.board << " " << c.order;
        EXPECT_EQ(boardNames(), c.order) << c.board;
    }
}

TEST_F(ClipLibraryArrangementTests, CopiesGoOnAndOffBoardsWithNoticesNamingTheBoard) {
    ClipItem a = textItem("alpha", kNow);
    start({a});
    const Uuid work = *model->addPinboard("Work");
    model->select(a.id);
    model->addSelectedToPinboard(work);
    EXPECT_EQ(model->notice(), "Added to “Work”");
    EXPECT_EQ(engine.pinboards().get().front().itemIDs, std::vector<Uuid>{a.id});

    // Taking a copy off works only from the board being shown.
    model->removeSelectedFromPinboard();
    EXPECT_EQ(engine.pinboards().get().front().itemIDs.size(), 1u);
    model->setSection(ClipLibrarySection::pinboard(work));
    model->select(a.id);
    model->removeSelectedFromPinboard();
    EXPECT_EQ(model->notice(), "Removed from “Work”");
    EXPECT_TRUE(engine.pinboards().get().front().itemIDs.empty());
    EXPECT_EQ(engine.library().items.size(), 1u) << "the copy itself stays";

    // Removing the board being shown goes back to every copy.
    EXPECT_TRUE(model->removePinboard(work));
    EXPECT_TRUE(engine.pinboards().get().empty());
    EXPECT_EQ(model->section(), ClipLibrarySection::all());
    EXPECT_EQ(model->items().size(), 1u);
}

TEST_F(ClipLibraryArrangementTests, SortAndLayoutAreKeptInTheWindowSettings) {
    ClipItem a = textItem("banana", kNow), b = textItem("apple", kNow - 3 * 86400);
    b.timesPasted = 2;
    start({a, b});
    EXPECT_EQ(model->groups().size(), 2u) << "newest first runs under day headings";
    struct Case {
        ClipLibrarySort sort;
        bool grid;
        std::string first;
    };
    const Case cases[] = {
        {ClipLibrarySort::name, false, "apple"},
        {ClipLibrarySort::mostPasted, true, "apple"},
        {ClipLibrarySort::newest, true, "banana"},
    };
    for (const Case& c : cases) {
        model->setSort(c.sort);
        model->setShowsGrid(c.grid);
        const ClipWindowSettings& stored = engine.settings()->window;
        EXPECT_EQ(stored.sort, c.sort);
        EXPECT_EQ(stored.layout, c.grid ? ClipLibraryLayout::grid : ClipLibraryLayout::list);
        ASSERT_FALSE(model->groups().empty());
        EXPECT_EQ(model->groups().front().items.front().text, c.first) << enumName(c.sort);
        const bool headed = c.sort == ClipLibrarySort::newest;
        EXPECT_EQ(model->groups().front().title.has_value(), headed) << enumName(c.sort);
    }
    // A second model, as when the window opens again, starts where the first left off.
    model->setSort(ClipLibrarySort::name);
    ClipLibraryViewModel reopened(engine, nowFunction(clock), librarytest::london());
    EXPECT_EQ(reopened.sort(), ClipLibrarySort::name);
    EXPECT_TRUE(reopened.showsGrid());
}

TEST_F(ClipLibraryArrangementTests, AnEmptyListSaysWhy) {
    start({});
    const Uuid board = *model->addPinboard("Work");
    struct Case {
        ClipLibrarySection section;
        std::string query;
        std::string text;
    };
    const Case cases[] = {
        {ClipLibrarySection::all(), "", "Nothing copied yet"},
        {ClipLibrarySection::today(), "", "Nothing copied today"},
        {ClipLibrarySection::pinned(), "", "Nothing pinned yet"},
        {ClipLibrarySection::ofKind(ClipFilter::links), "", "No links yet"},
        {ClipLibrarySection::app("firefox"), "", "No copies from this app"},
        {ClipLibrarySection::pinboard(board), "", "This pinboard is empty"},
        {ClipLibrarySection::all(), "zebra", "No copies match “zebra”"},
        {ClipLibrarySection::pinboard(board), "zebra", "No copies match “zebra”"},
    };
    for (const Case& c : cases) {
        model->setSection(c.section);
        model->setQuery(c.query);
        EXPECT_EQ(model->emptyState(), c.text) << persistedName(c.section) << " " << c.query;
    }
    rig.capture(textItem("zebra crossing", kNow));
    model->setSection(ClipLibrarySection::all());
    EXPECT_EQ(model->emptyState(), std::nullopt) << "rows to show: no empty text";
}

TEST(ClipLibrarySectionTests, PersistedNamesComeBackAsTheSameSection) {
    const Uuid board = *Uuid::parse("6F1E2D3C-4B5A-4978-8695-A4B3C2D1E0F9");
    const std::pair<ClipLibrarySection, std::string> cases[] = {
        {ClipLibrarySection::all(), "all"},
        {ClipLibrarySection::today(), "today"},
        {ClipLibrarySection::pinned(), "pinned"},
        {ClipLibrarySection::ofKind(ClipFilter::links), "kind:links"},
        {ClipLibrarySection::pinboard(board), "pinboard:6F1E2D3C-4B5A-4978-8695-A4B3C2D1E0F9"},
        {ClipLibrarySection::app("org.gnome.TextEditor"), "app:org.gnome.TextEditor"},
        {ClipLibrarySection::app("a:b"), "app:a:b"},
    };
    for (const auto& [section, name] : cases) {
        EXPECT_EQ(persistedName(section), name);
        EXPECT_EQ(sectionFromPersistedName(name), section) << name;
    }
}

TEST(ClipLibrarySectionTests, UnknownNamesGiveNothing) {
    for (const char* name : {"", "everything", "kind:", "kind:all", "kind:pinned", "kind:sounds",
                             "pinboard:", "pinboard:not-a-uuid", "app:", ":links", "All"}) {
        EXPECT_EQ(sectionFromPersistedName(name), std::nullopt) << name;
    }
}

}  // namespace
}  // namespace harbex
