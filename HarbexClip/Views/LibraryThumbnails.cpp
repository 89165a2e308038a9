#include "HarbexClip/Views/LibraryThumbnails.hpp"

#include <QMetaObject>

namespace harbex {

namespace {
// Images decoded at their thumbnail size cost at most 256 KiB each.
constexpr int kCacheImages = 600;
}  // namespace

LibraryThumbnails::LibraryThumbnails(ThumbnailReader read, QObject* parent)
    : QObject(parent), read_(std::move(read)), cache_(kCacheImages) {
    pool_.setMaxThreadCount(2);
}

LibraryThumbnails::~LibraryThumbnails() {
    *alive_ = false;
    pool_.clear();
    pool_.waitForDone();
}

std::optional<QImage> LibraryThumbnails::image(const ClipImageInfo& info) {
    const QString digest = QString::fromStdString(info.digest);
    if (const QImage* cached = cache_.object(digest)) return *cached;
    if (failed_.contains(digest) || pending_.contains(digest) || !read_) return std::nullopt;
    pending_.insert(digest);
    // The destructor waits for the pool, so `this` outlives every read; a result posted after
    // destruction is dropped with the object's events.
    pool_.start([this, read = read_, info, digest, alive = alive_] {
        QImage image;
        if (std::optional<Bytes> bytes = read(info)) {
            image.loadFromData(QByteArray(reinterpret_cast<const char*>(bytes->data()),
                                          static_cast<qsizetype>(bytes->size())));
        }
        if (!*alive) return;
        QMetaObject::invokeMethod(
            this, [this, digest, image] { arrived(digest, image); }, Qt::QueuedConnection);
    });
    return std::nullopt;
}

void LibraryThumbnails::arrived(const QString& digest, const QImage& image) {
    pending_.remove(digest);
    if (image.isNull()) {
        failed_.insert(digest);
        return;
    }
    const qsizetype cost = std::max<qsizetype>(1, image.sizeInBytes() / (256 * 1024));
    cache_.insert(digest, new QImage(image), cost);
    emit ready(digest);
}

void LibraryThumbnails::waitForReads() { pool_.waitForDone(); }

}  // namespace harbex
