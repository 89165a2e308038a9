#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "HarbexClipCore/Library/ClipLibraryViewModel.hpp"
#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"
#include "tests/Core/Panel/PanelTestSupport.hpp"

namespace harbex::librarytest {

// The panel tests' moment and place: Thursday 14 March 2024, 14:30 in London.
using paneltest::kNow;
using paneltest::london;

inline ClipItem textItem(std::string text, Date date, std::string app = "org.gnome.TextEditor",
                         std::string appName = "Text Editor") {
    ClipContent content;
    content.text = std::move(text);
    return ClipItem::make(content, {}, ClipSource{app, appName}, date, ClipSensitivity::ordinary);
}

inline ClipItem imageItem(std::string digest, Date date, std::int64_t bytes = 1000) {
    ClipContent content;
    content.kind = ClipKind::image;
    content.image = ClipImageInfo{"public.png", 10, 10, bytes, std::move(digest)};
    return ClipItem::make(content, {}, ClipSource{"org.gnome.Screenshot", "Screenshot"}, date,
                          ClipSensitivity::ordinary);
}

// The engine on in-memory seams (nothing saved) at a fixed time in London.
class EngineAtNow {
public:
    EngineAtNow()
        : rig(paneltest::panelRigOptions()),
          clock(rig.clock),
          scheduler(rig.scheduler),
          engine(rig.start()) {}
    // Opens the history with `items` (newest first), pinning `pinned` among them.
    ClipEngine& seed(std::vector<ClipItem> items, const std::vector<Uuid>& pinned = {}) {
        return rig.seed(std::move(items), pinned);
    }

    testing::EngineRig rig;
    FixedClock& clock;
    ManualScheduler& scheduler;
    ClipEngine& engine;
};

// A library view model over that engine.
class LibraryFixture : public ::testing::Test, protected EngineAtNow {
protected:
    void start(std::vector<ClipItem> items, const std::vector<Uuid>& pinned = {}) {
        seed(std::move(items), pinned);
        model = std::make_unique<ClipLibraryViewModel>(engine, nowFunction(clock), london());
    }

    std::unique_ptr<ClipLibraryViewModel> model;
};

}  // namespace harbex::librarytest
