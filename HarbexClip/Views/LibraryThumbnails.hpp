#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QPixmap>
#include <QSet>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <optional>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex {

// Reads the stored thumbnail of an image copy (the full image when it has none); nothing when
// neither is there. Called on a worker thread.
using ThumbnailReader = std::function<std::optional<Bytes>(const ClipImageInfo&)>;

// Image thumbnails for the library's rows and tiles, read and decoded on a worker so that
// scrolling never waits for a file, and kept in a bounded cache. `ready` says when a
// thumbnail asked for earlier has arrived; a failed one is remembered and not asked again.
// Main thread (the workers only read and decode).
class LibraryThumbnails final : public QObject {
    Q_OBJECT

public:
    explicit LibraryThumbnails(ThumbnailReader read, QObject* parent = nullptr);
    ~LibraryThumbnails() override;

    // The decoded thumbnail, or nothing yet (a read is started) or ever (it failed).
    std::optional<QImage> image(const ClipImageInfo& info);
    // Waits for reads under way; for tests and shutting down.
    void waitForReads();

signals:
    void ready(const QString& digest);

private:
    void arrived(const QString& digest, const QImage& image);

    ThumbnailReader read_;
    QCache<QString, QImage> cache_;
    QSet<QString> pending_;
    QSet<QString> failed_;
    QThreadPool pool_;
    // Shared with the workers so a late result after destruction is dropped.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace harbex
