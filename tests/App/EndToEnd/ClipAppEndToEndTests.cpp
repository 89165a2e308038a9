#include <gtest/gtest.h>

#include <QApplication>
#include <QBuffer>
#include <QDeadlineTimer>
#include <QImage>
#include <QPainter>
#include <QPushButton>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "HarbexClip/App/AppDelegate.hpp"
#include "HarbexClipCore/Engine/ClipEngine.hpp"
#include "HarbexClipCore/Panel/ClipPanelModel.hpp"
#include "tests/Linux/Keyring/PrivateKeyring.hpp"
#include "tests/Linux/X11/X11TestServer.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;
using testing_x11::Process;
using testing_x11::ScriptedOwner;
using testing_x11::TestServer;

bool waitUntil(const std::function<bool()>& condition, int milliseconds = 8000) {
    QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

void settle(int milliseconds) {
    waitUntil([] { return false; }, milliseconds);
}

const ClipItem* find(ClipEngine& engine, const std::function<bool(const ClipItem&)>& match) {
    for (const ClipItem& item : engine.history().get()) {
        if (match(item)) return &item;
    }
    return nullptr;
}

// What the receiving window holds right now ("" until it has written its file once).
std::string received(const fs::path& file) {
    auto bytes = readFile(file);
    return bytes ? stringOf(*bytes) : std::string();
}

// A whole session in the test: Xvfb with openbox, a private bus with an unlocked keyring, empty
// XDG folders, and the application assembled in this process so its state can be looked at.
class ClipAppEndToEndTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        server = new TestServer();
        keyring = new testing::PrivateKeyring();
        keyringError = keyring->start();
        root = fs::temp_directory_path() / ("harbex-e2e-" + std::to_string(::getpid()));
        fs::remove_all(root);
        fs::create_directories(root / "data");
        fs::create_directories(root / "config");
        ::setenv("XDG_DATA_HOME", (root / "data").c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
        ::setenv("DISPLAY", server->display().c_str(), 1);
        static int argc = 3;
        static char name[] = "AppEndToEndTests";
        static char platform[] = "-platform";
        static char xcb[] = "xcb";
        static char* argv[] = {name, platform, xcb, nullptr};
        application = new QApplication(argc, argv);
        QApplication::setQuitOnLastWindowClosed(false);
    }
    static void TearDownTestSuite() {
        delete application;
        keyring->stop();
        delete keyring;
        delete server;
        fs::remove_all(root);
    }
    void SetUp() override {
        ASSERT_TRUE(server->ready()) << "Xvfb or openbox did not start";
        ASSERT_EQ(keyringError, "") << "the keyring did not start";
    }

    // Copies like another application would, with xclip owning the clipboard.
    static void copy(const std::string& path, const std::string& type) {
        Process xclip({"xclip", "-selection", "clipboard", "-t", type, "-i", path},
                      server->display());
        // xclip forks and keeps serving in the background; the parent returns at once.
        xclip.wait(std::chrono::milliseconds(5000));
    }

    static fs::path write(const std::string& name, const Bytes& bytes) {
        const fs::path path = root / name;
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        return path;
    }

    static fs::path screenshotFolder() {
        const fs::path folder = fs::path(HARBEX_BINARY_DIR) / "screenshots";
        fs::create_directories(folder);
        return folder;
    }

    static inline TestServer* server = nullptr;
    static inline testing::PrivateKeyring* keyring = nullptr;
    static inline std::string keyringError;
    static inline fs::path root;
    static inline QApplication* application = nullptr;
};

