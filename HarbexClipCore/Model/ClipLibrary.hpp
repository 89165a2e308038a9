#pragma once

// The whole remembered history as one value: the copies, newest first, and the user's pinboards.
// This is exactly the document the store seals. Values only; thread: any.

#include <cstddef>
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

// What repairIdentities put right in a library that was read.
struct ClipLibraryRepairs {
    std::size_t droppedItems = 0;         // exact repeats of an earlier item
    std::size_t renumberedItems = 0;      // another item under an id already taken: a fresh id
    std::size_t droppedBoards = 0;        // exact repeats of an earlier board
    std::size_t renumberedBoards = 0;     // another board under a board id already taken
    std::size_t droppedBoardEntries = 0;  // ids repeated on one board, or naming no item

    friend bool operator==(const ClipLibraryRepairs&, const ClipLibraryRepairs&) = default;
};

// Makes every item id and board id unique and every board entry name one item, once, without
// losing any content: a later item or board that repeats an earlier one exactly is dropped; one
// that differs but carries a taken id gets a fresh id (boards keep pointing at the first, which
// is the newer copy); a board entry repeated or naming no item is dropped. A library written by
// this program is never changed. Images are named by digest, so a fresh id keeps its image.
ClipLibraryRepairs repairIdentities(ClipLibrary& library);

JsonValue encodeJson(const Pinboard& board);
void writeJson(JsonTextWriter& writer, const Pinboard& board);
JsonStatus decodeJson(const JsonValue& json, Pinboard& out);
// Every key is required; one bad item or board fails the whole document, with its path. A
// document that decodes is passed through repairIdentities, so what is read is always a history
// the operations on it can trust.
JsonValue encodeJson(const ClipLibrary& library);
// The same text as serializeJson(encodeJson(library)) without building the value tree: what the
// store writes on every save.
void writeJson(JsonTextWriter& writer, const ClipLibrary& library);
JsonStatus decodeJson(const JsonValue& json, ClipLibrary& out);

}  // namespace harbex
