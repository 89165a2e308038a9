#include "HarbexClipCore/Capture/ClipCapture.hpp"

#include <gtest/gtest.h>

#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"
#include "HarbexClipCore/Testing/PngHeaderImageCodec.hpp"

namespace harbex {
namespace {

using Flavour = MemoryPasteboard::Flavour;
using Kind = SampleResult::Kind;

const Date kNow{700'000'000};

class ClipCaptureTests : public testing::Test {
protected:
    SampleInputs inputs(std::optional<std::string> front = std::nullopt) const {
        SampleInputs in;
        in.frontAppID = std::move(front);
        in.settings = settings_;
        in.now = kNow;
        in.access = access_;
        return in;
    }

    MemoryPasteboard pasteboard_;
    PngHeaderImageCodec codec_;
    ClipCapture capture_{pasteboard_, codec_};
    CaptureRuleSettings settings_;
    ClipPasteboardAccess access_ = ClipPasteboardAccess::allowed;
};

TEST_F(ClipCaptureTests, ASecondLookWithoutAChangeFindsNothing) {
    pasteboard_.copyText("hello");
    const auto first = capture_.sample(inputs());
    EXPECT_EQ(first.kind, Kind::read);
    EXPECT_EQ(first.snapshot->string, "hello");
    EXPECT_EQ(capture_.sample(inputs()).kind, Kind::unchanged);
}

TEST_F(ClipCaptureTests, OurOwnWriteIsIgnoredByCountOrByMarker) {
    capture_.setLastCount(pasteboard_.write(ClipPayload{.text = "pasted"}, std::nullopt));
    EXPECT_EQ(capture_.sample(inputs()).kind, Kind::unchanged);
    // A write whose count was not recorded is still recognised by its marker.
    pasteboard_.write(ClipPayload{.text = "pasted again"}, std::nullopt);
    pasteboard_.forgetRequests();
    EXPECT_EQ(capture_.sample(inputs()).skip, SkipReason::ownCopy());
    EXPECT_TRUE(pasteboard_.requestedTypes().empty());
}

TEST_F(ClipCaptureTests, RefusedCopiesAreNeverRead) {
    struct Case {
        const char* name;
        std::vector<Flavour> flavours;
        std::optional<std::string> front;
        SkipReason expected;
        std::vector<std::string> requested;
    };
    const std::string hint(kPasswordManagerHintType);
    const std::vector<Case> cases{
        {"concealed",
         {Flavour::text(kPlainTextType, "pw"), Flavour::text(kConcealedType, "")},
         std::nullopt,
         SkipReason::markedPrivate(),
         {}},
        {"KDE hint: only the hint is read",
         {Flavour::text(kPlainTextType, "pw"), Flavour::text(kPasswordManagerHintType, "secret")},
         std::nullopt,
         SkipReason::markedPrivate(),
         {hint}},
        {"password manager",
         {Flavour::text(kPlainTextType, "pw")},
         "org.keepassxc.KeePassXC",
         SkipReason::excludedApp("org.keepassxc.KeePassXC"),
         {}},
    };
    for (const auto& c : cases) {
        pasteboard_.copy(c.flavours);
        pasteboard_.forgetRequests();
        const auto result = capture_.sample(inputs(c.front));
        EXPECT_EQ(result.kind, Kind::skipped) << c.name;
        EXPECT_EQ(result.skip, c.expected) << c.name;
        EXPECT_EQ(pasteboard_.requestedTypes(), c.requested) << c.name;
    }
}

TEST_F(ClipCaptureTests, ACopyMadeWhilePausedIsNotCapturedWhenThePauseEnds) {
    settings_.pausedUntil = kNow + 60;
    pasteboard_.copyText("during the pause");
    EXPECT_EQ(capture_.sample(inputs()).skip, SkipReason::paused());
    settings_.pausedUntil.reset();
    EXPECT_EQ(capture_.sample(inputs()).kind, Kind::unchanged);
}

TEST_F(ClipCaptureTests, CaptureNowOverridesPauseAndExclusionButNotPrivacy) {
    settings_.pausedUntil = kNow + 60;
    settings_.excludedApps = {"org.example.excluded"};
    pasteboard_.copyText("wanted");
    EXPECT_EQ(capture_.sample(inputs("org.example.excluded")).skip, SkipReason::paused());
    const auto forced = capture_.captureNow(inputs("org.example.excluded"));
    EXPECT_EQ(forced.kind, Kind::read) << "even though the count was seen";
    EXPECT_EQ(forced.snapshot->string, "wanted");

    pasteboard_.copy({Flavour::text(kPlainTextType, "pw"), Flavour::text(kConcealedType, "")});
    EXPECT_EQ(capture_.captureNow(inputs()).skip, SkipReason::markedPrivate());
    EXPECT_EQ(capture_.sample(inputs()).kind, Kind::unchanged) << "captureNow consumed the count";
}

TEST_F(ClipCaptureTests, NothingIsReadWithoutPermissionOrWhenNothingIsDeclared) {
    access_ = ClipPasteboardAccess::denied;
    pasteboard_.copyText("secret plans");
    pasteboard_.forgetRequests();
    EXPECT_EQ(capture_.sample(inputs()).kind, Kind::notAllowed);
    EXPECT_TRUE(pasteboard_.requestedTypes().empty());

    access_ = ClipPasteboardAccess::allowed;
    pasteboard_.clearByAnotherApp();
    EXPECT_EQ(capture_.sample(inputs()).kind, Kind::empty);
}

TEST_F(ClipCaptureTests, ConsumingTheCurrentChangeSkipsWhatIsThereNow) {
    pasteboard_.copyText("before the history opened");
    capture_.consumeCurrentChange();
    EXPECT_EQ(capture_.sample(inputs()).kind, Kind::unchanged);
    pasteboard_.copyText("after");
    EXPECT_EQ(capture_.sample(inputs()).kind, Kind::read);
}

TEST_F(ClipCaptureTests, DecisionsForReadSnapshots) {
    DetectionContext context;
    context.now = kNow;
    CaptureRuleSettings shortOnes;
    shortOnes.ignoresShortCopies = true;

    PasteboardSnapshot text;
    text.types = {std::string(kPlainTextType)};
    text.string = "hello";
    auto decision = capture_.decide(text, context, CaptureRuleSettings{});
    ASSERT_TRUE(decision.clip.has_value());
    EXPECT_EQ(decision.clip->item.text, "hello");
    EXPECT_FALSE(decision.skip.has_value());

    PasteboardSnapshot late = text;
    late.types.push_back("org.nspasteboard.TransientType");
    EXPECT_EQ(capture_.decide(late, context, {}).skip, SkipReason::markedPrivate());

    PasteboardSnapshot hinted = text;
    hinted.types.emplace_back(kPasswordManagerHintType);
    hinted.passwordManagerHint = "secret";
    EXPECT_EQ(capture_.decide(hinted, context, {}).skip, SkipReason::markedPrivate());

    PasteboardSnapshot code = text;
    code.string = "print(value)";
    EXPECT_EQ(capture_.decide(code, context, {}).skip, SkipReason::kindOff());

    PasteboardSnapshot tiny = text;
    tiny.string = "ok";
    EXPECT_EQ(capture_.decide(tiny, context, shortOnes).skip, SkipReason::tooShort());

    PasteboardSnapshot nothing;
    nothing.types = {"x-unknown"};
    decision = capture_.decide(nothing, context, {});
    EXPECT_FALSE(decision.clip || decision.skip);
}

}  // namespace
}  // namespace harbex
