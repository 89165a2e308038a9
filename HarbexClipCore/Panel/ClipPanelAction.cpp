#include "HarbexClipCore/Panel/ClipPanelAction.hpp"

namespace harbex {

ClipPanelActionKind ClipPanelActionKind::transformWith(ClipTransform transform) {
    ClipPanelActionKind kind(Case::transform);
    kind.transform = transform;
    return kind;
}

ClipPanelActionKind ClipPanelActionKind::colourAs(ClipColorFormat format) {
    ClipPanelActionKind kind(Case::colour);
    kind.colour = format;
    return kind;
}

ClipPanelActionKind ClipPanelActionKind::addTo(const Uuid& pinboard) {
    ClipPanelActionKind kind(Case::addToPinboard);
    kind.pinboard = pinboard;
    return kind;
}

std::string ClipPanelActionKind::id() const {
    std::string out(enumName(kind));
    if (transform) out += "." + std::string(enumName(*transform));
    if (colour) out += "." + std::string(enumName(*colour));
    if (pinboard) out += "." + pinboard->string();
    return out;
}

}  // namespace harbex
