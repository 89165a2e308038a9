#include "HarbexClipCore/Store/ClipStore.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "HarbexClipCore/Testing/MemoryKeyStore.hpp"
#include "HarbexClipCore/Testing/ScriptedKeyStore.hpp"
#include "tests/Core/Store/StoreTestSupport.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;
using testing::modeOf;
using testing::namesIn;
using testing::TempFolder;
using testing::textLibrary;

const Bytes kStoredKey(kSealKeySize, 0x11);

struct StoreWithKeys {
    ScriptedKeyStore* keys;
    std::unique_ptr<ClipStore> store;
};

StoreWithKeys makeStore(const fs::path& folder, std::optional<Bytes> stored = kStoredKey,
                        ClipStoreOptions options = {}) {
    auto keys = std::make_unique<ScriptedKeyStore>(std::move(stored));
    auto* observed = keys.get();
    return {observed, std::make_unique<ClipStore>(folder, std::move(keys), std::move(options))};
}

void writeBytes(const fs::path& path, const Bytes& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

TEST(ClipStoreTests, MakingAStoreTouchesNeitherDiskNorKeyring) {
    TempFolder temp;
    const fs::path folder = temp.path() / "Harbex Clipboard";
    auto [keys, store] = makeStore(folder);
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_EQ(keys->reads(), 0);
}

TEST(ClipStoreTests, LoadingWithoutAHistoryGivesAnEmptyLibraryWithoutAskingForTheKey) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path() / "Harbex Clipboard", std::nullopt);
    const auto loaded = store->load();
    ASSERT_TRUE(loaded) << loaded.error().description();
    EXPECT_EQ(*loaded, ClipLibrary{});
    EXPECT_EQ(keys->reads(), 0);
    EXPECT_EQ(keys->writes(), 0);
}

TEST(ClipStoreTests, ASavedLibraryLoadsWholeInANewStoreWithTheSameKey) {
    TempFolder temp;
    ClipLibrary library = textLibrary(5);
    library.pinboards.push_back(Pinboard{
        Uuid::random(), "Work", "blue", "briefcase", {library.items[1].id, library.items[3].id}});
    library.items[2].isSensitive = true;
    library.items[2].rtf = Bytes{0, 1, 2, 255};
    {
        auto [keys, store] = makeStore(temp.path());
        ASSERT_TRUE(store->saveNow(library));
    }
    auto [keys, store] = makeStore(temp.path());
    EXPECT_EQ(store->load(), library);
}

TEST(ClipStoreTests, TheKeyIsReadOnceAndThenCached) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path());
    ASSERT_TRUE(store->saveNow(textLibrary(1)));
    ASSERT_TRUE(store->load());
    ASSERT_TRUE(store->writeImage(bytesOf("png"), "A"));
    EXPECT_EQ(keys->reads(), 1);
}

TEST(ClipStoreTests, AMissingKeyIsMadeOnceAndWrittenToTheKeyring) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path(), std::nullopt);
    const ClipLibrary library = textLibrary(2);
    ASSERT_TRUE(store->saveNow(library));
    ASSERT_TRUE(store->writeImage(bytesOf("png"), "A"));
    EXPECT_EQ(keys->writes(), 1);
    ASSERT_TRUE(keys->stored());
    EXPECT_EQ(keys->stored()->size(), kSealKeySize);
    EXPECT_NE(*keys->stored(), Bytes(kSealKeySize, 0));

    // The written key is the one the history was sealed with.
    auto [otherKeys, reopened] = makeStore(temp.path(), keys->stored());
    EXPECT_EQ(reopened->load(), library);
}

struct KeyringFailureCase {
    const char* name;
    std::optional<Bytes> stored;
    std::optional<KeychainStatus> readFailure;
    std::optional<KeychainStatus> writeFailure;
    KeychainStatus expected;
};

