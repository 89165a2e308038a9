#pragma once

#include <string>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Date.hpp"

namespace harbex::paneltest {

// Thursday 14 March 2024, 14:30 in London (GMT, before the clocks change); the en_GB week
// started on Monday 11 March.
inline const Date kNow = Date::fromUnix(1710426600);
inline Calendar london() { return Calendar("Europe/London", "en_GB"); }

inline ClipItem textItem(std::string text, Date date, std::string app = "org.gnome.TextEditor") {
    ClipContent content;
    content.text = std::move(text);
    return ClipItem::make(content, {}, ClipSource{app, "Text Editor"}, date,
                          ClipSensitivity::ordinary);
}

inline ClipItem kindItem(ClipKind kind, std::string text, Date date) {
    ClipContent content;
    content.kind = kind;
    switch (kind) {
        case ClipKind::file:
            content.filePaths = std::vector<std::string>{"/home/ada/" + text};
            break;
        case ClipKind::image:
            content.image = ClipImageInfo{"public.png", 640, 480, 120'000, "d1g3st"};
            break;
        case ClipKind::color:
            content.text = text;
            content.colorHex = text;
            break;
        case ClipKind::richText:
            content.text = text;
            content.rtf = Bytes{'{', '\\', 'r', 't', 'f', '1', '}'};
            break;
        default: content.text = text; break;
    }
    return ClipItem::make(content, {}, ClipSource{"firefox", "Firefox"}, date,
                          ClipSensitivity::ordinary);
}

}  // namespace harbex::paneltest
