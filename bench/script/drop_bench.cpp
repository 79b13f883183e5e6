// A drop on a script of 10,000 lines in 500 animations, through the script panel's views as
// the user meets them: from the drop event on the tree to the new line made, recorded for
// undo and shown. Target: under 5 ms.
#include "controls/node_ref.h"
#include "controls/tree_control_view.h"
#include "quiet_script_host.h"
#include "script/script_model.h"
#include "script/script_panel.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>

#include <benchmark/benchmark.h>

using namespace vessa;
using vessa::bench::QuietHost;

namespace {

// 500 animations of 20 lines each, the last one open and in view, and an object to drag.
struct BigPanel {
    QuietHost host;
    ScriptModel script{host};
    ScriptPanel panel{script};
    TreeControl objects;
    QMimeData carried;

    BigPanel() {
        TreeControl& tree = script.TreeView1();
        for (int animation = 1; animation <= 500; ++animation) {
            TreeNode* root = animation == 1 ? tree.FirstRoot() : script.AddNewAnimation();
            // Each line different, as no cache of measured lines would find it.
            for (int line = 0; line < 20; ++line)
                tree.Add(root, Relation::Child, "",
                         (line % 2 ? QStringLiteral("Bunny.Move(Forward, %1, Duration=2, more...)")
                                   : QStringLiteral("Camera.Turn(Left, %1, more...)"))
                             .arg(animation * 20 + line));
        }
        TreeNode* last = tree.FirstRoot()->LastSibling();
        tree.SetExpanded(last, true);
        script.setDragSource(objects, DragSource::Object);
        objects.SetTag(objects.AddRoot("k1", "Bunny"), "Bunny");
        carried.setData(QString::fromLatin1(NodeDragMimeType), "k1");
        panel.resize(600, 700);
        panel.show();
        panel.TreeView1View().scrollToBottom();
        QApplication::processEvents();
    }

    // Low in the row of the tenth line of the last animation, at its level.
    QPoint dropPoint() {
        const QRect rect = panel.TreeView1View().NodeRect(
            script.TreeView1().FirstRoot()->LastSibling()->ChildAt(9));
        return {rect.left() + 4, rect.bottom() - 1};
    }

    void drop(const QPoint& point) {
        QWidget* viewport = panel.TreeView1View().viewport();
        QDragEnterEvent enter(point, Qt::CopyAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &enter);
        QDragMoveEvent move(point, Qt::CopyAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &move);
        QDropEvent dropped(QPointF(point), Qt::CopyAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &dropped);
    }
};

void dropAndUndo(benchmark::State& state, const std::function<NodeRef(BigPanel&)>& dragged) {
    BigPanel big;
    const QPoint point = big.dropPoint();
    TreeNode* last = big.script.TreeView1().FirstRoot()->LastSibling();
    for (auto _ : state) {
        big.script.DragNode = dragged(big);
        big.drop(point);
        state.PauseTiming();
        if (last->Children() != 21) {
            state.SkipWithError("the drop made no line");
            break;
        }
        big.script.UndoFromLog();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}

// An object from the scene's tree: its line, to be followed by its menu.
void BM_DropAnObjectInto10000Lines(benchmark::State& state) {
    dropAndUndo(state,
                [](BigPanel& big) { return NodeRef::To(big.objects, big.objects.FirstRoot()); });
}
BENCHMARK(BM_DropAnObjectInto10000Lines)->Unit(benchmark::kMillisecond);

// A block from the palette.
void BM_DropABlockInto10000Lines(benchmark::State& state) {
    dropAndUndo(state, [](BigPanel& big) {
        return NodeRef::To(big.script.ConstructTree(), big.script.ConstructTree().RootAt(0));
    });
}
BENCHMARK(BM_DropABlockInto10000Lines)->Unit(benchmark::kMillisecond);

} // namespace