// However the keyring fails, no key is made in its place and nothing is written: a second key
// would strand the history sealed under the first.
TEST(ClipStoreTests, AKeyringThatFailsNeverLeadsToANewKeyOrAFileChange) {
    const std::vector<KeyringFailureCase> cases = {
        {"locked", kStoredKey, kKeychainInteractionNotAllowed, std::nullopt,
         kKeychainInteractionNotAllowed},
        {"no keyring", std::nullopt, kKeychainNotAvailable, std::nullopt, kKeychainNotAvailable},
        {"odd status", kStoredKey, -1, std::nullopt, -1},
        {"31 bytes", Bytes(31, 7), std::nullopt, std::nullopt, kKeychainDecodeFailed},
        {"33 bytes", Bytes(33, 7), std::nullopt, std::nullopt, kKeychainDecodeFailed},
        {"empty item", Bytes{}, std::nullopt, std::nullopt, kKeychainDecodeFailed},
        {"missing, write refused", std::nullopt, std::nullopt, kKeychainInteractionNotAllowed,
         kKeychainInteractionNotAllowed},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        TempFolder temp;
        {
            auto [keys, store] = makeStore(temp.path());
            ASSERT_TRUE(store->saveNow(textLibrary(3, "before")));
        }
        const Bytes before = *readFile(temp.path() / "History.sealed");

        auto [keys, store] = makeStore(temp.path(), testCase.stored);
        keys->readFailure = testCase.readFailure;
        keys->writeFailure = testCase.writeFailure;
        const auto loaded = store->load();
        const auto saved = store->saveNow(textLibrary(1, "after"));
        const auto image = store->writeImage(bytesOf("png"), "A");
        for (const auto* error :
             {loaded ? nullptr : &loaded.error(), saved ? nullptr : &saved.error(),
              image ? nullptr : &image.error()}) {
            ASSERT_NE(error, nullptr);
            EXPECT_EQ(*error, ClipStoreError::keychain(testCase.expected));
        }
        EXPECT_EQ(keys->writes(), testCase.writeFailure ? 3 : 0);
        EXPECT_EQ(keys->stored(), testCase.stored);
        EXPECT_EQ(*readFile(temp.path() / "History.sealed"), before);
        EXPECT_FALSE(fs::exists(temp.path() / "Images"));
    }
}

TEST(ClipStoreTests, ARefusedKeyWriteIsNotKeptSoTheNextTryAsksAgain) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path(), std::nullopt);
    keys->writeFailure = kKeychainInteractionNotAllowed;
    ASSERT_FALSE(store->saveNow(textLibrary(1)));
    keys->writeFailure.reset();
    ASSERT_TRUE(store->saveNow(textLibrary(1)));
    EXPECT_EQ(keys->reads(), 2);
    EXPECT_EQ(keys->writes(), 2);
    auto [otherKeys, reopened] = makeStore(temp.path(), keys->stored());
    EXPECT_EQ(reopened->load()->items.size(), 1u);
}

TEST(ClipStoreTests, AHistoryUnderAnotherKeyDoesNotOpen) {
    TempFolder temp;
    {
        auto [keys, store] = makeStore(temp.path());
        ASSERT_TRUE(store->saveNow(textLibrary(1)));
    }
    auto [keys, store] = makeStore(temp.path(), Bytes(kSealKeySize, 0x22));
    const auto loaded = store->load();
    ASSERT_FALSE(loaded);
    EXPECT_EQ(loaded.error(), ClipStoreError::cannotOpen());
}

TEST(ClipStoreTests, AnImageFileCopiedOverTheHistoryDoesNotOpen) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path());
    ASSERT_TRUE(store->saveNow(textLibrary(1)));
    ASSERT_TRUE(store->writeImage(bytesOf(std::string(200, 'p')), "A"));
    ASSERT_TRUE(store->writeThumbnail(bytesOf(std::string(50, 't')), "A"));
    fs::copy_file(temp.path() / "Images/A.sealed", temp.path() / "History.sealed",
                  fs::copy_options::overwrite_existing);
    const auto loaded = store->load();
    ASSERT_FALSE(loaded);
    EXPECT_EQ(loaded.error(), ClipStoreError::cannotOpen());

    // Nor does a thumbnail pass for its image, or one image for another.
    fs::copy_file(temp.path() / "Images/A.thumb.sealed", temp.path() / "Images/A.sealed",
                  fs::copy_options::overwrite_existing);
    EXPECT_EQ(store->readImage("A").error(), ClipStoreError::cannotOpen());
    fs::copy_file(temp.path() / "Images/A.thumb.sealed", temp.path() / "Images/B.thumb.sealed");
    EXPECT_EQ(store->readThumbnail("B").error(), ClipStoreError::cannotOpen());
}

