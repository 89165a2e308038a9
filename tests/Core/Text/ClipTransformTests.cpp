#include "HarbexClipCore/Text/ClipTransform.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {
namespace {

struct Case {
    ClipTransform transform;
    std::string input;
    std::optional<std::string> expected;  // nothing: the transform does not apply
};

using T = ClipTransform;

void expectCases(const std::vector<Case>& cases) {
    for (const auto& test : cases) {
        const auto result = applyTransform(test.transform, test.input);
        EXPECT_EQ(result, test.expected)
            << enumName(test.transform) << " of \"" << test.input << "\" gave "
            << (result ? "\"" + *result + "\"" : std::string("nothing"));
    }
}

TEST(ClipTransformTests, ChangesCaseWithFullUnicodeMappings) {
    expectCases({
        {T::uppercase, "", ""},
        {T::uppercase, "hello World 42", "HELLO WORLD 42"},
        {T::uppercase, "straße", "STRASSE"},
        {T::uppercase, "istanbul", "ISTANBUL"},  // no locale: no dotted İ
        {T::uppercase, "a\r\nb\n", "A\r\nB\n"},
        {T::lowercase, "HELLO World", "hello world"},
        {T::lowercase, "ΣΟΦΟΣ", "σοφος"},  // final sigma takes its final form
        {T::lowercase, "ÀÉÎ", "àéî"},
        {T::titleCase, "", ""},
        {T::titleCase, "hello wORLD", "Hello World"},
        {T::titleCase, "don't STOP believing", "Don't Stop Believing"},
        {T::titleCase, "émile zola", "Émile Zola"},
        {T::titleCase, "ǆungla", "ǅungla"},  // the titlecase digraph, not the uppercase one
        {T::titleCase, "one\r\ntwo three\n", "One\r\nTwo Three\n"},
        {T::sentenceCase, "", ""},
        {T::sentenceCase, "HELLO WORLD. THIS IS GREAT! REALLY? YES",
         "Hello world. This is great! Really? Yes"},
        {T::sentenceCase, "visit EXAMPLE.COM today. it costs 3.50 EUR.",
         "Visit example.com today. It costs 3.50 eur."},
        {T::sentenceCase, "  \"QUOTED.\" next one", "  \"Quoted.\" Next one"},
        {T::sentenceCase, "end.\nnext LINE", "End.\nNext line"},
        {T::sentenceCase, "first line\nsecond line", "First line\nsecond line"},
        {T::sentenceCase, "wait... what?!  ok", "Wait... What?!  Ok"},
        {T::sentenceCase, "ß is sharp", "Ss is sharp"},
        {T::sentenceCase, "42 APPLES. 7 PEARS", "42 apples. 7 pears"},
    });
}

TEST(ClipTransformTests, TrimsSpacesOfEachLineAndBlankLinesAtTheEnds) {
    expectCases({
        {T::trimSpaces, "", ""},
        {T::trimSpaces, "   ", ""},
        {T::trimSpaces, "tidy", "tidy"},
        {T::trimSpaces, "  a  \n\tb\t\n", "a\nb"},
        {T::trimSpaces, "\n\n  a\n   \n  b  \n\n", "a\n\nb"},
        {T::trimSpaces, "a \r\n b \r\n", "a\r\nb"},
        {T::trimSpaces, " \u00A0a b\u3000", "a b"},  // no-break and ideographic spaces too
        {T::trimSpaces, "x\u200By ", "x\u200By"},    // a zero-width space inside is content
    });
}

TEST(ClipTransformTests, SortsLinesAsPeopleReadThem) {
    expectCases({
        {T::sortLines, "", ""},
        {T::sortLines, "\n", "\n"},
        {T::sortLines, "b\na\nc", "a\nb\nc"},
        {T::sortLines, "banana\nApple\ncherry", "Apple\nbanana\ncherry"},
        {T::sortLines, "file10\nfile2\nfile1", "file1\nfile2\nfile10"},
        {T::sortLines, "zebra\néclair\neagle", "eagle\néclair\nzebra"},
        {T::sortLines, "Apple\napple", "apple\nApple"},
        {T::sortLines, "b\r\na\r\n", "a\r\nb\r\n"},  // line breaks and the final one kept
        {T::sortLines, "b\na\n", "a\nb\n"},
        {T::sortLines, "b\n\na", "\na\nb"},
        // Lines that collate equal keep their order: the sort is stable.
        {T::sortLines, "a\u200Bb\nab\nc", "a\u200Bb\nab\nc"},
        {T::sortLines, "ab\na\u200Bb\nc", "ab\na\u200Bb\nc"},
    });
}

TEST(ClipTransformTests, RemovesDuplicateLinesKeepingTheFirst) {
    expectCases({
        {T::removeDuplicateLines, "", ""},
        {T::removeDuplicateLines, "a\nb\na\nc\nb", "a\nb\nc"},
        {T::removeDuplicateLines, "a\na", "a"},
        {T::removeDuplicateLines, "a\na\n", "a\n"},
        {T::removeDuplicateLines, "Apple\napple", "Apple\napple"},  // exact comparison
        {T::removeDuplicateLines, "a \na", "a \na"},
        {T::removeDuplicateLines, "x\r\ny\r\nx\r\n", "x\r\ny\r\n"},
        // Blank lines separate paragraphs; they are not duplicates of each other.
        {T::removeDuplicateLines, "a\n\nb\n\na\n\nc", "a\n\nb\n\n\nc"},
    });
}

TEST(ClipTransformTests, JoinsLinesWithSingleSpaces) {
    expectCases({
        {T::removeLineBreaks, "", ""},
        {T::removeLineBreaks, "a b", "a b"},
        {T::removeLineBreaks, "a\nb", "a b"},
        {T::removeLineBreaks, "a  \n  b", "a b"},
        {T::removeLineBreaks, "a\t\n\tb", "a b"},
        {T::removeLineBreaks, "a\r\n\r\nb", "a b"},
        {T::removeLineBreaks, "a\rb", "a b"},
        {T::removeLineBreaks, "\n a\n", "a"},
        {T::removeLineBreaks, "line one\nline two\n", "line one line two"},
        {T::removeLineBreaks, "  indented\nkept", "  indented kept"},
        {T::removeLineBreaks, "\n\n", ""},
    });
}

TEST(ClipTransformTests, StraightensQuotesAndPrimes) {
    expectCases({
        {T::straightenQuotes, "", ""},
        {T::straightenQuotes, "“Hello,” she said. ‘Hi’ — it’s 5′ 3″ „x‟ ‚y‛",
         "\"Hello,\" she said. 'Hi' — it's 5' 3\" \"x\" 'y'"},
        {T::straightenQuotes, "plain \"text\" and 'this'", "plain \"text\" and 'this'"},
        {T::straightenQuotes, "«guillemets» stay", "«guillemets» stay"},
        {T::straightenQuotes, "“a”\r\n", "\"a\"\r\n"},
    });
}

TEST(ClipTransformTests, TurnsMarkdownIntoPlainText) {
    expectCases({
        {T::markdownToPlainText, "", ""},
        {T::markdownToPlainText, "**Word** [link text](https://example.com/a?b=c)",
         "Word link text"},
        {T::markdownToPlainText, "See ![alt text](img.png) here", "See alt text here"},
        {T::markdownToPlainText, "![](img.png)", ""},
        {T::markdownToPlainText, "# Title\n\nSome **bold**, *italic* and __strong__.",
         "Title\n\nSome bold, italic and strong."},
        {T::markdownToPlainText, "###### Deep", "Deep"},
        {T::markdownToPlainText, "Use `code` here", "Use code here"},
        {T::markdownToPlainText, "```swift\nlet x = 1\n```", "let x = 1\n"},
        {T::markdownToPlainText, "> quoted\n> more", "quoted\nmore"},
        {T::markdownToPlainText, "- one\n* two\n+ three", "one\ntwo\nthree"},
        {T::markdownToPlainText, "~~gone~~ kept", "gone kept"},
        {T::markdownToPlainText, "2 * 3 * 4", "2 * 3 * 4"},  // spaced asterisks are not emphasis
        {T::markdownToPlainText, "snake_case_name", "snake_case_name"},
        {T::markdownToPlainText, "# T\r\n- a", "T\r\na"},
        {T::markdownToPlainText, "plain text", "plain text"},
        {T::markdownToPlainText, "**“fancy” é**", "“fancy” é"},
    });
}

TEST(ClipTransformTests, StripsTrackingParametersFromLinks) {
    expectCases({
        {T::stripTrackingFromLink,
         "https://example.com/page?utm_source=news&utm_medium=email&id=42#top",
         "https://example.com/page?id=42#top"},
        {T::stripTrackingFromLink, "https://example.com/?utm_source=x", "https://example.com/"},
        {T::stripTrackingFromLink, "https://example.com/a?fbclid=abc#frag",
         "https://example.com/a#frag"},
        {T::stripTrackingFromLink,
         "  https://example.com/?gclid=1&q=search%20term&UTM_Campaign=y \n",
         "https://example.com/?q=search%20term"},
        {T::stripTrackingFromLink,
         "http://example.com?mc_eid=1&mc_cid=2&_hsenc=3&_hsmi=4&mkt_tok=5&msclkid=6&igshid=7",
         "http://example.com"},
        {T::stripTrackingFromLink, "https://x.org/?a=1&dclid=2&b&gbraid=3&wbraid=4&yclid=5",
         "https://x.org/?a=1&b"},
        {T::stripTrackingFromLink, "https://x.org/?vero_id=1&oly_enc_id=2&oly_anon_id=3&s_cid=4",
         "https://x.org/"},
        {T::stripTrackingFromLink, "HTTPS://Example.COM/Path?ref_src=twsrc&Keep=Me",
         "https://example.com/Path?Keep=Me"},
        {T::stripTrackingFromLink, "https://user@example.com:8080/p?x=1&&utm_id=2&pk_source=3#f",
         "https://user@example.com:8080/p?x=1#f"},
        {T::stripTrackingFromLink, "https://[::1]/?igshid=1", "https://[::1]/"},
        // Links without trackers come back as they were.
        {T::stripTrackingFromLink, "https://example.com/page", "https://example.com/page"},
        {T::stripTrackingFromLink, "https://example.com/?q=1&&r=2",
         "https://example.com/?q=1&&r=2"},
        {T::stripTrackingFromLink, "https://example.com/?utm=1", "https://example.com/?utm=1"},
        {T::stripTrackingFromLink, "https://example.com/#?utm_source=x",
         "https://example.com/#?utm_source=x"},
        // Not one web link: does not apply.
        {T::stripTrackingFromLink, "", std::nullopt},
        {T::stripTrackingFromLink, "not a link", std::nullopt},
        {T::stripTrackingFromLink, "example.com/?utm_source=x", std::nullopt},
        {T::stripTrackingFromLink, "ftp://example.com/?utm_source=x", std::nullopt},
        {T::stripTrackingFromLink, "https://", std::nullopt},
        {T::stripTrackingFromLink, "https:///path?utm_source=x", std::nullopt},
        {T::stripTrackingFromLink, "https://exa mple.com/?utm_source=x", std::nullopt},
        {T::stripTrackingFromLink, "see https://example.com/?utm_source=x", std::nullopt},
        {T::stripTrackingFromLink, "https://a.com/?utm_source=x\nhttps://b.com/", std::nullopt},
        {T::stripTrackingFromLink, "mailto:a@b.c?utm_source=x", std::nullopt},
        {T::stripTrackingFromLink, "https://example.com:99999/?utm_source=x", std::nullopt},
        {T::stripTrackingFromLink, "<https://example.com/?utm_source=x>", std::nullopt},
    });
}

TEST(ClipTransformTests, EncodesAndDecodesBase64) {
    expectCases({
        {T::base64Encode, "", ""},
        {T::base64Encode, "hello", "aGVsbG8="},
        {T::base64Encode, "héllo ✓", "aMOpbGxvIOKckw=="},
        {T::base64Encode, "a\r\nb", "YQ0KYg=="},
        {T::base64Decode, "aGVsbG8=", "hello"},
        {T::base64Decode, "  aGVsbG8=\n", "hello"},
        {T::base64Decode, "aGVsbG8", "hello"},     // padding left off
        {T::base64Decode, "aGVs\nbG8=", "hello"},  // wrapped
        {T::base64Decode, "aMOpbGxvIOKckw==", "héllo ✓"},
        {T::base64Decode, "Pz8-", "?\?>"},  // URL-safe alphabet
        {T::base64Decode, "Pz8+", "?\?>"},
        {T::base64Decode, "YQ0KYg==", "a\r\nb"},
        {T::base64Decode, "", std::nullopt},
        {T::base64Decode, "   ", std::nullopt},
        {T::base64Decode, "hello world!", std::nullopt},
        {T::base64Decode, "abcde", std::nullopt},  // a length no Base64 text has
        {T::base64Decode, "aGVsbG8=aGVs", std::nullopt},
        {T::base64Decode, "////", std::nullopt},  // bytes that are not UTF-8
        {T::base64Decode, "AAAA", std::nullopt},  // NUL bytes are not text
        {T::base64Decode, "test", std::nullopt},
    });
}

TEST(ClipTransformTests, EncodesAndDecodesURLs) {
    expectCases({
        {T::urlEncode, "", ""},
        {T::urlEncode, "AZaz09-._~", "AZaz09-._~"},
        {T::urlEncode, "a b&c=d/e?f#g", "a%20b%26c%3Dd%2Fe%3Ff%23g"},
        {T::urlEncode, "é+100%", "%C3%A9%2B100%25"},
        {T::urlEncode, "line\r\n", "line%0D%0A"},
        {T::urlDecode, "", ""},
        {T::urlDecode, "no escapes", "no escapes"},
        {T::urlDecode, "a%20b%26c", "a b&c"},
        {T::urlDecode, "%C3%A9 and %c3%a9", "é and é"},
        {T::urlDecode, "a+b", "a+b"},
        {T::urlDecode, "%0A", "\n"},
        {T::urlDecode, "100%", std::nullopt},
        {T::urlDecode, "%2", std::nullopt},
        {T::urlDecode, "%zz", std::nullopt},
        {T::urlDecode, "%%41", std::nullopt},
        {T::urlDecode, "%FF", std::nullopt},  // not UTF-8
        {T::urlDecode, "%C3", std::nullopt},  // cut-off sequence
        {T::urlDecode, "%00", std::nullopt},
    });
}

TEST(ClipTransformTests, FormatsAndMinifiesJSONKeepingItsTokens) {
    expectCases({
        {T::formatJSON, R"({"b":1,"a":[1,2,{"c":null}],"e":{},"f":[]})",
         "{\n  \"b\": 1,\n  \"a\": [\n    1,\n    2,\n    {\n      \"c\": null\n    }\n  ],\n"
         "  \"e\": {},\n  \"f\": []\n}"},
        {T::formatJSON, "[1.0, 1e5, -0.50, 12345678901234567890]",
         "[\n  1.0,\n  1e5,\n  -0.50,\n  12345678901234567890\n]"},
        {T::formatJSON, R"({"k":"a,b:{c}\"[\u00e9]","z":"\\"})",
         "{\n  \"k\": \"a,b:{c}\\\"[\\u00e9]\",\n  \"z\": \"\\\\\"\n}"},
        {T::formatJSON, "  { \"a\" : 1 }  \n", "{\n  \"a\": 1\n}"},
        {T::formatJSON, R"({"a":1,"a":2})", "{\n  \"a\": 1,\n  \"a\": 2\n}"},
        {T::formatJSON, "[ [ ], { } ]", "[\n  [],\n  {}\n]"},
        {T::formatJSON, "true", "true"},
        {T::formatJSON, "\"é\"", "\"é\""},
        {T::formatJSON, "", std::nullopt},
        {T::formatJSON, "{", std::nullopt},
        {T::formatJSON, "{'a':1}", std::nullopt},
        {T::formatJSON, "[1,]", std::nullopt},
        {T::formatJSON, "{\"a\":1} x", std::nullopt},
        {T::formatJSON, "NaN", std::nullopt},
        {T::formatJSON, "hello", std::nullopt},
        {T::formatJSON, "// comment\n{}", std::nullopt},
        {T::minify, "{\n  \"a\": [1, 2],\n  \"b\": \"x y\"\n}", R"({"a":[1,2],"b":"x y"})"},
        {T::minify, "[ ]", "[]"},
        {T::minify, "\t1.50 ", "1.50"},
        {T::minify, "{\"a\": \"tab\\t, \\\"q\\\" : \"}", R"({"a":"tab\t, \"q\" : "})"},
        {T::minify, "[1 2]", std::nullopt},
    });
}

