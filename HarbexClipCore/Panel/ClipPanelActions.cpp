#include "HarbexClipCore/Panel/ClipPanelActions.hpp"

#include <algorithm>
#include <cctype>

#include "HarbexClipCore/Settings/ClipPlatformWords.hpp"
#include "HarbexClipCore/Settings/ClipShortcut.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Text/ColorParser.hpp"
#include "HarbexClipCore/Text/FoldedText.hpp"

namespace harbex {

namespace {

using Kind = ClipPanelActionKind;
using Case = ClipPanelActionKind::Case;

constexpr std::string_view kPasteSection = "Paste";
constexpr std::string_view kOrganiseSection = "Organise";
constexpr std::string_view kOpenSection = "Open";
constexpr std::string_view kColourSection = "Colour";

ClipPanelAction entry(Kind kind, std::string title, std::string_view section,
                      ClipActionCategory category, std::string_view symbol) {
    ClipPanelAction action;
    action.kind = std::move(kind);
    action.title = std::move(title);
    action.section = std::string(section);
    action.category = category;
    action.symbol = std::string(symbol);
    return action;
}

std::string plainKey(std::uint32_t keyCode, ClipShortcut::Modifiers modifiers,
                     ClipKeyVocabulary vocabulary) {
    return displayForm(keyCode, modifiers, vocabulary);
}

bool hasFormatting(const ClipItem& item) { return item.rtf.has_value() || item.html.has_value(); }

void addPasteSection(std::vector<ClipPanelAction>& out, const ClipItem& item,
                     const ClipPanelActions::Context& context) {
    const auto v = context.vocabulary;
    const std::string title = context.targetName && !context.targetName->empty()
                                  ? "Paste in " + *context.targetName
                                  : "Paste";
    auto paste =
        entry(Case::paste, title, kPasteSection, ClipActionCategory::paste, "doc.on.clipboard");
    paste.shortcut = plainKey(keycode::kReturn, ClipShortcut::Modifiers{}, v);
    out.push_back(std::move(paste));

    if (hasFormatting(item)) {
        auto plain = entry(Case::pastePlain, "Paste as Plain Text", kPasteSection,
                           ClipActionCategory::paste, "doc.plaintext");
        plain.shortcut = plainKey(keycode::kReturn, ClipShortcut::Modifiers::shift, v);
        out.push_back(std::move(plain));
    }
    if (item.kind != ClipKind::image) {
        const bool stacked = context.stack == ClipStackState::stacked;
        auto stack =
            entry(Case::addToStack, stacked ? "Remove from Paste Stack" : "Add to Paste Stack",
                  kPasteSection, ClipActionCategory::paste,
                  stacked ? "square.stack.3d.up.slash" : "square.stack.3d.up");
        stack.shortcut = commandKeys(keycode::kReturn, v);
        out.push_back(std::move(stack));
    }
    auto copy = entry(Case::copy, "Copy", kPasteSection, ClipActionCategory::paste, "doc.on.doc");
    copy.shortcut = commandKeys(keycode::kC, v);
    out.push_back(std::move(copy));
}

void addOrganiseSection(std::vector<ClipPanelAction>& out, const ClipItem& item,
                        const ClipPanelActions::Context& context) {
    const bool pinned = context.pin == ClipPinState::pinned;
    auto pin = entry(Case::pin, pinned ? "Unpin" : "Pin", kOrganiseSection,
                     ClipActionCategory::organise, pinned ? "pin.slash" : "pin");
    pin.shortcut = commandKeys(keycode::kP, context.vocabulary);
    out.push_back(std::move(pin));

    for (const Pinboard& board : context.pinboards) {
        if (std::ranges::find(board.itemIDs, item.id) != board.itemIDs.end()) continue;
        const std::string symbol = board.symbol.empty() ? "square.grid.2x2" : board.symbol;
        out.push_back(entry(Kind::addTo(board.id), "Add to " + board.name, kOrganiseSection,
                            ClipActionCategory::organise, symbol));
    }

    auto remove =
        entry(Case::delete_, "Delete", kOrganiseSection, ClipActionCategory::organise, "trash");
    remove.shortcut = commandKeys(keycode::kDelete, context.vocabulary);
    remove.isDestructive = true;
    out.push_back(std::move(remove));
}

void addOpenSection(std::vector<ClipPanelAction>& out, const ClipItem& item,
                    const ClipPanelActions::Context& context) {
    const auto v = context.vocabulary;
    if (item.kind == ClipKind::link) {
        auto open = entry(Case::openLink, "Open Link", kOpenSection, ClipActionCategory::share,
                          "arrow.up.right.square");
        open.shortcut = commandKeys(keycode::kO, v);
        out.push_back(std::move(open));
    }
    if (item.kind == ClipKind::file) {
        auto reveal = entry(Case::showInFinder, "Show in " + std::string(fileManagerName(v)),
                            kOpenSection, ClipActionCategory::share, "folder");
        reveal.shortcut = commandKeys(keycode::kO, v);
        out.push_back(std::move(reveal));
    }
    auto look =
        entry(Case::quickLook, "Quick Look", kOpenSection, ClipActionCategory::share, "eye");
    look.shortcut = commandKeys(keycode::kY, v);
    out.push_back(std::move(look));
    if (item.kind == ClipKind::image) {
        auto save = entry(Case::saveImage, "Save Image", kOpenSection, ClipActionCategory::share,
                          "square.and.arrow.down");
        save.shortcut = commandKeys(keycode::kS, v);
        out.push_back(std::move(save));
    }
}

std::optional<RGBA> colourOf(const ClipItem& item) {
    if (item.colorHex) {
        if (auto colour = ColorParser::parse(*item.colorHex)) return colour;
    }
    if (item.text) return ColorParser::parse(*item.text);
    return std::nullopt;
}

void addColourSection(std::vector<ClipPanelAction>& out, const ClipItem& item) {
    if (item.kind != ClipKind::color) return;
    const std::optional<RGBA> colour = colourOf(item);
    struct Form {
        ClipColorFormat format;
        std::string_view glyph;
    };
    static constexpr std::array<Form, 4> kForms{{{ClipColorFormat::hex, "#"},
                                                 {ClipColorFormat::rgb, "rgb"},
                                                 {ClipColorFormat::hsl, "hsl"},
                                                 {ClipColorFormat::oklch, "ok"}}};
    for (const Form& form : kForms) {
        auto action = entry(Kind::colourAs(form.format),
                            "Convert to " + std::string(colorFormatLabel(form.format)),
                            kColourSection, ClipActionCategory::transform, "paintpalette");
        action.glyph = std::string(form.glyph);
        if (colour) action.example = colorText(*colour, form.format);
        out.push_back(std::move(action));
    }
}

bool isColourTransform(ClipTransform transform) {
    return transform == ClipTransform::colorAsHex || transform == ClipTransform::colorAsRGB ||
           transform == ClipTransform::colorAsHSL;
}

void addTransformSections(std::vector<ClipPanelAction>& out, const ClipItem& item) {
    const bool takesTransforms = item.kind == ClipKind::text || item.kind == ClipKind::richText ||
                                 item.kind == ClipKind::code;
    if (!takesTransforms || !item.text) return;
    const bool previews = item.text->size() <= ClipPanelActions::kPreviewedBytes;
    for (const ClipTransform transform : transformsInMenuOrder()) {
        if (isColourTransform(transform)) continue;
        const ClipPanelActions::Style style = ClipPanelActions::style(transform);
        auto action = entry(Kind::transformWith(transform), std::string(style.title), style.section,
                            ClipActionCategory::transform, style.symbol);
        if (style.glyph) action.glyph = std::string(*style.glyph);
        if (previews && style.showsExample) {
            if (auto result = applyTransform(transform, *item.text)) {
                action.example = ClipPanelActions::preview(*result);
            }
        }
        out.push_back(std::move(action));
    }
}

// Whether `word` (folded) starts a word somewhere in `text` (folded).
bool startsAWord(std::string_view text, std::string_view word) {
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + 1)) {
        if (at == 0) return true;
        const auto before = static_cast<unsigned char>(text[at - 1]);
        if (before < 0x80 && !std::isalnum(before)) return true;
    }
    return false;
}

