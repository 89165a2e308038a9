#pragma once

#include <QCache>
#include <QImage>
#include <QPixmap>
#include <QString>

#include <string>

#include "HarbexClip/Views/ClipPanelServices.hpp"

namespace harbex {

// The pictures the panel's rows and preview draw: application icons and image thumbnails,
// loaded the first time a row is painted and kept in a bounded cache, made for the screen's
// device-pixel ratio so they stay sharp on dense screens. A copy without a stored picture is
// remembered as such and not looked up again. Main thread.
class ClipPanelImages {
public:
    // `services` is copied.
    explicit ClipPanelImages(ClipPanelServices services);

    // The application's icon, `side` logical pixels square; a null pixmap when it has none.
    QPixmap appIcon(const std::string& appID, int side, qreal ratio);
    // The image copy's thumbnail scaled to cover a `side` square, cropped to it; null when the
    // thumbnail is missing or unreadable.
    QPixmap thumbnail(const std::string& digest, int side, qreal ratio);
    // The stored image for the preview, or its thumbnail when the image cannot be read.
    QImage previewImage(const std::string& digest);

    // Lookups that reached the services (tests count them to see the cache work).
    int loads() const { return loads_; }

private:
    ClipPanelServices services_;
    QCache<QString, QPixmap> pixmaps_;
    QCache<QString, QImage> thumbnails_;
    int loads_ = 0;
};

}  // namespace harbex
