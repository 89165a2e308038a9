#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace harbex {

// The application a copy is pasted into and the front is given back to. Two targets are equal
// only when process, identity and name all match, so a relaunched application (new pid) is a
// different target.
struct ClipTargetApp {
    std::int32_t pid = 0;
    std::optional<std::string> bundleID;
    std::optional<std::string> name;

    friend bool operator==(const ClipTargetApp&, const ClipTargetApp&) = default;
};

}  // namespace harbex
