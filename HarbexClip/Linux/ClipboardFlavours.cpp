#include "HarbexClip/Linux/ClipboardFlavours.hpp"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "HarbexClipCore/Pasteboard/FileUrls.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {
namespace {

struct ImageFlavour {
    std::string_view role;
    std::string_view mime;
};
constexpr std::array<ImageFlavour, 4> kImageFlavours{{
    {kPngType, "image/png"},
    {kTiffType, "image/tiff"},
    {kJpegType, "image/jpeg"},
    {kHeicType, "image/heic"},
}};

constexpr std::array<std::string_view, 9> kMetaTargets{
    "TARGETS",          "TIMESTAMP",       "MULTIPLE",    "SAVE_TARGETS", "DELETE",
    "INSERT_SELECTION", "INSERT_PROPERTY", "_NET_WM_PID", "_NET_WM_NAME"};

constexpr std::array<std::string_view, 5> kTextFlavours{"UTF8_STRING", "text/plain;charset=utf-8",
                                                        "STRING", "TEXT", "text/plain"};

std::string latin1ToUtf8(const Bytes& data) {
    std::string out;
    out.reserve(data.size());
    for (std::uint8_t byte : data) appendUtf8(out, byte);
    return out;
}

Bytes utf8ToLatin1(std::string_view text) {
    Bytes out;
    out.reserve(text.size());
    std::size_t offset = 0;
    while (offset < text.size()) {
        const char32_t code = nextCodePoint(text, offset);
        out.push_back(code <= 0xFF ? std::uint8_t(code) : std::uint8_t('?'));
    }
    return out;
}

// The first declared name whose owner gives data; when it gives nothing the next declared one is
// tried.
std::optional<Bytes> readFirst(const FlavourSource& source,
                               std::initializer_list<std::string_view> names,
                               std::string_view* which = nullptr) {
    for (std::string_view name : names) {
        if (!source.declares(name)) continue;
        if (auto data = source.read(name)) {
            if (which) *which = name;
            return data;
        }
    }
    return std::nullopt;
}

std::optional<std::string> readString(const FlavourSource& source, std::string_view name) {
    auto data = readFirst(source, {name});
    if (!data) return std::nullopt;
    return stringOf(*data);
}

}  // namespace

std::vector<std::string> rolesForFlavour(std::string_view name) {
    if (std::ranges::find(kMetaTargets, name) != kMetaTargets.end()) return {};
    if (std::ranges::find(kTextFlavours, name) != kTextFlavours.end())
        return {std::string(kPlainTextType)};
    if (name == "text/html") return {std::string(kHtmlType)};
    if (name == "text/rtf" || name == "text/richtext") return {std::string(kRtfType)};
    if (name == "text/uri-list" || name == "x-special/gnome-copied-files")
        return {std::string(kFileUrlType)};
    if (name == "text/x-moz-url") return {std::string(kUrlType), std::string(kUrlTitleType)};
    for (const ImageFlavour& image : kImageFlavours) {
        if (image.mime == name) return {std::string(image.role)};
    }
    return {std::string(name)};
}

std::vector<std::string> rolesForFlavours(const std::vector<std::string>& names) {
    std::vector<std::string> result;
    for (const auto& name : names) {
        for (auto& role : rolesForFlavour(name)) {
            if (std::ranges::find(result, role) == result.end()) result.push_back(std::move(role));
        }
    }
    return result;
}

