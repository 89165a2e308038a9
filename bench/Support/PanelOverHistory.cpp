#include "bench/Support/PanelOverHistory.hpp"

#include "bench/Support/SyntheticHistory.hpp"

namespace harbex::bench {

PanelOverHistory::PanelOverHistory(std::size_t count)
    : rig(testing::EngineRigOptions{.withStore = false,
                                    .zone = "Europe/London",
                                    .now = Date::fromUnix(1710426600),
                                    .keepsEverything = true}),
      engine(rig.start()) {
    rig.seed(makeSyntheticHistory(count).items);
    ClipPanelModel::Options options;
    options.calendar = Calendar("Europe/London", "en_GB");
    model = std::make_unique<ClipPanelModel>(engine, nowFunction(rig.clock),
                                             scheduleFunction(rig.scheduler), options);
    model->open(ClipTargetApp{1, "org.gnome.TextEditor", "Text Editor"});
}

}  // namespace harbex::bench
