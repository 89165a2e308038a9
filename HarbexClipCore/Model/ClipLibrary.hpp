#pragma once

// The whole remembered history as one value: the copies, newest first, and the user's pinboards.
// This is exactly the document the store seals. Values only; thread: any.

#include <cstdint>
#include <string>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Json.hpp"
#include "HarbexClipCore/Support/JsonTextWriter.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

// A named board of copies, in the user's order. A copy may appear on several boards.
struct Pinboard {
    Uuid id{};
    std::string name{};
    std::string color{};   // a colour name
    std::string symbol{};  // the name of the symbol shown for the board
    std::vector<Uuid> itemIDs{};

    friend bool operator==(const Pinboard&, const Pinboard&) = default;
};

struct ClipLibrary {
    // The format version written into new documents; readers accept what they wrote.
    static constexpr std::int64_t kCurrentVersion = 1;

    std::int64_t version = kCurrentVersion;
    std::vector<ClipItem> items{};  // newest first
    std::vector<Pinboard> pinboards{};

    friend bool operator==(const ClipLibrary&, const ClipLibrary&) = default;
};

JsonValue encodeJson(const Pinboard& board);
void writeJson(JsonTextWriter& writer, const Pinboard& board);
JsonStatus decodeJson(const JsonValue& json, Pinboard& out);
// Every key is required; one bad item or board fails the whole document, with its path.
JsonValue encodeJson(const ClipLibrary& library);
// The same text as serializeJson(encodeJson(library)) without building the value tree: what the
// store writes on every save.
void writeJson(JsonTextWriter& writer, const ClipLibrary& library);
JsonStatus decodeJson(const JsonValue& json, ClipLibrary& out);

}  // namespace harbex
