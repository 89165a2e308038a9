#include "HarbexKit/ClipboardPins.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace harbex {
namespace {

constexpr const char* kFirstID = "6F2C1A3E-8B0D-4E57-9C61-0A1B2C3D4E5F";
constexpr const char* kSecondID = "0D1E2F30-4152-4637-8899-AABBCCDDEEFF";

std::string goodPin(const char* id, const char* text) {
    return std::string(R"({"id":")") + id + R"(","kind":"text","text":")" + text +
           R"(","date":700000000})";
}

ClipboardPins decodeText(const std::string& text) {
    auto json = parseJson(text);
    EXPECT_TRUE(json) << text;
    if (!json) return {};
    auto pins = decodeJsonAs<ClipboardPins>(*json);
    EXPECT_TRUE(pins) << text << ": " << pins.error().description();
    return pins ? *pins : ClipboardPins{};
}

TEST(ClipboardPinsTests, UnknownMembersSurviveAReadAndAWrite) {
    const std::string text =
        R"({"version":1,"note":"written by Tidepool","pins":[{"id":")" + std::string(kFirstID) +
        R"(","kind":"link","text":"https://example.com","date":700000000.5,"rank":3.5,)"
        R"("tags":["a",null,{"deep":true}]}]})";
    const ClipboardPins pins = decodeText(text);
    ASSERT_EQ(pins.pins.size(), 1u);
    EXPECT_EQ(pins.unknown.at("note"), AnyJSON("written by Tidepool"));
    EXPECT_EQ(pins.pins[0].unknown.at("rank"), AnyJSON(3.5));
    EXPECT_EQ(pins.pins[0].unknown.size(), 2u);

    const auto written = parseJson(serializeJsonSorted(encodeJson(pins)));
    ASSERT_TRUE(written);
    const auto& object = written->as_object();
    EXPECT_EQ(object.at("note"), JsonValue("written by Tidepool"));
    const auto& pin = object.at("pins").as_array().at(0).as_object();
    EXPECT_EQ(pin.at("rank"), JsonValue(3.5));
    EXPECT_EQ(serializeJson(pin.at("tags")), R"(["a",null,{"deep":true}])");
    EXPECT_EQ(decodeJsonAs<ClipboardPins>(*written), pins);
}

TEST(ClipboardPinsTests, APinThatCannotBeReadIsDroppedAndTheOthersKept) {
    const std::vector<std::string> badPins = {
        "42",
        R"("a string")",
        "null",
        R"({"kind":"text","text":"no id","date":1})",
        R"({"id":"not-a-uuid","kind":"text","date":1})",
        R"({"id":"11111111-2222-4333-8444-555555555555","kind":"video","date":1})",
        R"({"id":"11111111-2222-4333-8444-555555555555","kind":"text"})",
        R"({"id":"11111111-2222-4333-8444-555555555555","kind":"text","text":5,"date":1})",
        R"({"id":"11111111-2222-4333-8444-555555555555","kind":"files","paths":"/tmp","date":1})",
        R"({"id":"11111111-2222-4333-8444-555555555555","kind":"image","width":"wide","date":1})",
    };
    for (const auto& bad : badPins) {
        const std::string text = R"({"version":1,"pins":[)" + goodPin(kFirstID, "one") + "," + bad +
                                 "," + goodPin(kSecondID, "two") + "]}";
        const ClipboardPins pins = decodeText(text);
        ASSERT_EQ(pins.pins.size(), 2u) << bad;
        EXPECT_EQ(pins.pins[0].text, "one") << bad;
        EXPECT_EQ(pins.pins[1].text, "two") << bad;
    }
}

