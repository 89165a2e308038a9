#pragma once

// JSON coding over Boost.JSON, shared by every persisted record.
//
// A type T takes part by offering, in its own namespace (found by argument-dependent lookup):
//   boost::json::value encodeJson(const T&);
//   JsonStatus decodeJson(const boost::json::value&, T&);
// Records write their keys in declaration order with JsonObjectWriter, leave absent optionals out,
// and read with JsonStrictReader (a bad record fails as a whole, with the path of the first fault)
// or JsonLenientReader (each bad or missing field keeps its default).

#include <boost/json.hpp>

#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Support/Bytes.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

using JsonValue = boost::json::value;
using JsonObject = boost::json::object;
using JsonArray = boost::json::array;

// Why a document or record could not be read: where (a path such as "items[3].kind") and what.
struct JsonError {
    std::string path;
    std::string reason;

    std::string description() const { return path.empty() ? reason : path + ": " + reason; }
    friend bool operator==(const JsonError&, const JsonError&) = default;
};

using JsonStatus = std::expected<void, JsonError>;
template <class T>
using JsonResult = std::expected<T, JsonError>;

// Parsing never throws; text that is not JSON is a JsonError with an empty path.
JsonResult<JsonValue> parseJson(std::string_view text);
std::string serializeJson(const JsonValue& value);
// Keys of every object sorted, for documents that other programs diff and merge.
std::string serializeJsonSorted(const JsonValue& value);

// A nested error gets the key or index in front of its path.
JsonError prefixJsonError(JsonError error, std::string_view key);
JsonError prefixJsonError(JsonError error, std::size_t index);

// Leaf codecs.
inline JsonValue encodeJson(bool value) { return JsonValue(value); }
inline JsonValue encodeJson(std::int64_t value) { return JsonValue(value); }
inline JsonValue encodeJson(std::uint32_t value) {
    return JsonValue(static_cast<std::uint64_t>(value));
}
// JSON has no infinities or NaN; a stray one must not make a whole document unreadable.
JsonValue encodeJson(double value);
inline JsonValue encodeJson(const std::string& value) { return JsonValue(value); }
inline JsonValue encodeJson(Date value) { return encodeJson(value.seconds); }
inline JsonValue encodeJson(const Uuid& value) { return JsonValue(value.string()); }
JsonValue encodeJson(const Bytes& value);  // base64
inline JsonValue encodeJson(const JsonValue& value) { return value; }

JsonStatus decodeJson(const JsonValue& json, bool& out);
JsonStatus decodeJson(const JsonValue& json, std::int64_t& out);  // integral numbers only
JsonStatus decodeJson(const JsonValue& json, std::uint32_t& out);
JsonStatus decodeJson(const JsonValue& json, double& out);  // any number
JsonStatus decodeJson(const JsonValue& json, std::string& out);
JsonStatus decodeJson(const JsonValue& json, Date& out);  // a number of seconds since 2001
JsonStatus decodeJson(const JsonValue& json, Uuid& out);
JsonStatus decodeJson(const JsonValue& json, Bytes& out);  // base64
inline JsonStatus decodeJson(const JsonValue& json, JsonValue& out) {
    out = json;
    return {};
}

template <NamedEnum E>
JsonValue encodeJson(E value) {
    return JsonValue(enumName(value));
}

template <NamedEnum E>
JsonStatus decodeJson(const JsonValue& json, E& out) {
    const auto* text = json.if_string();
    if (!text) return std::unexpected(JsonError{{}, "expected a string"});
    const auto value = enumFromName<E>(std::string_view(text->data(), text->size()));
    if (!value) {
        return std::unexpected(
            JsonError{{}, "unknown value \"" + std::string(text->c_str()) + "\""});
    }
    out = *value;
    return {};
}

// Containers.
template <class T>
JsonValue encodeJson(const std::vector<T>& values) {
    JsonArray array;
    array.reserve(values.size());
    for (const auto& value : values) array.push_back(encodeJson(value));
    return array;
}

template <class T>
JsonValue encodeJson(const std::set<T>& values) {
    JsonArray array;
    for (const auto& value : values) array.push_back(encodeJson(value));
    return array;
}

template <class T>
JsonValue encodeJson(const std::map<std::string, T>& values) {
    JsonObject object;
    for (const auto& [key, value] : values) object.emplace(key, encodeJson(value));
    return object;
}

