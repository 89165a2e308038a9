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

std::string swayTree(const SwayServer& sway) {
    return testing_x11::run(
               {"sh", "-c",
                "swaymsg -s \"$(ls \"$XDG_RUNTIME_DIR\"/sway-ipc.*.sock | head -n1)\" -t get_tree"},
               sway.environment())
        .output;
}

// The app_id of the first window after `marker` in sway's tree.
std::string appIDAfter(const std::string& tree, const std::string& marker) {
    const auto at = tree.find(marker);
    if (at == std::string::npos) return {};
    const auto appID = tree.find("\"app_id\": \"", at);
    if (appID == std::string::npos) return {};
    const auto start = appID + 11;
    return tree.substr(start, tree.find('"', start) - start);
}

// The focused window's app_id, from sway's own tree.
std::string swayFocus(const SwayServer& sway) {
    return appIDAfter(swayTree(sway), "\"focused\": true");
}

std::string readText(const fs::path& file) {
    auto bytes = readFile(file);
    return bytes ? stringOf(*bytes) : std::string();
}

// The way back under sway: the desktop's key binding runs `harbex-clipboard --panel` over the
// receiver; typing filters; Return hands the keyboard back to the receiver and types Ctrl+V
// there, which pastes the chosen copy; Escape on a second opening gives the keyboard back.
TEST(ClipAppWaylandEndToEndTests, ThePanelPastesIntoTheWindowThatWasInFront) {
    SwayServer sway;
    ASSERT_TRUE(sway.ready()) << "headless sway did not start";
    testing::PrivateKeyring keyring;
    ASSERT_EQ(keyring.start(), "") << "the keyring did not start";
    const fs::path root =
        fs::temp_directory_path() / ("harbex-wayland-panel-" + std::to_string(::getpid()));
    fs::remove_all(root);
    for (const char* folder : {"data", "config", "runtime"}) fs::create_directories(root / folder);
    fs::permissions(root / "runtime", fs::perms::owner_all, fs::perm_options::replace);
    ChildEnvironment environment{{"WAYLAND_DISPLAY", sway.display()},
                                 {"XDG_RUNTIME_DIR", (root / "runtime").string()},
                                 {"DISPLAY", std::nullopt},
                                 {"QT_QPA_PLATFORM", "wayland"},
                                 {"XDG_DATA_HOME", (root / "data").string()},
                                 {"XDG_CONFIG_HOME", (root / "config").string()},
                                 {"HARBEX_TRACE_TIMINGS", "1"}};
    int errors[2];
    ASSERT_EQ(::pipe2(errors, O_CLOEXEC), 0);
    Process app({HARBEX_APP_PROGRAM, "--autostart"}, environment, -1, -1, errors[1]);
    ::close(errors[1]);
    ErrorLines lines(errors[0]);
    ASSERT_TRUE(lines.waitFor("harbex-timing ready", 30000ms)) << lines.seen();
    EXPECT_NE(lines.seen().find("Clipboard: Wayland data-control; Shortcuts: desktop key "
                                "bindings; Paste: virtual keyboard; Front app: foreign-toplevel"),
              std::string::npos)
        << lines.seen();

    for (const char* text : {"beta two", "alpha one"}) {
        Process copy({"wl-copy", "--foreground", text}, sway.environment());
        std::this_thread::sleep_for(1200ms);  // the app sees the change and reads it
    }
    const fs::path received = root / "received.txt";
    auto windowEnvironment = sway.environment();
    windowEnvironment.emplace_back("QT_QPA_PLATFORM", "wayland");
    Process receiver({HARBEX_PASTE_RECEIVER, received.string()}, windowEnvironment);
    ASSERT_TRUE(eventually([&] { return swayFocus(sway) == "PasteReceiver"; }, 10000ms));
    std::this_thread::sleep_for(300ms);  // the receiver reads keys a moment after it is active

    auto openPanel = [&] {
        Process request({HARBEX_APP_PROGRAM, "--panel"}, environment);
        EXPECT_EQ(request.wait(10000ms), 0);
        return eventually([&] { return swayFocus(sway) == "app.harbexapps.clip"; }, 10000ms);
    };
    ASSERT_TRUE(openPanel()) << lines.seen();
    ASSERT_TRUE(lines.waitFor("harbex-timing panel-shown", 5000ms)) << lines.seen();
    EXPECT_EQ(appIDAfter(swayTree(sway), "\"type\": \"floating_con\""), "app.harbexapps.clip")
        << "the panel is tiled";
    std::this_thread::sleep_for(300ms);
    testing_x11::run({"wtype", "beta"}, sway.environment());
    std::this_thread::sleep_for(300ms);
    if (const char* shots = std::getenv("HARBEX_SCREENSHOTS")) {
        testing_x11::run({"grim", (fs::path(shots) / "wayland-panel.png").string()},
                         sway.environment());
    }
    const auto returned = std::chrono::steady_clock::now();
    testing_x11::run({"wtype", "-k", "Return"}, sway.environment());
    EXPECT_TRUE(eventually([&] { return readText(received) == "beta two"; }, 5000ms))
        << "received: " << readText(received) << "\n"
        << lines.seen();
    const auto pasted =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - returned);
    std::printf("harbex-measure return-to-received %.1f ms\n", pasted.count());
    EXPECT_EQ(swayFocus(sway), "PasteReceiver");

    ASSERT_TRUE(openPanel()) << lines.seen();
    std::this_thread::sleep_for(300ms);
    testing_x11::run({"wtype", "-k", "Escape"}, sway.environment());
    EXPECT_TRUE(eventually([&] { return swayFocus(sway) == "PasteReceiver"; }, 5000ms));
    EXPECT_EQ(readText(received), "beta two");

    ::kill(app.pid(), SIGTERM);
    EXPECT_EQ(app.wait(20000ms), 0) << lines.seen();
    keyring.stop();
    fs::remove_all(root);
}

}  // namespace
}  // namespace harbex
