#include "HarbexClipCore/Capture/ClipDetector.hpp"

#include <gtest/gtest.h>

#include "HarbexClipCore/Pasteboard/FileUrls.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Support/Digest.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Testing/PngHeaderImageCodec.hpp"

namespace harbex {
namespace {

const Date kNow{750'000'000};

class ClipDetectorTests : public testing::Test {
protected:
    std::optional<DetectedClip> detect(const PasteboardSnapshot& snapshot,
                                       SensitiveDetection sensitive = SensitiveDetection::on) {
        DetectionContext context;
        context.appID = "org.example.editor";
        context.appName = "Editor";
        context.now = kNow;
        context.sensitiveDetection = sensitive;
        return ClipDetector(codec_).detect(snapshot, context);
    }

    PngHeaderImageCodec codec_;
};

PasteboardSnapshot withText(std::string text) {
    PasteboardSnapshot snapshot;
    snapshot.string = std::move(text);
    return snapshot;
}

TEST_F(ClipDetectorTests, KindOfSnapshotsWithSeveralFlavours) {
    const ClipImagePayload png{std::string(kPngType), PngHeaderImageCodec::pngHeader(640, 480)};
    const ClipImagePayload broken{std::string(kPngType), Bytes{1, 2, 3}};
    struct Case {
        const char* name;
        PasteboardSnapshot snapshot;
        std::optional<ClipKind> expected;
    };
    auto make = [](auto&& fill) {
        PasteboardSnapshot snapshot;
        fill(snapshot);
        return snapshot;
    };
    const std::vector<Case> cases{
        {"files win over their name as text", make([](auto& s) {
             s.fileURLs = {fileUrlFromPath("/tmp/a.txt")};
             s.string = "a.txt";
         }),
         ClipKind::file},
        {"only remote file URLs fall through to the text", make([](auto& s) {
             s.fileURLs = {"file://server/a.txt"};
             s.string = "a.txt";
         }),
         ClipKind::text},
        {"image with a title link", make([&](auto& s) {
             s.image = png;
             s.url = "https://example.org/cat.png";
         }),
         ClipKind::image},
        {"an image that does not decode falls through to its URL", make([&](auto& s) {
             s.image = broken;
             s.url = "https://example.org/cat.png";
         }),
         ClipKind::link},
        {"an image that does not decode alone gives nothing",
         make([&](auto& s) { s.image = broken; }), std::nullopt},
        {"colour text wins over formatting", make([](auto& s) {
             s.string = "#5E5CE6";
             s.html = bytesOf("<span>#5E5CE6</span>");
         }),
         ClipKind::color},
        {"a word that spells hex digits is a word", withText("facade"), ClipKind::text},
        {"a lone URL flavour is a link", make([](auto& s) { s.url = "mailto:anna@example.org"; }),
         ClipKind::link},
        {"text that is one web address", withText("https://example.org/a?b=1"), ClipKind::link},
        {"www address", withText("www.example.org"), ClipKind::link},
        {"address with formatting is still a link", make([](auto& s) {
             s.string = " https://example.org ";
             s.html = bytesOf("<a href=\"https://example.org\">https://example.org</a>");
         }),
         ClipKind::link},
        {"two addresses are text", withText("https://a.example https://b.example"), ClipKind::text},
        {"ftp address is text", withText("ftp://example.org/file"), ClipKind::text},
        {"a bare domain is text", withText("example.org"), ClipKind::text},
        {"code wins over formatting", make([](auto& s) {
             s.string = "print(value)";
             s.html = bytesOf("<pre>print(value)</pre>");
         }),
         ClipKind::code},
        {"rtf makes rich text", make([](auto& s) {
             s.string = "Bold words";
             s.rtf = bytesOf("{\\rtf1 \\b Bold words}");
         }),
         ClipKind::richText},
        {"html makes rich text", make([](auto& s) {
             s.string = "Bold words";
             s.html = bytesOf("<b>Bold words</b>");
         }),
         ClipKind::richText},
        {"plain text", withText("Bold words"), ClipKind::text},
        {"white space alone is text", withText(" \n "), ClipKind::text},
        {"empty text gives nothing", withText(""), std::nullopt},
        {"formatting without text gives nothing",
         make([](auto& s) { s.html = bytesOf("<b></b>"); }), std::nullopt},
        {"nothing at all", PasteboardSnapshot{}, std::nullopt},
    };
    for (const auto& c : cases) {
        const auto detected = detect(c.snapshot);
        ASSERT_EQ(detected.has_value(), c.expected.has_value()) << c.name;
        if (detected) {
            EXPECT_EQ(detected->item.kind, *c.expected) << c.name;
        }
    }
}

TEST_F(ClipDetectorTests, EachKindCarriesItsOwnFields) {
    PasteboardSnapshot rich = withText("Call 030 1234567");
    rich.rtf = bytesOf("{\\rtf1 x}");
    rich.html = bytesOf("<i>x</i>");
    auto item = detect(rich)->item;
    EXPECT_EQ(item.rtf, rich.rtf);
    EXPECT_EQ(item.html, rich.html);
    EXPECT_EQ(item.appID, "org.example.editor");
    EXPECT_EQ(item.appName, "Editor");
    EXPECT_EQ(item.date, kNow);
    EXPECT_EQ(item.fingerprint, fingerprint(ClipKind::richText, rich.string, {}, {}));

    PasteboardSnapshot code = rich;
    code.string = "print(value)";
    item = detect(code)->item;
    EXPECT_FALSE(item.rtf || item.html) << "code keeps no formatting";

    PasteboardSnapshot link;
    link.url = "https://example.org/";
    link.urlTitle = "Example";
    item = detect(link)->item;
    EXPECT_EQ(item.text, "https://example.org/");
    EXPECT_EQ(item.linkTitle, "Example");

    item = detect(withText("rgb(94, 92, 230)"))->item;
    EXPECT_EQ(item.colorHex, "#5E5CE6");
    EXPECT_EQ(item.text, "rgb(94, 92, 230)");

    PasteboardSnapshot files;
    files.fileURLs = {fileUrlFromPath("/tmp/a b.txt"), "https://example.org/x",
                      fileUrlFromPath("/tmp/c.txt")};
    item = detect(files)->item;
    EXPECT_EQ(item.filePaths, (std::vector<std::string>{"/tmp/a b.txt", "/tmp/c.txt"}));
    EXPECT_FALSE(item.text.has_value());
}

TEST_F(ClipDetectorTests, DetailsAndSensitivityOfText) {
    auto detected = detect(withText("123456"));
    EXPECT_EQ(detected->item.details, std::vector<ClipDetail>{ClipDetail::oneTimeCode});
    EXPECT_TRUE(detected->item.isSensitive);
    EXPECT_EQ(detected->item.expiresAt, kNow + 600);

    detected = detect(withText("123456"), SensitiveDetection::off);
    EXPECT_FALSE(detected->item.isSensitive);
    EXPECT_FALSE(detected->item.expiresAt.has_value());

    detected = detect(withText("+49 (30) 1234567"));
    EXPECT_EQ(detected->item.details, std::vector<ClipDetail>{ClipDetail::phone});
    EXPECT_FALSE(detected->item.isSensitive);

    PasteboardSnapshot token;
    token.url = "ghp_abcdefghijklmnop1234";
    EXPECT_TRUE(detect(token)->item.details.empty()) << "links carry no details";
}

TEST_F(ClipDetectorTests, ImagesAreDescribedThroughTheCodec) {
    PasteboardSnapshot snapshot;
    snapshot.image =
        ClipImagePayload{std::string(kPngType), PngHeaderImageCodec::pngHeader(1024, 512)};
    auto detected = detect(snapshot);
    ASSERT_TRUE(detected.has_value());
    ASSERT_TRUE(detected->item.image.has_value());
    const ClipImageInfo& info = *detected->item.image;
    EXPECT_EQ(info.type, kPngType);
    EXPECT_EQ(info.width, 1024);
    EXPECT_EQ(info.height, 512);
    EXPECT_EQ(info.digest, sha256Hex(snapshot.image->data));
    EXPECT_EQ(info.byteCount, std::int64_t(snapshot.image->data.size()));
    EXPECT_EQ(detected->imageData, snapshot.image->data);
    EXPECT_EQ(detected->thumbnail, PngHeaderImageCodec::pngHeader(256, 128));
    EXPECT_EQ(detected->item.fingerprint, fingerprint(ClipKind::image, {}, {}, info.digest));

    // A smaller encoding is stored; the digest still names the bytes as copied.
    const Bytes smaller{1, 2, 3};
    codec_.setCompressedCopy(EncodedImage{std::string(kJpegType), smaller});
    detected = detect(snapshot);
    EXPECT_EQ(detected->imageData, smaller);
    EXPECT_EQ(detected->item.image->type, kJpegType);
    EXPECT_EQ(detected->item.image->byteCount, 3);
    EXPECT_EQ(detected->item.image->digest, info.digest);

    // A "compressed" copy that is larger is not worth storing.
    codec_.setCompressedCopy(EncodedImage{std::string(kJpegType), Bytes(4096, 0)});
    EXPECT_EQ(detect(snapshot)->imageData, snapshot.image->data);
}

TEST_F(ClipDetectorTests, SourceFallsBackToTheCopysOwnDeclaration) {
    PasteboardSnapshot snapshot = withText("hello");
    snapshot.sourceID = "org.example.declared";
    DetectionContext context;
    context.now = kNow;
    const auto detected = ClipDetector(codec_).detect(snapshot, context);
    EXPECT_EQ(detected->item.appID, "org.example.declared");
    EXPECT_EQ(detected->appID, "org.example.declared");
    EXPECT_FALSE(detected->item.appName.has_value());
    EXPECT_EQ(detect(snapshot)->item.appID, "org.example.editor") << "the front app knows best";
}

TEST_F(ClipDetectorTests, HostileSnapshotsAreHandled) {
    // A megabyte of text: kept whole, no details, not sensitive, not code.
    const std::string big(1 << 20, 'x');
    auto detected = detect(withText(big));
    ASSERT_TRUE(detected.has_value());
    EXPECT_EQ(detected->item.text->size(), big.size());
    EXPECT_TRUE(detected->item.details.empty());

    // Invalid UTF-8 everywhere becomes valid text, so the history stays valid JSON.
    PasteboardSnapshot invalid = withText("ab\xC3(\xFF\xFE\xED\xA0\x80");
    invalid.urlTitle = "\xC0\xAF";
    invalid.sourceID = "org.\xFF";
    detected = ClipDetector(codec_).detect(invalid, DetectionContext{});
    ASSERT_TRUE(detected.has_value());
    EXPECT_TRUE(isValidUtf8(*detected->item.text));
    EXPECT_TRUE(isValidUtf8(*detected->item.appID));

    PasteboardSnapshot link;
    link.url = "https://example.org/\xFF";
    link.urlTitle = "\xFF\xFF";
    detected = detect(link);
    EXPECT_TRUE(isValidUtf8(*detected->item.text));
    EXPECT_TRUE(isValidUtf8(*detected->item.linkTitle));

    PasteboardSnapshot files;
    files.fileURLs = {"file:///tmp/%FF%FE.txt"};
    detected = detect(files);
    ASSERT_TRUE(detected.has_value());
    EXPECT_TRUE(isValidUtf8(detected->item.filePaths->front()));

    // Thousands of declared types and a huge number of lines.
    PasteboardSnapshot crowded = withText(std::string(200'000, '\n') + "x;");
    for (int i = 0; i < 10'000; ++i) crowded.types.push_back("x-type/" + std::to_string(i));
    EXPECT_TRUE(detect(crowded).has_value());
}

}  // namespace
}  // namespace harbex
