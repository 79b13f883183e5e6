#include "controls/tree_control.h"

#include "base/run_time_error.h"

#include <algorithm>

namespace vessa {

TreeNode* TreeNode::Parent() const {
    // The holder of the roots has no parent itself.
    return parent_ && parent_->parent_ ? parent_ : nullptr;
}

TreeNode* TreeNode::ChildAt(int row) const {
    if (row < 0 || row >= Children())
        return nullptr;
    return children_[static_cast<size_t>(row)].get();
}

TreeNode* TreeNode::Next() const {
    return parent_ ? parent_->ChildAt(row_ + 1) : nullptr;
}

TreeNode* TreeNode::Previous() const {
    return parent_ ? parent_->ChildAt(row_ - 1) : nullptr;
}

TreeNode* TreeNode::FirstSibling() const {
    return parent_ ? parent_->ChildAt(0) : nullptr;
}

TreeNode* TreeNode::LastSibling() const {
    return parent_ ? parent_->ChildAt(parent_->Children() - 1) : nullptr;
}

int TreeNode::Depth() const {
    int depth = 1;
    for (const TreeNode* up = Parent(); up; up = up->Parent())
        ++depth;
    return depth;
}

TreeControl::TreeControl() : holder_(new TreeNode(this, 0)) {
}

TreeControl::~TreeControl() = default;

template <typename Call> void TreeControl::Notify(Call call) {
    for (TreeObserver* observer : observers_)
        call(*observer);
}

void TreeControl::Clear() {
    Notify([](TreeObserver& o) { o.AboutToClear(); });
    holder_->children_.clear();
    byIndex_.clear();
    byKey_.clear();
    selected_ = nullptr;
    dropHighlight_ = nullptr;
    Notify([](TreeObserver& o) { o.Cleared(); });
}

TreeNode* TreeControl::AddRoot(const QString& key, const QString& text) {
    return Add(nullptr, Relation::Last, key, text);
}

TreeNode* TreeControl::Add(TreeNode* relative, Relation relation, const QString& key,
                           const QString& text) {
    if (!relative)
        return Insert(holder_.get(), RootCount(), key, text);
    if (!Contains(relative))
        throw RunTimeError(RunTimeError::ElementNotFound, "Element not found", "TreeControl.Add");
    TreeNode* parent = relative->parent_;
    switch (relation) {
    case Relation::First:
        return Insert(parent, 0, key, text);
    case Relation::Last:
        return Insert(parent, parent->Children(), key, text);
    case Relation::Next:
        return Insert(parent, relative->row_ + 1, key, text);
    case Relation::Previous:
        return Insert(parent, relative->row_, key, text);
    case Relation::Child:
        return Insert(relative, relative->Children(), key, text);
    }
    return nullptr;
}

TreeNode* TreeControl::Insert(TreeNode* parent, int row, const QString& key, const QString& text) {
    if (!key.isEmpty() && byKey_.contains(key))
        throw RunTimeError(RunTimeError::KeyNotUnique, "Key is not unique in collection",
                           "TreeControl.Add");
    TreeNode* visibleParent = parent == holder_.get() ? nullptr : parent;
    Notify([&](TreeObserver& o) { o.NodeAboutToBeAdded(visibleParent, row); });
    auto owned = std::unique_ptr<TreeNode>(new TreeNode(this, nextIndex_++));
    TreeNode* node = owned.get();
    node->text_ = text;
    node->key_ = key;
    node->parent_ = parent;
    parent->children_.insert(parent->children_.begin() + row, std::move(owned));
    Renumber(parent, row);
    byIndex_.insert(node->index_, node);
    if (!key.isEmpty())
        byKey_.insert(key, node);
    Notify([&](TreeObserver& o) { o.NodeAdded(node); });
    return node;
}

void TreeControl::Renumber(TreeNode* parent, int fromRow) {
    for (int row = fromRow; row < parent->Children(); ++row)
        parent->children_[static_cast<size_t>(row)]->row_ = row;
}

void TreeControl::Remove(int index) {
    TreeNode* node = Node(index);
    if (!node)
        throw RunTimeError(RunTimeError::ElementNotFound, "Element not found",
                           "TreeControl.Remove");
    Notify([&](TreeObserver& o) { o.NodeAboutToBeRemoved(node); });
    if (selected_ && IsWithin(selected_, node))
        selected_ = nullptr;
    if (dropHighlight_ && IsWithin(dropHighlight_, node))
        dropHighlight_ = nullptr;
    Forget(node);
    TreeNode* parent = node->parent_;
    const int row = node->row_;
    parent->children_.erase(parent->children_.begin() + row);
    Renumber(parent, row);
    Notify([](TreeObserver& o) { o.NodeRemoved(); });
}

void TreeControl::Move(TreeNode* node, TreeNode* newParent) {
    TreeNode* parent = newParent ? newParent : holder_.get();
    if (IsWithin(parent, node))
        throw RunTimeError::Argument(QStringLiteral("TreeControl.Move"));
    Notify([&](TreeObserver& o) { o.NodeAboutToBeRemoved(node); });
    TreeNode* oldParent = node->parent_;
    const int oldRow = node->row_;
    std::unique_ptr<TreeNode> owned = std::move(oldParent->children_[static_cast<size_t>(oldRow)]);
    oldParent->children_.erase(oldParent->children_.begin() + oldRow);
    Renumber(oldParent, oldRow);
    Notify([](TreeObserver& o) { o.NodeRemoved(); });

    const int row = parent->Children();
    Notify([&](TreeObserver& o) { o.NodeAboutToBeAdded(newParent, row); });
    node->parent_ = parent;
    parent->children_.push_back(std::move(owned));
    Renumber(parent, row);
    Notify([&](TreeObserver& o) { o.NodeAdded(node); });
}

void TreeControl::Forget(TreeNode* node) {
    byIndex_.remove(node->index_);
    if (!node->key_.isEmpty())
        byKey_.remove(node->key_);
    for (const auto& child : node->children_)
        Forget(child.get());
}

bool TreeControl::IsWithin(const TreeNode* node, const TreeNode* ancestor) const {
    for (const TreeNode* up = node; up; up = up->Parent())
        if (up == ancestor)
            return true;
    return false;
}

TreeNode* TreeControl::Node(int index) const {
    return byIndex_.value(index, nullptr);
}

TreeNode* TreeControl::NodeByKey(const QString& key) const {
    return key.isEmpty() ? nullptr : byKey_.value(key, nullptr);
}

TreeNode* TreeControl::FirstRoot() const {
    return holder_->ChildAt(0);
}

TreeNode* TreeControl::RootAt(int row) const {
    return holder_->ChildAt(row);
}

int TreeControl::RootCount() const {
    return holder_->Children();
}

bool TreeControl::Contains(const TreeNode* node) const {
    return node && Node(node->index_) == node;
}

void TreeControl::SetText(TreeNode* node, const QString& text) {
    if (node->text_ == text)
        return;
    node->text_ = text;
    Notify([&](TreeObserver& o) { o.NodeChanged(node); });
}

void TreeControl::SetKey(TreeNode* node, const QString& key) {
    if (node->key_ == key)
        return;
    if (!key.isEmpty() && byKey_.contains(key))
        throw RunTimeError(RunTimeError::KeyNotUnique, "Key is not unique in collection",
                           "TreeControl.Key");
    if (!node->key_.isEmpty())
        byKey_.remove(node->key_);
    node->key_ = key;
    if (!key.isEmpty())
        byKey_.insert(key, node);
}

void TreeControl::SetTag(TreeNode* node, const QString& tag) {
    if (node->tag_ == tag)
        return;
    node->tag_ = tag;
    Notify([&](TreeObserver& o) { o.NodeChanged(node); });
}

void TreeControl::SetImage(TreeNode* node, int image) {
    if (node->image_ == image)
        return;
    node->image_ = image;
    Notify([&](TreeObserver& o) { o.NodeChanged(node); });
}

void TreeControl::SetForeColor(TreeNode* node, const QColor& color) {
    if (node->foreColor_ == color)
        return;
    node->foreColor_ = color;
    Notify([&](TreeObserver& o) { o.NodeChanged(node); });
}

void TreeControl::SetBackColor(TreeNode* node, const QColor& color) {
    if (node->backColor_ == color)
        return;
    node->backColor_ = color;
    Notify([&](TreeObserver& o) { o.NodeChanged(node); });
}

void TreeControl::SetExpanded(TreeNode* node, bool expanded) {
    if (node->expanded_ == expanded)
        return;
    node->expanded_ = expanded;
    Notify([&](TreeObserver& o) { o.ExpandedChanged(node); });
}

void TreeControl::SetSelectedItem(TreeNode* node) {
    if (selected_ == node)
        return;
    selected_ = node;
    Notify([&](TreeObserver& o) { o.SelectedItemChanged(node); });
}

void TreeControl::SetDropHighlight(TreeNode* node) {
    if (dropHighlight_ == node)
        return;
    TreeNode* previous = dropHighlight_;
    dropHighlight_ = node;
    Notify([&](TreeObserver& o) { o.DropHighlightChanged(previous, node); });
}

void TreeControl::EnsureVisible(TreeNode* node) {
    for (TreeNode* up = node->Parent(); up; up = up->Parent())
        SetExpanded(up, true);
    Notify([&](TreeObserver& o) { o.EnsureVisibleRequested(node); });
}

void TreeControl::StartLabelEdit(TreeNode* node) {
    Notify([&](TreeObserver& o) { o.LabelEditRequested(node); });
}

void TreeControl::AddObserver(TreeObserver* observer) {
    observers_.push_back(observer);
}

void TreeControl::RemoveObserver(TreeObserver* observer) {
    observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

} // namespace vessa
