#pragma once

#include <QList>
#include <QString>

namespace vessa {

class ListControl;
class TreeControl;
class TreeNode;

// The line that parts the generated Python from the hand-edited code.
inline const QString kHandEditedMarker =
    QStringLiteral("### Everything below this line is hand-edited Python Code ###");

// Something the generator could not turn into Python and left out, for the user. row
// is the event row's position in the list, from 1; 0 when the notice is of no row.
struct ScriptNotice {
    int row = 0;
    QString message;
};

// A world's Python: CR LF line ends, tabs for indentation. The hand-edited code starts
// at handEditedLine (lines counted from 0), below the marker line.
struct PythonScript {
    QString text;
    int handEditedLine = 0;
    QList<ScriptNotice> notices;
};

// Turns the script tree, the event list and the code box's text into one Python
// program: first what the event rows make, in list order (for key rows a function
// "TVDef_..." per key event and animation with its own copy of the animation; for other
// rows the animation's definition, stopped, and the response or, for "World Start", a
// started copy), then the definitions of the animations no row defined, in tree order,
// then the marker and the code as it stands. Rows are read as SubItems 1 to 3: When,
// Happens To, Do Animation.
//
// The text keeps the forms worlds already written depend on, odd ones included. Where
// that form would fail (a row naming an animation that is gone, a key row naming no key,
// an animation without a name), the generator leaves that piece out, says so in a
// notice, and writes the rest.
PythonScript MakePythonScript(const TreeControl& TreeView1, const ListControl& ListView1,
                              const QString& code);

// Appends the Python of node and all below it, each line behind indent (tabs): a block
// as its bare word and "(", its children one tab further in, and ")" (")," inside
// another block); a line with its marker and long style names taken out, and ",".
void MakePythonNode(const TreeNode* node, const QString& indent, QString& buffer);

// The line of the character at position (from 0) in text, lines counted from 0 as the
// engine splits them: at CR LF, CR or LF.
int lineOfPosition(const QString& text, qsizetype position);

} // namespace vessa
