#include "HarbexClipCore/Text/ClipTransform.hpp"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <span>
#include <unordered_set>
#include <vector>

#include "HarbexClipCore/Support/Digest.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Text/ClipColorFormat.hpp"
#include "HarbexClipCore/Text/ColorParser.hpp"
#include "HarbexClipCore/Text/JsonText.hpp"
#include "HarbexClipCore/Text/LinkTracking.hpp"
#include "HarbexClipCore/Text/MarkdownText.hpp"
#include "HarbexClipCore/Text/PercentEncoding.hpp"

namespace harbex {

namespace {

struct TransformInfo {
    ClipTransform transform;
    std::string_view label;
    std::string_view title;
    ClipTransformCategory category;
    std::string_view symbol;
};

using Category = ClipTransformCategory;

// In declaration order, so that a transform's info is at its own index.
constexpr std::array<TransformInfo, EnumNames<ClipTransform>::values.size()> kInfo{{
    {ClipTransform::uppercase, "UPPERCASE", "UPPERCASE", Category::changeCase,
     "textformat.size.larger"},
    {ClipTransform::lowercase, "lowercase", "lowercase", Category::changeCase,
     "textformat.size.smaller"},
    {ClipTransform::titleCase, "Title Case", "Title Case", Category::changeCase, "textformat"},
    {ClipTransform::sentenceCase, "Sentence case", "Sentence case", Category::changeCase,
     "textformat.abc"},
    {ClipTransform::trimSpaces, "Trim spaces", "Trim Spaces", Category::cleanUp, "scissors"},
    {ClipTransform::sortLines, "Sort lines", "Sort Lines", Category::cleanUp,
     "arrow.up.arrow.down"},
    {ClipTransform::removeDuplicateLines, "Remove duplicate lines", "Remove Duplicate Lines",
     Category::cleanUp, "text.badge.minus"},
    {ClipTransform::removeLineBreaks, "Remove line breaks", "Remove Line Breaks", Category::cleanUp,
     "arrow.right.and.line.vertical.and.arrow.left"},
    {ClipTransform::straightenQuotes, "Straighten quotes", "Straighten Quotes", Category::cleanUp,
     "quote.opening"},
    {ClipTransform::markdownToPlainText, "Markdown to plain text", "Markdown to Plain Text",
     Category::cleanUp, "doc.plaintext"},
    {ClipTransform::stripTrackingFromLink, "Strip tracking from link", "Strip Tracking from Link",
     Category::cleanUp, "checkmark.shield"},
    {ClipTransform::base64Encode, "Base64 encode", "Base64 Encode", Category::encodeAndFormat,
     "lock"},
    {ClipTransform::base64Decode, "Base64 decode", "Base64 Decode", Category::encodeAndFormat,
     "lock.open"},
    {ClipTransform::urlEncode, "URL encode", "URL Encode", Category::encodeAndFormat, "link"},
    {ClipTransform::urlDecode, "URL decode", "URL Decode", Category::encodeAndFormat,
     "link.badge.plus"},
    {ClipTransform::formatJSON, "Format JSON", "Format JSON", Category::encodeAndFormat,
     "curlybraces"},
    {ClipTransform::minify, "Minify", "Minify JSON", Category::encodeAndFormat,
     "arrow.down.right.and.arrow.up.left"},
    {ClipTransform::colorAsHex, "Colour as HEX", "Colour as HEX", Category::encodeAndFormat,
     "number"},
    {ClipTransform::colorAsRGB, "Colour as RGB", "Colour as RGB", Category::encodeAndFormat,
     "paintpalette"},
    {ClipTransform::colorAsHSL, "Colour as HSL", "Colour as HSL", Category::encodeAndFormat,
     "paintpalette"},
}};

constexpr bool infoIsInDeclarationOrder() {
    for (std::size_t i = 0; i < kInfo.size(); ++i) {
        if (static_cast<std::size_t>(kInfo[i].transform) != i) return false;
    }
    return true;
}
static_assert(infoIsInDeclarationOrder());

const TransformInfo& infoOf(ClipTransform transform) {
    return kInfo[static_cast<std::size_t>(transform)];
}

// MARK: Unicode text

icu::UnicodeString unicodeOf(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), text.size()));
}

