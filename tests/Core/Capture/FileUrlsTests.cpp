#include "HarbexClipCore/Pasteboard/FileUrls.hpp"

#include <gtest/gtest.h>

namespace harbex {
namespace {

TEST(FileUrlsTests, PathsSurviveTheRoundTripThroughAUrl) {
    const char* paths[] = {"/tmp/a.txt", "/home/me/My Report (final).pdf", "/tmp/100%/#1?.txt",
                           "/tmp/\xC3\xBC\xE2\x80\xA6", "/"};
    for (const char* path : paths) {
        const std::string url = fileUrlFromPath(path);
        EXPECT_TRUE(url.starts_with("file:///")) << url;
        EXPECT_EQ(url.find(' '), std::string::npos) << url;
        EXPECT_EQ(filePathFromUrl(url), path) << url;
    }
    EXPECT_EQ(fileUrlFromPath("/a b"), "file:///a%20b");
}

TEST(FileUrlsTests, ReadsOnlyLocalFileUrls) {
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"file:///tmp/a%20b", "/tmp/a b"},
        {"FILE:///tmp/x", "/tmp/x"},
        {"file://localhost/tmp/x", "/tmp/x"},
        {"file:/tmp/x", "/tmp/x"},
        {"file:///tmp/x?query#frag", "/tmp/x"},
        {"file://server/share/x", std::nullopt},
        {"https://example.org/x", std::nullopt},
        {"file://", std::nullopt},
        {"file:relative", std::nullopt},
        {"file:///tmp/%zz", std::nullopt},
        {"file:///tmp/%2", std::nullopt},
        {"file:///tmp/%00x", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [url, expected] : cases) EXPECT_EQ(filePathFromUrl(url), expected) << url;
}

TEST(FileUrlsTests, UriListsSplitAtLineEndsAndSkipComments) {
    const auto urls = urlsFromUriList("# copied\r\nfile:///a\r\n\r\n  file:///b  \nfile:///c");
    EXPECT_EQ(urls, (std::vector<std::string>{"file:///a", "file:///b", "file:///c"}));
    EXPECT_EQ(urlsFromUriList(uriListFromUrls(urls)), urls);
    EXPECT_EQ(uriListFromUrls({"file:///a"}), "file:///a\r\n");
    EXPECT_TRUE(urlsFromUriList("").empty());
}

TEST(FileUrlsTests, ATrailingNulAsFileManagersSendItEndsTheLastLine) {
    // PCManFM's text/uri-list: CRLF after each URL and the C string's NUL sent along.
    using namespace std::string_view_literals;
    const std::vector<std::string> both{"file:///tmp/a%20b", "file:///tmp/c"};
    EXPECT_EQ(urlsFromUriList("file:///tmp/a%20b\r\nfile:///tmp/c\r\n\0"sv), both);
    EXPECT_EQ(urlsFromUriList("file:///tmp/a%20b\nfile:///tmp/c\0"sv), both);
    EXPECT_EQ(filePathFromUrl(urlsFromUriList("file:///tmp/c\0"sv).back()), "/tmp/c");
}

}  // namespace
}  // namespace harbex
