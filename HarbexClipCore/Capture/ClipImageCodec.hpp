#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex {

struct ImageSize {
    double width = 0;
    double height = 0;

    bool operator==(const ImageSize&) const = default;
};

// Image bytes re-encoded into another type.
struct EncodedImage {
    std::string type;  // one of kImageTypes
    Bytes data;

    bool operator==(const EncodedImage&) const = default;
};

// The longest side of a thumbnail, in pixels: sharp at twice the panel's preview size.
inline constexpr double kThumbnailMaximumSide = 256;

// Image decoding for detection. `type` is one of the role identifiers of kImageTypes. Every call
// may run on a background thread; implementations keep no shared mutable state. Damaged or
// unsupported data gives nothing, never a crash. Application side: Qt's QImage.
class ClipImageCodec {
public:
    virtual ~ClipImageCodec() = default;

    // Pixel size; nothing when the bytes do not decode.
    virtual std::optional<ImageSize> imageSize(const Bytes& data, std::string_view type) const = 0;

    // A PNG no larger than `maximumSide` on either side, aspect ratio kept; nothing when the
    // bytes do not decode.
    virtual std::optional<Bytes> thumbnail(const Bytes& data, std::string_view type,
                                           double maximumSide) const = 0;

    // A lossless, smaller encoding worth storing instead of the original (an uncompressed TIFF
    // as PNG, say); nothing when the original is as good.
    virtual std::optional<EncodedImage> compressedCopy(const Bytes& data,
                                                       std::string_view type) const = 0;
};

// The size of a thumbnail of an image of `size`: the longer side becomes `maximumSide` (never
// enlarged), the other follows, at least one pixel.
ImageSize thumbnailSize(ImageSize size, double maximumSide);

}  // namespace harbex
