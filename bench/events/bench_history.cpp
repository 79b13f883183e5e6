// Undo and redo of one change, with 10,000 script lines in 500 animations and 1,000
// event rows shown through Qt item models as in the program. Target: each under 1 ms.
// An iteration is one undo and one redo, so the pair is held to the target of one.
#include "controls/list_item_model.h"
#include "controls/tree_item_model.h"
#include "events/event_list.h"
#include "events/event_menus.h"
#include "script/script_host.h"
#include "script/script_line.h"
#include "script/script_model.h"

#include <benchmark/benchmark.h>

using namespace vessa;

namespace {

// The open world's part in the logs: the script's undo and redo carry the rows.
class LinkedHost : public ScriptHost {
public:
    void scriptModified() override {}
    void LVUndoFromLog() override { events->LVUndoFromLog(events->TreeListUndoLog()); }
    void LVRedoFromLog() override { events->LVRedoFromLog(events->TreeListUndoLog()); }
    int ReplaceInListView(const QString& oldName, const QString& newName) override {
        return events->ReplaceInListView(oldName, newName);
    }
    bool FindInListView(const QString& name) override { return events->FindInListView(name); }
    int RemoveFromListView(const QString& name) override {
        return events->RemoveFromListView(name);
    }
    void ReportError(const RunTimeError&) override {}
    const TreeControl& sceneObjects() override { return objects; }
    QStringList sceneSounds() override { return {}; }
    bool openingSceneShown() override { return false; }
    QVariantList objectMenuFacts(const QString&) override { return {}; }
    void runTool(const QString&, const QString&) override {}
    bool isValidObjectName(const QString&) override { return true; }

    EventList* events = nullptr;
    TreeControl objects;
};

struct BigWorld {
    LinkedHost host;
    ScriptModel script{host};
    EventList events{script};
    EventMenus menus{events};
    TreeItemModel shownTree{script.TreeView1()};
    ListItemModel shownRows{events.ListView1()};

    BigWorld() {
        host.events = &events;
        TreeControl& tree = script.TreeView1();
        for (int animation = 1; animation <= 500; ++animation) {
            TreeNode* root = animation == 1 ? tree.FirstRoot() : script.AddNewAnimation();
            tree.SetExpanded(root, true);
            for (int line = 0; line < 16; ++line)
                tree.Add(root, Relation::Child, QString(),
                         line % 2 ? "Bunny.Move(Forward, 1, Duration=2, Style=abruptly, more...)"
                                  : "Camera.Turn(Left, 1/4, AsSeenBy=Bunny, more...)");
            TreeNode* block = tree.Add(root, Relation::Child, QString(), "Wave : DoTogether");
            for (int line = 0; line < 4; ++line)
                tree.Add(block, Relation::Child, QString(), "Bunny.Head.Roll(Left, 1/8, more...)");
        }
        const QString whens[] = {"LeftMouseButtonDown", R"(KeyDown ("A" key))",
                                 "KeyUp (Left Arrow Key)", "RightMouseButtonUp", "World Start"};
        for (int row = 1; row < 1000; ++row)
            events.addRow(whens[row % 5], row % 2 ? "AnyWhere" : "Bunny",
                          QStringLiteral("Action%1").arg(row % 500 + 1));
    }

    TreeNode* LastAnimation() { return script.TreeView1().FirstRoot()->LastSibling(); }
};

BigWorld& Big() {
    static BigWorld big;
    return big;
}

void undoAndRedoScript(benchmark::State& state, BigWorld& big) {
    if (big.script.TreeUndoRecords().IsEmpty())
        state.SkipWithError("nothing was recorded");
    for (auto _ : state) {
        big.script.UndoFromLog();
        big.script.RedoFromLog();
    }
    big.script.UndoFromLog();
}

// A value of a line in the last animation, changed from its menu.
void BM_UndoRedoOfALineChange(benchmark::State& state) {
    BigWorld& big = Big();
    TreeNode* line = big.LastAnimation()->ChildAt(15);
    big.script.UndoLog(UndoOperation::Changed, line);
    big.script.TreeView1().SetText(line, "Bunny.Move(Back, 1, more...)");
    undoAndRedoScript(state, big);
}
BENCHMARK(BM_UndoRedoOfALineChange)->Unit(benchmark::kMicrosecond);

// The last animation renamed: its two rows follow, and come back with it.
void BM_UndoRedoOfAnAnimationRenamedWithItsRows(benchmark::State& state) {
    BigWorld& big = Big();
    big.script.RenameAnimation(big.LastAnimation(), "Hop");
    undoAndRedoScript(state, big);
}
BENCHMARK(BM_UndoRedoOfAnAnimationRenamedWithItsRows)->Unit(benchmark::kMicrosecond);

// The largest change: an animation of 21 lines deleted with its two rows.
void BM_UndoRedoOfAnAnimationDeletedWithItsRows(benchmark::State& state) {
    BigWorld& big = Big();
    TreeNode* last = big.LastAnimation();
    const QString name = AnimationName(last->Text());
    const int rows = big.events.RemoveFromListView(name);
    big.script.AnimationNames().Remove(name);
    big.script.UndoLog(UndoOperation::Removed, last, nullptr, rows);
    big.script.TreeView1().Remove(last->Index());
    undoAndRedoScript(state, big);
}
BENCHMARK(BM_UndoRedoOfAnAnimationDeletedWithItsRows)->Unit(benchmark::kMicrosecond);

// The last row's condition changed from the event menu.
void BM_UndoRedoOfARowChange(benchmark::State& state) {
    BigWorld& big = Big();
    ListControl& rows = big.events.ListView1();
    big.events.ListView1_MouseUp(Qt::LeftButton, rows.Row(rows.Count() - 1), EventList::When);
    big.menus.mnuConditions_Click("LeftMouseButtonUp");
    EventUndoLog& log = big.events.ListUndoLog();
    if (log.IsEmpty())
        state.SkipWithError("the menu changed nothing");
    for (auto _ : state) {
        big.events.LVUndoFromLog(log);
        big.events.LVRedoFromLog(log);
    }
    big.events.LVUndoFromLog(log);
}
BENCHMARK(BM_UndoRedoOfARowChange)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
