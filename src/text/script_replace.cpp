#include "text/script_replace.h"

#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "script/basic_text.h"
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

bool ScriptReplace::replaceIn(TreeNode* node, const QString& target, const QString& with,
                              const FindOptions& options, ScriptReplaceResult& result) {
    const QString& line = node->Text();
    int count = 0;
    const QString replaced = replaceText(lineAsShown(line), target, with, options, count);
    if (count == 0)
        return false;
    if (node->Tag() == PythonLineTag) {
        change(node, replaced);
    } else if (!node->Parent() || IsBlock(line)) {
        if (!renames(node, replaced)) {
            result.Refused << replaced;
            return false;
        }
    } else {
        const QString changed = withMarkerOf(line, replaced);
        if (IsBlock(changed) || !parses(changed)) {
            result.Refused << changed;
            return false;
        }
        change(node, changed);
    }
    ++result.Lines;
    return true;
}

bool ScriptReplace::renames(TreeNode* node, const QString& replaced) {
    const QString& line = node->Text();
    // What follows the name: " = DoInOrder" of an animation, " : DoTogether" of a block,
    // the whole of a block without a name.
    const int labelEnd = text::InStr(line, u" : ");
    const QString rest = !node->Parent() ? line.mid(AnimationName(line).size())
                         : labelEnd > 0  ? line.mid(labelEnd - 1)
                                         : line;
    if (rest.isEmpty() || rest == line || !replaced.endsWith(rest))
        return false;
    const QString name = replaced.chopped(rest.size());
    if (name.trimmed().isEmpty() || !IsAllowedName(name))
        return false;
    if (!node->Parent())
        return model_.RenameAnimation(node, name);
    change(node, replaced);
    return true;
}

void ScriptReplace::change(TreeNode* node, const QString& text) {
    model_.UndoLog(UndoOperation::Changed, node);
    model_.TreeView1().SetText(node, text);
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
