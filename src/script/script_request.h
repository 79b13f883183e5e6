#pragma once

#include <QPoint>
#include <QString>

#include <functional>
#include <map>
#include <vector>

namespace vessa {

struct ScriptRequest;

// One row of a pop-up menu as the script's rules decide it: a row to choose, a
// separator, or a row that opens a menu of its own.
struct MenuRow {
    QString Caption{}; // "-" for a separator
    bool Visible = true;
    bool Enabled = true;
    // The rows of the menu this row opens; empty for a row that is chosen.
    std::vector<MenuRow> Rows{};
    // What choosing the row does, and what is left to show after it: an editor, a
    // message, or nothing. Rows of the node and blank-space menus go by their index instead.
    std::function<ScriptRequest()> Chosen{};
    bool Checkable = false;
    bool Checked = false;
    bool Default = false; // shown in bold: the row the menu is about
    QString Name{};       // the control's name, for rows that have one of their own

    bool IsSeparator() const { return Caption == u"-"; }
};

// What a click asks for. The script, or the event list, decides; whoever shows menus
// and editors carries it out. Requests of the kinds marked "later" are answered by the menus,
// editors and commands that other parts of the program add.
struct ScriptRequest {
    enum class Kind {
        None,
        ObjectPicker, // pick an object; Value is the one to select
        ActionMenu,   // the cascade of commands
        StarMenuAll,  // the optional parameters of command Number
        StarMenuRow,  // the values of parameter kind Number
        TextEditor,   // a name or value editor with Title, Prompt and Value as default
        SoundList,    // the sounds to choose from
        NodeMenu,     // the node menu with Rows
        BlankMenu,    // the blank-space menu with Rows
        Message,      // tell the user Value, in a box titled Title
        PerformLine,  // run Value, the Python of a line or block, at once in the scene
        NodeCommand,  // later: row Number of the node menu (cut, copy, paste, delete)
        BlankCommand, // later: row Number of the blank-space menu (the Python code box)
        ObjectMenu,   // the action menu of the object named Value, at the mouse
        ObjectRename, // ask for a new name of the object named Value
        PaintObject,  // later: open the object named Value in the paint tool
        // The editors of the event list's CurrentRow, column Number, whose text is Value:
        EventConditionMenu, // the conditions
        EventObjectPicker,  // who it happens to, with "AnyWhere"; Value to select
        EventResponseMenu,  // the animations, one of Rows each
        EventKeyCapture,    // the key to wait for, pressed: Title "KeyDown" or "KeyUp"
        EventListMenu,      // the list's own menu, which makes a row
    };

    Kind What = Kind::None;
    int Number = 0;
    QString Value;
    QString Title;
    QString Prompt;
    std::vector<MenuRow> Rows;
    // An editor or picker whose result runs in the scene at once rather than going into a
    // line: the object menu's commands on the opening scene.
    bool OneShot = false;
    // Where the click fell, in pixels of the tree's viewport, and on the screen.
    QPoint TreePoint;
    QPoint ScreenPoint;
};

// Who answers which requests: each part of the program that shows a menu or an editor,
// or carries out a command, registers for its kinds. A request that nobody registered
// for is dropped, as a click on something not built yet.
class ScriptRequests {
public:
    using Handler = std::function<void(const ScriptRequest&)>;

    // Replaces the handler of kind; an empty handler removes it.
    void registerHandler(ScriptRequest::Kind kind, Handler handler) {
        if (handler)
            handlers_[kind] = std::move(handler);
        else
            handlers_.erase(kind);
    }
    // Hands request to the handler of its kind; false when there is none.
    bool route(const ScriptRequest& request) const {
        const auto handler = handlers_.find(request.What);
        if (handler == handlers_.end())
            return false;
        handler->second(request);
        return true;
    }

private:
    std::map<ScriptRequest::Kind, Handler> handlers_;
};

} // namespace vessa