TEST_F(ClipAppEndToEndTests, CopiesAreKeptSealedPrivateOnesSkippedAndAllSurviveARestart) {
    const fs::path history = root / "data" / "Harbex Clipboard" / "History.sealed";
    {
        AppDelegate delegate;
        const auto started = std::chrono::steady_clock::now();
        ASSERT_EQ(delegate.start(ClipCommand::autostart), std::nullopt);
        ClipEngine& engine = delegate.app()->engine();
        ASSERT_TRUE(waitUntil([&] { return engine.isHistoryOpen().get(); }));
        const auto ready =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - started)
                .count();
        std::printf("start-up to an open history: %.0f ms\n", ready);

        copy(write("text.txt", bytesOf("hello from the end-to-end test")), "UTF8_STRING");
        ASSERT_TRUE(waitUntil([&] {
            return find(engine, [](const ClipItem& i) {
                return i.text == "hello from the end-to-end test";
            });
        }));
        copy(write("link.txt", bytesOf("https://example.com/harbex")), "UTF8_STRING");
        ASSERT_TRUE(waitUntil([&] {
            return find(engine, [](const ClipItem& i) { return i.kind == ClipKind::link; });
        }));

        QImage image(300, 200, QImage::Format_RGB32);
        image.fill(QColor(0x5e, 0x5c, 0xe6));
        QPainter(&image).fillRect(40, 40, 120, 80, Qt::white);
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "png");
        copy(write("image.png", Bytes(png.begin(), png.end())), "image/png");
        ASSERT_TRUE(waitUntil([&] {
            return find(engine, [](const ClipItem& i) {
                return i.kind == ClipKind::image && i.image && i.image->width == 300 &&
                       i.image->height == 200;
            });
        }));

        // A password manager's copy: marked secret, never kept.
        ScriptedOwner owner(server->display());
        owner.offer({{"UTF8_STRING", bytesOf("correct horse battery staple")},
                     {"x-kde-passwordManagerHint", bytesOf("secret")}});
        ASSERT_TRUE(waitUntil([&] { return engine.lastSkip().get().has_value(); }));
        EXPECT_EQ(engine.lastSkip().get()->kind, SkipReason::Kind::markedPrivate);
        EXPECT_FALSE(find(engine, [](const ClipItem& i) {
            return i.text && i.text->find("horse") != std::string::npos;
        }));
        EXPECT_EQ(engine.history().get().size(), 3u);

        delegate.showSettings(ClipSettingsPage::shortcuts);
        settle(300);
        ASSERT_NE(delegate.settingsWindow(), nullptr);
        EXPECT_TRUE(delegate.settingsWindow()->grab().save(
            QString::fromStdString((screenshotFolder() / "settings.png").string())));
        delegate.showSettings(ClipSettingsPage::capture);
        settle(200);
        EXPECT_TRUE(delegate.settingsWindow()->grab().save(
            QString::fromStdString((screenshotFolder() / "settings-capture.png").string())));
        delegate.settingsWindow()->close();

        // The panel opens on the global shortcut and filters as the user types.
        testing_x11::run({"xdotool", "key", "--clearmodifiers", "ctrl+super+v"}, server->display());
        ASSERT_TRUE(waitUntil([&] { return delegate.panel() && delegate.panel()->isVisible(); }));
        settle(300);
        testing_x11::run({"xdotool", "type", "--delay", "20", "example"}, server->display());
        ClipPanelModel* model = delegate.panelModel();
        ASSERT_TRUE(waitUntil([&] { return model->query() == "example"; }));
        ASSERT_TRUE(waitUntil([&] { return model->results().size() == 1; }));
        EXPECT_EQ(model->results().front()->kind, ClipKind::link);
        settle(200);
        EXPECT_TRUE(delegate.panel()->grab().save(
            QString::fromStdString((screenshotFolder() / "panel.png").string())));
        testing_x11::run({"xdotool", "key", "Escape", "Escape"}, server->display());
        EXPECT_TRUE(waitUntil([&] { return !delegate.panel()->isVisible(); }));

        // Leaving the scope quits as the application does: the engine writes before it goes.
        engine.shutdown();
    }

    ASSERT_TRUE(fs::exists(history));
    const Bytes sealed = readFile(history).value();
    const std::string raw = stringOf(sealed);
    EXPECT_EQ(raw.find("hello from the end-to-end test"), std::string::npos) << "not sealed";
    EXPECT_EQ(raw.find("example.com"), std::string::npos) << "not sealed";

    AppDelegate again;
    ASSERT_EQ(again.start(ClipCommand::autostart), std::nullopt);
    ClipEngine& engine = again.app()->engine();
    ASSERT_TRUE(waitUntil([&] { return engine.isHistoryOpen().get(); }));
    EXPECT_TRUE(
        find(engine, [](const ClipItem& i) { return i.text == "hello from the end-to-end test"; }));
    EXPECT_TRUE(find(engine, [](const ClipItem& i) { return i.kind == ClipKind::link; }));
    EXPECT_TRUE(find(engine, [](const ClipItem& i) { return i.kind == ClipKind::image; }));
    EXPECT_FALSE(find(engine, [](const ClipItem& i) {
        return i.text && i.text->find("horse") != std::string::npos;
    }));
}