TEST(ClipTransformTests, FormatJSONAndMinifyUndoEachOther) {
    const std::string documents[] = {
        R"({"name":"Harbex","tags":["a","b"],"nested":{"deep":[[],{}],"n":-1.5e-3}})",
        R"([{"a":{"b":{"c":[1,[2,[3]]]}}}])",
    };
    for (const auto& document : documents) {
        const auto formatted = applyTransform(T::formatJSON, document);
        ASSERT_TRUE(formatted) << document;
        EXPECT_EQ(applyTransform(T::minify, *formatted), document);
        EXPECT_EQ(applyTransform(T::formatJSON, *formatted), formatted);
    }
}

TEST(ClipTransformTests, ConvertsColourTextsKeepingAlpha) {
    expectCases({
        {T::colorAsHex, "rgb(94, 92, 230)", "#5E5CE6"},
        {T::colorAsHex, "  #fff \n", "#FFFFFF"},
        {T::colorAsHex, "rgba(94, 92, 230, 0.5)", "#5E5CE680"},
        {T::colorAsHex, "oklch(55.6% 0.203 278.1)", "#5E5CE6"},
        {T::colorAsRGB, "#5E5CE6", "rgb(94, 92, 230)"},
        {T::colorAsRGB, "#5E5CE680", "rgba(94, 92, 230, 0.50)"},
        {T::colorAsRGB, "hsl(0 100% 50%)", "rgb(255, 0, 0)"},
        {T::colorAsHSL, "#5E5CE6", "hsl(241, 73%, 63%)"},
        {T::colorAsHSL, "#5E5CE680", "hsl(241, 73%, 63%)"},
        {T::colorAsHSL, "#808080", "hsl(0, 0%, 50%)"},
        {T::colorAsHex, "hello", std::nullopt},
        {T::colorAsHex, "#12", std::nullopt},
        {T::colorAsRGB, "123456", std::nullopt},
        {T::colorAsHSL, "color: #fff", std::nullopt},
        {T::colorAsHSL, "", std::nullopt},
    });
}

