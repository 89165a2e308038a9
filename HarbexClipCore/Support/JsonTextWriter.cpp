#include "HarbexClipCore/Support/JsonTextWriter.hpp"

#include <boost/json.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "HarbexClipCore/Support/Digest.hpp"

namespace harbex {

namespace {

// What Boost.JSON writes for each byte: 0 for the byte itself, a letter for a short escape, 'u'
// for \u00XX. Only control characters, the quote and the backslash are escaped; UTF-8 passes.
constexpr std::array<char, 256> kEscapes = [] {
    std::array<char, 256> table{};
    for (int c = 0; c < 0x20; ++c) table[static_cast<std::size_t>(c)] = 'u';
    table['\b'] = 'b';
    table['\t'] = 't';
    table['\n'] = 'n';
    table['\f'] = 'f';
    table['\r'] = 'r';
    table['"'] = '"';
    table['\\'] = '\\';
    return table;
}();

constexpr char kHexDigits[] = "0123456789abcdef";

// The shortest form that reads back as the same double, exactly as Boost.JSON spells it
// ("7.85E8", "1E0"): one serializer per thread, reused, so a number costs no allocation.
std::string_view doubleText(double value, char (&buffer)[64]) {
    thread_local boost::json::serializer serializer;
    const boost::json::value number(value);
    serializer.reset(&number);
    const auto text = serializer.read(buffer, sizeof buffer);
    return {text.data(), text.size()};
}

}  // namespace

JsonTextWriter& JsonTextWriter::beginObject() {
    separate();
    out_ += '{';
    needsComma_ = false;
    return *this;
}

JsonTextWriter& JsonTextWriter::endObject() {
    out_ += '}';
    needsComma_ = true;
    return *this;
}

JsonTextWriter& JsonTextWriter::beginArray() {
    separate();
    out_ += '[';
    needsComma_ = false;
    return *this;
}

JsonTextWriter& JsonTextWriter::endArray() {
    out_ += ']';
    needsComma_ = true;
    return *this;
}

JsonTextWriter& JsonTextWriter::key(std::string_view name) {
    value(name);
    out_ += ':';
    needsComma_ = false;
    return *this;
}

void JsonTextWriter::value(bool value) {
    separate();
    out_ += value ? "true" : "false";
    needsComma_ = true;
}

void JsonTextWriter::value(std::int64_t value) {
    separate();
    char buffer[24];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    out_.append(buffer, end);
    needsComma_ = true;
}

void JsonTextWriter::value(std::uint64_t value) {
    separate();
    char buffer[24];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    out_.append(buffer, end);
    needsComma_ = true;
}

void JsonTextWriter::value(double value) {
    separate();
    if (std::isnan(value)) {
        value = 0.0;
    } else if (std::isinf(value)) {
        value =
            value > 0 ? std::numeric_limits<double>::max() : std::numeric_limits<double>::lowest();
    }
    char buffer[64];
    out_ += doubleText(value, buffer);
    needsComma_ = true;
}

void JsonTextWriter::value(std::string_view text) {
    separate();
    out_ += '"';
    const char* run = text.data();
    const char* const end = text.data() + text.size();
    for (const char* at = run; at != end; ++at) {
        const char escape = kEscapes[static_cast<unsigned char>(*at)];
        if (escape == 0) continue;
        out_.append(run, at);
        if (escape == 'u') {
            const auto byte = static_cast<unsigned char>(*at);
            const char sequence[6] = {
                '\\', 'u', '0', '0', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
            out_.append(sequence, sizeof sequence);
        } else {
            const char sequence[2] = {'\\', escape};
            out_.append(sequence, sizeof sequence);
        }
        run = at + 1;
    }
    out_.append(run, end);
    out_ += '"';
    needsComma_ = true;
}

void JsonTextWriter::plainString(std::string_view text) {
    separate();
    out_ += '"';
    out_ += text;
    out_ += '"';
    needsComma_ = true;
}

void writeJson(JsonTextWriter& writer, const Bytes& value) {
    writer.plainString(base64Encode(value));
}

}  // namespace harbex
