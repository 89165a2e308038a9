#include "HarbexClipCore/Model/ClipLibrary.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>

namespace harbex {
namespace {

// Every optional field of an item set, with texts and numbers that stress the writer (escapes,
// control characters, UTF-8 of every length, extreme and non-finite numbers), and a bare item
// beside it. (Invalid UTF-8 is compared byte for byte in JsonTextWriterTests; the reader refuses
// it, so it cannot be part of a library read back here.)
ClipLibrary stressLibrary(std::int64_t version) {
    using L = std::numeric_limits<double>;
    const std::string escapes = "\"quoted\" back\\slash\n\ttab\r\f\b\x01\x1F\x7F";
    ClipItem full;
    full.id = Uuid::random();
    full.kind = ClipKind::richText;
    full.text = "Grüße, 世界 👋 e\u0301 \u2028";
    full.rtf = bytesOf(std::string("nul\0byte", 8));
    full.html = bytesOf("</script><!-- & ' -->");
    full.filePaths = std::vector<std::string>{escapes, std::string(5000, 'a') + "\""};
    full.image = ClipImageInfo{"", 5e-324, L::max(), std::numeric_limits<std::int64_t>::min(),
                               "\n" + std::string(300, '\\')};
    full.linkTitle = escapes;
    full.colorHex = "";
    full.details = {ClipDetail::oneTimeCode, ClipDetail::email};
    full.appID = "plain words";
    full.appName = escapes;
    full.date = Date{752101234.1234567};
    full.firstCopied = Date{0.1 + 0.2};
    full.timesCopied = std::numeric_limits<std::int64_t>::max();
    full.timesPasted = -999;
    full.lastPasted = Date{-0.0};
    full.customTitle = escapes;
    full.ocrText = "SALE";
    full.isSensitive = true;
    full.expiresAt = Date{1e21};
    full.fingerprint = escapes;
    full.original = ClipOriginal{ClipKind::code, escapes, bytesOf(escapes), bytesOf("<b>")};
    ClipItem bare;
    bare.original = ClipOriginal{ClipKind::richText, std::nullopt, Bytes{}, std::nullopt};
    bare.date = Date{L::infinity()};
    ClipLibrary library{version, {full, bare, ClipItem{}}, {}};
    library.pinboards = {{Uuid::random(), escapes, "", "star", {full.id, bare.id}},
                         {Uuid::random(), "", "blue", "", {}}};
    return library;
}

TEST(ClipLibraryTests, TextWrittenFromTheRecordsIsTheValueTreesTextByteForByte) {
    struct Case {
        const char* name;
        ClipLibrary library;
    };
    Case cases[] = {
        {"empty", ClipLibrary{}},
        {"one bare item", ClipLibrary{1, {ClipItem{}}, {}}},
        {"every field, stressed", stressLibrary(-1)},
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
    ClipLibrary big = stressLibrary(1);
    const std::vector<ClipItem> once = big.items;
    for (int i = 0; i < 30; ++i) big.items.insert(big.items.end(), once.begin(), once.end());
    ClipLibrary small = stressLibrary(0);
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
