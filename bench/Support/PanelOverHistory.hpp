#pragma once

#include <cstddef>
#include <memory>

#include "HarbexClipCore/Panel/ClipPanelModel.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"

namespace harbex::bench {

// The panel model over the engine holding `count` copies of the synthetic history (every one
// kept, whatever its age), at a fixed moment in London, opened for the text editor.
struct PanelOverHistory {
    explicit PanelOverHistory(std::size_t count);

    testing::EngineRig rig;
    ClipEngine& engine;
    std::unique_ptr<ClipPanelModel> model;
};

}  // namespace harbex::bench
