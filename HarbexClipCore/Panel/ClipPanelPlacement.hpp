#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "HarbexClipCore/Settings/ClipDefaults.hpp"
#include "HarbexClipCore/Settings/ClipSettingsChoices.hpp"

namespace harbex {

// A point and a rectangle in the window system's logical coordinates (device-independent
// pixels), y growing downwards.
struct ClipPanelPoint {
    int x = 0;
    int y = 0;
    friend bool operator==(const ClipPanelPoint&, const ClipPanelPoint&) = default;
};

struct ClipPanelFrame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool contains(ClipPanelPoint point) const {
        return point.x >= x && point.x < x + width && point.y >= y && point.y < y + height;
    }
    friend bool operator==(const ClipPanelFrame&, const ClipPanelFrame&) = default;
};

// Where the quick panel opens and how big it is, from the `size` and `position` settings, the
// screens and the pointer; and the place it was last, kept in the user defaults so that
// "Where it was last" holds across restarts. Thread: main (the defaults are main-thread only).
class ClipPanelPlacement {
public:
    // The defaults key of the last place, as "x,y".
    static constexpr std::string_view kLastOriginKey = "harbex-clip-panel:origin";
    // Gap between the pointer and the panel when it opens near the pointer.
    static constexpr int kPointerGap = 12;

    struct Size {
        int width = 0;
        int height = 0;
        friend bool operator==(const Size&, const Size&) = default;
    };

    // Compact is the list alone; regular adds the preview; large gives the preview more room.
    static Size size(ClipPanelSize size);
    // Whether the preview pane has room at this size.
    static bool hasPreview(ClipPanelSize size) { return size != ClipPanelSize::compact; }

    // The panel's frame. `screens` are the usable areas of the screens (without panels and
    // docks); it requires at least one. The pointer's screen is used, or the first.
    // - centre: the middle of the pointer's screen, a little above the middle, as a launcher
    //   sits, so the list grows towards the eye;
    // - nearPointer: below and right of the pointer, flipped to the other side where the panel
    //   would leave the screen;
    // - whereItWas: `last` when it is still on a screen (after a screen was unplugged it is
    //   not), else the centre.
    // The frame is always moved wholly inside the screen it opens on; a screen smaller than the
    // panel shrinks it.
    static ClipPanelFrame place(ClipPanelPosition position, Size size, ClipPanelPoint pointer,
                                std::span<const ClipPanelFrame> screens,
                                std::optional<ClipPanelPoint> last);

    // The last place from the defaults; nothing when absent or unreadable.
    static std::optional<ClipPanelPoint> lastOrigin(const ClipDefaults& defaults);
    static void rememberOrigin(ClipDefaults& defaults, ClipPanelPoint origin);

    // "x,y" and back; nothing for anything but two integers.
    static std::string encodeOrigin(ClipPanelPoint origin);
    static std::optional<ClipPanelPoint> decodeOrigin(std::string_view text);
};

}  // namespace harbex
