#include "HarbexClip/Views/LibraryWindow.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPixmap>
#include <QTemporaryDir>

#include "HarbexClipCore/Capture/SensitiveDetector.hpp"
#include "tests/Core/Engine/EngineRig.hpp"

namespace harbex {
namespace {

using testing::EngineRig;

class LibraryWindowTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static int argc = 3;
        static char name[] = "AppLibraryTests";
        static char platform[] = "-platform";
        static char offscreen[] = "offscreen";
        static char* argv[] = {name, platform, offscreen, nullptr};
        application = new QApplication(argc, argv);
    }
    static void TearDownTestSuite() { delete application; }

    // Three copies: one two days old, a link and a note from today, all from the same editor.
    void SetUp() override {
        ClipEngine& engine = rig.start();
        engine.sample();
        rig.copyAndSample("an old note");
        rig.clock.advance(2 * 86400);
        rig.copyAndSample("https://example.com/page");
        rig.clock.advance(60);
        rig.copyAndSample("hello world");
        window = std::make_unique<LibraryWindow>(LibraryWindowServices{
            .engine = engine,
            .now = nowFunction(rig.clock),
            .calendar = Calendar("Europe/Berlin", "en_GB"),
            .readImage = [](const ClipImageInfo&) { return std::optional<Bytes>{}; },
            .storeImage = [](const ClipExportImage&) { return false; },
            .clearHistory = {},
        });
        window->resize(1100, 640);
    }

    static QStringList texts(const QListWidget* list, bool headings) {
        QStringList out;
        for (int i = 0; i < list->count(); ++i) {
            const QListWidgetItem* row = list->item(i);
            const bool isHeading = !(row->flags() & Qt::ItemIsSelectable);
            if (isHeading == headings) out << row->text();
        }
        return out;
    }

    // Makes the copy whose row starts with `title` current, as a click does.
    bool selectRow(const QString& title) {
        for (int i = 0; i < window->list()->count(); ++i) {
            QListWidgetItem* row = window->list()->item(i);
            if ((row->flags() & Qt::ItemIsSelectable) && row->text().startsWith(title)) {
                window->list()->setCurrentItem(row);
                return true;
            }
        }
        return false;
    }

    std::string historyText(std::size_t index) {
        return rig.engine->history()->at(index).text.value_or("");
    }

    static inline QApplication* application = nullptr;
    EngineRig rig;
    std::unique_ptr<LibraryWindow> window;
};

TEST_F(LibraryWindowTests, SidebarShowsEachSectionWithItsCount) {
    const QStringList rows = texts(window->sidebar(), false);
    const char* expected[] = {"All  3",   "Today  2",  "Pinned  0",
                              "Links  1", "Images  0", "Name of org.example.editor  3"};
    for (const char* row : expected)
        EXPECT_TRUE(rows.contains(row)) << row << "\n" << rows.join('|').toStdString();
    EXPECT_TRUE(texts(window->sidebar(), true).contains("Kinds"));
    EXPECT_EQ(window->sidebar()->currentRow(), 0);
}

TEST_F(LibraryWindowTests, SectionsListTheirCopiesUnderDayHeadings) {
    struct Case {
        ClipLibrarySection section;
        QStringList titles;
        bool hasEarlierHeading;
    };
    const Case cases[] = {
        {ClipLibrarySection::all(), {"hello world", "https", "an old note"}, true},
        {ClipLibrarySection::today(), {"hello world", "https"}, false},
        {ClipLibrarySection::ofKind(ClipFilter::links), {"https"}, false},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(window->showSection(c.section));
        const QStringList rows = texts(window->list(), false);
        ASSERT_EQ(rows.size(), c.titles.size()) << rows.join('|').toStdString();
        for (int i = 0; i < rows.size(); ++i) {
            // The link's title may be its host; each row still names what it holds.
            if (c.titles[i] == "https") continue;
            EXPECT_TRUE(rows[i].startsWith(c.titles[i]));
        }
        const QStringList headings = texts(window->list(), true);
        EXPECT_EQ(headings.value(0), "Today");
        EXPECT_EQ(headings.size() > 1, c.hasEarlierHeading) << headings.join('|').toStdString();
    }
}

