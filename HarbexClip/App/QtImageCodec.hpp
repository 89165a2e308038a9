#pragma once

#include <atomic>

#include "HarbexClipCore/Capture/ClipImageCodec.hpp"
#include "HarbexClipCore/Settings/ClipSettingsChoices.hpp"

namespace harbex {

// Image work for capture over QImage: no QGuiApplication is needed. Thread: any; calls share no
// state beyond the keeping choice, which the main thread may change while a capture runs.
class QtImageCodec final : public ClipImageCodec {
public:
    // JPEG quality of a compressed copy: small, and without visible artefacts on screenshots.
    static constexpr int kJpegQuality = 85;

    explicit QtImageCodec(ClipImageKeeping keeping = ClipImageKeeping::original)
        : keeping_(keeping) {}

    // `original` offers only lossless re-encodings (an uncompressed TIFF as PNG); `compressed`
    // also offers JPEG for opaque images. Follows the `keepsImages` setting.
    void setKeeping(ClipImageKeeping keeping) { keeping_.store(keeping); }
    ClipImageKeeping keeping() const { return keeping_.load(); }

    std::optional<ImageSize> imageSize(const Bytes& data, std::string_view type) const override;
    std::optional<Bytes> thumbnail(const Bytes& data, std::string_view type,
                                   double maximumSide) const override;
    std::optional<EncodedImage> compressedCopy(const Bytes& data,
                                               std::string_view type) const override;

private:
    std::atomic<ClipImageKeeping> keeping_;
};

}  // namespace harbex
