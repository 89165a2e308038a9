#include "HarbexClipCore/Capture/ClipImageCodec.hpp"

#include <algorithm>
#include <cmath>

namespace harbex {

ImageSize thumbnailSize(ImageSize size, double maximumSide) {
    const double longer = std::max(size.width, size.height);
    if (longer <= maximumSide || longer <= 0) return size;
    const double scale = maximumSide / longer;
    return ImageSize{std::max(1.0, std::round(size.width * scale)),
                     std::max(1.0, std::round(size.height * scale))};
}

}  // namespace harbex
