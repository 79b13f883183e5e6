#include "script/tree_walks.h"

#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "controls/tree_copy.h"
#include "script/basic_text.h"
#include "script/script_line.h"

#include <QColor>
#include <QStringList>
#include <QVarLengthArray>

#include <algorithm>

namespace vessa {

namespace {

const QString LineEnd = QStringLiteral("\r\n");

enum class BlockHeader { AsWritten, BareWord };

void WriteNode(const TreeNode* node, const QString& indent, BlockHeader header, QString& buffer) {
    const QString& line = node->Text();
    const BlockKind kind = blockKindOf(line);
    buffer += indent;
    if (kind == BlockKind::None) {
        buffer += NormalizeLine(line);
        buffer += u',';
        buffer += LineEnd;
        return;
    }
    if (header == BlockHeader::AsWritten)
        buffer += line;
    else
        buffer +=
            kind == BlockKind::InOrder ? QStringLiteral("DoInOrder") : QStringLiteral("DoTogether");
    buffer += u'(';
    buffer += LineEnd;
    const QString inner = indent + u'\t';
    for (const TreeNode* child = node->Child(); child; child = child->Next())
        WriteNode(child, inner, header, buffer);
    buffer += indent;
    buffer += node->Parent() ? QStringLiteral("),") : QStringLiteral(")");
    buffer += LineEnd;
}

} // namespace

QString NodePath(const TreeNode* node) {
    return NodePath(node, nullptr);
}

QString NodePath(const TreeNode* node, const TreeNode* absent) {
    QVarLengthArray<int, 8> rows;
    for (; node; node = node->Parent()) {
        const bool before =
            absent && absent->Parent() == node->Parent() && absent->Row() < node->Row();
        rows.append(node->Row() - (before ? 1 : 0));
    }
    QString path;
    for (auto row = rows.crbegin(); row != rows.crend(); ++row) {
        if (!path.isEmpty())
            path += u':';
        path += QString::number(*row);
    }
    return path;
}

int ToInteger(const QString& text) {
    bool ok = false;
    const int value = text.trimmed().toInt(&ok);
    if (!ok)
        throw RunTimeError::Conversion("ToInteger");
    return value;
}

PathWalk ResolvePath(const TreeControl& tree, const QString& path) {
    PathWalk walk;
    if (!tree.FirstRoot())
        return walk;
    const QStringList fields = path.split(u':');
    for (qsizetype field = 0; field < fields.size(); ++field) {
        // Stepping to the next sibling n times, stopping at the last one there is.
        const int count = field == 0 ? tree.RootCount() : walk.Node->Children();
        if (count == 0) {
            walk.NoChild = true;
            return walk;
        }
        const int steps = std::max(ToInteger(fields[field]), 0);
        walk.RanOffTheEnd = steps >= count;
        const int row = std::min(steps, count - 1);
        walk.Node = field == 0 ? tree.RootAt(row) : walk.Node->ChildAt(row);
        if (walk.RanOffTheEnd)
            return walk;
    }
    return walk;
}

void AddNodes(TreeNode* destination, const TreeNode* source, const AddNodesOptions& options) {
    CopySubtree(destination, source, [&options](TreeNode* copy, const TreeNode* original) {
        TreeControl& tree = copy->Owner();
        if (options.KeepExpanded)
            tree.SetExpanded(copy, original->Expanded());
        if (!options.ExcludedTag.isEmpty() && text::Same(original->Tag(), options.ExcludedTag))
            tree.SetForeColor(copy, kGreyedOut);
        if (!options.WantedTag.isEmpty() && text::Same(original->Tag(), options.WantedTag)) {
            tree.SetSelectedItem(copy);
            tree.SetDropHighlight(copy);
        }
    });
}

void TraverseTree(const TreeNode* node, const QString& indent, QString& buffer) {
    WriteNode(node, indent, BlockHeader::AsWritten, buffer);
}

void TraverseTreeForLine(const TreeNode* node, const QString& indent, QString& buffer) {
    WriteNode(node, indent, BlockHeader::BareWord, buffer);
}

void TraverseTreeForScript(const TreeNode* node, const QString& indent, QString& buffer) {
    WriteNode(node, indent, BlockHeader::BareWord, buffer);
}

QString treeFileField(const QString& text) {
    static const QString separator = QStringLiteral("###");
    if (text == separator)
        return separator + u' ';
    if (!text.contains(u'\r') && !text.contains(u'\n'))
        return text;
    QString field = text;
    field.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    return field.replace(u'\r', u' ').replace(u'\n', u' ');
}

void TraverseTreeToFile(const TreeNode* node, int depth, QString& buffer, QStringList* changed) {
    const auto field = [changed](const QString& text) {
        QString written = treeFileField(text);
        if (changed && written != text)
            changed->append(text);
        return written;
    };
    // The top level goes along siblings in a loop; each subtree goes down by recursion.
    for (; node; node = node->Parent() ? nullptr : node->Next()) {
        buffer += field(node->Text()) + LineEnd + QString::number(depth) + LineEnd +
                  (node->Expanded() ? u'1' : u'0') + LineEnd + field(node->Tag()) + LineEnd;
        for (const TreeNode* child = node->Child(); child; child = child->Next())
            TraverseTreeToFile(child, depth + 1, buffer, changed);
    }
}

void TraverseTreeReplaceString(TreeNode* node, const QString& oldName, const QString& newName) {
    const QString oldCall = oldName + u'.', newCall = newName + u'.';
    const QString oldValue = u'=' + oldName, newValue = u'=' + newName;
    for (; node; node = node->Next()) {
        const QString& line = node->Text();
        if (line.contains(oldName, Qt::CaseInsensitive))
            node->Owner().SetText(node, text::ReplaceName(text::ReplaceName(line, oldCall, newCall),
                                                          oldValue, newValue));
        if (node->Child())
            TraverseTreeReplaceString(node->Child(), oldName, newName);
    }
}

} // namespace vessa
