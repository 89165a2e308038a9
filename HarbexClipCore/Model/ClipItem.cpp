#include "HarbexClipCore/Model/ClipItem.hpp"

#include <unicode/uchar.h>

#include <cmath>
#include <cstdio>

#include "HarbexClipCore/Model/RecordCoding.hpp"
#include "HarbexClipCore/Support/ByteCount.hpp"
#include "HarbexClipCore/Support/Digest.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {

namespace {

constexpr std::size_t kTitleScanCharacters = 4000;
constexpr std::size_t kTitleCharacters = 160;

bool isLineSeparator(char32_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

// Spaces and tabs: the tab and every space separator (Zs), not line breaks.
bool isSpaceOrTab(char32_t c) {
    if (c == U' ' || c == U'\t') return true;
    if (c < 0x80) return false;
    return u_charType(static_cast<UChar32>(c)) == U_SPACE_SEPARATOR;
}

// Decodes one code point without moving, for trimming from either end.
char32_t codePointAt(std::string_view text, std::size_t offset, std::size_t& next) {
    next = offset;
    return nextCodePoint(text, next);
}

// The start of the code point that ends at `end` (a lead byte, or a stray continuation byte).
std::size_t previousCodePointStart(std::string_view text, std::size_t end) {
    std::size_t start = end - 1;
    const std::size_t limit = end >= 4 ? end - 4 : 0;
    while (start > limit && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80) --start;
    return start;
}

template <class Predicate>
std::string_view trimmed(std::string_view text, Predicate trims) {
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t next = 0;
        if (!trims(codePointAt(text, begin, next))) break;
        begin = next;
    }
    std::size_t end = text.size();
    while (end > begin) {
        const std::size_t start = previousCodePointStart(text, end);
        std::size_t next = 0;
        const char32_t c = codePointAt(text, start, next);
        if (next != end || !trims(c)) break;
        end = start;
    }
    return text.substr(begin, end - begin);
}

// Calls `visit` with each piece between line separators, a CR LF pair being one separator, until
// it returns true. Empty pieces are visited too.
template <class Visit>
void forEachLine(std::string_view text, Visit visit) {
    std::size_t start = 0;
    std::size_t offset = 0;
    while (offset < text.size()) {
        const std::size_t at = offset;
        const unsigned char byte = static_cast<unsigned char>(text[offset]);
        char32_t c = 0;
        if (byte < 0x80) {
            c = byte;
            ++offset;
        } else {
            c = nextCodePoint(text, offset);
        }
        if (!isLineSeparator(c)) continue;
        if (c == U'\r' && offset < text.size() && text[offset] == '\n') ++offset;
        if (visit(text.substr(start, at - start))) return;
        start = offset;
    }
    visit(text.substr(start));
}

std::int64_t lineCount(std::string_view text) {
    if (text.empty()) return 0;
    std::int64_t lines = 0;
    forEachLine(text, [&](std::string_view) {
        ++lines;
        return false;
    });
    return lines;
}

// The first line that is not blank, trimmed, at most 160 characters, looking only at the first
// 4,000 characters. Works forwards from the start so that it reads the blank lines before the
// title and about 160 characters of it, not the whole window. Line separators and spaces are
// single characters (grapheme breaks always surround controls and space separators), so they
// are counted one a code point.
std::string firstLineTitle(std::string_view text) {
    std::size_t used = 0;  // characters before `offset`
    std::size_t offset = 0;
    while (offset < text.size() && used < kTitleScanCharacters) {
        std::size_t next = offset;
        const char32_t c = nextCodePoint(text, next);
        if (isLineSeparator(c) || isSpaceOrTab(c)) {
            if (c == U'\r' && next < text.size() && text[next] == '\n') ++next;
            ++used;
            offset = next;
            continue;
        }
        // The first visible character: its line is the title.
        const std::size_t budget = kTitleScanCharacters - used;
        std::string_view line =
            characterPrefix(text.substr(offset), std::min(budget, kTitleCharacters + 1));
        std::size_t lineEnd = 0;
        while (lineEnd < line.size()) {
            std::size_t after = lineEnd;
            if (isLineSeparator(nextCodePoint(line, after))) break;
            lineEnd = after;
        }
        line = line.substr(0, lineEnd);
        const std::string_view head = characterPrefix(line, kTitleCharacters);
        if (head.size() == line.size()) return std::string(trimmed(line, isSpaceOrTab));
        // Longer than a title: trailing spaces matter only when nothing but spaces follows them
        // on the line (within the window).
        std::size_t restUsed = used + kTitleCharacters;
        std::size_t rest = offset + head.size();
        while (rest < text.size() && restUsed < kTitleScanCharacters) {
            std::size_t after = rest;
            const char32_t r = nextCodePoint(text, after);
            if (isLineSeparator(r)) break;
            if (!isSpaceOrTab(r)) return std::string(head);
            ++restUsed;
            rest = after;
        }
        return std::string(trimmed(head, isSpaceOrTab));
    }
    // Nothing visible in the window. The whole window trimmed of white space and line breaks
    // would be empty too: it holds nothing but line separators, spaces and tabs.
    return {};
}

std::string_view lastPathComponent(std::string_view path) {
    // "/a/b/" names b, as file managers show it; "/" stays "/".
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos || path.size() == 1) return path;
    return path.substr(slash + 1);
}

