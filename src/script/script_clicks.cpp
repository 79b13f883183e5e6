#include "script/script_clicks.h"

#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "controls/tree_geometry.h"
#include "script/basic_text.h"
#include "script/script_model.h"
#include "script/tree_walks.h"

#include <QTextLayout>

#include <algorithm>

namespace vessa {

namespace {

ScriptRequest Request(ScriptRequest::Kind what, int number = 0) {
    ScriptRequest request;
    request.What = what;
    request.Number = number;
    return request;
}

ScriptRequest NameEditor(const QString& name) {
    ScriptRequest request = Request(ScriptRequest::Kind::TextEditor);
    request.Value = name;
    request.Title = QStringLiteral("(Re)Name Animation");
    request.Prompt = QStringLiteral("Type a name for this animation:");
    return request;
}

std::vector<MenuRow> AllNodeRows() {
    const char* captions[] = {"Perform this Line",
                              "-",
                              "Cut Line",
                              "Copy Line",
                              "Paste Line",
                              "Delete Line",
                              "-",
                              "Type Programming Language Code (Python)",
                              "Change to (temp)",
                              "(Re)Name Line...",
                              "Remove Value"};
    std::vector<MenuRow> rows;
    for (const char* caption : captions)
        rows.push_back({QString::fromLatin1(caption), false, true});
    return rows;
}

void Show(std::vector<MenuRow>& rows, std::initializer_list<int> visible) {
    for (int row : visible)
        rows[static_cast<size_t>(row)].Visible = true;
}

// A line whose pieces can't be told apart offers nothing to choose; the user is told
// which line it is and what can be done with it.
ScriptRequest unreadableLine(const QString& line) {
    ScriptRequest message = Request(ScriptRequest::Kind::Message);
    message.Title = QStringLiteral("Vessa47");
    message.Value = QStringLiteral("Vessa47 can't read this line of your script:\n\n    ") + line +
                    QStringLiteral("\n\nIt is not written the way script lines are, so there is "
                                   "nothing in it to choose from. You can delete the line and make "
                                   "it again, or make it a Python line of your own: right-click it "
                                   "and choose \"Type Programming Language Code (Python)\".");
    return message;
}

// The character under point in node's text, as the tree shows it.
int characterAt(const TreeNode* node, const QPoint& point, const TreeGeometry& geometry) {
    return node ? RichCharNumOver(node->Text(), geometry.TextFont(), geometry.NodeRect(node), point)
                : 0;
}

} // namespace

int RichCharNumOver(const QString& text, const QFont& font, const QRect& textRect,
                    const QPoint& point) {
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid())
        return 0;
    return std::max(line.xToCursor(point.x() - textRect.left(), QTextLine::CursorOnCharacter), 0);
}

void ScriptClicks::TreeView1_MouseDown(Qt::MouseButton button, const QPoint& point,
                                       const TreeGeometry& geometry) {
    // The right button drags too: its drop copies the line instead of moving it.
    if (button != Qt::LeftButton && button != Qt::RightButton)
        return;
    TreeControl& tree = model_.TreeView1();
    TreeNode* node = geometry.HitTest(point);
    if (node && button == Qt::LeftButton)
        tree.SetSelectedItem(node);
    // An animation is selected like any node, but not dragged.
    if (node && node->Parent())
        model_.DragButton = button;
    model_.DragNode = NodeRef::To(tree, node);
}

ScriptRequest ScriptClicks::TreeView1_MouseUp(Qt::MouseButton button, const QPoint& point,
                                              const TreeGeometry& geometry) {
    model_.LastClickX = point.x() * geometry.TwipsPerPixel();
    model_.LastClickY = point.y() * geometry.TwipsPerPixel();
    model_.TreeView1().SetDropHighlight(nullptr);
    TreeNode* node = geometry.HitTest(point);
    const int offset = characterAt(node, point, geometry);
    ScriptRequest request;
    if (button == Qt::LeftButton)
        request = LeftClick(model_.TreeView1(), node, offset);
    else if (button == Qt::RightButton)
        request = RightClick(node, offset);
    request.TreePoint = point;
    return request;
}

ScriptRequest ScriptClicks::CommandLineTreeview_MouseUp(Qt::MouseButton button, const QPoint& point,
                                                        const TreeGeometry& geometry) {
    if (button != Qt::LeftButton)
        return {};
    TreeNode* node = geometry.HitTest(point);
    ScriptRequest request =
        LeftClick(model_.CommandLineTreeview(), node, characterAt(node, point, geometry));
    request.TreePoint = point;
    return request;
}

ScriptRequest ScriptClicks::pressEnter(TreeControl& tree, TreeNode* node, int offset) {
    return LeftClick(tree, node, offset);
}

ScriptRequest ScriptClicks::pressMenuKey(TreeNode* node, int offset) {
    return RightClick(node, offset);
}

