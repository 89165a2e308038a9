#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QPainter>

#include "HarbexClip/App/QtImageCodec.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"

namespace harbex {
namespace {

// A picture with detail, so that encoders cannot shrink it to nothing.
QImage picture(int width, int height, bool transparent) {
    QImage image(width, height, transparent ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    image.fill(transparent ? Qt::transparent : Qt::white);
    QPainter painter(&image);
    for (int i = 0; i < 40; ++i) {
        painter.setPen(QColor::fromHsv((i * 37) % 360, 200, 200));
        painter.drawLine(0, i * height / 40, width, height - i * height / 40);
        painter.drawEllipse(QPoint(i * width / 40, height / 2), width / 10, height / 10);
    }
    return image;
}

// A photograph-like picture: smooth colour with grain, where JPEG beats PNG as it does on photos.
QImage photo(int width, int height, bool transparent) {
    QImage image(width, height, QImage::Format_ARGB32);
    std::uint32_t seed = 12345;
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            seed = seed * 1664525u + 1013904223u;
            const int grain = int(seed >> 27);
            const int alpha = transparent ? (x * 255 / width) : 255;
            line[x] = qRgba(x * 200 / width + grain, y * 200 / height + grain, 120 + grain, alpha);
        }
    }
    return transparent ? image : image.convertToFormat(QImage::Format_RGB32);
}

Bytes encoded(const QImage& image, const char* format, int quality = -1) {
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format, quality));
    return Bytes(out.begin(), out.end());
}

QImage decoded(const Bytes& data) {
    return QImage::fromData(reinterpret_cast<const uchar*>(data.data()), int(data.size()));
}

TEST(QtImageCodecTests, ReadsTheSizeOfEachSupportedTypeAndRefusesDamage) {
    const QImage image = picture(321, 123, false);
    struct Case {
        const char* name;
        Bytes data;
        std::string_view type;
        std::optional<ImageSize> size;
    };
    Bytes png = encoded(image, "png");
    Bytes truncatedHeader(png.begin(), png.begin() + 12);
    const Case cases[] = {
        {"png", png, kPngType, ImageSize{321, 123}},
        {"tiff", encoded(image, "tiff"), kTiffType, ImageSize{321, 123}},
        {"jpeg", encoded(image, "jpeg"), kJpegType, ImageSize{321, 123}},
        {"png bytes declared as tiff", png, kTiffType, ImageSize{321, 123}},
        {"empty", {}, kPngType, std::nullopt},
        {"text", bytesOf("not an image at all"), kPngType, std::nullopt},
        {"cut inside the header", truncatedHeader, kPngType, std::nullopt},
    };
    QtImageCodec codec;
    for (const Case& c : cases) {
        EXPECT_EQ(codec.imageSize(c.data, c.type), c.size) << c.name;
        if (!c.size) {
            EXPECT_FALSE(codec.thumbnail(c.data, c.type, 256)) << c.name;
            EXPECT_FALSE(codec.compressedCopy(c.data, c.type)) << c.name;
        }
    }
}

TEST(QtImageCodecTests, ThumbnailsArePngsWithTheLongerSideLimitedAndTheShapeKept) {
    struct Case {
        int width, height;
        double maximumSide;
        int expectedWidth, expectedHeight;
    };
    const Case cases[] = {
        {1000, 500, 256, 256, 128},  // wide
        {300, 1200, 256, 64, 256},   // tall
        {100, 60, 256, 100, 60},     // small images are never enlarged
        {5000, 3, 256, 256, 1},      // a hairline keeps at least one pixel
    };
    QtImageCodec codec;
    for (const Case& c : cases) {
        const Bytes source = encoded(picture(c.width, c.height, false), "png");
        auto thumbnail = codec.thumbnail(source, kPngType, c.maximumSide);
        ASSERT_TRUE(thumbnail) << c.width << "x" << c.height;
        ASSERT_GE(thumbnail->size(), 8u);
        EXPECT_EQ(Bytes(thumbnail->begin(), thumbnail->begin() + 4), (Bytes{0x89, 'P', 'N', 'G'}));
        const QImage back = decoded(*thumbnail);
        EXPECT_EQ(back.width(), c.expectedWidth) << c.width << "x" << c.height;
        EXPECT_EQ(back.height(), c.expectedHeight) << c.width << "x" << c.height;
    }
}

TEST(QtImageCodecTests, CompressedCopiesFollowTheKeepingChoiceAndNeverGrow) {
    const QImage opaque = photo(640, 480, false);
    const QImage transparent = photo(640, 480, true);
    QImage opaqueWithAlpha = opaque.convertToFormat(QImage::Format_ARGB32);
    struct Case {
        const char* name;
        ClipImageKeeping keeping;
        Bytes data;
        std::string_view type;
        std::optional<std::string_view> expectedType;  // nothing: keep the original
    };
    const Case cases[] = {
        {"tiff kept losslessly as png", ClipImageKeeping::original, encoded(opaque, "tiff"),
         kTiffType, kPngType},
        {"png kept as it is", ClipImageKeeping::original, encoded(opaque, "png"), kPngType,
         std::nullopt},
        {"opaque png compressed to jpeg", ClipImageKeeping::compressed, encoded(opaque, "png"),
         kPngType, kJpegType},
        {"opaque pixels in an alpha format still become jpeg", ClipImageKeeping::compressed,
         encoded(opaqueWithAlpha, "png"), kPngType, kJpegType},
        {"transparency stays png", ClipImageKeeping::compressed, encoded(transparent, "tiff"),
         kTiffType, kPngType},
        {"jpeg is never re-encoded", ClipImageKeeping::compressed, encoded(opaque, "jpeg", 95),
         kJpegType, std::nullopt},
    };
    QtImageCodec codec;
    for (const Case& c : cases) {
        codec.setKeeping(c.keeping);
        auto copy = codec.compressedCopy(c.data, c.type);
        if (!c.expectedType) {
            EXPECT_FALSE(copy) << c.name;
            continue;
        }
        ASSERT_TRUE(copy) << c.name;
        EXPECT_EQ(copy->type, *c.expectedType) << c.name;
        EXPECT_LT(copy->data.size(), c.data.size()) << c.name;
        const QImage back = decoded(copy->data);
        EXPECT_EQ(back.size(), QSize(640, 480)) << c.name;
        if (c.expectedType == kPngType) {
            // Lossless means every pixel comes back.
            const QImage source = decoded(c.data).convertToFormat(QImage::Format_ARGB32);
            EXPECT_EQ(back.convertToFormat(QImage::Format_ARGB32), source) << c.name;
        }
    }
}

}  // namespace
}  // namespace harbex
