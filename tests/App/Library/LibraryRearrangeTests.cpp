#include <gtest/gtest.h>

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>

#include <memory>

#include "tests/App/Library/LibraryTestWindow.hpp"

namespace harbex {
namespace {

using namespace librarywindowtest;
using testing::EngineRig;

// Copies on a pinboard rearranged in the library window: by dragging, by Alt+Up and Alt+Down,
// and from the copy's menu; each order reaches the engine and the history file.
class LibraryRearrangeTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ensureApplication(); }

    void SetUp() override { reset(); }

    // A fresh history and window: the five copies, four of them on the board, which is shown.
    void reset() {
        window.reset();
        rig = std::make_unique<EngineRig>();
        ClipEngine& engine = rig->start();
        engine.sample();
        for (const char* text : {"one", "two", "three", "four", "not on the board"}) {
            rig->clock.advance(60);
            rig->copyAndSample(text);
        }
        window = std::make_unique<LibraryWindow>(servicesFor(*rig));
        window->resize(1100, 640);
        board = *window->model().addPinboard("Steps");
        for (const char* text : {"one", "two", "three", "four"}) {
            ASSERT_TRUE(engine.addToPinboard(board, idOf(text)));
        }
        ASSERT_TRUE(window->showSection(ClipLibrarySection::pinboard(board)));
    }

    Uuid idOf(const std::string& text) {
        for (const ClipItem& item : rig->engine->history().get()) {
            if (item.text == text) return item.id;
        }
        ADD_FAILURE() << "no copy " << text;
        return Uuid();
    }

    // The board's order as the engine holds it.
    QStringList boardOrder() {
        QStringList out;
        for (const Pinboard& each : rig->engine->pinboards().get()) {
            if (each.id != board) continue;
            for (const Uuid& id : each.itemIDs) {
                const std::optional<ClipItem> item = rig->engine->item(id);
                out << QString::fromStdString(item ? item->text.value_or("?") : "(gone)");
            }
        }
        return out;
    }

    int rowOf(const std::string& text) { return window->listModel()->rowOf(idOf(text)); }

    // Drops the copy `text` on the list model as the view does at the end of a drag, then lets
    // the queued request arrive.
    bool drop(const std::string& text, int row, QModelIndex parent = {}) {
        LibraryListModel& model = *window->listModel();
        std::unique_ptr<QMimeData> data(model.mimeData({model.index(rowOf(text))}));
        if (!data) return false;
        if (!model.canDropMimeData(data.get(), Qt::MoveAction, row, 0, parent)) return false;
        const bool taken = model.dropMimeData(data.get(), Qt::MoveAction, row, 0, parent);
        QCoreApplication::processEvents();
        return taken;
    }

    void pressOnList(int key, Qt::KeyboardModifiers modifiers) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(window->list(), &event);
    }

    std::unique_ptr<EngineRig> rig;
    std::unique_ptr<LibraryWindow> window;
    Uuid board;
};