TEST(ClipboardPinsTests, ADocumentOfTheWrongShapeFailsRatherThanReadEmpty) {
    struct Case {
        const char* text;
        bool reads;
    };
    const std::vector<Case> cases = {
        {"{}", true},
        {R"({"pins":[]})", true},
        {R"({"version":2,"pins":null,"extra":1})", false},
        {"[]", false},
        {R"("pins")", false},
        {R"({"pins":{}})", false},
        {R"({"version":"one","pins":[]})", false},
        {R"({"version":1.5,"pins":[]})", false},
    };
    for (const auto& testCase : cases) {
        auto json = parseJson(testCase.text);
        ASSERT_TRUE(json) << testCase.text;
        EXPECT_EQ(decodeJsonAs<ClipboardPins>(*json).has_value(), testCase.reads) << testCase.text;
    }
    // A document without members is today's empty document.
    EXPECT_EQ(decodeText("{}"), ClipboardPins{});
}

TEST(ClipboardPinsTests, RecordsAreWrittenInTheSiblingsForm) {
    PinRecord record;
    record.id = *Uuid::parse(kFirstID);
    record.kind = PinRecord::Kind::files;
    record.paths = std::vector<std::string>{"/home/ana/a.txt", "/home/ana/b c.png"};
    record.appID = "org.gnome.Nautilus";
    record.date = Date{700000000};
    ClipboardPins pins;
    pins.pins = {record};
    EXPECT_EQ(serializeJsonSorted(encodeJson(pins)),
              std::string(R"({"pins":[{"appID":"org.gnome.Nautilus","date":700000000,"id":")") +
                  kFirstID +
                  R"(","kind":"files","paths":["/home/ana/a.txt","/home/ana/b c.png"]}],)"
                  R"("version":1})");
}

TEST(ClipboardPinsTests, NumbersKeepTheirValueAndWholeOnesReadAsIntegers) {
    struct Case {
        double number;
        const char* written;  // empty: only the value is checked
    };
    const std::vector<Case> cases = {
        {0, "0"},    {1920, "1920"},     {-3, "-3"},
        {0.5, ""},   {700000000.25, ""}, {9007199254740992.0, "9007199254740992"},
        {1e300, ""}, {-0.0, ""},
    };
    for (const auto& testCase : cases) {
        const std::string text = serializeJson(encodeJson(AnyJSON(testCase.number)));
        if (*testCase.written) {
            EXPECT_EQ(text, testCase.written);
        }
        auto back = decodeJsonAs<AnyJSON>(*parseJson(text));
        ASSERT_TRUE(back);
        ASSERT_TRUE(back->ifNumber()) << text;
        EXPECT_EQ(*back->ifNumber(), testCase.number) << text;
    }
}

TEST(ClipboardPinsTests, NumbersBeyondADoubleAreWrittenBackAsValidJson) {
    const std::string text = std::string(R"({"huge":[1e400,-1e400],"pins":[{"id":")") + kFirstID +
                             R"(","kind":"image","width":1e999,"height":2,"date":1}]})";
    const ClipboardPins pins = decodeText(text);
    ASSERT_EQ(pins.pins.size(), 1u);
    const std::string written = serializeJsonSorted(encodeJson(pins));
    const auto reparsed = parseJson(written);
    ASSERT_TRUE(reparsed) << written;
    EXPECT_EQ(decodeJsonAs<ClipboardPins>(*reparsed), pins);
    EXPECT_EQ(pins.pins[0].width, std::numeric_limits<double>::max());
    EXPECT_EQ(pins.unknown.at("huge"),
              AnyJSON(AnyJSON::Array{AnyJSON(std::numeric_limits<double>::max()),
                                     AnyJSON(-std::numeric_limits<double>::max())}));
}

TEST(ClipboardPinsTests, KnownKeysWinOverUnknownOnesOfTheSameName) {
    PinRecord record;
    record.id = *Uuid::parse(kFirstID);
    record.text = "mine";
    record.unknown = {{"text", AnyJSON("stale")}, {"extra", AnyJSON(true)}};
    const JsonValue json = encodeJson(record);
    EXPECT_EQ(json.at("text"), JsonValue("mine"));
    EXPECT_EQ(json.at("extra"), JsonValue(true));
}

}  // namespace
}  // namespace harbex
