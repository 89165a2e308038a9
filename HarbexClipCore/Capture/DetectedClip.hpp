#pragma once

#include <optional>
#include <string>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex {

// The result of detection: the new history entry, and for an image copy the bytes to store
// (under `item.image->digest`) and a small PNG preview.
struct DetectedClip {
    ClipItem item;
    std::optional<Bytes> imageData;
    std::optional<Bytes> thumbnail;
    std::optional<std::string> appID;

    bool operator==(const DetectedClip&) const = default;
};

}  // namespace harbex
