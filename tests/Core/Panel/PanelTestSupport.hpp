#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <memory>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Panel/ClipPanelModel.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"
#include "HarbexClipCore/Testing/FixedClock.hpp"
#include "HarbexClipCore/Testing/ManualScheduler.hpp"

namespace harbex::paneltest {

// Thursday 14 March 2024, 14:30 in London (GMT, before the clocks change); the en_GB week
// started on Monday 11 March.
inline const Date kNow = Date::fromUnix(1710426600);
inline Calendar london() { return Calendar("Europe/London", "en_GB"); }

inline ClipItem textItem(std::string text, Date date, std::string app = "org.gnome.TextEditor") {
    ClipContent content;
    content.text = std::move(text);
    return ClipItem::make(content, {}, ClipSource{app, "Text Editor"}, date,
                          ClipSensitivity::ordinary);
}

inline ClipItem kindItem(ClipKind kind, std::string text, Date date) {
    ClipContent content;
    content.kind = kind;
    switch (kind) {
        case ClipKind::file:
            content.filePaths = std::vector<std::string>{"/home/ada/" + text};
            break;
        case ClipKind::image:
            content.image = ClipImageInfo{"public.png", 640, 480, 120'000, "d1g3st"};
            break;
        case ClipKind::color:
            content.text = text;
            content.colorHex = text;
            break;
        case ClipKind::richText:
            content.text = text;
            content.rtf = Bytes{'{', '\\', 'r', 't', 'f', '1', '}'};
            break;
        default: content.text = text; break;
    }
    return ClipItem::make(content, {}, ClipSource{"firefox", "Firefox"}, date,
                          ClipSensitivity::ordinary);
}

inline const ClipTargetApp kEditor{4242, "org.gnome.TextEditor", "Text Editor"};

inline testing::EngineRigOptions panelRigOptions() {
    testing::EngineRigOptions options;
    options.withStore = false;
    options.zone = "Europe/London";
    options.now = kNow;
    return options;
}

// A panel model over the engine on in-memory seams at a fixed time, opened for the text editor.
class PanelModelFixture : public ::testing::Test {
protected:
    PanelModelFixture()
        : rig(panelRigOptions()),
          clock(rig.clock),
          scheduler(rig.scheduler),
          engine(&rig.start()) {}

    void start(std::vector<ClipItem> items, const std::vector<Uuid>& pinned = {}) {
        rig.seed(std::move(items), pinned);
        ClipPanelModel::Options options;
        options.calendar = london();
        options.locale = "en_GB";
        model = std::make_unique<ClipPanelModel>(*engine, nowFunction(clock),
                                                 scheduleFunction(scheduler), options);
        model->open(kEditor);
    }

    testing::EngineRig rig;
    FixedClock& clock;
    ManualScheduler& scheduler;
    ClipEngine* engine;
    std::unique_ptr<ClipPanelModel> model;
};

}  // namespace harbex::paneltest