ScriptRequest ScriptClicks::LeftClick(TreeControl& tree, TreeNode* node, int offset) {
    if (!node)
        return {};
    ParseState& parse = model_.Parse();
    parse.SelectedNode = NodeRef::To(tree, node);
    const QString& line = node->Text();
    if (node->Tag() == PythonLineTag) {
        tree.StartLabelEdit(node);
        return {};
    }
    if (IsBlock(line))
        return NameEditor(line.contains(QStringLiteral(" = ")) ? AnimationName(line) : QString());
    if (IsSoundLine(line))
        return Request(ScriptRequest::Kind::SoundList);
    if (!ParseAt(node, offset))
        return unreadableLine(line);
    try {
        return EditorForClick(parse);
    } catch (const RunTimeError&) {
        return {};
    }
}

bool ScriptClicks::ParseAt(TreeNode* node, int offset) {
    try {
        ParseString(model_.Parse(), node->Text(), offset);
        return true;
    } catch (const RunTimeError&) {
        // A line that does not parse stays as it is.
        return false;
    }
}

ScriptRequest ScriptClicks::RightClick(TreeNode* node, int offset) {
    if (!node) {
        ScriptRequest request = Request(ScriptRequest::Kind::BlankMenu);
        request.Rows = BlankMenuRows(codeBoxShown_);
        return request;
    }
    model_.TreeView1().SetSelectedItem(node);
    model_.Parse().SelectedNode = NodeRef::To(model_.TreeView1(), node);
    ScriptRequest request = Request(ScriptRequest::Kind::NodeMenu);
    request.Rows = NodeMenuRows(node, offset);
    return request;
}

std::vector<MenuRow> ScriptClicks::NodeMenuRows(TreeNode* node, int offset) {
    std::vector<MenuRow> rows = AllNodeRows();
    // Any line or block, the user's own Python too, can be run on its own at once.
    Show(rows, {PerformLine, UpperSeparator});
    rows[PasteLine].Visible = pasteLineShown_;
    const QString& line = node->Text();
    if (IsBareSoundLine(line)) {
        Show(rows, {CutLine, CopyLine, DeleteLine, LowerSeparator, PythonLine});
        return rows;
    }
    if (IsBlock(line)) {
        Show(rows, {CutLine, CopyLine, DeleteLine, LowerSeparator, ChangeBlock, RenameLine});
        rows[ChangeBlock].Caption = IsInOrderBlock(line) ? QStringLiteral("Change to DoTogether")
                                                         : QStringLiteral("Change to DoInOrder");
        return rows;
    }
    Show(rows, {CutLine, CopyLine, DeleteLine, LowerSeparator, PythonLine});
    // A Python line is the user's own text: no value of it is the script's to remove.
    if (node->Tag() == PythonLineTag)
        return rows;
    const ParseState& parse = model_.Parse();
    if (!ParseAt(node, offset) || parse.ClickedKind <= MarkerKind)
        return rows;
    MenuRow& remove = rows[RemoveValue];
    remove.Visible = true;
    const bool optional =
        CommandParameters(parse.ParsedCommand).Optional.SlotOf(parse.ClickedKind) >= 0;
    remove.Enabled = optional;
    if (optional)
        remove.Caption = QStringLiteral("Remove ") + ParameterKinds(parse.ClickedKind).Name;
    return rows;
}

std::vector<MenuRow> ScriptClicks::BlankMenuRows(bool codeBoxShown) {
    return {{QStringLiteral("Add New Action"), true, true},
            {QStringLiteral("Add Python Code Box"), !codeBoxShown, true},
            {QStringLiteral("Remove Python Code Box"), codeBoxShown, true}};
}

ScriptRequest ScriptClicks::mnuNodeRightB_Click(int row) {
    TreeNode* node = model_.Parse().SelectedNode.Get();
    if (!node)
        return {};
    switch (row) {
    case PerformLine: {
        ScriptRequest perform = Request(ScriptRequest::Kind::PerformLine);
        // A Python line on its own runs as the statement it is: the comma that
        // makes it an item of a block would turn `x = 5` into a tuple.
        if (node->Tag() == PythonLineTag)
            perform.Value = node->Text() + QStringLiteral("\r\n");
        else
            TraverseTreeForLine(node, QString(), perform.Value);
        return perform;
    }
    case PythonLine:
        model_.MakePythonLine(node);
        return {};
    case ChangeBlock:
        model_.ChangeBlockKind(node);
        return {};
    case RenameLine: {
        const QString& line = node->Text();
        if (line.contains(QStringLiteral(" = ")))
            return NameEditor(AnimationName(line));
        if (line.contains(QStringLiteral(" : ")))
            return NameEditor(text::Before(line, u" : "));
        return NameEditor(QString());
    }
    case RemoveValue:
        try {
            model_.RemoveValue(node);
        } catch (const RunTimeError&) {
            // The parse behind the row was of this line; a line it cannot rebuild stays.
        }
        return {};
    default:
        return Request(ScriptRequest::Kind::NodeCommand, row);
    }
}

ScriptRequest ScriptClicks::mnuBlankRightB_Click(int row) {
    if (row == AddNewAction) {
        model_.AddNewAnimation();
        return {};
    }
    return Request(ScriptRequest::Kind::BlankCommand, row);
}

} // namespace vessa
