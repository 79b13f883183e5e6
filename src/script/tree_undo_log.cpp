#include "script/tree_undo_log.h"

#include "controls/tree_control.h"
#include "script/animation_name_list.h"
#include "script/script_host.h"
#include "script/script_icons.h"
#include "script/script_line.h"
#include "script/tree_walks.h"

#include <QScopeGuard>

namespace vessa {

namespace {
const QString LineEnd = QStringLiteral("\r\n");

// Tells the listener when the scope ends, however it ends.
auto tellingListener(const std::function<void()>& listener) {
    return qScopeGuard([&listener] {
        if (listener)
            listener();
    });
}
} // namespace

TreeUndoLog::TreeUndoLog(TreeControl& tree, TreeControl& junkyard,
                         AnimationNameList& animationNames, ScriptHost& host)
    : tree_(tree), junkyard_(junkyard), animationNames_(animationNames), host_(host) {
}

QString TreeUndoLog::Text() const {
    QString text;
    for (auto record = records_[Undo].crbegin(); record != records_[Undo].crend(); ++record)
        text += *record + LineEnd;
    return text;
}

void TreeUndoLog::Clear() {
    const auto tell = tellingListener(listener_);
    for (Side side : {Undo, Redo}) {
        records_[side].clear();
        DropCopies(side);
    }
}

void TreeUndoLog::UndoLog(UndoOperation operation, const TreeNode* node, const TreeNode* otherNode,
                          int count) {
    host_.scriptModified();
    const auto tell = tellingListener(listener_);
    records_[Redo].clear();
    DropCopies(Redo);
    // A move's two paths are each taken as if the other node were not there: undo finds
    // the copy once the original is gone, and the original's place once the copy is.
    const QString paths = operation == UndoOperation::Moved
                              ? NodePath(otherNode, node) + u',' + NodePath(node, otherNode)
                              : NodePath(node);
    record(Undo, operation, paths, count);
    switch (operation) {
    case UndoOperation::Removed:
        SaveSubtree(Undo, node);
        break;
    case UndoOperation::Changed:
        SaveText(Undo, node);
        break;
    case UndoOperation::Moved:
        AddNodes(SaveCopy(Undo), node, {});
        break;
    case UndoOperation::Added:
    case UndoOperation::Expansion:
    case UndoOperation::Group: // made by GroupLast alone
        break;
    }
}

void TreeUndoLog::GroupLast(int records) {
    if (records < 2)
        return;
    const auto tell = tellingListener(listener_);
    records_[Undo].append(QStringLiteral("6,%1,0").arg(records));
}

void TreeUndoLog::record(Side side, UndoOperation operation, const QString& paths, int count) {
    records_[side].append(QString::number(static_cast<int>(operation)) + u',' + paths + u',' +
                          QString::number(count));
}

TreeNode* TreeUndoLog::CopiesOf(Side side) {
    const QString name = side == Undo ? QStringLiteral("UndoMe") : QStringLiteral("RedoMe");
    for (TreeNode* root = junkyard_.FirstRoot(); root; root = root->Next())
        if (root->Text() == name)
            return root;
    return junkyard_.AddRoot(QString(), name);
}

TreeNode* TreeUndoLog::SaveCopy(Side side) {
    return junkyard_.Add(CopiesOf(side), Relation::Child, QString(), QString());
}

TreeNode* TreeUndoLog::LastCopy(Side side) {
    const TreeNode* root = CopiesOf(side);
    return root->Child() ? root->Child()->LastSibling() : nullptr;
}

void TreeUndoLog::SaveSubtree(Side side, const TreeNode* node) {
    TreeNode* copy = SaveCopy(side);
    AddNodes(copy, node, {});
    // A root's Key rides in the copy's Tag; a root never has a Tag of its own.
    if (!node->Key().isEmpty())
        junkyard_.SetTag(copy, node->Key());
}

void TreeUndoLog::SaveText(Side side, const TreeNode* node) {
    TreeNode* copy = SaveCopy(side);
    junkyard_.SetText(copy, node->Text());
    junkyard_.SetTag(copy, node->Key());
}

void TreeUndoLog::DropCopies(Side side) {
    const TreeNode* root = CopiesOf(side);
    while (const TreeNode* copy = root->Child())
        junkyard_.Remove(copy->Index());
}

void TreeUndoLog::UndoFromLog() {
    replay(Undo);
}

void TreeUndoLog::RedoFromLog() {
    replay(Redo);
}

void TreeUndoLog::replay(Side from) {
    if (records_[from].isEmpty())
        return;
    const auto tell = tellingListener(listener_);
    const Side to = from == Undo ? Redo : Undo;
    const QStringList fields = records_[from].takeLast().split(u',');
    if (ToInteger(fields.first()) == static_cast<int>(UndoOperation::Group)) {
        // Its records replay newest first, and come out on the other side in the order
        // that replays them back.
        const int records = ToInteger(fields.value(1));
        for (int replayed = 0; replayed < records && !records_[from].isEmpty(); ++replayed)
            replay(from);
        records_[to].append(fields.join(u','));
        return;
    }
    const int count = ToInteger(fields.last());
    // The rows a tree change touched change back before the tree, and again after it.
    if (from == Undo)
        for (int replay = 0; replay < count; ++replay)
            host_.LVUndoFromLog();
    const PathWalk walk = ResolvePath(tree_, fields.value(1));
    TreeNode* reached = nullptr;
    switch (static_cast<UndoOperation>(ToInteger(fields.first()))) {
    case UndoOperation::Added:
        reached = UndoAdded(walk, to, count);
        break;
    case UndoOperation::Removed:
        reached = UndoRemoved(walk, from, to, count);
        break;
    case UndoOperation::Changed:
        reached = UndoChanged(walk, from, to, count);
        break;
    case UndoOperation::Moved:
        reached = UndoMoved(walk, fields.value(1), fields.value(2), from, to, count);
        break;
    case UndoOperation::Expansion:
        if ((reached = walk.Node)) {
            tree_.SetExpanded(reached, !reached->Expanded());
            record(to, UndoOperation::Expansion, NodePath(reached), count);
        }
        break;
    case UndoOperation::Group: // replayed above
        break;
    }
    if (from == Redo)
        for (int replay = 0; replay < count; ++replay)
            host_.LVRedoFromLog();
    tree_.SetDropHighlight(reached);
    tree_.SetSelectedItem(reached);
}

TreeNode* TreeUndoLog::UndoAdded(const PathWalk& walk, Side to, int count) {
    TreeNode* node = walk.Node;
    if (!node)
        return nullptr;
    record(to, UndoOperation::Removed, NodePath(node), count);
    SaveSubtree(to, node);
    TreeNode* parent = node->Parent();
    if (!parent)
        animationNames_.Remove(AnimationName(node->Text()));
    tree_.Remove(node->Index());
    RefreshChildIcons(parent);
    return nullptr;
}

TreeNode* TreeUndoLog::Restore(const PathWalk& walk, TreeNode* copy) {
    TreeNode* node = nullptr;
    if (!walk.Node)
        node = tree_.AddRoot(QString(), QString());
    else if (walk.NoChild)
        node = tree_.Add(walk.Node, Relation::Child, QString(), QString());
    else if (walk.RanOffTheEnd)
        node = tree_.Add(walk.Node, Relation::Next, QString(), QString());
    else
        node = tree_.Add(walk.Node, Relation::Previous, QString(), QString());
    AddNodes(node, copy, {});
    junkyard_.Remove(copy->Index());
    RefreshChildIcons(node->Parent());
    return node;
}

TreeNode* TreeUndoLog::UndoRemoved(const PathWalk& walk, Side from, Side to, int count) {
    TreeNode* copy = LastCopy(from);
    if (!copy)
        return walk.Node;
    TreeNode* node = Restore(walk, copy);
    if (!node->Parent()) {
        // The animation takes its key back from the Tag, unless another has taken it.
        if (!tree_.NodeByKey(node->Tag()))
            tree_.SetKey(node, node->Tag());
        tree_.SetTag(node, QString());
        animationNames_.Append(AnimationName(node->Text()));
    }
    record(to, UndoOperation::Added, NodePath(node), count);
    return walk.Node;
}

TreeNode* TreeUndoLog::UndoChanged(const PathWalk& walk, Side from, Side to, int count) {
    TreeNode* copy = LastCopy(from);
    if (!copy)
        return walk.Node;
    if (TreeNode* node = walk.Node) {
        record(to, UndoOperation::Changed, NodePath(node), count);
        SaveText(to, node);
        if (IsAnimationText(node->Text()))
            animationNames_.Rename(AnimationName(node->Text()), AnimationName(copy->Text()));
        // An animation takes back the key of its name, unless another has taken it, so
        // that its rows and the Python still find it by name.
        if (!node->Parent() && !copy->Tag().isEmpty() && !tree_.NodeByKey(copy->Tag()))
            tree_.SetKey(node, copy->Tag());
        tree_.SetText(node, copy->Text());
        // A block's kind may have changed back, and its children's icons with it.
        RefreshChildIcons(node);
    }
    junkyard_.Remove(copy->Index());
    return walk.Node;
}

TreeNode* TreeUndoLog::UndoMoved(const PathWalk& walk, const QString& newPath,
                                 const QString& oldPath, Side from, Side to, int count) {
    TreeNode* copy = LastCopy(from);
    if (!copy)
        return walk.Node;
    if (TreeNode* moved = walk.Node) {
        TreeNode* formerParent = moved->Parent();
        tree_.Remove(moved->Index());
        RefreshChildIcons(formerParent);
    }
    const PathWalk back = ResolvePath(tree_, oldPath);
    TreeNode* restored = Restore(back, copy);
    // The way back: from where it stands now to newPath, taken in the tree without it.
    record(to, UndoOperation::Moved, NodePath(restored) + u',' + newPath, count);
    AddNodes(SaveCopy(to), restored, {});
    return back.Node;
}

} // namespace vessa
