#include "HarbexClipCore/Capture/TextDetails.hpp"

#include <gtest/gtest.h>

namespace harbex {
namespace {

using enum ClipDetail;

TEST(TextDetailsTests, DetailsOfShortTexts) {
    struct Case {
        std::string text;
        std::vector<ClipDetail> expected;
    };
    const std::vector<Case> cases{
        {"123456", {oneTimeCode}},
        {"1234567", {oneTimeCode}},  // seven digits would be a phone number, but a code wins
        {"123", {number}},
        {"123456789", {number, phone}},
        {"+49 (30) 1234567", {phone}},
        {"030-1234567", {phone}},
        {"+1 555 123 4567 890 12", {}},  // 16 digits: too many for a phone number
        {"12 34", {}},                   // too few digits for a phone, not a number either
        {"-1,234.5", {number}},
        {"3.14", {number}},
        {"1.", {}},
        {"anna@example.org", {email}},
        {"Anna.Berg@EXAMPLE.ORG", {email}},
        {"anna@example", {}},
        {"mail me at anna@example.org", {}},  // anchored: the whole text must match
        {"123456\n", {}},
        {" 123456", {}},
        {"\xD9\xA1\xD9\xA2\xD9\xA3\xD9\xA4", {oneTimeCode}},  // Arabic-Indic digits are digits
        {"", {}},
        {"hello", {}},
    };
    for (const auto& c : cases) EXPECT_EQ(TextDetails::of(c.text), c.expected) << c.text;
}

TEST(TextDetailsTests, LongTextsHaveNoDetails) {
    const std::string address = "anna@example.org";
    std::string padded = std::string(200 - address.size(), 'a') + address;
    ASSERT_EQ(padded.size(), 200u);
    EXPECT_EQ(TextDetails::of(padded), std::vector<ClipDetail>{email});
    padded.insert(0, "a");
    EXPECT_TRUE(TextDetails::of(padded).empty()) << "201 characters";
    // Characters, not bytes: 150 two-byte letters are 150 characters.
    std::string accented;
    for (int i = 0; i < 150; ++i) accented += "\xC3\xA9";
    EXPECT_EQ(TextDetails::of(accented + "@example.org"), std::vector<ClipDetail>{});
    EXPECT_TRUE(TextDetails::of(std::string(1'000'000, '1')).empty());
}

}  // namespace
}  // namespace harbex
