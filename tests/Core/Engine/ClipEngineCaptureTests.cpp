#include <gtest/gtest.h>

#include "HarbexClipCore/Capture/PrivacyMarkers.hpp"
#include "HarbexClipCore/Support/Digest.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"

namespace harbex {
namespace {

using testing::EngineRig;
using testing::EngineRigOptions;
using Flavour = MemoryPasteboard::Flavour;

ClipSettings settingsWith(const std::function<void(ClipSettings&)>& change) {
    ClipSettings settings;
    change(settings);
    return settings;
}

TEST(ClipEngineCaptureTests, EveryRuleRefusesWithItsReasonAndKeepsNothing) {
    struct Case {
        const char* name;
        std::function<void(ClipSettings&)> settings;
        std::optional<std::string> frontApp;
        std::vector<Flavour> flavours;
        SkipReason expected;
    };
    const Date now{700000000};
    const std::vector<Case> cases{
        {"own write",
         [](ClipSettings&) {},
         "org.example.editor",
         {Flavour::text(kPlainTextType, "mine"), Flavour::text(kOwnWriteType, ""),
          Flavour::text(kConcealedType, "")},
         SkipReason::ownCopy()},
        {"concealed",
         [](ClipSettings&) {},
         "org.example.editor",
         {Flavour::text(kPlainTextType, "hunter2"), Flavour::text(kConcealedType, "")},
         SkipReason::markedPrivate()},
        {"kde secret hint",
         [](ClipSettings&) {},
         "org.example.editor",
         {Flavour::text(kPlainTextType, "hunter2"),
          Flavour::text(kPasswordManagerHintType, kPasswordManagerHintSecret)},
         SkipReason::markedPrivate()},
        {"paused, also excluded",
         [&](ClipSettings& s) {
             s.pausedUntil = now + 60;
             s.excludedApps = {"org.example.editor"};
         },
         "org.example.editor",
         {Flavour::text(kPlainTextType, "while paused")},
         SkipReason::paused()},
        {"excluded app",
         [](ClipSettings& s) { s.excludedApps = {"org.example.secret"}; },
         "org.example.secret",
         {Flavour::text(kPlainTextType, "from there")},
         SkipReason::excludedApp("org.example.secret")},
        {"password manager",
         [](ClipSettings&) {},
         "org.keepassxc.keepassxc",
         {Flavour::text(kPlainTextType, "from the vault")},
         SkipReason::excludedApp("org.keepassxc.keepassxc")},
        {"kind switched off",
         [](ClipSettings& s) { s.keptKinds = {ClipKind::image}; },
         "org.example.editor",
         {Flavour::text(kPlainTextType, "plain words")},
         SkipReason::kindOff()},
        {"too short",
         [](ClipSettings& s) { s.ignoresShortCopies = true; },
         "org.example.editor",
         {Flavour::text(kPlainTextType, "ab")},
         SkipReason::tooShort()},
        {"too short by the minimum",
         [](ClipSettings& s) {
             s.ignoresShortCopies = true;
             s.window.minimumLength = 10;
         },
         "org.example.editor",
         {Flavour::text(kPlainTextType, "nine char")},
         SkipReason::tooShort()},
        {"over the text limit",
         [](ClipSettings& s) { s.textLimit = 10; },
         "org.example.editor",
         {Flavour::text(kPlainTextType, "eleven char")},
         SkipReason::tooLarge()},
        {"only spaces",
         [](ClipSettings&) {},
         "org.example.editor",
         {Flavour::text(kPlainTextType, " \n\t  ")},
         SkipReason::tooShort()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineRig rig;
        rig.clock.set(now);
        ClipEngine& engine = rig.start();
        engine.sample();
        engine.updateSettings(settingsWith(c.settings));
        rig.frontApp = c.frontApp;
        rig.pasteboard.copy(c.flavours);
        engine.sample();
        EXPECT_EQ(engine.lastSkip().get(), c.expected);
        EXPECT_TRUE(engine.history()->empty());

        // The refused change is consumed: the next sample keeps nothing either.
        rig.frontApp = "org.example.editor";
        engine.updateSettings(ClipSettings{});
        engine.sample();
        EXPECT_TRUE(engine.history()->empty());

        // A kept copy clears the reason.
        rig.copyAndSample("kept afterwards");
        EXPECT_EQ(engine.lastSkip().get(), std::nullopt);
        EXPECT_EQ(rig.texts(), std::vector<std::string>{"kept afterwards"});
    }
}

TEST(ClipEngineCaptureTests, ContentsOfARefusedCopyAreNeverRead) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.frontApp = "com.bitwarden.desktop";
    rig.pasteboard.copy({Flavour::text(kPlainTextType, "p4ssw0rd")});
    rig.pasteboard.forgetRequests();
    engine.sample();
    EXPECT_TRUE(rig.pasteboard.requestedTypes().empty());
    EXPECT_EQ(engine.lastSkip().get(), SkipReason::excludedApp("com.bitwarden.desktop"));
}

TEST(ClipEngineCaptureTests, TwoSamplesWithoutAChangeKeepOneCopy) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.copyAndSample("once");
    engine.sample();
    engine.sample();
    ASSERT_EQ(engine.history()->size(), 1u);
    EXPECT_EQ(engine.history()->front().timesCopied, 1);
}

TEST(ClipEngineCaptureTests, WhatIsOnThePasteboardWhenTheHistoryOpensIsNotCaptured) {
    EngineRig rig;
    rig.pasteboard.copyText("before start");
    ClipEngine& engine = rig.start();
    engine.sample();
    EXPECT_TRUE(engine.isHistoryOpen().get());
    EXPECT_TRUE(engine.history()->empty());
}

TEST(ClipEngineCaptureTests, ACopyMadeWhilePausedIsNotCapturedWhenThePauseEnds) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    engine.pauseFor(3600);
    rig.copyAndSample("during the pause");
    EXPECT_EQ(engine.lastSkip().get(), SkipReason::paused());
    rig.clock.advance(3601);
    engine.sample();
    EXPECT_TRUE(engine.history()->empty());
    rig.copyAndSample("after the pause");
    EXPECT_EQ(rig.texts(), std::vector<std::string>{"after the pause"});
}