std::string wholeNumber(double value) {
    // Truncated towards zero; sizes beyond any real image are clamped rather than overflowing.
    const double clamped = std::isfinite(value) ? std::clamp(std::trunc(value), -1e15, 1e15) : 0;
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(clamped));
    return buffer;
}

std::string imageTitle(const std::optional<ClipImageInfo>& image) {
    if (!image || !(image->width > 0)) return "Image";
    return "Image " + wholeNumber(image->width) + " \u00D7 " + wholeNumber(image->height);
}

std::string withoutWww(std::string_view host) {
    if (host.starts_with("www.")) host.remove_prefix(4);
    return std::string(host);
}

}  // namespace

TextCounts TextCounts::of(std::string_view text) {
    return TextCounts{characterCount(text), wordCount(text), lineCount(text)};
}

std::string fingerprint(ClipKind kind, const std::optional<std::string>& text,
                        const std::optional<std::vector<std::string>>& filePaths,
                        const std::optional<std::string>& imageDigest) {
    std::string key;
    const auto appendTagged = [&](char tag, std::string_view content) {
        key.reserve(2 + content.size());
        key += tag;
        key += '\0';
        key += content;
    };
    switch (kind) {
        case ClipKind::link: appendTagged('l', text.value_or(std::string())); break;
        case ClipKind::image: appendTagged('i', imageDigest.value_or(std::string())); break;
        case ClipKind::file: {
            appendTagged('f', {});
            if (filePaths) {
                for (std::size_t i = 0; i < filePaths->size(); ++i) {
                    if (i > 0) key += '\n';
                    key += (*filePaths)[i];
                }
            }
            break;
        }
        case ClipKind::text:
        case ClipKind::richText:
        case ClipKind::color:
        case ClipKind::code: appendTagged('t', text ? std::string_view(*text) : ""); break;
    }
    return sha256Hex(std::string_view(key));
}

namespace {
std::string fingerprintOf(const ClipItem& item) {
    std::optional<std::string> digest;
    if (item.image) digest = item.image->digest;
    return fingerprint(item.kind, item.text, item.filePaths, digest);
}
}  // namespace

ClipItem ClipItem::make(ClipContent content, std::vector<ClipDetail> details, ClipSource source,
                        Date captured, ClipSensitivity sensitivity, std::optional<Uuid> id) {
    ClipItem item;
    item.id = id ? *id : Uuid::random();
    item.kind = content.kind;
    item.text = std::move(content.text);
    item.rtf = std::move(content.rtf);
    item.html = std::move(content.html);
    item.filePaths = std::move(content.filePaths);
    item.image = std::move(content.image);
    item.linkTitle = std::move(content.linkTitle);
    item.colorHex = std::move(content.colorHex);
    item.details = std::move(details);
    item.appID = std::move(source.appID);
    item.appName = std::move(source.appName);
    item.date = captured;
    item.firstCopied = captured;
    item.timesCopied = 1;
    item.timesPasted = 0;
    item.isSensitive = sensitivity == ClipSensitivity::sensitive;
    item.fingerprint = fingerprintOf(item);
    return item;
}

