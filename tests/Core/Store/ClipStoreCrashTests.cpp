// A writer killed at random moments must always leave a history that opens and holds either the
// last library it finished or the one it was writing. HARBEX_CRASH_KILLS sets the number of kills
// (scripts/crash-soak runs 1,000).

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

#include "HarbexClipCore/Store/ClipStore.hpp"
#include "HarbexClipCore/Testing/MemoryKeyStore.hpp"
#include "tests/Core/Store/CrashWriter/CrashLibrary.hpp"
#include "tests/Core/Store/StoreTestSupport.hpp"

extern char** environ;

namespace harbex {
namespace {

namespace fs = std::filesystem;

struct Writer {
    pid_t pid = -1;
    int output = -1;  // the read end of its standard output
};

Writer startWriter(const fs::path& folder, std::int64_t firstGeneration) {
    int pipeEnds[2];
    if (::pipe2(pipeEnds, O_CLOEXEC) != 0) return {};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], STDOUT_FILENO);
    const std::string folderText = folder.string();
    const std::string generationText = std::to_string(firstGeneration);
    char* const argv[] = {const_cast<char*>(HARBEX_CRASH_WRITER),
                          const_cast<char*>(folderText.c_str()),
                          const_cast<char*>(generationText.c_str()), nullptr};
    Writer writer;
    if (::posix_spawn(&writer.pid, HARBEX_CRASH_WRITER, &actions, nullptr, argv, environ) != 0) {
        writer.pid = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipeEnds[1]);
    writer.output = pipeEnds[0];
    return writer;
}

// Blocks until the writer says it is ready to save; false when it died first.
bool waitUntilReady(int output) {
    char byte = 0;
    while (::read(output, &byte, 1) == 1) {
        if (byte == '\n') return true;
    }
    return false;
}

// The last generation the writer reported finished; reads until the pipe closes.
std::int64_t lastFinished(int output) {
    std::string text;
    char buffer[4096];
    ssize_t n;
    while ((n = ::read(output, buffer, sizeof buffer)) > 0)
        text.append(buffer, static_cast<std::size_t>(n));
    ::close(output);
    // A line cut short by the kill does not count.
    const auto end = text.rfind('\n');
    if (end == std::string::npos) return -1;
    const auto start = text.rfind('\n', end - 1);
    return std::stoll(text.substr(start == std::string::npos ? 0 : start + 1));
}

TEST(ClipStoreCrashTests, AWriterKilledAtRandomMomentsAlwaysLeavesAWholeHistory) {
    const char* configured = std::getenv("HARBEX_CRASH_KILLS");
    const int kills = configured ? std::atoi(configured) : 200;
    const auto seed = static_cast<unsigned>(std::random_device{}());
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    // One save with its fsyncs takes some 25 ms here; kills land anywhere in the first few.
    std::uniform_int_distribution<int> delayMicroseconds(0, 60000);

    testing::TempFolder temp;
    const fs::path folder = temp.path() / "Harbex Clipboard";
    std::int64_t loadedGeneration = 0;
    int completedDuringAKill = 0;
    for (int kill = 0; kill < kills; ++kill) {
        SCOPED_TRACE("kill " + std::to_string(kill));
        Writer writer = startWriter(folder, loadedGeneration + 1);
        ASSERT_GT(writer.pid, 0);
        ASSERT_TRUE(waitUntilReady(writer.output));
        std::this_thread::sleep_for(std::chrono::microseconds(delayMicroseconds(random)));
        ::kill(writer.pid, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(writer.pid, &status, 0), writer.pid);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer stopped on its own";
        const std::int64_t finished = lastFinished(writer.output);

        ClipStore store(folder,
                        std::make_unique<MemoryKeyStore>(Bytes(kSealKeySize, crash::kKeyByte)));
        const auto loaded = store.load();
        ASSERT_TRUE(loaded) << loaded.error().description();
        if (loaded->items.empty()) {
            ASSERT_EQ(loadedGeneration, 0) << "a history that existed was lost";
            ASSERT_EQ(finished, -1);
        } else {
            const std::int64_t generation = crash::generationOf(*loaded);
            // The last write reported done, or the one after it that was done but not yet
            // reported; an earlier state would mean a finished write was lost.
            const std::int64_t floor = finished >= 0 ? finished : loadedGeneration;
            ASSERT_GE(generation, floor);
            ASSERT_LE(generation, floor + 1);
            ASSERT_EQ(*loaded, crash::library(generation));
            if (generation == floor + 1 && finished >= 0) ++completedDuringAKill;
            loadedGeneration = generation;
        }
        for (const auto& name : testing::namesIn(folder)) {
            ASSERT_FALSE(isAtomicTemporaryName(name)) << name << " left after opening";
        }
    }
    EXPECT_GT(loadedGeneration, 1) << "the writer never got a history written";
    RecordProperty("generations", std::to_string(loadedGeneration));
    RecordProperty("completedDuringAKill", completedDuringAKill);
}

}  // namespace
}  // namespace harbex
