#include "controls/tree_item_model.h"

#include <QGuiApplication>
#include <QPalette>

namespace vessa {

TreeItemModel::TreeItemModel(TreeControl& tree, QObject* parent)
    : QAbstractItemModel(parent), tree_(tree) {
    tree_.AddObserver(this);
}

TreeItemModel::~TreeItemModel() {
    tree_.RemoveObserver(this);
}

void TreeItemModel::SetImageList(const QList<QIcon>& icons) {
    beginResetModel();
    icons_ = icons;
    endResetModel();
}

QModelIndex TreeItemModel::IndexOf(const TreeNode* node) const {
    if (!node)
        return {};
    return createIndex(node->Row(), 0, const_cast<TreeNode*>(node));
}

TreeNode* TreeItemModel::NodeOf(const QModelIndex& index) {
    return index.isValid() ? static_cast<TreeNode*>(index.internalPointer()) : nullptr;
}

QString TreeItemModel::AccessibleDescription(const TreeNode& node) {
    QString description = tr("Level %1").arg(node.Depth());
    if (const TreeNode* parent = node.Parent())
        description += tr(", inside %1").arg(parent->Text());
    return description;
}

QModelIndex TreeItemModel::index(int row, int column, const QModelIndex& parent) const {
    if (column != 0)
        return {};
    const TreeNode* up = NodeOf(parent);
    TreeNode* node = up ? up->ChildAt(row) : tree_.RootAt(row);
    return node ? createIndex(row, 0, node) : QModelIndex();
}

QModelIndex TreeItemModel::parent(const QModelIndex& child) const {
    const TreeNode* node = NodeOf(child);
    return node ? IndexOf(node->Parent()) : QModelIndex();
}

int TreeItemModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0)
        return 0;
    const TreeNode* node = NodeOf(parent);
    return node ? node->Children() : tree_.RootCount();
}

int TreeItemModel::columnCount(const QModelIndex&) const {
    return 1;
}

QVariant TreeItemModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (section != 0 || orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return caption_ ? caption_() : QString();
}

QVariant TreeItemModel::data(const QModelIndex& index, int role) const {
    const TreeNode* node = NodeOf(index);
    if (!node)
        return {};
    const bool highlighted = node == tree_.DropHighlight();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case Qt::AccessibleTextRole:
        return node->Text();
    case Qt::DecorationRole:
        if (node->Image() > 0 && node->Image() < icons_.size())
            return icons_.at(node->Image());
        return {};
    case Qt::ForegroundRole:
        if (highlighted)
            return QGuiApplication::palette().highlightedText();
        return node->ForeColor().isValid() ? QVariant(node->ForeColor()) : QVariant();
    case Qt::BackgroundRole:
        if (highlighted)
            return QGuiApplication::palette().highlight();
        return node->BackColor().isValid() ? QVariant(node->BackColor()) : QVariant();
    case Qt::AccessibleDescriptionRole:
        return AccessibleDescription(*node);
    default:
        return {};
    }
}

bool TreeItemModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    TreeNode* node = NodeOf(index);
    if (!node || role != Qt::EditRole)
        return false;
    if (labelEdited_)
        labelEdited_(node, value.toString());
    else
        tree_.SetText(node, value.toString());
    return true;
}

Qt::ItemFlags TreeItemModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

void TreeItemModel::NodeAboutToBeAdded(TreeNode* parent, int row) {
    beginInsertRows(IndexOf(parent), row, row);
}

void TreeItemModel::NodeAdded(TreeNode*) {
    endInsertRows();
}

void TreeItemModel::NodeAboutToBeRemoved(TreeNode* node) {
    beginRemoveRows(IndexOf(node->Parent()), node->Row(), node->Row());
}

void TreeItemModel::NodeRemoved() {
    endRemoveRows();
}

void TreeItemModel::NodeChanged(TreeNode* node) {
    Refresh(node);
    // The children's descriptions name this node's text.
    if (node->Children() > 0)
        Q_EMIT dataChanged(IndexOf(node->Child()), IndexOf(node->Child()->LastSibling()),
                           {Qt::AccessibleDescriptionRole});
}

void TreeItemModel::AboutToClear() {
    beginResetModel();
}

void TreeItemModel::Cleared() {
    endResetModel();
}

void TreeItemModel::DropHighlightChanged(TreeNode* previous, TreeNode* node) {
    if (previous)
        Refresh(previous);
    if (node)
        Refresh(node);
}

void TreeItemModel::Refresh(const TreeNode* node) {
    const QModelIndex index = IndexOf(node);
    Q_EMIT dataChanged(index, index);
}

} // namespace vessa
