#include "HarbexClipCore/Model/ClipLibrary.hpp"

#include "HarbexClipCore/Model/RecordCoding.hpp"

#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace harbex {

// Each record's keys, in declaration order, for both the value-tree and the text writer.
template <class Writer>
Writer& writeFields(Writer& writer, const Pinboard& board) {
    return writer.field("id", board.id)
        .field("name", board.name)
        .field("color", board.color)
        .field("symbol", board.symbol)
        .field("itemIDs", board.itemIDs);
}

template <class Writer>
Writer& writeFields(Writer& writer, const ClipLibrary& library) {
    return writer.field("version", library.version)
        .field("items", library.items)
        .field("pinboards", library.pinboards);
}

namespace {

// Keeps the first of each id; a later record with a taken id is dropped when it repeats the
// kept one exactly, and otherwise kept under a fresh id. Returns the two counts.
template <class Record>
std::pair<std::size_t, std::size_t> uniqueIdentities(std::vector<Record>& records) {
    std::unordered_map<Uuid, std::size_t> firstAt;
    firstAt.reserve(records.size());
    std::size_t dropped = 0;
    std::size_t renumbered = 0;
    std::size_t kept = 0;
    for (std::size_t index = 0; index < records.size(); ++index) {
        Record& record = records[index];
        const auto [found, fresh] = firstAt.try_emplace(record.id, kept);
        if (!fresh) {
            if (records[found->second] == record) {
                ++dropped;
                continue;
            }
            do {
                record.id = Uuid::random();
            } while (!firstAt.try_emplace(record.id, kept).second);
            ++renumbered;
        }
        if (kept != index) records[kept] = std::move(record);
        ++kept;
    }
    records.resize(kept);
    return {dropped, renumbered};
}

}  // namespace

ClipLibraryRepairs repairIdentities(ClipLibrary& library) {
    ClipLibraryRepairs repairs;
    std::tie(repairs.droppedItems, repairs.renumberedItems) = uniqueIdentities(library.items);
    std::tie(repairs.droppedBoards, repairs.renumberedBoards) = uniqueIdentities(library.pinboards);
    std::unordered_set<Uuid> items;
    items.reserve(library.items.size());
    for (const auto& item : library.items) items.insert(item.id);
    std::unordered_set<Uuid> onBoard;
    for (auto& board : library.pinboards) {
        onBoard.clear();
        repairs.droppedBoardEntries += std::erase_if(board.itemIDs, [&](const Uuid& id) {
            return !items.contains(id) || !onBoard.insert(id).second;
        });
    }
    return repairs;
}

JsonValue encodeJson(const Pinboard& board) { return encodeRecord(board); }
void writeJson(JsonTextWriter& writer, const Pinboard& board) { writeRecord(writer, board); }

JsonStatus decodeJson(const JsonValue& json, Pinboard& out) {
    Pinboard board;
    JsonStrictReader reader(json);
    reader.required("id", board.id)
        .required("name", board.name)
        .required("color", board.color)
        .required("symbol", board.symbol)
        .required("itemIDs", board.itemIDs);
    if (!reader.ok()) return reader.status();
    out = std::move(board);
    return {};
}

JsonValue encodeJson(const ClipLibrary& library) { return encodeRecord(library); }
void writeJson(JsonTextWriter& writer, const ClipLibrary& library) { writeRecord(writer, library); }

JsonStatus decodeJson(const JsonValue& json, ClipLibrary& out) {
    ClipLibrary library;
    JsonStrictReader reader(json);
    reader.required("version", library.version)
        .required("items", library.items)
        .required("pinboards", library.pinboards);
    if (!reader.ok()) return reader.status();
    repairIdentities(library);
    out = std::move(library);
    return {};
}

}  // namespace harbex
