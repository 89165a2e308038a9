#include "HarbexClipCore/Testing/PngHeaderImageCodec.hpp"

#include <array>
#include <cmath>

#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"

namespace harbex {
namespace {

constexpr std::array<std::uint8_t, 8> kSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

std::uint32_t readBigEndian(const Bytes& data, std::size_t offset) {
    return std::uint32_t(data[offset]) << 24 | std::uint32_t(data[offset + 1]) << 16 |
           std::uint32_t(data[offset + 2]) << 8 | std::uint32_t(data[offset + 3]);
}

void appendBigEndian(Bytes& data, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) data.push_back(std::uint8_t(value >> shift));
}

std::uint32_t crc32(const std::uint8_t* bytes, std::size_t count) {
    std::uint32_t crc = 0xFFFFFFFFu;
    for (std::size_t i = 0; i < count; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return crc ^ 0xFFFFFFFFu;
}

}  // namespace

std::optional<ImageSize> PngHeaderImageCodec::imageSize(const Bytes& data,
                                                        std::string_view type) const {
    // Signature (8), chunk length (4), "IHDR" (4), width (4), height (4).
    if (type != kPngType || data.size() < 24) return std::nullopt;
    if (!std::equal(kSignature.begin(), kSignature.end(), data.begin())) return std::nullopt;
    if (readBigEndian(data, 8) != 13 || data[12] != 'I' || data[13] != 'H' || data[14] != 'D' ||
        data[15] != 'R')
        return std::nullopt;
    const std::uint32_t width = readBigEndian(data, 16);
    const std::uint32_t height = readBigEndian(data, 20);
    // PNG limits each side to 2^31 - 1 and forbids zero.
    if (width == 0 || height == 0 || width > 0x7FFFFFFFu || height > 0x7FFFFFFFu)
        return std::nullopt;
    return ImageSize{double(width), double(height)};
}

std::optional<Bytes> PngHeaderImageCodec::thumbnail(const Bytes& data, std::string_view type,
                                                    double maximumSide) const {
    auto size = imageSize(data, type);
    if (!size) return std::nullopt;
    const ImageSize scaled = thumbnailSize(*size, maximumSide);
    return pngHeader(std::uint32_t(scaled.width), std::uint32_t(scaled.height));
}

std::optional<EncodedImage> PngHeaderImageCodec::compressedCopy(const Bytes& data,
                                                                std::string_view type) const {
    if (!imageSize(data, type)) return std::nullopt;
    return compressed_;
}

Bytes PngHeaderImageCodec::pngHeader(std::uint32_t width, std::uint32_t height) {
    Bytes png(kSignature.begin(), kSignature.end());
    appendBigEndian(png, 13);
    const std::size_t chunkStart = png.size();
    for (char c : std::string_view("IHDR")) png.push_back(std::uint8_t(c));
    appendBigEndian(png, width);
    appendBigEndian(png, height);
    // Bit depth 8, colour type 6 (RGBA), compression, filter and interlace 0.
    for (std::uint8_t value : {8, 6, 0, 0, 0}) png.push_back(value);
    appendBigEndian(png, crc32(png.data() + chunkStart, png.size() - chunkStart));
    return png;
}

}  // namespace harbex
