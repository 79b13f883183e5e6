#include "script/script_drops.h"

#include "controls/tree_geometry.h"
#include "script/script_clicks.h"
#include "script/script_icons.h"
#include "script/script_line.h"
#include "script/script_model.h"
#include "script/tree_walks.h"

namespace vessa {

namespace {

bool isLast(const TreeNode* node) {
    return node->Next() == nullptr;
}

// The pointer is left of the node's level: further left than a little before its text.
bool leftOfLevel(const TreeNode* node, const QPoint& point, const TreeGeometry& geometry) {
    return point.x() < geometry.NodeRect(node).left() - ScriptDrops::LevelMargin;
}

bool isWithin(const TreeNode* node, const TreeNode* ancestor) {
    for (; node; node = node->Parent())
        if (node == ancestor)
            return true;
    return false;
}

// Into a block: ahead of its children, or as its only child.
DropPlace into(TreeNode* block) {
    return block->Child() ? DropPlace{.Relative = block->Child(), .How = Relation::Previous}
                          : DropPlace{.Relative = block, .How = Relation::Child};
}

// The last row shown of node and all below it.
const TreeNode* lastShown(const TreeNode* node) {
    while (node->Expanded() && node->Child())
        node = node->Child()->LastSibling();
    return node;
}

// The top of the node's row: its text stands in the middle of the row.
int rowTop(const TreeNode* node, const TreeGeometry& geometry) {
    return geometry.NodeRect(node).center().y() - (geometry.ItemHeight() - 1) / 2;
}

int rowBottom(const TreeNode* node, const TreeGeometry& geometry) {
    return rowTop(node, geometry) + geometry.ItemHeight();
}

} // namespace

DragSource ScriptDrops::sourceOf(const NodeRef& node) const {
    return node.Get() ? model_.dragSourceOf(node.Tree) : DragSource::None;
}

DragSource ScriptDrops::draggedSource() const {
    return sourceOf(model_.DragNode);
}

DropPlace ScriptDrops::PlaceFor(const QPoint& point, const TreeGeometry& geometry) const {
    TreeControl& tree = model_.TreeView1();
    TreeNode* dragged = model_.DragNode.Get();
    const DragSource source = draggedSource();
    if (!tree.FirstRoot() || source == DragSource::None)
        return {};
    const bool ownLine = source == DragSource::ScriptLine;
    // An animation is not moved.
    if (ownLine && !dragged->Parent())
        return {};
    TreeNode* target = geometry.NodeOnRow(point.y());
    if (!target) {
        // Below all lines: at the end of the last animation.
        TreeNode* last = tree.FirstRoot()->LastSibling();
        return last->Child() ? DropPlace{.Relative = last->Child(), .How = Relation::Last}
                             : DropPlace{.Relative = last, .How = Relation::Child};
    }
    const bool left = leftOfLevel(target, point, geometry);
    if (ownLine && dragged == target) {
        if (!left)
            return {.Target = target, .Click = true};
        // Dragged out to the left of itself: only the last of its siblings can leave.
        return isLast(target) ? WalkOut(target, point, geometry) : DropPlace{.Target = target};
    }
    if (ownLine && isWithin(target, dragged))
        return {.Target = target}; // not inside itself
    DropPlace place;
    if (IsBlock(target->Text())) {
        const int height = geometry.ItemHeight();
        const int inRow = point.y() - rowTop(target, geometry);
        if (target->Expanded() && target->Child())
            place = into(target);
        else if (isLast(target) && left)
            place = WalkOut(target, point, geometry);
        else if (!target->Parent() || inRow <= height * 4 / 5)
            place = into(target);
        else
            place = {.Relative = target, .How = Relation::Next};
    } else {
        place = isLast(target) && left ? WalkOut(target, point, geometry)
                                       : DropPlace{.Relative = target, .How = Relation::Next};
    }
    place.Target = target;
    return place;
}

// Out of as many blocks as the pointer passes the left edge of, as long as the node is
// at the end of each; the node in hand lags one step behind the one above it.
DropPlace ScriptDrops::WalkOut(TreeNode* target, const QPoint& point,
                               const TreeGeometry& geometry) const {
    TreeNode* current = target;
    TreeNode* above = target;
    while (leftOfLevel(current, point, geometry) && isLast(current) && above->Parent()) {
        current = above;
        above = above->Parent();
    }
    DropPlace place{.Target = target, .Relative = current, .How = Relation::Child};
    // An animation never gets a sibling by a drag.
    if (current->Parent() && leftOfLevel(current, point, geometry))
        place.How = Relation::Next;
    return place;
}

std::optional<InsertionMark> ScriptDrops::MarkFor(const DropPlace& place,
                                                  const TreeGeometry& geometry) {
    if (!place.IsPlace())
        return std::nullopt;
    const TreeNode* relative = place.Relative;
    const QRect rect = geometry.NodeRect(relative);
    if (rect.isEmpty())
        return std::nullopt;
    switch (place.How) {
    case Relation::Previous:
        return InsertionMark{{rect.left(), rowTop(relative, geometry)}};
    case Relation::Next:
        return InsertionMark{{rect.left(), rowBottom(lastShown(relative), geometry)}};
    case Relation::Last:
        return InsertionMark{
            {rect.left(), rowBottom(lastShown(relative->LastSibling()), geometry)}};
    case Relation::First:
    case Relation::Child:
        break;
    }
    // At the end of the children, one level further in.
    return InsertionMark{
        {rect.left() + geometry.Indentation(), rowBottom(lastShown(relative), geometry)}};
}

DropPlace ScriptDrops::TreeView1_DragOver(const QPoint& point, const TreeGeometry& geometry) {
    const DropPlace place = PlaceFor(point, geometry);
    model_.TreeView1().SetDropHighlight(place.Target);
    return place;
}

int ScriptDrops::ScrollDirection(int y, int height, double twipsPerPixel) {
    const double twips = y * twipsPerPixel;
    const double bottom = height * twipsPerPixel;
    if (twips >= 0 && twips <= 100)
        return -1;
    if (twips > bottom - 200 && twips < bottom)
        return 1;
    return 0;
}

ScriptRequest ScriptDrops::TreeView1_DragDrop(const QPoint& point, const TreeGeometry& geometry) {
    TreeControl& tree = model_.TreeView1();
    const DropPlace place = PlaceFor(point, geometry);
    tree.SetDropHighlight(nullptr);
    if (place.Click)
        return clicks_.TreeView1_MouseUp(Qt::LeftButton, point, geometry);
    if (!place.IsPlace())
        return {};
    model_.LastClickX = point.x() * geometry.TwipsPerPixel();
    model_.LastClickY = point.y() * geometry.TwipsPerPixel();
    return Fill(place, draggedSource(), model_.DragNode.Get(), point);
}

ScriptRequest ScriptDrops::Fill(const DropPlace& place, DragSource source, TreeNode* dragged,
                                const QPoint& point) {
    TreeControl& tree = model_.TreeView1();
    TreeNode* added = tree.Add(place.Relative, place.How, QString(), QString());
    ScriptRequest next;
    switch (source) {
    case DragSource::Object:
        next = MakeObjectLine(added, dragged->Tag(), point);
        model_.UndoLog(UndoOperation::Added, added);
        break;
    case DragSource::Block:
        tree.SetText(added, dragged->Text());
        model_.UndoLog(UndoOperation::Added, added);
        break;
    case DragSource::Sound:
        tree.SetText(added, SoundLine(dragged->Text()));
        model_.UndoLog(UndoOperation::Added, added);
        break;
    case DragSource::ScriptLine:
        AddNodes(added, dragged, {});
        if (model_.DragButton == Qt::RightButton) {
            model_.UndoLog(UndoOperation::Added, added);
        } else {
            model_.UndoLog(UndoOperation::Moved, dragged, added);
            TreeNode* formerParent = dragged->Parent();
            tree.Remove(dragged->Index());
            RefreshChildIcons(formerParent);
        }
        break;
    case DragSource::None:
        break;
    }
    RefreshChildIcons(added->Parent());
    // The new line is shown where it went, also inside a closed block.
    tree.EnsureVisible(added);
    tree.SetSelectedItem(added);
    model_.DragNode = {};
    return next;
}

// Written the way a choice of Move in the command menu writes it, and recorded once, as
// an added line, by the caller.
ScriptRequest ScriptDrops::MakeObjectLine(TreeNode* line, const QString& objectName,
                                          const QPoint& point) {
    ParseState& parse = model_.Parse();
    const QString move = CommandNames(MoveCommand);
    parse.ParsedObject = objectName;
    parse.ParsedCommand = MoveCommand;
    parse.ClickedKind = 2;
    parse.ClickedValue = move;
    parse.ClickedSlot = -1;
    parse.EssentialValue.Clear();
    parse.OptionalValue.Clear();
    const KindList& essential = CommandParameters(MoveCommand).Essential;
    for (int slot = 0; slot < essential.Count(); ++slot)
        parse.EssentialValue[slot] = ParameterKinds(essential[slot]).DefaultValue();
    parse.SelectedNode = NodeRef::To(line->Owner(), line);
    model_.SetUndoRecording(false);
    model_.UpdateNode(line, move);
    model_.SetUndoRecording(true);
    ScriptRequest menu;
    menu.What = ScriptRequest::Kind::ActionMenu;
    menu.TreePoint = point;
    return menu;
}

bool ScriptDrops::CommandLineTreeview_Accepts() const {
    return draggedSource() == DragSource::Object;
}

ScriptRequest ScriptDrops::CommandLineTreeview_DragDrop(const QPoint& point) {
    TreeNode* line = model_.CommandLineTreeview().FirstRoot();
    if (!CommandLineTreeview_Accepts() || !line)
        return {};
    ScriptRequest menu = MakeObjectLine(line, model_.DragNode.Get()->Tag(), point);
    model_.DragNode = {};
    return menu;
}

ScriptRequest ScriptDrops::InsertAtSelection(const NodeRef& source) {
    const DragSource kind = sourceOf(source);
    TreeControl& tree = model_.TreeView1();
    if (kind == DragSource::None || kind == DragSource::ScriptLine || !tree.FirstRoot())
        return {};
    DropPlace place;
    if (TreeNode* selected = tree.SelectedItem())
        place = IsBlock(selected->Text()) ? DropPlace{.Relative = selected, .How = Relation::Child}
                                          : DropPlace{.Relative = selected, .How = Relation::Next};
    else
        place = {.Relative = tree.FirstRoot()->LastSibling(), .How = Relation::Child};
    return Fill(place, kind, source.Get(), QPoint());
}

} // namespace vessa
