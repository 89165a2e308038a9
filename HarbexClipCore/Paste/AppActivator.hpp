#pragma once

#include "HarbexClipCore/Paste/ClipTargetApp.hpp"

namespace harbex {

// Brings another application to the front. Main thread.
class AppActivator {
public:
    virtual ~AppActivator() = default;
    // True when `target` was found running and activation was requested; the switch itself
    // happens asynchronously, which is why the paste keystroke waits a little.
    virtual bool activate(const ClipTargetApp& target) = 0;
};

}  // namespace harbex
