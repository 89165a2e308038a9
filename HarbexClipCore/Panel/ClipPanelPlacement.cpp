#include "HarbexClipCore/Panel/ClipPanelPlacement.hpp"

#include <algorithm>
#include <cassert>
#include <charconv>

namespace harbex {

namespace {

const ClipPanelFrame& screenAt(ClipPanelPoint point, std::span<const ClipPanelFrame> screens) {
    for (const ClipPanelFrame& screen : screens) {
        if (screen.contains(point)) return screen;
    }
    return screens.front();
}

ClipPanelFrame inside(ClipPanelFrame frame, const ClipPanelFrame& screen) {
    frame.width = std::min(frame.width, screen.width);
    frame.height = std::min(frame.height, screen.height);
    frame.x = std::clamp(frame.x, screen.x, screen.x + screen.width - frame.width);
    frame.y = std::clamp(frame.y, screen.y, screen.y + screen.height - frame.height);
    return frame;
}

ClipPanelFrame centred(ClipPanelPlacement::Size size, const ClipPanelFrame& screen) {
    // A third of the free height above, two thirds below.
    const int x = screen.x + (screen.width - size.width) / 2;
    const int y = screen.y + std::max(0, screen.height - size.height) / 3;
    return inside({x, y, size.width, size.height}, screen);
}

std::optional<int> integer(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

ClipPanelPlacement::Size ClipPanelPlacement::size(ClipPanelSize size) {
    switch (size) {
        case ClipPanelSize::compact: return {440, 460};
        case ClipPanelSize::regular: return {780, 500};
        case ClipPanelSize::large: return {1000, 640};
    }
    return {780, 500};
}

ClipPanelFrame ClipPanelPlacement::place(ClipPanelPosition position, Size size,
                                         ClipPanelPoint pointer,
                                         std::span<const ClipPanelFrame> screens,
                                         std::optional<ClipPanelPoint> last) {
    assert(!screens.empty());
    const ClipPanelFrame& here = screenAt(pointer, screens);
    switch (position) {
        case ClipPanelPosition::centre: return centred(size, here);
        case ClipPanelPosition::nearPointer: {
            const ClipPanelFrame& screen = here;
            int x = pointer.x + kPointerGap;
            int y = pointer.y + kPointerGap;
            if (x + size.width > screen.x + screen.width) x = pointer.x - kPointerGap - size.width;
            if (y + size.height > screen.y + screen.height) {
                y = pointer.y - kPointerGap - size.height;
            }
            return inside({x, y, size.width, size.height}, screen);
        }
        case ClipPanelPosition::whereItWas: {
            if (!last) return centred(size, here);
            for (const ClipPanelFrame& screen : screens) {
                if (screen.contains(*last)) {
                    return inside({last->x, last->y, size.width, size.height}, screen);
                }
            }
            return centred(size, here);
        }
    }
    return centred(size, here);
}

std::string ClipPanelPlacement::encodeOrigin(ClipPanelPoint origin) {
    return std::to_string(origin.x) + "," + std::to_string(origin.y);
}

std::optional<ClipPanelPoint> ClipPanelPlacement::decodeOrigin(std::string_view text) {
    const auto comma = text.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    const auto x = integer(text.substr(0, comma));
    const auto y = integer(text.substr(comma + 1));
    if (!x || !y) return std::nullopt;
    return ClipPanelPoint{*x, *y};
}

std::optional<ClipPanelPoint> ClipPanelPlacement::lastOrigin(const ClipDefaults& defaults) {
    const auto text = defaults.string(kLastOriginKey);
    if (!text) return std::nullopt;
    return decodeOrigin(*text);
}

void ClipPanelPlacement::rememberOrigin(ClipDefaults& defaults, ClipPanelPoint origin) {
    defaults.setString(kLastOriginKey, encodeOrigin(origin));
}

}  // namespace harbex
