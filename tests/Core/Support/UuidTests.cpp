#include "HarbexClipCore/Support/Uuid.hpp"

#include <gtest/gtest.h>

#include <unordered_set>

namespace harbex {
namespace {

TEST(UuidTests, RandomIdsAreVersion4UpperCaseAndDistinct) {
    std::unordered_set<Uuid> seen;
    for (int i = 0; i < 1000; ++i) {
        const Uuid id = Uuid::random();
        const std::string text = id.string();
        ASSERT_EQ(text.size(), 36u);
        EXPECT_EQ(text[14], '4');
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos);
        EXPECT_EQ(text.find_first_of("abcdef"), std::string::npos);
        EXPECT_EQ(Uuid::parse(text), id);
        EXPECT_TRUE(seen.insert(id).second);
    }
}

TEST(UuidTests, ParsingAcceptsEitherCaseAndRefusesMalformedText) {
    const auto lower = Uuid::parse("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
    ASSERT_TRUE(lower);
    EXPECT_EQ(lower->string(), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    for (const char* bad :
         {"", "E621E1F8C36C495A93FC0C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0C247A3E6E5",
          "E621E1F8-C36C-495A-93FC-0C247A3E6E5FF", "G621E1F8-C36C-495A-93FC-0C247A3E6E5F",
          "E621E1F-8C36C-495A-93FC-0C247A3E6E5F", "{E621E1F8-C36C-495A-93FC-0C247A3E6E5}"}) {
        EXPECT_FALSE(Uuid::parse(bad)) << bad;
    }
}

}  // namespace
}  // namespace harbex
