#include <gtest/gtest.h>

#include "HarbexClipCore/Panel/ClipPanelModel.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"

namespace harbex {
namespace {

using testing::EngineRig;

// The quick panel's model running on the real engine rather than its in-memory stand-in.
TEST(ClipEnginePanelTests, ThePanelPastesAndForgetsThroughTheEngine) {
    EngineRig rig;
    ClipEngine& engine = rig.start();
    engine.sample();
    rig.copyAndSample("alpha notes");
    rig.clock.advance(5);
    rig.copyAndSample("beta notes");

    ClipPanelModel panel(engine, nowFunction(rig.clock), scheduleFunction(rig.scheduler));
    panel.open(ClipTargetApp{7, "org.example.mail", "Mail"});
    panel.setQuery("alpha");
    ASSERT_EQ(panel.results().size(), 1u);
    EXPECT_EQ(panel.handle(ClipPanelKey::Kind::returnKey), ClipPanelModel::Effect::pasted);

    EXPECT_EQ(rig.pasteboard.contents(kPlainTextType), bytesOf("alpha notes"));
    const ClipItem& top = engine.history()->front();
    EXPECT_EQ(top.text, "alpha notes");
    EXPECT_EQ(top.timesPasted, 1);
    engine.sample();  // the paste is not captured again
    EXPECT_EQ(rig.texts(), (std::vector<std::string>{"alpha notes", "beta notes"}));

    panel.open(std::nullopt);
    panel.setQuery("beta");
    ASSERT_EQ(panel.results().size(), 1u);
    panel.handle(ClipPanelKey::Kind::commandDelete);
    EXPECT_EQ(rig.texts(), std::vector<std::string>{"alpha notes"});
    rig.scheduler.advance(1);
    EXPECT_EQ(rig.libraryOnDisk().items.size(), 1u);
}

}  // namespace
}  // namespace harbex
