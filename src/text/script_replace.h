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
// which each line keeps). A command line must still parse after the replace and a
// Python line may hold anything; animations and blocks are renamed by their own editor
// and are left alone. Each change is recorded in the script's undo log, and a
// replace of all is one step of undo.
class ScriptReplace {
public:
    explicit ScriptReplace(ScriptModel& model) : model_(model) {}

    // The selected line, every place the text stands in it.
    ScriptReplaceResult ReplaceInSelected(const QString& target, const QString& with,
                                          const FindOptions& options);
    // Every line of the script.
    ScriptReplaceResult ReplaceAll(const QString& target, const QString& with,
                                   const FindOptions& options);

    // The text node would have with target replaced; the same text when it does not
    // hold target. refused is set when the new text is no line the script can read.
    static QString replacedLine(const TreeNode* node, const QString& target, const QString& with,
                                const FindOptions& options, bool& refused);

private:
    // Replaces in node, recording the change; answers whether it changed.
    bool replaceIn(TreeNode* node, const QString& target, const QString& with,
                   const FindOptions& options, ScriptReplaceResult& result);

    ScriptModel& model_; // Not owned.
};

} // namespace vessa
