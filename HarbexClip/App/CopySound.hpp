#pragma once

#include "HarbexClip/App/SoundPlayer.hpp"
#include "HarbexClipCore/Engine/ClipEngine.hpp"

namespace harbex {

// The sound on a copy: each copy the engine keeps from the pasteboard plays the copy sound,
// while the `soundOnCopy` setting is on and saving is not paused. Copies refused by the capture
// rules keep nothing and so play nothing. Main thread; `engine` and `player` must outlive it.
class CopySound {
public:
    CopySound(ClipEngine& engine, SoundPlayer& player);
    CopySound(const CopySound&) = delete;
    CopySound& operator=(const CopySound&) = delete;

private:
    void copyKept();

    ClipEngine& engine_;
    SoundPlayer& player_;
    Subscription captureWatch_;
};

}  // namespace harbex
