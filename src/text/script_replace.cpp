#include "text/script_replace.h"

#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "script/script_line.h"
#include "script/script_model.h"
#include "text/script_find.h"

namespace vessa {

namespace {

const QString Marker = QStringLiteral("more...");

// The marker goes back where it stood, at the end of the values.
QString withMarkerOf(const QString& original, const QString& shown) {
    if (shown == original || !original.contains(Marker, Qt::CaseInsensitive))
        return shown;
    if (shown.endsWith(QStringLiteral("()")))
        return shown.chopped(1) + Marker + u')';
    if (shown.endsWith(u')'))
        return shown.chopped(1) + QStringLiteral(", ") + Marker + u')';
    return shown;
}

bool parses(const QString& line) {
    ParseState probe;
    try {
        ParseString(probe, line, 0);
    } catch (const RunTimeError&) {
        return false;
    }
    return true;
}

} // namespace

QString ScriptReplace::replacedLine(const TreeNode* node, const QString& target,
                                    const QString& with, const FindOptions& options,
                                    bool& refused) {
    refused = false;
    const QString& line = node->Text();
    const QString shown = lineAsShown(line);
    int count = 0;
    const QString replaced = replaceText(shown, target, with, options, count);
    if (count == 0)
        return line;
    if (node->Tag() == PythonLineTag)
        return replaced;
    const QString result = withMarkerOf(line, replaced);
    refused = !node->Parent() || IsBlock(line) || IsBlock(result) || !parses(result);
    return result;
}

bool ScriptReplace::replaceIn(TreeNode* node, const QString& target, const QString& with,
                              const FindOptions& options, ScriptReplaceResult& result) {
    bool refused = false;
    const QString line = replacedLine(node, target, with, options, refused);
    if (refused) {
        result.Refused << line;
        return false;
    }
    if (line == node->Text())
        return false;
    model_.UndoLog(UndoOperation::Changed, node);
    model_.TreeView1().SetText(node, line);
    ++result.Lines;
    return true;
}

ScriptReplaceResult ScriptReplace::ReplaceInSelected(const QString& target, const QString& with,
                                                     const FindOptions& options) {
    ScriptReplaceResult result;
    if (TreeNode* node = model_.TreeView1().SelectedItem())
        replaceIn(node, target, with, options, result);
    return result;
}

ScriptReplaceResult ScriptReplace::ReplaceAll(const QString& target, const QString& with,
                                              const FindOptions& options) {
    ScriptReplaceResult result;
    for (TreeNode* node = model_.TreeView1().FirstRoot(); node; node = nodeAfter(node))
        replaceIn(node, target, with, options, result);
    model_.UndoLogGroup(result.Lines);
    return result;
}

} // namespace vessa
