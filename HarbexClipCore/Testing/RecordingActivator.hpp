#pragma once

#include <functional>
#include <string>
#include <vector>

#include "HarbexClipCore/Paste/AppActivator.hpp"

namespace harbex {

// Records every activation request and answers `result`. `onActivate` lets a test play the
// window manager (for instance, move the front to the target); `journal` receives
// "activate:<pid>" for order checks across doubles.
class RecordingActivator final : public AppActivator {
public:
    bool activate(const ClipTargetApp& target) override {
        requests.push_back(target);
        if (journal) journal->push_back("activate:" + std::to_string(target.pid));
        if (result && onActivate) onActivate(target);
        return result;
    }

    bool result = true;
    std::vector<ClipTargetApp> requests;
    std::function<void(const ClipTargetApp&)> onActivate;
    std::vector<std::string>* journal = nullptr;
};

}  // namespace harbex
