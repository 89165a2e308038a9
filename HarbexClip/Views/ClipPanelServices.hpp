#pragma once

#include <functional>
#include <optional>
#include <string>

#include "HarbexClipCore/Settings/ClipDefaults.hpp"
#include "HarbexClipCore/Support/Bytes.hpp"
#include "HarbexClipCore/Support/Observable.hpp"

namespace harbex {

// What the quick panel needs from outside its model: stored images, application icons, a
// place to remember where it was and the engine's problem. Every member may be left empty; the
// panel then goes without.
struct ClipPanelServices {
    // The stored thumbnail of an image copy, by the image's name (its digest).
    std::function<std::optional<Bytes>(const std::string&)> readThumbnail;
    // The stored image itself, for the preview pane.
    std::function<std::optional<Bytes>(const std::string&)> readImage;
    // An application's icon, by application id: an icon-theme name or an absolute path.
    std::function<std::optional<std::string>(const std::string&)> appIconName;
    // Where the panel keeps its last place across restarts; observed, outlives the panel.
    ClipDefaults* defaults = nullptr;
    // The engine's problem, shown at the top while there is one; observed, outlives the panel.
    Observable<std::optional<std::string>>* problem = nullptr;
};

}  // namespace harbex
