#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "HarbexClipCore/Paste/ClipFrontmost.hpp"

namespace harbex {

// A window system in memory: which application is in front, which processes run, whether this
// application is active and shows a window. `bringForward` makes this application active and
// frontmost, as the real one eventually does; `activateOther` plays another application taking
// the front. Every call that changes or asks about the front is counted.
class MemoryFrontmost final : public ClipFrontmost {
public:
    explicit MemoryFrontmost(std::int32_t ownPid = 100)
        : own(ClipTargetApp{ownPid, "app.harbexapps.clip", "Harbex Clipboard"}) {
        running.insert(ownPid);
    }

    std::optional<ClipTargetApp> frontApp() override { return front; }
    std::int32_t ownPid() override { return own.pid; }
    bool isActive() override { return active; }
    bool hasVisibleWindow() override { return visibleWindow; }
    void bringForward() override {
        ++bringForwardCount;
        active = true;
        front = own;
    }
    bool isRunning(const ClipTargetApp& target) override { return running.contains(target.pid); }
    std::optional<ClipTargetApp> fallbackApp() override {
        ++fallbackQueries;
        return fallback;
    }

    // Another application comes to the front (and keeps running).
    void activateOther(const ClipTargetApp& app) {
        running.insert(app.pid);
        front = app;
        active = false;
    }
    // A process ends; it no longer runs, and leaves the front empty if it held it.
    void terminate(const ClipTargetApp& app) {
        running.erase(app.pid);
        if (front && front->pid == app.pid) front.reset();
    }

    ClipTargetApp own;
    std::optional<ClipTargetApp> front;
    bool active = false;
    bool visibleWindow = false;
    std::set<std::int32_t> running;
    std::optional<ClipTargetApp> fallback;
    int bringForwardCount = 0;
    int fallbackQueries = 0;
};

}  // namespace harbex