TEST(ClipStoreTests, HistoryFilesOfTheWrongFormAreRefusedWithoutAskingForTheKey) {
    struct Case {
        const char* name;
        Bytes file;
        ClipStoreError expected;
    };
    const std::vector<Case> cases = {
        {"empty", {}, ClipStoreError::badFormat()},
        {"29 bytes starting with 1", Bytes(29, 1), ClipStoreError::badFormat()},
        {"30 bytes starting with 2", Bytes(30, 2), ClipStoreError::badFormat()},
        {"plain JSON", bytesOf(R"({"version":1,"items":[],"pinboards":[]})"),
         ClipStoreError::badFormat()},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        TempFolder temp;
        writeBytes(temp.path() / "History.sealed", testCase.file);
        auto [keys, store] = makeStore(temp.path());
        const auto loaded = store->load();
        ASSERT_FALSE(loaded);
        EXPECT_EQ(loaded.error(), testCase.expected);
        EXPECT_EQ(keys->reads(), 0);
    }
}

TEST(ClipStoreTests, SealedTextThatIsNotALibraryFailsWithTheJsonError) {
    TempFolder temp;
    const SealKey key = *SealKey::fromBytes(kStoredKey);
    writeBytes(temp.path() / "History.sealed",
               *sealFile(key, bytesOf(R"({"version":1})"), "history"));
    auto [keys, store] = makeStore(temp.path());
    const auto loaded = store->load();
    ASSERT_FALSE(loaded);
    ASSERT_TRUE(loaded.error().jsonError());
    EXPECT_EQ(loaded.error().jsonError()->path, "items");
    EXPECT_NE(loaded.error().description().find("items"), std::string::npos);
}

TEST(ClipStoreTests, ImagesAndThumbnailsRoundTripAndAreRemovedTogether) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path());
    const Bytes image(100000, 0xAB);
    const Bytes thumbnail(3000, 0xCD);
    ASSERT_TRUE(store->writeImage(image, "5F1C-IMAGE"));
    ASSERT_TRUE(store->writeThumbnail(thumbnail, "5F1C-IMAGE"));
    EXPECT_EQ(namesIn(temp.path() / "Images"),
              (std::vector<std::string>{"5F1C-IMAGE.sealed", "5F1C-IMAGE.thumb.sealed"}));
    EXPECT_EQ(store->readImage("5F1C-IMAGE"), image);
    EXPECT_EQ(store->readThumbnail("5F1C-IMAGE"), thumbnail);

    ASSERT_TRUE(store->removeImage("5F1C-IMAGE"));
    EXPECT_TRUE(namesIn(temp.path() / "Images").empty());
    EXPECT_TRUE(store->removeImage("5F1C-IMAGE")) << "removing what is gone is not an error";
    const auto missing = store->readImage("5F1C-IMAGE");
    ASSERT_FALSE(missing);
    ASSERT_TRUE(missing.error().fileError());
    EXPECT_TRUE(missing.error().fileError()->isNotFound());
}

TEST(ClipStoreTests, ImageNamesThatWouldLeaveTheImagesFolderAreRefused) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path() / "Harbex Clipboard");
    for (const std::string& name :
         std::vector<std::string>{"", ".", "..", "../History", "a/b", std::string("a\0b", 3)}) {
        SCOPED_TRACE(name);
        const auto written = store->writeImage(bytesOf("x"), name);
        ASSERT_FALSE(written);
        ASSERT_TRUE(written.error().fileError());
        EXPECT_EQ(written.error().fileError()->code, EINVAL);
        EXPECT_FALSE(store->readThumbnail(name));
        EXPECT_FALSE(store->removeImage(name));
    }
    EXPECT_EQ(namesIn(temp.path()), std::vector<std::string>{});
}

TEST(ClipStoreTests, FoldersAre0700AndFiles0600WhateverTheUmask) {
    TempFolder temp;
    const mode_t previous = ::umask(0);
    const fs::path folder = temp.path() / "Application Support" / "Harbex Clipboard";
    auto [keys, store] = makeStore(folder);
    ASSERT_TRUE(store->saveNow(textLibrary(1)));
    ASSERT_TRUE(store->writeImage(bytesOf("png"), "A"));
    ASSERT_TRUE(store->writeThumbnail(bytesOf("png"), "A"));
    ::umask(previous);
    EXPECT_EQ(modeOf(folder.parent_path()), 0700u);
    EXPECT_EQ(modeOf(folder), 0700u);
    EXPECT_EQ(modeOf(folder / "Images"), 0700u);
    EXPECT_EQ(modeOf(folder / "History.sealed"), 0600u);
    EXPECT_EQ(modeOf(folder / "Images/A.sealed"), 0600u);
    EXPECT_EQ(modeOf(folder / "Images/A.thumb.sealed"), 0600u);
}

