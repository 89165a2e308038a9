#include <gtest/gtest.h>

#include "HarbexClipCore/Testing/EngineRig.hpp"

namespace harbex {
namespace {

using testing::EngineRig;
using Flavour = MemoryPasteboard::Flavour;

// An open engine holding `texts`, copied in this order one second apart (so the last is on top).
ClipEngine& startWith(EngineRig& rig, const std::vector<std::string>& texts) {
    ClipEngine& engine = rig.start();
    engine.sample();
    for (const std::string& text : texts) {
        rig.clock.advance(1);
        rig.copyAndSample(text);
    }
    return engine;
}

Uuid idOf(ClipEngine& engine, std::string_view text) {
    for (const ClipItem& item : engine.history().get()) {
        if (item.text == text) return item.id;
    }
    ADD_FAILURE() << "no copy " << text;
    return Uuid{};
}

TEST(ClipEngineEditingTests, PastingCountsOnlyRealPastesAndTouchesUnpinnedCopies) {
    struct Case {
        const char* name;
        bool trusted;
        bool withTarget;
        bool pinned;
        PasteOutcome outcome;
        std::int64_t timesPasted;
        bool movesToTop;
    };
    const std::vector<Case> cases{
        {"pasted", true, true, false, PasteOutcome::pasted, 1, true},
        {"copied without a target", true, false, false, PasteOutcome::copied, 0, true},
        {"copied without trust", false, true, false, PasteOutcome::copied, 0, true},
        {"pasted while pinned", true, true, true, PasteOutcome::pasted, 1, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineRig rig;
        ClipEngine& engine = startWith(rig, {"older", "newer"});
        const Uuid older = idOf(engine, "older");
        const Date olderDate = engine.item(older)->date;
        if (c.pinned) {
            ASSERT_TRUE(engine.pin(older));
        }
        rig.trusted = c.trusted;
        rig.clock.advance(100);
        const std::optional<ClipTargetApp> target =
            c.withTarget ? std::optional(ClipTargetApp{42, "org.example.mail", "Mail"})
                         : std::nullopt;

        const PasteResult result = engine.paste(older, ClipPasteForm::rich, target);
        EXPECT_EQ(result.outcome, c.outcome);
        EXPECT_EQ(engine.lastCount(), result.changeCount);
        const ClipItem after = *engine.item(older);
        EXPECT_EQ(after.timesPasted, c.timesPasted);
        EXPECT_EQ(after.lastPasted.has_value(), c.timesPasted > 0);
        EXPECT_EQ(engine.history()->front().id == older, c.movesToTop);
        EXPECT_EQ(after.date, c.movesToTop ? rig.clock.now() : olderDate);
        EXPECT_TRUE(engine.isSaveScheduled());
        EXPECT_EQ(rig.pasteboard.contents(kPlainTextType), bytesOf("older"));
        engine.sample();  // the own write is not taken back in
        EXPECT_EQ(engine.history()->size(), 2u);
    }
}

TEST(ClipEngineEditingTests, AGoneOrEmptyCopyFailsAndChangesNothing) {
    EngineRig rig;
    ClipEngine& engine = startWith(rig, {"kept"});
    const std::int64_t count = rig.pasteboard.changeCount();
    EXPECT_EQ(engine.paste(Uuid::random(), std::nullopt, std::nullopt).outcome,
              PasteOutcome::failed);
    EXPECT_EQ(rig.pasteboard.changeCount(), count);

    // An image whose bytes are gone from the store has nothing to write.
    rig.pasteboard.copy({Flavour::bytes(kPngType, PngHeaderImageCodec::pngHeader(4, 4))});
    engine.sample();
    const ClipItem image = engine.history()->front();
    ASSERT_TRUE(rig.store->removeImage(image.image->digest));
    const auto before = engine.history().get();
    const std::int64_t countBefore = rig.pasteboard.changeCount();
    const PasteResult result = engine.copy(image.id);
    EXPECT_EQ(result.outcome, PasteOutcome::failed);
    EXPECT_EQ(engine.history().get(), before);
    EXPECT_EQ(rig.pasteboard.changeCount(), countBefore);  // nothing was written
}

TEST(ClipEngineEditingTests, ThePasteFormAndSensitivityShapeWhatIsWritten) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.pasteboard.copy({Flavour::text(kPlainTextType, "bold words"),
                         Flavour::text(kRtfType, "{\\rtf1 \\b bold words}")});
    engine.sample();
    const Uuid rich = engine.history()->front().id;

    engine.paste(rich, ClipPasteForm::plain, std::nullopt);
    EXPECT_FALSE(rig.pasteboard.contents(kRtfType));
    engine.paste(rich, std::nullopt, std::nullopt);  // the default is rich
    EXPECT_TRUE(rig.pasteboard.contents(kRtfType));
    ClipSettings settings;
    settings.pastesPlainByDefault = true;
    engine.updateSettings(settings);
    engine.paste(rich, std::nullopt, std::nullopt);
    EXPECT_FALSE(rig.pasteboard.contents(kRtfType));
    EXPECT_FALSE(rig.pasteboard.contents(kConcealedType));

    ASSERT_TRUE(engine.setSensitive(rich, ClipSensitivity::sensitive));
    engine.paste(rich, std::nullopt, std::nullopt);
    EXPECT_TRUE(rig.pasteboard.contents(kConcealedType));
}

TEST(ClipEngineEditingTests, PruningKeepsPinsAndPinboardCopiesOutsideTheCount) {
    EngineRig rig;
    ClipEngine& engine = startWith(rig, {"a", "b", "c", "d", "e", "f", "g"});
    const Pinboard board{Uuid::random(), "Work", "blue", "folder", {}};
    ASSERT_TRUE(engine.addPinboard(board));
    ASSERT_TRUE(engine.addToPinboard(board.id, idOf(engine, "a")));
    ASSERT_TRUE(engine.addToPinboard(board.id, idOf(engine, "b")));
    ASSERT_TRUE(engine.pin(idOf(engine, "c")));

    ClipSettings settings;
    settings.maxItems = 3;
    engine.updateSettings(settings);
    EXPECT_EQ(rig.texts(), (std::vector<std::string>{"g", "f", "e", "c", "b", "a"}));
    EXPECT_TRUE(engine.isSaveScheduled());

    // Further copies push out only unprotected ones.
    rig.copyAndSample("h");
    EXPECT_EQ(rig.texts(), (std::vector<std::string>{"h", "g", "f", "c", "b", "a"}));

    // Taken off the board, a copy counts again and goes.
    ASSERT_TRUE(engine.removeFromPinboard(board.id, idOf(engine, "a")));
    EXPECT_EQ(rig.texts(), (std::vector<std::string>{"h", "g", "f", "c", "b"}));
}

TEST(ClipEngineEditingTests, RetentionChangesPruneByAge) {
    EngineRig rig;
    ClipEngine& engine = startWith(rig, {"old"});
    rig.clock.advance(2 * 86400);
    rig.copyAndSample("new");
    ClipSettings settings;
    settings.retention = ClipRetention::day;
    engine.updateSettings(settings);
    EXPECT_EQ(rig.texts(), std::vector<std::string>{"new"});
}

TEST(ClipEngineEditingTests, ClearingHonoursKeepPinnedCopies) {
    for (bool keepsPins : {true, false}) {
        SCOPED_TRACE(keepsPins ? "keeps pins" : "pins go too");
        EngineRig rig;
        ClipEngine& engine = startWith(rig, {"pinned", "plain", "boarded"});
        const Uuid pinned = idOf(engine, "pinned");
        ASSERT_TRUE(engine.pin(pinned));
        const Pinboard board{Uuid::random(), "Board", "red", "star", {}};
        engine.addPinboard(board);
        engine.addToPinboard(board.id, idOf(engine, "boarded"));
        ClipSettings settings;
        settings.window.clearKeepsPins = keepsPins;
        engine.updateSettings(settings);

        const std::size_t removed = engine.clear(ClipHistory::ClearRange::everything);
        EXPECT_EQ(removed, keepsPins ? 1u : 2u);
        EXPECT_EQ(rig.texts(), keepsPins ? (std::vector<std::string>{"boarded", "pinned"})
                                         : std::vector<std::string>{"boarded"});
        EXPECT_EQ(rig.pins.isPinned(pinned), keepsPins);
        EXPECT_EQ(engine.pins()->size(), keepsPins ? 1u : 0u);
    }
}

TEST(ClipEngineEditingTests, DeletingRemovesCopiesPinsAndBoardEntries) {
    EngineRig rig;
    ClipEngine& engine = startWith(rig, {"one", "two", "three"});
    const Uuid one = idOf(engine, "one");
    const Uuid two = idOf(engine, "two");
    const Pinboard board{Uuid::random(), "B", "green", "tag", {}};
    engine.addPinboard(board);
    engine.addToPinboard(board.id, one);
    engine.pin(two);

    const std::vector<Uuid> ids{one, two, Uuid::random()};
    EXPECT_EQ(engine.remove(ids), 2u);
    EXPECT_EQ(rig.texts(), std::vector<std::string>{"three"});
    EXPECT_TRUE(engine.pinboards()->front().itemIDs.empty());
    EXPECT_TRUE(engine.pins()->empty());
    EXPECT_FALSE(engine.remove(one));
}

TEST(ClipEngineEditingTests, EditsRevertsTitlesAndSensitivity) {
    EngineRig rig;
    ClipEngine& engine = startWith(rig, {"draft"});
    const Uuid id = idOf(engine, "draft");

    EXPECT_EQ(engine.edit(id, "final"), ClipEditOutcome::edited);
    EXPECT_EQ(engine.item(id)->text, "final");
    EXPECT_EQ(engine.edit(id, "final"), ClipEditOutcome::unchanged);
    EXPECT_EQ(engine.revert(id), ClipEditOutcome::reverted);
    EXPECT_EQ(engine.item(id)->text, "draft");
    EXPECT_EQ(engine.revert(id), ClipEditOutcome::unchanged);
    EXPECT_EQ(engine.edit(Uuid::random(), "x"), std::nullopt);

    EXPECT_TRUE(engine.setCustomTitle(id, "Named"));
    EXPECT_EQ(engine.item(id)->customTitle, "Named");
    EXPECT_TRUE(engine.setCustomTitle(id, "   "));
    EXPECT_EQ(engine.item(id)->customTitle, std::nullopt);

    EXPECT_TRUE(engine.setSensitive(id, ClipSensitivity::sensitive));
    EXPECT_EQ(engine.item(id)->expiresAt, rig.clock.now() + ClipSettings{}.sensitiveLifetime);
    EXPECT_TRUE(engine.setSensitive(id, ClipSensitivity::ordinary));
    EXPECT_EQ(engine.item(id)->expiresAt, std::nullopt);
    EXPECT_TRUE(engine.isSaveScheduled());
}

TEST(ClipEngineEditingTests, PinboardOperationsArePublishedAndSaved) {
    EngineRig rig;
    ClipEngine& engine = startWith(rig, {"x", "y"});
    const Pinboard first{Uuid::random(), "First", "red", "star", {}};
    const Pinboard second{Uuid::random(), "Second", "blue", "tag", {}};
    engine.addPinboard(first);
    engine.addPinboard(second);
    EXPECT_TRUE(engine.renamePinboard(first.id, "Renamed"));
    EXPECT_TRUE(engine.setPinboardColor(first.id, "green"));
    EXPECT_TRUE(engine.setPinboardSymbol(first.id, "heart"));
    const std::size_t from[] = {1};
    EXPECT_TRUE(engine.movePinboards(from, 0));
    EXPECT_TRUE(engine.addToPinboard(first.id, idOf(engine, "x")));
    EXPECT_TRUE(engine.addToPinboard(first.id, idOf(engine, "y")));
    const std::size_t fromItem[] = {1};
    EXPECT_TRUE(engine.moveOnPinboard(first.id, fromItem, 0));
    EXPECT_FALSE(engine.renamePinboard(Uuid::random(), "nothing"));

    const std::vector<Pinboard>& boards = engine.pinboards().get();
    ASSERT_EQ(boards.size(), 2u);
    EXPECT_EQ(boards[0].id, second.id);
    EXPECT_EQ(boards[1].name, "Renamed");
    EXPECT_EQ(boards[1].color, "green");
    EXPECT_EQ(boards[1].symbol, "heart");
    EXPECT_EQ(boards[1].itemIDs, (std::vector<Uuid>{idOf(engine, "y"), idOf(engine, "x")}));

    rig.scheduler.advance(1);
    EXPECT_EQ(rig.libraryOnDisk().pinboards, boards);
    EXPECT_TRUE(engine.removePinboard(second.id));
    EXPECT_EQ(engine.pinboards()->size(), 1u);
}

TEST(ClipEngineEditingTests, NothingChangesWhileTheHistoryIsClosed) {
    EngineRig rig;
    rig.seedHistory(ClipLibrary{});
    rig.makeStore();
    rig.keys->readFailure = kKeychainInteractionNotAllowed;
    ClipEngine& engine = rig.start();
    engine.sample();
    ASSERT_FALSE(engine.isHistoryOpen().get());
    EXPECT_FALSE(engine.addPinboard(Pinboard{Uuid::random(), "B", "red", "star", {}}));
    EXPECT_EQ(engine.addText("typed", ClipItem{}), std::nullopt);
    EXPECT_FALSE(engine.adoptImport(ClipLibrary{}, {}));
    EXPECT_EQ(engine.clear(ClipHistory::ClearRange::everything), 0u);
    engine.captureNow();
    EXPECT_TRUE(engine.history()->empty());
    EXPECT_FALSE(engine.isSaveScheduled());
}

TEST(ClipEngineEditingTests, AddedTextMergesLikeACopy) {
    EngineRig rig;
    ClipEngine& engine = startWith(rig, {"base"});
    ClipItem from = engine.history()->front();
    const std::optional<ClipItem> added = engine.addText("BASE", from);
    ASSERT_TRUE(added);
    EXPECT_EQ(added->appID, from.appID);
    EXPECT_EQ(rig.texts(), (std::vector<std::string>{"BASE", "base"}));
    const std::optional<ClipItem> again = engine.addText("base", from);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->id, from.id);
    EXPECT_EQ(again->timesCopied, 2);
    EXPECT_EQ(rig.texts(), (std::vector<std::string>{"base", "BASE"}));
}

}  // namespace
}  // namespace harbex
