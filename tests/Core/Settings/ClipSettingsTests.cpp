#include "HarbexClipCore/Settings/ClipSettings.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace harbex {
namespace {

using Modifiers = ClipShortcut::Modifiers;

ClipSettings decoded(std::string_view text) {
    auto json = parseJson(text);
    EXPECT_TRUE(json) << text;
    ClipSettings settings;
    settings.maxItems = -7;  // proves the decoder starts from the defaults, not from `out`
    EXPECT_TRUE(decodeJson(*json, settings)) << text;
    return settings;
}

struct LenientCase {
    std::string name;
    std::string json;
    std::function<void(ClipSettings&)> expect;  // applied to the defaults
};

class ClipSettingsLenientTests : public testing::TestWithParam<LenientCase> {};

TEST_P(ClipSettingsLenientTests, BadOrMissingFieldsTakeTheirDefaults) {
    ClipSettings expected;
    GetParam().expect(expected);
    EXPECT_EQ(decoded(GetParam().json), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ClipSettingsLenientTests,
    testing::Values(
        LenientCase{"EmptyObject", "{}", [](ClipSettings&) {}},
        LenientCase{"MaxItemsAsString",
                    R"({"maxItems":"500","retention":"week","excludedApps":["com.a"],)"
                    R"("detectSensitive":false,"sensitiveLifetime":30})",
                    [](ClipSettings& s) {
                        s.retention = ClipRetention::week;
                        s.excludedApps = {"com.a"};
                        s.detectSensitive = false;
                        s.sensitiveLifetime = 30;
                    }},
        LenientCase{"FallbackAbsent", R"({"panel":{"size":"large"}})",
                    [](ClipSettings& s) { s.panel.size = ClipPanelSize::large; }},
        LenientCase{"FallbackNull", R"({"panel":{"fallback":null}})",
                    [](ClipSettings& s) { s.panel.fallback.reset(); }},
        LenientCase{"FallbackMissingModifiers",
                    R"({"panel":{"fallback":{"keyCode":3},"showsPreview":false}})",
                    [](ClipSettings& s) { s.panel.showsPreview = false; }},
        LenientCase{"FallbackNotAnObject", R"({"panel":{"fallback":"⌘V"}})", [](ClipSettings&) {}},
        LenientCase{"FallbackValid", R"({"panel":{"fallback":{"keyCode":0,"modifiers":5}}})",
                    [](ClipSettings& s) {
                        s.panel.fallback = ClipShortcut{0, Modifiers::command | Modifiers::option};
                    }},
        LenientCase{"FallbackModifiersOutOfRange",
                    R"({"panel":{"fallback":{"keyCode":9,"modifiers":4294967296}}})",
                    [](ClipSettings&) {}},
        LenientCase{"FallbackNegativeKeyCode",
                    R"({"panel":{"fallback":{"keyCode":-1,"modifiers":1}}})", [](ClipSettings&) {}},
        LenientCase{
            "UnknownEnumStrings",
            R"({"retention":"fortnight","panel":{"trigger":"tripleCommand",)"
            R"("position":"nearPointer","stackMode":"tabs"},"window":{"appearance":"Dark"}})",
            [](ClipSettings& s) { s.panel.position = ClipPanelPosition::nearPointer; }},
        LenientCase{"NestedRecordPartlyBad",
                    R"({"window":{"sort":"name","minimumLength":"ten",)"
                    R"("pauseShortcut":{"keyCode":35,"modifiers":"x"},"clearKeepsPins":false}})",
                    [](ClipSettings& s) {
                        s.window.sort = ClipLibrarySort::name;
                        s.window.clearKeepsPins = false;
                    }},
        LenientCase{"NestedRecordsNotObjects",
                    R"({"panel":[],"window":"list","showsInDock":false})",
                    [](ClipSettings& s) { s.showsInDock = false; }},
        LenientCase{"KeptKindsSkipUnknownNames", R"({"keptKinds":["text","pdf","file"]})",
                    [](ClipSettings& s) {
                        s.keptKinds = {ClipKind::text, ClipKind::file};
                    }},
        LenientCase{"KeptKindsWithANumber", R"({"keptKinds":["text",1]})", [](ClipSettings&) {}},
        LenientCase{"KeptKindsEmpty", R"({"keptKinds":[]})",
                    [](ClipSettings& s) { s.keptKinds.clear(); }},
        LenientCase{"LibraryShortcutNull", R"({"libraryShortcut":null})",
                    [](ClipSettings& s) { s.libraryShortcut.reset(); }},
        LenientCase{"PausedUntilNumber", R"({"pausedUntil":1000.5})",
                    [](ClipSettings& s) { s.pausedUntil = Date{1000.5}; }},
        LenientCase{"PausedUntilText", R"({"pausedUntil":"tomorrow"})", [](ClipSettings&) {}},
        LenientCase{"IntegersFromWholeAndFractionalNumbers",
                    R"({"maxItems":500.0,"imageLimit":2.5})",
                    [](ClipSettings& s) { s.maxItems = 500; }},
        LenientCase{"LifetimeOverflowingToInfinity", R"({"sensitiveLifetime":1e400})",
                    [](ClipSettings&) {}},
        LenientCase{"ListWithANonString", R"({"excludedApps":["a",2]})", [](ClipSettings&) {}},
        LenientCase{"NullsForPlainFields", R"({"showsInDock":null,"maxItems":null})",
                    [](ClipSettings&) {}},
        LenientCase{"UnknownKeysIgnored", R"({"futureSetting":true,"welcomeFinished":true})",
                    [](ClipSettings& s) { s.welcomeFinished = true; }}),
    [](const auto& info) { return info.param.name; });

TEST(ClipSettingsTests, AValueThatIsNotAnObjectFailsAsAWhole) {
    for (const char* text : {"[]", "null", "3", "\"settings\""}) {
        ClipSettings settings;
        EXPECT_FALSE(decodeJson(*parseJson(text), settings)) << text;
    }
}

ClipSettings everyFieldChanged() {
    ClipSettings s;
    s.retention = ClipRetention::forever;
    s.maxItems = 250;
    s.imageLimit = 5'000'000;
    s.excludedApps = {"org.keepassxc.KeePassXC", "firefox"};
    s.skipPasswordManagers = false;
    s.detectSensitive = false;
    s.sensitiveLifetime = 90.25;
    s.hideFromScreenSharing = false;
    s.pausedUntil = Date::distantFuture();
    s.panel = ClipPanelSettings{ClipPanelTrigger::off,
                                std::nullopt,
                                ClipPanelSize::compact,
                                ClipPanelPosition::whereItWas,
                                false,
                                false,
                                true,
                                ClipStackMode::commas};
    s.libraryShortcut = ClipShortcut{31, Modifiers::option | Modifiers::shift};
    s.showsInDock = false;
    s.pastesPlainByDefault = true;
    s.closesAfterPasting = false;
    s.remembersFilter = true;
    s.ignoresShortCopies = true;
    s.keptKinds = {ClipKind::color, ClipKind::code};
    s.welcomeFinished = true;
    s.window = ClipWindowSettings{ClipAppearance::dark,
                                  true,
                                  true,
                                  ClipLibrarySort::mostPasted,
                                  ClipLibraryLayout::grid,
                                  false,
                                  true,
                                  ClipImageKeeping::compressed,
                                  false,
                                  4,
                                  ClipShortcut{35, Modifiers::control | Modifiers::shift},
                                  false,
                                  false};
    s.textLimit = 1'000'000;
    return s;
}

// Every key of the record and of its nested records must differ from the default, so that the
// round trip below exercises every field.
void expectEveryKeyDiffers(const JsonObject& changed, const JsonObject& defaults) {
    for (const auto& member : defaults) {
        const JsonValue* other = changed.if_contains(member.key());
        if (!other) continue;  // an optional that is absent by default is covered by `changed`
        if (member.value().is_object() && other->is_object() && member.key() != "fallback" &&
            member.key() != "libraryShortcut") {
            expectEveryKeyDiffers(other->as_object(), member.value().as_object());
        } else {
            EXPECT_NE(*other, member.value()) << member.key();
        }
    }
}

TEST(ClipSettingsTests, AFullyChangedRecordSurvivesARoundTrip) {
    const ClipSettings original = everyFieldChanged();
    const JsonValue json = encodeJson(original);
    expectEveryKeyDiffers(json.as_object(), encodeJson(ClipSettings::defaults()).as_object());
    EXPECT_EQ(decoded(serializeJson(json)), original);
}

TEST(ClipSettingsTests, KeysAreWrittenInDeclarationOrder) {
    const JsonValue json = encodeJson(everyFieldChanged());
    auto keys = [](const JsonObject& object) {
        std::vector<std::string> out;
        for (const auto& member : object) out.emplace_back(member.key());
        return out;
    };
    EXPECT_EQ(keys(json.as_object()), (std::vector<std::string>{"retention",
                                                                "maxItems",
                                                                "imageLimit",
                                                                "textLimit",
                                                                "excludedApps",
                                                                "skipPasswordManagers",
                                                                "detectSensitive",
                                                                "sensitiveLifetime",
                                                                "hideFromScreenSharing",
                                                                "pausedUntil",
                                                                "panel",
                                                                "libraryShortcut",
                                                                "showsInDock",
                                                                "pastesPlainByDefault",
                                                                "closesAfterPasting",
                                                                "remembersFilter",
                                                                "ignoresShortCopies",
                                                                "keptKinds",
                                                                "welcomeFinished",
                                                                "window"}));
    EXPECT_EQ(keys(json.at("panel").as_object()),
              (std::vector<std::string>{"trigger", "fallback", "size", "position", "showsPreview",
                                        "showsAppIcons", "returnCopiesOnly", "stackMode"}));
    EXPECT_EQ(keys(json.at("window").as_object()),
              (std::vector<std::string>{
                  "appearance", "soundOnCopy", "hapticOnCopy", "sort", "layout",
                  "recognisesDetails", "stripsTrackingOnCopy", "keepsImages", "ignoresSpacesOnly",
                  "minimumLength", "pauseShortcut", "clearKeepsPins", "keepsClipboardOnQuit"}));
}

TEST(ClipSettingsTests, DefaultsAreWrittenWithTheirPersistedNames) {
    const JsonValue json = encodeJson(ClipSettings::defaults());
    EXPECT_EQ(serializeJson(json.at("panel")),
              R"({"trigger":"doubleCommand","fallback":{"keyCode":9,"modifiers":9},)"
              R"("size":"regular","position":"centre","showsPreview":true,"showsAppIcons":true,)"
              R"("returnCopiesOnly":false,"stackMode":"onePerPaste"})");
    EXPECT_EQ(serializeJson(json.at("libraryShortcut")), R"({"keyCode":9,"modifiers":13})");
    EXPECT_EQ(serializeJson(json.at("keptKinds")), R"(["text","richText","link","image"])");
    EXPECT_EQ(json.at("retention").as_string(), "month");
    EXPECT_EQ(json.at("imageLimit").as_int64(), 24000000);
    EXPECT_FALSE(json.as_object().contains("pausedUntil"));
    EXPECT_FALSE(json.at("window").as_object().contains("pauseShortcut"));
}

TEST(ClipSettingsTests, ATurnedOffFallbackIsWrittenAsNullAndReadsBackAsNone) {
    ClipSettings settings;
    settings.panel.fallback.reset();
    settings.libraryShortcut.reset();
    const JsonValue json = encodeJson(settings);
    EXPECT_TRUE(json.at("panel").at("fallback").is_null());
    EXPECT_TRUE(json.at("libraryShortcut").is_null());
    EXPECT_EQ(decoded(serializeJson(json)), settings);
}

}  // namespace
}  // namespace harbex