std::vector<std::string> foldedWords(std::string_view query) {
    const FoldedText folded = FoldedText::fold(query);
    std::vector<std::string> words;
    std::string_view rest = folded.bytes();
    while (!rest.empty()) {
        const std::size_t space = rest.find(' ');
        const std::string_view word = rest.substr(0, space);
        if (!word.empty()) words.emplace_back(word);
        if (space == std::string_view::npos) break;
        rest.remove_prefix(space + 1);
    }
    return words;
}

}  // namespace

ClipPanelActions::Style ClipPanelActions::style(ClipTransform transform) {
    Style style;
    style.title = transformTitle(transform);
    style.section = categoryTitle(transformCategory(transform));
    style.symbol = transformSymbol(transform);
    switch (transform) {
        case ClipTransform::titleCase: style.glyph = "Aa"; break;
        case ClipTransform::sentenceCase: style.glyph = "A."; break;
        case ClipTransform::uppercase: style.glyph = "AB"; break;
        case ClipTransform::lowercase: style.glyph = "ab"; break;
        case ClipTransform::base64Encode:
        case ClipTransform::base64Decode: style.glyph = "64"; break;
        case ClipTransform::urlEncode:
        case ClipTransform::urlDecode: style.glyph = "%"; break;
        case ClipTransform::formatJSON:
        case ClipTransform::minify: style.glyph = "{}"; break;
        default: break;
    }
    switch (transform) {
        case ClipTransform::sortLines:
        case ClipTransform::removeDuplicateLines:
        case ClipTransform::formatJSON: style.showsExample = false; break;
        default: break;
    }
    return style;
}

