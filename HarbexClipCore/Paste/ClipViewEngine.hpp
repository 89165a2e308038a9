#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Model/ClipPins.hpp"
#include "HarbexClipCore/Paste/ClipPaster.hpp"
#include "HarbexClipCore/Paste/ClipTargetApp.hpp"
#include "HarbexClipCore/Settings/ClipSettings.hpp"
#include "HarbexClipCore/Support/Observable.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

// How a copy goes back: with its formatting, or as plain text. Absent means the setting
// `pastesPlainByDefault` decides.
enum class ClipPasteForm { rich, plain };

// What the views of the history (the quick panel, and the library beyond it) need of the clip
// engine: its published state and the ways of giving a copy back. It sits below both views so
// that neither reaches into the other. The engine owns the history; a view only observes it and
// asks. Every operation changes the published state before it returns, so observers see the
// result at once. Thread: main.
class ClipViewEngine {
public:
    virtual ~ClipViewEngine() = default;

    // The copies, newest first.
    virtual Observable<std::vector<ClipItem>>& history() = 0;
    // The pinned copies, in the user's order (pins made in the sibling application included).
    virtual Observable<std::vector<ClipItem>>& pins() = 0;
    virtual Observable<std::vector<Pinboard>>& pinboards() = 0;
    virtual Observable<ClipSettings>& settings() = 0;
    // The message shown at the top while something is wrong.
    virtual Observable<std::optional<std::string>>& problem() = 0;

    // Puts `item` on the pasteboard and types it into `target` (see ClipPaster). The history's
    // own copy is used when it still exists; a copy no longer in the history or the pins gives
    // `failed` and changes nothing.
    virtual PasteResult paste(const ClipItem& item, std::optional<ClipPasteForm> form,
                              const std::optional<ClipTargetApp>& target) = 0;
    // Pastes a text made by the panel (a joined paste stack, a transformed text) as plain text.
    virtual PasteResult pasteText(const std::string& text,
                                  const std::optional<ClipTargetApp>& target) = 0;
    // Puts `item` on the pasteboard only: `copied`, or `failed` when it is gone or empty.
    virtual PasteResult copy(const ClipItem& item) = 0;
    // The pasteboard's change count now.
    virtual std::int64_t changeCount() = 0;

    // Forgets the copy (history, pinboards and pin). Returns whether it was there.
    virtual bool remove(const Uuid& id) = 0;
    virtual ClipPinsStatus pin(const Uuid& id) = 0;
    virtual ClipPinsStatus unpin(const Uuid& id) = 0;
    // Returns whether the board and the copy were found.
    virtual bool addToPinboard(const Uuid& board, const Uuid& item) = 0;
    // Keeps `text` as a new copy at the top of the history (the source application of `from`
    // carries over); returns it, or nothing when the history is closed.
    virtual std::optional<ClipItem> addText(const std::string& text, const ClipItem& from) = 0;
};

}  // namespace harbex