std::string utf8Of(const icu::UnicodeString& text) {
    std::string out;
    text.toUTF8String(out);
    return out;
}

bool isLineBreak(char32_t c) {
    return c == '\n' || c == '\r' || c == 0x85 || c == 0x2028 || c == 0x2029;
}

// Spaces and tabs, and the other Unicode spaces that do not break a line.
bool isHorizontalSpace(char32_t c) {
    if (c == ' ' || c == '\t') return true;
    return c >= 0x80 && !isLineBreak(c) && u_isUWhiteSpace(static_cast<UChar32>(c));
}

bool isBlank(std::string_view line) {
    std::size_t offset = 0;
    while (offset < line.size()) {
        if (!isHorizontalSpace(nextCodePoint(line, offset))) return false;
    }
    return true;
}

std::string_view trimmedLine(std::string_view line) {
    std::size_t start = 0;
    std::size_t end = 0;
    std::size_t offset = 0;
    bool seenContent = false;
    while (offset < line.size()) {
        const std::size_t before = offset;
        if (isHorizontalSpace(nextCodePoint(line, offset))) continue;
        if (!seenContent) start = before;
        seenContent = true;
        end = offset;
    }
    return seenContent ? line.substr(start, end - start) : std::string_view();
}

// MARK: Case

std::string uppercased(std::string_view text) {
    return utf8Of(unicodeOf(text).toUpper(icu::Locale::getRoot()));
}

std::string lowercased(std::string_view text) {
    return utf8Of(unicodeOf(text).toLower(icu::Locale::getRoot()));
}

std::string titleCased(std::string_view text) {
    // A null iterator means ICU's word breaks; the rest of each word is lowercased.
    return utf8Of(unicodeOf(text).toTitle(nullptr, icu::Locale::getRoot()));
}

std::string sentenceCased(std::string_view text) {
    icu::UnicodeString lower = unicodeOf(text);
    lower.toLower(icu::Locale::getRoot());
    icu::UnicodeString out;
    bool capitalizeNext = true;
    bool sawSentenceEnd = false;  // an end mark counts once white space follows it
    for (int32_t i = 0; i < lower.length();) {
        const UChar32 c = lower.char32At(i);
        i += U16_LENGTH(c);
        if (u_isalnum(c)) {
            if (capitalizeNext && u_isalpha(c)) {
                // Full titlecase mapping: "ǆ" becomes "ǅ", "ß" becomes "Ss".
                icu::UnicodeString letter(c);
                letter.toTitle(nullptr, icu::Locale::getRoot(),
                               U_TITLECASE_WHOLE_STRING | U_TITLECASE_NO_LOWERCASE);
                out += letter;
            } else {
                out += c;
            }
            capitalizeNext = false;
            sawSentenceEnd = false;
            continue;
        }
        if (c == '.' || c == '!' || c == '?') {
            sawSentenceEnd = true;
        } else if (u_isUWhiteSpace(c) && sawSentenceEnd) {
            capitalizeNext = true;
            sawSentenceEnd = false;
        }
        out += c;
    }
    return utf8Of(out);
}

// MARK: Lines

struct Lines {
    std::vector<std::string_view> lines;
    std::string_view lineBreak = "\n";  // the first one in the text
    bool endsWithBreak = false;
};

Lines splitLines(std::string_view text) {
    Lines out;
    bool sawBreak = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\n' && text[i] != '\r') continue;
        const std::size_t length =
            text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n' ? 2 : 1;
        if (!sawBreak) out.lineBreak = text.substr(i, length);
        sawBreak = true;
        out.lines.push_back(text.substr(start, i - start));
        i += length - 1;
        start = i + 1;
    }
    if (start < text.size()) {
        out.lines.push_back(text.substr(start));
    } else {
        out.endsWithBreak = sawBreak;
    }
    return out;
}

