#include "HarbexClipCore/Support/Json.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "HarbexClipCore/Support/Digest.hpp"

namespace harbex {

JsonResult<JsonValue> parseJson(std::string_view text) {
    boost::system::error_code error;
    boost::json::parse_options options;
    options.max_depth = 256;  // deep enough for any document of ours, shallow enough for the stack
    // One arena for the whole tree: documents are read once and dropped, and a history holds
    // hundreds of thousands of small strings that would otherwise each be a heap allocation.
    boost::json::storage_ptr arena =
        boost::json::make_shared_resource<boost::json::monotonic_resource>();
    JsonValue value = boost::json::parse(boost::json::string_view(text.data(), text.size()), error,
                                         std::move(arena), options);
    if (error) return std::unexpected(JsonError{{}, "not JSON: " + error.message()});
    return value;
}

// Through a fixed buffer, appended piece by piece: boost::json::serialize grows its string by
// resizing (zero-filling) and copying, which measured 25 times slower on a 12 MB history.
std::string serializeJson(const JsonValue& value) {
    boost::json::serializer serializer;
    serializer.reset(&value);
    std::string out;
    char buffer[16384];
    while (!serializer.done()) {
        const auto piece = serializer.read(buffer, sizeof buffer);
        out.append(piece.data(), piece.size());
    }
    return out;
}

namespace {
JsonValue sortedCopy(const JsonValue& value) {
    if (const auto* object = value.if_object()) {
        std::vector<const boost::json::key_value_pair*> members;
        members.reserve(object->size());
        for (const auto& member : *object) members.push_back(&member);
        std::sort(members.begin(), members.end(),
                  [](const auto* a, const auto* b) { return a->key() < b->key(); });
        JsonObject sorted;
        sorted.reserve(members.size());
        for (const auto* member : members)
            sorted.emplace(member->key(), sortedCopy(member->value()));
        return sorted;
    }
    if (const auto* array = value.if_array()) {
        JsonArray sorted;
        sorted.reserve(array->size());
        for (const auto& element : *array) sorted.push_back(sortedCopy(element));
        return sorted;
    }
    return value;
}
}  // namespace

std::string serializeJsonSorted(const JsonValue& value) { return serializeJson(sortedCopy(value)); }

JsonError prefixJsonError(JsonError error, std::string_view key) {
    std::string path(key);
    if (!error.path.empty()) {
        if (error.path.front() != '[') path += '.';
        path += error.path;
    }
    error.path = std::move(path);
    return error;
}

JsonError prefixJsonError(JsonError error, std::size_t index) {
    std::string path = "[" + std::to_string(index) + "]";
    if (!error.path.empty()) {
        if (error.path.front() != '[') path += '.';
        path += error.path;
    }
    error.path = std::move(path);
    return error;
}

JsonValue encodeJson(const Bytes& value) { return JsonValue(base64Encode(value)); }

JsonValue encodeJson(double value) {
    if (std::isnan(value)) return JsonValue(0.0);
    if (std::isinf(value)) {
        return JsonValue(value > 0 ? std::numeric_limits<double>::max()
                                   : std::numeric_limits<double>::lowest());
    }
    return JsonValue(value);
}

namespace {
JsonStatus fail(const char* reason) { return std::unexpected(JsonError{{}, reason}); }
}  // namespace

JsonStatus decodeJson(const JsonValue& json, bool& out) {
    if (!json.is_bool()) return fail("expected a boolean");
    out = json.get_bool();
    return {};
}

JsonStatus decodeJson(const JsonValue& json, std::int64_t& out) {
    if (json.is_int64()) {
        out = json.get_int64();
    } else if (json.is_uint64()) {
        if (json.get_uint64() >
            static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            return fail("number out of range");
        }
        out = static_cast<std::int64_t>(json.get_uint64());
    } else if (json.is_double()) {
        // 5.0 reads as 5, as other JSON readers of ours do; 5.5 is not an integer.
        const double value = json.get_double();
        if (value != std::trunc(value) || value < -9.2e18 || value > 9.2e18) {
            return fail("expected an integer");
        }
        out = static_cast<std::int64_t>(value);
    } else {
        return fail("expected an integer");
    }
    return {};
}

JsonStatus decodeJson(const JsonValue& json, std::uint32_t& out) {
    std::int64_t value = 0;
    if (auto status = decodeJson(json, value); !status) return status;
    if (value < 0 || value > std::numeric_limits<std::uint32_t>::max()) {
        return fail("number out of range");
    }
    out = static_cast<std::uint32_t>(value);
    return {};
}

JsonStatus decodeJson(const JsonValue& json, double& out) {
    if (!json.is_number()) return fail("expected a number");
    // A literal beyond the double range reads as infinity; records that cannot use one (a
    // lifetime, a size) check for it, and writing one back is made safe by encodeJson.
    out = json.to_number<double>();
    return {};
}

JsonStatus decodeJson(const JsonValue& json, std::string& out) {
    const auto* text = json.if_string();
    if (!text) return fail("expected a string");
    out.assign(text->data(), text->size());
    return {};
}

JsonStatus decodeJson(const JsonValue& json, Date& out) {
    if (!json.is_number()) return fail("expected a date (seconds since 2001)");
    const double seconds = json.to_number<double>();
    if (!std::isfinite(seconds)) return fail("expected a finite date");
    out = Date{seconds};
    return {};
}

JsonStatus decodeJson(const JsonValue& json, Uuid& out) {
    const auto* text = json.if_string();
    if (!text) return fail("expected a UUID string");
    const auto id = Uuid::parse(std::string_view(text->data(), text->size()));
    if (!id) return fail("not a UUID");
    out = *id;
    return {};
}

JsonStatus decodeJson(const JsonValue& json, Bytes& out) {
    const auto* text = json.if_string();
    if (!text) return fail("expected base64 data");
    auto bytes = base64Decode(std::string_view(text->data(), text->size()));
    if (!bytes) return fail("not base64");
    out = std::move(*bytes);
    return {};
}

JsonStrictReader::JsonStrictReader(const JsonValue& json) : object_(json.if_object()) {
    if (!object_) error_ = JsonError{{}, "expected an object"};
}

JsonStatus JsonStrictReader::status() const {
    if (error_) return std::unexpected(*error_);
    return {};
}

}  // namespace harbex