std::vector<ClipPanelAction> ClipPanelActions::actions(const ClipItem& item,
                                                       const Context& context) {
    std::vector<ClipPanelAction> out;
    out.reserve(32);
    addPasteSection(out, item, context);
    addOrganiseSection(out, item, context);
    addOpenSection(out, item, context);
    addColourSection(out, item);
    addTransformSections(out, item);
    return out;
}

std::vector<ClipPanelAction> ClipPanelActions::filtered(const std::vector<ClipPanelAction>& actions,
                                                        ClipActionCategory category,
                                                        std::string_view query) {
    const std::vector<std::string> words = foldedWords(query);
    std::vector<ClipPanelAction> out;
    for (const ClipPanelAction& action : actions) {
        if (category != ClipActionCategory::all && action.category != category) continue;
        if (!words.empty()) {
            const FoldedText title = FoldedText::fold(action.title);
            const bool all = std::ranges::all_of(
                words, [&](const std::string& word) { return startsAWord(title.bytes(), word); });
            if (!all) continue;
        }
        out.push_back(action);
    }
    return out;
}

std::string ClipPanelActions::preview(std::string_view result) {
    std::size_t start = 0;
    // Skip blank leading lines.
    while (start < result.size()) {
        const std::size_t end = result.find_first_of("\r\n", start);
        const std::string_view line = result.substr(
            start, end == std::string_view::npos ? std::string_view::npos : end - start);
        if (line.find_first_not_of(" \t") != std::string_view::npos) break;
        if (end == std::string_view::npos) {
            start = result.size();
            break;
        }
        start = end + 1;
    }
    const std::size_t end = result.find_first_of("\r\n", start);
    std::string_view line =
        result.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
    const bool moreLines = end != std::string_view::npos &&
                           result.find_first_not_of(" \t\r\n", end) != std::string_view::npos;
    const std::string_view cut = characterPrefix(line, kPreviewCharacters);
    std::string out(cut);
    if (cut.size() < line.size() || moreLines) out += "…";
    return out;
}

}  // namespace harbex
