#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Panel/ClipPanelActions.hpp"
#include "HarbexClipCore/Text/ClipFilter.hpp"
#include "HarbexClipCore/Text/RGBA.hpp"

namespace harbex {

// Everything one copy's row shows, worked out once so that painting only draws. A value.
struct ClipPanelRowLook {
    static constexpr std::string_view kSensitiveHidden = "Sensitive, hidden";
    static constexpr std::string_view kOneTimeCodeHidden = "One-time code, hidden";

    std::string title;                     // one line; a sensitive copy's text never shows here
    std::string subtitle;                  // "Firefox · 42 characters"
    ClipKind glyph = ClipKind::text;       // the kind whose mark the row draws
    std::optional<RGBA> swatch;            // colour copies
    std::optional<std::string> thumbnail;  // an image copy's stored image name (its digest)
    std::optional<std::string> appID;      // for the source application's icon
    bool isHidden = false;                 // sensitive: drawn as concealed
    bool isPinned = false;
    bool isStacked = false;
    int number = 0;          // 1…9 when ⌘1…⌘9 pastes it, else 0
    std::string numberKeys;  // "⌘1" / "Ctrl+1", set by the panel model for its vocabulary
    std::optional<std::string> language;  // a code copy's language, set by the panel model

    // The look of `item`. `number` is the copy's place among the listed copies, from 1.
    // Thread: any. Counts the text of textual copies (see ClipItem::subtitle).
    static ClipPanelRowLook of(const ClipItem& item, ClipPinState pin, ClipStackState stack,
                               int number);

    friend bool operator==(const ClipPanelRowLook&, const ClipPanelRowLook&) = default;
};

// "Sensitive, hidden", or "One-time code, hidden" for a sensitive one-time code.
std::string_view hiddenTitle(const ClipItem& item);

// The colour a colour copy shows, read from its hex form or its text.
std::optional<RGBA> swatchColour(const ClipItem& item);

}  // namespace harbex
