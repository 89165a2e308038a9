#include "HarbexClipCore/Model/ClipItem.hpp"

#include <gtest/gtest.h>

#include <bit>

#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {
namespace {

// Every one of the 23 fields set, none to its default; dates with fractions that decimal text
// could round.
ClipItem fullItem() {
    ClipItem item;
    item.id = *Uuid::parse("0F8FAD5B-D9CB-469F-A165-70867728950E");
    item.kind = ClipKind::richText;
    item.text = "Grüße, 世界 👋";
    item.rtf = bytesOf("{\\rtf1 Gr\\u252?\\'fc\\u223?e}");
    item.html = Bytes{0x00, 0xFF, 0x3C, 0x62, 0x3E};
    item.filePaths = std::vector<std::string>{"/tmp/a b.txt", "/tmp/ç.png"};
    item.image = ClipImageInfo{"public.png", 1920.5, 1080.25, 123456789012, "abc123"};
    item.linkTitle = "A page";
    item.colorHex = "#FF8800";
    item.details = {ClipDetail::email, ClipDetail::oneTimeCode, ClipDetail::phone};
    item.appID = "org.example.Editor";
    item.appName = "Editor";
    item.date = Date{752101234.1234567};
    item.firstCopied = Date{0.1 + 0.2};
    item.timesCopied = 7;
    item.timesPasted = 3;
    item.lastPasted = Date{-1.0e-9};
    item.customTitle = "Mine";
    item.ocrText = "SALE";
    item.isSensitive = true;
    item.expiresAt = Date{752101294.000000001};
    item.fingerprint = std::string(64, 'f');
    item.original = ClipOriginal{ClipKind::code, "old", bytesOf("r"), std::nullopt};
    return item;
}

JsonObject fullJson() { return encodeJson(fullItem()).as_object(); }

ClipItem textItem(ClipKind kind, std::optional<std::string> text) {
    return ClipItem::make(ClipContent{.kind = kind, .text = std::move(text)}, {}, {}, Date{1000},
                          ClipSensitivity::ordinary);
}

TEST(ClipItemTests, RoundTripKeepsEveryFieldBitForBit) {
    const ClipItem item = fullItem();
    const auto parsed = parseJson(serializeJson(encodeJson(item)));
    ASSERT_TRUE(parsed);
    const auto decoded = decodeJsonAs<ClipItem>(*parsed);
    ASSERT_TRUE(decoded) << decoded.error().description();
    EXPECT_EQ(*decoded, item);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(decoded->date.seconds),
              std::bit_cast<std::uint64_t>(item.date.seconds));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(decoded->lastPasted->seconds),
              std::bit_cast<std::uint64_t>(item.lastPasted->seconds));
}

TEST(ClipItemTests, KeysAreWrittenInDeclarationOrderAndAbsentOptionalsAreLeftOut) {
    std::vector<std::string> keys;
    for (const auto& member : fullJson()) keys.emplace_back(member.key());
    const std::vector<std::string> expected{
        "id",      "kind",        "text",        "rtf",         "html",       "filePaths",
        "image",   "linkTitle",   "colorHex",    "details",     "appID",      "appName",
        "date",    "firstCopied", "timesCopied", "timesPasted", "lastPasted", "customTitle",
        "ocrText", "isSensitive", "expiresAt",   "fingerprint", "original"};
    EXPECT_EQ(keys, expected);

    const JsonObject sparse = encodeJson(textItem(ClipKind::text, std::nullopt)).as_object();
    std::vector<std::string> sparseKeys;
    for (const auto& member : sparse) sparseKeys.emplace_back(member.key());
    EXPECT_EQ(sparseKeys, (std::vector<std::string>{"id", "kind", "details", "date", "firstCopied",
                                                    "timesCopied", "timesPasted", "isSensitive",
                                                    "fingerprint"}));
    EXPECT_EQ(fullJson().at("id").as_string(), "0F8FAD5B-D9CB-469F-A165-70867728950E");
    EXPECT_EQ(fullJson().at("html").as_string(), "AP88Yj4=");
    EXPECT_EQ(fullJson().at("kind").as_string(), "richText");
    EXPECT_EQ(fullJson().at("details").as_array()[1].as_string(), "oneTimeCode");
}

