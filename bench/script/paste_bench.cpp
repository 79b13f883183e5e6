// Paste of an animation of 1,000 lines into a script of 10,000 lines in 500 animations,
// shown by the script panel's views: from the command to the new animation made, named,
// recorded as one step of undo and shown. Target: under 50 ms.
#include "controls/tree_control_view.h"
#include "quiet_script_host.h"
#include "script/script_clipboard.h"
#include "script/script_lines_text.h"
#include "script/script_model.h"
#include "script/script_panel.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <functional>

using namespace vessa;
using vessa::bench::QuietHost;

namespace {

// The big script, and Hop: 1,000 different lines, every tenth a block with a line in it.
struct BigScript {
    QuietHost host;
    ScriptModel script{host};
    ScriptPanel panel{script};
    ScriptClipboard clipboard{script};
    TreeNode* hop = nullptr;

    BigScript() {
        TreeControl& tree = script.TreeView1();
        for (int animation = 1; animation <= 500; ++animation) {
            TreeNode* root = animation == 1 ? tree.FirstRoot() : script.AddNewAnimation();
            for (int line = 0; line < 20; ++line)
                tree.Add(
                    root, Relation::Child, "",
                    QStringLiteral("Bunny.Move(Forward, %1, more...)").arg(animation * 20 + line));
        }
        hop = tree.AddRoot("hop", "Hop = DoInOrder");
        for (int line = 0; line < 909; ++line) {
            TreeNode* node = tree.Add(
                hop, Relation::Child, "",
                line % 10 ? QStringLiteral("Bunny.Turn(Left, %1, Duration=2, more...)").arg(line)
                          : QStringLiteral("DoTogether"));
            if (line % 10 == 0)
                tree.Add(node, Relation::Child, "",
                         QStringLiteral("Camera.Move(Up, %1, more...)").arg(line));
        }
        tree.SetExpanded(hop, true);
        panel.resize(600, 700);
        panel.show();
        QApplication::processEvents();
    }
};

int countNodes(const TreeNode* node) {
    int count = 1;
    for (const TreeNode* child = node->Child(); child; child = child->Next())
        count += countNodes(child);
    return count;
}

void pasteAndUndo(benchmark::State& state, const std::function<TreeNode*(BigScript&)>& paste) {
    BigScript big;
    big.clipboard.Copy(big.hop);
    const int lines = countNodes(big.hop) - 1;
    TreeControl& tree = big.script.TreeView1();
    const auto records = [&big] {
        return static_cast<int>(big.script.TreeUndoRecords().Text().count(u'\n'));
    };
    const int recordsBefore = records();
    for (auto _ : state) {
        tree.SetSelectedItem(nullptr);
        TreeNode* pasted = paste(big);
        state.PauseTiming();
        if (!pasted || countNodes(pasted) - 1 != lines || records() != recordsBefore + 1) {
            state.SkipWithError("the paste was not one step of 1,000 lines");
            break;
        }
        big.script.UndoFromLog();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["lines"] = lines;
}

// Copied in the script: from CopyBuffer.
void BM_PasteAnAnimationOf1000Lines(benchmark::State& state) {
    pasteAndUndo(state, [](BigScript& big) { return big.clipboard.Paste(); });
}
BENCHMARK(BM_PasteAnAnimationOf1000Lines)->Unit(benchmark::kMillisecond);

// The same animation as text from another program: every line read and checked first.
void BM_PasteAnAnimationOf1000LinesAsText(benchmark::State& state) {
    QString text;
    pasteAndUndo(state, [&text](BigScript& big) -> TreeNode* {
        if (text.isEmpty())
            text = ScriptLinesText(big.hop);
        if (!big.clipboard.PasteText(text).isEmpty())
            return nullptr;
        return big.script.TreeView1().FirstRoot()->LastSibling();
    });
}
BENCHMARK(BM_PasteAnAnimationOf1000LinesAsText)->Unit(benchmark::kMillisecond);

} // namespace
