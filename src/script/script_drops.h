#pragma once

#include "controls/node_ref.h"
#include "controls/tree_control.h"
#include "script/script_model.h"
#include "script/script_request.h"

#include <QPoint>

#include <optional>

namespace vessa {

class ScriptClicks;
class TreeGeometry;

// Where a drop would put its new node: beside or below Relative, as TreeControl::Add
// takes them; without a Relative there is no place for it. Click: the dragged line came
// back onto itself, which counts as a click on it.
struct DropPlace {
    TreeNode* Target = nullptr; // the node of the row under the pointer, if any
    TreeNode* Relative = nullptr;
    Relation How = Relation::Child;
    bool Click = false;

    bool IsPlace() const { return Relative != nullptr; }
};

// Where the insertion mark stands for a place: a line from Start rightwards, between two
// rows, in from the left as far as the level the new node takes.
struct InsertionMark {
    QPoint Start;
};

// What lands in the script tree by dragging: an object (a line of the command Move for
// it, followed by the choice of the command), a block of the palette, a sound (a line
// that plays it), or a line or block of the script moved (left button) or copied (right
// button). Where it lands depends on the row under the pointer, on how far left of that
// row's text the pointer is (a drag to the left takes a line out of the blocks it ends),
// and, on a closed block, on how low in the row. Each drop is one undo step. The same
// rules decide, while dragging, where the mark shows and whether a drop is refused.
//
// Points are pixels of the tree's viewport. The node dragged is the model's DragNode;
// what it stands for comes from the tree it belongs to.
class ScriptDrops {
public:
    // How far left of a node's text, in pixels, the pointer still counts as at its level.
    static constexpr int LevelMargin = 20;

    ScriptDrops(ScriptModel& model, ScriptClicks& clicks) : model_(model), clicks_(clicks) {}

    // What the node being dragged is to the script.
    DragSource draggedSource() const;
    // Where a drop at point would land in TreeView1.
    DropPlace PlaceFor(const QPoint& point, const TreeGeometry& geometry) const;
    // Where the mark shows for a place; nothing where there is no place or it is hidden.
    static std::optional<InsertionMark> MarkFor(const DropPlace& place,
                                                const TreeGeometry& geometry);
    // While dragging over the tree: its drop highlight follows the row under the pointer.
    // A drop is taken where the answer is a place or a click.
    DropPlace TreeView1_DragOver(const QPoint& point, const TreeGeometry& geometry);
    // The drop: the new node, selected, and what follows it (the command menu of a
    // dropped object, or what a click asks for). A drop where nothing can go changes
    // nothing.
    ScriptRequest TreeView1_DragDrop(const QPoint& point, const TreeGeometry& geometry);
    // Which way the tree scrolls while dragging at height y of a tree height pixels
    // tall: -1 up near the top, 1 down near the bottom (a zone twice as tall), else 0.
    static int ScrollDirection(int y, int height, double twipsPerPixel);

    // The command line's tree takes an object only: its one line becomes the object's
    // Move, followed by the choice of the command.
    bool CommandLineTreeview_Accepts() const;
    ScriptRequest CommandLineTreeview_DragDrop(const QPoint& point);

    // What the keyboard does instead of a drag: the node of source goes where a paste
    // would put it, into the selected block or after the selected line, else at the end
    // of the newest animation. What follows has no point yet: it belongs by the new
    // line, which is selected.
    ScriptRequest InsertAtSelection(const NodeRef& source);

private:
    DragSource sourceOf(const NodeRef& node) const;
    DropPlace WalkOut(TreeNode* target, const QPoint& point, const TreeGeometry& geometry) const;
    ScriptRequest Fill(const DropPlace& place, DragSource source, TreeNode* dragged,
                       const QPoint& point);
    ScriptRequest MakeObjectLine(TreeNode* line, const QString& objectName, const QPoint& point);

    ScriptModel& model_;   // Not owned.
    ScriptClicks& clicks_; // Not owned.
};

} // namespace vessa