TEST(ClipItemTests, BadStoredRecordsFailWithThePathOfTheFault) {
    struct Case {
        const char* name;
        void (*change)(JsonObject&);
        const char* path;
    };
    const Case cases[] = {
        {"missing id", [](JsonObject& o) { o.erase("id"); }, "id"},
        {"missing kind", [](JsonObject& o) { o.erase("kind"); }, "kind"},
        {"missing details", [](JsonObject& o) { o.erase("details"); }, "details"},
        {"missing date", [](JsonObject& o) { o.erase("date"); }, "date"},
        {"missing firstCopied", [](JsonObject& o) { o.erase("firstCopied"); }, "firstCopied"},
        {"missing timesCopied", [](JsonObject& o) { o.erase("timesCopied"); }, "timesCopied"},
        {"missing timesPasted", [](JsonObject& o) { o.erase("timesPasted"); }, "timesPasted"},
        {"missing isSensitive", [](JsonObject& o) { o.erase("isSensitive"); }, "isSensitive"},
        {"missing fingerprint", [](JsonObject& o) { o.erase("fingerprint"); }, "fingerprint"},
        {"null required", [](JsonObject& o) { o["fingerprint"] = nullptr; }, "fingerprint"},
        {"unknown kind", [](JsonObject& o) { o["kind"] = "audio"; }, "kind"},
        {"kind as number", [](JsonObject& o) { o["kind"] = 0; }, "kind"},
        {"unknown detail", [](JsonObject& o) { o["details"].as_array()[2] = "fax"; }, "details[2]"},
        {"details not a list", [](JsonObject& o) { o["details"] = "email"; }, "details"},
        {"bad UUID", [](JsonObject& o) { o["id"] = "0F8FAD5B-D9CB-469F-A165-70867728950"; }, "id"},
        {"bad base64", [](JsonObject& o) { o["rtf"] = "e3J0ZjE=="; }, "rtf"},
        {"bytes as list", [](JsonObject& o) { o["html"].emplace_array(); }, "html"},
        {"date as text", [](JsonObject& o) { o["date"] = "2024-01-01T00:00:00Z"; }, "date"},
        {"fractional count", [](JsonObject& o) { o["timesCopied"] = 1.5; }, "timesCopied"},
        {"bool as number", [](JsonObject& o) { o["isSensitive"] = 1; }, "isSensitive"},
        {"text as number", [](JsonObject& o) { o["text"] = 5; }, "text"},
        {"path not text", [](JsonObject& o) { o["filePaths"].as_array()[1] = 1; }, "filePaths[1]"},
        {"image missing height", [](JsonObject& o) { o["image"].as_object().erase("height"); },
         "image.height"},
        {"image width as text", [](JsonObject& o) { o["image"].as_object()["width"] = "1"; },
         "image.width"},
        {"original unknown kind", [](JsonObject& o) { o["original"].as_object()["kind"] = "x"; },
         "original.kind"},
        {"original bad rtf", [](JsonObject& o) { o["original"].as_object()["rtf"] = "!"; },
         "original.rtf"},
        {"expiry as bool", [](JsonObject& o) { o["expiresAt"] = true; }, "expiresAt"},
    };
    for (const auto& c : cases) {
        JsonObject json = fullJson();
        c.change(json);
        ClipItem out = textItem(ClipKind::text, "untouched");
        const ClipItem before = out;
        const auto status = decodeJson(JsonValue(json), out);
        ASSERT_FALSE(status) << c.name;
        EXPECT_EQ(status.error().path, c.path) << c.name << ": " << status.error().description();
        EXPECT_EQ(out, before) << c.name << ": a failed read must not leave half a record";
    }
}

TEST(ClipItemTests, MissingOrNullOptionalKeysReadAsAbsent) {
    const char* optionalKeys[] = {"text",        "rtf",      "html",      "filePaths", "image",
                                  "linkTitle",   "colorHex", "appID",     "appName",   "lastPasted",
                                  "customTitle", "ocrText",  "expiresAt", "original"};
    for (const char* key : optionalKeys) {
        for (const bool asNull : {false, true}) {
            JsonObject json = fullJson();
            if (asNull) {
                json[key] = nullptr;
            } else {
                json.erase(key);
            }
            const auto decoded = decodeJsonAs<ClipItem>(JsonValue(json));
            ASSERT_TRUE(decoded) << key << ": " << decoded.error().description();
            const JsonObject again = encodeJson(*decoded).as_object();
            EXPECT_FALSE(again.contains(key)) << key;
            EXPECT_EQ(again.size(), fullJson().size() - 1) << key;
        }
    }
}

