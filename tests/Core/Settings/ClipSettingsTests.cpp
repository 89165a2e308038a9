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

TEST(ClipSettingsTests, BadOrMissingFieldsTakeTheirDefaults) {
    using S = ClipSettings;
    struct Case {
        const char* name;
        std::string json;
        std::function<void(ClipSettings&)> expect;  // applied to the defaults
    };
    const Case cases[] = {
        {"empty object", "{}", [](S&) {}},
        {"max items as text",
         R"({"maxItems":"500","retention":"week","excludedApps":["com.a"],)"
         R"("detectSensitive":false,"sensitiveLifetime":30})",
         [](S& s) {
             s.retention = ClipRetention::week;
             s.excludedApps = {"com.a"};
             s.detectSensitive = false;
             s.sensitiveLifetime = 30;
         }},
        {"fallback absent", R"({"panel":{"size":"large"}})",
         [](S& s) { s.panel.size = ClipPanelSize::large; }},
        {"fallback null", R"({"panel":{"fallback":null}})", [](S& s) { s.panel.fallback.reset(); }},
        {"fallback missing modifiers",
         R"({"panel":{"fallback":{"keyCode":3},"showsPreview":false}})",
         [](S& s) { s.panel.showsPreview = false; }},
        {"fallback not an object", R"({"panel":{"fallback":"⌘V"}})", [](S&) {}},
        {"fallback valid", R"({"panel":{"fallback":{"keyCode":0,"modifiers":5}}})",
         [](S& s) {
             s.panel.fallback = ClipShortcut{0, Modifiers::command | Modifiers::option};
         }},
        {"modifiers out of range", R"({"panel":{"fallback":{"keyCode":9,"modifiers":4294967296}}})",
         [](S&) {}},
        {"unknown enum strings",
         R"({"retention":"fortnight","panel":{"trigger":"tripleCommand",)"
         R"("position":"nearPointer","stackMode":"tabs"},"window":{"appearance":"Dark"}})",
         [](S& s) { s.panel.position = ClipPanelPosition::nearPointer; }},
        {"nested record partly bad",
         R"({"window":{"sort":"name","minimumLength":"ten",)"
         R"("pauseShortcut":{"keyCode":35,"modifiers":"x"},"clearKeepsPins":false}})",
         [](S& s) {
             s.window.sort = ClipLibrarySort::name;
             s.window.clearKeepsPins = false;
         }},
        {"nested records not objects", R"({"panel":[],"window":"list","showsInDock":false})",
         [](S& s) { s.showsInDock = false; }},
        {"kept kinds skip unknown names", R"({"keptKinds":["text","pdf","file"]})",
         [](S& s) {
             s.keptKinds = {ClipKind::text, ClipKind::file};
         }},
        {"kept kinds with a number", R"({"keptKinds":["text",1]})", [](S&) {}},
        {"kept kinds empty", R"({"keptKinds":[]})", [](S& s) { s.keptKinds.clear(); }},
        {"library shortcut null", R"({"libraryShortcut":null})",
         [](S& s) { s.libraryShortcut.reset(); }},
        {"paused until a number", R"({"pausedUntil":1000.5})",
         [](S& s) { s.pausedUntil = Date{1000.5}; }},
        {"paused until text", R"({"pausedUntil":"tomorrow"})", [](S&) {}},
        {"whole and fractional numbers", R"({"maxItems":500.0,"imageLimit":2.5})",
         [](S& s) { s.maxItems = 500; }},
        {"lifetime overflowing", R"({"sensitiveLifetime":1e400})", [](S&) {}},
        {"list with a non-string", R"({"excludedApps":["a",2]})", [](S&) {}},
        {"nulls for plain fields", R"({"showsInDock":null,"maxItems":null})", [](S&) {}},
        {"unknown keys ignored", R"({"futureSetting":true,"welcomeFinished":true})",
         [](S& s) { s.welcomeFinished = true; }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ClipSettings expected;
        c.expect(expected);
        EXPECT_EQ(decoded(c.json), expected);
    }
}

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
                                  false};
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
    EXPECT_EQ(
        keys(json.as_object()),
        (std::vector<std::string>{
            "retention", "maxItems", "imageLimit", "excludedApps", "skipPasswordManagers",
            "detectSensitive", "sensitiveLifetime", "hideFromScreenSharing", "pausedUntil", "panel",
            "libraryShortcut", "showsInDock", "pastesPlainByDefault", "closesAfterPasting",
            "remembersFilter", "ignoresShortCopies", "keptKinds", "welcomeFinished", "window"}));
    EXPECT_EQ(keys(json.at("panel").as_object()),
              (std::vector<std::string>{"trigger", "fallback", "size", "position", "showsPreview",
                                        "showsAppIcons", "returnCopiesOnly", "stackMode"}));
    EXPECT_EQ(keys(json.at("window").as_object()),
              (std::vector<std::string>{"appearance", "soundOnCopy", "hapticOnCopy", "sort",
                                        "layout", "recognisesDetails", "stripsTrackingOnCopy",
                                        "keepsImages", "ignoresSpacesOnly", "minimumLength",
                                        "pauseShortcut", "clearKeepsPins"}));
}

TEST(ClipSettingsTests, ATurnedOffFallbackIsWrittenAsNullAndReadsBackAsNone) {
    ClipSettings settings;
    settings.panel.fallback.reset();
    settings.libraryShortcut.reset();
    const JsonValue json = encodeJson(settings);
    EXPECT_FALSE(json.as_object().contains("pausedUntil")) << "absent optionals are left out";
    EXPECT_TRUE(json.at("panel").at("fallback").is_null());
    EXPECT_TRUE(json.at("libraryShortcut").is_null());
    EXPECT_EQ(decoded(serializeJson(json)), settings);
}

}  // namespace
}  // namespace harbex
