#include "HarbexClipCore/Panel/ClipHotKeys.hpp"

namespace harbex {

std::uint32_t translateHotKeyModifiers(ClipShortcut::Modifiers modifiers,
                                       std::span<const HotKeyModifierBit> table) {
    std::uint32_t mask = 0;
    for (const auto& row : table) {
        if (modifiers.contains(row.modifier)) mask |= row.platformMask;
    }
    return mask;
}

bool isRegistrable(const ClipShortcut& shortcut) {
    using M = ClipShortcut::Modifiers;
    return (shortcut.modifiers.rawValue & (M::command | M::control | M::option).rawValue) != 0;
}

std::optional<ClipModifierTap::Held> tapModifier(ClipPanelTrigger trigger) {
    using Held = ClipModifierTap::Held;
    switch (trigger) {
        case ClipPanelTrigger::doubleCommand: return Held::command();
        case ClipPanelTrigger::doubleOption: return Held::option();
        case ClipPanelTrigger::doubleControl: return Held::control();
        case ClipPanelTrigger::doubleShift: return Held::shift();
        case ClipPanelTrigger::off: return std::nullopt;
    }
    return std::nullopt;
}

ClipHotKeys::ClipHotKeys(HotKeyRegistrar& registrar, ModifierMonitor& monitor, Actions actions)
    : registrar_(registrar), monitor_(monitor), actions_(std::move(actions)) {}

ClipHotKeys::~ClipHotKeys() { stop(); }

void ClipHotKeys::start(const ClipSettings& settings) {
    if (!installed_) {
        registrar_.install([this](Which which) { pressed(which); });
        installed_ = true;
    }
    apply(settings);
}

void ClipHotKeys::apply(const ClipSettings& settings) {
    applySlot(Which::panel, settings.panel.fallback);
    applySlot(Which::library, settings.libraryShortcut);
    applySlot(Which::pause, settings.window.pauseShortcut);
    if (!applied_ || settings.panel.trigger != trigger_) setTrigger(settings.panel.trigger);
    applied_ = true;
}

void ClipHotKeys::applySlot(Which which, const std::optional<ClipShortcut>& shortcut) {
    const Slot& current = slot(which);
    // Re-grabbing an unchanged key would open a moment in which a press falls through to the
    // application in front.
    if (applied_ && current.shortcut == shortcut && current.status == 0) return;
    registerHotKey(which, shortcut);
}

void ClipHotKeys::registerHotKey(Which which, const std::optional<ClipShortcut>& shortcut) {
    unregister(which);
    Slot& target = slot(which);
    target.shortcut = shortcut;
    target.status = 0;
    if (!shortcut) return;
    if (!isRegistrable(*shortcut)) {
        target.status = kStatusInvalidShortcut;
        return;
    }
    const std::uint32_t modifiers =
        translateHotKeyModifiers(shortcut->modifiers, registrar_.modifierTable());
    target.status = registrar_.registerHotKey(which, shortcut->keyCode, modifiers);
    target.registered = target.status == 0;
}

void ClipHotKeys::unregister(Which which) {
    Slot& target = slot(which);
    if (target.registered) registrar_.unregisterHotKey(which);
    target = Slot{};
}

void ClipHotKeys::stop() {
    for (Which which : allCases<Which>()) unregister(which);
    removeMonitor();
    applied_ = false;
}

std::optional<ClipPanelTrigger> ClipHotKeys::installedTrigger() const {
    if (!tap_) return std::nullopt;
    return trigger_;
}

void ClipHotKeys::pressed(Which which) {
    if (!slot(which).registered) return;
    const auto& action = which == Which::panel     ? actions_.openPanel
                         : which == Which::library ? actions_.openLibrary
                                                   : actions_.pause;
    if (action) action();
}

void ClipHotKeys::removeMonitor() {
    if (!tap_) return;
    monitor_.remove();
    tap_.reset();
}

void ClipHotKeys::setTrigger(ClipPanelTrigger trigger) {
    removeMonitor();
    trigger_ = trigger;
    const auto modifier = tapModifier(trigger);
    if (!modifier) return;
    tap_.emplace(*modifier, kDoubleTapMaxPress, kDoubleTapMaxGap);
    monitor_.install(
        [this](ClipModifierTap::Held held, double timestamp) {
            // A double tap opens the panel exactly as the panel shortcut does.
            if (tap_ && tap_->handle(held, timestamp) && actions_.openPanel) actions_.openPanel();
        },
        [this] {
            if (tap_) tap_->reset();
        });
}

}  // namespace harbex
