#pragma once

#include "script/script_request.h"

namespace vessa {

class EventList;

// The menus through which a row of the event list is edited (ListViewMenu): the
// conditions of the When column, with the keys behind "KeyDown" and "KeyUp", the
// animations of the Do Animation column, and the list's own menu that makes a row; and
// what the object picker of the Happens To column does with its choice. Each
// choice changes the event list's CurrentRow in the column of the last click and is
// recorded for undo; choosing what the row says already records nothing.
class EventMenus {
public:
    explicit EventMenus(EventList& list) : list_(list) {}

    // The rows of the menu request asks for: the conditions, the animations named in its
    // Rows, or the list's own menu. None for other requests.
    std::vector<MenuRow> menuRows(const ScriptRequest& request);

    // A condition chosen by its caption. "KeyDown" and "KeyUp" only open their keys.
    void mnuConditions_Click(const QString& caption);
    // A key chosen under keyEvent ("KeyDown" or "KeyUp"). "Others..." asks for the key
    // to be pressed; the row changes when it is (keyPressed).
    ScriptRequest mnuKeyDown_Click(const QString& keyEvent, const QString& caption);
    // The key pressed for "Others...": its first character, in capitals, goes into the
    // row, `KeyDown ("A" key)`; nothing pressed (the question cancelled) gives
    // `KeyDown ("" key)`.
    void keyPressed(const QString& keyEvent, const QString& answer);
    // An animation chosen for the row.
    void mnuResponses_Click(const QString& caption);
    // Who the row happens to, picked from the scene's objects or "AnyWhere".
    void objectPicked(const QString& objectName);

private:
    std::vector<MenuRow> mnuConditions();
    std::vector<MenuRow> keyRows(const QString& keyEvent);
    std::vector<MenuRow> mnuResponses(const std::vector<MenuRow>& names);
    std::vector<MenuRow> mnuListViewMain();
    // Records the row and writes its new When; a start row left behind happens anywhere.
    void changeWhen(const QString& when);

    EventList& list_; // Not owned.
};

// The prompt of the question for a key.
inline const QString kKeyPrompt =
    QStringLiteral("Hit the Key you would like the Animation to Respond to: ");

} // namespace vessa
