#include "HarbexClipCore/Capture/CodePatterns.hpp"

#include <gtest/gtest.h>

namespace harbex {
namespace {

TEST(CodePatternsTests, WhatReadsAsCode) {
    const std::pair<std::string, bool> cases[] = {
        {"print(value)", true},
        {"os.exit(1);", true},
        {"  console.log('hi')  \n", true},
        {"f()", true},
        {"Hello (world)", false},  // a space before the bracket: prose
        {"(aside)", false},
        {"call(me) maybe", false},
        {"def area(r):\n    return 3.14 * r * r", true},
        {"int main() {\n    return 0;\n}", true},
        {"#include <stdio.h>\nint x = 1;", true},
        {"Dear Anna,\nthanks for the notes.\nBest, Ben", false},
        {"Shopping:\n- milk\n- bread", false},
        {"Note: this is fine;\nand so is this.\nand this.\nand this.", false},  // one in four
        {"", false},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(looksLikeCode(text), expected) << text;
}

TEST(CodePatternsTests, OneTimeCodeShape) {
    const std::pair<const char*, bool> cases[] = {
        {"1234", true},       {"12345678", true}, {"123", false},
        {"123456789", false}, {"12 34", false},   {"1234\n", false},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(isOneTimeCodeText(text), expected) << text;
}

}  // namespace
}  // namespace harbex