TEST_F(LibraryWindowTests, SortingByNameDropsTheHeadings) {
    window->sortChoice()->setCurrentIndex(window->sortChoice()->findText("Name"));
    EXPECT_TRUE(texts(window->list(), true).isEmpty());
    const QStringList rows = texts(window->list(), false);
    ASSERT_EQ(rows.size(), 3);
    EXPECT_TRUE(rows[0].startsWith("an old note"));
}

TEST_F(LibraryWindowTests, TheWindowOpensInTheSortTheSettingsKeep) {
    ClipSettings settings = rig.engine->settings().get();
    settings.window.sort = ClipLibrarySort::name;
    rig.engine->updateSettings(settings);
    LibraryWindow second(LibraryWindowServices{
        .engine = *rig.engine,
        .now = nowFunction(rig.clock),
        .calendar = Calendar("Europe/Berlin", "en_GB"),
        .readImage = [](const ClipImageInfo&) { return std::optional<Bytes>{}; },
        .storeImage = [](const ClipExportImage&) { return false; },
        .clearHistory = {},
    });
    EXPECT_EQ(second.sortChoice()->currentText(), "Name");
    EXPECT_TRUE(texts(second.list(), true).isEmpty());
    EXPECT_TRUE(texts(second.list(), false).value(0).startsWith("an old note"));
}

TEST_F(LibraryWindowTests, SearchNarrowsTheList) {
    window->searchField()->setText("hello");
    const QStringList rows = texts(window->list(), false);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_TRUE(rows[0].startsWith("hello world"));
}

TEST_F(LibraryWindowTests, SelectingACopyFillsTheDetailPane) {
    EXPECT_FALSE(window->editor()->isVisibleTo(window.get()));
    ASSERT_TRUE(selectRow("an old note"));
    EXPECT_EQ(window->detailTitle()->text(), "an old note");
    EXPECT_EQ(window->editor()->toPlainText(), "an old note");
    EXPECT_TRUE(window->detailLines()->text().contains("Name of org.example.editor"))
        << window->detailLines()->text().toStdString();
    EXPECT_EQ(window->pinButton()->text(), "Pin");
}

TEST_F(LibraryWindowTests, EditingAndRevertingChangeTheEnginesCopy) {
    ASSERT_TRUE(selectRow("hello world"));
    window->editor()->setPlainText("hello there");
    window->saveButton()->click();
    EXPECT_EQ(historyText(0), "hello there");
    EXPECT_EQ(window->noticeLabel()->text(), "Saved");
    EXPECT_EQ(window->editor()->toPlainText(), "hello there");

    window->revertButton()->click();
    EXPECT_EQ(historyText(0), "hello world");
    EXPECT_EQ(window->noticeLabel()->text(), "Back to the original");
    EXPECT_EQ(window->editor()->toPlainText(), "hello world");
}

TEST_F(LibraryWindowTests, PinningUpdatesTheButtonAndTheCount) {
    ASSERT_TRUE(selectRow("hello world"));
    window->pinButton()->click();
    EXPECT_EQ(rig.engine->pins()->size(), 1u);
    EXPECT_EQ(window->pinButton()->text(), "Unpin");
    EXPECT_TRUE(texts(window->sidebar(), false).contains("Pinned  1"));
    window->pinButton()->click();
    EXPECT_TRUE(rig.engine->pins()->empty());
}

TEST_F(LibraryWindowTests, DeleteForgetsTheSelectedCopy) {
    ASSERT_TRUE(selectRow("an old note"));
    window->deleteButton()->click();
    ASSERT_EQ(rig.engine->history()->size(), 2u);
    EXPECT_EQ(historyText(1), "https://example.com/page");
    EXPECT_TRUE(texts(window->sidebar(), false).contains("All  2"));
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
        const QStringList rows = texts(window->list(), false);
        ASSERT_FALSE(rows.isEmpty());
        EXPECT_TRUE(rows[0].startsWith(c.shown)) << rows[0].toStdString();
        EXPECT_FALSE(rows.join('|').contains(c.text));
        ASSERT_TRUE(selectRow(c.shown));
        EXPECT_EQ(window->detailTitle()->text(), c.shown);
        EXPECT_TRUE(window->editor()->toPlainText().isEmpty());
        EXPECT_TRUE(window->editor()->isReadOnly());
        EXPECT_EQ(window->editor()->placeholderText().toStdString(), kSensitiveExplanation);
    }
}

