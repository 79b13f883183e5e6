#include "world/world_script_file.h"

#include "controls/list_control.h"
#include "controls/tree_control.h"
#include "script/animation_name_list.h"
#include "script/script_icons.h"
#include "script/script_line.h"
#include "script/tree_walks.h"
#include "world/world_folder.h"

#include <QColor>
#include <QFileInfo>
#include <QSet>

#include <array>

namespace vessa {

namespace {

using script_file::LineEnd;

const QColor AnimationForeColor(0, 0, 0xC0);

// The key a node of the file gets: the lower-cased name of a text that reads as an
// animation, "" for any other.
QString keyOf(const QString& text) {
    return IsAnimationInFile(text) ? AnimationName(text).toLower() : QString();
}

// A Python line's tag is 1; the older worlds compared it as a number.
bool isPythonLineTag(const QString& tag) {
    bool number = false;
    const double value = tag.trimmed().toDouble(&number);
    return number && value == 1;
}

// What the controls need beyond the format: every animation's text names it before
// " = ", and no two nodes share a key.
FileProblem checkNames(const ScriptFileContent& content, const QString& fileName) {
    static const QString nameSeparator = QStringLiteral(" = ");
    QSet<QString> keys;
    for (const ScriptFileNode& node : content.nodes) {
        const bool animation = node.depth == 1 || IsAnimationInFile(node.text);
        if (animation && !node.text.contains(nameSeparator))
            return {fileName, node.line,
                    QStringLiteral("an animation should begin with its name and \" = \", as in "
                                   "\"Hop = DoInOrder\", not \"%1\"")
                        .arg(node.text.left(40))};
        const QString key = keyOf(node.text);
        if (key.isEmpty())
            continue;
        if (keys.contains(key))
            return {
                fileName, node.line,
                QStringLiteral("a second animation called \"%1\"").arg(AnimationName(node.text))};
        keys.insert(key);
    }
    return {};
}

ScriptFileRead readPythonInstead(const QString& treeScriptName) {
    // The Python file of the same stem: "world_script.tv" becomes "world_script.py".
    const QString pythonName = existingPath(treeScriptName.chopped(3) + QStringLiteral(".py"));
    if (!QFileInfo::exists(pythonName))
        return {};
    const FileBytes file = readScriptFileBytes(pythonName);
    if (!file.problem.isEmpty())
        return {{}, file.problem};
    return parsePythonScriptFile(file.bytes, pythonName);
}

void SaveEventList(const ListControl& ListView1, QString& buffer, QStringList& changed) {
    buffer += script_file::Separator + LineEnd;
    for (int position = 0; position < ListView1.Count(); ++position) {
        const ListRow* row = ListView1.Row(position);
        for (int column = 1; column <= 3; ++column) {
            const QString text = row->SubItems(column);
            const QString field = treeFileField(text);
            if (field != text)
                changed.append(text);
            buffer += field + LineEnd;
        }
    }
}

} // namespace

ScriptFileText MakeTVscript(const TreeControl& TreeView1, const ListControl& ListView1,
                            const QString& code) {
    ScriptFileText file;
    QStringList changed;
    if (TreeView1.Count() != 0) {
        TraverseTreeToFile(TreeView1.FirstRoot(), 1, file.text, &changed);
        SaveEventList(ListView1, file.text, changed);
    } else if (ListView1.Count() != 0) {
        file.notices << QStringLiteral("The event list's rows were not saved: there are no "
                                       "animations for them to start.");
    }
    file.text += script_file::Separator + LineEnd + code + LineEnd;
    for (const QString& text : changed)
        file.notices << QStringLiteral("\"%1\" was saved as \"%2\": a line of the script file "
                                       "can't hold a line break or read ### alone.")
                            .arg(text, treeFileField(text));
    return file;
}

ScriptFileRead readTreeScript(const QString& fileName) {
    const QString existing = existingPath(fileName);
    if (!QFileInfo::exists(existing))
        return readPythonInstead(fileName);
    const FileBytes file = readScriptFileBytes(existing);
    if (!file.problem.isEmpty())
        return {{}, file.problem};
    ScriptFileRead read = parseScriptFile(file.bytes, existing);
    if (read.ok())
        read.problem = checkNames(read.content, existing);
    return read;
}

void fillScriptControls(const ScriptFileContent& content, const ScriptTargets& targets) {
    TreeControl& tree = targets.TreeView1;
    tree.Clear();
    targets.clearRows();
    // The node last added at each depth: the parent of a node one deeper.
    std::array<TreeNode*, script_file::MaxDepth> lastAt{};
    QStringList names;
    bool first = true;
    for (const ScriptFileNode& node : content.nodes) {
        const int depth = node.depth;
        TreeNode* added =
            depth == 1 ? tree.AddRoot(keyOf(node.text), node.text)
                       : tree.Add(lastAt[depth - 2], Relation::Child, keyOf(node.text), node.text);
        lastAt[depth - 1] = added;
        // Image 9 until the icons are refreshed below.
        tree.SetImage(added, icons::Together);
        if (depth == 1) {
            tree.SetForeColor(added, AnimationForeColor);
            names << AnimationName(node.text);
        } else if (isPythonLineTag(node.tag)) {
            tree.SetBackColor(added, PythonLineBack);
            tree.SetTag(added, PythonLineTag);
        }
        // The first animation always opens.
        if (node.expanded || first)
            tree.SetExpanded(added, true);
        first = false;
    }
    RefreshTreeIcons(tree.FirstRoot());
    targets.AnimationNames.SetText(names.join(u','));
    for (const ScriptFileRow& row : content.rows)
        targets.addRow(row.when, row.happensTo, row.animation);
    // The code box opens only for code that is more than line ends and blanks.
    QString bare = content.code;
    const bool hasCode = !bare.remove(LineEnd).trimmed().isEmpty();
    targets.ArbitraryCodeBox.Text = hasCode ? content.code : QString();
    targets.ArbitraryCodeBox.Visible = hasCode;
}

FileProblem BuildTreeFromFile(const QString& fileName, const ScriptTargets& targets) {
    const ScriptFileRead read = readTreeScript(fileName);
    if (read.ok())
        fillScriptControls(read.content, targets);
    return read.problem;
}

FileProblem LoadScriptFiles(const QString& worldPath, const ScriptTargets& targets) {
    return BuildTreeFromFile(fileInFolder(worldPath, world_files::TreeScript), targets);
}

} // namespace vessa