TEST_F(ClipAppEndToEndTests, ReturnPastesTheChosenCopyIntoTheWindowThatWasInFront) {
    AppDelegate delegate;
    ASSERT_EQ(delegate.start(ClipCommand::autostart), std::nullopt);
    ClipEngine& engine = delegate.app()->engine();
    ASSERT_TRUE(waitUntil([&] { return engine.isHistoryOpen().get(); }));
    const std::string copies[] = {"quince jam for the receiver", "walnut bread for the receiver",
                                  "apricot tart for the receiver"};
    for (const std::string& text : copies) {
        copy(write("paste.txt", bytesOf(text)), "UTF8_STRING");
        ASSERT_TRUE(waitUntil([&] {
            return find(engine, [&](const ClipItem& i) { return i.text == text; });
        })) << text;
    }

    // Each case pastes into a fresh receiver, chosen by typing, by moving, or both. A paste
    // makes its copy the newest, so the cases name what they choose by the panel's order then.
    ClipPanelModel* model = nullptr;
    auto newest = [&] { return engine.history().get().front().text.value_or(""); };
    auto secondResult = [&] { return model->results().at(1)->text.value_or(""); };
    struct Case {
        const char* name;
        std::vector<std::vector<std::string>> keys;  // xdotool arguments, one run each
        std::string query;
        std::function<std::string()> expected;  // asked before Return
        bool terminal = false;                  // the receiver keys like a terminal emulator
    };
    const Case cases[] = {
        {"typing narrows to one copy",
         {{"type", "--delay", "15", "walnut"}},
         "walnut",
         [&] { return copies[1]; }},
        {"the newest copy is chosen first", {}, "", newest},
        {"moving down after typing",
         {{"type", "--delay", "15", "receiver"}, {"key", "Down"}},
         "receiver",
         secondResult},
    };
    auto& frontmost = delegate.app()->frontmost();
    int round = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const fs::path file = root / ("received-" + std::to_string(++round) + ".txt");
        std::vector<std::string> command{HARBEX_PASTE_RECEIVER, file.string()};
        if (c.terminal) command.insert(command.end(), {"--terminal", "-name", "xterm"});
        Process receiver(command, server->display());
        ASSERT_TRUE(waitUntil([&] {
            const auto front = frontmost.frontApp();
            return fs::exists(file) && front && front->pid == receiver.pid();
        })) << "the receiver never came to the front";

        testing_x11::run({"xdotool", "key", "--clearmodifiers", "ctrl+super+v"}, server->display());
        ASSERT_TRUE(waitUntil([&] {
            return delegate.panel() && delegate.panel()->isVisible() &&
                   QApplication::activeWindow() == delegate.panel();
        })) << "the panel did not open with the keyboard";
        for (const auto& keys : c.keys) {
            std::vector<std::string> command{"xdotool"};
            command.insert(command.end(), keys.begin(), keys.end());
            testing_x11::run(command, server->display());
        }
        model = delegate.panelModel();
        ASSERT_TRUE(waitUntil([&] { return model->query() == c.query; }));
        const std::string expected = c.expected();
        EXPECT_NE(expected, "");
        testing_x11::run({"xdotool", "key", "Return"}, server->display());

        ASSERT_TRUE(waitUntil([&] { return received(file) == expected; }))
            << "the receiver holds \"" << received(file) << "\"";
        EXPECT_FALSE(delegate.panel()->isVisible());
        const auto front = frontmost.frontApp();
        EXPECT_TRUE(front && front->pid == receiver.pid()) << "the front was not handed back";
        receiver.stop();
    }
    engine.shutdown();
}

TEST_F(ClipAppEndToEndTests, TheWelcomeShowsOnTheFirstUserStartOnly) {
    const std::string usualConfig = std::getenv("XDG_CONFIG_HOME");
    const fs::path config = root / "first-start-config";
    ::setenv("XDG_CONFIG_HOME", config.c_str(), 1);
    struct Case {
        const char* name;
        ClipCommand command;
        bool shows;
    };
    const Case cases[] = {
        {"a login start waits for the user", ClipCommand::autostart, false},
        {"the first start by the user", ClipCommand::open, true},
        {"the next start by the user", ClipCommand::open, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        AppDelegate delegate;
        ASSERT_EQ(delegate.start(c.command), std::nullopt);
        ClipEngine& engine = delegate.app()->engine();
        ASSERT_TRUE(waitUntil([&] { return engine.isHistoryOpen().get(); }));
        ClipWelcome* welcome = delegate.welcomeWindow();
        EXPECT_EQ(welcome && welcome->isVisible(), c.shows);
        if (welcome) {
            auto* close = welcome->findChild<QPushButton*>("welcomeClose");
            ASSERT_NE(close, nullptr);
            close->click();
            EXPECT_TRUE(engine.settings()->welcomeFinished);
        }
        engine.shutdown();
    }
    ::setenv("XDG_CONFIG_HOME", usualConfig.c_str(), 1);
}

// Another clipboard manager: it holds CLIPBOARD_MANAGER, as the freedesktop convention has it.
class OtherManager {
public:
    explicit OtherManager(const std::string& display) {
        connection_ = xcb_connect(display.c_str(), nullptr);
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        window_ = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        const std::string name = "CLIPBOARD_MANAGER";
        XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
            connection_, xcb_intern_atom(connection_, 0, std::uint16_t(name.size()), name.c_str()),
            nullptr));
        manager_ = atom->atom;
        xcb_set_selection_owner(connection_, window_, manager_, XCB_CURRENT_TIME);
        xcb_flush(connection_);
    }
    ~OtherManager() { xcb_disconnect(connection_); }
    bool owns() {
        XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
            connection_, xcb_get_selection_owner(connection_, manager_), nullptr));
        return owner && owner->owner == window_;
    }

