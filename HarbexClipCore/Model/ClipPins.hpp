#pragma once

#include <expected>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

// Why a pin could not be made or removed.
struct ClipPinsError {
    enum class Code {
        notShareable,  // the copy has nothing the shared pins can hold (a text too long, a link
                       // that is not an address, a file copy without paths, an image without size)
        writeFailed,   // the shared file could not be read or written; `detail` says why
        sensitive,     // the copy is marked sensitive: the shared file would keep it in plain text
    };
    Code code = Code::writeFailed;
    std::string detail;

    friend bool operator==(const ClipPinsError&, const ClipPinsError&) = default;
};

using ClipPinsStatus = std::expected<void, ClipPinsError>;

// The notice for a pin refused because the copy is marked sensitive.
inline constexpr std::string_view kUnmarkToPinNotice =
    "Unmark this copy as sensitive before pinning it";

// The user's pins, which live outside the history (they are shared with the family's sibling
// application), as the engine and the library see them. Pins are never removed by clearing or
// pruning the history; `pinnedIDs` feeds the set of protected copies.
// Thread: the owner's (main) thread; `onChange` is called on it.
class ClipPins {
public:
    virtual ~ClipPins() = default;

    // Pins `item`, or refreshes its pin when it is already pinned (keeping its place).
    virtual ClipPinsStatus pin(const ClipItem& item) = 0;
    // Removes the pin; unpinning what is not pinned succeeds and changes nothing.
    virtual ClipPinsStatus unpin(const Uuid& id) = 0;
    virtual bool isPinned(const Uuid& id) const = 0;
    // The pinned ids in the user's order, each once.
    virtual std::vector<Uuid> pinnedIDs() const = 0;
    // Every pin as a copy, in the user's order: pins made elsewhere have no history item, so they
    // come back as copies of the matching kind (with a fingerprint, so a later identical copy
    // merges into them). Pins that hold nothing showable are left out.
    virtual std::vector<ClipItem> pinnedItems() const = 0;
    // Called when the pins change from outside this application (not for our own pin and unpin).
    // Replaces any earlier callback; an empty function stops the calls.
    virtual void setOnChange(std::function<void()> onChange) = 0;
};

}  // namespace harbex