TEST(ClipItemTests, NonObjectsAreNotItems) {
    for (const char* text : {"[]", "\"item\"", "null", "3"}) {
        const auto status = decodeJsonAs<ClipItem>(*parseJson(text));
        ASSERT_FALSE(status) << text;
        EXPECT_EQ(status.error().path, "") << text;
    }
}

TEST(ClipItemTests, FingerprintsAreSha256OfTagAndContent) {
    // Computed independently: printf 't\0hello' | sha256sum, and so on.
    const std::string textHello =
        "8006e11e17461ee1cb950a51dc7a8f2b1d8cbef1086442a523c6938ba2db3a84";
    const std::string linkHello =
        "9cc8a72d29fc761220781b913d374c969e38dcdbb7fdeaa2f73fe868d5868cae";
    for (const ClipKind kind :
         {ClipKind::text, ClipKind::richText, ClipKind::code, ClipKind::color}) {
        EXPECT_EQ(fingerprint(kind, "hello", std::nullopt, std::nullopt), textHello)
            << enumName(kind);
    }
    EXPECT_EQ(fingerprint(ClipKind::link, "hello", std::nullopt, std::nullopt), linkHello);
    EXPECT_EQ(fingerprint(ClipKind::file, std::nullopt,
                          std::vector<std::string>{"/a/x.txt", "/b/y.txt"}, std::nullopt),
              "9839de23dd5817f9acd03fbdb8cd4731dfb268cbf0a5f5cd76b279f26687c8fa");
    // Absent content hashes as empty content: printf 'i\0' | sha256sum.
    EXPECT_EQ(fingerprint(ClipKind::image, "ignored", std::nullopt, std::nullopt),
              "e8902c7331527e223bf3d97d077ed97fcd7ac3d38f289b5b3ba4d97ea510db05");
    // Only the content of the kind counts.
    EXPECT_EQ(fingerprint(ClipKind::file, "x", std::vector<std::string>{}, "d"),
              fingerprint(ClipKind::file, std::nullopt, std::nullopt, std::nullopt));
    EXPECT_NE(fingerprint(ClipKind::image, std::nullopt, std::nullopt, "d1"),
              fingerprint(ClipKind::image, std::nullopt, std::nullopt, "d2"));
    // The separator keeps "a\nb" as one path apart from two paths.
    EXPECT_EQ(fingerprint(ClipKind::file, std::nullopt, std::vector<std::string>{"a\nb"}, {}),
              fingerprint(ClipKind::file, std::nullopt, std::vector<std::string>{"a", "b"}, {}));
}

TEST(ClipItemTests, MakeFillsTheNewCopyAndItsFingerprint) {
    const Uuid given = Uuid::random();
    ClipContent content{
        .kind = ClipKind::richText, .text = "hello", .rtf = bytesOf("{\\rtf1 hello}")};
    const ClipItem item =
        ClipItem::make(content, {ClipDetail::number}, ClipSource{"org.example.App", "App"},
                       Date{5000.5}, ClipSensitivity::sensitive, given);
    EXPECT_EQ(item.id, given);
    EXPECT_EQ(item.date, Date{5000.5});
    EXPECT_EQ(item.firstCopied, Date{5000.5});
    EXPECT_EQ(item.timesCopied, 1);
    EXPECT_EQ(item.timesPasted, 0);
    EXPECT_FALSE(item.lastPasted || item.customTitle || item.ocrText || item.original);
    EXPECT_TRUE(item.isSensitive);
    // Formatting never enters the fingerprint: the same word as plain text is the same copy.
    EXPECT_EQ(item.fingerprint, textItem(ClipKind::text, "hello").fingerprint);
    EXPECT_NE(item.fingerprint, textItem(ClipKind::link, "hello").fingerprint);
    EXPECT_NE(textItem(ClipKind::text, "a").id, textItem(ClipKind::text, "a").id);

    ClipContent image{.kind = ClipKind::image, .image = ClipImageInfo{"public.png", 2, 2, 10, "d"}};
    EXPECT_EQ(ClipItem::make(image, {}, {}, Date{}, ClipSensitivity::ordinary).fingerprint,
              fingerprint(ClipKind::image, std::nullopt, std::nullopt, "d"));
}

