#pragma once

// Writes JSON text straight from records, without building a boost::json value first: the
// history is written whole on every save, and the value tree of a large history costs as much
// again as the text. The output is byte for byte what serializeJson(encodeJson(x)) gives, so a
// record can be written either way.
//
// A type T takes part by offering, in its own namespace (found by argument-dependent lookup):
//   void writeJson(JsonTextWriter&, const T&);
// Records write their keys with field() and optional(), in the same order as their encodeJson.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Support/Bytes.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

// Thread: one writer per thread. Appends to a string it does not own, so a caller that writes
// often can keep one string (and its memory) from one document to the next.
class JsonTextWriter {
public:
    // Appends to `out`; what `out` already holds is kept (a caller may leave room for a header).
    explicit JsonTextWriter(std::string& out) : out_(out) {}

    JsonTextWriter& beginObject();
    JsonTextWriter& endObject();
    JsonTextWriter& beginArray();
    JsonTextWriter& endArray();
    // The key of the next member; the value must follow.
    JsonTextWriter& key(std::string_view name);

    void value(bool value);
    void value(std::int64_t value);
    void value(std::uint64_t value);
    // An infinity or NaN is written as the nearest finite number (NaN as 0), as encodeJson does.
    void value(double value);
    // Any bytes; quotes, backslashes and control characters are escaped as Boost.JSON does.
    void value(std::string_view text);
    // Text known to need no escaping (base64, hexadecimal, enumeration names): copied as it is.
    void plainString(std::string_view text);

    template <class T>
    JsonTextWriter& field(std::string_view name, const T& member) {
        key(name);
        writeJson(*this, member);
        return *this;
    }
    // Absent values are left out, never written as null.
    template <class T>
    JsonTextWriter& optional(std::string_view name, const std::optional<T>& member) {
        if (member) field(name, *member);
        return *this;
    }

private:
    void separate() {
        if (needsComma_) out_ += ',';
    }

    std::string& out_;
    bool needsComma_ = false;
};

// Leaf writers, matching the leaf encodeJson overloads in Json.hpp.
inline void writeJson(JsonTextWriter& writer, bool value) { writer.value(value); }
inline void writeJson(JsonTextWriter& writer, std::int64_t value) { writer.value(value); }
inline void writeJson(JsonTextWriter& writer, std::uint32_t value) {
    writer.value(static_cast<std::uint64_t>(value));
}
inline void writeJson(JsonTextWriter& writer, double value) { writer.value(value); }
inline void writeJson(JsonTextWriter& writer, const std::string& value) {
    writer.value(std::string_view(value));
}
inline void writeJson(JsonTextWriter& writer, Date value) { writer.value(value.seconds); }
inline void writeJson(JsonTextWriter& writer, const Uuid& value) {
    writer.plainString(value.string());
}
void writeJson(JsonTextWriter& writer, const Bytes& value);  // base64

template <NamedEnum E>
void writeJson(JsonTextWriter& writer, E value) {
    writer.value(enumName(value));
}

template <class T>
void writeJson(JsonTextWriter& writer, const std::vector<T>& values) {
    writer.beginArray();
    for (const auto& value : values) writeJson(writer, value);
    writer.endArray();
}

// The whole text of `value` in a new string.
template <class T>
std::string jsonText(const T& value) {
    std::string out;
    JsonTextWriter writer(out);
    writeJson(writer, value);
    return out;
}

}  // namespace harbex