PasteboardSnapshot readSnapshot(std::vector<std::string> types, const FlavourSource& source) {
    PasteboardSnapshot snapshot;
    snapshot.types = std::move(types);
    snapshot.sourceID = readString(source, kSourceType);
    snapshot.passwordManagerHint = readString(source, kPasswordManagerHintType);
    std::string_view filesName;
    if (auto list =
            readFirst(source, {"text/uri-list", "x-special/gnome-copied-files"}, &filesName)) {
        std::string text = stringOf(*list);
        if (filesName == "x-special/gnome-copied-files") {
            // "copy" or "cut", then one URL per line.
            const auto newline = text.find('\n');
            text = newline == std::string::npos ? std::string() : text.substr(newline + 1);
        }
        snapshot.fileURLs = urlsFromUriList(text);
    }
    std::string_view textName;
    if (auto text =
            readFirst(source, {"UTF8_STRING", "text/plain;charset=utf-8", "STRING", "text/plain"},
                      &textName)) {
        snapshot.string = textName == "STRING" ? latin1ToUtf8(*text) : stringOf(*text);
    }
    snapshot.rtf = readFirst(source, {"text/rtf", "text/richtext"});
    if (auto html = readFirst(source, {"text/html"})) {
        snapshot.html = bytesOf(decodeMaybeUtf16(*html, false));
    }
    if (!snapshot.string) {
        if (auto mozUrl = readFirst(source, {"text/x-moz-url"})) {
            const std::string text = decodeMaybeUtf16(*mozUrl, true);
            const auto newline = text.find('\n');
            std::string url = text.substr(0, newline);
            while (!url.empty() && (url.back() == '\r' || url.back() == '\0')) url.pop_back();
            if (!url.empty()) snapshot.url = url;
            if (newline != std::string::npos) {
                std::string title = text.substr(newline + 1);
                while (!title.empty() && (title.back() == '\n' || title.back() == '\r'))
                    title.pop_back();
                if (!title.empty()) snapshot.urlTitle = title;
            }
        }
    }
    if (snapshot.fileURLs.empty() && !snapshot.string) {
        for (const ImageFlavour& image : kImageFlavours) {
            if (!source.declares(image.mime)) continue;
            if (auto data = source.read(image.mime))
                snapshot.image = ClipImagePayload{std::string(image.role), std::move(*data)};
            break;
        }
    }
    return snapshot;
}

std::vector<ServedFlavour> flavoursForPayload(const ClipPayload& payload,
                                              std::optional<std::string_view> sourceID) {
    std::vector<ServedFlavour> flavours;
    auto serve = [&](std::string_view name, Bytes data) {
        flavours.push_back(ServedFlavour{std::string(name), std::move(data)});
    };
    if (!payload.fileURLs.empty()) {
        serve("text/uri-list", bytesOf(uriListFromUrls(payload.fileURLs)));
        std::string copied = "copy";
        for (const auto& url : payload.fileURLs) copied += "\n" + url;
        serve("x-special/gnome-copied-files", bytesOf(copied));
    } else if (payload.url && parsesAsUrl(*payload.url)) {
        serve("text/x-moz-url", bytesOf(*payload.url));
    }
    if (payload.image) {
        for (const ImageFlavour& image : kImageFlavours) {
            if (image.role == payload.image->type) serve(image.mime, payload.image->data);
        }
    }
    if (payload.text) {
        const Bytes utf8 = bytesOf(*payload.text);
        serve("UTF8_STRING", utf8);
        serve("text/plain;charset=utf-8", utf8);
        serve("text/plain", utf8);
        serve("TEXT", utf8);
        serve("STRING", utf8ToLatin1(*payload.text));
    }
    if (payload.rtf) serve("text/rtf", *payload.rtf);
    if (payload.html) serve("text/html", *payload.html);
    serve(kOwnWriteType, {});
    if (payload.concealed) {
        serve(kConcealedType, {});
        serve(kPasswordManagerHintType, bytesOf(kPasswordManagerHintSecret));
    }
    if (sourceID) serve(kSourceType, bytesOf(*sourceID));
    return flavours;
}

std::string decodeMaybeUtf16(const Bytes& data, bool assumeLittleEndian) {
    bool little = false;
    std::size_t start = 0;
    if (data.size() >= 2 && data[0] == 0xFF && data[1] == 0xFE) {
        little = true;
        start = 2;
    } else if (data.size() >= 2 && data[0] == 0xFE && data[1] == 0xFF) {
        start = 2;
    } else if (assumeLittleEndian && data.size() >= 2 && data.size() % 2 == 0 && data[1] == 0) {
        little = true;
    } else {
        return stringOf(data);
    }
    std::string out;
    out.reserve(data.size() / 2);
    auto unit = [&](std::size_t i) -> char16_t {
        return little ? char16_t(data[i] | (data[i + 1] << 8))
                      : char16_t((data[i] << 8) | data[i + 1]);
    };
    for (std::size_t i = start; i + 1 < data.size(); i += 2) {
        char32_t code = unit(i);
        if (code >= 0xD800 && code < 0xDC00 && i + 3 < data.size()) {
            const char32_t low = unit(i + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                i += 2;
            } else {
                code = 0xFFFD;
            }
        } else if (code >= 0xD800 && code < 0xE000) {
            code = 0xFFFD;
        }
        if (code == 0) break;  // some writers terminate with NUL
        appendUtf8(out, code);
    }
    return out;
}

}  // namespace harbex