ClipEditOutcome ClipItem::edit(std::string newText) {
    if (!original) {
        // The current content is the base: the same text again changes nothing.
        if (text && *text == newText) return ClipEditOutcome::unchanged;
        original = ClipOriginal{kind, std::move(text), std::move(rtf), std::move(html)};
        text = std::move(newText);
        rtf.reset();
        html.reset();
        if (kind == ClipKind::richText) kind = ClipKind::text;
        fingerprint = fingerprintOf(*this);
        return ClipEditOutcome::edited;
    }
    if (original->text && *original->text == newText) {
        kind = original->kind;
        text = std::move(original->text);
        rtf = std::move(original->rtf);
        html = std::move(original->html);
        original.reset();
        fingerprint = fingerprintOf(*this);
        return ClipEditOutcome::reverted;
    }
    // A further edit: the first captured content stays the original.
    const ClipKind editedKind = kind == ClipKind::richText ? ClipKind::text : kind;
    if (text && *text == newText && !rtf && !html && kind == editedKind) {
        return ClipEditOutcome::unchanged;
    }
    text = std::move(newText);
    rtf.reset();
    html.reset();
    kind = editedKind;
    fingerprint = fingerprintOf(*this);
    return ClipEditOutcome::edited;
}

std::string displayAddress(std::string_view address) {
    std::string_view rest = address;
    if (rest.starts_with("https://")) {
        rest.remove_prefix(8);
    } else if (rest.starts_with("http://")) {
        rest.remove_prefix(7);
    } else {
        return std::string(characterPrefix(rest, kTitleCharacters));
    }
    if (rest.starts_with("www.")) rest.remove_prefix(4);
    if (rest.ends_with('/') &&
        rest.substr(0, rest.size() - 1).find('/') == std::string_view::npos) {
        rest.remove_suffix(1);
    }
    return std::string(characterPrefix(rest, kTitleCharacters));
}

std::string ClipItem::title() const {
    if (customTitle && !customTitle->empty()) return *customTitle;
    switch (kind) {
        case ClipKind::file: {
            if (!filePaths || filePaths->empty()) return "File";
            std::string first(lastPathComponent(filePaths->front()));
            if (filePaths->size() == 1) return first;
            return first + " and " + std::to_string(filePaths->size() - 1) + " more";
        }
        case ClipKind::link:
            if (linkTitle && !linkTitle->empty()) return *linkTitle;
            return displayAddress(text ? std::string_view(*text) : "");
        case ClipKind::image: return imageTitle(image);
        case ClipKind::color:
            if (colorHex) return *colorHex;
            break;
        case ClipKind::text:
        case ClipKind::richText:
        case ClipKind::code: break;
    }
    return firstLineTitle(text ? std::string_view(*text) : "");
}

std::string ClipItem::subtitle() const {
    switch (kind) {
        case ClipKind::file:
            if (!filePaths || filePaths->size() < 2) return "File";
            return std::to_string(filePaths->size()) + " files";
        case ClipKind::color: return "Colour";
        case ClipKind::image: return image ? formatByteCount(image->byteCount) : "Image";
        case ClipKind::link: return host().value_or("Link");
        case ClipKind::text:
        case ClipKind::richText:
        case ClipKind::code: break;
    }
    const std::string_view body = text ? std::string_view(*text) : "";
    // Only what is shown is counted: words are not needed here.
    const std::int64_t lines = lineCount(body);
    if (lines < 2) return std::to_string(characterCount(body)) + " characters";
    return std::to_string(lines) + " lines";
}

std::optional<Url> ClipItem::url() const {
    if (kind != ClipKind::link || !text) return std::nullopt;
    return Url::parse(*text);
}

std::optional<std::string> ClipItem::host() const {
    const auto address = url();
    if (!address || !address->hasHost()) return std::nullopt;
    return withoutWww(*address->host);
}

