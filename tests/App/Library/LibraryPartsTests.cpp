#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <atomic>

#include "HarbexClip/Views/LibraryAppIcons.hpp"
#include "HarbexClip/Views/LibraryGlyphs.hpp"
#include "HarbexClip/Views/LibraryThumbnails.hpp"
#include "tests/App/Library/LibraryTestWindow.hpp"

namespace harbex {
namespace {

Bytes pngOf(QSize size, QColor color) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color);
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return Bytes(data.begin(), data.end());
}

ClipImageInfo infoFor(const std::string& digest) { return {"public.png", 0, 0, 0, digest}; }

class LibraryThumbnailsTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { librarywindowtest::ensureApplication(); }
};

TEST_F(LibraryThumbnailsTests, ThumbnailsArriveOffTheMainThreadAndFailuresAreNotAskedAgain) {
    struct Case {
        std::string digest;
        std::optional<Bytes> stored;
        std::optional<QSize> decoded;  // none: the read fails for good
    };
    const std::vector<Case> cases{
        {"good", pngOf({48, 32}, Qt::red), QSize(48, 32)},
        {"garbage", Bytes{1, 2, 3, 4}, std::nullopt},
        {"missing", std::nullopt, std::nullopt},
    };
    std::atomic<int> reads = 0;
    LibraryThumbnails thumbnails([&](const ClipImageInfo& info) -> std::optional<Bytes> {
        ++reads;
        for (const Case& c : cases) {
            if (c.digest == info.digest) return c.stored;
        }
        return std::nullopt;
    });
    QStringList ready;
    QObject::connect(&thumbnails, &LibraryThumbnails::ready,
                     [&](const QString& digest) { ready << digest; });
    for (const Case& c : cases) {
        EXPECT_FALSE(thumbnails.image(infoFor(c.digest))) << "not read yet: " << c.digest;
        EXPECT_FALSE(thumbnails.image(infoFor(c.digest))) << "asked twice, read once";
    }
    thumbnails.waitForReads();
    QCoreApplication::processEvents();
    EXPECT_EQ(reads.load(), 3);
    for (const Case& c : cases) {
        const std::optional<QImage> image = thumbnails.image(infoFor(c.digest));
        EXPECT_EQ(image.has_value(), c.decoded.has_value()) << c.digest;
        if (image) {
            EXPECT_EQ(image->size(), *c.decoded);
        }
    }
    thumbnails.waitForReads();
    EXPECT_EQ(reads.load(), 3) << "failed reads are remembered";
    EXPECT_EQ(ready, QStringList{"good"});
}

TEST_F(LibraryThumbnailsTests, AppIconsComeFromTheDesktopEntryOrStayEmpty) {
    QTemporaryDir folder;
    const QString iconPath = folder.filePath("editor.png");
    {
        const Bytes png = pngOf({32, 32}, Qt::blue);
        QFile file(iconPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(png.data()), qint64(png.size()));
    }
    const std::string text =
        "[Desktop Entry]\nType=Application\nName=Editor\nIcon=" + iconPath.toStdString() + "\n";
    const std::optional<DesktopEntry> parsed =
        DesktopEntries::parse("org.example.editor", text, "C");
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->icon, iconPath.toStdString());

    int lookups = 0;
    LibraryAppIcons icons([&](const std::string& id) -> std::optional<DesktopEntry> {
        ++lookups;
        if (id == "org.example.editor") return parsed;
        if (id == "org.example.moved") return DesktopEntry{id, "Moved", "", "/no/such/icon.png"};
        return std::nullopt;
    });
    const std::pair<std::string, bool> cases[] = {
        {"org.example.editor", true},
        {"org.example.moved", false},
        {"org.example.unknown-app-without-icon", false},
        {"", false},
    };
    for (const auto& [id, found] : cases) {
        EXPECT_EQ(!icons.icon(id).isNull(), found) << id;
        EXPECT_EQ(!icons.icon(id).isNull(), found) << id;
    }
    EXPECT_EQ(lookups, 3) << "one lookup per id; none for an empty id";
}

TEST_F(LibraryThumbnailsTests, PaintedIconsAreDrawnAtTheScreensDensity) {
    const QIcon icons[] = {LibraryGlyphs::kindIcon(ClipKind::link),
                           LibraryGlyphs::boardIcon("green", "star"),
                           LibraryGlyphs::markIcon(LibraryGlyphs::Mark::today, Qt::black)};
    for (const QIcon& icon : icons) {
        for (const qreal ratio : {1.0, 2.0, 3.0}) {
            const QPixmap pixmap = icon.pixmap(QSize(18, 18), ratio);
            EXPECT_EQ(pixmap.devicePixelRatio(), ratio);
            EXPECT_EQ(pixmap.size(), QSize(18, 18) * ratio);
            // Something was drawn, not an empty square.
            const QImage image = pixmap.toImage();
            int inked = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) inked += qAlpha(image.pixel(x, y)) > 0;
            }
            EXPECT_GT(inked, image.width() * image.height() / 20) << ratio;
        }
    }
}

}  // namespace
}  // namespace harbex
