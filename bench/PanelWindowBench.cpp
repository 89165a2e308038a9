// The quick panel window over the synthetic history: from the shortcut's call to `present()` to
// the first screen of rows painted (the model opens, the list adapter resets, the batched layout
// places the first rows, the delegate paints them), and one Down key with its repaint. Runs on
// the offscreen platform, so the figures hold without a display; the application's target is
// under 50 ms from shortcut to shown at 10,000 copies.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QPainter>

#include <memory>

#include "HarbexClip/Views/ClipPanel.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"
#include "HarbexClipCore/Testing/MemoryFrontmost.hpp"
#include "HarbexClipCore/Testing/RecordingActivator.hpp"
#include "bench/Support/PanelOverHistory.hpp"
#include "tests/Support/OffscreenApplication.hpp"

namespace harbex {
namespace {

struct Window {
    bench::PanelOverHistory history;
    MemoryFrontmost system;
    RecordingActivator activator;
    std::unique_ptr<ClipPanelFocus> focus;
    std::unique_ptr<ClipPanel> panel;
    QImage canvas;

    explicit Window(std::size_t count) : history(count) {
        testing::offscreenApplication();
        system.activateOther(ClipTargetApp{1, "org.gnome.TextEditor", "Text Editor"});
        focus = std::make_unique<ClipPanelFocus>(system, activator, kPanelFocusSettle,
                                                 scheduleFunction(history.rig.scheduler));
        panel = std::make_unique<ClipPanel>(*history.model, *focus,
                                            [this] { return history.engine.settings().get(); });
    }

    void paint() {
        if (canvas.size() != panel->size()) {
            canvas = QImage(panel->size(), QImage::Format_ARGB32_Premultiplied);
        }
        QPainter painter(&canvas);
        panel->render(&painter);
    }
};

void BM_PanelWindowOpen(benchmark::State& state) {
    Window window(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        window.panel->present();
        window.paint();
        state.PauseTiming();
        window.panel->dismiss(ClipPanelFocus::Close::dismissed);
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["copies"] = static_cast<double>(state.range(0));
}
BENCHMARK(BM_PanelWindowOpen)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_PanelWindowKeyDown(benchmark::State& state) {
    Window window(static_cast<std::size_t>(state.range(0)));
    window.panel->present();
    for (auto _ : state) {
        QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
        QApplication::sendEvent(window.panel->searchField(), &down);
        window.paint();
    }
}
BENCHMARK(BM_PanelWindowKeyDown)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace harbex
