#include "HarbexClipCore/Model/ClipLibrary.hpp"

namespace harbex {

JsonValue encodeJson(const Pinboard& board) {
    return JsonObjectWriter()
        .field("id", board.id)
        .field("name", board.name)
        .field("color", board.color)
        .field("symbol", board.symbol)
        .field("itemIDs", board.itemIDs)
        .take();
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
    return JsonObjectWriter()
        .field("version", library.version)
        .field("items", library.items)
        .field("pinboards", library.pinboards)
        .take();
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
