#pragma once

#include <QString>
#include <QStringList>

namespace vessa {

class TreeControl;
class TreeNode;

// A node's address as sibling offsets from the first root down, joined by ":".
// "0:2" is the third child of the first root.
QString NodePath(const TreeNode* node);
// The path node will have once absent, neither node nor an ancestor of it, is removed.
QString NodePath(const TreeNode* node, const TreeNode* absent);

// Where a path leads in a tree that may have changed since the path was taken. The walk
// stops at the last node it reached: RanOffTheEnd when a sibling was missing, NoChild
// when a child was. Node is nullptr only in an empty tree.
struct PathWalk {
    TreeNode* Node = nullptr;
    bool RanOffTheEnd = false;
    bool NoChild = false;
};
// A field that is no number fails with RunTimeError::TypeMismatch.
PathWalk ResolvePath(const TreeControl& tree, const QString& path);

// A whole number as the runtime reads one; anything else fails with TypeMismatch.
int ToInteger(const QString& text);

// Copies source's Text, Tag, Image, ForeColor and BackColor onto destination, then adds
// a copy of each child below it, all the way down. keepExpanded gives the copies the
// Expanded state of their originals; otherwise they stay collapsed. For the object
// picker, a copy whose Tag is excludedTag is greyed, and one whose Tag is wantedTag
// becomes the selected and highlighted node (Tags compared without case).
struct AddNodesOptions {
    bool KeepExpanded = true;
    QString ExcludedTag;
    QString WantedTag;
};
void AddNodes(TreeNode* destination, const TreeNode* source, const AddNodesOptions& options);

// The text walks, each appending one node and everything below it to buffer, a block
// as header + "(" with its children one tab further in, a line as its NormalizeLine
// text + ",". TraverseTree writes block headers as they stand; the other two write the
// bare "DoInOrder" or "DoTogether", so that names and labels do not reach the engine.
void TraverseTree(const TreeNode* node, const QString& indent, QString& buffer);
void TraverseTreeForLine(const TreeNode* node, const QString& indent, QString& buffer);
void TraverseTreeForScript(const TreeNode* node, const QString& indent, QString& buffer);
// A text as a field of the tree script file can hold it: a line end becomes a blank, and
// a field that reads "###" alone, which would end the script tree in the file, gets a
// blank behind it.
QString treeFileField(const QString& text);
// The records of the tree script file: per node its Text, depth, "1" or "0" for
// Expanded, and Tag, a line each; the node, its subtree and, for a root, the roots after.
// Texts that treeFileField had to change are added to changed, when it is given.
void TraverseTreeToFile(const TreeNode* node, int depth, QString& buffer,
                        QStringList* changed = nullptr);

// After an object is renamed: in node, its subtree and its later siblings, every
// oldName + "." becomes newName + "." and every "=" + oldName becomes "=" + newName,
// where oldName stands as a whole name ("BigBunny." and "=Bunny2" stay). A name standing
// as a plain value ("PointAt(Bunny, ...)") is left, as it always was.
void TraverseTreeReplaceString(TreeNode* node, const QString& oldName, const QString& newName);

} // namespace vessa
