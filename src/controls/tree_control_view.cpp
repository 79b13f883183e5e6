#include "controls/tree_control_view.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QStyle>
#include <QStyleOptionViewItem>

namespace vessa {

TreeControlView::TreeControlView(TreeControl& tree, QWidget* parent)
    : QTreeView(parent), tree_(tree), model_(tree) {
    // Connected ahead of the selection model: while rows go, the current item that Qt
    // moves to a neighbour is not the control's choice.
    connect(&model_, &QAbstractItemModel::rowsAboutToBeRemoved, this, [this] { syncing_ = true; });
    connect(&model_, &QAbstractItemModel::rowsRemoved, this, [this] {
        syncing_ = false;
        ShowSelection(tree_.SelectedItem());
    });
    setModel(&model_);
    // After Qt's own handling, a reset forgets expansion and selection; the control knows.
    connect(&model_, &QAbstractItemModel::modelReset, this, [this] {
        ApplyExpansionBelow(nullptr);
        ShowSelection(tree_.SelectedItem());
    });
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Whole lines, scrolled sideways when long: a line is never cut short with "...".
    setTextElideMode(Qt::ElideNone);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setStretchLastSection(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    tree_.AddObserver(this);
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex& index) {
        if (syncing_)
            return;
        TreeNode* node = TreeItemModel::NodeOf(index);
        tree_.SetExpanded(node, true);
        Q_EMIT Expand(node);
    });
    connect(this, &QTreeView::collapsed, this, [this](const QModelIndex& index) {
        if (syncing_)
            return;
        TreeNode* node = TreeItemModel::NodeOf(index);
        tree_.SetExpanded(node, false);
        Q_EMIT Collapse(node);
    });
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) { FollowCurrent(current); });
    // A view may come to a tree that already has content.
    ApplyExpansionBelow(nullptr);
    ShowSelection(tree_.SelectedItem());
}

void TreeControlView::ApplyExpansionBelow(const TreeNode* parent) {
    for (int row = 0; row < (parent ? parent->Children() : tree_.RootCount()); ++row) {
        const TreeNode* node = parent ? parent->ChildAt(row) : tree_.RootAt(row);
        ApplyExpansion(node);
        ApplyExpansionBelow(node);
    }
}

TreeControlView::~TreeControlView() {
    tree_.RemoveObserver(this);
}

TreeNode* TreeControlView::HitTest(const QPoint& point) const {
    const QModelIndex index = indexAt(point);
    if (!index.isValid() || point.x() < visualRect(index).left())
        return nullptr;
    return TreeItemModel::NodeOf(index);
}

QRect TreeControlView::NodeRect(const TreeNode* node) const {
    const QModelIndex index = model_.IndexOf(node);
    const QRect item = visualRect(index);
    if (!index.isValid() || item.isEmpty())
        return {};
    // Lay the item out as the delegate does, so that the rectangle starts at the glyphs.
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = item;
    option.index = index;
    option.text = node->Text();
    option.features |= QStyleOptionViewItem::HasDisplay;
    const QIcon icon = qvariant_cast<QIcon>(model_.data(index, Qt::DecorationRole));
    if (!icon.isNull()) {
        option.icon = icon;
        option.features |= QStyleOptionViewItem::HasDecoration;
    }
    const QRect text = style()->subElementRect(QStyle::SE_ItemViewItemText, &option, this);
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    return text.adjusted(margin, 0, -margin, 0);
}

int TreeControlView::ItemHeight() const {
    if (const TreeNode* root = tree_.FirstRoot())
        return rowHeight(model_.IndexOf(root));
    return fontMetrics().height();
}

double TreeControlView::TwipsPerPixel() const {
    return 1440.0 / logicalDpiX();
}

bool TreeControlView::OnArrow(const QPoint& point) const {
    const QModelIndex index = indexAt(point);
    return index.isValid() && point.x() < visualRect(index).left();
}

void TreeControlView::mousePressEvent(QMouseEvent* event) {
    pressWentToView_ = OnArrow(event->position().toPoint());
    if (pressWentToView_)
        QTreeView::mousePressEvent(event);
    else
        Q_EMIT MouseDown(event->button(), event->position().toPoint());
}

void TreeControlView::mouseMoveEvent(QMouseEvent* event) {
    if (pressWentToView_)
        QTreeView::mouseMoveEvent(event);
    else
        Q_EMIT MouseMove(event->buttons(), event->position().toPoint());
}

void TreeControlView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeView::mouseDoubleClickEvent(event);
    if (!OnArrow(event->position().toPoint()))
        Q_EMIT DblClick(event->position().toPoint());
}

void TreeControlView::keyReleaseEvent(QKeyEvent* event) {
    QTreeView::keyReleaseEvent(event);
    Q_EMIT KeyUp(event->key());
}

void TreeControlView::mouseReleaseEvent(QMouseEvent* event) {
    if (pressWentToView_)
        QTreeView::mouseReleaseEvent(event);
    else
        Q_EMIT MouseUp(event->button(), event->position().toPoint());
    pressWentToView_ = false;
}

void TreeControlView::NodeAdded(TreeNode* node) {
    ApplyExpansion(node);
    ApplyExpansionBelow(node); // a node moved with its subtree keeps its open branches
    // A parent marked open before it had children opens now that it has one.
    if (node->Parent())
        ApplyExpansion(node->Parent());
}

void TreeControlView::ExpandedChanged(TreeNode* node) {
    ApplyExpansion(node);
}

void TreeControlView::ApplyExpansion(const TreeNode* node) {
    const QModelIndex index = model_.IndexOf(node);
    if (isExpanded(index) == node->Expanded())
        return;
    QScopedValueRollback<bool> guard(syncing_, true);
    setExpanded(index, node->Expanded());
}

void TreeControlView::SelectedItemChanged(TreeNode* node) {
    ShowSelection(node);
}

void TreeControlView::ShowSelection(const TreeNode* node) {
    QScopedValueRollback<bool> guard(syncing_, true);
    const QModelIndex index = model_.IndexOf(node);
    if (index.isValid())
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    else
        selectionModel()->clear();
}

void TreeControlView::FollowCurrent(const QModelIndex& current) {
    if (!syncing_)
        tree_.SetSelectedItem(TreeItemModel::NodeOf(current));
}

void TreeControlView::EnsureVisibleRequested(TreeNode* node) {
    scrollTo(model_.IndexOf(node));
}

void TreeControlView::LabelEditRequested(TreeNode* node) {
    const QModelIndex index = model_.IndexOf(node);
    setCurrentIndex(index);
    edit(index);
}

} // namespace vessa
