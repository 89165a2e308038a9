#pragma once

#include "HarbexClipCore/Panel/ModifierMonitor.hpp"

namespace harbex {

// A modifier monitor that the test drives: `change` and `other` play the system's events and
// reach the installed callbacks only while installed, like the real monitor.
class RecordingModifierMonitor final : public ModifierMonitor {
public:
    void install(ModifiersChanged onModifiers, OtherInput onOtherInput) override {
        ++installCount;
        modifiers_ = std::move(onModifiers);
        other_ = std::move(onOtherInput);
    }

    void remove() override {
        ++removeCount;
        modifiers_ = nullptr;
        other_ = nullptr;
    }

    bool isInstalled() const { return static_cast<bool>(modifiers_); }

    void change(ClipModifierTap::Held held, double timestamp) {
        if (modifiers_) modifiers_(held, timestamp);
    }
    void other() {
        if (other_) other_();
    }

    int installCount = 0;
    int removeCount = 0;

private:
    ModifiersChanged modifiers_;
    OtherInput other_;
};

}  // namespace harbex
