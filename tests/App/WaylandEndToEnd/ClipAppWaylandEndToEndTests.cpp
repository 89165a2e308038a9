#include <gtest/gtest.h>

#include <filesystem>

#include "HarbexClip/Linux/SecretServiceKeyStore.hpp"
#include "HarbexClipCore/Store/ClipStore.hpp"
#include "tests/Linux/Keyring/PrivateKeyring.hpp"
#include "tests/Linux/Wayland/WaylandTestServer.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;
using namespace testing_wayland;

// The program's standard error, read line by line as it comes.
class ErrorLines {
public:
    explicit ErrorLines(int fd) : fd_(fd) {}
    ~ErrorLines() { ::close(fd_); }

    // Waits for a line containing `text`; every line read so far stays in `seen()`.
    bool waitFor(const std::string& text, std::chrono::milliseconds timeout) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (seen_.find(text) == std::string::npos) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) return false;
            pollfd descriptor{fd_, POLLIN, 0};
            if (::poll(&descriptor, 1, int(left.count())) <= 0) continue;
            char chunk[4096];
            const ssize_t n = ::read(fd_, chunk, sizeof chunk);
            if (n <= 0) return seen_.find(text) != std::string::npos;
            seen_.append(chunk, std::size_t(n));
        }
        return true;
    }
    const std::string& seen() const { return seen_; }

private:
    int fd_;
    std::string seen_;
};

bool holds(const ClipLibrary& library, const std::string& text) {
    return std::ranges::any_of(library.items,
                               [&](const ClipItem& item) { return item.text == text; });
}

// A Wayland session and nothing else: a headless sway, no DISPLAY, a private bus with an
// unlocked keyring and empty XDG folders; the program itself, started as a user would.
TEST(ClipAppWaylandEndToEndTests, StartsWithoutAnXDisplayAndKeepsAWlCopySealed) {
    SwayServer sway;
    ASSERT_TRUE(sway.ready()) << "headless sway did not start";
    testing::PrivateKeyring keyring;
    ASSERT_EQ(keyring.start(), "") << "the keyring did not start";
    const fs::path root =
        fs::temp_directory_path() / ("harbex-wayland-e2e-" + std::to_string(::getpid()));
    fs::remove_all(root);
    for (const char* folder : {"data", "config", "runtime"}) fs::create_directories(root / folder);
    fs::permissions(root / "runtime", fs::perms::owner_all, fs::perm_options::replace);

    ChildEnvironment environment{{"WAYLAND_DISPLAY", sway.display()},
                                 {"XDG_RUNTIME_DIR", (root / "runtime").string()},
                                 {"DISPLAY", std::nullopt},
                                 {"QT_QPA_PLATFORM", std::nullopt},
                                 {"XDG_DATA_HOME", (root / "data").string()},
                                 {"XDG_CONFIG_HOME", (root / "config").string()},
                                 {"HARBEX_TRACE_TIMINGS", "1"}};
    int errors[2];
    ASSERT_EQ(::pipe2(errors, O_CLOEXEC), 0);
    Process app({HARBEX_APP_PROGRAM, "--autostart"}, environment, -1, -1, errors[1]);
    ::close(errors[1]);
    ErrorLines lines(errors[0]);
    ASSERT_TRUE(lines.waitFor("harbex-timing ready", 30000ms)) << lines.seen();
    EXPECT_NE(lines.seen().find("Clipboard: Wayland data-control"), std::string::npos)
        << lines.seen();

    const std::string text = "copied in a Wayland-only session";
    Process copy({"wl-copy", "--foreground", text}, sway.environment());
    ::setenv("XDG_DATA_HOME", (root / "data").c_str(), 1);
    const fs::path folder = root / "data" / "Harbex Clipboard";
    ClipStore store(folder, std::make_unique<SecretServiceKeyStore>());
    EXPECT_TRUE(eventually(
        [&] {
            auto library = store.load();
            return library && holds(*library, text);
        },
        20000ms))
        << "the copy never reached the sealed history\n"
        << lines.seen();

    ::kill(app.pid(), SIGTERM);
    EXPECT_EQ(app.wait(20000ms), 0) << lines.seen();
    const auto sealed = readFile(folder / "History.sealed");
    ASSERT_TRUE(sealed.has_value());
    EXPECT_EQ(stringOf(*sealed).find(text), std::string::npos) << "not sealed";
    auto library = store.load();
    ASSERT_TRUE(library.has_value());
    EXPECT_TRUE(holds(*library, text)) << "kept through the quit";
    keyring.stop();
    fs::remove_all(root);
}

}  // namespace
}  // namespace harbex
