#include "events/event_list.h"
#include "events/event_menus.h"

#include "script/script_icons.h"
#include "script/script_model.h"
#include "script/script_test_support.h"
#include "script/tree_walks.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <map>

using namespace vessa;

namespace {

// The world around the script as the open world is: the script's undo and redo carry
// the event rows that its changes touched.
class LinkedHost : public vessa::testing::FakeScriptHost {
public:
    void LVUndoFromLog() override { events->LVUndoFromLog(events->TreeListUndoLog()); }
    void LVRedoFromLog() override { events->LVRedoFromLog(events->TreeListUndoLog()); }
    int ReplaceInListView(const QString& oldName, const QString& newName) override {
        return events->ReplaceInListView(oldName, newName);
    }
    EventList* events = nullptr;
};

// What a user sees of the script and the rows. Rows are taken by key: a row that an undo
// gives back comes back at the end of the list.
struct State {
    std::vector<std::string> nodes; // path, text, image, key, expansion of every node
    std::map<QString, QString> rows;

    bool operator==(const State&) const = default;
};

void PrintTo(const State& state, std::ostream* out) {
    for (const std::string& node : state.nodes)
        *out << "\n  " << node;
    for (const auto& [key, row] : state.rows)
        *out << "\n  " << key.toStdString() << ": " << row.toStdString();
}

struct History : ::testing::Test {
    LinkedHost host;
    ScriptModel script{host};
    EventList events{script};
    EventMenus menus{events};
    TreeControl& tree = script.TreeView1();
    QRandomGenerator random{11};
    int renames = 0;

    void SetUp() override { host.events = &events; }

    State Snapshot() {
        State state;
        for (const TreeNode* node : Nodes()) {
            state.nodes.push_back(QStringList{NodePath(node), node->Text(),
                                              QString::number(node->Image()), node->Key(),
                                              node->Expanded() ? "open" : "shut"}
                                      .join(u'|')
                                      .toStdString());
        }
        for (int position = 0; position < events.ListView1().Count(); ++position) {
            const ListRow* row = events.ListView1().Row(position);
            state.rows[row->Key()] =
                row->SubItems(1) + u'|' + row->SubItems(2) + u'|' + row->SubItems(3);
        }
        return state;
    }

    std::vector<TreeNode*> Nodes() {
        std::vector<TreeNode*> nodes;
        const auto walk = [&](auto& self, TreeNode* node) -> void {
            for (; node; node = node->Next()) {
                nodes.push_back(node);
                self(self, node->Child());
            }
        };
        walk(walk, tree.FirstRoot());
        return nodes;
    }

    template <typename T> T& Any(std::vector<T>& items) {
        return items[static_cast<size_t>(random.bounded(static_cast<int>(items.size())))];
    }

    // One edit of the script as the editors make them, or none where it can't be made.
    void EditScript() {
        std::vector<TreeNode*> nodes = Nodes();
        if (nodes.empty()) {
            script.AddNewAnimation();
            return;
        }
        TreeNode* node = Any(nodes);
        switch (random.bounded(7)) {
        case 0:
            script.AddNewAnimation();
            return;
        case 1: {
            TreeNode* line =
                tree.Add(node, Relation::Child, "",
                         random.bounded(2) ? "DoTogether" : "Camera.Turn(Left, 1, more...)");
            script.UndoLog(UndoOperation::Added, line);
            RefreshChildIcons(node);
            return;
        }
        case 2: {
            // A delete; an animation takes the rows that do it along.
            int rows = 0;
            if (!node->Parent()) {
                rows = events.RemoveFromListView(AnimationName(node->Text()));
                script.AnimationNames().Remove(AnimationName(node->Text()));
            }
            TreeNode* parent = node->Parent();
            script.UndoLog(UndoOperation::Removed, node, nullptr, rows);
            tree.Remove(node->Index());
            RefreshChildIcons(parent);
            return;
        }
        case 3:
            if (!node->Parent()) {
                script.RenameAnimation(node, "Hop" + QString::number(++renames));
                return;
            }
            script.UndoLog(UndoOperation::Changed, node);
            tree.SetText(node, node->Text() + "x");
            return;
        case 4:
            script.UndoLog(UndoOperation::Expansion, node);
            tree.SetExpanded(node, !node->Expanded());
            return;
        case 5: {
            // A drag of a line or block into another block or after another line.
            TreeNode* target = Any(nodes);
            for (TreeNode* up = target; up; up = up->Parent())
                if (up == node || !node->Parent())
                    return;
            const Relation relation = IsBlock(target->Text()) ? Relation::Child : Relation::Next;
            if (relation == Relation::Next && !target->Parent())
                return;
            TreeNode* moved = tree.Add(target, relation, "", "");
            AddNodes(moved, node, {});
            script.UndoLog(UndoOperation::Moved, node, moved);
            TreeNode* parent = node->Parent();
            tree.Remove(node->Index());
            RefreshChildIcons(parent);
            RefreshChildIcons(moved->Parent());
            return;
        }
        default:
            if (!IsBlock(node->Text()))
                return;
            script.ChangeBlockKind(node);
        }
    }

    // One edit of the rows through the event menus, what the row says already or not.
    void EditRows() {
        ListControl& list = events.ListView1();
        if (list.Count() == 0 || random.bounded(4) == 0) {
            events.MakeEvent();
            return;
        }
        ListRow* row = list.Row(random.bounded(list.Count()));
        const int column = random.bounded(2) ? EventList::When : EventList::DoAnimation;
        std::vector<MenuRow> rows =
            menus.menuRows(events.ListView1_MouseUp(Qt::LeftButton, row, column));
        MenuRow& chosen = Any(rows);
        if (chosen.Rows.empty()) {
            chosen.Chosen();
            return;
        }
        MenuRow& key = Any(chosen.Rows);
        if (!key.IsSeparator() && key.Chosen().What == ScriptRequest::Kind::EventKeyCapture)
            menus.keyPressed(chosen.Caption, QString(QChar(u'a' + random.bounded(26))));
    }
};

} // namespace

// Random edits on both logs; then undo to the start gives the first state, and redo to
// the end the last one, with the rows that script changes carried along.
TEST_F(History, UndoToTheStartAndRedoToTheEndGiveTheFirstAndLastStates) {
    for (int run = 0; run < 60; ++run) {
        const State first = Snapshot();
        std::vector<bool> onScript; // the log of each change, in order
        const int steps = random.bounded(1, 30);
        for (int step = 0; step < steps; ++step) {
            // Each change recorded tells the world once.
            const int before = host.modifications;
            const bool scriptEdit = random.bounded(2) == 0;
            if (scriptEdit)
                EditScript();
            else
                EditRows();
            if (host.modifications != before)
                onScript.push_back(scriptEdit);
        }
        const State last = Snapshot();
        for (auto change = onScript.rbegin(); change != onScript.rend(); ++change) {
            if (*change)
                script.UndoFromLog();
            else
                events.LVUndoFromLog(events.ListUndoLog());
        }
        ASSERT_EQ(Snapshot(), first) << "run " << run;
        for (bool change : onScript) {
            if (change)
                script.RedoFromLog();
            else
                events.LVRedoFromLog(events.ListUndoLog());
        }
        ASSERT_EQ(Snapshot(), last) << "run " << run;
        EXPECT_FALSE(script.TreeUndoRecords().CanRedo());
        EXPECT_FALSE(events.ListUndoLog().CanRedo());
        EXPECT_FALSE(events.TreeListUndoLog().CanRedo());
    }
}
