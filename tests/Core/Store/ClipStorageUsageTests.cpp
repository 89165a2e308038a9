#include "HarbexClipCore/Store/ClipStorageUsage.hpp"

#include <gtest/gtest.h>

#include <fstream>

#include "HarbexClipCore/Store/ClipStore.hpp"
#include "HarbexClipCore/Testing/MemoryKeyStore.hpp"
#include "tests/Core/Store/StoreTestSupport.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;
using testing::TempFolder;
using testing::textLibrary;

std::int64_t sizeOf(const fs::path& path) { return std::int64_t(fs::file_size(path)); }

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

TEST(ClipStorageUsageTests, AMissingFolderTakesNoSpace) {
    TempFolder temp;
    EXPECT_EQ(measureStorage(temp.path() / "never made"), ClipStorageUsage{});
}

// The measure must agree with the names the store really writes, so the store writes them.
TEST(ClipStorageUsageTests, CountsWhatTheStoreWroteByKindAndLeavesStrangersOut) {
    TempFolder temp;
    const fs::path folder = temp.path();
    ClipStore store(folder, std::make_unique<MemoryKeyStore>());
    ASSERT_TRUE(store.saveNow(textLibrary(3)));
    ASSERT_TRUE(store.setAsideUnreadable());
    ASSERT_TRUE(store.saveNow(textLibrary(40)));
    const Bytes image(5000, 0x42);
    const Bytes thumbnail(300, 0x24);
    for (const char* name : {"A", "B"}) {
        ASSERT_TRUE(store.writeImage(image, name));
        ASSERT_TRUE(store.writeThumbnail(thumbnail, name));
    }
    // Neither a temporary file, a stranger, a folder nor a link counts.
    writeText(folder / ".History.sealed.tmp-123", std::string(9999, 'x'));
    writeText(folder / "notes.txt", "mine");
    writeText(folder / "Images" / "stray.png", std::string(777, 'x'));
    fs::create_directory(folder / "Images" / "sub.sealed");
    fs::create_symlink(folder / "History.sealed", folder / "Images" / "link.sealed");

    const ClipStorageUsage usage = measureStorage(folder);
    const fs::path imageA = folder / "Images" / "A.sealed";
    const fs::path thumbA = folder / "Images" / "A.thumb.sealed";
    EXPECT_EQ(usage.historyBytes, sizeOf(folder / "History.sealed"));
    EXPECT_EQ(usage.imageCount, 2);
    EXPECT_EQ(usage.imageBytes, 2 * sizeOf(imageA));
    EXPECT_EQ(usage.thumbnailBytes, 2 * sizeOf(thumbA));
    EXPECT_EQ(usage.setAsideCount, 1);
    EXPECT_GT(usage.setAsideBytes, 0);
    EXPECT_LT(usage.setAsideBytes, usage.historyBytes);
    EXPECT_EQ(usage.totalBytes(),
              usage.historyBytes + usage.imageBytes + usage.thumbnailBytes + usage.setAsideBytes);
}

}  // namespace
}  // namespace harbex