template <class T>
JsonStatus decodeJson(const JsonValue& json, std::vector<T>& out) {
    const auto* array = json.if_array();
    if (!array) return std::unexpected(JsonError{{}, "expected an array"});
    std::vector<T> values;
    values.reserve(array->size());
    for (std::size_t i = 0; i < array->size(); ++i) {
        T value{};
        if (auto status = decodeJson((*array)[i], value); !status) {
            return std::unexpected(prefixJsonError(std::move(status.error()), i));
        }
        values.push_back(std::move(value));
    }
    out = std::move(values);
    return {};
}

template <class T>
JsonStatus decodeJson(const JsonValue& json, std::set<T>& out) {
    std::vector<T> values;
    if (auto status = decodeJson(json, values); !status) return status;
    out = std::set<T>(values.begin(), values.end());
    return {};
}

template <class T>
JsonStatus decodeJson(const JsonValue& json, std::map<std::string, T>& out) {
    const auto* object = json.if_object();
    if (!object) return std::unexpected(JsonError{{}, "expected an object"});
    std::map<std::string, T> values;
    for (const auto& member : *object) {
        T value{};
        if (auto status = decodeJson(member.value(), value); !status) {
            return std::unexpected(prefixJsonError(std::move(status.error()), member.key()));
        }
        values.emplace(std::string(member.key()), std::move(value));
    }
    out = std::move(values);
    return {};
}

// Decodes a whole value, for callers that want the result rather than an out-parameter.
template <class T>
JsonResult<T> decodeJsonAs(const JsonValue& json) {
    T value{};
    if (auto status = decodeJson(json, value); !status) return std::unexpected(status.error());
    return value;
}

// Writes a record's keys in the order they are added.
class JsonObjectWriter {
public:
    template <class T>
    JsonObjectWriter& field(std::string_view key, const T& value) {
        object_.emplace(key, encodeJson(value));
        return *this;
    }
    // Absent values are left out, never written as null.
    template <class T>
    JsonObjectWriter& optional(std::string_view key, const std::optional<T>& value) {
        if (value) field(key, *value);
        return *this;
    }
    JsonObject take() { return std::move(object_); }

private:
    JsonObject object_;
};

// Reads a record that must be whole: the first missing required key or badly typed value is
// kept as the error, and later reads are skipped.
class JsonStrictReader {
public:
    explicit JsonStrictReader(const JsonValue& json);

    template <class T>
    JsonStrictReader& required(std::string_view key, T& out) {
        if (!ok()) return *this;
        const JsonValue* value = object_->if_contains(key);
        if (!value) {
            error_ = JsonError{std::string(key), "missing"};
        } else if (auto status = decodeJson(*value, out); !status) {
            error_ = prefixJsonError(std::move(status.error()), key);
        }
        return *this;
    }

    // A missing key or a null leaves the field absent; a value of the wrong type fails the read.
    template <class T>
    JsonStrictReader& optional(std::string_view key, std::optional<T>& out) {
        if (!ok()) return *this;
        const JsonValue* value = object_->if_contains(key);
        if (!value || value->is_null()) {
            out.reset();
            return *this;
        }
        T decoded{};
        if (auto status = decodeJson(*value, decoded); !status) {
            error_ = prefixJsonError(std::move(status.error()), key);
        } else {
            out = std::move(decoded);
        }
        return *this;
    }

    bool ok() const { return !error_; }
    JsonStatus status() const;
    // The object being read, or null when the value was not an object.
    const JsonObject* object() const { return object_; }

private:
    const JsonObject* object_ = nullptr;
    std::optional<JsonError> error_;
};

// Reads settings-like records: a key that is missing, or whose value does not decode, leaves the
// field as it was (its default).
class JsonLenientReader {
public:
    explicit JsonLenientReader(const JsonValue& json) : object_(json.if_object()) {}

    bool isObject() const { return object_ != nullptr; }
    bool contains(std::string_view key) const { return find(key) != nullptr; }
    const JsonValue* find(std::string_view key) const {
        return object_ ? object_->if_contains(key) : nullptr;
    }

    // Returns whether the field took the stored value.
    template <class T>
    bool read(std::string_view key, T& out) const {
        const JsonValue* value = find(key);
        if (!value) return false;
        T decoded{};
        if (!decodeJson(*value, decoded)) return false;
        out = std::move(decoded);
        return true;
    }

private:
    const JsonObject* object_;
};

}  // namespace harbex