private:
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t window_ = XCB_NONE;
    xcb_atom_t manager_ = XCB_ATOM_NONE;
};

// What `xclip -o -t target` gives, or nothing when the clipboard cannot give it.
std::optional<std::string> clipboard(const std::string& display, const std::string& target) {
    // Our own clipboard is served by this process's event loop, so it runs while xclip waits.
    auto result =
        testing_x11::run({"xclip", "-selection", "clipboard", "-o", "-t", target}, display, {},
                         [] { QCoreApplication::processEvents(QEventLoop::AllEvents, 5); });
    if (result.status != 0) return std::nullopt;
    return result.output;
}

TEST_F(ClipAppEndToEndTests, ACopyOutlivesTheAppThatMadeItUnlessItWasPrivate) {
    AppDelegate delegate;
    ASSERT_EQ(delegate.start(ClipCommand::autostart), std::nullopt);
    ClipEngine& engine = delegate.app()->engine();
    ASSERT_TRUE(waitUntil([&] { return engine.isHistoryOpen().get(); }));
    const std::string display = server->display();
    auto gone = [&] { return waitUntil([&] { return !clipboard(display, "TARGETS"); }, 3000); };

    // xclip in the foreground, then it exits. Our settings window has focus meanwhile: the copy
    // comes from the background, not from us.
    {
        delegate.showSettings(ClipSettingsPage::capture);
        ASSERT_TRUE(waitUntil([&] {
            return delegate.settingsWindow() &&
                   QApplication::activeWindow() == delegate.settingsWindow();
        }));
        const fs::path file = write("quits.txt", bytesOf("xclip was here"));
        Process xclip({"xclip", "-quiet", "-selection", "clipboard", "-i", file.string()}, display);
        ASSERT_TRUE(waitUntil([&] {
            return find(engine, [](const ClipItem& i) { return i.text == "xclip was here"; });
        }));
        EXPECT_EQ(find(engine, [](const ClipItem& i) { return i.text == "xclip was here"; })->appID,
                  std::nullopt);
        delegate.settingsWindow()->close();
        const auto before = engine.history().get();
        xclip.stop();
        ASSERT_TRUE(
            waitUntil([&] { return clipboard(display, "UTF8_STRING") == "xclip was here"; }));
        EXPECT_EQ(clipboard(display, "STRING"), "xclip was here");
        EXPECT_EQ(engine.history().get(), before) << "the entry moved or counted again";
    }

    // An owner with several formats; each comes back.
    {
        auto owner = std::make_unique<ScriptedOwner>(display);
        owner->offer({{"UTF8_STRING", bytesOf("formatted words")},
                      {"text/html", bytesOf("<b>formatted</b> words")}});
        ASSERT_TRUE(waitUntil([&] {
            return find(engine, [](const ClipItem& i) { return i.text == "formatted words"; });
        }));
        owner.reset();
        ASSERT_TRUE(
            waitUntil([&] { return clipboard(display, "UTF8_STRING") == "formatted words"; }));
        EXPECT_EQ(clipboard(display, "text/html"), "<b>formatted</b> words");
    }

    // A private copy, refused: when its owner goes, nothing comes back (not the one before).
    {
        auto owner = std::make_unique<ScriptedOwner>(display);
        owner->offer({{"UTF8_STRING", bytesOf("correct horse battery staple")},
                      {"x-kde-passwordManagerHint", bytesOf("secret")}});
        ASSERT_TRUE(
            waitUntil([&] { return engine.lastSkip().get() == SkipReason::markedPrivate(); }));
        owner.reset();
        EXPECT_TRUE(gone());
        settle(500);
        EXPECT_EQ(clipboard(display, "UTF8_STRING"), std::nullopt);
    }

    // A copy over the text limit is refused with its reason, and not restored either.
    {
        ClipSettings settings = engine.settings().get();
        settings.textLimit = 1000;
        engine.updateSettings(settings);
        const fs::path file = write("large.txt", bytesOf(std::string(300'000, 'z')));
        Process xclip({"xclip", "-quiet", "-selection", "clipboard", "-i", file.string()}, display);
        ASSERT_TRUE(waitUntil([&] { return engine.lastSkip().get() == SkipReason::tooLarge(); }));
        xclip.stop();
        EXPECT_TRUE(gone());
        engine.updateSettings(ClipSettings{});
    }
    engine.shutdown();
}

TEST_F(ClipAppEndToEndTests, AGtkEditorHandsItsCopyOverAsItQuits) {
    AppDelegate delegate;
    ASSERT_EQ(delegate.start(ClipCommand::autostart), std::nullopt);
    ClipEngine& engine = delegate.app()->engine();
    ASSERT_TRUE(waitUntil([&] { return engine.isHistoryOpen().get(); }));
    const std::string display = server->display();
    const fs::path file = write("notes.txt", bytesOf("line one of the notes\nline two\n"));
    Process mousepad({"mousepad", "--disable-server", file.string()}, display);
    auto key = [&](const std::string& keys) {
        // Keys go through XTest to the focused window: GTK ignores keys sent to a window.
        testing_x11::run({"xdotool", "search", "--sync", "--onlyvisible", "--class", "mousepad",
                          "windowactivate", "--sync"},
                         display);
        testing_x11::run({"xdotool", "key", "--clearmodifiers", keys}, display);
    };
    key("ctrl+a");
    key("ctrl+c");
    ASSERT_TRUE(waitUntil(
        [&] {
            return find(engine, [](const ClipItem& i) {
                return i.text == "line one of the notes\nline two\n";
            });
        },
        15000))
        << "Mousepad's copy was not captured";
    const auto targets = clipboard(display, "TARGETS").value_or("");
    EXPECT_NE(targets.find("SAVE_TARGETS"), std::string::npos) << targets;
    key("ctrl+q");
    // GTK asks the clipboard manager (us) to store before it exits: keep our loop running.
    ASSERT_TRUE(waitUntil([&] { return !mousepad.running(); }, 15000)) << "Mousepad hung";
    const auto restored = engine.lastCount();
    // Stored through SAVE_TARGETS: GTK's own formats come back, not just what the history keeps.
    EXPECT_EQ(clipboard(display, "UTF8_STRING"), "line one of the notes\nline two\n");
    // GTK's own text/plain has CRLF line ends: its bytes come back as it served them.
    EXPECT_EQ(clipboard(display, "text/plain"), "line one of the notes\r\nline two\r\n");
    EXPECT_TRUE(clipboard(display, "application/x-gtk-text-buffer-rich-text").has_value());
    EXPECT_EQ(engine.lastCount(), restored) << "handed over, not abandoned and put back";
    engine.shutdown();
}

TEST_F(ClipAppEndToEndTests, AnotherClipboardManagerKeepsTheDuty) {
    const std::string display = server->display();
    OtherManager other(display);
    ASSERT_TRUE(waitUntil([&] { return other.owns(); }));
    AppDelegate delegate;
    ASSERT_EQ(delegate.start(ClipCommand::autostart), std::nullopt);
    ClipEngine& engine = delegate.app()->engine();
    ASSERT_TRUE(waitUntil([&] { return engine.isHistoryOpen().get(); }));
    EXPECT_EQ(delegate.app()->pasteboard().keepOnQuit(), ClipKeepOnQuit::anotherManager);

    const fs::path file = write("left.txt", bytesOf("left to the other manager"));
    Process xclip({"xclip", "-quiet", "-selection", "clipboard", "-i", file.string()}, display);
    ASSERT_TRUE(waitUntil([&] {
        return find(engine,
                    [](const ClipItem& i) { return i.text == "left to the other manager"; });
    }));
    xclip.stop();
    settle(800);
    EXPECT_EQ(clipboard(display, "UTF8_STRING"), std::nullopt);
    EXPECT_TRUE(other.owns());
    engine.shutdown();
}

}  // namespace
}  // namespace harbex
