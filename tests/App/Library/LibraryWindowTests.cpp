#include "HarbexClip/Views/LibraryWindow.hpp"

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QMenu>
#include <QTemporaryDir>

#include "HarbexClip/Views/LibraryItemDelegate.hpp"
#include "HarbexClipCore/Capture/SensitiveDetector.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"
#include "tests/App/Library/LibraryTestWindow.hpp"

namespace harbex {
namespace {

using namespace librarywindowtest;
using testing::EngineRig;

class LibraryWindowTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ensureApplication(); }

    // Three copies: one two days old, a link and a note from today, all from the same editor.
    void SetUp() override {
        ClipEngine& engine = rig.start();
        engine.sample();
        rig.copyAndSample("an old note");
        rig.clock.advance(2 * 86400);
        rig.copyAndSample("https://example.com/page");
        rig.clock.advance(60);
        rig.copyAndSample("hello world");
        window = std::make_unique<LibraryWindow>(servicesFor(rig));
        window->resize(1100, 640);
    }

    // Makes the copy whose title starts with `title` current, as a click does.
    bool selectRow(const QString& title) {
        const LibraryListModel& model = *window->listModel();
        for (int row = 0; row < model.rowCount(); ++row) {
            const ClipItem* item = model.item(row);
            if (item && model.index(row).data().toString().startsWith(title)) {
                return window->selectCopy(item->id);
            }
        }
        return false;
    }

    std::string historyText(std::size_t index) {
        return rig.engine->history()->at(index).text.value_or("");
    }

    QAction* menuAction(QMenu& menu, const QString& text) {
        for (QAction* action : menu.actions()) {
            if (action->text() == text) return action;
            if (action->menu()) {
                if (QAction* inner = menuAction(*action->menu(), text)) return inner;
            }
        }
        return nullptr;
    }

    std::string pasteboardText() {
        const std::optional<Bytes> bytes = rig.pasteboard.contents(kPlainTextType);
        return bytes ? std::string(bytes->begin(), bytes->end()) : std::string();
    }

    EngineRig rig;
    std::unique_ptr<LibraryWindow> window;
};

TEST_F(LibraryWindowTests, SidebarShowsEachSectionWithItsCount) {
    const QStringList rows = sidebarRows(*window);
    for (const char* row : {"All  3", "Today  2", "Pinned  0", "#Kinds", "Links  1", "Images  0",
                            "#Pinboards", "#Apps", "Name of org.example.editor  3"}) {
        EXPECT_TRUE(rows.contains(row)) << row << "\n" << rows.join('|').toStdString();
    }
    EXPECT_EQ(window->sidebar()->currentRow(), 0);
}

TEST_F(LibraryWindowTests, TheListAdapterMapsGroupsAndRows) {
    struct Case {
        ClipLibrarySection section;
        QString query;
        QStringList rows;  // "*" matches the link, whose title is its address or host
    };
    const Case cases[] = {
        {ClipLibrarySection::all(), "", {"#Today", "hello world", "*", "#", "an old note"}},
        {ClipLibrarySection::today(), "", {"#Today", "hello world", "*"}},
        {ClipLibrarySection::ofKind(ClipFilter::links), "", {"#Today", "*"}},
        {ClipLibrarySection::all(), "note", {"#", "an old note"}},
        {ClipLibrarySection::ofKind(ClipFilter::images), "", {}},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(window->showSection(c.section));
        window->searchField()->setText(c.query);
        const QStringList rows = listRows(*window);
        ASSERT_EQ(rows.size(), c.rows.size()) << rows.join('|').toStdString();
        const LibraryListModel& model = *window->listModel();
        for (int i = 0; i < rows.size(); ++i) {
            const QString& want = c.rows[i];
            // "#" alone: some earlier heading, whose name depends on the week's first day.
            if (want == "#") {
                EXPECT_TRUE(rows[i].startsWith("#Earlier")) << rows[i].toStdString();
            } else if (want != "*") {
                EXPECT_EQ(rows[i], want);
            }
            // Headings can't be chosen; every copy row knows its row back.
            EXPECT_EQ(bool(model.flags(model.index(i)) & Qt::ItemIsSelectable),
                      !want.startsWith('#'));
            if (const ClipItem* item = model.item(i)) {
                EXPECT_EQ(model.rowOf(item->id), i);
            }
        }
    }
}

