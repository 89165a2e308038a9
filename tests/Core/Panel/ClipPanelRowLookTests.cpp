#include <gtest/gtest.h>

#include "HarbexClipCore/Panel/ClipPanelPreview.hpp"
#include "HarbexClipCore/Panel/ClipPanelRowLook.hpp"
#include "tests/Core/Panel/PanelTestSupport.hpp"

namespace harbex {
namespace {

using paneltest::kindItem;
using paneltest::kNow;
using paneltest::textItem;
using Kind = ClipPanelPreview::Kind;

ClipItem sensitive(std::vector<ClipDetail> details) {
    ClipContent content;
    content.text = "hunter2-very-secret";
    return ClipItem::make(content, std::move(details), ClipSource{"org.keepassxc", "KeePassXC"},
                          kNow, ClipSensitivity::sensitive);
}

TEST(ClipPanelRowLookTests, EachKindGetsItsGlyphTitleAndSubtitle) {
    struct Case {
        ClipItem item;
        ClipKind glyph;
        std::string title;
        std::string subtitle;
        bool swatch;
        bool thumbnail;
    };
    const Case cases[] = {
        {textItem("hello\nworld", kNow), ClipKind::text, "hello", "Text Editor · 2 lines", false,
         false},
        {kindItem(ClipKind::richText, "bold words", kNow), ClipKind::richText, "bold words",
         "Firefox · 10 characters", false, false},
        {kindItem(ClipKind::link, "https://www.example.com/a", kNow), ClipKind::link,
         "example.com/a", "Firefox · example.com", false, false},
        {kindItem(ClipKind::image, "", kNow), ClipKind::image, "Image 640 × 480",
         "Firefox · 120 KB", false, true},
        {kindItem(ClipKind::file, "notes.txt", kNow), ClipKind::file, "notes.txt", "Firefox · File",
         false, false},
        {kindItem(ClipKind::color, "#5E5CE6", kNow), ClipKind::color, "#5E5CE6", "Firefox · Colour",
         true, false},
        {kindItem(ClipKind::code, "int main() {}", kNow), ClipKind::code, "int main() {}",
         "Firefox · 13 characters", false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.title);
        const auto look =
            ClipPanelRowLook::of(c.item, ClipPinState::unpinned, ClipStackState::unstacked, 1);
        EXPECT_EQ(look.glyph, c.glyph);
        EXPECT_EQ(look.title, c.title);
        EXPECT_EQ(look.subtitle, c.subtitle);
        EXPECT_EQ(look.swatch.has_value(), c.swatch);
        EXPECT_EQ(look.thumbnail.has_value(), c.thumbnail);
        EXPECT_FALSE(look.isHidden);
    }
    const auto colour = ClipPanelRowLook::of(kindItem(ClipKind::color, "#5E5CE6", kNow),
                                             ClipPinState::unpinned, ClipStackState::unstacked, 0);
    ASSERT_TRUE(colour.swatch);
    EXPECT_EQ(std::vector({colour.swatch->r, colour.swatch->g, colour.swatch->b}),
              std::vector({0x5E / 255.0, 0x5C / 255.0, 0xE6 / 255.0}));
}

TEST(ClipPanelRowLookTests, SensitiveCopiesShowNeitherTextNorItsLength) {
    struct Case {
        std::vector<ClipDetail> details;
        std::string title;
    };
    const Case cases[] = {
        {{}, "Sensitive, hidden"},
        {{ClipDetail::oneTimeCode}, "One-time code, hidden"},
    };
    for (const Case& c : cases) {
        const ClipItem item = sensitive(c.details);
        const auto look =
            ClipPanelRowLook::of(item, ClipPinState::unpinned, ClipStackState::unstacked, 2);
        EXPECT_TRUE(look.isHidden);
        EXPECT_EQ(look.title, c.title);
        EXPECT_EQ(look.subtitle, "KeePassXC") << "no character count either";
        const auto preview = ClipPanelPreview::of(item);
        EXPECT_EQ(preview.kind, Kind::hidden);
        EXPECT_EQ(preview.title, c.title);
        EXPECT_EQ(preview.body.find("hunter2"), std::string::npos);
        EXPECT_EQ(preview.details, "KeePassXC");
    }
}

TEST(ClipPanelPreviewTests, EachKindPreviewsWhatItHolds) {
    ClipItem link = kindItem(ClipKind::link, "https://www.example.com/page", kNow);
    link.linkTitle = "Example page";
    ClipItem files = kindItem(ClipKind::file, "a.txt", kNow);
    files.filePaths = std::vector<std::string>{"/home/ada/a.txt", "/home/ada/b.png"};
    ClipItem copied = textItem("one two three", kNow);
    copied.timesCopied = 3;
    copied.timesPasted = 1;
    struct Case {
        ClipItem item;
        Kind kind;
        std::string body;
        std::string details;
    };
    const Case cases[] = {
        {copied, Kind::text, "one two three",
         "Text Editor · 3 words, 13 characters · copied 3 times · pasted once"},
        {kindItem(ClipKind::richText, "a\nb", kNow), Kind::text, "a\nb",
         "Firefox · 2 words, 3 characters, 2 lines, formatted"},
        {link, Kind::link, "https://www.example.com/page", "Firefox · example.com"},
        {kindItem(ClipKind::image, "", kNow), Kind::image, "", "Firefox · 640 × 480 · 120 KB"},
        {files, Kind::files, "", "Firefox · 2 files"},
        {kindItem(ClipKind::color, "#5E5CE6", kNow), Kind::colour, "#5E5CE6", "Firefox · Colour"},
        {kindItem(ClipKind::color, "not a colour", kNow), Kind::text, "not a colour",
         "Firefox · 3 words, 12 characters"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body);
        const auto preview = ClipPanelPreview::of(c.item);
        EXPECT_EQ(preview.kind, c.kind);
        EXPECT_EQ(preview.body, c.body);
        EXPECT_EQ(preview.details, c.details);
    }
    const auto linkPreview = ClipPanelPreview::of(link);
    EXPECT_EQ(linkPreview.linkTitle, "Example page");
    EXPECT_EQ(linkPreview.host, "example.com");
    EXPECT_EQ(ClipPanelPreview::of(files).files, *files.filePaths);
    EXPECT_EQ(ClipPanelPreview::of(kindItem(ClipKind::image, "", kNow)).image->digest, "d1g3st");
    EXPECT_TRUE(ClipPanelPreview::of(kindItem(ClipKind::code, "x = 1", kNow)).isCode);
    EXPECT_EQ(ClipPanelPreview::of(kindItem(ClipKind::color, "#FF0000", kNow)).colourForms,
              (std::vector<std::string>{"#FF0000", "rgb(255, 0, 0)", "hsl(0, 100%, 50%)",
                                        "oklch(62.8% 0.258 29.2)"}));
}

TEST(ClipPanelPreviewTests, LongTextIsCutAtACharacterAndLargeTextIsNotCounted) {
    // Two-byte characters: a cut in the middle of one would leave invalid UTF-8.
    std::string text;
    for (std::size_t i = 0; i < ClipPanelPreview::kTextCharacters + 10; ++i) text += "é";
    const auto preview = ClipPanelPreview::of(textItem(text, kNow));
    EXPECT_TRUE(preview.isCut);
    EXPECT_EQ(preview.body.size(), 2 * ClipPanelPreview::kTextCharacters);
    EXPECT_EQ(preview.details, "Text Editor · 1 word, 20010 characters")
        << "at this size it is still counted";

    const std::string large(ClipPanelPreview::kCountedBytes + 1, 'a');
    const auto big = ClipPanelPreview::of(textItem(large, kNow));
    EXPECT_EQ(big.details, "Text Editor · 262 KB");
    EXPECT_FALSE(ClipPanelPreview::of(textItem("short", kNow)).isCut);
}

}  // namespace
}  // namespace harbex
