#pragma once

#include "script/menu_state.h"
#include "script/script_request.h"

#include <vector>

namespace vessa {

class ScriptModel;

// The value menus of a line: the values of the parameter clicked, the optional
// parameters behind "more...", each with its values, and the sounds for a PlaySound
// line. A value chosen goes into the line clicked; "Other..." and the "Pick" rows open
// an editor instead.
class StarMenu {
public:
    StarMenu(ScriptModel& model, MenuState& state) : model_(model), state_(state) {}

    // The values of a kind, 4 to 23, as a menu of its own.
    std::vector<MenuRow> mnuStarRow(int kind);
    // The optional parameters of a command, each opening its values, then "Show All...".
    std::vector<MenuRow> mnuStarAll(int command);
    // The scene's sounds; a disabled "<Empty>" when it has none.
    std::vector<MenuRow> mnuSoundList();

    // The common end of all value rows: value for a parameter of kind.
    ScriptRequest UniversalClick(int kind, const QString& value);
    // The line becomes "PlaySound(<sound>)".
    void mnuSoundList_Click(const QString& sound);

private:
    ScriptRequest chosen(int kind, const QString& caption);

    ScriptModel& model_; // Not owned.
    MenuState& state_;   // Not owned.
};

} // namespace vessa
