#include <gtest/gtest.h>

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

#include "HarbexClip/Views/LibraryListModel.hpp"
#include "tests/App/Library/LibraryTestWindow.hpp"

namespace harbex {
namespace {

using namespace librarywindowtest;
using testing::EngineRig;

// A picture for each image copy, drawn so that thumbnails look like real ones.
Bytes pictureFor(const std::string& digest) {
    QImage image(320, 200, QImage::Format_ARGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 200);
    if (digest == "sunset") {
        sky.setColorAt(0, QColor(0x2b, 0x1e, 0x5a));
        sky.setColorAt(0.6, QColor(0xf2, 0x7a, 0x3c));
        sky.setColorAt(1, QColor(0xfb, 0xd1, 0x6b));
    } else {
        sky.setColorAt(0, QColor(0x7f, 0xb8, 0xf0));
        sky.setColorAt(1, QColor(0xe8, 0xf3, 0xfb));
    }
    painter.fillRect(image.rect(), sky);
    painter.setPen(Qt::NoPen);
    painter.setBrush(digest == "sunset" ? QColor(0xff, 0xe0, 0x8a) : QColor(Qt::white));
    painter.drawEllipse(QPointF(220, 80), 28, 28);
    painter.setBrush(digest == "sunset" ? QColor(0x1c, 0x14, 0x38) : QColor(0x3d, 0x6b, 0x4f));
    painter.drawPolygon(QPolygonF{QPointF(0, 200), QPointF(90, 90), QPointF(160, 150),
                                  QPointF(230, 110), QPointF(320, 200)});
    painter.end();
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return Bytes(data.begin(), data.end());
}

ClipItem copyOf(ClipContent content, Date date, const char* app, const char* name,
                ClipSensitivity sensitivity = ClipSensitivity::ordinary) {
    return ClipItem::make(std::move(content), {}, ClipSource{app, name}, date, sensitivity);
}

ClipContent text(std::string body, ClipKind kind = ClipKind::text) {
    ClipContent content;
    content.kind = kind;
    content.text = std::move(body);
    return content;
}

class LibraryScreenshotTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ensureApplication(); }

    // A varied history dated around the real now, so the times and day headings read true.
    void SetUp() override {
        rig.clock.set(Date::fromUnix(double(QDateTime::currentSecsSinceEpoch())));
        ClipEngine& engine = rig.start();
        engine.sample();
        const Date now = rig.clock.now();
        const Date day = Date{86400};
        ClipLibrary library;
        auto add = [&](ClipItem item) { library.items.push_back(std::move(item)); };
        add(copyOf(text("Ship the library window on Friday, then polish the grid and the export "
                        "progress."),
                   Date{now.seconds - 120}, "org.gnome.TextEditor", "Text Editor"));
        ClipContent link = text("https://www.example.org/articles/keeping-a-clipboard-history");
        link.kind = ClipKind::link;
        link.linkTitle = "Keeping a clipboard history";
        add(copyOf(link, Date{now.seconds - 600}, "firefox", "Firefox"));
        ClipContent sunset;
        sunset.kind = ClipKind::image;
        sunset.image = ClipImageInfo{"public.png", 1920, 1200, 2400000, "sunset"};
        add(copyOf(sunset, Date{now.seconds - 900}, "org.gnome.Screenshot", "Screenshot"));
        ClipContent blue = text("#3478F6");
        blue.kind = ClipKind::color;
        blue.colorHex = "#3478F6";
        add(copyOf(blue, Date{now.seconds - 1500}, "org.inkscape.Inkscape", "Inkscape"));
        add(copyOf(text("for (const auto& item : items) {\n    render(item);\n}", ClipKind::code),
                   Date{now.seconds - 2400}, "org.gnome.Terminal", "Terminal"));
        add(copyOf(text("4111 1111 1111 1111"), Date{now.seconds - 3000}, "firefox", "Firefox",
                   ClipSensitivity::sensitive));
        ClipContent files;
        files.kind = ClipKind::file;
        files.filePaths = std::vector<std::string>{"/home/ana/Documents/Quarterly report.pdf"};
        add(copyOf(files, Date{now.seconds - day.seconds - 200}, "org.gnome.Nautilus", "Files"));
        ClipContent hills;
        hills.kind = ClipKind::image;
        hills.image = ClipImageInfo{"public.png", 1280, 800, 900000, "hills"};
        add(copyOf(hills, Date{now.seconds - day.seconds - 900}, "org.gnome.Screenshot",
                   "Screenshot"));
        ClipContent coral = text("#F25C54");
        coral.kind = ClipKind::color;
        coral.colorHex = "#F25C54";
        add(copyOf(coral, Date{now.seconds - day.seconds - 4000}, "org.inkscape.Inkscape",
                   "Inkscape"));
        add(copyOf(text("Dear Sam,\nthank you for the notes on the draft. I have folded them in "
                        "and sent the new version round."),
                   Date{now.seconds - 4 * day.seconds}, "org.gnome.Evolution", "Evolution"));
        add(copyOf(text("ana@example.org"), Date{now.seconds - 9 * day.seconds}, "firefox",
                   "Firefox"));
        library.pinboards = {
            {Uuid::random(),
             "Work",
             "blue",
             "briefcase",
             {library.items[0].id, library.items[6].id}},
            {Uuid::random(), "Recipes", "green", "heart", {}},
            {Uuid::random(),
             "Design",
             "purple",
             "star",
             {library.items[3].id, library.items[8].id, library.items[2].id}},
        };
        ASSERT_TRUE(engine.adoptImport(library, {}));
        ASSERT_TRUE(engine.pin(library.items[1].id));

        LibraryWindowServices services = servicesFor(rig);
        services.calendar = Calendar();
        services.now = [] { return Date::fromUnix(double(QDateTime::currentSecsSinceEpoch())); };
        services.readThumbnail = [](const ClipImageInfo& info) -> std::optional<Bytes> {
            return pictureFor(info.digest);
        };
        window = std::make_unique<LibraryWindow>(std::move(services));
        window->resize(1180, 720);
        window->show();
    }

