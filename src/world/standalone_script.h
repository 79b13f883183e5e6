#pragma once

#include "controls/list_control.h"
#include "controls/tree_control.h"
#include "script/animation_name_list.h"
#include "world/code_box_text.h"
#include "world/python_generator.h"
#include "world/world_script_file.h"

namespace vessa {

// A world's script held apart from the open world and its windows: the script tree,
// the names of its animations, the event rows and the code box's text, for a world read
// and turned into Python without the program's windows (the command line). The rows
// stand in a plain list with the event list's columns; each row read gets a key of its
// own, "Key0", "Key1" and so on.
class StandaloneScript {
public:
    StandaloneScript();
    StandaloneScript(const StandaloneScript&) = delete;
    StandaloneScript& operator=(const StandaloneScript&) = delete;

    // Where a script file is read into.
    ScriptTargets targets();
    // Reads the world's script files and, when they can be used, holds what they hold;
    // answers what was read, or the problem.
    ScriptFileRead LoadScriptFiles(const QString& worldPath);
    // The world's Python from what is held now.
    PythonScript python() const;

    TreeControl TreeView1;
    AnimationNameList AnimationNames;
    ListControl ListView1;
    CodeBoxText ArbitraryCodeBox;

private:
    int rowCounter_ = 0;
};

} // namespace vessa