std::string joinedLines(const Lines& lines) {
    std::string out;
    for (std::size_t i = 0; i < lines.lines.size(); ++i) {
        if (i > 0) out += lines.lineBreak;
        out += lines.lines[i];
    }
    if (lines.endsWithBreak) out += lines.lineBreak;
    return out;
}

std::string trimmedSpaces(std::string_view text) {
    Lines lines = splitLines(text);
    for (auto& line : lines.lines) line = trimmedLine(line);
    auto& all = lines.lines;
    while (!all.empty() && all.back().empty()) all.pop_back();
    const auto firstContent =
        std::find_if(all.begin(), all.end(), [](std::string_view line) { return !line.empty(); });
    all.erase(all.begin(), firstContent);
    lines.endsWithBreak = false;
    return joinedLines(lines);
}

std::string sortedLines(std::string_view text) {
    Lines lines = splitLines(text);
    UErrorCode status = U_ZERO_ERROR;
    // The root collation: no locale's tailoring, so the order is the same for every user.
    std::unique_ptr<icu::Collator> collator(
        icu::Collator::createInstance(icu::Locale::getRoot(), status));
    if (U_SUCCESS(status)) collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    if (U_FAILURE(status) || !collator) {
        std::stable_sort(lines.lines.begin(), lines.lines.end());
        return joinedLines(lines);
    }
    std::stable_sort(lines.lines.begin(), lines.lines.end(),
                     [&](std::string_view a, std::string_view b) {
                         UErrorCode compareStatus = U_ZERO_ERROR;
                         return collator->compareUTF8(icu::StringPiece(a.data(), a.size()),
                                                      icu::StringPiece(b.data(), b.size()),
                                                      compareStatus) == UCOL_LESS;
                     });
    return joinedLines(lines);
}

std::string withoutDuplicateLines(std::string_view text) {
    Lines lines = splitLines(text);
    std::unordered_set<std::string_view> seen;
    std::vector<std::string_view> kept;
    for (std::string_view line : lines.lines) {
        if (isBlank(line) || seen.insert(line).second) kept.push_back(line);
    }
    lines.lines = std::move(kept);
    return joinedLines(lines);
}

std::string withoutLineBreaks(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] != '\n' && text[i] != '\r') {
            out += text[i++];
            continue;
        }
        while (!out.empty() && (out.back() == ' ' || out.back() == '\t')) out.pop_back();
        while (i < text.size() &&
               (text[i] == '\n' || text[i] == '\r' || text[i] == ' ' || text[i] == '\t'))
            ++i;
        if (!out.empty() && i < text.size()) out += ' ';
    }
    return out;
}

// MARK: Quotes

std::string straightenedQuotes(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    std::size_t offset = 0;
    while (offset < text.size()) {
        const std::size_t before = offset;
        const char32_t c = nextCodePoint(text, offset);
        switch (c) {
            case U'“':
            case U'”':
            case U'„':
            case U'‟':
            case U'″': out += '"'; break;
            case U'‘':
            case U'’':
            case U'‚':
            case U'‛':
            case U'′': out += '\''; break;
            default: out.append(text.substr(before, offset - before)); break;
        }
    }
    return out;
}

// MARK: Encodings

// UTF-8 without control characters other than tab and line breaks: what a decoded copy must be
// for it to make sense as text.
bool isPlainText(std::string_view text) {
    if (!isValidUtf8(text)) return false;
    return std::none_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && c != '\t' && c != '\n' && c != '\r') || byte == 0x7F;
    });
}

