#include "HarbexKit/ClipPinsBridge.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "HarbexClipCore/Support/AtomicFile.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"
#include "HarbexKit/Testing/MemoryDocumentNotifier.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;

ClipItem itemOf(ClipKind kind, std::optional<std::string> text = std::nullopt) {
    ClipContent content;
    content.kind = kind;
    content.text = std::move(text);
    return ClipItem::make(std::move(content), {}, ClipSource{"org.gnome.TextEditor", "Text Editor"},
                          Date{700000000}, ClipSensitivity::ordinary);
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string out;
    out.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) out += piece;
    return out;
}

class ClipPinsBridgeTests : public ::testing::Test {
protected:
    ClipPinsBridgeTests() {
        std::string pattern = (fs::temp_directory_path() / "harbex-bridge-XXXXXX").string();
        folder = ::mkdtemp(pattern.data());
    }
    ~ClipPinsBridgeTests() override {
        std::error_code error;
        fs::remove_all(folder, error);
    }

    fs::path folder;
    MemoryDocumentBus bus;
    MemoryDocumentNotifier ours{bus};
    MemoryDocumentNotifier sibling{bus};
};

TEST_F(ClipPinsBridgeTests, EachKindOfCopyBecomesTheMatchingRecordOrIsNotShared) {
    struct Case {
        const char* label;
        ClipItem item;
        std::optional<PinRecord::Kind> kind;  // nothing: not shareable
    };
    ClipItem files = itemOf(ClipKind::file);
    files.filePaths = std::vector<std::string>{"/home/ana/report.pdf", "/home/ana/notes.txt"};
    ClipItem noFiles = itemOf(ClipKind::file);
    noFiles.filePaths = std::vector<std::string>{};
    ClipItem image = itemOf(ClipKind::image);
    image.image = ClipImageInfo{"public.png", 1920, 1080, 52'000, "abc"};
    ClipItem rich = itemOf(ClipKind::richText, "Bold words");
    rich.rtf = Bytes{'{', '\\', 'r', 't', 'f', '1', '}'};

    const std::vector<Case> cases = {
        {"text", itemOf(ClipKind::text, "hello"), PinRecord::Kind::text},
        {"rich text", rich, PinRecord::Kind::text},
        {"colour", itemOf(ClipKind::color, "#5E5CE6"), PinRecord::Kind::text},
        {"code", itemOf(ClipKind::code, "let x = 1"), PinRecord::Kind::text},
        {"text without text", itemOf(ClipKind::text), std::nullopt},
        {"link", itemOf(ClipKind::link, "https://example.com/a?b=c"), PinRecord::Kind::link},
        {"link that is no address", itemOf(ClipKind::link, "see example dot com"), std::nullopt},
        {"link without host", itemOf(ClipKind::link, "https://"), std::nullopt},
        {"files", files, PinRecord::Kind::files},
        {"files without paths", noFiles, std::nullopt},
        {"image", image, PinRecord::Kind::image},
        {"image without description", itemOf(ClipKind::image), std::nullopt},
    };
    for (const auto& testCase : cases) {
        const auto record = ClipPinsBridge::pinRecord(testCase.item);
        ASSERT_EQ(record.has_value(), testCase.kind.has_value()) << testCase.label;
        if (!record) continue;
        EXPECT_EQ(record->kind, *testCase.kind) << testCase.label;
        EXPECT_EQ(record->id, testCase.item.id) << testCase.label;
        EXPECT_EQ(record->appID, "org.gnome.TextEditor") << testCase.label;
        EXPECT_EQ(record->appName, "Text Editor") << testCase.label;
        EXPECT_EQ(record->date, Date{700000000}) << testCase.label;
        EXPECT_TRUE(record->unknown.empty()) << testCase.label;
        switch (record->kind) {
            case PinRecord::Kind::text:
            case PinRecord::Kind::link:
                EXPECT_EQ(record->text, testCase.item.text) << testCase.label;
                EXPECT_FALSE(record->paths || record->imageType || record->width);
                break;
            case PinRecord::Kind::files:
                EXPECT_EQ(record->paths, testCase.item.filePaths);
                EXPECT_FALSE(record->text || record->imageType);
                break;
            case PinRecord::Kind::image:
                EXPECT_EQ(record->imageType, "public.png");
                EXPECT_EQ(record->width, 1920.0);
                EXPECT_EQ(record->height, 1080.0);
                EXPECT_FALSE(record->text || record->paths);
                break;
        }
    }
}

TEST_F(ClipPinsBridgeTests, TextIsSharedUpToTwoHundredThousandUtf16Units) {
    struct Case {
        const char* label;
        std::string text;
        bool shared;
    };
    // An emoji outside the Basic Multilingual Plane is one character but two UTF-16 units; an
    // accented letter is two UTF-8 bytes but one unit.
    const std::string emoji = "\xF0\x9F\x98\x80";  // U+1F600
    const std::vector<Case> cases = {
        {"ASCII at the limit", std::string(200'000, 'a'), true},
        {"ASCII one over", std::string(200'001, 'a'), false},
        {"emoji at the limit", repeated(emoji, 100'000), true},
        {"emoji one over", repeated(emoji, 100'000) + "a", false},
        {"emoji plus two letters at the limit", repeated(emoji, 99'999) + "ab", true},
        {"accented letters at the limit", repeated("\xC3\xA9", 200'000), true},
        {"accented letters one over", repeated("\xC3\xA9", 200'001), false},
    };
    for (const auto& testCase : cases) {
        ClipPinsBridge bridge(ours, folder);
        const ClipItem item = itemOf(ClipKind::text, testCase.text);
        const ClipPinsStatus status = bridge.pin(item);
        EXPECT_EQ(status.has_value(), testCase.shared) << testCase.label;
        EXPECT_EQ(bridge.isPinned(item.id), testCase.shared) << testCase.label;
        if (!status) {
            EXPECT_EQ(status.error().code, ClipPinsError::Code::notShareable) << testCase.label;
        }
    }
}

TEST_F(ClipPinsBridgeTests, PinAndUnpinKeepTheUsersOrderAndOneRecordPerCopy) {
    ClipPinsBridge bridge(ours, folder);
    const ClipItem first = itemOf(ClipKind::text, "first");
    ClipItem second = itemOf(ClipKind::link, "https://example.org");
    const ClipItem third = itemOf(ClipKind::code, "int main() {}");

    for (const ClipItem* item : {&first, static_cast<const ClipItem*>(&second), &third}) {
        ASSERT_TRUE(bridge.pin(*item));
    }
    second.text = "https://example.org/edited";
    ASSERT_TRUE(bridge.pin(second));

    EXPECT_EQ(bridge.pinnedIDs(), (std::vector<Uuid>{first.id, second.id, third.id}));
    EXPECT_EQ(bridge.document().value().pins[1].text, "https://example.org/edited");

    ASSERT_TRUE(bridge.unpin(first.id));
    ASSERT_TRUE(bridge.unpin(first.id));  // already gone: nothing to do
    EXPECT_FALSE(bridge.isPinned(first.id));
    EXPECT_TRUE(bridge.isPinned(third.id));
    EXPECT_EQ(bridge.pinnedIDs(), (std::vector<Uuid>{second.id, third.id}));
    EXPECT_EQ(bridge.document().revision(), 5);
}

TEST_F(ClipPinsBridgeTests, PinningAgainKeepsWhatTheSiblingAddedToTheRecord) {
    ClipPinsBridge bridge(ours, folder);
    ClipItem item = itemOf(ClipKind::text, "draft");
    ASSERT_TRUE(bridge.pin(item));
    SharedDocument<ClipboardPins> tidepool(std::string(ClipboardPins::kDocumentName), {}, {},
                                           sibling, folder);
    ASSERT_TRUE(tidepool.update(
        [](ClipboardPins& pins) { pins.pins[0].unknown["colourTag"] = AnyJSON("teal"); }));

    item.text = "final";
    ASSERT_TRUE(bridge.pin(item));

    const auto& pin = tidepool.value().pins.at(0);
    EXPECT_EQ(pin.text, "final");
    EXPECT_EQ(pin.unknown.at("colourTag"), AnyJSON("teal"));
}

TEST_F(ClipPinsBridgeTests, PinsOnlyTheSiblingHasComeBackAsCopies) {
    ClipPinsBridge bridge(ours, folder);
    int changes = 0;
    bridge.setOnChange([&] { ++changes; });
    SharedDocument<ClipboardPins> tidepool(std::string(ClipboardPins::kDocumentName), {}, {},
                                           sibling, folder);

    const auto record = [](PinRecord::Kind kind) {
        PinRecord pin;
        pin.id = Uuid::random();
        pin.kind = kind;
        pin.date = Date{710000000};
        pin.appName = "Tidepool";
        return pin;
    };
    PinRecord text = record(PinRecord::Kind::text);
    text.text = "from the sibling";
    PinRecord link = record(PinRecord::Kind::link);
    link.text = "https://harbex.example/docs";
    PinRecord files = record(PinRecord::Kind::files);
    files.paths = std::vector<std::string>{"/srv/a.txt"};
    PinRecord image = record(PinRecord::Kind::image);
    image.imageType = "public.jpeg";
    image.width = 640;
    image.height = 480;
    const PinRecord empty = record(PinRecord::Kind::text);  // nothing to show
    ASSERT_TRUE(tidepool.update([&](ClipboardPins& pins) {
        pins.pins = {text, link, files, empty, image};
    }));

    EXPECT_EQ(changes, 1);
    const auto items = bridge.pinnedItems();
    ASSERT_EQ(items.size(), 4u);
    struct Expected {
        ClipKind kind;
        const PinRecord* record;
        std::string fingerprint;
    };
    const std::vector<Expected> expected = {
        {ClipKind::text, &text, fingerprint(ClipKind::text, text.text, std::nullopt, std::nullopt)},
        {ClipKind::link, &link, fingerprint(ClipKind::link, link.text, std::nullopt, std::nullopt)},
        {ClipKind::file, &files,
         fingerprint(ClipKind::file, std::nullopt, files.paths, std::nullopt)},
        {ClipKind::image, &image, fingerprint(ClipKind::image, std::nullopt, std::nullopt, "")},
    };
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(items[i].kind, expected[i].kind) << i;
        EXPECT_EQ(items[i].id, expected[i].record->id) << i;
        EXPECT_EQ(items[i].date, Date{710000000}) << i;
        EXPECT_EQ(items[i].appName, "Tidepool") << i;
        EXPECT_EQ(items[i].fingerprint, expected[i].fingerprint) << i;
    }
    EXPECT_EQ(items[3].image->width, 640);
    EXPECT_EQ(items[3].image->type, "public.jpeg");
    EXPECT_TRUE(bridge.isPinned(empty.id));

    // A copy pinned here and read back gives the same content key as the history's copy.
    const ClipItem mine = itemOf(ClipKind::text, "mine");
    ASSERT_TRUE(bridge.pin(mine));
    EXPECT_EQ(bridge.pinnedItems().back().fingerprint, mine.fingerprint);
    EXPECT_EQ(changes, 1);  // our own pin is not an outside change
}

TEST_F(ClipPinsBridgeTests, AFailedWriteIsReportedAndChangesNothing) {
    ClipPinsBridge bridge(ours, folder);
    fs::create_directory(folder / ClipboardPins::kDocumentName);  // unreadable as a file
    const ClipItem item = itemOf(ClipKind::text, "x");
    const ClipPinsStatus status = bridge.pin(item);
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().code, ClipPinsError::Code::writeFailed);
    EXPECT_FALSE(status.error().detail.empty());
    EXPECT_FALSE(bridge.isPinned(item.id));
}

std::string fileText(const fs::path& path) {
    auto bytes = readFile(path);
    return bytes ? std::string(bytes->begin(), bytes->end()) : std::string();
}

// The engine with the real shared file: a copy marked sensitive never reaches it, and one that
// got there earlier (pinned, then marked; or an older version) is taken out.
TEST_F(ClipPinsBridgeTests, ASensitiveCopyNeverStaysInTheSharedFile) {
    constexpr std::string_view kCard = "5555 5555 5555 4444";
    ClipPinsBridge bridge(ours, folder);
    const fs::path file = folder / ClipboardPins::kDocumentName;
    testing::EngineRigOptions options;
    options.pins = &bridge;

    // Pinned while ordinary, then found marked sensitive when the history opens.
    ClipItem card = itemOf(ClipKind::text, std::string(kCard));
    ASSERT_TRUE(bridge.pin(card));
    ASSERT_NE(fileText(file).find(kCard), std::string::npos);
    card.isSensitive = true;
    testing::EngineRig rig(options);
    rig.seedHistory(ClipLibrary{.items = {card}});
    rig.makeStore();
    ClipEngine& engine = rig.start();
    engine.sample();
    ASSERT_TRUE(engine.isHistoryOpen().get());
    EXPECT_FALSE(bridge.isPinned(card.id));
    EXPECT_EQ(fileText(file).find(kCard), std::string::npos);

    // Pinning it is refused with the sentence the user sees.
    const auto pinned = engine.pin(card.id);
    ASSERT_FALSE(pinned);
    EXPECT_EQ(pinned.error().code, ClipPinsError::Code::sensitive);
    EXPECT_EQ(pinned.error().detail, kUnmarkToPinNotice);
    EXPECT_EQ(fileText(file).find(kCard), std::string::npos);

    // Unmarked it may be pinned; marked again, the pin goes.
    ASSERT_TRUE(engine.setSensitive(card.id, ClipSensitivity::ordinary));
    ASSERT_TRUE(engine.pin(card.id));
    ASSERT_NE(fileText(file).find(kCard), std::string::npos);
    ASSERT_TRUE(engine.setSensitive(card.id, ClipSensitivity::sensitive));
    EXPECT_FALSE(bridge.isPinned(card.id));
    EXPECT_EQ(fileText(file).find(kCard), std::string::npos);
}

}  // namespace
}  // namespace harbex