TEST_F(LibraryWindowTests, TheEnginesProblemShowsAtTheTopWhileThereIsOne) {
    EXPECT_FALSE(window->problemLabel()->isVisibleTo(window.get()));
    rig.engine->problem().set(std::string("The history can’t be opened"));
    EXPECT_TRUE(window->problemLabel()->isVisibleTo(window.get()));
    EXPECT_EQ(window->problemLabel()->text(), "The history can’t be opened");
    rig.engine->problem().set(std::nullopt);
    EXPECT_FALSE(window->problemLabel()->isVisibleTo(window.get()));
}

TEST_F(LibraryWindowTests, AnEmptyPinboardSaysSo) {
    Pinboard board;
    board.id = Uuid::random();
    board.name = "Recipes";
    ASSERT_TRUE(rig.engine->addPinboard(board));
    EXPECT_TRUE(texts(window->sidebar(), false).contains("Recipes  0"));
    ASSERT_TRUE(window->showSection(ClipLibrarySection::pinboard(board.id)));
    EXPECT_TRUE(texts(window->list(), false).isEmpty());
    EXPECT_EQ(window->emptyLabel()->text(), "This pinboard is empty");

    // A copy put on the board lists there and can be taken off it again.
    ASSERT_TRUE(rig.engine->addToPinboard(board.id, rig.engine->history()->front().id));
    EXPECT_TRUE(texts(window->sidebar(), false).contains("Recipes  1"));
    EXPECT_TRUE(window->emptyLabel()->text().isEmpty());
    ASSERT_TRUE(selectRow("hello world"));
    ASSERT_TRUE(window->unboardButton()->isVisibleTo(window.get()));
    window->unboardButton()->click();
    EXPECT_TRUE(texts(window->sidebar(), false).contains("Recipes  0"));
    EXPECT_EQ(window->emptyLabel()->text(), "This pinboard is empty");
    EXPECT_EQ(rig.engine->history()->size(), 3u);
}

TEST_F(LibraryWindowTests, ExportWritesAFileAndADamagedImportIsRefused) {
    QTemporaryDir folder;
    const QString path = folder.filePath("copies.json");
    EXPECT_TRUE(window->exportTo(path).startsWith("Exported"));
    QFile written(path);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_TRUE(written.readAll().contains("hello world"));

    const QString damaged = folder.filePath("damaged.json");
    QFile bad(damaged);
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("{ not json");
    bad.close();
    const QString refusal = window->importFrom(damaged);
    EXPECT_TRUE(refusal.contains("isn’t a Harbex Clipboard export")) << refusal.toStdString();
    EXPECT_EQ(rig.engine->history()->size(), 3u);

    // The same export read back adds nothing: every copy is already here.
    window->importFrom(path);
    EXPECT_EQ(rig.engine->history()->size(), 3u);

    // A copy deleted since comes back from the file, and the sidebar counts it again.
    ASSERT_TRUE(selectRow("an old note"));
    window->deleteButton()->click();
    ASSERT_EQ(rig.engine->history()->size(), 2u);
    const QString added = window->importFrom(path);
    EXPECT_FALSE(added.isEmpty());
    EXPECT_EQ(rig.engine->history()->size(), 3u);
    EXPECT_TRUE(texts(window->sidebar(), false).contains("All  3"));
}

TEST_F(LibraryWindowTests, ScreenshotIsWrittenToTheBuildFolder) {
    ASSERT_TRUE(selectRow("hello world"));
    window->show();
    QDir dir(QCoreApplication::applicationDirPath());
    while (!dir.exists("CMakeCache.txt") && dir.cdUp()) {
    }
    const QString path = dir.filePath("library.png");
    const QPixmap shot = window->grab();
    ASSERT_TRUE(shot.save(path));
    EXPECT_TRUE(QFileInfo(path).size() > 0);
}

}  // namespace
}  // namespace harbex
