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
    for (auto record = records_.crbegin(); record != records_.crend(); ++record)
        text += *record + LineEnd;
    return text;
}

void TreeUndoLog::Clear() {
    const auto tell = tellingListener(listener_);
    records_.clear();
}

void TreeUndoLog::UndoLog(UndoOperation operation, const TreeNode* node, const TreeNode* otherNode,
                          int count) {
    host_.scriptModified();
    const auto tell = tellingListener(listener_);
    // A move's two paths are each taken as if the other node were not there: undo finds
    // the copy once the original is gone, and the original's place once the copy is.
    const QString paths = operation == UndoOperation::Moved
                              ? NodePath(otherNode, node) + u',' + NodePath(node, otherNode)
                              : NodePath(node);
    records_.append(QString::number(static_cast<int>(operation)) + u',' + paths + u',' +
                    QString::number(count));
    switch (operation) {
    case UndoOperation::Removed: {
        TreeNode* copy = SaveCopy();
        AddNodes(copy, node, {});
        // A root's Key rides in the copy's Tag; a root never has a Tag of its own.
        if (!node->Key().isEmpty())
            junkyard_.SetTag(copy, node->Key());
        break;
    }
    case UndoOperation::Changed: {
        TreeNode* copy = SaveCopy();
        junkyard_.SetText(copy, node->Text());
        junkyard_.SetTag(copy, node->Key());
        break;
    }
    case UndoOperation::Moved:
        AddNodes(SaveCopy(), node, {});
        break;
    case UndoOperation::Added:
    case UndoOperation::Expansion:
        break;
    }
}

TreeNode* TreeUndoLog::UndoMe() {
    if (TreeNode* root = junkyard_.FirstRoot())
        return root;
    return junkyard_.AddRoot(QString(), QStringLiteral("UndoMe"));
}

TreeNode* TreeUndoLog::SaveCopy() {
    return junkyard_.Add(UndoMe(), Relation::Child, QString(), QString());
}

TreeNode* TreeUndoLog::LastCopy() const {
    const TreeNode* root = junkyard_.FirstRoot();
    return root && root->Child() ? root->Child()->LastSibling() : nullptr;
}

void TreeUndoLog::DropCopy(TreeNode* copy) {
    junkyard_.Remove(copy->Index());
}

void TreeUndoLog::UndoFromLog() {
    if (records_.isEmpty())
        return;
    const auto tell = tellingListener(listener_);
    const QString record = records_.takeLast();
    const QStringList fields = record.split(u',');
    const int count = ToInteger(fields.last());
    for (int replay = 0; replay < count; ++replay)
        host_.LVUndoFromLog();
    const PathWalk walk = ResolvePath(tree_, fields.value(1));
    TreeNode* reached = nullptr;
    switch (static_cast<UndoOperation>(ToInteger(fields.first()))) {
    case UndoOperation::Added:
        reached = UndoAdded(walk);
        break;
    case UndoOperation::Removed:
        reached = UndoRemoved(walk);
        break;
    case UndoOperation::Changed:
        reached = UndoChanged(walk);
        break;
    case UndoOperation::Moved:
        reached = UndoMoved(walk, fields.value(2));
        break;
    case UndoOperation::Expansion:
        if ((reached = walk.Node))
            tree_.SetExpanded(reached, !reached->Expanded());
        break;
    }
    tree_.SetDropHighlight(reached);
    tree_.SetSelectedItem(reached);
}

TreeNode* TreeUndoLog::UndoAdded(const PathWalk& walk) {
    TreeNode* node = walk.Node;
    if (!node)
        return nullptr;
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
    DropCopy(copy);
    RefreshChildIcons(node->Parent());
    return node;
}

TreeNode* TreeUndoLog::UndoRemoved(const PathWalk& walk) {
    TreeNode* copy = LastCopy();
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
    return walk.Node;
}

TreeNode* TreeUndoLog::UndoChanged(const PathWalk& walk) {
    TreeNode* copy = LastCopy();
    if (!copy)
        return walk.Node;
    if (TreeNode* node = walk.Node) {
        if (IsAnimationText(node->Text()))
            animationNames_.Rename(AnimationName(node->Text()), AnimationName(copy->Text()));
        // The Key stays: an undone rename of an animation keeps the new key.
        tree_.SetText(node, copy->Text());
        // A block's kind may have changed back, and its children's icons with it.
        RefreshChildIcons(node);
    }
    DropCopy(copy);
    return walk.Node;
}

TreeNode* TreeUndoLog::UndoMoved(const PathWalk& walk, const QString& oldPath) {
    TreeNode* copy = LastCopy();
    if (!copy)
        return walk.Node;
    if (TreeNode* moved = walk.Node) {
        TreeNode* formerParent = moved->Parent();
        tree_.Remove(moved->Index());
        RefreshChildIcons(formerParent);
    }
    const PathWalk back = ResolvePath(tree_, oldPath);
    Restore(back, copy);
    return back.Node;
}

} // namespace vessa
