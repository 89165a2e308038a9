#include "HarbexClipCore/Support/Digest.hpp"

#include <gtest/gtest.h>

namespace harbex {
namespace {

TEST(DigestTests, Sha256MatchesPublishedVectors) {
    EXPECT_EQ(sha256Hex(std::string_view("abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256Hex(std::string_view("")),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    // Embedded NULs are hashed, not treated as the end.
    EXPECT_NE(sha256Hex(std::string_view("t\0a", 3)), sha256Hex(std::string_view("t")));
}

TEST(DigestTests, Base64FollowsTheStandardAlphabetWithPadding) {
    const std::pair<const char*, const char*> vectors[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
    };
    for (const auto& [plain, encoded] : vectors) {
        EXPECT_EQ(base64Encode(bytesOf(plain)), encoded);
        const auto decoded = base64Decode(encoded);
        ASSERT_TRUE(decoded) << encoded;
        EXPECT_EQ(stringOf(*decoded), plain);
    }
    EXPECT_EQ(base64Encode(Bytes{0xFB, 0xFF}), "+/8=");
}

TEST(DigestTests, Base64DecodingRefusesAnythingButCanonicalText) {
    for (const char* bad : {"Zg", "Zg=", "Z===", "Zm9v\n", "Zm 9v", "Zm9-", "=Zm9", "Zm=v"}) {
        EXPECT_FALSE(base64Decode(bad)) << bad;
    }
}

}  // namespace
}  // namespace harbex