std::string base64Encoded(std::string_view text) {
    return base64Encode(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

std::optional<std::string> base64Decoded(std::string_view text) {
    // People paste wrapped, URL-safe and unpadded Base64; the strict decoder sees it normalised.
    std::string normalized;
    normalized.reserve(text.size() + 2);
    for (char c : text) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r') continue;
        normalized += c == '-' ? '+' : c == '_' ? '/' : c;
    }
    if (normalized.empty()) return std::nullopt;
    if (normalized.size() % 4 == 2) normalized += "==";
    if (normalized.size() % 4 == 3) normalized += "=";
    const auto bytes = base64Decode(normalized);
    if (!bytes || bytes->empty()) return std::nullopt;
    std::string decoded(bytes->begin(), bytes->end());
    if (!isPlainText(decoded)) return std::nullopt;
    return decoded;
}

std::optional<std::string> urlDecoded(std::string_view text) {
    auto decoded = percentDecoded(text);
    if (!decoded || !isPlainText(*decoded)) return std::nullopt;
    return decoded;
}

// MARK: Colours

std::optional<std::string> colorAs(std::string_view text, ClipColorFormat format) {
    const auto color = ColorParser::parse(text);
    if (!color) return std::nullopt;
    // HSL text has no alpha, like the panel's colour forms: a translucent colour gives its
    // opaque HSL.
    return colorText(*color, format);
}

}  // namespace

std::string_view categoryTitle(ClipTransformCategory category) {
    switch (category) {
        case ClipTransformCategory::changeCase: return "Change case";
        case ClipTransformCategory::cleanUp: return "Clean up";
        case ClipTransformCategory::encodeAndFormat: return "Encode and format";
    }
    return {};
}

std::string_view transformLabel(ClipTransform transform) { return infoOf(transform).label; }
std::string_view transformTitle(ClipTransform transform) { return infoOf(transform).title; }
ClipTransformCategory transformCategory(ClipTransform transform) {
    return infoOf(transform).category;
}
std::string_view transformSymbol(ClipTransform transform) { return infoOf(transform).symbol; }

const std::array<ClipTransform, EnumNames<ClipTransform>::values.size()>& transformsInMenuOrder() {
    using T = ClipTransform;
    static constexpr std::array<ClipTransform, EnumNames<ClipTransform>::values.size()> kOrder{
        T::titleCase,
        T::sentenceCase,
        T::uppercase,
        T::lowercase,
        T::trimSpaces,
        T::sortLines,
        T::removeDuplicateLines,
        T::removeLineBreaks,
        T::straightenQuotes,
        T::markdownToPlainText,
        T::stripTrackingFromLink,
        T::base64Encode,
        T::base64Decode,
        T::urlEncode,
        T::urlDecode,
        T::formatJSON,
        T::minify,
        T::colorAsHex,
        T::colorAsRGB,
        T::colorAsHSL,
    };
    return kOrder;
}

std::optional<std::string> applyTransform(ClipTransform transform, std::string_view text) {
    switch (transform) {
        case ClipTransform::uppercase: return uppercased(text);
        case ClipTransform::lowercase: return lowercased(text);
        case ClipTransform::titleCase: return titleCased(text);
        case ClipTransform::sentenceCase: return sentenceCased(text);
        case ClipTransform::trimSpaces: return trimmedSpaces(text);
        case ClipTransform::sortLines: return sortedLines(text);
        case ClipTransform::removeDuplicateLines: return withoutDuplicateLines(text);
        case ClipTransform::removeLineBreaks: return withoutLineBreaks(text);
        case ClipTransform::straightenQuotes: return straightenedQuotes(text);
        case ClipTransform::markdownToPlainText: return plainTextFromMarkdown(text);
        case ClipTransform::stripTrackingFromLink: return linkWithoutTracking(text);
        case ClipTransform::base64Encode: return base64Encoded(text);
        case ClipTransform::base64Decode: return base64Decoded(text);
        case ClipTransform::urlEncode: return percentEncoded(text);
        case ClipTransform::urlDecode: return urlDecoded(text);
        case ClipTransform::formatJSON: return relaidJson(text, JsonLayout::indented);
        case ClipTransform::minify: return relaidJson(text, JsonLayout::compact);
        case ClipTransform::colorAsHex: return colorAs(text, ClipColorFormat::hex);
        case ClipTransform::colorAsRGB: return colorAs(text, ClipColorFormat::rgb);
        case ClipTransform::colorAsHSL: return colorAs(text, ClipColorFormat::hsl);
    }
    return std::nullopt;
}

}  // namespace harbex
