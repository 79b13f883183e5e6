#pragma once

#include "controls/node_ref.h"
#include "controls/tree_control.h"
#include "script/menu_state.h"
#include "script/script_request.h"

namespace vessa {

class ScriptModel;

// What OK in an editor came to: it closes, or it stays open with a prompt that says
// what was wrong, the line or block being left as it was.
struct EditorAnswer {
    bool Close = true;
    QString Label;
};

// The text box that serves names of animations and blocks and typed values. What its OK
// does is fixed when it opens: a name for the block clicked, a value for the line
// clicked, or the last value of a command that runs in the scene at once.
class TextInputBox {
public:
    TextInputBox(ScriptModel& model, MenuState& state) : model_(model), state_(state) {}

    void BringUpTextWidget(const ScriptRequest& request);
    // text as typed; label the prompt the box shows now.
    EditorAnswer OKButton_Click(const QString& text, const QString& label);

private:
    enum class Mode { OneShot, Name, Value };

    EditorAnswer oneShot(const QString& text, const QString& label);
    EditorAnswer name(const QString& text, const QString& label);
    EditorAnswer value(const QString& text, const QString& label);

    ScriptModel& model_; // Not owned.
    MenuState& state_;   // Not owned.
    Mode mode_ = Mode::Value;
    int kind_ = 0; // of the value asked for
    NodeRef node_; // the line or block under edit
};

// Why text can't be a value of kind, for the editor's prompt; empty when it can. A
// number is digits with at most one "/" or "." among them; a sound, one of the scene's
// or a file name in double quotes; any value, text without blanks, commas or brackets,
// which the line needs to tell its values apart.
QString valueRefusal(int kind, const QString& text, const QStringList& sounds);

// The tree that pops up to pick an object (TreeWidget): the scene's objects, the scene
// on top, the current choice selected. An object that can't be chosen here is grey: the
// one that would point at itself. What it picks goes into the line clicked, runs in the
// scene at once, or, for an event row, goes to whoever asked, with "AnyWhere" offered
// below the scene.
class ObjectPicker {
public:
    using Picked = std::function<void(const QString& objectName)>;

    ObjectPicker(ScriptModel& model, MenuState& state) : model_(model), state_(state) {}

    TreeControl& TreeWidget() { return treeWidget_; }
    // picked: where the choice goes instead of the script, if anywhere.
    void StartTreeWidget(const ScriptRequest& request, Picked picked = {});

    // The node chosen: a grey node or none is no choice and the picker stays; otherwise
    // the object goes into the line, or the command with it runs in the scene.
    EditorAnswer TreeWidget_MouseUp(TreeNode* node);
    // The same by name, as typed: the object whose name is text, or the first whose name
    // begins with it. A text that names no object is refused.
    EditorAnswer pickByName(const QString& text);
    // The first object whose name begins with text, for the picker to show while typing.
    TreeNode* firstNamed(const QString& text) const;

private:
    ScriptModel& model_; // Not owned.
    MenuState& state_;   // Not owned.
    TreeControl treeWidget_;
    bool oneShot_ = false;
    int kind_ = 0;
    Picked picked_;
};

} // namespace vessa
