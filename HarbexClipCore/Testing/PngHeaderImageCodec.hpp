#pragma once

#include <optional>

#include "HarbexClipCore/Capture/ClipImageCodec.hpp"

namespace harbex {

// An image codec for tests that understands only the header of a PNG: the size comes from the
// IHDR chunk, and the "thumbnail" is a tiny PNG header of the scaled size, so tests can check
// what was asked for without decoding pixels. Every other type, and any damaged header, does not
// decode. A compressed copy is offered only when a test sets one.
class PngHeaderImageCodec final : public ClipImageCodec {
public:
    std::optional<ImageSize> imageSize(const Bytes& data, std::string_view type) const override;
    std::optional<Bytes> thumbnail(const Bytes& data, std::string_view type,
                                   double maximumSide) const override;
    std::optional<EncodedImage> compressedCopy(const Bytes& data,
                                               std::string_view type) const override;

    // What compressedCopy returns from now on (for any decodable input).
    void setCompressedCopy(std::optional<EncodedImage> copy) { compressed_ = std::move(copy); }

    // The smallest PNG header that this codec (and a real decoder's size query) reads as an image
    // of the given size: signature and IHDR chunk, CRC included.
    static Bytes pngHeader(std::uint32_t width, std::uint32_t height);

private:
    std::optional<EncodedImage> compressed_;
};

}  // namespace harbex