TEST_F(LibraryRearrangeTests, ADroppedCopyLandsWhereItWasDroppedInListAndGrid) {
    struct Case {
        const char* name;
        bool grid;
        std::string dragged;
        int row;       // the row it is dropped before; -1 past the end
        bool ontoRow;  // dropped onto the row rather than between rows
        QStringList order;
    };
    const std::vector<Case> cases{
        {"first below the third", false, "one", 3, false, {"two", "three", "one", "four"}},
        {"last to the top", false, "four", 0, false, {"four", "one", "two", "three"}},
        {"past the end", false, "two", -1, false, {"one", "three", "four", "two"}},
        {"onto a row goes before it", false, "four", 1, true, {"one", "four", "two", "three"}},
        {"just below itself stays", false, "two", 2, false, {"one", "two", "three", "four"}},
        {"in the grid", true, "three", 0, false, {"three", "one", "two", "four"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        reset();
        window->model().setShowsGrid(c.grid);
        ASSERT_EQ(boardOrder(), (QStringList{"one", "two", "three", "four"}));
        const QModelIndex onto = c.ontoRow ? window->listModel()->index(c.row) : QModelIndex();
        ASSERT_TRUE(drop(c.dragged, c.ontoRow ? -1 : c.row, onto));
        EXPECT_EQ(boardOrder(), c.order);
        EXPECT_EQ(listRows(*window), c.order) << "the list follows the engine";
    }
}

TEST_F(LibraryRearrangeTests, ADropEventOnTheListReordersTheBoardAndIsKeptOnDisk) {
    window->show();
    QCoreApplication::processEvents();
    QListView* list = window->list();
    ASSERT_EQ(list->dragDropMode(), QAbstractItemView::DragDrop);
    const QRect first = list->visualRect(window->listModel()->index(rowOf("one")));
    ASSERT_TRUE(first.isValid());
    // Into the top quarter of the first row: above it.
    const QPointF at(first.center().x(), first.top() + first.height() / 4);

    LibraryListModel& model = *window->listModel();
    std::unique_ptr<QMimeData> data(model.mimeData({model.index(rowOf("three"))}));
    // The drag comes in and moves over the list, then lets go.
    QDragEnterEvent enter(at.toPoint(), Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(list->viewport(), &enter);
    QDragMoveEvent move(at.toPoint(), Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(list->viewport(), &move);
    EXPECT_TRUE(move.isAccepted()) << "the list takes the drag";
    QDropEvent event(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    // As the drag's end hands it over: moving (the only action offered) and not yet taken.
    event.setDropAction(Qt::MoveAction);
    event.ignore();
    QCoreApplication::sendEvent(list->viewport(), &event);
    EXPECT_TRUE(event.isAccepted());
    QCoreApplication::processEvents();
    EXPECT_EQ(boardOrder(), (QStringList{"three", "one", "two", "four"}));

    rig->scheduler.runAll();  // the engine's save
    const ClipLibrary onDisk = rig->libraryOnDisk();
    const auto stored = std::ranges::find(onDisk.pinboards, board, &Pinboard::id);
    ASSERT_NE(stored, onDisk.pinboards.end());
    EXPECT_EQ(stored->itemIDs,
              (std::vector<Uuid>{idOf("three"), idOf("one"), idOf("two"), idOf("four")}));
    window->hide();
}

TEST_F(LibraryRearrangeTests, AltUpAndDownAndTheMenuMoveTheSelectedCopy) {
    ASSERT_TRUE(window->selectCopy(idOf("three")));
    const auto menuAction = [&](const QString& text) {
        std::unique_ptr<QMenu> menu = window->copyMenu();
        for (QAction* action : menu->actions()) {
            if (action->text() == text && action->isEnabled()) action->trigger();
        }
    };
    const auto expectOrder = [&](const QStringList& order) {
        EXPECT_EQ(boardOrder(), order);
        EXPECT_EQ(window->model().selectedID(), idOf("three")) << "the moved copy stays chosen";
        EXPECT_EQ(window->list()->currentIndex().row(), rowOf("three"));
    };
    pressOnList(Qt::Key_Up, Qt::AltModifier);
    expectOrder({"one", "three", "two", "four"});
    pressOnList(Qt::Key_Up, Qt::AltModifier);
    expectOrder({"three", "one", "two", "four"});
    pressOnList(Qt::Key_Up, Qt::AltModifier);  // at the top already
    expectOrder({"three", "one", "two", "four"});
    pressOnList(Qt::Key_Down, Qt::AltModifier);
    expectOrder({"one", "three", "two", "four"});
    menuAction("Move Down");
    expectOrder({"one", "two", "three", "four"});
    menuAction("Move Up");
    expectOrder({"one", "three", "two", "four"});
}

TEST_F(LibraryRearrangeTests, NothingMovesWhereTheListIsNotTheBoardsOwnOrder) {
    struct Case {
        const char* name;
        std::function<void()> arrange;
    };
    const std::vector<Case> cases{
        {"searching", [&] { window->model().setQuery("o"); }},
        {"sorted by name", [&] { window->model().setSort(ClipLibrarySort::name); }},
        {"all copies", [&] { window->showSection(ClipLibrarySection::all()); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        reset();
        c.arrange();
        ASSERT_TRUE(window->selectCopy(idOf("two")));
        const QModelIndex two = window->listModel()->index(rowOf("two"));
        EXPECT_FALSE(window->listModel()->flags(two) & Qt::ItemIsDragEnabled);
        EXPECT_EQ(window->list()->dragDropMode(), QAbstractItemView::NoDragDrop);
        EXPECT_FALSE(drop("two", 0));
        pressOnList(Qt::Key_Up, Qt::AltModifier);
        EXPECT_EQ(boardOrder(), (QStringList{"one", "two", "three", "four"}));
        std::unique_ptr<QMenu> menu = window->copyMenu();
        for (QAction* action : menu->actions()) EXPECT_NE(action->text(), "Move Up");
    }
}

}  // namespace
}  // namespace harbex
