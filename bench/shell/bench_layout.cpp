// Form_Resize of the whole main window: every control placed again for a new size, on
// the opening scene's page and on the animations' page.
#include "shell/main_form_harness.h"

#include "shell/main_form_area.h"

#include <QApplication>
#include <benchmark/benchmark.h>

namespace {

void BM_FormResize(benchmark::State& state) {
    vessa::testing::MainFormHarness h;
    h.form->resize(1280, 800);
    h.form->show();
    h.form->SwitchToTab(static_cast<int>(state.range(0)));
    QApplication::processEvents();
    vessa::MainFormArea& area = h.form->area();
    const QSize sizes[] = {{1180, 720}, {1900, 1040}};
    int turn = 0;
    for (auto _ : state) {
        // A shown widget is told of its new size at once, and lays itself out.
        area.resize(sizes[turn]);
        turn = 1 - turn;
    }
}
BENCHMARK(BM_FormResize)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace
