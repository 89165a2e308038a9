#include "HarbexClipCore/Panel/ClipPanelRowLook.hpp"

#include <algorithm>

#include "HarbexClipCore/Text/ColorParser.hpp"

namespace harbex {

namespace {

constexpr int kNumberedCopies = 9;

}  // namespace

std::string_view hiddenTitle(const ClipItem& item) {
    const bool isCode =
        std::ranges::find(item.details, ClipDetail::oneTimeCode) != item.details.end();
    return isCode ? ClipPanelRowLook::kOneTimeCodeHidden : ClipPanelRowLook::kSensitiveHidden;
}

std::optional<RGBA> swatchColour(const ClipItem& item) {
    if (item.kind != ClipKind::color) return std::nullopt;
    if (item.colorHex) {
        if (auto colour = ColorParser::parse(*item.colorHex)) return colour;
    }
    if (item.text) return ColorParser::parse(*item.text);
    return std::nullopt;
}

ClipPanelRowLook ClipPanelRowLook::of(const ClipItem& item, ClipPinState pin, ClipStackState stack,
                                      int number) {
    ClipPanelRowLook look;
    look.glyph = item.kind;
    look.isHidden = item.isSensitive;
    look.isPinned = pin == ClipPinState::pinned;
    look.isStacked = stack == ClipStackState::stacked;
    look.number = number >= 1 && number <= kNumberedCopies ? number : 0;
    look.appID = item.appID;
    const std::string from = item.appName.value_or(item.appID.value_or(""));
    if (item.isSensitive) {
        // Neither the text nor anything measured from it: a length gives a password away.
        look.title = std::string(hiddenTitle(item));
        look.subtitle = from;
        return look;
    }
    look.title = item.title();
    const std::string what = item.subtitle();
    look.subtitle = from.empty() ? what : from + " · " + what;
    look.swatch = swatchColour(item);
    if (item.kind == ClipKind::image && item.image && !item.image->digest.empty()) {
        look.thumbnail = item.image->digest;
    }
    return look;
}

}  // namespace harbex
