#pragma once

#include "script/script_line.h"
#include "world/standalone_script.h"

#include <QStringList>

namespace vessa::testing {

// A world's script built as the editors build it: animations with their keys, lines,
// blocks and Python lines below them, event rows and code.
struct ScriptFixture : StandaloneScript {
    TreeNode* animation(const QString& text) {
        return TreeView1.AddRoot(AnimationName(text).toLower(), text);
    }
    TreeNode* line(TreeNode* parent, const QString& text) {
        return TreeView1.Add(parent, Relation::Child, QString(), text);
    }
    TreeNode* pythonLine(TreeNode* parent, const QString& text) {
        TreeNode* node = line(parent, text);
        TreeView1.SetTag(node, PythonLineTag);
        TreeView1.SetBackColor(node, PythonLineBack);
        return node;
    }
    void row(const QString& when, const QString& happensTo, const QString& animation) {
        targets().addRow(when, happensTo, animation);
    }
};

// Lines joined as the generated files join them.
inline QString CrLfLines(const QStringList& lines) {
    return lines.join(QStringLiteral("\r\n"));
}

} // namespace vessa::testing
