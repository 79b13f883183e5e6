#pragma once

#include <QPoint>
#include <QString>

#include <vector>

namespace vessa {

// One row of a pop-up menu as the script's rules decide it.
struct MenuRow {
    QString Caption; // "-" for a separator
    bool Visible = true;
    bool Enabled = true;
};

// What a click on the script asks for. The script decides; whoever shows menus and
// editors carries it out. Requests of the kinds marked "later" are answered by the
// menus, editors and commands that other parts of the program add.
struct ScriptRequest {
    enum class Kind {
        None,
        ObjectPicker, // later: pick an object; Value is the one to select
        ActionMenu,   // later: the cascade of commands
        StarMenuAll,  // later: the optional parameters of command Number
        StarMenuRow,  // later: the values of parameter kind Number
        TextEditor,   // later: a name editor with Title, Prompt and Value as default
        SoundList,    // later: the sounds to choose from
        NodeMenu,     // the node menu with Rows
        BlankMenu,    // the blank-space menu with Rows
        NodeCommand,  // later: row Number of the node menu (perform, cut, copy, paste, delete)
        BlankCommand, // later: row Number of the blank-space menu (the Python code box)
    };

    Kind What = Kind::None;
    int Number = 0;
    QString Value;
    QString Title;
    QString Prompt;
    std::vector<MenuRow> Rows;
    // Where the click fell, in pixels of the tree's viewport, and on the screen.
    QPoint TreePoint;
    QPoint ScreenPoint;
};

} // namespace vessa
