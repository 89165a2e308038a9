#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"
#include "HarbexClipCore/Support/AtomicFile.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"

namespace harbex {
namespace {

using testing::EngineRig;
using testing::EngineRigOptions;

std::vector<std::string> folderNames(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

TEST(ClipEngineStoreTests, ALockedKeychainKeepsTheHistoryClosedAndRetriesEveryHalfMinute) {
    EngineRig rig;
    rig.seedHistory(EngineRig::libraryOf({"saved before"}, rig.clock.now()));
    rig.makeStore();
    rig.keys->readFailure = kKeychainInteractionNotAllowed;
    ClipEngine& engine = rig.start();

    engine.sample();
    EXPECT_FALSE(engine.isHistoryOpen().get());
    EXPECT_EQ(engine.problem().get(), keychainProblemMessage());
    EXPECT_EQ(rig.keys->reads(), 1);
    EXPECT_EQ(rig.keys->writes(), 0);  // no second key is ever made

    rig.copyAndSample("while locked");
    rig.clock.advance(29.5);
    engine.sample();
    EXPECT_EQ(rig.keys->reads(), 1);
    EXPECT_TRUE(engine.history()->empty());

    rig.keys->readFailure.reset();
    rig.copyAndSample("still early");
    EXPECT_FALSE(engine.isHistoryOpen().get());
    rig.clock.advance(0.5);
    engine.sample();
    EXPECT_EQ(rig.keys->reads(), 2);
    EXPECT_TRUE(engine.isHistoryOpen().get());
    EXPECT_EQ(engine.problem().get(), std::nullopt);
    // Copies made while closed are never kept.
    EXPECT_EQ(rig.texts(), std::vector<std::string>{"saved before"});

    rig.copyAndSample("now kept");
    EXPECT_EQ(rig.texts(), (std::vector<std::string>{"now kept", "saved before"}));
}

TEST(ClipEngineStoreTests, ForcingTheOpenSkipsTheWait) {
    EngineRig rig;
    rig.seedHistory(ClipLibrary{});
    rig.makeStore();
    rig.keys->readFailure = kKeychainNotAvailable;
    ClipEngine& engine = rig.start();
    EXPECT_FALSE(engine.ensureHistoryOpen());
    rig.keys->readFailure.reset();
    EXPECT_FALSE(engine.ensureHistoryOpen());
    EXPECT_TRUE(engine.ensureHistoryOpen(ClipEngine::OpenAttempt::force));
}

TEST(ClipEngineStoreTests, AnUnreadableHistoryIsSetAsideAndANewOneBegins) {
    struct Case {
        const char* name;
        Bytes contents;
    };
    Bytes wrongTag(64, 0);
    wrongTag[0] = 1;
    const std::vector<Case> cases{
        {"sealed with another key", wrongTag},
        {"too short", Bytes{1, 2, 3}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineRig rig;
        ASSERT_TRUE(writeFileAtomically(rig.folder.path() / "History.sealed", c.contents, 0600));
        rig.clock.set(Date::fromUnix(1'700'000'000.7));
        ClipEngine& engine = rig.start();
        engine.sample();
        EXPECT_TRUE(engine.isHistoryOpen().get());
        EXPECT_EQ(engine.problem().get(),
                  "The saved history couldn’t be opened with this Mac’s key, so Harbex "
                  "Clipboard started a new one. The old file was kept.");
        const auto aside = rig.folder.path() / "History (unreadable 1700000000).sealed";
        ASSERT_TRUE(std::filesystem::exists(aside));
        EXPECT_EQ(readFile(aside), c.contents);

        // The message stays: only the keychain message clears itself.
        rig.copyAndSample("fresh start");
        rig.scheduler.runAll();
        EXPECT_EQ(engine.problem().get(),
                  unreadableHistoryProblemMessage(ClipKeyVocabulary::macSymbols));
        EXPECT_EQ(rig.libraryOnDisk().items.size(), 1u);
    }
}

TEST(ClipEngineStoreTests, TheUnreadableMessageNamesTheComputerOnLinux) {
    EXPECT_EQ(unreadableHistoryProblemMessage(ClipKeyVocabulary::linuxNames),
              "The saved history couldn’t be opened with this computer’s key, so Harbex "
              "Clipboard started a new one. The old file was kept.");
}

TEST(ClipEngineStoreTests, AHistoryThatCannotBeReadStaysClosedAndUntouched) {
    EngineRig rig;
    // A folder where the file should be: reading fails with a file error, not a decryption one.
    std::filesystem::create_directories(rig.folder.path() / "History.sealed");
    ClipEngine& engine = rig.start();
    engine.sample();
    EXPECT_FALSE(engine.isHistoryOpen().get());
    ASSERT_TRUE(engine.problem().get());
    EXPECT_TRUE(
        engine.problem().get()->starts_with("Harbex Clipboard couldn’t open its history: "));
    EXPECT_EQ(folderNames(rig.folder.path()), std::vector<std::string>{"History.sealed"});
}

TEST(ClipEngineStoreTests, ABurstOfCopiesIsSavedOnceAfterTheDelay) {
    int writes = 0;
    EngineRigOptions options;
    options.writeFile = [&](const std::filesystem::path& path, std::span<const std::uint8_t> b) {
        ++writes;
        return writeFileAtomically(path, b, 0600);
    };
    EngineRig rig(options);
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.copyAndSample("one");
    rig.copyAndSample("two");
    rig.copyAndSample("three");
    EXPECT_TRUE(engine.isSaveScheduled());
    EXPECT_EQ(writes, 0);
    rig.scheduler.advance(1.0);
    EXPECT_EQ(writes, 1);
    EXPECT_FALSE(engine.isSaveScheduled());
    EXPECT_EQ(rig.libraryOnDisk(), engine.library());
}

TEST(ClipEngineStoreTests, AFailedSaveIsShownAndTheHistoryStaysInMemory) {
    for (ClipBackgroundWork saving : {ClipBackgroundWork::off, ClipBackgroundWork::on}) {
        SCOPED_TRACE(saving == ClipBackgroundWork::on ? "background" : "main thread");
        bool fail = true;
        EngineRigOptions options;
        options.engine.saving = saving;
        options.writeFile = [&](const std::filesystem::path& path,
                                std::span<const std::uint8_t> bytes) -> FileStatus {
            if (fail) return std::unexpected(FileError{"write", path.string(), ENOSPC});
            return writeFileAtomically(path, bytes, 0600);
        };
        EngineRig rig(options);
        ClipEngine& engine = rig.start();
        engine.sample();
        rig.copyAndSample("precious");
        rig.scheduler.advance(1.0);
        rig.store->waitForSaves();
        engine.sample();  // picks up a failure reported from the save thread
        rig.mainQueue.drain();
        ASSERT_TRUE(engine.problem().get());
        EXPECT_TRUE(
            engine.problem().get()->starts_with("Harbex Clipboard couldn’t save its history: "));
        EXPECT_NE(engine.problem().get()->find("No space left on device"), std::string::npos);
        EXPECT_EQ(rig.texts(), std::vector<std::string>{"precious"});

        // The next change tries again; once the history is on disk the message goes.
        fail = false;
        rig.copyAndSample("more");
        rig.scheduler.advance(1.0);
        engine.shutdown();
        EXPECT_EQ(rig.libraryOnDisk().items.size(), 2u);
        EXPECT_EQ(engine.problem().get(), std::nullopt);
    }
}

// A real failure of the file system, whoever runs the test: a folder standing where the history
// file goes cannot be replaced by a rename. Removing it is the space coming back.
class BlockedHistoryFile {
public:
    explicit BlockedHistoryFile(const std::filesystem::path& folder)
        : path_(folder / ClipStore::kHistoryFileName) {
        std::filesystem::create_directories(path_ / "blocker");
    }
    void unblock() { std::filesystem::remove_all(path_); }

private:
    std::filesystem::path path_;
};

enum class Recovery { quit, retryAfterBackOff, nextChange };

TEST(ClipEngineStoreTests, AFailedSaveStaysOwedUntilWritten) {
    struct Case {
        const char* name;
        ClipBackgroundWork saving;
        Recovery recovery;
    };
    const Case cases[] = {
        {"quit", ClipBackgroundWork::off, Recovery::quit},
        {"quit, saving on the store's thread", ClipBackgroundWork::on, Recovery::quit},
        {"back-off", ClipBackgroundWork::off, Recovery::retryAfterBackOff},
        {"next change", ClipBackgroundWork::off, Recovery::nextChange},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        EngineRigOptions options;
        options.engine.saving = test.saving;
        EngineRig rig(options);
        ClipEngine& engine = rig.start();
        engine.sample();
        BlockedHistoryFile blocked(rig.folder.path());
        rig.copyAndSample("first");
        rig.scheduler.advance(1.0);
        rig.store->waitForSaves();
        rig.mainQueue.drain();
        ASSERT_TRUE(engine.problem().get());
        blocked.unblock();

        std::vector<std::string> expected{"first"};
        switch (test.recovery) {
            case Recovery::quit: engine.shutdown(); break;
            case Recovery::retryAfterBackOff:
                rig.scheduler.advance(ClipEngine::kSaveRetryLimit);
                break;
            case Recovery::nextChange:
                rig.copyAndSample("second");  // no time passes: saved at once
                expected.insert(expected.begin(), "second");
                break;
        }
        std::vector<std::string> onDisk;
        for (const ClipItem& item : rig.libraryOnDisk().items) onDisk.push_back(*item.text);
        EXPECT_EQ(onDisk, expected);
        EXPECT_EQ(engine.problem().get(), std::nullopt);
    }
}

// A first start with the keyring locked: there is no file, so the history opens, and every save
// fails on the key until the keyring answers; what was copied meanwhile is written at quit.
TEST(ClipEngineStoreTests, CopiesMadeWhileTheKeyringIsLockedAreWrittenOnceItAnswers) {
    EngineRig rig;
    rig.makeStore();
    rig.keys->readFailure = kKeychainInteractionNotAllowed;
    ClipEngine& engine = rig.start();
    engine.sample();
    ASSERT_TRUE(engine.isHistoryOpen().get());
    rig.copyAndSample("made while locked");
    rig.scheduler.advance(1.0);
    rig.scheduler.advance(ClipEngine::kSaveRetryLimit);
    EXPECT_EQ(rig.keys->writes(), 0);  // no key is made while the keyring refuses
    rig.keys->readFailure.reset();
    engine.shutdown();
    ASSERT_EQ(rig.libraryOnDisk().items.size(), 1u);
    EXPECT_EQ(rig.libraryOnDisk().items[0].text, "made while locked");
}

TEST(ClipEngineStoreTests, ShutdownWritesAScheduledSaveAtOnce) {
    EngineRigOptions options;
    options.engine.saving = ClipBackgroundWork::on;
    EngineRig rig(options);
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.copyAndSample("last words");
    ASSERT_TRUE(engine.isSaveScheduled());
    engine.shutdown();
    EXPECT_EQ(rig.libraryOnDisk().items.size(), 1u);
    rig.scheduler.runAll();  // the block scheduled before does nothing now
    EXPECT_FALSE(engine.isSaveScheduled());
}

TEST(ClipEngineStoreTests, NothingIsSavedWithoutAStore) {
    EngineRigOptions options;
    options.withStore = false;
    EngineRig rig(options);
    ClipEngine& engine = rig.start();
    engine.sample();
    EXPECT_TRUE(engine.isHistoryOpen().get());
    rig.copyAndSample("preview");
    EXPECT_EQ(engine.history()->size(), 1u);
    EXPECT_FALSE(engine.isSaveScheduled());
    EXPECT_EQ(rig.scheduler.pendingCount(), 0u);
}

TEST(ClipEngineStoreTests, ASavedHistoryOpensAgainWithItsSearchEntriesAndLimits) {
    EngineRig rig;
    ClipEngine& first = rig.start();
    first.sample();
    for (int index = 0; index < 5; ++index) {
        rig.copyAndSample("copy " + std::to_string(index));
        rig.clock.advance(1);
    }
    first.shutdown();
    rig.engine.reset();

    ClipSettings smaller;
    smaller.maxItems = 3;
    ClipSettingsStore::save(smaller, rig.defaults);
    ClipEngine& second = rig.start();
    second.sample();
    EXPECT_EQ(rig.texts(), (std::vector<std::string>{"copy 4", "copy 3", "copy 2"}));
    EXPECT_TRUE(second.isSaveScheduled());  // the pruned history goes to disk
}

TEST(ClipEngineStoreTests, PauseIsStoredInTheSettingsAtOnce) {
    struct Case {
        const char* name;
        std::function<void(ClipEngine&)> act;
        std::optional<Date> expected;  // relative to the clock's start
    };
    const Date start{700000000};
    const std::vector<Case> cases{
        {"until resumed", [](ClipEngine& e) { e.pause(std::nullopt); }, Date::distantFuture()},
        {"for an hour", [](ClipEngine& e) { e.pauseFor(3600); }, start + 3600},
        {"until a date", [&](ClipEngine& e) { e.pause(start + 42); }, start + 42},
        {"resumed",
         [](ClipEngine& e) {
             e.pauseFor(60);
             e.resume();
         },
         std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EngineRig rig;
        rig.clock.set(start);
        ClipEngine& engine = rig.start();
        c.act(engine);
        EXPECT_EQ(engine.settings()->pausedUntil, c.expected);
        EXPECT_EQ(ClipSettingsStore::load(rig.defaults).pausedUntil, c.expected);
        EXPECT_EQ(engine.isPaused(), c.expected.has_value());
    }
}

TEST(ClipEngineStoreTests, PauseUntilTomorrowEndsAtTheNextLocalMidnight) {
    struct Case {
        const char* zone;
        double unixAt2359;  // 23:59 local time on some day
        double secondsToMidnight;
    };
    const std::vector<Case> cases{
        {"Europe/Berlin", 1'700'002'740.0, 60},         // 2023-11-14 23:59 CET
        {"America/New_York", 1'710'046'740.0, 60},      // 2024-03-09 23:59, the night before DST
        {"Europe/Berlin", 1'730'026'800.0, 12 * 3600},  // noon on a 25-hour day
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.zone);
        EngineRigOptions options;
        options.zone = c.zone;
        EngineRig rig(options);
        rig.clock.set(Date::fromUnix(c.unixAt2359));
        ClipEngine& engine = rig.start();
        engine.pauseUntilTomorrow();
        ASSERT_TRUE(engine.settings()->pausedUntil);
        EXPECT_DOUBLE_EQ(*engine.settings()->pausedUntil - rig.clock.now(), c.secondsToMidnight);
    }
}

}  // namespace
}  // namespace harbex