TEST(ClipEngineCaptureTests, OwnPasteIsNotCapturedAndDoesNotMoveItsEntry) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.copyAndSample("first");
    rig.clock.advance(5);
    rig.copyAndSample("second");
    const Uuid first = engine.history()->back().id;

    const PasteResult result = engine.copy(first);
    EXPECT_EQ(result.outcome, PasteOutcome::copied);
    EXPECT_EQ(engine.lastCount(), result.changeCount);
    const auto before = engine.history().get();
    engine.sample();
    EXPECT_EQ(engine.history().get(), before);
    EXPECT_EQ(engine.lastSkip().get(), std::nullopt);

    // Even when the count was missed (another look raced the write), the marker refuses it.
    engine.captureNow();
    EXPECT_EQ(engine.lastSkip().get(), SkipReason::ownCopy());
    EXPECT_EQ(engine.history().get(), before);
}

TEST(ClipEngineCaptureTests, AKeptCopyOutlivesTheAppThatMadeIt) {
    struct Case {
        const char* name;
        // Runs after "first" and "kept" were captured; the owner of the last copy then quits.
        std::function<void(EngineRig&)> before;
        bool handsOver;  // the owner offers its copy as it quits instead of just leaving
        std::optional<std::string> restored;
    };
    const auto concealed = [](EngineRig& rig) {
        rig.pasteboard.copy(
            {Flavour::text(kPlainTextType, "hunter2"), Flavour::text(kConcealedType, "")});
        rig.engine->sample();
    };
    const auto settingOff = [](EngineRig& rig) {
        ClipSettings settings;
        settings.window.keepsClipboardOnQuit = false;
        rig.engine->updateSettings(settings);
    };
    const auto hidden = [](EngineRig& rig) {
        rig.engine->setSensitive(rig.engine->history()->front().id, ClipSensitivity::sensitive);
    };
    const auto otherManager = [](EngineRig& rig) {
        rig.pasteboard.setKeepOnQuit(ClipKeepOnQuit::anotherManager);
    };
    const auto paused = [](EngineRig& rig) { rig.engine->pause(std::nullopt); };
    const auto unseen = [](EngineRig& rig) { rig.pasteboard.copyText("not sampled yet"); };
    const std::vector<Case> cases{
        {"quits", [](EngineRig&) {}, false, "kept"},
        {"hands over", [](EngineRig&) {}, true, "kept"},
        {"concealed copy last", concealed, false, std::nullopt},
        {"concealed copy handed over", concealed, true, std::nullopt},
        {"setting off", settingOff, false, std::nullopt},
        {"setting off, handed over", settingOff, true, std::nullopt},
        {"hidden as sensitive", hidden, false, std::nullopt},
        {"paused", paused, true, std::nullopt},
        {"another manager keeps it", otherManager, false, std::nullopt},
        {"a copy not yet judged", unseen, true, std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineRig rig;
        ClipEngine& engine = rig.start();
        engine.sample();
        rig.copyAndSample("first");
        rig.clock.advance(5);
        rig.copyAndSample("kept");
        c.before(rig);
        const auto before = engine.history().get();

        bool kept = false;
        if (c.handsOver) {
            kept = rig.pasteboard.ownerQuitsHandingOver();
        } else {
            rig.pasteboard.ownerQuits();
            engine.sample();
        }
        const auto text = rig.pasteboard.contents(kPlainTextType);
        EXPECT_EQ(text ? std::optional(stringOf(*text)) : std::nullopt, c.restored);
        EXPECT_EQ(kept, c.handsOver && c.restored);
        EXPECT_EQ(rig.pasteboard.contents(kOwnWriteType).has_value(), c.restored.has_value());
        // Neither path moves the entry, counts it again or captures the restored copy.
        engine.sample();
        EXPECT_EQ(engine.history().get(), before);
    }
}

TEST(ClipEngineCaptureTests, CaptureNowIgnoresPauseAndExclusionButNotPrivacy) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    ClipSettings settings;
    settings.excludedApps = {"org.example.editor"};
    engine.updateSettings(settings);
    engine.pause(std::nullopt);
    rig.copyAndSample("wanted anyway");
    EXPECT_TRUE(engine.history()->empty());
    engine.captureNow();
    EXPECT_EQ(rig.texts(), std::vector<std::string>{"wanted anyway"});

    rig.pasteboard.copy(
        {Flavour::text(kPlainTextType, "secret"), Flavour::text(kConcealedType, "")});
    engine.captureNow();
    EXPECT_EQ(engine.lastSkip().get(), SkipReason::markedPrivate());
    EXPECT_EQ(engine.history()->size(), 1u);
}

