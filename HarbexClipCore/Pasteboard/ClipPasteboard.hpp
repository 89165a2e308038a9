#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HarbexClipCore/Pasteboard/PasteboardSnapshot.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// Whether the system lets this application read other applications' copies.
enum class ClipPasteboardAccess { allowed, notAsked, ask, denied };

template <>
struct EnumNames<ClipPasteboardAccess> {
    static constexpr std::array values{
        std::pair{ClipPasteboardAccess::allowed, std::string_view("allowed")},
        std::pair{ClipPasteboardAccess::notAsked, std::string_view("notAsked")},
        std::pair{ClipPasteboardAccess::ask, std::string_view("ask")},
        std::pair{ClipPasteboardAccess::denied, std::string_view("denied")},
    };
};

// Who keeps a copy once the application that made it quits.
enum class ClipKeepOnQuit {
    ours,            // this pasteboard takes the copy over
    anotherManager,  // another clipboard manager has taken the duty on; we leave it to it
    notOffered,      // this pasteboard cannot tell when an owner quits
};

// The system clipboard: the only way the core reads or writes it. Everything runs on the main
// thread. Implementations: the X11 adapter in HarbexClip/Linux/, MemoryPasteboard in Testing/.
// Both pass the same contract suite (tests/Support/PasteboardContract.hpp).
class ClipPasteboard {
public:
    virtual ~ClipPasteboard() = default;

    // The change counter: moves on every change of owner or contents, ours included. Cheap; read
    // on every sample.
    virtual std::int64_t changeCount() = 0;

    // The declared type names, in the pasteboard's order, without reading any contents.
    virtual std::vector<std::string> types() = 0;

    // The short text value of a declared marker type (such as kPasswordManagerHintType), read
    // without touching the copy's contents; nothing when it is not declared or cannot be read.
    virtual std::optional<std::string> markerValue(std::string_view type) = 0;

    // One full reading, each flavour read only when declared and in this order: source marker,
    // password-manager hint, files, plain text, rtf and html (only when declared), url (only
    // without plain text), url title, image (only without plain text and files, first of
    // kImageTypes). Nothing when the pasteboard declares no types. A flavour that cannot be read
    // leaves its field empty.
    virtual std::optional<PasteboardSnapshot> snapshot() = 0;

    // Replaces the contents with `payload` in this order: files, else a url that parses; image;
    // text; rtf; html; the own-write marker (always); the concealed marker and the
    // password-manager hint "secret" when concealed; the source marker when `sourceID` is given.
    // Returns the change count right after the write, so the caller can ignore it when sampling.
    virtual std::int64_t write(const ClipPayload& payload,
                               std::optional<std::string_view> sourceID) = 0;

    // Copies that outlive their owner. When an owner quits without handing its copy to anyone
    // the pasteboard becomes empty: that counts as a change, and `ownerLeft` stays true until
    // the next one, so the engine can put the copy back with `write`. An owner that hands its
    // copy over as it quits (the X11 clipboard-manager convention) is answered by asking
    // `judge` with the change count of the copy on offer: when it says yes the copy is taken
    // over as it is, with the own-write marker, and the change count does not move (the
    // contents did not change); otherwise the owner is refused and simply leaves.
    // Texts (plain, rtf, html) longer than `bytes` are left unread: plain text then sets
    // `textOverLimit` in the snapshot, rich forms are left out. Nothing: only the reader's own
    // bound applies.
    virtual void setTextLimit(std::optional<std::size_t> bytes) { (void)bytes; }

    virtual bool ownerLeft() { return false; }
    virtual ClipKeepOnQuit keepOnQuit() { return ClipKeepOnQuit::notOffered; }
    virtual void setKeepOnQuitJudge(std::function<bool(std::int64_t changeCount)> judge) {
        (void)judge;
    }
};

// The hint's value when `types` declares it, read through `pasteboard`; nothing otherwise. Lets
// the privacy check run before any contents are read.
inline std::optional<std::string> passwordManagerHint(ClipPasteboard& pasteboard,
                                                      const std::vector<std::string>& types) {
    for (const auto& type : types) {
        if (type == kPasswordManagerHintType) return pasteboard.markerValue(type);
    }
    return std::nullopt;
}

}  // namespace harbex
