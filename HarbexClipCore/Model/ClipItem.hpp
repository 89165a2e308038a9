#pragma once

// The copy record: one remembered copy, its parts, and the texts derived from it for display.
// Values only; thread: any (a value is not shared between threads while it changes).

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HarbexClipCore/Model/ClipKind.hpp"
#include "HarbexClipCore/Support/Bytes.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Support/Json.hpp"
#include "HarbexClipCore/Support/JsonTextWriter.hpp"
#include "HarbexClipCore/Support/Url.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

// Something recognised inside a textual copy.
enum class ClipDetail { email, phone, number, oneTimeCode };

template <>
struct EnumNames<ClipDetail> {
    static constexpr std::array values{
        std::pair{ClipDetail::email, std::string_view("email")},
        std::pair{ClipDetail::phone, std::string_view("phone")},
        std::pair{ClipDetail::number, std::string_view("number")},
        std::pair{ClipDetail::oneTimeCode, std::string_view("oneTimeCode")},
    };
};

// The description of an image copy; the bytes themselves are stored apart, named by `digest`.
struct ClipImageInfo {
    std::string type{};
    double width = 0;
    double height = 0;
    std::int64_t byteCount = 0;
    std::string digest{};

    friend bool operator==(const ClipImageInfo&, const ClipImageInfo&) = default;
};

// The content as first captured, kept while the user's edit stands in for it.
struct ClipOriginal {
    ClipKind kind = ClipKind::text;
    std::optional<std::string> text{};
    std::optional<Bytes> rtf{};
    std::optional<Bytes> html{};

    friend bool operator==(const ClipOriginal&, const ClipOriginal&) = default;
};

// What a new copy holds, as capture hands it over.
struct ClipContent {
    ClipKind kind = ClipKind::text;
    std::optional<std::string> text{};
    std::optional<Bytes> rtf{};
    std::optional<Bytes> html{};
    std::optional<std::vector<std::string>> filePaths{};
    std::optional<ClipImageInfo> image{};
    std::optional<std::string> linkTitle{};
    std::optional<std::string> colorHex{};

    friend bool operator==(const ClipContent&, const ClipContent&) = default;
};

// The application that owned a copy.
struct ClipSource {
    std::optional<std::string> appID{};
    std::optional<std::string> appName{};

    friend bool operator==(const ClipSource&, const ClipSource&) = default;
};

enum class ClipSensitivity { ordinary, sensitive };

// What an edit did to an item.
enum class ClipEditOutcome {
    unchanged,  // the text was already the item's own: nothing to do
    edited,     // the new text stands in for the original, which is kept
    reverted,   // the text matched the original, which was put back
};

// Statistics of a text, computed on demand and never stored.
struct TextCounts {
    std::int64_t characters = 0;  // user-perceived characters
    std::int64_t words = 0;
    std::int64_t lines = 0;  // 0 for empty text; empty pieces between separators count

    // Thread: any. Cost grows with the text; call on demand, not per row.
    static TextCounts of(std::string_view text);

    friend bool operator==(const TextCounts&, const TextCounts&) = default;
};

struct ClipItem {
    Uuid id{};
    ClipKind kind = ClipKind::text;
    std::optional<std::string> text{};
    std::optional<Bytes> rtf{};
    std::optional<Bytes> html{};
    std::optional<std::vector<std::string>> filePaths{};
    std::optional<ClipImageInfo> image{};
    std::optional<std::string> linkTitle{};
    std::optional<std::string> colorHex{};
    std::vector<ClipDetail> details{};
    std::optional<std::string> appID{};
    std::optional<std::string> appName{};
    Date date{};
    Date firstCopied{};
    std::int64_t timesCopied = 1;
    std::int64_t timesPasted = 0;
    std::optional<Date> lastPasted{};
    std::optional<std::string> customTitle{};
    std::optional<std::string> ocrText{};
    bool isSensitive = false;
    std::optional<Date> expiresAt{};
    std::string fingerprint{};
    std::optional<ClipOriginal> original{};

    // A new copy captured at `captured`: a fresh id unless `id` is given, both dates the capture
    // time, copied once, never pasted, and its fingerprint computed from the content.
    static ClipItem make(ClipContent content, std::vector<ClipDetail> details, ClipSource source,
                         Date captured, ClipSensitivity sensitivity,
                         std::optional<Uuid> id = std::nullopt);

    // Puts the user's text in place of the content, keeping the first captured content in
    // `original` (edits are plain text; rich text becomes text), or restores that content when
    // `newText` equals it. Identity, dates and counters are left alone.
    ClipEditOutcome edit(std::string newText);

    // The display title: custom title, file names, colour, link title or address, image size, or
    // the first non-blank line. Looks at no more than 4,000 characters; at most 160 come back.
    std::string title() const;
    // The secondary line: a count of files, characters or lines, a size, a host, or the kind.
    // For textual kinds this counts the whole text.
    std::string subtitle() const;
    // For a link: the host of its address without a leading "www.".
    std::optional<std::string> host() const;
    // For a link: its address, parsed.
    std::optional<Url> url() const;

    friend bool operator==(const ClipItem&, const ClipItem&) = default;
};

// The content key by which identical copies merge: SHA-256, in lower-case hex, of a one-letter
// tag, U+0000 and the content. Colour and code share plain text's tag; formatting never counts.
std::string fingerprint(ClipKind kind, const std::optional<std::string>& text,
                        const std::optional<std::vector<std::string>>& filePaths,
                        const std::optional<std::string>& imageDigest);

// The display form of a web address: without "http(s)://" and "www.", without the slash of a bare
// host, at most 160 characters.
std::string displayAddress(std::string_view address);

JsonValue encodeJson(const ClipImageInfo& info);
void writeJson(JsonTextWriter& writer, const ClipImageInfo& info);
JsonStatus decodeJson(const JsonValue& json, ClipImageInfo& out);
JsonValue encodeJson(const ClipOriginal& original);
void writeJson(JsonTextWriter& writer, const ClipOriginal& original);
JsonStatus decodeJson(const JsonValue& json, ClipOriginal& out);
// Every required key must be present and well typed, or the record fails as a whole.
JsonValue encodeJson(const ClipItem& item);
// The same text as serializeJson(encodeJson(item)), written without a value tree.
void writeJson(JsonTextWriter& writer, const ClipItem& item);
JsonStatus decodeJson(const JsonValue& json, ClipItem& out);

}  // namespace harbex
