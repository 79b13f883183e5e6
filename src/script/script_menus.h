#pragma once

#include "script/action_menu.h"
#include "script/in_place_editors.h"
#include "script/menu_state.h"
#include "script/star_menu.h"

namespace vessa {

class ScriptModel;

// The menus and editors that change a line or make one: the action cascade, the object's
// menu, the value menus, the sound list, the text box and the object picker, over one
// script and one memory of what was chosen and typed. Windows show them; the rules are
// here.
class ScriptMenus {
public:
    explicit ScriptMenus(ScriptModel& model)
        : actions_(model, state_), star_(model, state_), textBox_(model, state_),
          picker_(model, state_) {}
    ScriptMenus(const ScriptMenus&) = delete;
    ScriptMenus& operator=(const ScriptMenus&) = delete;

    MenuState& state() { return state_; }
    ActionMenu& actions() { return actions_; }
    StarMenu& star() { return star_; }
    TextInputBox& textBox() { return textBox_; }
    ObjectPicker& picker() { return picker_; }

    // The rows of the menu a request asks for: the action cascade, an object's menu, the
    // values behind "more..." or of one parameter, the sounds. None for other requests.
    std::vector<MenuRow> menuRows(const ScriptRequest& request);

private:
    MenuState state_;
    ActionMenu actions_;
    StarMenu star_;
    TextInputBox textBox_;
    ObjectPicker picker_;
};

} // namespace vessa
