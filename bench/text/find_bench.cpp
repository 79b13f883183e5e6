// Find of a word through 10,000 script lines in 500 animations, shown in a tree view,
// and through a box of 10,000 lines of code, the word standing only in the last line:
// from the press of Find to the line selected and scrolled into view. Target: under
// 10 ms each.
#include "controls/tree_control_view.h"
#include "quiet_script_host.h"
#include "script/script_model.h"
#include "text/code_text_find.h"
#include "text/script_find.h"

#include <QPlainTextEdit>

#include <benchmark/benchmark.h>

using namespace vessa;

namespace {

void BM_FindInTenThousandScriptLines(benchmark::State& state) {
    bench::QuietHost host;
    ScriptModel script(host);
    script.Initialize();
    bench::fillWithTenThousandLines(script);
    TreeControl& tree = script.TreeView1();
    TreeNode* last = tree.FirstRoot()->LastSibling()->ChildAt(15);
    tree.SetText(last, "Kangaroo.Move(Forward, 1, more...)");
    TreeControlView view(tree);
    view.resize(600, 400);
    view.show();
    ScriptFind find(tree);
    for (auto _ : state) {
        find.restart();
        tree.SetSelectedItem(nullptr);
        if (!find.FindButton_Click(QStringLiteral("kangaroo"), {}) || tree.SelectedItem() != last)
            state.SkipWithError("the line was not found");
    }
}
BENCHMARK(BM_FindInTenThousandScriptLines)->Unit(benchmark::kMillisecond);

void BM_FindInTenThousandLinesOfCode(benchmark::State& state) {
    QString code;
    for (int line = 0; line < 9999; ++line)
        code += QStringLiteral("speed_%1 = Bunny.GetPosition()[1] * 2  # keeps up\n").arg(line);
    code += QStringLiteral("kangaroo = 1\n");
    QPlainTextEdit box;
    box.setPlainText(code);
    box.resize(600, 400);
    box.show();
    const int expected = static_cast<int>(code.lastIndexOf(QStringLiteral("kangaroo")));
    for (auto _ : state) {
        CodeTextFind find;
        QTextCursor cursor = box.textCursor();
        if (!find.ArbitraryCodeBox_FindText(cursor, QStringLiteral("KANGAROO"), {}) ||
            cursor.selectionStart() != expected)
            state.SkipWithError("the word was not found");
        box.setTextCursor(cursor);
        box.ensureCursorVisible();
        box.moveCursor(QTextCursor::Start);
    }
}
BENCHMARK(BM_FindInTenThousandLinesOfCode)->Unit(benchmark::kMillisecond);

} // namespace
