#include "HarbexClipCore/Panel/ClipPanelPreview.hpp"

#include "HarbexClipCore/Panel/ClipPanelRowLook.hpp"
#include "HarbexClipCore/Support/ByteCount.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Text/ClipColorFormat.hpp"

namespace harbex {

namespace {

std::string counted(std::int64_t n, std::string_view one, std::string_view many) {
    return std::to_string(n) + " " + std::string(n == 1 ? one : many);
}

std::string times(std::int64_t n) {
    if (n == 1) return "once";
    if (n == 2) return "twice";
    return std::to_string(n) + " times";
}

void append(std::string& line, const std::string& part) {
    if (part.empty()) return;
    if (!line.empty()) line += " · ";
    line += part;
}

std::string sizeOf(const ClipImageInfo& image) {
    char dimensions[64];
    std::snprintf(dimensions, sizeof dimensions, "%.0f × %.0f", image.width, image.height);
    return std::string(dimensions) + " · " + formatByteCount(image.byteCount);
}

std::string measureOf(const ClipItem& item) {
    switch (item.kind) {
        case ClipKind::image: return item.image ? sizeOf(*item.image) : "Image";
        case ClipKind::file:
        case ClipKind::link: return item.subtitle();
        case ClipKind::color:
            if (swatchColour(item)) return item.subtitle();
            break;  // shown as the text it is, so measured as text
        case ClipKind::text:
        case ClipKind::richText:
        case ClipKind::code: break;
    }
    const std::string_view text = item.text ? std::string_view(*item.text) : "";
    if (text.size() > ClipPanelPreview::kCountedBytes) return formatByteCount(text.size());
    const TextCounts counts = TextCounts::of(text);
    std::string line = counted(counts.words, "word", "words") + ", " +
                       counted(counts.characters, "character", "characters");
    if (counts.lines > 1) line += ", " + counted(counts.lines, "line", "lines");
    if (item.kind == ClipKind::richText) line += ", formatted";
    return line;
}

}  // namespace

ClipPanelPreview ClipPanelPreview::of(const ClipItem& item) {
    ClipPanelPreview preview;
    append(preview.details, item.appName.value_or(item.appID.value_or("")));
    if (item.isSensitive) {
        preview.kind = Kind::hidden;
        preview.title = std::string(hiddenTitle(item));
        preview.body = std::string(kHiddenExplanation);
        return preview;
    }
    preview.title = item.title();
    append(preview.details, measureOf(item));
    if (item.timesCopied > 1) append(preview.details, "copied " + times(item.timesCopied));
    if (item.timesPasted > 0) append(preview.details, "pasted " + times(item.timesPasted));
    switch (item.kind) {
        case ClipKind::image:
            preview.kind = Kind::image;
            preview.image = item.image;
            return preview;
        case ClipKind::file:
            preview.kind = Kind::files;
            preview.files = item.filePaths.value_or(std::vector<std::string>{});
            return preview;
        case ClipKind::link:
            preview.kind = Kind::link;
            preview.body = item.text.value_or("");
            preview.linkTitle = item.linkTitle;
            preview.host = item.host();
            return preview;
        case ClipKind::color:
            if (const auto colour = swatchColour(item)) {
                preview.kind = Kind::colour;
                preview.colour = colour;
                for (const ClipColorFormat format : allCases<ClipColorFormat>()) {
                    preview.colourForms.push_back(colorText(*colour, format));
                }
                preview.body = preview.colourForms.front();
                return preview;
            }
            break;  // an unreadable colour shows as the text it is
        case ClipKind::text:
        case ClipKind::richText:
        case ClipKind::code: break;
    }
    preview.kind = Kind::text;
    preview.isCode = item.kind == ClipKind::code;
    const std::string_view text = item.text ? std::string_view(*item.text) : "";
    const std::string_view shown = characterPrefix(text, kTextCharacters);
    preview.body = std::string(shown);
    preview.isCut = shown.size() < text.size();
    return preview;
}

}  // namespace harbex
