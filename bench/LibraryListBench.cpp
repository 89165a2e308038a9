// The library window over 10,000 copies of the synthetic history: one scroll step of the list
// and of the grid (layout and painting of the rows that come into view, offscreen), and taking
// a new state of the grouped rows into the list model (what every change of the history costs
// the view). A frame well under 16 ms is what "scrolls smoothly" means here.
#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <QScrollBar>

#include <memory>

#include "HarbexClip/Views/LibraryListModel.hpp"
#include "HarbexClip/Views/LibraryWindow.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"
#include "bench/Support/SyntheticHistory.hpp"
#include "tests/Support/OffscreenApplication.hpp"

namespace harbex {
namespace {

constexpr std::size_t kCopies = 10000;

struct Library {
    Library() {
        testing::offscreenApplication();
        rig.seed(bench::makeSyntheticHistory(kCopies).items);
        window = std::make_unique<LibraryWindow>(LibraryWindowServices{
            .engine = engine,
            .now = nowFunction(clock),
            .calendar = Calendar(),
            .readImage = [](const ClipImageInfo&) { return std::optional<Bytes>{}; },
            .storeImage = [](const ClipExportImage&) { return false; },
            .clearHistory = {},
            .readThumbnail = {},
            .desktopEntry = {},
            .defaults = nullptr,
        });
        window->resize(1180, 760);
        window->show();
        QCoreApplication::processEvents();
    }

    testing::EngineRig rig{testing::EngineRigOptions{.withStore = false,
                                                     .zone = "Europe/London",
                                                     .now = Date{760000000},
                                                     .keepsEverything = true}};
    FixedClock& clock = rig.clock;
    ManualScheduler& scheduler = rig.scheduler;
    ClipEngine& engine = rig.start();
    std::unique_ptr<LibraryWindow> window;
};

Library& library() {
    static Library* shared = new Library();
    return *shared;
}

void scrollFrame(benchmark::State& state, bool grid) {
    Library& lib = library();
    lib.window->model().setShowsGrid(grid);
    QListView* list = lib.window->list();
    QCoreApplication::processEvents();
    QScrollBar* bar = list->verticalScrollBar();
    QImage frame(list->viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    int value = 0;
    for (auto _ : state) {
        value = (value + 3 * bar->singleStep()) % std::max(1, bar->maximum());
        bar->setValue(value);
        QPainter painter(&frame);
        list->viewport()->render(&painter);
    }
    state.counters["rows"] = double(lib.window->listModel()->rowCount());
}

void BM_ListScrollFrame(benchmark::State& state) { scrollFrame(state, false); }
void BM_GridScrollFrame(benchmark::State& state) { scrollFrame(state, true); }

void BM_TakeNewRows(benchmark::State& state) {
    Library& lib = library();
    std::vector<ClipLibraryGroup> groups = lib.window->model().groups();
    LibraryListModel model;
    bool flip = false;
    for (auto _ : state) {
        // Alternate between two states so every round is a real change.
        groups.front().items.front().timesPasted += flip ? 1 : -1;
        flip = !flip;
        benchmark::DoNotOptimize(model.setGroups(groups, {}));
    }
}

BENCHMARK(BM_ListScrollFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GridScrollFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TakeNewRows)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace harbex
