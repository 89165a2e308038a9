#pragma once

namespace harbex {

// The short sounds the application gives as feedback.
enum class SoundEvent {
    copyKept,  // a copy was saved to the history
};

// Plays event sounds through the desktop. Playing never blocks for the length of the sound and
// never fails loudly: a desktop without sound simply stays quiet. Main thread.
class SoundPlayer {
public:
    virtual ~SoundPlayer() = default;
    virtual void play(SoundEvent event) = 0;
};

}  // namespace harbex
