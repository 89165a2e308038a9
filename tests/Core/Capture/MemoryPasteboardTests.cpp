#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"

#include <gtest/gtest.h>

#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"

namespace harbex {
namespace {

using Flavour = MemoryPasteboard::Flavour;

TEST(MemoryPasteboardTests, ReadsFlavoursInTheReadingOrder) {
    MemoryPasteboard pasteboard;
    pasteboard.copy({Flavour::text(kHtmlType, "<b>x</b>"), Flavour::text(kUrlTitleType, "T"),
                     Flavour::text(kPlainTextType, "x"), Flavour::text(kRtfType, "{\\rtf1 x}"),
                     Flavour::text(kSourceType, "org.example.app"),
                     Flavour::text(kPasswordManagerHintType, "public")});
    ASSERT_TRUE(pasteboard.snapshot().has_value());
    const std::vector<std::string> expected{
        std::string(kSourceType),    std::string(kPasswordManagerHintType),
        std::string(kPlainTextType), std::string(kRtfType),
        std::string(kHtmlType),      std::string(kUrlTitleType)};
    EXPECT_EQ(pasteboard.requestedTypes(), expected);
}

TEST(MemoryPasteboardTests, WritesFlavoursInTheWriteOrder) {
    MemoryPasteboard pasteboard;
    const auto before = pasteboard.changeCount();
    const auto count =
        pasteboard.write(ClipPayload{.text = "t",
                                     .rtf = bytesOf("r"),
                                     .html = bytesOf("h"),
                                     .url = "https://example.org",
                                     .image = ClipImagePayload{std::string(kTiffType), Bytes{1, 2}},
                                     .concealed = true},
                         "org.example.me");
    EXPECT_EQ(count, before + 1) << "one write is one change";
    const std::vector<std::string> expected{
        std::string(kUrlType),       std::string(kTiffType),
        std::string(kPlainTextType), std::string(kRtfType),
        std::string(kHtmlType),      std::string(kOwnWriteType),
        std::string(kConcealedType), std::string(kPasswordManagerHintType),
        std::string(kSourceType)};
    EXPECT_EQ(pasteboard.types(), expected);
    EXPECT_EQ(pasteboard.contents(kOwnWriteType), Bytes{});
    EXPECT_EQ(pasteboard.contents(kSourceType), bytesOf("org.example.me"));
    EXPECT_TRUE(pasteboard.requestedTypes().empty()) << "inspecting contents is not a request";
}

TEST(MemoryPasteboardTests, AnImageWhoseProviderFailsIsNotReplacedByTheNextType) {
    MemoryPasteboard pasteboard;
    pasteboard.copy({Flavour::declaredOnly(kPngType), Flavour::bytes(kTiffType, Bytes{1})});
    const auto snapshot = pasteboard.snapshot();
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_FALSE(snapshot->image.has_value());
    EXPECT_EQ(pasteboard.requestedTypes(), std::vector<std::string>{std::string(kPngType)});
}

TEST(MemoryPasteboardTests, ThousandsOfDeclaredTypesAreReadWithoutTrouble) {
    MemoryPasteboard pasteboard;
    std::vector<Flavour> flavours;
    for (int i = 0; i < 5000; ++i)
        flavours.push_back(Flavour::declaredOnly("x-type/" + std::to_string(i)));
    flavours.push_back(Flavour::text(kPlainTextType, "last"));
    pasteboard.copy(std::move(flavours));
    const auto snapshot = pasteboard.snapshot();
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_EQ(snapshot->types.size(), 5001u);
    EXPECT_EQ(snapshot->string, "last");
}

}  // namespace
}  // namespace harbex
