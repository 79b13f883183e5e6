#pragma once

#include "controls/tree_control.h"
#include "script/animation_name_list.h"
#include "script/script_line.h"
#include "script/tree_undo_log.h"

#include <utility>
#include <vector>

namespace vessa {

class ScriptHost;

// What a node dragged from a tree stands for when it lands in the script.
enum class DragSource {
    None,       // nothing the script takes
    Object,     // an object: its Tag is its full name
    Block,      // a block of the palette: its Text is "DoInOrder" or "DoTogether"
    Sound,      // a sound: its Text is its name
    ScriptLine, // a line or block of the script itself
};

// The script of the open world and every change to it that is not a menu's or an
// editor's own: the animations tree TreeView1, the helper trees around it, the parse
// state of the last click, the animation names and counter, and the undo log. The text
// of the nodes is the script; there is no parsed form behind it.
class ScriptModel {
public:
    explicit ScriptModel(ScriptHost& host);
    ScriptModel(const ScriptModel&) = delete;
    ScriptModel& operator=(const ScriptModel&) = delete;

    ScriptHost& Host() const { return host_; }
    // The script of a new world: one animation "Action1 = DoInOrder" and nothing to undo.
    void Initialize();
    // Who answers the menus, editors and commands that clicks ask for.
    ScriptRequests& requests() { return requests_; }
    // The animations: roots named "<name> = DoInOrder", blocks inside, lines as leaves.
    TreeControl& TreeView1() { return treeView1_; }
    // The palette of blocks to drag: "DoInOrder" and "DoTogether".
    TreeControl& ConstructTree() { return constructTree_; }
    // The one line of the command line tool.
    TreeControl& CommandLineTreeview() { return commandLineTreeview_; }
    // Hidden: the saved copies of the undo log under "UndoMe".
    TreeControl& junkyard2() { return junkyard2_; }
    // Hidden: what was cut or copied.
    TreeControl& CopyBuffer() { return copyBuffer_; }

    ParseState& Parse() { return parse_; }
    AnimationNameList& AnimationNames() { return animationNames_; }
    // The number of the next default animation name; it never goes back.
    int AnimationCounter() const { return animationCounter_; }
    // Off while a compound change does its own logging.
    bool UndoRecording() const { return undoRecording_; }
    void SetUndoRecording(bool on) { undoRecording_ = on; }

    // Rewrites the node from the parse state with newValue in place of the piece
    // clicked, recording the old text first when log is set and the line has a "(".
    // A failure leaves the line as it was.
    void UpdateNode(TreeNode* node, const QString& newValue, bool log = true);
    // Writes the default line of a command for the parsed object into the node.
    void MakeDefaultLine(TreeNode* node, const QString& commandName);

    // "Action<n> = DoInOrder" after the last root, recorded for undo.
    TreeNode* AddNewAnimation();
    // A new line where the script is being written: after the selected line, at the end
    // of the selected block, or at the end of the last animation when nothing is
    // selected; a script without animations gets one first. Recorded for undo. The line
    // becomes the selected node, so that lines made one after another follow each other.
    TreeNode* addLineToCurrentAnimation(const QString& text);
    // The line becomes free Python text on grey, and its editing starts.
    void MakePythonLine(TreeNode* node);
    // DoInOrder becomes DoTogether or the reverse, and the icons follow.
    void ChangeBlockKind(TreeNode* block);
    // Removes from the parsed line the optional value of the kind clicked.
    void RemoveValue(TreeNode* node);
    // A node's text edited in place: recorded like any other change of a line.
    void AfterLabelEdit(TreeNode* node, const QString& text);
    // Gives the animation root the name newName: its Key becomes the name in lower case,
    // its text "<newName> = " and its block, and AnimationNames and the event rows that
    // do it follow; one undo record for all. False, with nothing changed, when another
    // animation holds that key.
    bool RenameAnimation(TreeNode* root, const QString& newName);
    // An object was renamed: the lines that call it or name it after "=" follow.
    void ReplaceObjectName(const QString& oldName, const QString& newName);

    // Whether deleting node takes event rows with it, which the user is asked about
    // first: node is an animation that rows do.
    bool DeleteTakesEventRows(const TreeNode* node) const;
    // Deletes node and all below it, recorded for undo; an animation goes from the
    // names, and the event rows that do it go too, replayed before it by undo.
    void DeleteNode(TreeNode* node);

    // What a drag from tree carries into the script. The script's own tree and the
    // palette are known from the start; the trees of the scene are told by whoever
    // holds them.
    void setDragSource(const TreeControl& tree, DragSource source);
    DragSource dragSourceOf(const TreeControl* tree) const;

    void UndoLog(UndoOperation operation, const TreeNode* node, const TreeNode* otherNode = nullptr,
                 int count = 0);
    // The newest records, as many as given, become one step of undo: a change of many
    // lines made at once.
    void UndoLogGroup(int records) { undo_.GroupLast(records); }
    void UndoFromLog() { undo_.UndoFromLog(); }
    void RedoFromLog() { undo_.RedoFromLog(); }
    const TreeUndoLog& TreeUndoRecords() const { return undo_; }
    // Told whenever the undo log gains or loses a record, to undo or to redo.
    void setUndoListener(std::function<void()> listener) {
        undo_.setChangeListener(std::move(listener));
    }

    // The node a drag would take, the button that pressed it, and where the last click
    // fell, in twips of the tree.
    NodeRef DragNode;
    Qt::MouseButton DragButton = Qt::NoButton;
    double LastClickX = 0;
    double LastClickY = 0;

private:
    std::vector<std::pair<const TreeControl*, DragSource>> dragSources_; // Trees not owned.
    ScriptHost& host_;                                                   // Not owned.
    TreeControl treeView1_;
    TreeControl constructTree_;
    TreeControl commandLineTreeview_;
    TreeControl junkyard2_;
    TreeControl copyBuffer_;
    ParseState parse_;
    AnimationNameList animationNames_;
    int animationCounter_ = 1;
    bool undoRecording_ = true;
    TreeUndoLog undo_;
    ScriptRequests requests_;
};

} // namespace vessa
