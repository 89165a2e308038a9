#include <gtest/gtest.h>

#include <map>

#include "HarbexClipCore/Library/ClipExport.hpp"
#include "HarbexClipCore/Support/Json.hpp"
#include "tests/Core/Library/LibraryTestSupport.hpp"

namespace harbex {
namespace {

using librarytest::imageItem;
using librarytest::kNow;
using librarytest::textItem;

struct Source {
    ClipLibrary library;
    std::vector<Uuid> pinned;
    std::map<std::string, Bytes> images;

    std::string exported() const {
        return exportClips(
            library, pinned,
            [this](const ClipImageInfo& info) -> std::optional<Bytes> {
                const auto found = images.find(info.digest);
                if (found == images.end()) return std::nullopt;
                return found->second;
            },
            kNow);
    }
};

Source sampleSource() {
    Source source;
    ClipItem a = textItem("alpha", kNow), b = textItem("beta", kNow - 10),
             c = imageItem("img-1", kNow - 20);
    source.library.items = {a, b, c};
    source.library.pinboards = {{Uuid::random(), "Work", "blue", "briefcase", {b.id, a.id}}};
    source.pinned = {b.id};
    source.images["img-1"] = Bytes{0x89, 'P', 'N', 'G', 0, 255};
    return source;
}

TEST(ClipExportTests, RoundTripIntoAnEmptyLibraryRestoresEverything) {
    const Source source = sampleSource();
    auto file = readClipExport(source.exported());
    ASSERT_TRUE(file) << file.error().message;
    EXPECT_EQ(file->library, source.library);
    const ClipImportResult result = mergeClipExport(ClipLibrary{}, {}, std::move(*file));
    EXPECT_EQ(result.library.items, source.library.items);
    EXPECT_EQ(result.library.pinboards, source.library.pinboards);
    EXPECT_EQ(result.newPins, source.pinned);
    ASSERT_EQ(result.images.size(), 1u);
    EXPECT_EQ(result.images[0].data, source.images.at("img-1"));
    EXPECT_EQ(result.counts, (ClipImportCounts{3, 0, 1, 0, 1}));
}

TEST(ClipExportTests, ImportIntoAnOverlappingLibraryKeepsWhatIsThere) {
    const Source source = sampleSource();
    // Here "alpha" exists under another id and was edited into a different title; "beta" is the
    // same copy by id but pasted since. A board of the same name exists with other copies.
    ClipItem mine = textItem("alpha", kNow + 5);
    mine.customTitle = "My alpha";
    ClipItem beta = source.library.items[1];
    beta.timesPasted = 7;
    ClipItem own = textItem("only here", kNow - 15);
    ClipLibrary existing;
    existing.items = {mine, beta, own};
    existing.pinboards = {{Uuid::random(), "work", "red", "", {own.id}}};

    auto file = readClipExport(source.exported());
    ASSERT_TRUE(file);
    const ClipImportResult result = mergeClipExport(existing, {beta.id}, std::move(*file));

    ASSERT_EQ(result.library.items.size(), 4u);
    EXPECT_EQ(result.library.items[0], mine) << "never overwritten";
    EXPECT_EQ(result.library.items[1], beta);
    EXPECT_EQ(result.library.items[2], own);
    EXPECT_EQ(result.library.items[3].image->digest, "img-1");
    ASSERT_EQ(result.library.pinboards.size(), 1u) << "boards merge by name, ignoring case";
    EXPECT_EQ(result.library.pinboards[0].color, "red");
    EXPECT_EQ(result.library.pinboards[0].itemIDs, (std::vector<Uuid>{own.id, beta.id, mine.id}));
    EXPECT_TRUE(result.newPins.empty()) << "beta was pinned already";
    EXPECT_EQ(result.counts, (ClipImportCounts{1, 2, 0, 1, 0}));
}

TEST(ClipExportTests, ADamagedFileIsRefusedWhole) {
    const std::string good = sampleSource().exported();
    JsonValue parsed = *parseJson(good);
    const auto edited = [&](auto change) {
        JsonValue copy = parsed;
        change(copy.as_object());
        return serializeJson(copy);
    };
    struct Case {
        std::string name;
        std::string text;
        ClipImportError::Code code;
    };
    const std::vector<Case> cases{
        {"not json", "{\"format\": ", ClipImportError::Code::notJSON},
        {"an array", "[]", ClipImportError::Code::notJSON},
        {"other format", edited([](JsonObject& o) { o["format"] = "app.example.notes"; }),
         ClipImportError::Code::wrongFormat},
        {"newer", edited([](JsonObject& o) { o["version"] = 2; }),
         ClipImportError::Code::newerVersion},
        {"bad item", edited([](JsonObject& o) {
             o["library"].as_object()["items"].as_array()[1].as_object()["id"] = "not-a-uuid";
         }),
         ClipImportError::Code::badRecord},
        {"bad base64", edited([](JsonObject& o) {
             o["images"].as_array()[0].as_object()["data"] = "@@not base64@@";
         }),
         ClipImportError::Code::badRecord},
        {"bad pin", edited([](JsonObject& o) { o["pinned"].as_array().push_back(42); }),
         ClipImportError::Code::badRecord},
        {"no library", edited([](JsonObject& o) { o.erase("library"); }),
         ClipImportError::Code::badRecord},
    };
    for (const Case& c : cases) {
        const auto result = readClipExport(c.text);
        ASSERT_FALSE(result) << c.name;
        EXPECT_EQ(result.error().code, c.code) << c.name;
        EXPECT_TRUE(result.error().message.starts_with("This file can’t be imported: "))
            << result.error().message;
    }
}

TEST(ClipExportTests, MissingImagesAndRepeatsWithinTheFileAreHandled) {
    Source source = sampleSource();
    source.images.clear();                         // the image file is gone: the copy still travels
    ClipItem twin = textItem("alpha", kNow - 30);  // same content as "alpha"
    source.library.items.push_back(twin);
    source.pinned.push_back(twin.id);
    auto file = readClipExport(source.exported());
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->images.empty());
    const ClipImportResult result = mergeClipExport(ClipLibrary{}, {}, std::move(*file));
    EXPECT_EQ(result.counts.addedItems, 3);
    EXPECT_EQ(result.newPins.size(), 2u) << "the twin's pin lands on the first alpha";
    EXPECT_EQ(result.newPins[1], source.library.items[0].id);
}

}  // namespace
}  // namespace harbex