TEST_F(LibraryWindowTests, SortAndLayoutAreSavedInTheWindowSettings) {
    struct Case {
        QString sort;
        QToolButton* (LibraryWindow::*button)() const;
        ClipLibrarySort stored;
        ClipLibraryLayout layout;
        bool headings;
    };
    const Case cases[] = {
        {"Name", &LibraryWindow::gridButton, ClipLibrarySort::name, ClipLibraryLayout::grid, false},
        {"Most pasted", &LibraryWindow::listButton, ClipLibrarySort::mostPasted,
         ClipLibraryLayout::list, false},
        {"Newest", &LibraryWindow::gridButton, ClipLibrarySort::newest, ClipLibraryLayout::grid,
         true},
    };
    for (const Case& c : cases) {
        window->sortChoice()->setCurrentIndex(window->sortChoice()->findText(c.sort));
        (window.get()->*c.button)()->click();
        const ClipSettings stored = ClipSettingsStore::load(rig.defaults);
        EXPECT_EQ(stored.window.sort, c.stored) << c.sort.toStdString();
        EXPECT_EQ(stored.window.layout, c.layout) << c.sort.toStdString();
        EXPECT_EQ(listRows(*window).value(0).startsWith('#'), c.headings) << c.sort.toStdString();
        const bool grid = c.layout == ClipLibraryLayout::grid;
        EXPECT_EQ(window->delegate()->layout() == LibraryItemDelegate::Layout::grid, grid);
        EXPECT_EQ(window->list()->isWrapping(), grid);
    }
    // A window opened afterwards starts the way the last one was left.
    window->sortChoice()->setCurrentIndex(window->sortChoice()->findText("Name"));
    LibraryWindow second(servicesFor(rig));
    EXPECT_EQ(second.sortChoice()->currentText(), "Name");
    EXPECT_TRUE(second.gridButton()->isChecked());
    EXPECT_EQ(listRows(second).value(0), "an old note");
}

TEST_F(LibraryWindowTests, TheShownSectionIsRememberedForTheNextWindow) {
    ASSERT_TRUE(window->showSection(ClipLibrarySection::ofKind(ClipFilter::links)));
    EXPECT_EQ(rig.defaults.string(LibraryWindow::kSectionKey), "kind:links");
    LibraryWindow second(servicesFor(rig));
    EXPECT_EQ(second.model().section(), ClipLibrarySection::ofKind(ClipFilter::links));
    EXPECT_EQ(listRows(second).size(), 2);

    // A remembered board that has since gone leaves the next window on every copy.
    rig.defaults.setString(LibraryWindow::kSectionKey, "pinboard:" + Uuid::random().string());
    LibraryWindow third(servicesFor(rig));
    EXPECT_EQ(third.model().section(), ClipLibrarySection::all());
}

TEST_F(LibraryWindowTests, ASearchWithoutMatchesSaysSoInsteadOfAList) {
    window->searchField()->setText("zebra");
    EXPECT_EQ(window->emptyLabel()->text(), "No copies match “zebra”");
    EXPECT_TRUE(window->emptyLabel()->isVisibleTo(window.get()));
    EXPECT_FALSE(window->list()->isVisibleTo(window.get()));
    window->searchField()->setText("hello");
    EXPECT_EQ(listRows(*window).size(), 2);
    EXPECT_TRUE(window->emptyLabel()->text().isEmpty());
    EXPECT_TRUE(window->list()->isVisibleTo(window.get()));
}

TEST_F(LibraryWindowTests, SelectingACopyFillsTheDetailPaneAndEditsReachTheEngine) {
    EXPECT_FALSE(window->editor()->isVisibleTo(window.get()));
    ASSERT_TRUE(selectRow("an old note"));
    EXPECT_EQ(window->detailTitle()->text(), "an old note");
    EXPECT_TRUE(window->detailLines()->text().contains("Name of org.example.editor"))
        << window->detailLines()->text().toStdString();
    EXPECT_EQ(window->pinButton()->text(), "Pin");

    ASSERT_TRUE(selectRow("hello world"));
    window->editor()->setPlainText("hello there");
    window->saveButton()->click();
    EXPECT_EQ(historyText(0), "hello there");
    EXPECT_EQ(window->noticeLabel()->text(), "Saved");
    window->revertButton()->click();
    EXPECT_EQ(historyText(0), "hello world");
    EXPECT_EQ(window->noticeLabel()->text(), "Back to the original");
    EXPECT_EQ(window->editor()->toPlainText(), "hello world");
}

