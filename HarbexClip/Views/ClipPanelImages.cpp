#include "HarbexClip/Views/ClipPanelImages.hpp"

#include <QIcon>
#include <QPainter>

#include <cmath>

namespace harbex {

namespace {

// About 24 MB of pixmaps: a few screens of rows at twice the density.
constexpr int kPixmapBudget = 24 * 1024 * 1024;
constexpr int kThumbnailCount = 400;

QString keyOf(const char* kind, const std::string& name, int side, qreal ratio) {
    return QString::fromLatin1(kind) + QString::number(side) + "@" + QString::number(ratio) + "/" +
           QString::fromStdString(name);
}

QImage decoded(const std::optional<Bytes>& bytes) {
    if (!bytes || bytes->empty()) return {};
    QImage image;
    image.loadFromData(reinterpret_cast<const uchar*>(bytes->data()),
                       static_cast<int>(bytes->size()));
    return image;
}

int costOf(const QPixmap& pixmap) { return std::max(1, pixmap.width() * pixmap.height() * 4); }

}  // namespace

ClipPanelImages::ClipPanelImages(ClipPanelServices services) : services_(std::move(services)) {
    pixmaps_.setMaxCost(kPixmapBudget);
    thumbnails_.setMaxCost(kThumbnailCount);
}

QPixmap ClipPanelImages::appIcon(const std::string& appID, int side, qreal ratio) {
    const QString key = keyOf("app", appID, side, ratio);
    if (const QPixmap* cached = pixmaps_.object(key)) return *cached;
    ++loads_;
    QIcon icon;
    const std::optional<std::string> name =
        services_.appIconName ? services_.appIconName(appID) : std::nullopt;
    if (name && !name->empty()) {
        const QString text = QString::fromStdString(*name);
        icon = text.startsWith('/') ? QIcon(text) : QIcon::fromTheme(text);
    }
    // Many desktop ids are also icon names ("firefox", "org.gnome.TextEditor").
    if (icon.isNull()) icon = QIcon::fromTheme(QString::fromStdString(appID));
    QPixmap pixmap;
    if (!icon.isNull()) {
        const int pixels = static_cast<int>(std::ceil(side * ratio));
        pixmap = icon.pixmap(QSize(pixels, pixels), QIcon::Normal, QIcon::On);
        if (!pixmap.isNull() && pixmap.width() != pixels) {
            pixmap = pixmap.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        }
        pixmap.setDevicePixelRatio(ratio);
    }
    pixmaps_.insert(key, new QPixmap(pixmap), costOf(pixmap));
    return pixmap;
}

QPixmap ClipPanelImages::thumbnail(const std::string& digest, int side, qreal ratio) {
    const QString key = keyOf("thumb", digest, side, ratio);
    if (const QPixmap* cached = pixmaps_.object(key)) return *cached;
    const QString sourceKey = QString::fromStdString(digest);
    QImage* source = thumbnails_.object(sourceKey);
    if (!source) {
        ++loads_;
        QImage image = decoded(services_.readThumbnail ? services_.readThumbnail(digest)
                                                       : std::optional<Bytes>{});
        source = new QImage(std::move(image));
        thumbnails_.insert(sourceKey, source, 1);
    }
    QPixmap pixmap;
    if (!source->isNull()) {
        const int pixels = static_cast<int>(std::ceil(side * ratio));
        const QImage cover = source->scaled(pixels, pixels, Qt::KeepAspectRatioByExpanding,
                                            Qt::SmoothTransformation);
        const QRect crop((cover.width() - pixels) / 2, (cover.height() - pixels) / 2, pixels,
                         pixels);
        pixmap = QPixmap::fromImage(cover.copy(crop));
        pixmap.setDevicePixelRatio(ratio);
    }
    pixmaps_.insert(key, new QPixmap(pixmap), costOf(pixmap));
    return pixmap;
}

QImage ClipPanelImages::previewImage(const std::string& digest) {
    ++loads_;
    QImage image =
        decoded(services_.readImage ? services_.readImage(digest) : std::optional<Bytes>{});
    if (!image.isNull()) return image;
    return decoded(services_.readThumbnail ? services_.readThumbnail(digest)
                                           : std::optional<Bytes>{});
}

}  // namespace harbex