TEST(ClipStoreTests, AnOpenHistoryFolderIsClosedToOthersOnTheFirstWrite) {
    TempFolder temp;
    fs::permissions(temp.path(), fs::perms(0755));
    auto [keys, store] = makeStore(temp.path());
    ASSERT_TRUE(store->saveNow(textLibrary(1)));
    EXPECT_EQ(modeOf(temp.path()), 0700u);
}

TEST(ClipStoreTests, TemporaryFilesLeftByAKilledWriterGoAtTheFirstOpen) {
    TempFolder temp;
    {
        auto [keys, store] = makeStore(temp.path());
        ASSERT_TRUE(store->saveNow(textLibrary(1)));
        ASSERT_TRUE(store->writeImage(bytesOf("png"), "A"));
    }
    writeBytes(temp.path() / ".History.sealed.harbex-tmp-0A1B2C3D", Bytes(40, 1));
    writeBytes(temp.path() / "Images/.A.sealed.harbex-tmp-0A1B2C3D", Bytes(40, 1));
    writeBytes(temp.path() / "notes.txt", Bytes(3, 1));
    auto [keys, store] = makeStore(temp.path());
    ASSERT_TRUE(store->load());
    EXPECT_EQ(namesIn(temp.path()),
              (std::vector<std::string>{"History.sealed", "Images", "notes.txt"}));
    EXPECT_EQ(namesIn(temp.path() / "Images"), std::vector<std::string>{"A.sealed"});
}

TEST(ClipStoreTests, SettingAsideUsesTheTruncatedUnixSecondsAndNeverOverwrites) {
    TempFolder temp;
    Date now = Date::fromUnix(1700000000.7);
    auto [keys, store] = makeStore(temp.path(), kStoredKey, {.now = [&] { return now; }});
    ASSERT_TRUE(store->saveNow(textLibrary(1, "first")));
    const Bytes first = *readFile(temp.path() / "History.sealed");
    const auto setAside = store->setAsideUnreadable();
    ASSERT_TRUE(setAside) << setAside.error().description();
    EXPECT_EQ(setAside->filename(), "History (unreadable 1700000000).sealed");
    EXPECT_EQ(*readFile(*setAside), first);
    EXPECT_FALSE(fs::exists(temp.path() / "History.sealed"));

    ASSERT_TRUE(store->saveNow(textLibrary(1, "second")));
    const auto again = store->setAsideUnreadable();
    ASSERT_TRUE(again);
    EXPECT_EQ(again->filename(), "History (unreadable 1700000000 2).sealed");
    EXPECT_EQ(*readFile(*setAside), first);

    const auto nothing = store->setAsideUnreadable();
    ASSERT_FALSE(nothing);
    ASSERT_TRUE(nothing.error().fileError());
    EXPECT_TRUE(nothing.error().fileError()->isNotFound());
}

TEST(ClipStoreTests, WipeRemovesHistoryImagesAndKeyAndForgetsTheCachedKey) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path());
    ASSERT_TRUE(store->saveNow(textLibrary(2)));
    ASSERT_TRUE(store->writeImage(bytesOf("png"), "A"));
    writeBytes(temp.path() / "History (unreadable 1).sealed", Bytes(40, 1));
    ASSERT_TRUE(store->wipe());
    EXPECT_EQ(namesIn(temp.path()), std::vector<std::string>{"History (unreadable 1).sealed"});
    EXPECT_FALSE(keys->stored());
    EXPECT_EQ(keys->removes(), 1);

    // The next write makes a new key rather than reusing the forgotten one.
    ASSERT_TRUE(store->saveNow(textLibrary(1)));
    ASSERT_TRUE(keys->stored());
    EXPECT_NE(*keys->stored(), kStoredKey);
    EXPECT_EQ(store->load()->items.size(), 1u);
}

TEST(ClipStoreTests, WipeStillDeletesTheFilesWhenTheKeyringRefuses) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path());
    ASSERT_TRUE(store->saveNow(textLibrary(2)));
    keys->removeFailure = kKeychainInteractionNotAllowed;
    const auto wiped = store->wipe();
    ASSERT_FALSE(wiped);
    EXPECT_EQ(wiped.error(), ClipStoreError::keychain(kKeychainInteractionNotAllowed));
    EXPECT_FALSE(fs::exists(temp.path() / "History.sealed"));
}