TEST_F(LibraryWindowTests, PinningAndDeletingUpdateTheCounts) {
    ASSERT_TRUE(selectRow("hello world"));
    window->pinButton()->click();
    EXPECT_EQ(rig.engine->pins()->size(), 1u);
    EXPECT_EQ(window->pinButton()->text(), "Unpin");
    EXPECT_TRUE(sidebarRows(*window).contains("Pinned  1"));
    window->pinButton()->click();
    EXPECT_TRUE(rig.engine->pins()->empty());

    ASSERT_TRUE(selectRow("an old note"));
    window->deleteButton()->click();
    ASSERT_EQ(rig.engine->history()->size(), 2u);
    EXPECT_TRUE(sidebarRows(*window).contains("All  2"));
}

TEST_F(LibraryWindowTests, ReturnAndDoubleClickPasteIntoTheAppThatWasInFront) {
    const ClipTargetApp editor{4242, std::string("org.example.editor"), std::string("Editor")};
    window->setPasteTarget(editor);
    ASSERT_TRUE(selectRow("an old note"));
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(window->list(), &press);
    ASSERT_EQ(rig.activator.requests.size(), 1u);
    EXPECT_EQ(rig.activator.requests[0], editor);
    rig.scheduler.runAll();
    EXPECT_EQ(rig.typer.count, 1);
    EXPECT_EQ(pasteboardText(), "an old note");

    // The paste button takes the same road; without a target the copy is only put back.
    window->setPasteTarget(std::nullopt);
    ASSERT_TRUE(selectRow("hello world"));
    window->pasteButton()->click();
    EXPECT_EQ(rig.activator.requests.size(), 1u);
    EXPECT_EQ(pasteboardText(), "hello world");
    EXPECT_EQ(window->noticeLabel()->text(), "Copied, press Ctrl+V");
}

TEST_F(LibraryWindowTests, SensitiveCopiesShowOnlyWhatTheyAre) {
    struct Case {
        const char* text;
        const char* shown;
    };
    const Case cases[] = {
        {"4111 1111 1111 1111", "Sensitive, hidden"},
        {"482913", "One-time code, hidden"},
    };
    for (const Case& c : cases) {
        rig.clock.advance(60);
        rig.copyAndSample(c.text);
        ASSERT_TRUE(rig.engine->history()->front().isSensitive) << c.text;
        const QStringList rows = listRows(*window);
        EXPECT_EQ(rows.value(1), c.shown) << rows.join('|').toStdString();
        EXPECT_FALSE(rows.join('|').contains(c.text));
        ASSERT_TRUE(selectRow(c.shown));
        EXPECT_EQ(window->detailTitle()->text(), c.shown);
        EXPECT_TRUE(window->editor()->toPlainText().isEmpty());
        EXPECT_TRUE(window->editor()->isReadOnly());
        EXPECT_EQ(window->editor()->placeholderText().toStdString(), kSensitiveExplanation);
    }
}

// The strip follows the appearance; the window is also written to the build folder in light and
// dark, for a person to look at.
TEST_F(LibraryWindowTests, TheEnginesProblemShowsAtTheTopInTheWindowsShade) {
    EXPECT_FALSE(window->problemLabel()->isVisibleTo(window.get()));
    rig.engine->problem().set(std::string("The history can’t be opened"));
    EXPECT_TRUE(window->problemLabel()->isVisibleTo(window.get()));
    EXPECT_EQ(window->problemLabel()->text(), "The history can’t be opened");
    for (const ClipAppearance appearance : {ClipAppearance::light, ClipAppearance::dark}) {
        const bool dark = appearance == ClipAppearance::dark;
        SCOPED_TRACE(dark ? "dark" : "light");
        ClipSettings settings = rig.engine->settings().get();
        settings.window.appearance = appearance;
        rig.engine->updateSettings(settings);
        EXPECT_EQ(window->palette().color(QPalette::Base).lightnessF() < 0.3, dark);
        EXPECT_EQ(window->problemLabel()->shade(),
                  dark ? ProblemBanner::Shade::dark : ProblemBanner::Shade::light);
        const QString path =
            QString(HARBEX_BINARY_DIR) + (dark ? "/library-dark.png" : "/library-light.png");
        EXPECT_TRUE(window->grab().save(path)) << path.toStdString();
    }
    rig.engine->problem().set(std::nullopt);
    EXPECT_FALSE(window->problemLabel()->isVisibleTo(window.get()));
}