TEST(ClipTransformTests, NeverBreaksOnOddText) {
    const std::string inputs[] = {
        std::string("\xFF\xFE bad \xC3", 9),
        std::string("nul\0inside", 10),
        "%",
        "{",
        "**",
        "![",
        "\r",
        "\r\n\r\n",
        std::string(20000, 'x') + "\n" + std::string(20000, ' '),
        "🙂👍🏽 e\u0301",
    };
    for (const auto& input : inputs) {
        for (const auto transform : allCases<ClipTransform>()) {
            const auto result = applyTransform(transform, input);
            if (result && isValidUtf8(input)) {
                EXPECT_TRUE(isValidUtf8(*result)) << enumName(transform);
            }
        }
    }
    // Invalid UTF-8 reads as U+FFFD in the Unicode-aware transforms.
    EXPECT_EQ(applyTransform(T::uppercase, "a\xFF"), "A\uFFFD");
}

TEST(ClipTransformTests, LabelsNamesAndCategories) {
    struct Info {
        ClipTransform transform;
        const char* label;
        const char* title;
        ClipTransformCategory category;
    };
    using C = ClipTransformCategory;
    const Info infos[] = {
        {T::uppercase, "UPPERCASE", "UPPERCASE", C::changeCase},
        {T::lowercase, "lowercase", "lowercase", C::changeCase},
        {T::titleCase, "Title Case", "Title Case", C::changeCase},
        {T::sentenceCase, "Sentence case", "Sentence case", C::changeCase},
        {T::trimSpaces, "Trim spaces", "Trim Spaces", C::cleanUp},
        {T::sortLines, "Sort lines", "Sort Lines", C::cleanUp},
        {T::removeDuplicateLines, "Remove duplicate lines", "Remove Duplicate Lines", C::cleanUp},
        {T::removeLineBreaks, "Remove line breaks", "Remove Line Breaks", C::cleanUp},
        {T::straightenQuotes, "Straighten quotes", "Straighten Quotes", C::cleanUp},
        {T::markdownToPlainText, "Markdown to plain text", "Markdown to Plain Text", C::cleanUp},
        {T::stripTrackingFromLink, "Strip tracking from link", "Strip Tracking from Link",
         C::cleanUp},
        {T::base64Encode, "Base64 encode", "Base64 Encode", C::encodeAndFormat},
        {T::base64Decode, "Base64 decode", "Base64 Decode", C::encodeAndFormat},
        {T::urlEncode, "URL encode", "URL Encode", C::encodeAndFormat},
        {T::urlDecode, "URL decode", "URL Decode", C::encodeAndFormat},
        {T::formatJSON, "Format JSON", "Format JSON", C::encodeAndFormat},
        {T::minify, "Minify", "Minify JSON", C::encodeAndFormat},
        {T::colorAsHex, "Colour as HEX", "Colour as HEX", C::encodeAndFormat},
        {T::colorAsRGB, "Colour as RGB", "Colour as RGB", C::encodeAndFormat},
        {T::colorAsHSL, "Colour as HSL", "Colour as HSL", C::encodeAndFormat},
    };
    ASSERT_EQ(std::size(infos), allCases<ClipTransform>().size());
    for (const auto& info : infos) {
        SCOPED_TRACE(enumName(info.transform));
        EXPECT_EQ(transformLabel(info.transform), info.label);
        EXPECT_EQ(transformTitle(info.transform), info.title);
        EXPECT_EQ(transformCategory(info.transform), info.category);
        EXPECT_FALSE(transformSymbol(info.transform).empty());
        EXPECT_EQ(enumFromName<ClipTransform>(enumName(info.transform)), info.transform);
    }
    EXPECT_EQ(transformSymbol(T::removeDuplicateLines), "text.badge.minus");
    EXPECT_EQ(transformSymbol(T::sortLines), "arrow.up.arrow.down");
    EXPECT_EQ(transformSymbol(T::stripTrackingFromLink), "checkmark.shield");
    EXPECT_EQ(categoryTitle(C::changeCase), "Change case");
    EXPECT_EQ(categoryTitle(C::cleanUp), "Clean up");
    EXPECT_EQ(categoryTitle(C::encodeAndFormat), "Encode and format");
}

