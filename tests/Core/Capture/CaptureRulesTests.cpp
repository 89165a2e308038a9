#include "HarbexClipCore/Capture/CaptureRules.hpp"

#include <gtest/gtest.h>

#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"

namespace harbex {
namespace {

const Date kNow{800'000'000};
const std::string kOwn(kOwnWriteType);
const std::string kConcealed(kConcealedType);
const std::string kText(kPlainTextType);
const std::string kHint(kPasswordManagerHintType);

struct BeforeReadingCase {
    const char* name;
    std::vector<std::string> types;
    std::optional<std::string_view> hint;
    std::optional<std::string_view> frontApp;
    CaptureRuleSettings settings;
    CaptureMode mode;
    std::optional<SkipReason> expected;
};

CaptureRuleSettings pausedFor(double seconds) {
    CaptureRuleSettings settings;
    settings.pausedUntil = kNow + seconds;
    return settings;
}

CaptureRuleSettings excluding(std::string app) {
    CaptureRuleSettings settings;
    settings.excludedApps = {std::move(app)};
    return settings;
}

CaptureRuleSettings withPasswordManagersKept() {
    CaptureRuleSettings settings;
    settings.skipPasswordManagers = false;
    return settings;
}

TEST(CaptureRulesTests, RulesBeforeReadingApplyInOrder) {
    using enum CaptureMode;
    const CaptureRuleSettings plain;
    const CaptureRuleSettings paused = pausedFor(60);
    const CaptureRuleSettings excluded = excluding("org.example.secret");
    const std::vector<BeforeReadingCase> cases{
        {"ordinary copy", {kText}, {}, "org.example.editor", plain, sampled, std::nullopt},
        {"own write", {kText, kOwn}, {}, {}, plain, sampled, SkipReason::ownCopy()},
        {"own write wins over concealed",
         {kConcealed, kOwn},
         {},
         {},
         plain,
         sampled,
         SkipReason::ownCopy()},
        {"concealed", {kText, kConcealed}, {}, {}, plain, sampled, SkipReason::markedPrivate()},
        {"transient marker of the older convention",
         {kText, "de.petermaurer.TransientPasteboardType"},
         {},
         {},
         plain,
         sampled,
         SkipReason::markedPrivate()},
        {"private wins over pause",
         {kConcealed},
         {},
         {},
         paused,
         sampled,
         SkipReason::markedPrivate()},
        {"KDE hint secret",
         {kText, kHint},
         "secret",
         {},
         plain,
         sampled,
         SkipReason::markedPrivate()},
        {"KDE hint public", {kText, kHint}, "public", {}, plain, sampled, std::nullopt},
        {"paused", {kText}, {}, {}, paused, sampled, SkipReason::paused()},
        {"pause wins over excluded app",
         {kText},
         {},
         "org.example.secret",
         [] {
             auto s = excluding("org.example.secret");
             s.pausedUntil = kNow + 1;
             return s;
         }(),
         sampled,
         SkipReason::paused()},
        {"pause that ended", {kText}, {}, {}, pausedFor(-1), sampled, std::nullopt},
        {"pause ending right now", {kText}, {}, {}, pausedFor(0), sampled, std::nullopt},
        {"excluded app carries its id",
         {kText},
         {},
         "org.example.secret",
         excluded,
         sampled,
         SkipReason::excludedApp("org.example.secret")},
        {"excluded apps match exactly",
         {kText},
         {},
         "org.example.Secret",
         excluded,
         sampled,
         std::nullopt},
        {"no front app passes the app rules", {kText}, {}, {}, excluded, sampled, std::nullopt},
        {"password manager",
         {kText},
         {},
         "com.bitwarden.desktop",
         plain,
         sampled,
         SkipReason::excludedApp("com.bitwarden.desktop")},
        {"password manager on Linux, any case",
         {kText},
         {},
         "KeePassXC",
         plain,
         sampled,
         SkipReason::excludedApp("KeePassXC")},
        {"password manager kept when the setting is off",
         {kText},
         {},
         "com.bitwarden.desktop",
         withPasswordManagersKept(),
         sampled,
         std::nullopt},
        {"password manager's concealed copy with the setting off",
         {kText, kConcealed},
         {},
         "com.bitwarden.desktop",
         withPasswordManagersKept(),
         sampled,
         SkipReason::markedPrivate()},
        {"forced capture ignores the pause", {kText}, {}, {}, paused, forced, std::nullopt},
        {"forced capture ignores excluded apps",
         {kText},
         {},
         "org.example.secret",
         excluded,
         forced,
         std::nullopt},
        {"forced capture ignores password managers",
         {kText},
         {},
         "com.apple.Passwords",
         plain,
         forced,
         std::nullopt},
        {"forced capture still refuses own writes",
         {kOwn},
         {},
         {},
         plain,
         forced,
         SkipReason::ownCopy()},
        {"forced capture still refuses concealed copies",
         {kConcealed},
         {},
         {},
         plain,
         forced,
         SkipReason::markedPrivate()},
        {"no types at all", {}, {}, {}, plain, sampled, std::nullopt},
    };
    for (const auto& c : cases) {
        const DeclaredCopy copy{c.types, c.hint, c.frontApp};
        EXPECT_EQ(skipBeforeReading(copy, c.settings, kNow, c.mode), c.expected) << c.name;
    }
}

struct AfterDetectionCase {
    const char* name;
    ClipKind kind;
    std::optional<std::string> text;
    bool ignoresShortCopies;
    std::int64_t minimumLength;
    std::optional<SkipReason> expected;
};

TEST(CaptureRulesTests, KindAndLengthRulesAfterDetection) {
    using enum ClipKind;
    const std::vector<AfterDetectionCase> cases{
        {"kept kind", text, "hello", false, 0, std::nullopt},
        {"code is off by default", code, "f(x)", false, 0, SkipReason::kindOff()},
        {"files are off by default", file, std::nullopt, false, 0, SkipReason::kindOff()},
        {"kind wins over length", color, "#fff", true, 10, SkipReason::kindOff()},
        {"short rule off keeps one letter", text, "a", false, 0, std::nullopt},
        {"default minimum refuses two letters", text, "ab", true, 0, SkipReason::tooShort()},
        {"default minimum keeps three", text, "abc", true, 0, std::nullopt},
        {"blank text is too short", richText, " \n\t ", true, 0, SkipReason::tooShort()},
        {"absent text is too short", text, std::nullopt, true, 0, SkipReason::tooShort()},
        {"white space does not count", text, "  ab  ", true, 0, SkipReason::tooShort()},
        {"characters, not bytes", text, "\xC3\xA9\xC3\xA9\xC3\xA9", true, 0, std::nullopt},
        {"a flag is one character", text, "\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA!", true, 3,
         SkipReason::tooShort()},
        {"explicit minimum", text, "hello", true, 6, SkipReason::tooShort()},
        {"explicit minimum reached", text, "hello!", true, 6, std::nullopt},
        {"links are never short", link, "a.io", true, 10, std::nullopt},
        {"images are never short", image, std::nullopt, true, 10, std::nullopt},
    };
    for (const auto& c : cases) {
        CaptureRuleSettings settings;
        settings.ignoresShortCopies = c.ignoresShortCopies;
        settings.minimumLength = c.minimumLength;
        if (c.kind == color) settings.keptKinds = {text};
        EXPECT_EQ(skipAfterDetection(c.kind, c.text, settings), c.expected) << c.name;
    }
}

TEST(CaptureRulesTests, RuleSettingsComeFromTheSettingsRecord) {
    EXPECT_EQ(CaptureRuleSettings::from(ClipSettings::defaults()), CaptureRuleSettings{})
        << "the rules' defaults are the settings' defaults";
    ClipSettings settings;
    settings.excludedApps = {"org.example.a"};
    settings.skipPasswordManagers = false;
    settings.pausedUntil = kNow;
    settings.keptKinds = {ClipKind::code, ClipKind::text};
    settings.ignoresShortCopies = true;
    settings.window.minimumLength = 7;
    const auto rules = CaptureRuleSettings::from(settings);
    EXPECT_EQ(rules.excludedApps, settings.excludedApps);
    EXPECT_FALSE(rules.skipPasswordManagers);
    EXPECT_EQ(rules.pausedUntil, kNow);
    EXPECT_EQ(rules.keptKinds, (std::vector<ClipKind>{ClipKind::text, ClipKind::code}));
    EXPECT_TRUE(rules.ignoresShortCopies);
    EXPECT_EQ(rules.minimumLength, 7);
}

}  // namespace
}  // namespace harbex
