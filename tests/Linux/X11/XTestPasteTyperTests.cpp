#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "HarbexClip/Linux/X11Activator.hpp"
#include "HarbexClip/Linux/X11Frontmost.hpp"
#include "HarbexClip/Linux/X11Keyboard.hpp"
#include "HarbexClip/Linux/X11Pasteboard.hpp"
#include "HarbexClip/Linux/XTestPasteTyper.hpp"
#include "tests/Linux/X11/X11TestSupport.hpp"
#include "tests/Linux/X11/X11TestWindow.hpp"

namespace harbex {
namespace {

using namespace testing_x11;

class XTestPasteTyperTests : public testing::Test {
protected:
    void SetUp() override {
        HARBEX_REQUIRE_X_SERVER();
        connection_ = connect();
        ASSERT_TRUE(connection_);
        ASSERT_TRUE(connection_->hasXTest());
    }
    // Gives `window` the keyboard and waits until it has it.
    void focus(xcb_window_t window) {
        X11Frontmost frontmost(*connection_);
        ASSERT_TRUE(eventually([&] {
            // The window manager names the active window a moment before it moves the focus,
            // which may land on the window or on one of its children.
            if (frontmost.activeWindow() == window && hasFocusWithin(window)) return true;
            X11Activator::requestActivation(*connection_, window);
            std::this_thread::sleep_for(20ms);
            return false;
        })) << "the window never became active";
    }
    bool hasFocusWithin(xcb_window_t window) {
        xcb_connection_t* c = connection_->raw();
        XcbReply<xcb_get_input_focus_reply_t> focus(
            xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
        for (xcb_window_t current = focus ? focus->focus : XCB_NONE;
             current != XCB_NONE && current != connection_->root();) {
            if (current == window) return true;
            XcbReply<xcb_query_tree_reply_t> tree(
                xcb_query_tree_reply(c, xcb_query_tree(c, current), nullptr));
            if (!tree) return false;
            current = tree->parent;
        }
        return false;
    }
    bool isDown(xcb_keycode_t code) {
        xcb_connection_t* c = connection_->raw();
        XcbReply<xcb_query_keymap_reply_t> keymap(
            xcb_query_keymap_reply(c, xcb_query_keymap(c), nullptr));
        return keymap && (keymap->keys[code / 8] & (1u << (code % 8)));
    }

    std::unique_ptr<X11Connection> connection_;
};

TEST_F(XTestPasteTyperTests, ThePasteKeystrokeCarriesOnlyThePasteModifiers) {
    X11Keyboard keyboard(*connection_);
    const auto v = keyboard.keycode(0x0076);
    const auto alt = keyboard.keycode(0xffe9);
    ASSERT_TRUE(v && alt);
    struct Case {
        const char* name;
        std::string instance, windowClass;
        std::optional<std::string> held;  // a key xdotool holds down during the paste
        std::uint16_t expected;
    };
    const std::uint16_t control = XCB_MOD_MASK_CONTROL;
    const std::uint16_t shift = XCB_MOD_MASK_SHIFT;
    const std::vector<Case> cases{
        {"editor", "gedit", "Gedit", std::nullopt, control},
        {"terminal", "xterm", "XTerm", std::nullopt, std::uint16_t(control | shift)},
        {"kitty", "kitty", "kitty", std::nullopt, std::uint16_t(control | shift)},
        {"alt held", "gedit", "Gedit", "Alt_L", control},
        {"shift held", "gedit", "Gedit", "Shift_L", control},
    };
    XTestPasteTyper typer(*connection_);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TestWindow window(sharedServer().display(), c.instance, c.windowClass, 7000);
        focus(window.id());
        if (c.held) run({"xdotool", "keydown", *c.held}, sharedServer().display());
        typer.typePaste();
        ASSERT_TRUE(eventually([&] {
            return std::ranges::any_of(window.keys(),
                                       [&](const auto& k) { return k.keycode == *v; });
        }));
        const auto& keys = window.keys();
        const auto press = std::ranges::find(keys, *v, &TestWindow::Key::keycode);
        EXPECT_EQ(press->state & 0xff, c.expected);
        if (c.held) {
            const auto heldCode = keyboard.keycode(*c.held == "Alt_L" ? 0xffe9 : 0xffe1);
            EXPECT_TRUE(isDown(*heldCode)) << "the held key is pressed again afterwards";
            run({"xdotool", "keyup", *c.held}, sharedServer().display());
        }
    }
}

TEST_F(XTestPasteTyperTests, APasteIntoXtermDeliversOurCopy) {
    // xterm pastes CLIPBOARD on Ctrl+Shift+V once told to; cat writes what arrives to a file.
    const auto output = std::filesystem::temp_directory_path() /
                        ("harbex-paste-" + std::to_string(::getpid()) + ".txt");
    std::filesystem::remove(output);
    Process xterm({"xterm", "-xrm",
                   "XTerm*VT100.translations: #override Ctrl Shift <Key>V: "
                   "insert-selection(CLIPBOARD)",
                   "-e", "sh", "-c", "stty -echo; cat > '" + output.string() + "'"},
                  sharedServer().display());
    X11Frontmost frontmost(*connection_);
    ASSERT_TRUE(eventually(
        [&] {
            const auto front = frontmost.frontApp();
            return front && front->pid == xterm.pid();
        },
        10000ms))
        << "xterm never came to the front";
    // Let the shell inside start reading.
    std::this_thread::sleep_for(500ms);

    X11Pasteboard pasteboard(*connection_);
    pasteboard.write(ClipPayload{.text = "pasted by the typer\n"}, std::nullopt);
    XTestPasteTyper typer(*connection_);
    typer.typePaste();
    auto contents = [&] {
        std::ifstream file(output);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    // xterm asks us for the text, so keep serving while waiting.
    EXPECT_TRUE(eventually([&] { return contents() == "pasted by the typer\n"; }, 10000ms,
                           [&] { connection_->dispatch(); }))
        << "got: " << contents();
    xterm.stop();
    std::filesystem::remove(output);
}

}  // namespace
}  // namespace harbex
