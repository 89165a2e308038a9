#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

// The running one-per-paste sequence: each copy of the stack is put on the pasteboard in turn
// and waits for the person's own paste keystroke. A value; main thread.
struct ClipStackSequence {
    std::vector<Uuid> ids;                     // in paste order
    std::size_t next = 0;                      // index of the copy to give out next
    bool isWaiting = false;                    // a copy is on the pasteboard, waiting to be pasted
    std::optional<std::int64_t> waitingCount;  // the change count of that write

    ClipStackSequence() = default;
    explicit ClipStackSequence(std::vector<Uuid> ids) : ids(std::move(ids)) {}

    bool isFinished() const { return next >= ids.size(); }
    // The copy to give out now, or nothing when finished.
    std::optional<Uuid> current() const;
    // The 1-based position shown to the person, never beyond the total.
    std::size_t position() const { return std::min(ids.size(), next + 1); }
    std::size_t count() const { return ids.size(); }
    // Whether the current copy is the last one.
    bool isAtLast() const { return !ids.empty() && next + 1 == ids.size(); }

    // Moves to the next copy and stops waiting. Does nothing once finished.
    void advance();
    // Records that the current copy was written with `changeCount`. Does nothing once finished.
    void wait(std::int64_t changeCount);
    // Steps over copies from `next` until one for which `isUsable` holds (copies deleted since
    // they were stacked, for instance), stopping there, or runs to the end.
    void skip(const std::function<bool(const Uuid&)>& isUsable);

    // What the panel shows once the current copy is on the pasteboard:
    // "Copied 2 of 5, press ⌘V. Open the panel again for the next." or, for the last copy,
    // "Copied the last one, press ⌘V" (Ctrl+V in the Linux vocabulary).
    std::string notice(ClipKeyVocabulary vocabulary) const;

    friend bool operator==(const ClipStackSequence&, const ClipStackSequence&) = default;
};

// "⌘V" or "Ctrl+V": the paste keys in a platform's words.
std::string pasteKeys(ClipKeyVocabulary vocabulary);

}  // namespace harbex
