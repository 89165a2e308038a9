#include "HarbexKit/LegacyPinsImport.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "HarbexClipCore/Support/AtomicFile.hpp"
#include "HarbexClipCore/Testing/MemoryDefaults.hpp"
#include "HarbexKit/Testing/MemoryDocumentNotifier.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;

PinRecord textPin(const char* id, const char* text) {
    PinRecord pin;
    pin.id = *Uuid::parse(id);
    pin.text = text;
    pin.date = Date{700000000};
    return pin;
}

const PinRecord kA = textPin("00000000-0000-4000-8000-00000000000A", "alpha");
const PinRecord kB = textPin("00000000-0000-4000-8000-00000000000B", "bravo");
const PinRecord kC = textPin("00000000-0000-4000-8000-00000000000C", "charlie");

std::vector<std::string> textsOf(const std::vector<PinRecord>& pins) {
    std::vector<std::string> texts;
    for (const auto& pin : pins) texts.push_back(pin.text.value_or(""));
    return texts;
}

TEST(LegacyPinsImportTests, OldPinsJoinTheSharedOnesOnceAndTheOldFileStays) {
    struct Case {
        const char* name;
        std::optional<std::string> oldFile;  // nothing: no old document
        bool flagBefore;
        std::vector<PinRecord> sharedBefore;
        std::optional<std::size_t> added;  // nothing: the import fails
        std::vector<std::string> sharedAfter;
        std::optional<bool> flagAfter;
    };
    const std::string oldPins = serializeJson(encodeJson(ClipboardPins{1, {kC, kA, kB}, {}}));
    const Case cases[] = {
        {"no old document", std::nullopt, false, {kA}, 0, {"alpha"}, true},
        {"pins not yet shared are added in their order",
         oldPins,
         false,
         {kA},
         2,
         {"alpha", "charlie", "bravo"},
         true},
        {"the flag set means nothing is read", oldPins, true, {kA}, 0, {"alpha"}, true},
        {"an unreadable old document is tried again next time",
         "{not json",
         false,
         {kA},
         std::nullopt,
         {"alpha"},
         std::nullopt},
        {"an old document of another shape is tried again next time",
         "[1, 2]",
         false,
         {},
         std::nullopt,
         {},
         std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string pattern = (fs::temp_directory_path() / "harbex-legacy-XXXXXX").string();
        const fs::path root = ::mkdtemp(pattern.data());
        const fs::path legacy = root / "Harbex Tidepool" / "Clipboard";
        if (c.oldFile) {
            ASSERT_TRUE(createDirectories(legacy, 0700));
            ASSERT_TRUE(writeFileAtomically(legacy / "clipboard-pins.json", *c.oldFile));
        }
        MemoryDocumentBus bus;
        MemoryDocumentNotifier notifier{bus};
        ClipPinsBridge bridge(notifier, root / "Shared");
        ASSERT_TRUE(bridge.addMissingPins(c.sharedBefore));
        MemoryDefaults defaults;
        if (c.flagBefore) defaults.setBool(kLegacyTidepoolClipboardKey, true);

        const auto imported = importLegacyPins(defaults, bridge, legacy);
        if (c.added) {
            ASSERT_TRUE(imported) << imported.error().detail;
            EXPECT_EQ(*imported, *c.added);
        } else {
            ASSERT_FALSE(imported);
            EXPECT_EQ(imported.error().code, ClipPinsError::Code::writeFailed);
            EXPECT_NE(imported.error().detail.find("clipboard-pins.json"), std::string::npos);
        }
        EXPECT_EQ(textsOf(bridge.document().value().pins), c.sharedAfter);
        EXPECT_EQ(defaults.boolean(kLegacyTidepoolClipboardKey), c.flagAfter);
        if (c.oldFile) {
            const auto still = readFile(legacy / "clipboard-pins.json");
            ASSERT_TRUE(still);
            EXPECT_EQ(stringOf(*still), *c.oldFile);
        }
        // Once done, a second start imports nothing more.
        if (c.flagAfter) {
            EXPECT_EQ(importLegacyPins(defaults, bridge, legacy), 0u);
        }
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }
}

}  // namespace
}  // namespace harbex
