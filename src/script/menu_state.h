#pragma once

#include "script/number_history.h"

#include <QString>

namespace vessa {

// What the script's menus remember between the rows a user goes through and the editor
// that finishes a choice.
struct MenuState {
    // The command chosen in the action cascade, by number.
    int PendingCommand = 0;
    // The values chosen in the object menu's cascade, for a command run at once.
    QString PendingFirstValue;
    QString PendingSecondValue;
    // The editor open is finishing a command to run at once, not a line.
    bool gOneShots = false;
    // The object whose menu is open.
    QString MenuObject;
    NumberHistory History;
};

} // namespace vessa
