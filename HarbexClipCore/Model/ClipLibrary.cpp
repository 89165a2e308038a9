#include "HarbexClipCore/Model/ClipLibrary.hpp"

namespace harbex {

namespace {

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

}  // namespace

JsonValue encodeJson(const Pinboard& board) {
    JsonObjectWriter writer;
    return writeFields(writer, board).take();
}

void writeJson(JsonTextWriter& writer, const Pinboard& board) {
    writer.beginObject();
    writeFields(writer, board);
    writer.endObject();
}

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

JsonValue encodeJson(const ClipLibrary& library) {
    JsonObjectWriter writer;
    return writeFields(writer, library).take();
}

void writeJson(JsonTextWriter& writer, const ClipLibrary& library) {
    writer.beginObject();
    writeFields(writer, library);
    writer.endObject();
}

JsonStatus decodeJson(const JsonValue& json, ClipLibrary& out) {
    ClipLibrary library;
    JsonStrictReader reader(json);
    reader.required("version", library.version)
        .required("items", library.items)
        .required("pinboards", library.pinboards);
    if (!reader.ok()) return reader.status();
    out = std::move(library);
    return {};
}

}  // namespace harbex
