#include "HarbexKit/ClipboardPins.hpp"

namespace harbex {

namespace {

void putNumber(JsonObject& object, std::string_view key, const std::optional<double>& number) {
    if (number) object.insert_or_assign(key, encodeJsonNumber(*number));
}

}  // namespace

JsonValue encodeJson(const PinRecord& record) {
    // Numbers go through encodeJsonNumber so whole pixel sizes and dates read as plain integers.
    JsonObject object = JsonObjectWriter()
                            .field("id", record.id)
                            .field("kind", record.kind)
                            .optional("text", record.text)
                            .optional("paths", record.paths)
                            .optional("imageType", record.imageType)
                            .take();
    putNumber(object, "width", record.width);
    putNumber(object, "height", record.height);
    if (record.appID) object.emplace("appID", encodeJson(*record.appID));
    if (record.appName) object.emplace("appName", encodeJson(*record.appName));
    object.emplace("date", encodeJsonNumber(record.date.seconds));
    addUnknownMembers(object, record.unknown);
    return object;
}

JsonStatus decodeJson(const JsonValue& json, PinRecord& out) {
    PinRecord record;
    JsonStrictReader reader(json);
    reader.required("id", record.id)
        .required("kind", record.kind)
        .optional("text", record.text)
        .optional("paths", record.paths)
        .optional("imageType", record.imageType)
        .optional("width", record.width)
        .optional("height", record.height)
        .optional("appID", record.appID)
        .optional("appName", record.appName)
        .required("date", record.date);
    if (!reader.ok()) return reader.status();
    if (record.width) record.width = finiteNumber(*record.width);
    if (record.height) record.height = finiteNumber(*record.height);
    record.unknown =
        unknownMembers(*reader.object(), {"id", "kind", "text", "paths", "imageType", "width",
                                          "height", "appID", "appName", "date"});
    out = std::move(record);
    return {};
}

JsonValue encodeJson(const ClipboardPins& document) {
    JsonObject object =
        JsonObjectWriter().field("version", document.version).field("pins", document.pins).take();
    addUnknownMembers(object, document.unknown);
    return object;
}

JsonStatus decodeJson(const JsonValue& json, ClipboardPins& out) {
    const JsonObject* object = json.if_object();
    if (!object) return std::unexpected(JsonError{{}, "expected an object"});
    ClipboardPins document;
    if (const JsonValue* version = object->if_contains("version")) {
        if (auto status = decodeJson(*version, document.version); !status) {
            return std::unexpected(prefixJsonError(std::move(status.error()), "version"));
        }
    }
    if (const JsonValue* pins = object->if_contains("pins")) {
        const JsonArray* array = pins->if_array();
        if (!array) return std::unexpected(JsonError{"pins", "expected an array"});
        document.pins.reserve(array->size());
        for (const auto& element : *array) {
            PinRecord record;
            if (decodeJson(element, record)) document.pins.push_back(std::move(record));
        }
    }
    document.unknown = unknownMembers(*object, {"version", "pins"});
    out = std::move(document);
    return {};
}

}  // namespace harbex
