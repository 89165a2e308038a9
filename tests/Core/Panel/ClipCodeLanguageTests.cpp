#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "HarbexClipCore/Panel/ClipCodeLanguage.hpp"

namespace harbex {
namespace {

TEST(ClipCodeLanguageTests, EachLanguageIsKnownByItsOwnMarks) {
    struct Case {
        const char* code;
        std::optional<std::string> language;
    };
    const std::vector<Case> cases{
        {"fn main() {\n    println!(\"hello\");\n}", "Rust"},
        {"let mut total = 0;\nfor x in v.iter() { total += x; }", "Rust"},
        {"def greet(name):\n    print(f\"hi {name}\")\n", "Python"},
        {"class Point:\n    def __init__(self, x):\n        self.x = x\n", "Python"},
        {"def greet\n  puts 'hi'\nend\n", "Ruby"},
        {"console.log(items.map(x => x * 2));", "JavaScript"},
        {"const total: number = items.length;\nconsole.log(total);", "TypeScript"},
        {"package main\n\nimport \"fmt\"\n\nfunc main() {\n\tfmt.Println(\"hi\")\n}", "Go"},
        {"if err != nil {\n\treturn err\n}", "Go"},
        {"#include <stdio.h>\nint main(void) { printf(\"hi\\n\"); return 0; }", "C"},
        {"#include <iostream>\nint main() { std::cout << \"hi\"; }", "C++"},
        {"public class Main {\n  public static void main(String[] args) {\n"
         "    System.out.println(\"hi\");\n  }\n}",
         "Java"},
        {"data class User(val name: String)\nfun main() {\n    val u = User(\"a\")\n}", "Kotlin"},
        {"using System;\nConsole.WriteLine(\"hi\");", "C#"},
        {"guard let url = URL(string: text) else { return }", "Swift"},
        {"<?php echo $this->title; ?>", "PHP"},
        {"#!/bin/sh\nset -e\necho done", "Shell"},
        {"sudo apt install ripgrep", "Shell"},
        {"SELECT name FROM users WHERE id = 1;", "SQL"},
        {"<div class=\"card\"><p>Hi</p></div>", "HTML"},
        {".card {\n  padding: 8px;\n  color: red;\n}", "CSS"},
        {"{\n  \"name\": \"harbex\",\n  \"version\": 2\n}", "JSON"},
        // Too little to tell: nothing rather than a wrong name.
        {"x = 1", std::nullopt},
        {"print(value)", std::nullopt},
        {"Meeting moved to Thursday at 10:00", std::nullopt},
        {"", std::nullopt},
    };
    const std::vector<std::string> all = ClipCodeLanguage::knownNames();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(ClipCodeLanguage::guess(c.code, all), c.language);
    }
}

TEST(ClipCodeLanguageTests, OnlyTheLanguagesOfferedAreNamed) {
    const std::string rust = "fn main() {\n    println!(\"hello\");\n}";
    struct Case {
        std::vector<std::string> languages;
        std::optional<std::string> language;
    };
    const std::vector<Case> cases{
        {{}, std::nullopt},
        {{"Python", "Go"}, std::nullopt},
        {{"Rust"}, "Rust"},
        {{"Klingon", "Rust"}, "Rust"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ClipCodeLanguage::guess(rust, c.languages), c.language);
    }
}

TEST(ClipCodeLanguageTests, OnlyTheStartOfALongCopyIsRead) {
    const std::string filler(ClipCodeLanguage::kReadCharacters, ' ');
    const std::vector<std::string> all = ClipCodeLanguage::knownNames();
    EXPECT_EQ(ClipCodeLanguage::guess("<?php\n" + filler, all), "PHP");
    EXPECT_EQ(ClipCodeLanguage::guess(filler + "<?php\n", all), std::nullopt);
}

}  // namespace
}  // namespace harbex
