#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace vessa {

class AnimationNameList;
class ScriptHost;
class TreeControl;
class TreeNode;
struct PathWalk;

// What an undo record says happened to a node.
enum class UndoOperation : int {
    Added = 1,     // the node at path was added
    Removed = 2,   // the node at path is about to be removed; its subtree is saved
    Changed = 3,   // the node's text is about to change; the old text is saved
    Moved = 4,     // the node moves from oldPath to newPath; its subtree is saved
    Expansion = 5, // the node was opened or closed
    Group = 6,     // the records below it, as many as its path says, undo as one step
};

// The script tree's history: text records that address nodes by path since undo
// re-creates nodes, and saved copies of nodes in a hidden tree, newest last, in the
// order of the records that need one. Two stacks of the same records: what can be
// undone, with its copies under the root "UndoMe", and what was undone and can be done
// again, with its copies under "RedoMe". Replaying a record reverses it and writes the
// record that reverses that on the other stack; a new change empties the redo stack.
// Recording a change is also where the world becomes modified.
//
// A record reads "<operation>,<path>,<count>", or "4,<newPath>,<oldPath>,<count>" for a
// move, or "6,<records>,0" over the records it makes one step of; count is how many records of the
// event list's log go with it: an undo replays them first, a redo after.
class TreeUndoLog {
public:
    TreeUndoLog(TreeControl& tree, TreeControl& junkyard, AnimationNameList& animationNames,
                ScriptHost& host);

    // Records a change; otherNode is the moved node's new copy for Moved.
    void UndoLog(UndoOperation operation, const TreeNode* node, const TreeNode* otherNode = nullptr,
                 int count = 0);
    // The newest records, as many as given, become one step of undo and redo.
    void GroupLast(int records);
    // Reverses the newest record; nothing when there is none. Where the tree changed in
    // a way the log does not know of, nodes go back as near their place as the path
    // allows. A malformed count fails with RunTimeError::TypeMismatch.
    void UndoFromLog();
    // Does again the newest change undone; nothing when there is none.
    void RedoFromLog();

    bool IsEmpty() const { return records_[Undo].isEmpty(); }
    bool CanRedo() const { return !records_[Redo].isEmpty(); }
    // Told after every record added or taken, so that whoever offers undo can say
    // whether there is anything to undo.
    void setChangeListener(std::function<void()> listener) { listener_ = std::move(listener); }
    // The records to undo, newest first, each ended by CR LF.
    QString Text() const;
    void Clear();

private:
    enum Side { Undo = 0, Redo = 1 };

    void record(Side side, UndoOperation operation, const QString& paths, int count);
    TreeNode* CopiesOf(Side side);
    TreeNode* SaveCopy(Side side);
    TreeNode* LastCopy(Side side);
    void SaveSubtree(Side side, const TreeNode* node);
    void SaveText(Side side, const TreeNode* node);
    void DropCopies(Side side);
    void replay(Side from);
    TreeNode* Restore(const PathWalk& walk, TreeNode* copy);
    TreeNode* UndoAdded(const PathWalk& walk, Side to, int count);
    TreeNode* UndoRemoved(const PathWalk& walk, Side from, Side to, int count);
    TreeNode* UndoChanged(const PathWalk& walk, Side from, Side to, int count);
    TreeNode* UndoMoved(const PathWalk& walk, const QString& newPath, const QString& oldPath,
                        Side from, Side to, int count);

    TreeControl& tree_;                 // Not owned.
    TreeControl& junkyard_;             // Not owned.
    AnimationNameList& animationNames_; // Not owned.
    ScriptHost& host_;                  // Not owned.
    QStringList records_[2];            // oldest first
    std::function<void()> listener_;
};

} // namespace vessa