TEST(ClipTransformTests, MenuListsEachTransformOnceGroupedByCategory) {
    const auto& menu = transformsInMenuOrder();
    EXPECT_EQ(std::set(menu.begin(), menu.end()).size(), allCases<ClipTransform>().size());
    EXPECT_TRUE(std::is_sorted(menu.begin(), menu.end(), [](ClipTransform a, ClipTransform b) {
        return transformCategory(a) < transformCategory(b);
    }));
    // The action list's titles, in its order (other entries may stand between them).
    const std::vector<std::string> listed{"Title Case",
                                          "Sentence case",
                                          "UPPERCASE",
                                          "lowercase",
                                          "Trim Spaces",
                                          "Sort Lines",
                                          "Remove Duplicate Lines",
                                          "Remove Line Breaks",
                                          "Straighten Quotes",
                                          "Markdown to Plain Text",
                                          "Base64 Encode",
                                          "Base64 Decode",
                                          "URL Encode",
                                          "URL Decode",
                                          "Format JSON",
                                          "Minify JSON"};
    std::vector<std::string> titles;
    for (auto transform : menu) {
        const std::string title(transformTitle(transform));
        if (std::find(listed.begin(), listed.end(), title) != listed.end()) titles.push_back(title);
    }
    EXPECT_EQ(titles, listed);
}

}  // namespace
}  // namespace harbex
