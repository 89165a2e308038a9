#pragma once

#include <cstdint>
#include <optional>

#include "HarbexClipCore/Paste/ClipTargetApp.hpp"

namespace harbex {

// What the panel's focus keeper asks of the window system. Main thread; every query is cheap
// enough to call on each panel opening.
class ClipFrontmost {
public:
    virtual ~ClipFrontmost() = default;

    // The application in front, or nothing when no application has the front.
    virtual std::optional<ClipTargetApp> frontApp() = 0;
    // This process's identifier.
    virtual std::int32_t ownPid() = 0;
    // Whether this application has the front.
    virtual bool isActive() = 0;
    // Whether this application shows a window of its own (the library or settings window).
    virtual bool hasVisibleWindow() = 0;
    // Asks for this application to come to the front, taking it from whoever holds it.
    virtual void bringForward() = 0;
    // Whether a process with the target's identifier still exists.
    virtual bool isRunning(const ClipTargetApp& target) = 0;
    // The application to give the front to when there is no previous one: the topmost normal
    // window of another process, else the file manager; nothing when neither exists.
    virtual std::optional<ClipTargetApp> fallbackApp() = 0;
};

}  // namespace harbex
