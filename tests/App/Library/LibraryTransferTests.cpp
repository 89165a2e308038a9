#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <future>

#include "tests/App/Library/LibraryTestWindow.hpp"

namespace harbex {
namespace {

using namespace librarywindowtest;
using testing::EngineRig;

// An image copy put straight into the history, so that an export has image bytes to read.
ClipItem imageCopy(Date date) {
    ClipContent content;
    content.kind = ClipKind::image;
    content.image = ClipImageInfo{"public.png", 40, 30, 120, "picture-1"};
    return ClipItem::make(content, {}, ClipSource{"org.gnome.Screenshot", "Screenshot"}, date,
                          ClipSensitivity::ordinary);
}

class LibraryTransferTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ensureApplication(); }

    void SetUp() override {
        ClipEngine& engine = rig.start();
        engine.sample();
        for (const char* text : {"first copy", "second copy", "third copy"}) {
            rig.clock.advance(30);
            rig.copyAndSample(text);
        }
        ClipLibrary library = engine.library();
        library.items.push_back(imageCopy(rig.clock.now() - 3600));
        ASSERT_TRUE(engine.adoptImport(library, {}));
    }

    std::unique_ptr<LibraryWindow> makeWindow(ClipImageReader readImage) {
        LibraryWindowServices services = servicesFor(rig);
        services.readImage = std::move(readImage);
        services.storeImage = [this](const ClipExportImage& image) {
            storedImages.push_back(image.digest);
            return true;
        };
        return std::make_unique<LibraryWindow>(std::move(services));
    }

    static std::optional<Bytes> pictureBytes(const ClipImageInfo&) {
        return Bytes{0x89, 'P', 'N', 'G', 1, 2, 3};
    }

    EngineRig rig;
    QTemporaryDir folder;
    std::vector<std::string> storedImages;
};

TEST_F(LibraryTransferTests, ExportAndImportRoundTripTellingTheirProgress) {
    auto window = makeWindow(pictureBytes);
    const QString path = folder.filePath("copies.json");
    std::vector<int> told;
    QObject::connect(window.get(), &LibraryWindow::transferProgress,
                     [&](int permille) { told.push_back(permille); });
    ASSERT_TRUE(window->startExport(path));
    EXPECT_TRUE(window->isTransferring());
    EXPECT_EQ(waitForTransfer(*window), "Exported to “copies.json”");
    EXPECT_FALSE(window->isTransferring());
    EXPECT_TRUE(QFile::exists(path));
    ASSERT_FALSE(told.empty());
    EXPECT_TRUE(std::ranges::is_sorted(told));
    EXPECT_EQ(told.back(), 1000);

    // Two copies deleted since come back from the file with the image's bytes.
    const std::vector<ClipItem> before = rig.engine->history().get();
    ASSERT_TRUE(rig.engine->remove(before.back().id));
    ASSERT_TRUE(rig.engine->remove(before.front().id));
    told.clear();
    ASSERT_TRUE(window->startImport(path));
    EXPECT_EQ(waitForTransfer(*window), "Added 2 copies; 2 were here already");
    EXPECT_EQ(rig.engine->history()->size(), before.size());
    EXPECT_EQ(storedImages, std::vector<std::string>{"picture-1"});
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.back(), 1000);
    EXPECT_TRUE(sidebarRows(*window).contains("All  4"));
}

TEST_F(LibraryTransferTests, AStoppedExportLeavesNoFileBehind) {
    // The export waits inside its first image read until the test has pressed Stop.
    std::promise<void> reading;
    std::promise<void> stopped;
    std::shared_future<void> carryOn = stopped.get_future().share();
    auto window = makeWindow([&reading, carryOn](const ClipImageInfo& info) {
        reading.set_value();
        carryOn.wait();
        return pictureBytes(info);
    });
    const QString path = folder.filePath("copies.json");
    ASSERT_TRUE(window->startExport(path));
    reading.get_future().wait();
    EXPECT_FALSE(window->startExport(folder.filePath("other.json"))) << "one at a time";
    ASSERT_TRUE(window->progressDialog());
    emit window->progressDialog()->canceled();  // as the Stop button does
    stopped.set_value();
    EXPECT_EQ(waitForTransfer(*window), "The export was stopped.");
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_TRUE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).isEmpty())
        << QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).join(',').toStdString();
}

TEST_F(LibraryTransferTests, ImportFailuresShowTheModelsSentenceAndChangeNothing) {
    auto window = makeWindow(pictureBytes);
    const QString damaged = folder.filePath("damaged.json");
    QFile bad(damaged);
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("{ not json");
    bad.close();
    const struct {
        QString path;
        QString start;
    } cases[] = {
        {damaged, "This file can’t be imported: it isn’t a Harbex Clipboard export."},
        {folder.filePath("missing.json"), "The file couldn’t be read: "},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(window->startImport(c.path));
        const QString message = waitForTransfer(*window);
        EXPECT_TRUE(message.startsWith(c.start)) << message.toStdString();
        EXPECT_EQ(window->messageLabel()->text(), message);
        EXPECT_EQ(rig.engine->history()->size(), 4u);
    }
}

}  // namespace
}  // namespace harbex
