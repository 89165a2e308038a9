#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Text/RGBA.hpp"

namespace harbex {

// What the panel's preview pane shows for one copy. A value; the pane draws it as it is.
struct ClipPanelPreview {
    // Longest text the pane is given: more would only cost layout time nobody scrolls to.
    static constexpr std::size_t kTextCharacters = 20'000;
    // Textual copies larger than this are not counted word by word.
    static constexpr std::size_t kCountedBytes = 256 * 1024;
    static constexpr std::string_view kHiddenExplanation =
        "Its text stays out of sight here because it looked like a password or a key. It still "
        "pastes.";

    enum class Kind { text, image, colour, files, link, hidden };

    Kind kind = Kind::text;
    std::string title;  // the row's title, or the hidden title
    // text: the text, cut to kTextCharacters; link: the address; colour: the hex form; hidden:
    // the explanation.
    std::string body;
    bool isCut = false;                    // the text was longer than what `body` holds
    bool isCode = false;                   // drawn in a fixed-width font
    std::optional<std::string> language;   // a code copy's language, set by the panel model
    std::optional<std::string> linkTitle;  // the page title a link came with
    std::optional<std::string> host;       // a link's host
    std::vector<std::string> files;        // the paths of a file copy
    std::optional<ClipImageInfo> image;
    std::optional<RGBA> colour;
    std::vector<std::string> colourForms;  // hex, rgb, hsl and oklch
    // "Firefox · 12 words, 80 characters · copied 3 times".
    std::string details;

    // The preview of `item`. Thread: any.
    static ClipPanelPreview of(const ClipItem& item);

    friend bool operator==(const ClipPanelPreview&, const ClipPanelPreview&) = default;
};

template <>
struct EnumNames<ClipPanelPreview::Kind> {
    using K = ClipPanelPreview::Kind;
    static constexpr std::array values{
        std::pair{K::text, std::string_view("text")},
        std::pair{K::image, std::string_view("image")},
        std::pair{K::colour, std::string_view("colour")},
        std::pair{K::files, std::string_view("files")},
        std::pair{K::link, std::string_view("link")},
        std::pair{K::hidden, std::string_view("hidden")},
    };
};

}  // namespace harbex