TEST(ClipEngineCaptureTests, ARepeatMovesToTheTopAndRemembersTheNewCopy) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.copyAndSample("alpha");
    const ClipItem original = engine.history()->front();
    rig.clock.advance(10);
    rig.copyAndSample("beta");
    rig.clock.advance(10);
    rig.frontApp = "org.example.terminal";
    rig.copyAndSample("alpha");

    EXPECT_EQ(rig.texts(), (std::vector<std::string>{"alpha", "beta"}));
    const ClipItem& merged = engine.history()->front();
    EXPECT_EQ(merged.id, original.id);
    EXPECT_EQ(merged.timesCopied, 2);
    EXPECT_EQ(merged.date, original.date + 20);
    EXPECT_EQ(merged.firstCopied, original.firstCopied);
    EXPECT_EQ(merged.appID, "org.example.terminal");
    EXPECT_EQ(merged.appName, "Name of org.example.terminal");
}

TEST(ClipEngineCaptureTests, SettingsShapeTheEntry) {
    struct Case {
        const char* name;
        std::function<void(ClipSettings&)> settings;
        std::string copied;
        std::string keptText;
        bool hasDetails;
    };
    const std::vector<Case> cases{
        {"details recognised", [](ClipSettings&) {}, "a@example.com", "a@example.com", true},
        {"details off", [](ClipSettings& s) { s.window.recognisesDetails = false; },
         "a@example.com", "a@example.com", false},
        {"tracking kept", [](ClipSettings&) {}, "https://example.com/a?utm_source=x&id=3",
         "https://example.com/a?utm_source=x&id=3", false},
        {"tracking stripped", [](ClipSettings& s) { s.window.stripsTrackingOnCopy = true; },
         "https://example.com/a?utm_source=x&id=3", "https://example.com/a?id=3", false},
        {"spaces kept when allowed", [](ClipSettings& s) { s.window.ignoresSpacesOnly = false; },
         "   ", "   ", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineRig rig;
        ClipEngine& engine = rig.start();
        engine.sample();
        engine.updateSettings(settingsWith(c.settings));
        rig.copyAndSample(c.copied);
        ASSERT_EQ(engine.history()->size(), 1u);
        const ClipItem& item = engine.history()->front();
        EXPECT_EQ(item.text, c.keptText);
        EXPECT_EQ(!item.details.empty(), c.hasDetails);
        EXPECT_EQ(item.fingerprint,
                  fingerprint(item.kind, item.text, item.filePaths, std::nullopt));
    }
}

TEST(ClipEngineCaptureTests, SensitiveCopiesAreForgottenWhenTheirTimeRunsOut) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    ClipSettings settings;
    settings.sensitiveLifetime = 120;
    engine.updateSettings(settings);
    rig.copyAndSample("ordinary words");
    rig.copyAndSample("4111 1111 1111 1111");
    ASSERT_EQ(engine.history()->size(), 2u);
    const ClipItem secret = engine.history()->front();
    ASSERT_TRUE(secret.isSensitive);
    EXPECT_EQ(secret.expiresAt, rig.clock.now() + 120);

    rig.scheduler.advance(119);
    EXPECT_EQ(engine.history()->size(), 2u);
    rig.scheduler.advance(1);  // the sweep, without any sample
    EXPECT_EQ(rig.texts(), std::vector<std::string>{"ordinary words"});
}

