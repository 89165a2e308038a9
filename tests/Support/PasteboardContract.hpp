#pragma once

// The behaviour every ClipPasteboard must show, written once and run against each
// implementation: include this header in exactly one test file of a program and instantiate
//   INSTANTIATE_TEST_SUITE_P(Name, ClipPasteboardContract,
//                            testing::Values(PasteboardImplementation{"name", makeHarness}));
// where makeHarness returns a fresh PasteboardHarness for that implementation.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "HarbexClipCore/Capture/PrivacyMarkers.hpp"
#include "HarbexClipCore/Pasteboard/ClipPasteboard.hpp"
#include "HarbexClipCore/Pasteboard/FileUrls.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"

namespace harbex {

using PasteboardFlavour = MemoryPasteboard::Flavour;

// Drives one implementation: the pasteboard under test plus "another application" that copies.
class PasteboardHarness {
public:
    virtual ~PasteboardHarness() = default;
    virtual ClipPasteboard& pasteboard() = 0;
    // Another application copies `flavours` (named by role identifiers) and the pasteboard
    // under test has seen the change when this returns.
    virtual void copyFromAnotherApp(const std::vector<PasteboardFlavour>& flavours) = 0;
    // The role identifiers whose data the pasteboard asked the other application for since its
    // last copy.
    virtual std::vector<std::string> requestedTypes() = 0;
    // The name the platform declares for a role identifier in `types()` (the markers keep
    // theirs everywhere).
    virtual std::string declaredName(std::string_view role) { return std::string(role); }
    // The application that copied last quits without handing its copy to anyone, and the
    // pasteboard under test has seen it; false when the harness cannot make that happen.
    virtual bool quitAnotherApp() { return false; }
};

// One implementation under test: a name for the test output and a way to make a fresh harness.
struct PasteboardImplementation {
    std::string name;
    std::function<std::unique_ptr<PasteboardHarness>()> makeHarness;

    friend void PrintTo(const PasteboardImplementation& implementation, std::ostream* out) {
        *out << implementation.name;
    }
};

class ClipPasteboardContract : public testing::TestWithParam<PasteboardImplementation> {
protected:
    void SetUp() override { harness_ = GetParam().makeHarness(); }

    ClipPasteboard& pasteboard() { return harness_->pasteboard(); }
    PasteboardSnapshot copyAndRead(const std::vector<PasteboardFlavour>& flavours) {
        harness_->copyFromAnotherApp(flavours);
        auto snapshot = pasteboard().snapshot();
        EXPECT_TRUE(snapshot.has_value());
        return snapshot.value_or(PasteboardSnapshot{});
    }
    bool wasRequested(std::string_view role) {
        const auto requested = harness_->requestedTypes();
        return std::ranges::find(requested, role) != requested.end();
    }
    bool declares(const std::vector<std::string>& types, std::string_view role) {
        return std::ranges::find(types, harness_->declaredName(role)) != types.end();
    }