    // Waits for the thumbnails on screen, then writes the window into the build folder.
    QString shoot(const QString& name) {
        QCoreApplication::processEvents();
        window->list()->viewport()->repaint();
        window->thumbnails().waitForReads();
        QCoreApplication::processEvents();
        const QString path = QDir(HARBEX_BINARY_DIR).filePath(name);
        EXPECT_TRUE(window->grab().save(path)) << path.toStdString();
        return path;
    }

    EngineRig rig;
    std::unique_ptr<LibraryWindow> window;
};

TEST_F(LibraryScreenshotTests, ListGridAndDarkScreenshotsAreWrittenToTheBuildFolder) {
    ASSERT_TRUE(window->selectCopy(rig.engine->history()->at(1).id));
    const QString list = shoot("library-list.png");

    window->gridButton()->click();
    ASSERT_TRUE(window->selectCopy(rig.engine->history()->at(2).id));
    const QString grid = shoot("library-grid.png");

    ClipSettings settings = rig.engine->settings().get();
    settings.window.appearance = ClipAppearance::dark;
    rig.engine->updateSettings(settings);
    EXPECT_LT(window->palette().color(QPalette::Base).lightnessF(), 0.3);
    const QString dark = shoot("library-dark.png");

    window->listButton()->click();
    ASSERT_TRUE(
        window->showSection(ClipLibrarySection::pinboard(rig.engine->pinboards()->at(2).id)));
    const QString board = shoot("library-dark-board.png");

    for (const QString& path : {list, grid, dark, board}) {
        const QImage shot(path);
        ASSERT_FALSE(shot.isNull()) << path.toStdString();
        EXPECT_EQ(shot.size(), window->size() * window->devicePixelRatio());
    }
}

TEST_F(LibraryScreenshotTests, TheProblemStripReadsInLightAndDark) {
    struct Case {
        ClipAppearance appearance;
        ProblemBanner::Shade shade;
        const char* name;
    };
    const Case cases[] = {
        {ClipAppearance::light, ProblemBanner::Shade::light, "library-problem-light.png"},
        {ClipAppearance::dark, ProblemBanner::Shade::dark, "library-problem-dark.png"},
    };
    // As the engine words a failed save.
    rig.engine->problem().set(std::string(
        "Harbex Clipboard couldn’t save its history: couldn’t write "
        "“/home/sam/.local/share/Harbex Clipboard/History.sealed”: No space left on device"));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ClipSettings settings = rig.engine->settings().get();
        settings.window.appearance = c.appearance;
        rig.engine->updateSettings(settings);
        ProblemBanner* strip = window->problemLabel();
        ASSERT_TRUE(strip->isVisible());
        EXPECT_EQ(strip->shade(), c.shade);
        const QImage shot(shoot(c.name));
        ASSERT_FALSE(shot.isNull());
        const qreal ratio = window->devicePixelRatio();
        const QPoint inside = strip->mapTo(window.get(), QPoint(3, 3)) * ratio;
        const QColor fill = shot.pixelColor(inside);
        // Light amber on a light window, dark amber on a dark one.
        EXPECT_EQ(fill.lightnessF() > 0.5, c.shade == ProblemBanner::Shade::light);
        EXPECT_GT(fill.red(), fill.blue()) << "amber, not grey";
    }
    rig.engine->problem().set(std::nullopt);
    EXPECT_FALSE(window->problemLabel()->isVisible());
}

}  // namespace
}  // namespace harbex
