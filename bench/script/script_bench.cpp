// The script at a hundred times the size people make by hand: 10,000 lines in 500
// animations. Targets: ParseString plus UpdateNode of one line under 5 us; UndoLog and
// UndoFromLog of one change under 1 ms each; TraverseTreeReplaceString over the whole
// tree under 10 ms; RichCharNumOver for one click under 1 ms; a right click on an object
// to its menu shown under 50 ms.
#include "base/run_time_error.h"
#include "controls/tree_item_model.h"
#include "quiet_script_host.h"
#include "script/script_clicks.h"
#include "script/script_menus_view.h"
#include "script/script_model.h"
#include "script/tree_walks.h"

#include <QApplication>
#include <QFontMetrics>

#include <benchmark/benchmark.h>

#include <memory>

using namespace vessa;
using vessa::bench::QuietHost;

namespace {

// The big script, shown through a Qt item model as in the program.
struct BigScript {
    QuietHost host;
    ScriptModel script{host};
    TreeItemModel shown{script.TreeView1()};

    BigScript() { vessa::bench::fillWithTenThousandLines(script); }

    TreeNode* LastLine() { return script.TreeView1().FirstRoot()->LastSibling()->ChildAt(15); }
};

BigScript& Big() {
    static BigScript big;
    return big;
}

void BM_ParseStringAndUpdateNode(benchmark::State& state) {
    BigScript& big = Big();
    TreeNode* line = big.LastLine();
    const QString original = line->Text();
    for (auto _ : state) {
        // A click on "Forward", then the value chosen from its menu.
        ParseString(big.script.Parse(), line->Text(), 14);
        big.script.UpdateNode(line, state.iterations() % 2 ? "Back" : "Forward");
    }
    big.script.TreeView1().SetText(line, original);
}
// Each update is recorded for undo: a fixed count keeps the log to a size people reach.
BENCHMARK(BM_ParseStringAndUpdateNode)->Iterations(20000)->Unit(benchmark::kMicrosecond);

void BM_UndoLogOfAChange(benchmark::State& state) {
    BigScript& big = Big();
    TreeNode* line = big.LastLine();
    for (auto _ : state)
        big.script.UndoLog(UndoOperation::Changed, line);
    for (int undo = 0; undo < state.iterations(); ++undo)
        big.script.UndoFromLog();
}
BENCHMARK(BM_UndoLogOfAChange)->Iterations(5000)->Unit(benchmark::kMicrosecond);

void BM_UndoFromLogOfAChange(benchmark::State& state) {
    BigScript& big = Big();
    TreeNode* line = big.LastLine();
    for (auto _ : state) {
        state.PauseTiming();
        big.script.UndoLog(UndoOperation::Changed, line);
        big.script.TreeView1().SetText(line, "Bunny.Move(Back, 1, more...)");
        state.ResumeTiming();
        big.script.UndoFromLog();
    }
}
BENCHMARK(BM_UndoFromLogOfAChange)->Iterations(5000)->Unit(benchmark::kMicrosecond);

// The largest single change: a whole animation deleted, as the Delete command does it,
// and brought back.
void BM_UndoLogAndUndoFromLogOfADeletedAnimation(benchmark::State& state) {
    BigScript& big = Big();
    TreeControl& tree = big.script.TreeView1();
    for (auto _ : state) {
        TreeNode* last = tree.FirstRoot()->LastSibling();
        big.script.AnimationNames().Remove(AnimationName(last->Text()));
        big.script.UndoLog(UndoOperation::Removed, last);
        tree.Remove(last->Index());
        big.script.UndoFromLog();
    }
}
BENCHMARK(BM_UndoLogAndUndoFromLogOfADeletedAnimation)->Unit(benchmark::kMicrosecond);

void BM_TraverseTreeReplaceString(benchmark::State& state) {
    BigScript& big = Big();
    bool forth = true;
    for (auto _ : state) {
        TraverseTreeReplaceString(big.script.TreeView1().FirstRoot(), forth ? "Bunny" : "Hare",
                                  forth ? "Hare" : "Bunny");
        forth = !forth;
    }
}
BENCHMARK(BM_TraverseTreeReplaceString)->Unit(benchmark::kMillisecond);

void BM_RichCharNumOver(benchmark::State& state) {
    const QFont font("DejaVu Sans", 10);
    const QString text = "Bunny.Move(Forward, 1, Duration=2, Style=abruptly, more...)";
    const QRect rect(60, 0, QFontMetrics(font).horizontalAdvance(text), 20);
    const QPoint click(rect.left() + rect.width() * 2 / 3, 10);
    for (auto _ : state)
        benchmark::DoNotOptimize(RichCharNumOver(text, font, rect, click));
}
BENCHMARK(BM_RichCharNumOver)->Unit(benchmark::kMicrosecond);

int rowsIn(const QMenu& menu) {
    int rows = 0;
    for (const QAction* row : menu.actions())
        rows += row->menu() ? 1 + rowsIn(*row->menu()) : 1;
    return rows;
}

// The object's menu asked for as a right click on the object asks for it, until it is
// drawn on the screen: its commands with their values and the rows that act on the object.
void BM_ObjectMenuShown(benchmark::State& state) {
    BigScript& big = Big();
    QWidget window;
    window.resize(600, 800);
    window.show();
    ScriptMenusView menus(
        big.script, window, [](const ScriptRequest&) {}, &window);
    ScriptRequest rightClick;
    rightClick.What = ScriptRequest::Kind::ObjectMenu;
    rightClick.Value = QStringLiteral("Bunny");
    rightClick.ScreenPoint = QPoint(100, 100);
    int rows = 0;
    for (auto _ : state) {
        big.script.requests().route(rightClick);
        QApplication::processEvents();
        state.PauseTiming();
        rows = rowsIn(*menus.openMenu());
        menus.openMenu()->close();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["rows"] = rows;
}
BENCHMARK(BM_ObjectMenuShown)->Unit(benchmark::kMillisecond);

} // namespace
