#include "HarbexClipCore/Support/JsonTextWriter.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "HarbexClipCore/Support/Json.hpp"

namespace harbex {
namespace {

// Writes `value` both ways: straight to text, and through a value tree and Boost's serializer.
template <class T>
std::pair<std::string, std::string> bothWays(const T& value) {
    return {jsonText(value), serializeJson(encodeJson(value))};
}

std::string everyByte() {
    std::string text;
    for (int byte = 0; byte < 256; ++byte) text += static_cast<char>(byte);
    return text;
}

TEST(JsonTextWriterTests, StringsAreEscapedExactlyAsBoostDoes) {
    const std::string cases[] = {
        "",
        "plain",
        "quote \" and backslash \\ and slash /",
        std::string("nul \0 inside", 12),
        "\b\f\n\r\t\x01\x1F\x7F",
        "Grüße, 世界 👋 \u2028\u2029",
        "\xFF\xFE invalid UTF-8 \xC3",
        "\"\"\\\\",
        everyByte(),
        std::string(100'000, 'x') + "\n" + std::string(3, '"'),
    };
    for (const auto& text : cases) {
        const auto [written, serialized] = bothWays(text);
        EXPECT_EQ(written, serialized) << "for " << serialized;
    }
}

TEST(JsonTextWriterTests, NumbersAreSpelledExactlyAsBoostDoes) {
    const double doubles[] = {0.0,
                              -0.0,
                              1.0,
                              -1.5,
                              0.1 + 0.2,
                              752101234.1234567,
                              785000000.0,
                              1e21,
                              1e-7,
                              63113904000.0,
                              std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::lowest(),
                              std::numeric_limits<double>::denorm_min(),
                              std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()};
    for (double value : doubles) {
        const auto [written, serialized] = bothWays(value);
        EXPECT_EQ(written, serialized) << "for " << value;
        const auto [date, serializedDate] = bothWays(Date{value});
        EXPECT_EQ(date, serializedDate) << "for date " << value;
    }
    const std::int64_t integers[] = {0, -1, 42, std::numeric_limits<std::int64_t>::min(),
                                     std::numeric_limits<std::int64_t>::max()};
    for (std::int64_t value : integers) {
        const auto [written, serialized] = bothWays(value);
        EXPECT_EQ(written, serialized) << "for " << value;
    }
    const std::uint32_t unsignedValues[] = {0u, std::numeric_limits<std::uint32_t>::max()};
    for (std::uint32_t value : unsignedValues) {
        const auto [written, serialized] = bothWays(value);
        EXPECT_EQ(written, serialized) << "for " << value;
    }
}

TEST(JsonTextWriterTests, ContainersBytesIdentifiersAndBooleansMatchTheValueTree) {
    struct Case {
        const char* name;
        std::string written;
        std::string serialized;
    };
    const auto id = *Uuid::parse("0f8fad5b-d9cb-469f-a165-70867728950e");
    const Bytes everyByteValue = bytesOf(everyByte());
    Case cases[] = {
        {"empty list", jsonText(std::vector<std::string>{}),
         serializeJson(encodeJson(std::vector<std::string>{}))},
        {"nested lists", jsonText(std::vector<std::vector<std::int64_t>>{{}, {1, 2}, {3}}),
         serializeJson(encodeJson(std::vector<std::vector<std::int64_t>>{{}, {1, 2}, {3}}))},
        {"identifiers", jsonText(std::vector<Uuid>{id, Uuid{}}),
         serializeJson(encodeJson(std::vector<Uuid>{id, Uuid{}}))},
        {"empty bytes", jsonText(Bytes{}), serializeJson(encodeJson(Bytes{}))},
        {"every byte", jsonText(everyByteValue), serializeJson(encodeJson(everyByteValue))},
        {"booleans", jsonText(std::vector<bool>{true, false}),
         serializeJson(encodeJson(std::vector<bool>{true, false}))},
    };
    for (const auto& c : cases) EXPECT_EQ(c.written, c.serialized) << c.name;
}

TEST(JsonTextWriterTests, MembersAreSeparatedAndAbsentOptionalsLeftOut) {
    std::string text = "kept:";
    JsonTextWriter writer(text);
    writer.beginObject()
        .field("a", std::int64_t{1})
        .optional("absent", std::optional<std::string>{})
        .optional("present", std::optional<std::string>{"x"})
        .key("list")
        .beginArray()
        .beginObject()
        .endObject()
        .beginArray()
        .endArray()
        .endArray()
        .field("last", true)
        .endObject();
    EXPECT_EQ(text, R"(kept:{"a":1,"present":"x","list":[{},[]],"last":true})");
}

}  // namespace
}  // namespace harbex
