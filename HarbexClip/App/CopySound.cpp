#include "HarbexClip/App/CopySound.hpp"

namespace harbex {

CopySound::CopySound(ClipEngine& engine, SoundPlayer& player) : engine_(engine), player_(player) {
    captureWatch_ = engine_.captured().subscribe([this](std::uint64_t) { copyKept(); });
}

void CopySound::copyKept() {
    if (!engine_.settings()->window.soundOnCopy) return;
    // A copy kept on purpose during a pause stays quiet like the copies the pause refuses.
    if (engine_.isPaused()) return;
    player_.play(SoundEvent::copyKept);
}

}  // namespace harbex
