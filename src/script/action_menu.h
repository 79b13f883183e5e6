#pragma once

#include "script/menu_state.h"
#include "script/script_request.h"

#include <QStringList>

#include <vector>

namespace vessa {

class ScriptModel;

// The cascade from which a whole command is chosen with its values (command, first value,
// second value), and the object's own menu.
//
// On a line, the cascade changes the line clicked. In an object's menu it makes a new
// line of that object in the animation being written or, while the opening scene is
// shown, runs the command in the scene at once. The object's menu also holds rows that
// act on the object in the scene: the camera's look at it, a copy, its name, how it is
// drawn. Rows are built from the tables each time a menu opens; choosing one runs its
// handler on the parse state, and what is left to show comes back as a request.
class ActionMenu {
public:
    ActionMenu(ScriptModel& model, MenuState& state) : model_(model), state_(state) {}

    // The cascade over the command of the line being edited (mnuActionsMain).
    std::vector<MenuRow> mnuActionsMain();
    // The menu of an object, as the engine describes it. Only models offer the whole
    // cascade to run at once; other objects keep SetColor.
    std::vector<MenuRow> ObjectMenuButton(const QString& objectName);

    // A path through the cascade chosen: the command's caption, then the captions of the
    // values chosen below it, none, one or two. On the line being edited; in a new line of
    // the object in the current animation; or run in the scene at once.
    ScriptRequest chosenOnLine(const QStringList& path);
    ScriptRequest chosenForNewLine(const QString& objectName, const QStringList& path);
    ScriptRequest chosenOneShot(const QStringList& path);

    // The last step of every choice on a line: the value goes into the line, or an editor
    // opens for "Other...".
    ScriptRequest universalclick(const QString& value);
    // The same for a command run at once on the object of the menu.
    ScriptRequest UniversalClickTwo(const QString& value);

    // The object of the menu gets the name the user typed, if the engine takes it.
    ScriptRequest renameObject(const QString& objectName, const QString& newName);

private:
    std::vector<MenuRow> cascade(bool withWait,
                                 const std::function<ScriptRequest(const QStringList&)>& chosen);
    std::vector<MenuRow> objectRows(const QString& objectName, const QVariantList& facts);
    ScriptRequest editorForOther(bool oneShot);

    ScriptModel& model_; // Not owned.
    MenuState& state_;   // Not owned.
};

} // namespace vessa
