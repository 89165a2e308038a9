#include "HarbexKit/SharedDocument.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "HarbexClipCore/Testing/FixedClock.hpp"
#include "HarbexKit/ClipboardPins.hpp"
#include "HarbexKit/Testing/MemoryDocumentNotifier.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;
using PinsDocument = SharedDocument<ClipboardPins>;
constexpr const char* kName = "clipboard-pins.json";

// A fresh folder per test; on tmpfs when there is one, so the contention test's fsyncs are cheap.
class TemporaryFolder {
public:
    TemporaryFolder() {
        const fs::path base = fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path();
        std::string pattern = (base / "harbex-pins-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
    }
    ~TemporaryFolder() {
        std::error_code error;
        fs::remove_all(path_, error);
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

PinRecord textPin(const std::string& text, double date = 700000000) {
    PinRecord record;
    record.id = Uuid::random();
    record.text = text;
    record.date = Date{date};
    return record;
}

std::string contents(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream buffer;
    buffer << in.rdbuf();
    return buffer.str();
}

void writeRaw(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

struct FileIdentity {
    ino_t inode = 0;
    timespec modified{};
    mode_t mode = 0;
    bool operator==(const FileIdentity& other) const {
        return inode == other.inode && modified.tv_sec == other.modified.tv_sec &&
               modified.tv_nsec == other.modified.tv_nsec && mode == other.mode;
    }
};

FileIdentity identity(const fs::path& path) {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
    return {info.st_ino, info.st_mtim, static_cast<mode_t>(info.st_mode & 07777)};
}

std::vector<fs::path> setAsideFiles(const fs::path& folder) {
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().filename().string().find("(unreadable") != std::string::npos) {
            found.push_back(entry.path());
        }
    }
    return found;
}

class SharedDocumentTests : public ::testing::Test {
protected:
    std::unique_ptr<PinsDocument> open(MemoryDocumentNotifier& notifier,
                                       PinsDocument::OnChange onChange = {}) {
        return std::make_unique<PinsDocument>(kName, ClipboardPins{}, std::move(onChange), notifier,
                                              folder.path(), nowFunction(clock));
    }

    TemporaryFolder folder;
    FixedClock clock{Date::fromUnix(1700000000)};  // 2023-11-14 22:13:20 UTC
    MemoryDocumentBus bus;
    MemoryDocumentNotifier ours{bus};
    MemoryDocumentNotifier theirs{bus};
};

TEST_F(SharedDocumentTests, AnUpdateWritesSortedPrivateJsonAndTellsTheOthers) {
    auto document = open(ours);
    int heard = 0;
    Subscription listening = theirs.subscribe(kName, [&] { ++heard; });

    auto written = document->update([](ClipboardPins& pins) { pins.pins.push_back(textPin("a")); });

    ASSERT_TRUE(written);
    EXPECT_EQ(*written, SharedDocumentWrite::written);
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(document->revision(), 1);
    EXPECT_EQ(document->value().pins.size(), 1u);
    EXPECT_EQ(identity(document->url()).mode, 0600u);
    EXPECT_EQ(identity(document->lockURL()).mode, 0600u);
    EXPECT_EQ(document->lockURL(), folder.path() / "clipboard-pins.json.lock");
    const std::string text = contents(document->url());
    EXPECT_EQ(text, serializeJsonSorted(encodeJson(document->value())));
    EXPECT_LT(text.find("\"pins\""), text.find("\"version\""));
}

TEST_F(SharedDocumentTests, AnUpdateThatChangesNothingWritesAndPostsNothing) {
    auto document = open(ours);
    const PinRecord pin = textPin("kept");
    ASSERT_TRUE(document->update([&](ClipboardPins& pins) { pins.pins.push_back(pin); }));
    const FileIdentity before = identity(document->url());
    const std::size_t postsBefore = ours.postCount();

    const std::vector<std::function<void(ClipboardPins&)>> noChanges = {
        [](ClipboardPins&) {},
        [&](ClipboardPins& pins) { pins.pins = {pin}; },
        [](ClipboardPins& pins) { pins.version = ClipboardPins::kCurrentVersion; },
        [](ClipboardPins& pins) {
            pins.unknown["note"] = AnyJSON("x");
            pins.unknown.erase("note");
        },
    };
    for (const auto& change : noChanges) {
        auto outcome = document->update(change);
        ASSERT_TRUE(outcome);
        EXPECT_EQ(*outcome, SharedDocumentWrite::unchanged);
    }
    EXPECT_EQ(identity(document->url()), before);
    EXPECT_EQ(ours.postCount(), postsBefore);
    EXPECT_EQ(theirs.deliveredCount(), 0u);
    EXPECT_EQ(document->revision(), 1);
}

TEST_F(SharedDocumentTests, NoFileIsCreatedWhenTheFallbackIsLeftAsItIs) {
    auto document = open(ours);
    auto outcome = document->update([](ClipboardPins&) {});
    ASSERT_TRUE(outcome);
    EXPECT_EQ(*outcome, SharedDocumentWrite::unchanged);
    EXPECT_FALSE(fs::exists(document->url()));
    EXPECT_EQ(ours.postCount(), 0u);
}

TEST_F(SharedDocumentTests, AnotherInstanceHearsTheChangeAndTheWriterDoesNot) {
    std::vector<std::size_t> oursHeard, theirsHeard;
    auto mine =
        open(ours, [&](const ClipboardPins& pins) { oursHeard.push_back(pins.pins.size()); });
    auto other =
        open(theirs, [&](const ClipboardPins& pins) { theirsHeard.push_back(pins.pins.size()); });
    std::vector<std::size_t> observed;
    Subscription watching =
        other->subscribe([&](const ClipboardPins& pins) { observed.push_back(pins.pins.size()); });

    ASSERT_TRUE(mine->update([](ClipboardPins& pins) { pins.pins.push_back(textPin("a")); }));
    ASSERT_TRUE(other->update([](ClipboardPins& pins) { pins.pins.push_back(textPin("b")); }));

    EXPECT_EQ(theirsHeard, std::vector<std::size_t>{1});
    EXPECT_EQ(oursHeard, std::vector<std::size_t>{2});
    EXPECT_EQ(observed, (std::vector<std::size_t>{1, 2}));
    EXPECT_EQ(mine->value(), other->value());
}

TEST_F(SharedDocumentTests, AnUpdateStartsFromTheFileNotFromTheCachedValue) {
    auto document = open(ours);
    // Another application wrote without our hearing of it.
    ClipboardPins outside;
    outside.pins = {textPin("theirs")};
    outside.unknown["tidepoolLayout"] = AnyJSON("grid");
    writeRaw(document->url(), serializeJsonSorted(encodeJson(outside)));

    ASSERT_TRUE(
        document->update([](ClipboardPins& pins) { pins.pins.push_back(textPin("ours")); }));

    const auto onDisk = decodeJsonAs<ClipboardPins>(*parseJson(contents(document->url())));
    ASSERT_TRUE(onDisk);
    ASSERT_EQ(onDisk->pins.size(), 2u);
    EXPECT_EQ(onDisk->pins[0].text, "theirs");
    EXPECT_EQ(onDisk->pins[1].text, "ours");
    EXPECT_EQ(onDisk->unknown.at("tidepoolLayout"), AnyJSON("grid"));
    EXPECT_EQ(document->value(), *onDisk);
}

TEST_F(SharedDocumentTests, AnUnreadableDocumentIsSetAsideAndTheFallbackUsed) {
    const std::vector<std::string> unreadable = {
        "not json at all",
        "",
        "[1,2,3]",
        R"({"pins":"many"})",
        R"({"version":"2"})",
        std::string("{\"pins\":[]}\xff", 12),
    };
    for (const auto& text : unreadable) {
        TemporaryFolder place;
        writeRaw(place.path() / kName, text);
        ClipboardPins fallback;
        fallback.unknown["fresh"] = AnyJSON(true);
        PinsDocument document(kName, fallback, {}, ours, place.path(), nowFunction(clock));

        EXPECT_EQ(document.value(), fallback) << text;
        EXPECT_FALSE(fs::exists(document.url())) << text;
        const auto aside = setAsideFiles(place.path());
        ASSERT_EQ(aside.size(), 1u) << text;
        EXPECT_EQ(aside[0].filename(), "clipboard-pins.json (unreadable 2023-11-14T221320Z).json");
        EXPECT_EQ(contents(aside[0]), text);

        ASSERT_TRUE(
            document.update([](ClipboardPins& pins) { pins.pins.push_back(textPin("new")); }));
        EXPECT_EQ(document.value().pins.size(), 1u);
        EXPECT_EQ(document.value().unknown.at("fresh"), AnyJSON(true));
    }
}

TEST_F(SharedDocumentTests, AnUnreadableFileFoundByAnUpdateIsSetAsideNotOverwritten) {
    auto document = open(ours);
    writeRaw(document->url(), "{\"pins\": [");
    writeRaw(folder.path() / "clipboard-pins.json (unreadable 2023-11-14T221320Z).json", "older");

    ASSERT_TRUE(document->update([](ClipboardPins& pins) { pins.pins.push_back(textPin("a")); }));

    EXPECT_EQ(document->value().pins.size(), 1u);
    EXPECT_EQ(setAsideFiles(folder.path()).size(), 2u);
    EXPECT_EQ(
        contents(folder.path() / "clipboard-pins.json (unreadable 2023-11-14T221320Z 2).json"),
        "{\"pins\": [");
}

TEST_F(SharedDocumentTests, AFileThatCannotBeReadFailsTheUpdateAndLosesNothing) {
    auto document = open(ours);
    // A folder where the file should be: reading fails with an error that is not "missing".
    fs::create_directory(document->url());
    fs::create_directory(document->url() / "keep");

    auto outcome = document->update([](ClipboardPins& pins) { pins.pins.push_back(textPin("a")); });

    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error().operation, "read");
    EXPECT_TRUE(fs::exists(document->url() / "keep"));
    EXPECT_EQ(ours.postCount(), 0u);
    EXPECT_EQ(document->revision(), 0);
}

TEST_F(SharedDocumentTests, TheLockFileIsNeverReplaced) {
    auto document = open(ours);
    ASSERT_TRUE(document->update([](ClipboardPins& pins) { pins.pins.push_back(textPin("a")); }));
    const FileIdentity lock = identity(document->lockURL());
    const ino_t firstDocument = identity(document->url()).inode;

    ASSERT_TRUE(document->update([](ClipboardPins& pins) { pins.pins.push_back(textPin("b")); }));
    writeRaw(document->url(), "garbage");
    document->reload();
    ASSERT_TRUE(document->update([](ClipboardPins& pins) { pins.pins.push_back(textPin("c")); }));

    EXPECT_EQ(identity(document->lockURL()).inode, lock.inode);
    EXPECT_EQ(identity(document->lockURL()).mode, 0600u);
    EXPECT_EQ(fs::file_size(document->lockURL()), 0u);
    EXPECT_NE(identity(document->url()).inode, firstDocument);
    EXPECT_EQ(setAsideFiles(folder.path()).size(), 1u);
}

// Two processes, each adding its own pins one update at a time: the lock must serialise the
// read-change-write cycles so that no pin is lost to a concurrent write.
TEST_F(SharedDocumentTests, TwoProcessesWritingAtOnceLoseNoPin) {
    constexpr int kUpdates = 1000;
    const auto writeMany = [&](const std::string& tag, MemoryDocumentNotifier& notifier) {
        PinsDocument document(kName, ClipboardPins{}, {}, notifier, folder.path());
        for (int i = 0; i < kUpdates; ++i) {
            auto outcome = document.update([&](ClipboardPins& pins) {
                pins.pins.push_back(textPin(tag + std::to_string(i)));
            });
            if (!outcome || *outcome != SharedDocumentWrite::written) return false;
        }
        return document.revision() == kUpdates;
    };

    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        MemoryDocumentBus childBus;
        MemoryDocumentNotifier childNotifier(childBus);
        ::_exit(writeMany("child ", childNotifier) ? 0 : 1);
    }
    const bool parentOK = writeMany("parent ", ours);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(parentOK);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);

    const auto onDisk = decodeJsonAs<ClipboardPins>(*parseJson(contents(folder.path() / kName)));
    ASSERT_TRUE(onDisk);
    ASSERT_EQ(onDisk->pins.size(), 2u * kUpdates);
    std::set<std::string> texts;
    for (const auto& pin : onDisk->pins) texts.insert(*pin.text);
    EXPECT_EQ(texts.size(), 2u * kUpdates);
    EXPECT_TRUE(texts.contains("child 999"));
    EXPECT_TRUE(texts.contains("parent 999"));
}

}  // namespace
}  // namespace harbex
