#pragma once

#include <memory>

#include "HarbexClip/App/SoundPlayer.hpp"

namespace harbex {

// Event sounds from the desktop's sound theme through libcanberra, the freedesktop library that
// desktops use for theirs. The library is loaded on the first sound rather than linked, so the
// application starts and runs without it (and without audio): it then plays nothing. Main thread.
class CanberraSoundPlayer final : public SoundPlayer {
public:
    CanberraSoundPlayer();
    ~CanberraSoundPlayer() override;
    CanberraSoundPlayer(const CanberraSoundPlayer&) = delete;
    CanberraSoundPlayer& operator=(const CanberraSoundPlayer&) = delete;

    // Asks the sound server to play the theme's sound for `event` and returns at once.
    void play(SoundEvent event) override;

    // The sound-theme name of an event; a theme that lacks it falls back to the name's shorter
    // forms ("complete-copy", then "complete").
    static const char* eventID(SoundEvent event);

private:
    struct Canberra;
    // Loads the library and opens a context once; false when either is not possible.
    bool ensureLoaded();

    std::unique_ptr<Canberra> canberra_;
    bool triedLoading_ = false;
};

}  // namespace harbex