TEST(ClipItemTests, EditsKeepTheFirstContentAndRevertRestoresIt) {
    const Bytes rtf = bytesOf("{\\rtf1 Hello}");
    const Bytes html = bytesOf("<b>Hello</b>");
    ClipItem item = ClipItem::make(
        ClipContent{.kind = ClipKind::richText, .text = "Hello", .rtf = rtf, .html = html},
        {ClipDetail::email}, {}, Date{100}, ClipSensitivity::ordinary);
    item.timesPasted = 4;
    const ClipItem captured = item;

    struct Step {
        const char* text;
        ClipEditOutcome outcome;
        ClipKind kind;
        bool hasOriginal;
    };
    const Step steps[] = {
        {"Hello", ClipEditOutcome::unchanged, ClipKind::richText, false},
        {"Hello, world", ClipEditOutcome::edited, ClipKind::text, true},
        {"Hello, world", ClipEditOutcome::unchanged, ClipKind::text, true},
        {"Hi", ClipEditOutcome::edited, ClipKind::text, true},
        {"Hello", ClipEditOutcome::reverted, ClipKind::richText, false},
        {"", ClipEditOutcome::edited, ClipKind::text, true},
        {"Hello", ClipEditOutcome::reverted, ClipKind::richText, false},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.text);
        EXPECT_EQ(item.edit(step.text), step.outcome);
        EXPECT_EQ(item.kind, step.kind);
        EXPECT_EQ(item.text, step.text);
        ASSERT_EQ(item.original.has_value(), step.hasOriginal);
        if (step.hasOriginal) {
            // Never an intermediate edit: always the content as captured.
            EXPECT_EQ(*item.original, (ClipOriginal{ClipKind::richText, "Hello", rtf, html}));
            EXPECT_FALSE(item.rtf || item.html);
        }
        EXPECT_EQ(item.fingerprint, fingerprint(item.kind, item.text, std::nullopt, std::nullopt));
        EXPECT_EQ(item.id, captured.id);
        EXPECT_EQ(item.date, captured.date);
        EXPECT_EQ(item.timesPasted, 4);
        EXPECT_EQ(item.details, captured.details);
    }
    EXPECT_EQ(item, captured);
}

TEST(ClipItemTests, EditingKeepsKindsOtherThanRichTextAndTreatsAbsentTextAsDifferent) {
    ClipItem code = textItem(ClipKind::code, "int x;");
    EXPECT_EQ(code.edit("int y;"), ClipEditOutcome::edited);
    EXPECT_EQ(code.kind, ClipKind::code);

    ClipItem link = textItem(ClipKind::link, "https://a.example");
    EXPECT_EQ(link.edit("https://b.example"), ClipEditOutcome::edited);
    EXPECT_EQ(link.kind, ClipKind::link);
    EXPECT_EQ(link.fingerprint, fingerprint(ClipKind::link, "https://b.example", {}, {}));

    ClipItem empty = textItem(ClipKind::text, std::nullopt);
    EXPECT_EQ(empty.edit(""), ClipEditOutcome::edited);
    ASSERT_TRUE(empty.original);
    EXPECT_FALSE(empty.original->text);
    EXPECT_EQ(empty.edit(""), ClipEditOutcome::unchanged);
}

ClipItem withPaths(std::vector<std::string> paths) {
    return ClipItem::make(ClipContent{.kind = ClipKind::file, .filePaths = std::move(paths)}, {},
                          {}, Date{}, ClipSensitivity::ordinary);
}

ClipItem withImage(std::optional<ClipImageInfo> image) {
    return ClipItem::make(ClipContent{.kind = ClipKind::image, .image = std::move(image)}, {}, {},
                          Date{}, ClipSensitivity::ordinary);
}

ClipItem link(std::optional<std::string> address, std::optional<std::string> title = {}) {
    return ClipItem::make(
        ClipContent{.kind = ClipKind::link, .text = std::move(address), .linkTitle = title}, {}, {},
        Date{}, ClipSensitivity::ordinary);
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string out;
    out.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) out += piece;
    return out;
}