TEST(ClipEngineCaptureTests, ASampleAlsoDropsExpiredCopies) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.copyAndSample("4111 1111 1111 1111");
    ASSERT_EQ(engine.history()->size(), 1u);
    rig.clock.advance(ClipSettings{}.sensitiveLifetime);
    engine.sample();
    EXPECT_TRUE(engine.history()->empty());
}

TEST(ClipEngineCaptureTests, PinnedSensitiveCopiesStay) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.copyAndSample("4111 1111 1111 1111");
    const Uuid id = engine.history()->front().id;
    ASSERT_TRUE(engine.pin(id));
    rig.scheduler.advance(3600);
    engine.sample();
    ASSERT_EQ(engine.history()->size(), 1u);
    ASSERT_TRUE(engine.unpin(id));
    EXPECT_TRUE(engine.history()->empty());
}

TEST(ClipEngineCaptureTests, ImagesAreStoredUnderTheirDigestAndRemovedWithTheirEntry) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    const Bytes png = PngHeaderImageCodec::pngHeader(640, 480);
    rig.pasteboard.copy({Flavour::bytes(kPngType, png)});
    engine.sample();
    ASSERT_EQ(engine.history()->size(), 1u);
    const ClipItem image = engine.history()->front();
    ASSERT_TRUE(image.image);
    EXPECT_EQ(image.image->digest, sha256Hex(png));
    EXPECT_EQ(rig.store->readImage(image.image->digest), png);
    EXPECT_TRUE(rig.store->readThumbnail(image.image->digest).has_value());

    // Pasting it reads the bytes back.
    const PasteResult pasted = engine.copy(image.id);
    EXPECT_EQ(pasted.outcome, PasteOutcome::copied);
    EXPECT_EQ(rig.pasteboard.contents(kPngType), png);

    EXPECT_TRUE(engine.remove(image.id));
    EXPECT_FALSE(rig.store->readImage(image.image->digest).has_value());
    EXPECT_FALSE(rig.store->readThumbnail(image.image->digest).has_value());
}