// Faults that hold even for root, who ignores permission bits.
TEST(ClipStoreTests, AFolderPathThatIsAFileFailsWithTheFileError) {
    TempFolder temp;
    writeBytes(temp.path() / "occupied", Bytes(3, 1));
    auto [keys, store] = makeStore(temp.path() / "occupied");
    const auto saved = store->saveNow(textLibrary(1));
    ASSERT_FALSE(saved);
    ASSERT_TRUE(saved.error().fileError());
    EXPECT_EQ(saved.error().fileError()->code, ENOTDIR);
    const auto loaded = store->load();
    ASSERT_FALSE(loaded);
    EXPECT_TRUE(loaded.error().fileError());
}

TEST(ClipStoreTests, AnImagesPathThatIsAFileFailsImageWritesButNotTheHistory) {
    TempFolder temp;
    writeBytes(temp.path() / "Images", Bytes(3, 1));
    auto [keys, store] = makeStore(temp.path());
    const auto written = store->writeImage(bytesOf("png"), "A");
    ASSERT_FALSE(written);
    EXPECT_TRUE(written.error().fileError());
    EXPECT_TRUE(store->saveNow(textLibrary(1)));
}

TEST(ClipStoreTests, AWriteThatFailsPartWayLeavesThePreviousHistoryWhole) {
    TempFolder temp;
    const ClipLibrary before = textLibrary(2, "before");
    {
        auto [keys, store] = makeStore(temp.path());
        ASSERT_TRUE(store->saveNow(before));
    }
    // A file-size limit makes the write fail with EFBIG even for root; it is set in a child so the
    // test process keeps its own limits.
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        ClipStore store(temp.path(), std::make_unique<MemoryKeyStore>(kStoredKey));
        const auto saved = store.saveNow(textLibrary(500, "after"));
        const bool failedAsExpected =
            !saved && saved.error().fileError() && saved.error().fileError()->code == EFBIG;
        ::_exit(failedAsExpected ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the write should have failed with EFBIG";

    auto [keys, store] = makeStore(temp.path());
    EXPECT_EQ(store->load(), before);
    EXPECT_EQ(namesIn(temp.path()), std::vector<std::string>{"History.sealed"});
}

TEST(ClipStoreTests, AReadOnlyFolderFailsTheWriteAndKeepsThePreviousHistory) {
    if (::geteuid() == 0) GTEST_SKIP() << "root writes through permission bits";
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path());
    const ClipLibrary before = textLibrary(1, "before");
    ASSERT_TRUE(store->saveNow(before));
    fs::permissions(temp.path(), fs::perms(0500));
    const auto saved = store->saveNow(textLibrary(1, "after"));
    fs::permissions(temp.path(), fs::perms(0700));
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().fileError()->code, EACCES);
    EXPECT_EQ(store->load(), before);
}

TEST(ClipStoreTests, ErrorsReadAsTheEndOfASentence) {
    const std::vector<std::pair<ClipStoreError, std::string>> cases = {
        {ClipStoreError::keychain(-25308),
         "the login keyring is locked or didn\u2019t answer (status -25308)"},
        {ClipStoreError::keychain(-25291), "no login keyring is available (status -25291)"},
        {ClipStoreError::keychain(-4),
         "the login keyring refused to hand over the history key (status -4)"},
        {ClipStoreError::badFormat(), "the file isn\u2019t in a format Harbex Clipboard knows"},
        {FileError{"write", "/h/History.sealed", ENOSPC},
         "couldn\u2019t write \u201C/h/History.sealed\u201D: No space left on device"},
    };
    for (const auto& [error, text] : cases) EXPECT_EQ(error.description(), text);
}

TEST(ClipStoreTests, EachSaveOfAGrowingOrShrinkingHistoryLoadsWhole) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path());
    ClipLibrary previous;
    for (int count : {200, 3, 500, 0, 50}) {
        SCOPED_TRACE(count);
        ClipLibrary library = textLibrary(count, "size " + std::to_string(count));
        if (count > 0) library.items.front().text = std::string(100'000, 'x') + "\u00e9\n\"";
        ASSERT_TRUE(store->saveNow(library));
        EXPECT_EQ(store->load(), library);
        auto [otherKeys, fresh] = makeStore(temp.path());
        EXPECT_EQ(fresh->load(), library);
        previous = std::move(library);
    }
    // A refused file in between leaves nothing behind for the next save and load.
    writeBytes(temp.path() / "History.sealed", Bytes(64, 1));
    const auto refused = store->load();
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind(), ClipStoreError::Case::cannotOpen);
    ASSERT_TRUE(store->saveNow(previous));
    EXPECT_EQ(store->load(), previous);
}