// Each record's keys, in declaration order, for both the value-tree and the text writer.
template <class Writer>
Writer& writeFields(Writer& writer, const ClipImageInfo& info) {
    return writer.field("type", info.type)
        .field("width", info.width)
        .field("height", info.height)
        .field("byteCount", info.byteCount)
        .field("digest", info.digest);
}

template <class Writer>
Writer& writeFields(Writer& writer, const ClipOriginal& original) {
    return writer.field("kind", original.kind)
        .optional("text", original.text)
        .optional("rtf", original.rtf)
        .optional("html", original.html);
}

template <class Writer>
Writer& writeFields(Writer& writer, const ClipItem& item) {
    return writer.field("id", item.id)
        .field("kind", item.kind)
        .optional("text", item.text)
        .optional("rtf", item.rtf)
        .optional("html", item.html)
        .optional("filePaths", item.filePaths)
        .optional("image", item.image)
        .optional("linkTitle", item.linkTitle)
        .optional("colorHex", item.colorHex)
        .field("details", item.details)
        .optional("appID", item.appID)
        .optional("appName", item.appName)
        .field("date", item.date)
        .field("firstCopied", item.firstCopied)
        .field("timesCopied", item.timesCopied)
        .field("timesPasted", item.timesPasted)
        .optional("lastPasted", item.lastPasted)
        .optional("customTitle", item.customTitle)
        .optional("ocrText", item.ocrText)
        .field("isSensitive", item.isSensitive)
        .optional("expiresAt", item.expiresAt)
        .field("fingerprint", item.fingerprint)
        .optional("original", item.original);
}

JsonValue encodeJson(const ClipImageInfo& info) { return encodeRecord(info); }
void writeJson(JsonTextWriter& writer, const ClipImageInfo& info) { writeRecord(writer, info); }

JsonStatus decodeJson(const JsonValue& json, ClipImageInfo& out) {
    ClipImageInfo info;
    JsonStrictReader reader(json);
    reader.required("type", info.type)
        .required("width", info.width)
        .required("height", info.height)
        .required("byteCount", info.byteCount)
        .required("digest", info.digest);
    if (!reader.ok()) return reader.status();
    out = std::move(info);
    return {};
}

JsonValue encodeJson(const ClipOriginal& original) { return encodeRecord(original); }
void writeJson(JsonTextWriter& writer, const ClipOriginal& original) {
    writeRecord(writer, original);
}

JsonStatus decodeJson(const JsonValue& json, ClipOriginal& out) {
    ClipOriginal original;
    JsonStrictReader reader(json);
    reader.required("kind", original.kind)
        .optional("text", original.text)
        .optional("rtf", original.rtf)
        .optional("html", original.html);
    if (!reader.ok()) return reader.status();
    out = std::move(original);
    return {};
}

JsonValue encodeJson(const ClipItem& item) { return encodeRecord(item); }
void writeJson(JsonTextWriter& writer, const ClipItem& item) { writeRecord(writer, item); }

JsonStatus decodeJson(const JsonValue& json, ClipItem& out) {
    // Read into a fresh record so that a failed read leaves `out` as it was.
    ClipItem item;
    JsonStrictReader reader(json);
    reader.required("id", item.id)
        .required("kind", item.kind)
        .optional("text", item.text)
        .optional("rtf", item.rtf)
        .optional("html", item.html)
        .optional("filePaths", item.filePaths)
        .optional("image", item.image)
        .optional("linkTitle", item.linkTitle)
        .optional("colorHex", item.colorHex)
        .required("details", item.details)
        .optional("appID", item.appID)
        .optional("appName", item.appName)
        .required("date", item.date)
        .required("firstCopied", item.firstCopied)
        .required("timesCopied", item.timesCopied)
        .required("timesPasted", item.timesPasted)
        .optional("lastPasted", item.lastPasted)
        .optional("customTitle", item.customTitle)
        .optional("ocrText", item.ocrText)
        .required("isSensitive", item.isSensitive)
        .optional("expiresAt", item.expiresAt)
        .required("fingerprint", item.fingerprint)
        .optional("original", item.original);
    if (!reader.ok()) return reader.status();
    out = std::move(item);
    return {};
}

}  // namespace harbex
