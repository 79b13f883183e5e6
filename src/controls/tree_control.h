#pragma once

#include <QColor>
#include <QHash>
#include <QString>

#include <memory>
#include <vector>

namespace vessa {

class TreeControl;

// Where a new node goes, relative to an existing one.
enum class Relation { First, Last, Next, Previous, Child };

// One element of a tree control. Its fields are read here and written through the
// TreeControl that owns it, so that every view hears of each change.
class TreeNode {
public:
    const QString& Text() const { return text_; }
    const QString& Key() const { return key_; }
    const QString& Tag() const { return tag_; }
    int Image() const { return image_; }
    // An invalid colour means the view's own.
    const QColor& ForeColor() const { return foreColor_; }
    const QColor& BackColor() const { return backColor_; }
    bool Expanded() const { return expanded_; }

    // Navigation; each gives nullptr where there is no such node. A root has no Parent.
    TreeNode* Parent() const;
    TreeNode* Child() const { return ChildAt(0); }
    TreeNode* Next() const;
    TreeNode* Previous() const;
    TreeNode* FirstSibling() const;
    TreeNode* LastSibling() const;
    TreeNode* ChildAt(int row) const;
    // The number of direct children.
    int Children() const { return static_cast<int>(children_.size()); }
    // Identity of the node in its tree, never reused.
    int Index() const { return index_; }
    // Position among its siblings, from 0.
    int Row() const { return row_; }
    // 1 for a root, 2 for its children and so on.
    int Depth() const;
    // The control that holds the node, through which its fields change.
    TreeControl& Owner() const { return *owner_; }

private:
    friend class TreeControl;
    TreeNode(TreeControl* owner, int index) : owner_(owner), index_(index) {}

    QString text_;
    QString key_;
    QString tag_;
    int image_ = 0;
    QColor foreColor_;
    QColor backColor_;
    bool expanded_ = false;
    TreeNode* parent_ = nullptr; // The control's hidden holder for a root. Not owned.
    std::vector<std::unique_ptr<TreeNode>> children_; // Owned.
    TreeControl* owner_;                              // Not owned.
    int row_ = 0;
    int index_ = 0;
};

// What a view of a tree control hears. Every change of a TreeControl is announced here,
// adds and removals before and after the fact.
class TreeObserver {
public:
    virtual ~TreeObserver() = default;
    // parent is nullptr for a root.
    virtual void NodeAboutToBeAdded(TreeNode* /*parent*/, int /*row*/) {}
    virtual void NodeAdded(TreeNode* /*node*/) {}
    virtual void NodeAboutToBeRemoved(TreeNode* /*node*/) {}
    virtual void NodeRemoved() {}
    virtual void NodeChanged(TreeNode* /*node*/) {}
    virtual void ExpandedChanged(TreeNode* /*node*/) {}
    virtual void AboutToClear() {}
    virtual void Cleared() {}
    virtual void SelectedItemChanged(TreeNode* /*node*/) {}
    virtual void DropHighlightChanged(TreeNode* /*previous*/, TreeNode* /*node*/) {}
    virtual void EnsureVisibleRequested(TreeNode* /*node*/) {}
    virtual void LabelEditRequested(TreeNode* /*node*/) {}
};

// A forest of nodes with unique keys, a selected item and a drop highlight: the data
// of a tree control without its window. Views observe it; nothing else changes it.
class TreeControl {
public:
    TreeControl();
    ~TreeControl();
    TreeControl(const TreeControl&) = delete;
    TreeControl& operator=(const TreeControl&) = delete;

    void Clear();
    // Adds a node next to or below relative; without a relative it becomes the last root.
    // A key already used in the tree raises RunTimeError::KeyNotUnique; "" is no key.
    TreeNode* Add(TreeNode* relative, Relation relation, const QString& key, const QString& text);
    TreeNode* AddRoot(const QString& key, const QString& text);
    // Removes the node with that Index and all below it.
    void Remove(int index);
    // Makes node, with all below it, the last child of newParent (nullptr: the last
    // root). It keeps its Index and Key. Moving a node below itself raises
    // RunTimeError::InvalidArgument.
    void Move(TreeNode* node, TreeNode* newParent);

    // nullptr when there is no such node.
    TreeNode* Node(int index) const;
    TreeNode* NodeByKey(const QString& key) const;
    TreeNode* FirstRoot() const;
    TreeNode* RootAt(int row) const;
    int RootCount() const;
    // The number of nodes at all levels.
    int Count() const { return static_cast<int>(byIndex_.size()); }
    bool Contains(const TreeNode* node) const;

    void SetText(TreeNode* node, const QString& text);
    // Raises RunTimeError::KeyNotUnique when another node has the key.
    void SetKey(TreeNode* node, const QString& key);
    void SetTag(TreeNode* node, const QString& tag);
    void SetImage(TreeNode* node, int image);
    void SetForeColor(TreeNode* node, const QColor& color);
    void SetBackColor(TreeNode* node, const QColor& color);
    void SetExpanded(TreeNode* node, bool expanded);

    TreeNode* SelectedItem() const { return selected_; }
    void SetSelectedItem(TreeNode* node);
    TreeNode* DropHighlight() const { return dropHighlight_; }
    void SetDropHighlight(TreeNode* node);
    // Opens the node's ancestors and asks the views to scroll it into sight.
    void EnsureVisible(TreeNode* node);
    // Asks the views to edit the node's text in place.
    void StartLabelEdit(TreeNode* node);

    void AddObserver(TreeObserver* observer);
    void RemoveObserver(TreeObserver* observer);

private:
    template <typename Call> void Notify(Call call);
    TreeNode* Insert(TreeNode* parent, int row, const QString& key, const QString& text);
    void Forget(TreeNode* node);
    bool IsWithin(const TreeNode* node, const TreeNode* ancestor) const;
    static void Renumber(TreeNode* parent, int fromRow);

    std::unique_ptr<TreeNode> holder_; // The hidden parent of the roots. Owned.
    QHash<int, TreeNode*> byIndex_;
    QHash<QString, TreeNode*> byKey_;
    TreeNode* selected_ = nullptr;
    TreeNode* dropHighlight_ = nullptr;
    int nextIndex_ = 1;
    std::vector<TreeObserver*> observers_; // Not owned.
};

} // namespace vessa