// Between saves the store keeps the small document buffer only: a large history's buffer goes
// after each write and a load keeps nothing, whatever the step before; the next save and load
// still give the history back whole.
TEST(ClipStoreTests, OnlyASmallDocumentBufferIsKeptBetweenSaves) {
    enum class Step { saveSmall, saveLarge, load, failedSave };
    struct Case {
        const char* name;
        std::vector<Step> steps;
        bool keepsBuffer;
    };
    const Case cases[] = {
        {"small save", {Step::saveSmall}, true},
        {"large save", {Step::saveLarge}, false},
        {"small after large", {Step::saveLarge, Step::saveSmall}, true},
        {"large after small", {Step::saveSmall, Step::saveLarge}, false},
        {"load after small", {Step::saveSmall, Step::load}, true},
        {"load after large", {Step::saveLarge, Step::load}, false},
        {"failed large save", {Step::saveSmall, Step::failedSave}, false},
    };
    const ClipLibrary small = textLibrary(20, "small");
    const ClipLibrary large = textLibrary(10'000, "large history copy with a longer text");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempFolder temp;
        bool failWrites = false;
        ClipStoreOptions options;
        options.writeFile = [&](const fs::path& path, std::span<const std::uint8_t> bytes) {
            if (failWrites)
                return FileStatus(std::unexpected(FileError{"write", path.string(), EIO}));
            return writeFileAtomically(path, bytes, 0600);
        };
        auto [keys, store] = makeStore(temp.path(), kStoredKey, options);
        const ClipLibrary* saved = nullptr;
        for (Step step : c.steps) {
            switch (step) {
                case Step::saveSmall:
                    ASSERT_TRUE(store->saveNow(small));
                    saved = &small;
                    break;
                case Step::saveLarge:
                    ASSERT_TRUE(store->saveNow(large));
                    saved = &large;
                    break;
                case Step::load: ASSERT_EQ(store->load(), *saved); break;
                case Step::failedSave:
                    failWrites = true;
                    EXPECT_FALSE(store->saveNow(large));
                    failWrites = false;
                    break;
            }
        }
        EXPECT_EQ(store->documentBufferBytes() > 0, c.keepsBuffer);
        EXPECT_LE(store->documentBufferBytes(), ClipStore::kDocumentBufferKeptBytes);
        EXPECT_EQ(store->load(), *saved);
        EXPECT_EQ(store->documentBufferBytes() > 0, c.keepsBuffer);
        ASSERT_TRUE(store->saveNow(large));
        EXPECT_EQ(store->load(), large);
    }
}

TEST(ClipStoreTests, SavesFromTheSaveThreadAndTheCallersThreadNeverMixTheirDocuments) {
    TempFolder temp;
    auto [keys, store] = makeStore(temp.path());
    const ClipLibrary queued = textLibrary(300, "queued");
    const ClipLibrary direct = textLibrary(30, "direct");
    for (int round = 0; round < 20; ++round) {
        store->save(queued);
        ASSERT_TRUE(store->saveNow(direct));
        store->waitForSaves();
        const auto loaded = store->load();
        ASSERT_TRUE(loaded) << "round " << round << ": " << loaded.error().description();
        EXPECT_TRUE(*loaded == queued || *loaded == direct) << "round " << round;
    }
}

TEST(ClipStoreTests, AHistoryWithARepeatedIdLoadsWithEveryCopyUnderItsOwnId) {
    TempFolder temp;
    ClipLibrary library = textLibrary(3);
    library.items[2].id = library.items[0].id;
    library.pinboards.push_back(
        Pinboard{Uuid::random(), "Work", "blue", "star", {library.items[0].id}});
    auto [keys, store] = makeStore(temp.path());
    ASSERT_TRUE(store->saveNow(library));
    const auto loaded = store->load();
    ASSERT_TRUE(loaded) << loaded.error().description();
    ASSERT_EQ(loaded->items.size(), 3u);
    EXPECT_EQ(loaded->items[0], library.items[0]);
    EXPECT_EQ(loaded->items[2].text, library.items[2].text);
    EXPECT_NE(loaded->items[2].id, library.items[0].id);
    EXPECT_EQ(loaded->pinboards, library.pinboards);
}

}  // namespace
}  // namespace harbex
