#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// What the panel shows: the copies, or the actions for one copy.
enum class ClipPanelMode { browse, actions };

// A key the panel model understands. `commandNumber` carries the digit pressed (1 to 9); every
// other key carries nothing. Build the plain keys from their kind: `ClipPanelKey(Kind::up)`.
struct ClipPanelKey {
    enum class Kind {
        commandNumber,
        commandClick,
        up,
        down,
        returnKey,
        shiftReturn,
        escape,
        commandP,
        commandDelete,
        commandC,
        commandK,
        shiftUp,
        shiftDown,
        commandReturn,
        commandO,
        commandY,
        space,
        commandS,
        tab,
        shiftTab,
        deleteOnEmpty,
    };

    Kind kind = Kind::escape;
    int number = 0;  // the digit of commandNumber, 0 for every other kind

    constexpr ClipPanelKey(Kind kind) : kind(kind) {}  // NOLINT: a plain key is its kind
    static constexpr ClipPanelKey commandNumber(int n) {
        ClipPanelKey key(Kind::commandNumber);
        key.number = n;
        return key;
    }

    friend constexpr bool operator==(const ClipPanelKey&, const ClipPanelKey&) = default;
};

template <>
struct EnumNames<ClipPanelMode> {
    static constexpr std::array values{
        std::pair{ClipPanelMode::browse, std::string_view("browse")},
        std::pair{ClipPanelMode::actions, std::string_view("actions")},
    };
};

// Names for logs and test output.
template <>
struct EnumNames<ClipPanelKey::Kind> {
    using K = ClipPanelKey::Kind;
    static constexpr std::array values{
        std::pair{K::commandNumber, std::string_view("commandNumber")},
        std::pair{K::commandClick, std::string_view("commandClick")},
        std::pair{K::up, std::string_view("up")},
        std::pair{K::down, std::string_view("down")},
        std::pair{K::returnKey, std::string_view("returnKey")},
        std::pair{K::shiftReturn, std::string_view("shiftReturn")},
        std::pair{K::escape, std::string_view("escape")},
        std::pair{K::commandP, std::string_view("commandP")},
        std::pair{K::commandDelete, std::string_view("commandDelete")},
        std::pair{K::commandC, std::string_view("commandC")},
        std::pair{K::commandK, std::string_view("commandK")},
        std::pair{K::shiftUp, std::string_view("shiftUp")},
        std::pair{K::shiftDown, std::string_view("shiftDown")},
        std::pair{K::commandReturn, std::string_view("commandReturn")},
        std::pair{K::commandO, std::string_view("commandO")},
        std::pair{K::commandY, std::string_view("commandY")},
        std::pair{K::space, std::string_view("space")},
        std::pair{K::commandS, std::string_view("commandS")},
        std::pair{K::tab, std::string_view("tab")},
        std::pair{K::shiftTab, std::string_view("shiftTab")},
        std::pair{K::deleteOnEmpty, std::string_view("deleteOnEmpty")},
    };
};

}  // namespace harbex
