#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Support/Json.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"
#include "HarbexKit/AnyJSON.hpp"

namespace harbex {

// One pin in the file shared with Harbex Tidepool. Members this version does not know are kept
// in `unknown` and written back unchanged, so either application may add fields. Thread: any
// (a value).
struct PinRecord {
    // "files" is plural here, unlike the history's `file`: the sibling's name for it.
    enum class Kind { text, link, files, image };

    Uuid id;  // the id of the ClipItem the pin was made from
    Kind kind = Kind::text;
    std::optional<std::string> text;  // the text, or the address of a link
    std::optional<std::vector<std::string>> paths;
    std::optional<std::string> imageType;
    std::optional<double> width;
    std::optional<double> height;
    std::optional<std::string> appID;
    std::optional<std::string> appName;
    Date date;
    std::map<std::string, AnyJSON> unknown;

    friend bool operator==(const PinRecord&, const PinRecord&) = default;
};

template <>
struct EnumNames<PinRecord::Kind> {
    static constexpr std::array values{
        std::pair{PinRecord::Kind::text, std::string_view("text")},
        std::pair{PinRecord::Kind::link, std::string_view("link")},
        std::pair{PinRecord::Kind::files, std::string_view("files")},
        std::pair{PinRecord::Kind::image, std::string_view("image")},
    };
};

// The whole "clipboard-pins.json" document.
struct ClipboardPins {
    static constexpr std::int64_t kCurrentVersion = 1;
    static constexpr std::string_view kDocumentName = "clipboard-pins.json";

    std::int64_t version = kCurrentVersion;
    std::vector<PinRecord> pins;  // in the user's order
    std::map<std::string, AnyJSON> unknown;

    friend bool operator==(const ClipboardPins&, const ClipboardPins&) = default;
};

JsonValue encodeJson(const PinRecord& record);
// Strict: `id`, `kind` (a known case) and `date` are required; a present member of the wrong
// type fails the record.
JsonStatus decodeJson(const JsonValue& json, PinRecord& out);

JsonValue encodeJson(const ClipboardPins& document);
// A pins element that cannot be read as a PinRecord is dropped and the others kept, so one pin
// written by a newer or older sibling does not lose the rest. A missing `version` or `pins` takes
// its default; a present one of the wrong type, or a document that is not an object, fails (the
// caller sets the file aside rather than overwrite what it cannot read).
JsonStatus decodeJson(const JsonValue& json, ClipboardPins& out);

}  // namespace harbex
