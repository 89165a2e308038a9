#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "HarbexClipCore/Panel/ClipHotKeys.hpp"
#include "HarbexClipCore/Panel/HotKeyRegistrar.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// A hot-key registrar in memory with the X11 modifier table. It keeps what is registered per
// slot, refuses a key already held by any slot (as a grab of a taken key fails), answers a
// scripted status per key, and logs every call ("install", "register:panel:9:68",
// "unregister:pause") so tests can prove the order of unregistering and registering.
class RecordingHotKeyRegistrar final : public HotKeyRegistrar {
public:
    struct Registration {
        std::uint32_t keyCode = 0;
        std::uint32_t modifiers = 0;
        friend bool operator==(const Registration&, const Registration&) = default;
    };

    // The status the platform gives when a key is already taken (X11 BadAccess).
    static constexpr int kStatusTaken = 10;

    std::span<const HotKeyModifierBit> modifierTable() const override {
        return kX11HotKeyModifiers;
    }

    void install(std::function<void(HotKeyWhich)> onPressed) override {
        ++installCount;
        handler = std::move(onPressed);
        calls.push_back("install");
    }

    int registerHotKey(HotKeyWhich which, std::uint32_t keyCode, std::uint32_t modifiers) override {
        calls.push_back("register:" + std::string(enumName(which)) + ":" + std::to_string(keyCode) +
                        ":" + std::to_string(modifiers));
        const Registration wanted{keyCode, modifiers};
        if (registered.contains(which)) return kStatusSlotBusy;
        if (auto scripted = failures.find(keyCode); scripted != failures.end()) {
            return scripted->second;
        }
        for (const auto& [slot, held] : registered) {
            if (held == wanted) return kStatusTaken;
        }
        registered[which] = wanted;
        return 0;
    }

    void unregisterHotKey(HotKeyWhich which) override {
        calls.push_back("unregister:" + std::string(enumName(which)));
        registered.erase(which);
    }

    // Plays the window system delivering a press of the slot's key.
    void press(HotKeyWhich which) {
        if (handler) handler(which);
    }

    // Registering into a slot that still holds a key: a stale registration would be left behind.
    static constexpr int kStatusSlotBusy = 99;

    std::map<HotKeyWhich, Registration> registered;
    std::map<std::uint32_t, int> failures;  // key code → status to answer
    std::vector<std::string> calls;
    std::function<void(HotKeyWhich)> handler;
    int installCount = 0;
};

}  // namespace harbex
