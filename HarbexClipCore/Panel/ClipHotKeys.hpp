#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "HarbexClipCore/Panel/ClipModifierTap.hpp"
#include "HarbexClipCore/Panel/HotKeyRegistrar.hpp"
#include "HarbexClipCore/Panel/ModifierMonitor.hpp"
#include "HarbexClipCore/Settings/ClipSettings.hpp"
#include "HarbexClipCore/Settings/ClipShortcut.hpp"

namespace harbex {

// X11 modifier masks for the shortcut modifiers, mapped as Qt maps macOS keys so the intent holds:
// ⌘ (the key every application's own shortcuts use) is Ctrl, ⌃ is Super, ⌥ is Alt, ⇧ is Shift.
// The values are the core protocol's ShiftMask (1), ControlMask (4), Mod1Mask (Alt, 8) and
// Mod4Mask (Super, 64).
inline constexpr std::array<HotKeyModifierBit, 4> kX11HotKeyModifiers{{
    {ClipShortcut::Modifiers::command, 1u << 2},
    {ClipShortcut::Modifiers::shift, 1u << 0},
    {ClipShortcut::Modifiers::option, 1u << 3},
    {ClipShortcut::Modifiers::control, 1u << 6},
}};

// Carbon's hot-key modifier masks: cmdKey, shiftKey, optionKey, controlKey.
inline constexpr std::array<HotKeyModifierBit, 4> kCarbonHotKeyModifiers{{
    {ClipShortcut::Modifiers::command, 0x0100},
    {ClipShortcut::Modifiers::shift, 0x0200},
    {ClipShortcut::Modifiers::option, 0x0800},
    {ClipShortcut::Modifiers::control, 0x1000},
}};

// The platform mask of `modifiers`, bit by bit through `table`; bits the table lacks are dropped.
std::uint32_t translateHotKeyModifiers(ClipShortcut::Modifiers modifiers,
                                       std::span<const HotKeyModifierBit> table);

// Whether a shortcut may be registered at all: it needs ⌘, ⌃ or ⌥ (Shift alone would steal
// ordinary typing).
bool isRegistrable(const ClipShortcut& shortcut);

// The modifier whose double tap a trigger watches; nothing for `off`.
std::optional<ClipModifierTap::Held> tapModifier(ClipPanelTrigger trigger);

// Makes the three global shortcuts (open the panel, open the library, pause saving copies) and
// the double-tap trigger follow the settings. Main thread only.
class ClipHotKeys {
public:
    using Which = HotKeyWhich;

    // The status recorded for a configured shortcut that lacks ⌘, ⌃ and ⌥: it is never passed to
    // the platform, but the settings page should still say it does not work.
    static constexpr int kStatusInvalidShortcut = -50;

    // What the shortcuts do. Each is called on the main thread with no argument.
    struct Actions {
        std::function<void()> openPanel;
        std::function<void()> openLibrary;
        std::function<void()> pause;
    };

    // `registrar` and `monitor` are observed and must outlive this object.
    ClipHotKeys(HotKeyRegistrar& registrar, ModifierMonitor& monitor, Actions actions);
    // Releases every registration and the monitor.
    ~ClipHotKeys();
    ClipHotKeys(const ClipHotKeys&) = delete;
    ClipHotKeys& operator=(const ClipHotKeys&) = delete;

    // Installs the hot-key handler (once) and applies `settings`.
    void start(const ClipSettings& settings);

    // Makes registrations and the trigger match `settings`: `panel.fallback`, `libraryShortcut`
    // and `window.pauseShortcut`, and `panel.trigger`. A slot whose shortcut is unchanged and
    // worked is left alone; a changed or failed one is registered again. A changed trigger
    // replaces the monitor and starts from a fresh tap.
    void apply(const ClipSettings& settings);

    // Releases what the slot holds, then registers `shortcut` when there is one and it is
    // registrable, recording the status (0 for none or success).
    void registerHotKey(Which which, const std::optional<ClipShortcut>& shortcut);
    // Releases what the slot holds and forgets its shortcut.
    void unregister(Which which);
    // Releases every slot and removes the monitor.
    void stop();

    // The last registration status of a slot: 0 for success or nothing to register.
    int status(Which which) const { return slot(which).status; }
    bool isRegistered(Which which) const { return slot(which).registered; }
    // The trigger whose monitor is installed; nothing when none is.
    std::optional<ClipPanelTrigger> installedTrigger() const;

    // A hot key was pressed: runs its action. Presses for a slot that holds nothing (a stale
    // event) are ignored. Public so a platform without `install` can deliver presses directly.
    void pressed(Which which);

private:
    struct Slot {
        std::optional<ClipShortcut> shortcut;
        bool registered = false;
        int status = 0;
    };
    Slot& slot(Which which) { return slots_[static_cast<std::size_t>(which)]; }
    const Slot& slot(Which which) const { return slots_[static_cast<std::size_t>(which)]; }
    void applySlot(Which which, const std::optional<ClipShortcut>& shortcut);
    void setTrigger(ClipPanelTrigger trigger);
    void removeMonitor();

    HotKeyRegistrar& registrar_;
    ModifierMonitor& monitor_;
    Actions actions_;
    std::array<Slot, 3> slots_;
    bool installed_ = false;
    bool applied_ = false;
    ClipPanelTrigger trigger_ = ClipPanelTrigger::off;
    std::optional<ClipModifierTap> tap_;
};

}  // namespace harbex
