#pragma once

#include "script/script_line.h"
#include "script/script_request.h"

#include <QFont>
#include <QPoint>
#include <QRect>

namespace vessa {

class ScriptModel;
class TreeControl;
class TreeGeometry;
class TreeNode;

// The character of text under point: text is drawn in font with its first glyph at
// textRect's left edge. An offset from 0; a point left of the text gives 0. The text
// is one line, so only the horizontal position matters.
int RichCharNumOver(const QString& text, const QFont& font, const QRect& textRect,
                    const QPoint& point);

// The mouse on the script's trees: what a press and a release on TreeView1 or on the
// command line's tree do, and what the rows of the two right-click menus do. Each
// handler changes the model itself where the script's rules say how, and returns what
// is left to show: a menu, an editor or a message.
class ScriptClicks {
public:
    // The rows of the node menu, by index.
    enum NodeRow {
        PerformLine = 0,
        UpperSeparator = 1,
        CutLine = 2,
        CopyLine = 3,
        PasteLine = 4,
        DeleteLine = 5,
        LowerSeparator = 6,
        PythonLine = 7,
        ChangeBlock = 8,
        RenameLine = 9,
        RemoveValue = 10,
    };
    // The rows of the blank-space menu.
    enum BlankRow { AddNewAction = 0, AddCodeBox = 1, RemoveCodeBox = 2 };

    explicit ScriptClicks(ScriptModel& model) : model_(model) {}

    // Whether the Python code box shows, which decides the blank-space menu's rows.
    void SetCodeBoxShown(bool shown) { codeBoxShown_ = shown; }
    // Whether something has been copied: "Paste Line" shows from then on.
    void SetPasteLineShown(bool shown) { pasteLineShown_ = shown; }

    // TreeView1: a press remembers the node as the one a drag would take, with the
    // button that pressed it; the left button also selects it.
    void TreeView1_MouseDown(Qt::MouseButton button, const QPoint& point,
                             const TreeGeometry& geometry);
    ScriptRequest TreeView1_MouseUp(Qt::MouseButton button, const QPoint& point,
                                    const TreeGeometry& geometry);
    // The command line's tree: a left click opens the editors of its line.
    ScriptRequest CommandLineTreeview_MouseUp(Qt::MouseButton button, const QPoint& point,
                                              const TreeGeometry& geometry);

    // The keyboard on a node of tree (TreeView1 or the command line's), its line's piece
    // at character offset being the current one: Enter opens what a left click on that
    // piece opens, the menu key the node menu that a right click on it shows.
    ScriptRequest pressEnter(TreeControl& tree, TreeNode* node, int offset);
    ScriptRequest pressMenuKey(TreeNode* node, int offset);

    // The rows of the node menu for a node, after a right click on character offset.
    std::vector<MenuRow> NodeMenuRows(TreeNode* node, int offset);
    // The rows of the blank-space menu; codeBoxShown decides which code box row shows.
    static std::vector<MenuRow> BlankMenuRows(bool codeBoxShown);
    // A chosen row. The Python row expects the user's consent to have been given;
    // "Perform this Line" asks for the Python of the node and all below it to be run.
    ScriptRequest mnuNodeRightB_Click(int row);
    ScriptRequest mnuBlankRightB_Click(int row);

private:
    ScriptRequest LeftClick(TreeControl& tree, TreeNode* node, int offset);
    ScriptRequest RightClick(TreeNode* node, int offset);
    bool ParseAt(TreeNode* node, int offset);

    ScriptModel& model_; // Not owned.
    bool codeBoxShown_ = false;
    bool pasteLineShown_ = false;
};

} // namespace vessa