TEST_F(LibraryWindowTests, PinboardsAreMadeRenamedStyledAndReorderedAndKeptOnDisk) {
    window->newPinboard();
    window->newPinboard();
    ASSERT_EQ(rig.engine->pinboards()->size(), 2u);
    const Uuid first = rig.engine->pinboards()->at(0).id;
    const Uuid second = rig.engine->pinboards()->at(1).id;
    EXPECT_EQ(window->model().section(), ClipLibrarySection::pinboard(second));
    EXPECT_EQ(window->emptyLabel()->text(), "This pinboard is empty");

    // Renaming in place, as the sidebar's editor does when it closes.
    const auto rowOf = [&](const Uuid& board) -> QListWidgetItem* {
        for (int i = 0; i < window->sidebar()->count(); ++i) {
            if (LibrarySidebar::boardOf(window->sidebar()->item(i)) == board)
                return window->sidebar()->item(i);
        }
        return nullptr;
    };
    ASSERT_TRUE(rowOf(first));
    rowOf(first)->setText("Recipes");
    ASSERT_TRUE(rowOf(second));
    rowOf(second)->setText("Work");
    QCoreApplication::processEvents();
    ASSERT_EQ(rig.engine->pinboards()->at(1).name, "Work");
    std::unique_ptr<QMenu> menu = window->boardMenu(first);
    ASSERT_TRUE(menuAction(*menu, "Green"));
    menuAction(*menu, "Green")->trigger();
    menu = window->boardMenu(first);
    menuAction(*menu, "Star")->trigger();

    // Reordering: dropping Work above Recipes, then Move Down puts it back.
    const std::optional<std::size_t> dropped =
        window->sidebar()->boardIndexForDrop(second, window->sidebar()->row(rowOf(first)), false);
    ASSERT_EQ(dropped, 0u);
    window->sidebar()->boardDropped(second, *dropped);
    QCoreApplication::processEvents();
    ASSERT_EQ(rig.engine->pinboards()->at(0).name, "Work");
    menu = window->boardMenu(second);
    menuAction(*menu, "Move Down")->trigger();
    menu = window->boardMenu(second);
    menuAction(*menu, "Move Up")->trigger();

    rig.scheduler.runAll();  // the engine's save
    const std::vector<Pinboard> onDisk = rig.libraryOnDisk().pinboards;
    ASSERT_EQ(onDisk.size(), 2u);
    EXPECT_EQ(onDisk[0].name, "Work");
    EXPECT_EQ(onDisk[1].name, "Recipes");
    EXPECT_EQ(onDisk[1].color, "green");
    EXPECT_EQ(onDisk[1].symbol, "star");
    const QStringList rows = sidebarRows(*window);
    EXPECT_LT(rows.indexOf("Work  0"), rows.indexOf("Recipes  0")) << rows.join('|').toStdString();
}

TEST_F(LibraryWindowTests, CopiesGoOnAPinboardFromTheMenuAndComeOffItAgain) {
    const Uuid board = *window->model().addPinboard("Recipes");
    ASSERT_TRUE(selectRow("hello world"));
    std::unique_ptr<QMenu> menu = window->copyMenu();
    QAction* add = menuAction(*menu, "Recipes");
    ASSERT_TRUE(add);
    add->trigger();
    EXPECT_EQ(window->noticeLabel()->text(), "Added to “Recipes”");
    EXPECT_TRUE(sidebarRows(*window).contains("Recipes  1"));

    ASSERT_TRUE(window->showSection(ClipLibrarySection::pinboard(board)));
    ASSERT_TRUE(selectRow("hello world"));
    ASSERT_TRUE(window->unboardButton()->isVisibleTo(window.get()));
    window->unboardButton()->click();
    EXPECT_TRUE(sidebarRows(*window).contains("Recipes  0"));
    EXPECT_EQ(window->emptyLabel()->text(), "This pinboard is empty");
    EXPECT_EQ(rig.engine->history()->size(), 3u);
}

}  // namespace
}  // namespace harbex
