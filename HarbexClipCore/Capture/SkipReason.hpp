#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// Why one pasteboard change was not kept. Published by the engine as `lastSkip`; never shown as
// a message box.
struct SkipReason {
    enum class Kind { excludedApp, ownCopy, markedPrivate, paused, kindOff, tooShort, tooLarge };

    Kind kind = Kind::ownCopy;
    std::string appID;  // excludedApp only: the application, so the interface can name it

    static SkipReason excludedApp(std::string appID) {
        return SkipReason{Kind::excludedApp, std::move(appID)};
    }
    static SkipReason ownCopy() { return SkipReason{Kind::ownCopy, {}}; }
    static SkipReason markedPrivate() { return SkipReason{Kind::markedPrivate, {}}; }
    static SkipReason paused() { return SkipReason{Kind::paused, {}}; }
    static SkipReason kindOff() { return SkipReason{Kind::kindOff, {}}; }
    static SkipReason tooShort() { return SkipReason{Kind::tooShort, {}}; }
    // Its text is over the text limit.
    static SkipReason tooLarge() { return SkipReason{Kind::tooLarge, {}}; }

    bool operator==(const SkipReason&) const = default;
};

template <>
struct EnumNames<SkipReason::Kind> {
    static constexpr std::array values{
        std::pair{SkipReason::Kind::excludedApp, std::string_view("excludedApp")},
        std::pair{SkipReason::Kind::ownCopy, std::string_view("ownCopy")},
        std::pair{SkipReason::Kind::markedPrivate, std::string_view("markedPrivate")},
        std::pair{SkipReason::Kind::paused, std::string_view("paused")},
        std::pair{SkipReason::Kind::kindOff, std::string_view("kindOff")},
        std::pair{SkipReason::Kind::tooShort, std::string_view("tooShort")},
        std::pair{SkipReason::Kind::tooLarge, std::string_view("tooLarge")},
    };
};

}  // namespace harbex
