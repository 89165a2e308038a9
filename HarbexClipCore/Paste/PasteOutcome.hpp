#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// What one paste achieved.
enum class PasteOutcome {
    pasted,  // on the pasteboard, and the paste keystroke is scheduled into the target
    copied,  // on the pasteboard only; the person presses the paste keys
    failed,  // nothing to write; the pasteboard is untouched
};

template <>
struct EnumNames<PasteOutcome> {
    static constexpr std::array values{
        std::pair{PasteOutcome::pasted, std::string_view("pasted")},
        std::pair{PasteOutcome::copied, std::string_view("copied")},
        std::pair{PasteOutcome::failed, std::string_view("failed")},
    };
};

}  // namespace harbex
