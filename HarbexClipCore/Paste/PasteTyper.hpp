#pragma once

namespace harbex {

// Types the platform's paste keystroke (⌘V, Ctrl+V on Linux) into whatever has the keyboard.
// Main thread. Implementations carry the paste modifier alone, whatever keys are physically held,
// and fail silently: by the time they run the paste has already been reported.
class PasteTyper {
public:
    virtual ~PasteTyper() = default;
    virtual void typePaste() = 0;
};

}  // namespace harbex
