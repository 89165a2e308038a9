#include "HarbexClipCore/Support/Json.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace harbex {
namespace {

enum class Shade { light, dark };
}  // namespace

template <>
struct EnumNames<Shade> {
    static constexpr std::array values{std::pair{Shade::light, std::string_view("light")},
                                       std::pair{Shade::dark, std::string_view("dark")}};
};

namespace {

struct Leaf {
    std::string name;
    std::optional<Shade> shade;
    friend bool operator==(const Leaf&, const Leaf&) = default;
};

JsonValue encodeJson(const Leaf& leaf) {
    return JsonObjectWriter().field("name", leaf.name).optional("shade", leaf.shade).take();
}

JsonStatus decodeJson(const JsonValue& json, Leaf& leaf) {
    return JsonStrictReader(json)
        .required("name", leaf.name)
        .optional("shade", leaf.shade)
        .status();
}

JsonValue parsed(std::string_view text) { return *parseJson(text); }

TEST(JsonTests, StrictReadNamesThePathOfTheFirstFault) {
    struct Case {
        const char* json;
        const char* path;
        const char* reason;
    };
    const Case cases[] = {
        {R"({"leaves":[{"name":"a"},{"shade":"dark"}]})", "leaves[1].name", "missing"},
        {R"({"leaves":[{"name":"a","shade":"grey"}]})", "leaves[0].shade",
         "unknown value \"grey\""},
        {R"({"leaves":[{"name":7}]})", "leaves[0].name", "expected a string"},
        {R"({"leaves":{"name":"a"}})", "leaves", "expected an array"},
        {R"([1,2])", "", "expected an object"},
    };
    for (const auto& c : cases) {
        std::vector<Leaf> leaves;
        const auto status = JsonStrictReader(parsed(c.json)).required("leaves", leaves).status();
        ASSERT_FALSE(status) << c.json;
        EXPECT_EQ(status.error().path, c.path) << c.json;
        EXPECT_EQ(status.error().reason, c.reason) << c.json;
    }
}

TEST(JsonTests, AbsentOptionalsAreLeftOutAndNullReadsAsAbsent) {
    EXPECT_EQ(serializeJson(encodeJson(Leaf{"a", std::nullopt})), R"({"name":"a"})");
    EXPECT_EQ(serializeJson(encodeJson(Leaf{"a", Shade::dark})), R"({"name":"a","shade":"dark"})");
    EXPECT_EQ(decodeJsonAs<Leaf>(parsed(R"({"name":"a","shade":null})")),
              (Leaf{"a", std::nullopt}));
}

TEST(JsonTests, NumbersDecodeOnlyIntoTypesThatHoldThem) {
    struct Case {
        const char* json;
        bool asInteger;
        bool asUInt32;
    };
    const Case cases[] = {
        {"5", true, true},           {"5.0", true, true},
        {"5.5", false, false},       {"-1", true, false},
        {"4294967296", true, false}, {"18446744073709551615", false, false},
        {"\"5\"", false, false},     {"true", false, false},
    };
    for (const auto& c : cases) {
        std::int64_t integer = 0;
        std::uint32_t small = 0;
        EXPECT_EQ(harbex::decodeJson(parsed(c.json), integer).has_value(), c.asInteger) << c.json;
        EXPECT_EQ(harbex::decodeJson(parsed(c.json), small).has_value(), c.asUInt32) << c.json;
    }
}

TEST(JsonTests, DatesAndBytesSurviveARoundTripExactly) {
    const Date date{694224000.123456789};
    const Bytes bytes{0x00, 0xFF, 0x10, 0x80};
    const JsonValue json = JsonObjectWriter().field("date", date).field("bytes", bytes).take();
    const auto text = serializeJson(json);
    Date readDate;
    Bytes readBytes;
    ASSERT_TRUE(JsonStrictReader(parsed(text))
                    .required("date", readDate)
                    .required("bytes", readBytes)
                    .status());
    EXPECT_EQ(readDate, date);
    EXPECT_EQ(readBytes, bytes);
}

TEST(JsonTests, NonFiniteNumbersStillWriteValidJson) {
    for (double value :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN()}) {
        const auto text = serializeJson(JsonObjectWriter().field("width", value).take());
        EXPECT_TRUE(parseJson(text)) << text;
    }
    // Read as it stands, so a record can tell an overflowing value from a real one...
    double huge = 0;
    ASSERT_TRUE(harbex::decodeJson(parsed("1e400"), huge));
    EXPECT_TRUE(std::isinf(huge));
    // ...and written back as valid JSON all the same.
    EXPECT_TRUE(parseJson(serializeJson(harbex::encodeJson(huge))));
}

TEST(JsonTests, LenientReaderKeepsTheDefaultForMissingOrBadValues) {
    const auto json = parsed(R"({"count":"many","shade":"dark","name":null})");
    JsonLenientReader reader(json);
    std::int64_t count = 1000;
    Shade shade = Shade::light;
    std::string name = "default";
    EXPECT_FALSE(reader.read("count", count));
    EXPECT_TRUE(reader.read("shade", shade));
    EXPECT_FALSE(reader.read("name", name));
    EXPECT_FALSE(reader.read("absent", name));
    EXPECT_EQ(count, 1000);
    EXPECT_EQ(shade, Shade::dark);
    EXPECT_EQ(name, "default");
}

TEST(JsonTests, SortedSerializationSortsNestedObjectsAndKeepsArrayOrder) {
    EXPECT_EQ(serializeJsonSorted(parsed(R"({"b":[{"z":1,"a":2}],"a":{"y":1,"x":2}})")),
              R"({"a":{"x":2,"y":1},"b":[{"a":2,"z":1}]})");
}

TEST(JsonTests, MalformedAndTooDeepDocumentsAreErrorsNotCrashes) {
    EXPECT_FALSE(parseJson("{\"a\":"));
    EXPECT_FALSE(parseJson("\xFF\xFE"));
    EXPECT_FALSE(parseJson(std::string(100000, '[')));
}

}  // namespace
}  // namespace harbex
