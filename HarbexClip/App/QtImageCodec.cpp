#include "HarbexClip/App/QtImageCodec.hpp"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>

#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"

namespace harbex {

namespace {

// Qt's format name for a role identifier; an empty name lets Qt guess from the bytes.
QByteArray qtFormat(std::string_view type) {
    if (type == kPngType) return "png";
    if (type == kTiffType) return "tiff";
    if (type == kJpegType) return "jpeg";
    return {};  // HEIC has no plug-in here: the bytes decide, and usually fail cleanly
}

QByteArray wrap(const Bytes& data) {
    // Deep copy: a raw-data QByteArray must not outlive `data`, and readers may keep it.
    return QByteArray(reinterpret_cast<const char*>(data.data()), qsizetype(data.size()));
}

// Reading is bounded: a forged header must not make us allocate gigabytes.
constexpr int kMaximumAllocationMegabytes = 512;

std::optional<QImage> decode(const Bytes& data, std::string_view type) {
    if (data.empty()) return std::nullopt;
    QImageReader::setAllocationLimit(kMaximumAllocationMegabytes);
    QByteArray bytes = wrap(data);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, qtFormat(type));
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull()) return std::nullopt;
    return image;
}

std::optional<Bytes> encode(const QImage& image, const char* format, int quality) {
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    if (!writer.write(image) || out.isEmpty()) return std::nullopt;
    return Bytes(out.begin(), out.end());
}

// Whether any pixel is see-through: screenshots often come as ARGB with every pixel opaque, and
// those may still become a JPEG.
bool hasTransparency(const QImage& image) {
    if (!image.hasAlphaChannel()) return false;
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < argb.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x) {
            if (qAlpha(line[x]) != 255) return true;
        }
    }
    return false;
}

}  // namespace

std::optional<ImageSize> QtImageCodec::imageSize(const Bytes& data, std::string_view type) const {
    if (data.empty()) return std::nullopt;
    QByteArray bytes = wrap(data);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, qtFormat(type));
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    QSize size = reader.size();
    if (size.isValid() && reader.transformation().testFlag(QImageIOHandler::TransformationRotate90))
        size.transpose();
    // A header alone can claim any size; only pixels that decode make an image.
    if (!size.isValid() || size.isEmpty()) {
        auto image = decode(data, type);
        if (!image) return std::nullopt;
        size = image->size();
    } else if (!reader.canRead()) {
        return std::nullopt;
    }
    return ImageSize{double(size.width()), double(size.height())};
}

std::optional<Bytes> QtImageCodec::thumbnail(const Bytes& data, std::string_view type,
                                             double maximumSide) const {
    auto image = decode(data, type);
    if (!image) return std::nullopt;
    ImageSize target =
        thumbnailSize({double(image->width()), double(image->height())}, maximumSide);
    QImage scaled = image->size() == QSize(int(target.width), int(target.height))
                        ? *image
                        : image->scaled(int(target.width), int(target.height),
                                        Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return encode(scaled, "png", -1);
}

std::optional<EncodedImage> QtImageCodec::compressedCopy(const Bytes& data,
                                                         std::string_view type) const {
    // A JPEG is already as small as it sensibly gets; re-encoding only loses detail.
    if (type == kJpegType) return std::nullopt;
    auto image = decode(data, type);
    if (!image) return std::nullopt;

    std::optional<EncodedImage> best;
    auto consider = [&](std::string_view newType, std::optional<Bytes> encoded) {
        if (!encoded || encoded->size() >= data.size()) return;
        if (best && best->data.size() <= encoded->size()) return;
        best = EncodedImage{std::string(newType), std::move(*encoded)};
    };
    if (type != kPngType) consider(kPngType, encode(*image, "png", -1));
    if (keeping() == ClipImageKeeping::compressed && !hasTransparency(*image)) {
        consider(kJpegType,
                 encode(image->convertToFormat(QImage::Format_RGB32), "jpeg", kJpegQuality));
    }
    return best;
}

}  // namespace harbex
