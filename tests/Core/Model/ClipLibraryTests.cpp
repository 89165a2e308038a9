#include "HarbexClipCore/Model/ClipLibrary.hpp"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>
#include <set>
#include <string>

namespace harbex {
namespace {

// Texts that stress the writer: escapes, control characters, UTF-8 of every length, and a long
// run with escapes at its ends. (Invalid UTF-8 is compared byte for byte in JsonTextWriterTests;
// the reader refuses it, so it cannot be part of a library read back here.)
const std::array<std::string, 8> kTexts{
    "",
    "plain words",
    "\"quoted\" back\\slash\n\ttab\r\f\b\x01\x1F\x7F",
    "Grüße, 世界 👋 e\u0301 \u2028",
    std::string("nul\0byte", 8),
    "</script><!-- & ' -->",
    std::string(5000, 'a') + "\"",
    "\n" + std::string(300, '\\'),
};

const std::array<double, 8> kNumbers{0.0,
                                     -0.0,
                                     0.1 + 0.2,
                                     752101234.1234567,
                                     1e21,
                                     5e-324,
                                     std::numeric_limits<double>::max(),
                                     std::numeric_limits<double>::infinity()};

// A library whose items set each optional field at random, from seeded choices.
ClipLibrary randomLibrary(std::uint64_t seed, std::size_t count) {
    std::mt19937_64 random(seed);
    const auto chance = [&] { return random() % 2 == 0; };
    const auto text = [&] { return kTexts[random() % kTexts.size()]; };
    const auto number = [&] { return kNumbers[random() % kNumbers.size()]; };
    const auto bytes = [&] { return bytesOf(text()); };
    ClipLibrary library;
    library.version = static_cast<std::int64_t>(random() % 3) - 1;
    for (std::size_t index = 0; index < count; ++index) {
        ClipItem item;
        item.id = Uuid::random();
        item.kind = static_cast<ClipKind>(random() % 7);
        if (chance()) item.text = text();
        if (chance()) item.rtf = bytes();
        if (chance()) item.html = bytes();
        if (chance()) item.filePaths = std::vector<std::string>{text(), text()};
        if (chance()) {
            item.image = ClipImageInfo{text(), number(), number(),
                                       std::numeric_limits<std::int64_t>::min(), text()};
        }
        if (chance()) item.linkTitle = text();
        if (chance()) item.colorHex = text();
        if (chance()) item.details = {ClipDetail::oneTimeCode, ClipDetail::email};
        if (chance()) item.appID = text();
        if (chance()) item.appName = text();
        item.date = Date{number()};
        item.firstCopied = Date{number()};
        item.timesCopied = chance() ? std::numeric_limits<std::int64_t>::max() : 0;
        item.timesPasted = -static_cast<std::int64_t>(random() % 1000);
        if (chance()) item.lastPasted = Date{number()};
        if (chance()) item.customTitle = text();
        if (chance()) item.ocrText = text();
        item.isSensitive = chance();
        if (chance()) item.expiresAt = Date{number()};
        item.fingerprint = text();
        if (chance()) {
            item.original = ClipOriginal{ClipKind::richText, std::nullopt, bytes(), std::nullopt};
            if (chance()) item.original->text = text();
            if (chance()) item.original->html = bytes();
        }
        library.items.push_back(std::move(item));
    }
    for (int board = 0; board < 3; ++board) {
        Pinboard pinboard{Uuid::random(), text(), text(), text(), {}};
        for (std::size_t index = 0; index < count; index += 3)
            pinboard.itemIDs.push_back(library.items[index].id);
        library.pinboards.push_back(std::move(pinboard));
    }
    return library;
}

TEST(ClipLibraryTests, TextWrittenFromTheRecordsIsTheValueTreesTextByteForByte) {
    struct Case {
        const char* name;
        ClipLibrary library;
    };
    Case cases[] = {
        {"empty", ClipLibrary{}},          {"one bare item", ClipLibrary{1, {ClipItem{}}, {}}},
        {"seed 1", randomLibrary(1, 60)},  {"seed 2", randomLibrary(2, 60)},
        {"seed 3", randomLibrary(3, 200)},
    };
    for (const auto& c : cases) {
        const std::string written = jsonText(c.library);
        EXPECT_EQ(written, serializeJson(encodeJson(c.library))) << c.name;
        // And the text reads back as the same library.
        const auto parsed = parseJson(written);
        ASSERT_TRUE(parsed) << c.name;
        const auto decoded = decodeJsonAs<ClipLibrary>(*parsed);
        ASSERT_TRUE(decoded) << c.name << ": " << decoded.error().description();
        EXPECT_EQ(decoded->items.size(), c.library.items.size()) << c.name;
    }
}

TEST(ClipLibraryTests, AWriterAppendingToAKeptStringWritesTheSameDocumentEachTime) {
    const ClipLibrary big = randomLibrary(4, 100);
    const ClipLibrary small = randomLibrary(5, 3);
    std::string kept;
    for (const ClipLibrary* library : {&big, &small, &big}) {
        kept.clear();
        JsonTextWriter writer(kept);
        writeJson(writer, *library);
        EXPECT_EQ(kept, serializeJson(encodeJson(*library)));
    }
}

ClipItem itemWithText(const Uuid& id, std::string text) {
    ClipItem item;
    item.id = id;
    item.text = std::move(text);
    item.fingerprint = fingerprint(ClipKind::text, item.text, std::nullopt, std::nullopt);
    return item;
}

TEST(ClipLibraryTests, RepeatedIdentitiesAreMadeUniqueWithoutLosingContent) {
    const Uuid a = *Uuid::parse("00000000-0000-4000-8000-00000000000A");
    const Uuid b = *Uuid::parse("00000000-0000-4000-8000-00000000000B");
    const Uuid unknown = *Uuid::parse("00000000-0000-4000-8000-0000000000FF");
    const Uuid boardID = *Uuid::parse("00000000-0000-4000-8000-0000000000BB");
    struct Case {
        const char* name;
        ClipLibrary library;
        ClipLibraryRepairs repairs;
        std::vector<std::string> texts;                // of the items after repair, in order
        std::vector<std::vector<std::size_t>> boards;  // item positions on each board
    };
    Case cases[] = {
        {"a sound library is left alone",
         ClipLibrary{1,
                     {itemWithText(a, "one"), itemWithText(b, "two")},
                     {Pinboard{boardID, "Work", "blue", "star", {b, a}}}},
         {},
         {"one", "two"},
         {{1, 0}}},
        {"an exact repeat of an item is dropped",
         ClipLibrary{
             1, {itemWithText(a, "one"), itemWithText(b, "two"), itemWithText(a, "one")}, {}},
         {.droppedItems = 1},
         {"one", "two"},
         {}},
        {"another item under a taken id keeps its content under a fresh id",
         ClipLibrary{1,
                     {itemWithText(a, "newer"), itemWithText(a, "older")},
                     {Pinboard{boardID, "Work", "blue", "star", {a}}}},
         {.renumberedItems = 1},
         {"newer", "older"},
         {{0}}},
        {"ids repeated on a board or naming no item are dropped from it",
         ClipLibrary{1,
                     {itemWithText(a, "one"), itemWithText(b, "two")},
                     {Pinboard{boardID, "Work", "blue", "star", {b, unknown, a, b, a}}}},
         {.droppedBoardEntries = 3},
         {"one", "two"},
         {{1, 0}}},
        {"an exact repeat of a board is dropped; another board under its id is kept",
         ClipLibrary{1,
                     {itemWithText(a, "one")},
                     {Pinboard{boardID, "Work", "blue", "star", {a}},
                      Pinboard{boardID, "Work", "blue", "star", {a}},
                      Pinboard{boardID, "Home", "red", "house", {a}}}},
         {.droppedBoards = 1, .renumberedBoards = 1},
         {"one"},
         {{0}, {0}}},
    };
    for (auto& c : cases) {
        ClipLibrary library = c.library;
        EXPECT_EQ(repairIdentities(library), c.repairs) << c.name;
        std::vector<std::string> texts;
        std::set<Uuid> ids;
        for (const auto& item : library.items) {
            texts.push_back(item.text.value_or(""));
            ids.insert(item.id);
        }
        EXPECT_EQ(texts, c.texts) << c.name;
        EXPECT_EQ(ids.size(), library.items.size()) << c.name << ": ids are not unique";
        std::vector<std::vector<std::size_t>> boards;
        std::set<Uuid> boardIDs;
        for (const auto& board : library.pinboards) {
            boardIDs.insert(board.id);
            auto& positions = boards.emplace_back();
            for (const auto& id : board.itemIDs) {
                for (std::size_t index = 0; index < library.items.size(); ++index) {
                    if (library.items[index].id == id) positions.push_back(index);
                }
            }
        }
        EXPECT_EQ(boards, c.boards) << c.name;
        EXPECT_EQ(boardIDs.size(), library.pinboards.size()) << c.name;
        // The first holder of an id keeps it.
        ASSERT_FALSE(library.items.empty()) << c.name;
        EXPECT_EQ(library.items[0].id, c.library.items[0].id) << c.name;
    }
}

TEST(ClipLibraryTests, ADocumentWithRepeatedIdsReadsAsTheRepairedLibrary) {
    const Uuid a = Uuid::random();
    ClipLibrary written{1,
                        {itemWithText(a, "newer"), itemWithText(a, "older")},
                        {Pinboard{Uuid::random(), "Work", "blue", "star", {a, a}}}};
    const auto parsed = parseJson(jsonText(written));
    ASSERT_TRUE(parsed);
    const auto read = decodeJsonAs<ClipLibrary>(*parsed);
    ASSERT_TRUE(read) << read.error().description();
    ASSERT_EQ(read->items.size(), 2u);
    EXPECT_EQ(read->items[0].id, a);
    EXPECT_NE(read->items[1].id, a);
    EXPECT_EQ(read->items[1].text, "older");
    EXPECT_EQ(read->pinboards[0].itemIDs, std::vector<Uuid>{a});
}

}  // namespace
}  // namespace harbex