    std::unique_ptr<PasteboardHarness> harness_;
};

inline Bytes contractPng() {
    return Bytes{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'};
}

TEST_P(ClipPasteboardContract, NothingDeclaredGivesNoSnapshot) {
    harness_->copyFromAnotherApp({});
    EXPECT_TRUE(pasteboard().types().empty());
    EXPECT_FALSE(pasteboard().snapshot().has_value());
}

TEST_P(ClipPasteboardContract, TypesComeInTheOwnersOrderWithoutReadingContents) {
    harness_->copyFromAnotherApp({PasteboardFlavour::text(kHtmlType, "<p>x</p>"),
                                  PasteboardFlavour::text(kPlainTextType, "x"),
                                  PasteboardFlavour::text(kSourceType, "org.example.app")});
    const auto types = pasteboard().types();
    const std::vector<std::string> expected{harness_->declaredName(kHtmlType),
                                            harness_->declaredName(kPlainTextType),
                                            harness_->declaredName(kSourceType)};
    // The platform may add its own bookkeeping targets; ours keep their relative order.
    std::vector<std::string> ours;
    for (const auto& type : types) {
        if (std::ranges::find(expected, type) != expected.end()) ours.push_back(type);
    }
    EXPECT_EQ(ours, expected);
    EXPECT_TRUE(harness_->requestedTypes().empty());
    EXPECT_FALSE(pasteboard().markerValue(kPasswordManagerHintType).has_value())
        << "an undeclared marker has no value";
}

TEST_P(ClipPasteboardContract, AnOwnerThatQuitsLeavesItEmptyAndSaysSoUntilTheNextChange) {
    harness_->copyFromAnotherApp({PasteboardFlavour::text(kPlainTextType, "short-lived")});
    EXPECT_FALSE(pasteboard().ownerLeft());
    const auto before = pasteboard().changeCount();
    if (!harness_->quitAnotherApp()) GTEST_SKIP() << "this harness cannot make an owner quit";
    EXPECT_GT(pasteboard().changeCount(), before);
    EXPECT_TRUE(pasteboard().ownerLeft());
    EXPECT_FALSE(pasteboard().snapshot().has_value());
    pasteboard().write(ClipPayload{.text = "put back"}, std::nullopt);
    EXPECT_FALSE(pasteboard().ownerLeft());
    EXPECT_EQ(pasteboard().snapshot().value_or(PasteboardSnapshot{}).string, "put back");
}

TEST_P(ClipPasteboardContract, ChangeCountMovesOnEveryCopyAndWrite) {
    const auto start = pasteboard().changeCount();
    harness_->copyFromAnotherApp({PasteboardFlavour::text(kPlainTextType, "one")});
    const auto afterCopy = pasteboard().changeCount();
    EXPECT_GT(afterCopy, start);
    harness_->copyFromAnotherApp({PasteboardFlavour::text(kPlainTextType, "one")});
    EXPECT_GT(pasteboard().changeCount(), afterCopy) << "the same text copied again is a change";
    const auto beforeWrite = pasteboard().changeCount();
    const auto written = pasteboard().write(ClipPayload{.text = "mine"}, std::nullopt);
    EXPECT_GT(written, beforeWrite);
    EXPECT_EQ(written, pasteboard().changeCount()) << "write returns the count as it stands";
    EXPECT_EQ(written, pasteboard().changeCount()) << "reading the count does not move it";
}

TEST_P(ClipPasteboardContract, TextWithUrlReadsTheTextAndNotTheUrl) {
    const auto snapshot = copyAndRead({PasteboardFlavour::text(kPlainTextType, "https://a.example"),
                                       PasteboardFlavour::text(kUrlType, "https://a.example")});
    EXPECT_EQ(snapshot.string, "https://a.example");
    EXPECT_FALSE(snapshot.url.has_value());
    EXPECT_FALSE(wasRequested(kUrlType));
}

TEST_P(ClipPasteboardContract, UrlWithTitleAndNoTextReadsBoth) {
    const auto snapshot = copyAndRead({PasteboardFlavour::text(kUrlType, "https://a.example/x"),
                                       PasteboardFlavour::text(kUrlTitleType, "Example page")});
    EXPECT_FALSE(snapshot.string.has_value());
    EXPECT_EQ(snapshot.url, "https://a.example/x");
    EXPECT_EQ(snapshot.urlTitle, "Example page");
}

TEST_P(ClipPasteboardContract, FileWithIconAndNameReadsFilesAndTextButNoImage) {
    const auto url = fileUrlFromPath("/home/me/My Report.pdf");
    const auto snapshot =
        copyAndRead({PasteboardFlavour::text(kFileUrlType, uriListFromUrls({url})),
                     PasteboardFlavour::text(kPlainTextType, "My Report.pdf"),
                     PasteboardFlavour::bytes(kPngType, contractPng())});
    EXPECT_EQ(snapshot.fileURLs, std::vector<std::string>{url});
    EXPECT_EQ(snapshot.filePaths(), std::vector<std::string>{"/home/me/My Report.pdf"});
    EXPECT_EQ(snapshot.string, "My Report.pdf");
    EXPECT_FALSE(snapshot.image.has_value());
    EXPECT_FALSE(wasRequested(kPngType)) << "the icon must not even be produced";
}

TEST_P(ClipPasteboardContract, ImageOfferedAsTiffAndPngIsReadAsPng) {
    const Bytes tiff{'I', 'I', 42, 0};
    const auto snapshot = copyAndRead({PasteboardFlavour::bytes(kTiffType, tiff),
                                       PasteboardFlavour::bytes(kPngType, contractPng())});
    ASSERT_TRUE(snapshot.image.has_value());
    EXPECT_EQ(snapshot.image->type, kPngType);
    EXPECT_EQ(snapshot.image->data, contractPng());
    EXPECT_FALSE(wasRequested(kTiffType));
}

TEST_P(ClipPasteboardContract, UndeclaredRichFlavoursAreNeverRequested) {
    const auto snapshot = copyAndRead({PasteboardFlavour::text(kPlainTextType, "plain")});
    EXPECT_FALSE(snapshot.html.has_value());
    EXPECT_FALSE(snapshot.rtf.has_value());
    EXPECT_FALSE(wasRequested(kHtmlType));
    EXPECT_FALSE(wasRequested(kRtfType));
}

TEST_P(ClipPasteboardContract, DeclaredRichFlavoursAreReadRaw) {
    const auto snapshot = copyAndRead({PasteboardFlavour::text(kPlainTextType, "bold"),
                                       PasteboardFlavour::text(kRtfType, "{\\rtf1 \\b bold}"),
                                       PasteboardFlavour::text(kHtmlType, "<b>bold</b>")});
    EXPECT_EQ(snapshot.rtf, bytesOf("{\\rtf1 \\b bold}"));
    EXPECT_EQ(snapshot.html, bytesOf("<b>bold</b>"));
    EXPECT_TRUE(declares(snapshot.types, kHtmlType));
}

TEST_P(ClipPasteboardContract, AFlavourWhoseProviderFailsLeavesItsFieldEmpty) {
    const auto snapshot = copyAndRead({PasteboardFlavour::declaredOnly(kPlainTextType),
                                       PasteboardFlavour::text(kHtmlType, "<i>x</i>")});
    EXPECT_FALSE(snapshot.string.has_value());
    EXPECT_EQ(snapshot.html, bytesOf("<i>x</i>"));
}

TEST_P(ClipPasteboardContract, SourceMarkerBecomesTheSourceID) {
    const auto snapshot = copyAndRead({PasteboardFlavour::text(kPlainTextType, "x"),
                                       PasteboardFlavour::text(kSourceType, "org.example.editor")});
    EXPECT_EQ(snapshot.sourceID, "org.example.editor");
}

TEST_P(ClipPasteboardContract, PasswordManagerHintIsReadableBeforeTheContents) {
    struct Case {
        std::string hint;
        bool isPrivateCopy;
    };
    for (const Case& c : {Case{"secret", true}, Case{"public", false}}) {
        harness_->copyFromAnotherApp({PasteboardFlavour::text(kPlainTextType, "hunter2"),
                                      PasteboardFlavour::text(kPasswordManagerHintType, c.hint)});
        const auto types = pasteboard().types();
        const auto hint = passwordManagerHint(pasteboard(), types);
        EXPECT_EQ(hint, c.hint);
        EXPECT_EQ(isPrivate(types, hint), c.isPrivateCopy) << c.hint;
        EXPECT_FALSE(wasRequested(kPlainTextType)) << "the contents stay unread";
        EXPECT_EQ(pasteboard().snapshot()->passwordManagerHint, c.hint);
    }
}

TEST_P(ClipPasteboardContract, WrittenPayloadsReadBackUnchanged) {
    struct Case {
        const char* name;
        ClipPayload payload;
        PasteboardSnapshot expected;
    };
    const ClipImagePayload png{std::string(kPngType), contractPng()};
    const std::vector<std::string> files{fileUrlFromPath("/tmp/a b.txt"),
                                         fileUrlFromPath("/tmp/ü#1.txt")};
    const std::vector<Case> cases{
        {"text", ClipPayload{.text = "hello"}, PasteboardSnapshot{.string = "hello"}},
        {"rich text",
         ClipPayload{.text = "b", .rtf = bytesOf("{\\rtf1 b}"), .html = bytesOf("<b>b</b>")},
         PasteboardSnapshot{
             .string = "b", .rtf = bytesOf("{\\rtf1 b}"), .html = bytesOf("<b>b</b>")}},
        {"link", ClipPayload{.url = "https://example.org/a?b=c"},
         PasteboardSnapshot{.url = "https://example.org/a?b=c"}},
        {"image", ClipPayload{.image = png}, PasteboardSnapshot{.image = png}},
        {"files", ClipPayload{.fileURLs = files}, PasteboardSnapshot{.fileURLs = files}},
    };
    for (const Case& c : cases) {
        pasteboard().write(c.payload, std::nullopt);
        auto snapshot = pasteboard().snapshot();
        ASSERT_TRUE(snapshot.has_value()) << c.name;
        EXPECT_TRUE(declares(snapshot->types, kOwnWriteType)) << c.name;
        snapshot->types.clear();
        EXPECT_EQ(*snapshot, c.expected) << c.name;
    }
}

TEST_P(ClipPasteboardContract, FilesWinOverAUrlInOneWrite) {
    const auto file = fileUrlFromPath("/tmp/only.txt");
    pasteboard().write(ClipPayload{.url = "https://example.org", .fileURLs = {file}}, std::nullopt);
    const auto snapshot = pasteboard().snapshot();
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_EQ(snapshot->fileURLs, std::vector<std::string>{file});
    EXPECT_FALSE(snapshot->url.has_value());
    EXPECT_FALSE(declares(snapshot->types, kUrlType));
}

TEST_P(ClipPasteboardContract, AUrlThatDoesNotParseIsDropped) {
    pasteboard().write(ClipPayload{.text = "x", .url = "not a url"}, std::nullopt);
    const auto types = pasteboard().types();
    EXPECT_FALSE(declares(types, kUrlType));
    EXPECT_TRUE(declares(types, kPlainTextType));
}

TEST_P(ClipPasteboardContract, EveryWriteCarriesTheOwnMarkerEvenWhenEmpty) {
    pasteboard().write(ClipPayload{}, std::nullopt);
    const auto snapshot = pasteboard().snapshot();
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_TRUE(declares(snapshot->types, kOwnWriteType));
    EXPECT_FALSE(declares(snapshot->types, kConcealedType));
    EXPECT_FALSE(snapshot->string.has_value());
}

TEST_P(ClipPasteboardContract, ConcealedWriteIsPrivateAndNamesItsSource) {
    pasteboard().write(ClipPayload{.text = "hunter2", .concealed = true}, "app.harbexapps.clip");
    const auto types = pasteboard().types();
    EXPECT_TRUE(declares(types, kConcealedType));
    EXPECT_TRUE(isPrivate(types, passwordManagerHint(pasteboard(), types)));
    const auto snapshot = pasteboard().snapshot();
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_EQ(snapshot->sourceID, "app.harbexapps.clip");
    EXPECT_EQ(snapshot->string, "hunter2");
}

TEST_P(ClipPasteboardContract, AWriteReplacesEverythingBefore) {
    harness_->copyFromAnotherApp({PasteboardFlavour::text(kPlainTextType, "theirs"),
                                  PasteboardFlavour::text(kHtmlType, "<p>theirs</p>"),
                                  PasteboardFlavour::text(kConcealedType, "")});
    pasteboard().write(ClipPayload{.text = "ours"}, std::nullopt);
    const auto snapshot = pasteboard().snapshot();
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_EQ(snapshot->string, "ours");
    EXPECT_FALSE(snapshot->html.has_value());
    EXPECT_FALSE(declares(snapshot->types, kConcealedType));
}

}  // namespace harbex
