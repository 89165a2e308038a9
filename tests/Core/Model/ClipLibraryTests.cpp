#include "HarbexClipCore/Model/ClipLibrary.hpp"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <random>
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

}  // namespace
}  // namespace harbex
