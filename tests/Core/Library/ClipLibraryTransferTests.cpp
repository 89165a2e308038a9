#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "HarbexClipCore/Library/ClipLibraryTransfer.hpp"
#include "HarbexClipCore/Support/AtomicFile.hpp"
#include "tests/Core/Library/LibraryTestSupport.hpp"

namespace harbex {
namespace {

using librarytest::imageItem;
using librarytest::kNow;
using librarytest::textItem;

class ClipLibraryTransferTests : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "harbex-transfer-XXXXXX");
        folder = ::mkdtemp(pattern.data());
        // Enough copies that progress is told many times, and images to read.
        for (int i = 0; i < 300; ++i) {
            snapshot.library.items.push_back(i % 10 == 0
                                                 ? imageItem("img-" + std::to_string(i), kNow - i)
                                                 : textItem("copy " + std::to_string(i), kNow - i));
        }
        snapshot.library.pinboards = {
            {Uuid::random(), "Work", "blue", "pin", {snapshot.library.items[1].id}}};
        snapshot.pinned = {snapshot.library.items[2].id};
        snapshot.now = kNow;
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    static std::optional<Bytes> readImage(const ClipImageInfo& info) {
        return Bytes(info.digest.begin(), info.digest.end());
    }

    std::vector<std::string> filesInFolder() const {
        std::vector<std::string> out;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            out.push_back(entry.path().filename().string());
        }
        return out;
    }

    std::filesystem::path folder;
    ClipExportSnapshot snapshot;
};

TEST_F(ClipLibraryTransferTests, ARoundTripTellsProgressInOrderUpToTheEnd) {
    const std::filesystem::path path = folder / "copies.json";
    std::vector<double> written;
    ASSERT_TRUE(writeClipExportFile(path, snapshot, readImage, [&](double f) {
        written.push_back(f);
        return true;
    }));
    std::vector<double> read;
    auto file = readClipExportFile(path, [&](double f) {
        read.push_back(f);
        return true;
    });
    ASSERT_TRUE(file) << file.error().message;
    EXPECT_EQ(file->library, snapshot.library);
    EXPECT_EQ(file->pinned, snapshot.pinned);
    ASSERT_EQ(file->images.size(), 30u);
    EXPECT_EQ(file->images[0].data, *readImage(snapshot.library.items[0].image.value()));
    // The export tells every few copies; the import every megabyte read, then once checked.
    EXPECT_GT(written.size(), 5u);
    EXPECT_EQ(read.size(), 3u);
    for (const std::vector<double>* told : {&written, &read}) {
        EXPECT_TRUE(std::ranges::is_sorted(*told));
        EXPECT_EQ(told->front(), 0.0);
        EXPECT_EQ(told->back(), 1.0);
    }
}

TEST_F(ClipLibraryTransferTests, AStoppedExportLeavesNoFileAndKeepsAnOldOne) {
    struct Case {
        double stopAt;  // the first fraction at or past which progress says stop
        bool oldFile;
    };
    const Case cases[] = {{0.0, false}, {0.5, false}, {0.95, false}, {0.5, true}};
    for (const Case& c : cases) {
        const std::filesystem::path path = folder / "copies.json";
        std::filesystem::remove(path);
        if (c.oldFile) {
            ASSERT_TRUE(writeFileAtomically(path, std::string_view("old")));
        }
        auto result =
            writeClipExportFile(path, snapshot, readImage, [&](double f) { return f < c.stopAt; });
        ASSERT_FALSE(result) << c.stopAt;
        EXPECT_EQ(result.error().code, ClipTransferError::Code::stopped);
        EXPECT_EQ(result.error().message, "The export was stopped.");
        if (c.oldFile) {
            EXPECT_EQ(filesInFolder(), std::vector<std::string>{"copies.json"});
            const auto kept = readFile(path);
            ASSERT_TRUE(kept);
            EXPECT_EQ(std::string(kept->begin(), kept->end()), "old");
        } else {
            EXPECT_TRUE(filesInFolder().empty()) << "stopped at " << c.stopAt;
        }
    }
}

TEST_F(ClipLibraryTransferTests, ReadingFailuresSayWhatWentWrong) {
    const std::filesystem::path good = folder / "good.json";
    ASSERT_TRUE(writeClipExportFile(good, snapshot, readImage, {}));
    const std::filesystem::path damaged = folder / "damaged.json";
    ASSERT_TRUE(writeFileAtomically(damaged, std::string_view("{\"format\": 3")));
    struct Case {
        std::filesystem::path path;
        ClipProgress progress;
        ClipTransferError::Code code;
        std::string start;
    };
    const Case cases[] = {
        {folder / "missing.json",
         {},
         ClipTransferError::Code::unreadable,
         "The file couldn’t be read: "},
        {damaged, {}, ClipTransferError::Code::refused, "This file can’t be imported: "},
        {good, [](double f) { return f < 0.3; }, ClipTransferError::Code::stopped,
         "The import was stopped."},
        {good, [](double f) { return f < 1; }, ClipTransferError::Code::stopped,
         "The import was stopped."},
    };
    for (const Case& c : cases) {
        auto file = readClipExportFile(c.path, c.progress);
        ASSERT_FALSE(file) << c.path;
        EXPECT_EQ(file.error().code, c.code) << c.path;
        EXPECT_TRUE(file.error().message.starts_with(c.start)) << file.error().message;
    }
}

TEST_F(ClipLibraryTransferTests, AnUnwritableFolderIsAFailureNotAFile) {
    auto result =
        writeClipExportFile(folder / "no such folder" / "copies.json", snapshot, readImage, {});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, ClipTransferError::Code::unwritable);
    EXPECT_TRUE(result.error().message.starts_with("The export couldn’t be written: "))
        << result.error().message;
}

}  // namespace
}  // namespace harbex
