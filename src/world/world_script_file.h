#pragma once

#include "world/code_box_text.h"
#include "world/script_file_format.h"

#include <QStringList>

#include <functional>

namespace vessa {

class AnimationNameList;
class ListControl;
class TreeControl;

// Where a world's script is read into: the script tree TreeView1 and the names of its
// animations, the event list, and the code box. The event list is reached through two
// functions, so that its owner decides how a row is keyed and shown.
struct ScriptTargets {
    TreeControl& TreeView1;
    AnimationNameList& AnimationNames;
    std::function<void()> clearRows;
    std::function<void(const QString& when, const QString& happensTo, const QString& animation)>
        addRow;
    CodeBoxText& ArbitraryCodeBox;
};

// The text of world_script.tv for the script tree, the event list (SubItems 1 to 3 of
// each row: When, Happens To, Do Animation) and the code box's text. The file has no
// events section while the tree is empty, so rows without animations are not kept;
// notices tell the user of that, and of texts the file could not hold as they stood.
struct ScriptFileText {
    QString text;
    QStringList notices;
};
ScriptFileText MakeTVscript(const TreeControl& TreeView1, const ListControl& ListView1,
                            const QString& code);

// Reads and checks a tree script file (world_script.tv or a backup of one). A world of
// plain Python has no such file: then the Python file of the same stem becomes its
// code, and a world with neither has an empty script. Beyond the format, an
// animation's text must begin with its name and " = ", and no two animations share a
// name.
ScriptFileRead readTreeScript(const QString& fileName);

// Builds the controls from what readTreeScript gave: the tree with its texts, depths,
// expansion (the first animation always opens), Python lines on grey, animations in
// blue with their names as keys, and the icons; then the names of the animations, the
// rows, and the code, which shows the code box when it holds more than line ends.
void fillScriptControls(const ScriptFileContent& content, const ScriptTargets& targets);

// Reads fileName and fills the controls from it. A file that can't be used is refused
// with the problem, and the controls stay as they were.
FileProblem BuildTreeFromFile(const QString& fileName, const ScriptTargets& targets);
// The same for the world folder's world_script.tv.
FileProblem LoadScriptFiles(const QString& worldPath, const ScriptTargets& targets);

} // namespace vessa
