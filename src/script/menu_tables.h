#pragma once

#include "script/number_history.h"
#include "script/script_request.h"

#include <QStringList>

#include <vector>

// The captions of the script's value menus. They are what a user sees and what goes into
// a line, and differ on purpose from the vocabulary's own lists of values: "Back" where
// the vocabulary has "back", "1 (meter)" where a line gets "1".
namespace vessa::menus {

// One command of the action cascade: its caption, the values of its first level, and for
// each of those the numbers of a second level.
struct CascadeCommand {
    QString Caption;
    QStringList First;
    bool FirstIsNumber = false; // the first level ends in "Other..." and the history
    std::vector<QStringList> Second;
};

// The commands of the action cascade in menu order, Wait among them. The one-shot
// cascade of the object menu leaves Wait out.
const std::vector<CascadeCommand>& actionCascade();

// Rows for the values of a number: the values, a separator, "Other...", and the history
// of typed numbers behind one more separator, which shows only once a number was typed.
std::vector<MenuRow> numberRows(const QStringList& values, const NumberHistory& history);

// The value rows of a parameter kind's star menu, 4 to 23. Kind 10's two named rows say
// what "half" and "twice" mean for the direction given, as first value of the line.
std::vector<MenuRow> starValueRows(int kind, const QString& direction,
                                   const NumberHistory& history);

// The text a caption puts into a line: "1 (meter)" gives "1", "1/2 ()" gives "1/2".
QString valueOfCaption(const QString& caption);

// "Other...", "Pick Object..." and their like open an editor rather than give a value.
bool opensEditor(const QString& caption);

// The editor behind such a row for a value of kind: the object picker for the kinds
// that name another object, otherwise the text box that asks for the value by the
// kind's name. oneShot: its result runs in the scene at once.
ScriptRequest editorForKind(int kind, bool oneShot);

} // namespace vessa::menus
