#pragma once

#include "text/text_search.h"

#include <QString>
#include <QStringList>

namespace vessa {

class ScriptModel;
class TreeNode;

// What a replace did to the script: how many lines it changed, and the lines it left as
// they were because the new text would not be a line the script can read.
struct ScriptReplaceResult {
    int Lines = 0;
    QStringList Refused; // the lines as they would have read
};

// Replace over the script's lines as they are shown (without the "more..." marker,
// which each line keeps). Each kind of line keeps what makes it that kind: a command
// line must still parse, a Python line may hold anything, and an animation or a block
// may change only its name, to a name allowed and, for an animation, not yet used; an
// animation's events follow its new name. Each change is recorded in the script's undo
// log, and a replace of all is one step of undo.
class ScriptReplace {
public:
    explicit ScriptReplace(ScriptModel& model) : model_(model) {}

    // The selected line, every place the text stands in it.
    ScriptReplaceResult ReplaceInSelected(const QString& target, const QString& with,
                                          const FindOptions& options);
    // Every line of the script.
    ScriptReplaceResult ReplaceAll(const QString& target, const QString& with,
                                   const FindOptions& options);

private:
    // Replaces in node, recording the change; answers whether it changed.
    bool replaceIn(TreeNode* node, const QString& target, const QString& with,
                   const FindOptions& options, ScriptReplaceResult& result);
    // The new text of an animation's root or a block, when only its name changed.
    bool renames(TreeNode* node, const QString& replaced);
    void change(TreeNode* node, const QString& text);

    ScriptModel& model_; // Not owned.
};

} // namespace vessa
