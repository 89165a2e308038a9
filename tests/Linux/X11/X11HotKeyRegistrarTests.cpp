#include <gtest/gtest.h>

#include "HarbexClip/Linux/X11HotKeyRegistrar.hpp"
#include "HarbexClipCore/Panel/ClipHotKeys.hpp"
#include "tests/Linux/X11/X11TestSupport.hpp"

namespace harbex {
namespace {

using namespace testing_x11;

constexpr std::uint32_t kKeyV = 9;  // macOS key code of V
constexpr std::uint32_t kKeyL = 37;

class X11HotKeyRegistrarTests : public testing::Test {
protected:
    void SetUp() override {
        HARBEX_REQUIRE_X_SERVER();
        connection_ = connect();
        ASSERT_TRUE(connection_);
        registrar_ = std::make_unique<X11HotKeyRegistrar>(*connection_);
        registrar_->install([this](HotKeyWhich which) { pressed_.push_back(which); });
    }
    std::uint32_t modifiers(ClipShortcut::Modifiers shortcut) {
        return translateHotKeyModifiers(shortcut, registrar_->modifierTable());
    }
    void press(const std::vector<std::string>& keys) {
        std::vector<std::string> command{"xdotool", "key", "--clearmodifiers"};
        command.insert(command.end(), keys.begin(), keys.end());
        run(command, sharedServer().display());
    }

    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11HotKeyRegistrar> registrar_;
    std::vector<HotKeyWhich> pressed_;
};

TEST_F(X11HotKeyRegistrarTests, RegisteredShortcutsReachTheirSlotWhateverLockIsLit) {
    const auto panel = ClipShortcut::Modifiers::command | ClipShortcut::Modifiers::control;
    const auto library = ClipShortcut::Modifiers::command | ClipShortcut::Modifiers::option;
    ASSERT_EQ(registrar_->registerHotKey(HotKeyWhich::panel, kKeyV, modifiers(panel)), 0);
    ASSERT_EQ(registrar_->registerHotKey(HotKeyWhich::library, kKeyL, modifiers(library)), 0);
    struct Case {
        const char* name;
        std::vector<std::string> keys;
        std::vector<HotKeyWhich> expected;
    };
    const std::vector<Case> cases{
        {"panel", {"ctrl+super+v"}, {HotKeyWhich::panel}},
        {"library", {"ctrl+alt+l"}, {HotKeyWhich::library}},
        {"other modifiers", {"ctrl+v", "ctrl+shift+super+v"}, {}},
        {"caps lock lit", {"Caps_Lock", "ctrl+super+v", "Caps_Lock"}, {HotKeyWhich::panel}},
        {"num lock lit", {"Num_Lock", "ctrl+alt+l", "Num_Lock"}, {HotKeyWhich::library}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        pressed_.clear();
        press(c.keys);
        if (c.expected.empty()) {
            eventually([] { return false; }, 200ms, [&] { connection_->dispatch(); });
        } else {
            eventually([&] { return pressed_.size() >= c.expected.size(); }, 3000ms,
                       [&] { connection_->dispatch(); });
        }
        EXPECT_EQ(pressed_, c.expected);
    }
    registrar_->unregisterHotKey(HotKeyWhich::panel);
    pressed_.clear();
    press({"ctrl+super+v"});
    eventually([] { return false; }, 200ms, [&] { connection_->dispatch(); });
    EXPECT_TRUE(pressed_.empty()) << "an unregistered shortcut no longer fires";
}

TEST_F(X11HotKeyRegistrarTests, AShortcutGrabbedByAnotherClientReportsItAndHoldsNothing) {
    // Another client grabs Ctrl+Super+V, without lock keys, first.
    auto other = connect();
    ASSERT_TRUE(other);
    X11Keyboard keyboard(*other);
    const auto v = keyboard.keycode(0x0076);
    ASSERT_TRUE(v);
    const std::uint16_t mask = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;
    xcb_generic_error_t* error = xcb_request_check(
        other->raw(), xcb_grab_key_checked(other->raw(), 1, other->root(), mask, *v,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    ASSERT_EQ(error, nullptr);

    const auto panel = ClipShortcut::Modifiers::command | ClipShortcut::Modifiers::control;
    EXPECT_EQ(registrar_->registerHotKey(HotKeyWhich::panel, kKeyV, modifiers(panel)),
              X11HotKeyRegistrar::kStatusKeyTaken);
    // The lock variants we did grab were released: a third client can take them.
    auto third = connect();
    ASSERT_TRUE(third);
    error = xcb_request_check(
        third->raw(), xcb_grab_key_checked(third->raw(), 1, third->root(), mask | XCB_MOD_MASK_LOCK,
                                           *v, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    EXPECT_EQ(error, nullptr) << "a half-made registration was left behind";
    std::free(error);

    EXPECT_EQ(registrar_->registerHotKey(HotKeyWhich::pause, 0xFFFF, modifiers(panel)),
              X11HotKeyRegistrar::kStatusNoSuchKey);
}

TEST_F(X11HotKeyRegistrarTests, TheShortcutControllerRecordsTheTakenStatus) {
    auto other = connect();
    ASSERT_TRUE(other);
    X11Keyboard keyboard(*other);
    const auto v = keyboard.keycode(0x0076);
    ASSERT_TRUE(v);
    std::free(xcb_request_check(
        other->raw(),
        xcb_grab_key_checked(other->raw(), 1, other->root(), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4,
                             *v, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    struct NoMonitor final : ModifierMonitor {
        void install(ModifiersChanged, OtherInput) override {}
        void remove() override {}
    } monitor;
    X11HotKeyRegistrar registrar(*connection_);
    ClipHotKeys hotKeys(registrar, monitor, {});
    hotKeys.registerHotKey(
        HotKeyWhich::panel,
        ClipShortcut{kKeyV, ClipShortcut::Modifiers::command | ClipShortcut::Modifiers::control});
    EXPECT_EQ(hotKeys.status(HotKeyWhich::panel), X11HotKeyRegistrar::kStatusKeyTaken);
    EXPECT_FALSE(hotKeys.isRegistered(HotKeyWhich::panel));
}

}  // namespace
}  // namespace harbex
