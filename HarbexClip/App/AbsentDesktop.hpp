#pragma once

#include <signal.h>
#include <unistd.h>

#include <QApplication>
#include <QWidget>

#include "HarbexClipCore/Panel/HotKeyRegistrar.hpp"
#include "HarbexClipCore/Panel/ModifierMonitor.hpp"
#include "HarbexClipCore/Paste/AppActivator.hpp"
#include "HarbexClipCore/Paste/ClipFrontmost.hpp"
#include "HarbexClipCore/Paste/PasteTyper.hpp"

namespace harbex {

// The desktop services a session does not offer (ClipPlatform::choose decides which): no front
// application, no activation, no paste keystroke (so the paster copies and says so), no global
// shortcuts (the compositor's own key bindings call --panel), no double tap. They share a header
// because they are all the same kind of honest absence. Main thread.

class AbsentFrontmost final : public ClipFrontmost {
public:
    std::optional<ClipTargetApp> frontApp() override { return std::nullopt; }
    std::int32_t ownPid() override { return std::int32_t(::getpid()); }
    bool isActive() override { return QApplication::activeWindow() != nullptr; }
    bool hasVisibleWindow() override {
        const auto windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(),
                           [](const QWidget* window) { return window->isVisible(); });
    }
    void bringForward() override {}
    bool isRunning(const ClipTargetApp& target) override {
        return target.pid > 0 && ::kill(target.pid, 0) == 0;
    }
    std::optional<ClipTargetApp> fallbackApp() override { return std::nullopt; }
};

class AbsentActivator final : public AppActivator {
public:
    bool activate(const ClipTargetApp&) override { return false; }
};

class AbsentPasteTyper final : public PasteTyper {
public:
    void typePaste() override {}
};

class AbsentHotKeyRegistrar final : public HotKeyRegistrar {
public:
    // What every registration answers: the session has no way to grab keys for us.
    static constexpr int kStatusUnavailable = -9871;

    std::span<const HotKeyModifierBit> modifierTable() const override { return {}; }
    void install(std::function<void(HotKeyWhich)>) override {}
    int registerHotKey(HotKeyWhich, std::uint32_t, std::uint32_t) override {
        return kStatusUnavailable;
    }
    void unregisterHotKey(HotKeyWhich) override {}
};

class AbsentModifierMonitor final : public ModifierMonitor {
public:
    void install(ModifiersChanged, OtherInput) override {}
    void remove() override {}
};

}  // namespace harbex
