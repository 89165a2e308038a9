#pragma once

#include <string>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"

namespace harbex::librarytest {

// Thursday 14 March 2024, 14:30 in London; the en_GB week started on Monday 11 March.
inline const Date kNow = Date::fromUnix(1710426600);
inline Calendar london() { return Calendar("Europe/London", "en_GB"); }

inline ClipItem textItem(std::string text, Date date, std::string app = "org.gnome.TextEditor",
                         std::string appName = "Text Editor") {
    ClipContent content;
    content.text = std::move(text);
    return ClipItem::make(content, {}, ClipSource{app, appName}, date, ClipSensitivity::ordinary);
}

inline ClipItem imageItem(std::string digest, Date date, std::int64_t bytes = 1000) {
    ClipContent content;
    content.kind = ClipKind::image;
    content.image = ClipImageInfo{"public.png", 10, 10, bytes, std::move(digest)};
    return ClipItem::make(content, {}, ClipSource{"org.gnome.Screenshot", "Screenshot"}, date,
                          ClipSensitivity::ordinary);
}

}  // namespace harbex::librarytest
