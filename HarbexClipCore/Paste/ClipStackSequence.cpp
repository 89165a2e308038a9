#include "HarbexClipCore/Paste/ClipStackSequence.hpp"

#include "HarbexClipCore/Settings/ClipShortcut.hpp"

namespace harbex {

namespace {
constexpr std::uint32_t kKeyCodeV = 9;
}

std::string pasteKeys(ClipKeyVocabulary vocabulary) {
    return displayForm(kKeyCodeV, ClipShortcut::Modifiers::command, vocabulary);
}

std::optional<Uuid> ClipStackSequence::current() const {
    if (isFinished()) return std::nullopt;
    return ids[next];
}

void ClipStackSequence::advance() {
    if (isFinished()) return;
    ++next;
    isWaiting = false;
    waitingCount.reset();
}

void ClipStackSequence::wait(std::int64_t changeCount) {
    if (isFinished()) return;
    isWaiting = true;
    waitingCount = changeCount;
}

void ClipStackSequence::skip(const std::function<bool(const Uuid&)>& isUsable) {
    while (!isFinished() && !isUsable(ids[next])) advance();
}

std::string ClipStackSequence::notice(ClipKeyVocabulary vocabulary) const {
    const std::string keys = pasteKeys(vocabulary);
    if (next + 1 >= ids.size()) return "Copied the last one, press " + keys;
    return "Copied " + std::to_string(position()) + " of " + std::to_string(count()) + ", press " +
           keys + ". Open the panel again for the next.";
}

}  // namespace harbex
