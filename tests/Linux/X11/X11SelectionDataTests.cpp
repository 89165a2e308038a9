#include <gtest/gtest.h>

#include <cstring>

#include "HarbexClip/Linux/X11SelectionData.hpp"

namespace harbex {
namespace {

using namespace x11data;

Bytes raw(std::string_view text) { return Bytes(text.begin(), text.end()); }

TEST(X11SelectionDataTests, TargetListsKeepWholeAtomsOnceEach) {
    const std::uint32_t atoms[] = {7, 0, 9, 7, 31};
    Bytes reply(sizeof atoms);
    std::memcpy(reply.data(), atoms, sizeof atoms);
    EXPECT_EQ(targetAtoms(reply), (std::vector<std::uint32_t>{7, 9, 31}));
    reply.pop_back();
    EXPECT_EQ(targetAtoms(reply), std::nullopt);
}

TEST(X11SelectionDataTests, TextsDecodeAsTheirProducersWriteThem) {
    using namespace std::string_view_literals;
    struct Case {
        const char* name;
        std::string got;
        std::string expected;
    };
    const Case cases[] = {
        {"UTF-16LE with a mark", decodeMaybeUtf16(raw("\xFF\xFEh\0\xE9\0"sv), false), "hé"},
        {"UTF-16BE with a mark, NUL-ended", decodeMaybeUtf16(raw("\xFE\xFF\0h\0\0\0i"sv), false),
         "h"},
        {"unmarked UTF-16LE when assumed", decodeMaybeUtf16(raw("a\0b\0"sv), true), "ab"},
        {"UTF-8 left alone", decodeMaybeUtf16(raw("<b>é</b>"), false), "<b>é</b>"},
        {"a lone surrogate", decodeMaybeUtf16(raw("\xFF\xFE\x00\xD8"sv), false), "\uFFFD"},
        {"Latin-1 STRING", latin1ToUtf8(raw("caf\xE9")), "café"},
        {"back to Latin-1", stringOf(utf8ToLatin1("café €")), "caf\xE9 ?"},
    };
    for (const Case& c : cases) EXPECT_EQ(c.got, c.expected) << c.name;
}

TEST(X11SelectionDataTests, MozUrlsSplitIntoUrlAndTitle) {
    using namespace std::string_view_literals;
    const auto firefox = mozUrl(raw("h\0t\0t\0p\0:\0/\0/\0a\0\n\0T\0i\0\0\0"sv));
    EXPECT_EQ(firefox.url, "http://a");
    EXPECT_EQ(firefox.title, "Ti");
    const auto bare = mozUrl(raw("https://example.com\r\n"));
    EXPECT_EQ(bare.url, "https://example.com");
    EXPECT_EQ(bare.title, std::nullopt);
}

TEST(X11SelectionDataTests, CutFilesDropTheirVerb) {
    using namespace std::string_view_literals;
    EXPECT_EQ(fileUrls("x-special/gnome-copied-files", raw("cut\nfile:///a\nfile:///b\0"sv)),
              (std::vector<std::string>{"file:///a", "file:///b"}));
    EXPECT_TRUE(fileUrls("x-special/gnome-copied-files", raw("file:///only-a-verb")).empty());
}

TEST(X11SelectionDataTests, IncrementalRepliesKeepToTheirLimit) {
    const std::uint32_t announced = 6;
    Bytes header(4);
    std::memcpy(header.data(), &announced, 4);
    IncrementalReply whole(header, 6);
    EXPECT_EQ(whole.add(raw("abc")), IncrementalReply::Step::more);
    EXPECT_EQ(whole.add(raw("def")), IncrementalReply::Step::more);
    EXPECT_EQ(whole.add({}), IncrementalReply::Step::done);
    EXPECT_EQ(whole.take(), raw("abcdef"));

    EXPECT_EQ(IncrementalReply(header, 5).state(), IncrementalReply::Step::tooLarge);
    IncrementalReply understated(Bytes(4, 0), 5);
    EXPECT_EQ(understated.add(raw("abc")), IncrementalReply::Step::more);
    EXPECT_EQ(understated.add(raw("def")), IncrementalReply::Step::tooLarge);
    EXPECT_EQ(understated.add({}), IncrementalReply::Step::tooLarge);
}

TEST(X11SelectionDataTests, WindowPropertiesOfOtherClients) {
    using namespace std::string_view_literals;
    EXPECT_EQ(windowClass("mousepad\0Mousepad\0"sv),
              (std::pair<std::string, std::string>{"mousepad", "Mousepad"}));
    EXPECT_EQ(windowClass("only"sv), (std::pair<std::string, std::string>{"only", ""}));
    EXPECT_EQ(gtkApplicationId("org.xfce.mousepad\0junk"sv), "org.xfce.mousepad");
    EXPECT_EQ(windowPid({4242}), 4242);
    EXPECT_EQ(windowPid({0}), std::nullopt);
    EXPECT_EQ(windowPid({0x80000000u}), std::nullopt);
    EXPECT_EQ(windowPid({}), std::nullopt);
}

}  // namespace
}  // namespace harbex