TEST(ClipEngineCaptureTests, ImageKeepingAndLimitFollowTheSettings) {
    const Bytes png = PngHeaderImageCodec::pngHeader(64, 64);
    const EncodedImage smaller{std::string(kPngType), Bytes{1, 2, 3}};
    struct Case {
        const char* name;
        ClipImageKeeping keeping;
        std::int64_t limit;
        std::optional<Bytes> stored;  // nothing: not kept
    };
    const std::vector<Case> cases{
        {"original", ClipImageKeeping::original, 1'000'000, png},
        {"compressed", ClipImageKeeping::compressed, 1'000'000, smaller.data},
        {"at the limit", ClipImageKeeping::original, std::int64_t(png.size()), png},
        {"over the limit", ClipImageKeeping::original, std::int64_t(png.size()) - 1, std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineRig rig;
        rig.codec.setCompressedCopy(smaller);
        ClipEngine& engine = rig.start();
        engine.sample();
        ClipSettings settings;
        settings.window.keepsImages = c.keeping;
        settings.imageLimit = c.limit;
        engine.updateSettings(settings);
        rig.pasteboard.copy({Flavour::bytes(kPngType, png)});
        engine.sample();
        if (!c.stored) {
            EXPECT_TRUE(engine.history()->empty());
            continue;
        }
        ASSERT_EQ(engine.history()->size(), 1u);
        const ClipImageInfo info = *engine.history()->front().image;
        EXPECT_EQ(info.byteCount, std::int64_t(c.stored->size()));
        EXPECT_EQ(rig.store->readImage(info.digest), *c.stored);
    }
}

TEST(ClipEngineCaptureTests, ImagesDecodedInTheBackgroundArePendingUntilHandedBack) {
    EngineRigOptions options;
    options.engine.imageDetection = ClipBackgroundWork::on;
    EngineRig rig(options);
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.pasteboard.copy({Flavour::bytes(kPngType, PngHeaderImageCodec::pngHeader(8, 8))});
    engine.sample();
    ASSERT_EQ(engine.pending()->size(), 1u);
    const Uuid pendingID = engine.pending()->front().id;
    EXPECT_EQ(engine.pending()->front().appID, "org.example.editor");
    EXPECT_TRUE(engine.history()->empty());

    engine.shutdown();  // waits for the worker; its result waits for the main loop
    EXPECT_EQ(rig.mainQueue.drain(), 1);
    EXPECT_TRUE(engine.pending()->empty());
    ASSERT_EQ(engine.history()->size(), 1u);
    EXPECT_EQ(engine.history()->front().id, pendingID);
    EXPECT_EQ(engine.history()->front().kind, ClipKind::image);
}

TEST(ClipEngineCaptureTests, ACopyMatchingAPinMadeElsewhereTakesThePinsIdentity) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    ClipContent content;
    content.text = "shared";
    const ClipItem pinned =
        ClipItem::make(content, {}, {}, Date{600000000}, ClipSensitivity::ordinary);
    rig.pins.changeFromOutside({pinned});
    ASSERT_EQ(engine.pins()->size(), 1u);

    rig.copyAndSample("shared");
    ASSERT_EQ(engine.history()->size(), 1u);
    EXPECT_EQ(engine.history()->front().id, pinned.id);
    EXPECT_EQ(engine.pins()->front().appID, "org.example.editor");  // the history's own copy
}

}  // namespace
}  // namespace harbex