TEST(ClipItemTests, TitlesFollowTheFirstRuleThatGivesOne) {
    ClipItem emptyCustom = textItem(ClipKind::text, "hello");
    emptyCustom.customTitle = "";
    ClipItem custom = withPaths({"/a/x.txt"});
    custom.customTitle = "Taxes";
    ClipItem hexColour = textItem(ClipKind::color, "red");
    hexColour.colorHex = "#FF0000";

    struct Case {
        const char* name;
        ClipItem item;
        std::string title;
    };
    const Case cases[] = {
        {"empty custom title is ignored", emptyCustom, "hello"},
        {"custom title wins", custom, "Taxes"},
        {"three files", withPaths({"/a/x.txt", "/b/y.txt", "/c/z.txt"}), "x.txt and 2 more"},
        {"one file", withPaths({"/a/x.txt"}), "x.txt"},
        {"folder with slash", withPaths({"/home/me/Photos/"}), "Photos"},
        {"no files", withPaths({}), "File"},
        {"colour hex", hexColour, "#FF0000"},
        {"colour without hex", textItem(ClipKind::color, "  red  "), "red"},
        {"link title", link("https://example.com", "Example Domain"), "Example Domain"},
        {"empty link title", link("https://www.example.com/", ""), "example.com"},
        {"bare host slash dropped", link("http://www.example.com/"), "example.com"},
        {"deeper slash kept", link("https://example.com/docs/"), "example.com/docs/"},
        {"only www after scheme", link("https://www.example.com/a"), "example.com/a"},
        {"other scheme kept", link("ftp://example.com/"), "ftp://example.com/"},
        {"no address", link(std::nullopt), ""},
        {"no image", withImage(std::nullopt), "Image"},
        {"zero width", withImage(ClipImageInfo{"public.png", 0, 50, 1, "d"}), "Image"},
        {"image size", withImage(ClipImageInfo{"public.png", 1920.9, 1080.2, 1, "d"}),
         "Image 1920 \u00D7 1080"},
        {"blank text", textItem(ClipKind::text, " \n\t\n   \r\n "), ""},
        {"absent text", textItem(ClipKind::text, std::nullopt), ""},
        {"first visible line trimmed", textItem(ClipKind::code, "\n\n \t first line \t\nsecond"),
         "first line"},
        {"CR LF lines", textItem(ClipKind::text, "\r\n\r\n  line\r\nnext"), "line"},
        {"vertical tab and form feed", textItem(ClipKind::text, "\v\f z"), "z"},
        {"next line", textItem(ClipKind::text, "a\u0085b"), "a"},
        {"line separator", textItem(ClipKind::text, "\u2028\u2029b\u2028c"), "b"},
        {"ideographic space trimmed", textItem(ClipKind::text, "\u3000\u00A0見出し\u3000"),
         "見出し"},
        {"160 characters", textItem(ClipKind::text, std::string(200, 'a')), std::string(160, 'a')},
        {"combining marks count once", textItem(ClipKind::text, repeated("e\u0301", 200)),
         repeated("e\u0301", 160)},
        {"emoji sequences count once",
         textItem(ClipKind::text, repeated("\U0001F468\u200D\U0001F469\u200D\U0001F467", 170)),
         repeated("\U0001F468\u200D\U0001F469\u200D\U0001F467", 160)},
        {"text after 4,000 characters is not looked at",
         textItem(ClipKind::text, std::string(4000, '\n') + "late"), ""},
        {"trailing spaces of a long line trimmed",
         textItem(ClipKind::text, "abc" + std::string(200, ' ')), "abc"},
        {"spaces inside the cut are kept",
         textItem(ClipKind::text, "x" + std::string(160, ' ') + "y"), "x" + std::string(159, ' ')},
        {"blank tail after 160 characters",
         textItem(ClipKind::text, std::string(159, 'a') + "  \n b"), std::string(159, 'a')},
        {"a line cut by the 4,000-character window",
         textItem(ClipKind::text, std::string(3990, '\n') + "abcdefghijklmnop"), "abcdefghij"},
        {"CR LF is one character of the 4,000",
         textItem(ClipKind::text, repeated("\r\n", 3999) + "x"), "x"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.item.title(), c.title) << c.name;
}

TEST(ClipItemTests, TitleOfAMegabyteTextIsItsFirstLine) {
    std::string text = "  Subject: numbers\n";
    while (text.size() < (1u << 20)) text += "0123456789 ";
    EXPECT_EQ(textItem(ClipKind::text, text).title(), "Subject: numbers");
    const std::string oneLine(1u << 20, 'x');
    EXPECT_EQ(textItem(ClipKind::text, oneLine).title(), std::string(160, 'x'));
    EXPECT_EQ(textItem(ClipKind::text, oneLine).subtitle(), "1048576 characters");
}

TEST(ClipItemTests, SubtitlesDescribeTheContent) {
    ClipItem colour = textItem(ClipKind::color, "#fff");
    colour.colorHex = "#FFFFFF";
    struct Case {
        const char* name;
        ClipItem item;
        std::string subtitle;
    };
    const Case cases[] = {
        {"one line", textItem(ClipKind::text, "hello"), "5 characters"},
        {"two lines", textItem(ClipKind::code, "a\nb"), "2 lines"},
        {"trailing line break", textItem(ClipKind::text, "hello\n"), "2 lines"},
        {"CR LF is one break", textItem(ClipKind::text, "a\r\nb"), "2 lines"},
        {"blank lines count", textItem(ClipKind::richText, "\n\n"), "3 lines"},
        {"empty", textItem(ClipKind::text, ""), "0 characters"},
        {"absent", textItem(ClipKind::text, std::nullopt), "0 characters"},
        {"graphemes", textItem(ClipKind::text, "e\u0301\U0001F44D\U0001F3FD"), "2 characters"},
        {"three files", withPaths({"/a", "/b", "/c"}), "3 files"},
        {"one file", withPaths({"/a/x.txt"}), "File"},
        {"no files", withPaths({}), "File"},
        {"colour", colour, "Colour"},
        {"no image", withImage(std::nullopt), "Image"},
        {"image size", withImage(ClipImageInfo{"public.png", 10, 10, 1500, "d"}), "2 KB"},
        {"big image", withImage(ClipImageInfo{"public.png", 10, 10, 1'500'000, "d"}), "1.5 MB"},
        {"link host", link("https://www.example.com/x?y=1"), "example.com"},
        {"link without host", link("mailto:someone@example.com"), "Link"},
        {"not a URL", link("see example.com"), "Link"},
        {"no address", link(std::nullopt), "Link"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.item.subtitle(), c.subtitle) << c.name;
}

TEST(ClipItemTests, HostIsOnlyForLinksWithAHost) {
    struct Case {
        ClipItem item;
        std::optional<std::string> host;
    };
    const Case cases[] = {
        {link("https://www.example.com"), "example.com"},
        {link("HTTPS://WWW.Example.COM:8443/a"), "example.com"},
        {link("https://wwwexample.com/"), "wwwexample.com"},
        {link("https://www.www.example.com/"), "www.example.com"},
        {link("http://user:pw@[::1]:80/"), "[::1]"},
        {link("https://"), std::nullopt},
        {link("file:///tmp/x"), std::nullopt},
        {link("example.com"), std::nullopt},
        {textItem(ClipKind::text, "https://example.com"), std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.item.host(), c.host) << c.item.text.value_or("(none)");
    }
    EXPECT_EQ(link("https://example.com/a?b#c").url()->path, "/a");
    EXPECT_FALSE(textItem(ClipKind::code, "https://example.com").url());
}

TEST(ClipItemTests, DisplayAddressCutsAt160Characters) {
    const std::string path(300, 'p');
    EXPECT_EQ(displayAddress("https://www.example.com/" + path),
              ("example.com/" + path).substr(0, 160));
    // Only a leading scheme is removed, and only the web ones.
    EXPECT_EQ(displayAddress("see https://example.com/"), "see https://example.com/");
    EXPECT_EQ(displayAddress("https://www."), "");
}

TEST(ClipItemTests, TextCountsCountGraphemesWordsAndLines) {
    struct Case {
        const char* text;
        TextCounts counts;
    };
    const Case cases[] = {
        {"", {0, 0, 0}},
        {"a", {1, 1, 1}},
        {"a\n", {2, 1, 2}},
        {"Hello, world!", {13, 2, 1}},
        {"a\r\nb", {3, 2, 2}},
        {"\n\n", {2, 0, 3}},
        {"naïve café", {10, 2, 1}},
        {"a\u2028b\u2029c\u0085d\ve\ff", {11, 6, 6}},
        {"\U0001F468\u200D\U0001F469\u200D\U0001F467 ok", {4, 1, 1}},
        {"don't stop 3.14", {15, 3, 1}},
    };
    for (const auto& c : cases) EXPECT_EQ(TextCounts::of(c.text), c.counts) << c.text;
}

}  // namespace
}  // namespace harbex
