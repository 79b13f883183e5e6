#include "controls/tree_control_view.h"

#include "controls/node_ref.h"
#include "controls/twips.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QHash>
#include <QHeaderView>
#include <QMimeData>
#include <QMouseEvent>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace vessa {

namespace {

// The size of an item as the style draws it, measured once for each text (with or
// without a picture) in the font the view shows: a long script is measured anew for its
// widest line at every change, and laying out every line's text again each time is most
// of the cost of a change.
class MeasuredItems : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        if (option.font != font_) {
            sizes_.clear();
            font_ = option.font;
        }
        const bool picture = index.data(Qt::DecorationRole).isValid();
        const QString key = index.data(Qt::DisplayRole).toString() + (picture ? u'\1' : u'\0');
        if (const auto known = sizes_.constFind(key); known != sizes_.constEnd())
            return *known;
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        sizes_.insert(key, size);
        return size;
    }

private:
    mutable QFont font_;
    mutable QHash<QString, QSize> sizes_;
};

} // namespace

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
    // The hidden header's caption is the tree's own name.
    model_.setColumnCaption([this] { return accessibleName(); });
    setUniformRowHeights(true);
    setItemDelegate(new MeasuredItems(this));
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

Qt::DropAction TreeControlView::dragNode(const TreeNode* node, Qt::DropActions actions) {
    auto* carried = new QMimeData;
    carried->setData(QString::fromLatin1(NodeDragMimeType), node->Key().toUtf8());
    auto* drag = new QDrag(this);
    drag->setMimeData(carried);
    const QRect rect = NodeRect(node);
    if (rect.isValid())
        drag->setPixmap(viewport()->grab(rect));
    return drag->exec(actions);
}

TreeNode* TreeControlView::NodeOnRow(int y) const {
    // The one column starts at the left edge, or left of it when scrolled sideways.
    const QModelIndex index = indexAt(QPoint(std::max(0, header()->sectionViewportPosition(0)), y));
    return index.isValid() ? TreeItemModel::NodeOf(index) : nullptr;
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
    return twipsPerPixel(this);
}

bool TreeControlView::OnArrow(const QPoint& point) const {
    const QModelIndex index = indexAt(point);
    return index.isValid() && point.x() < visualRect(index).left();
}

int TreeControlView::NodeIndexAt(const QPoint& point) const {
    const TreeNode* node = HitTest(point);
    return node ? node->Index() : 0;
}

// While the pointer acts on the items, the tree does not scroll under it: a node selected
// by a press stays where it was pressed, and the release falls on the same character.
template <typename Call> void TreeControlView::Unscrolled(Call call) {
    const auto restore =
        qScopeGuard([this, autoScroll = hasAutoScroll()] { setAutoScroll(autoScroll); });
    setAutoScroll(false);
    call();
}

template <typename Call> void TreeControlView::AsHandler(Call call) {
    QScopedValueRollback<bool> guard(inHandler_, true);
    Unscrolled(call);
}

// Qt tracks the press for its own gestures (the double click, the opening on it), but the
// item it would make current is not the handlers' choice: the control's selection is
// shown again.
template <typename Call> void TreeControlView::LetQtFollow(Call call) {
    Unscrolled([&] {
        {
            QScopedValueRollback<bool> guard(qtFollows_, true);
            call();
        }
        ShowSelection(tree_.SelectedItem());
    });
}

void TreeControlView::CancelPendingEdit() {
    editDelay_.stop();
    pendingEdit_ = 0;
}

void TreeControlView::mousePressEvent(QMouseEvent* event) {
    const QPoint point = event->position().toPoint();
    CancelPendingEdit();
    pressWentToView_ = OnArrow(point);
    if (pressWentToView_) {
        QTreeView::mousePressEvent(event);
        return;
    }
    const int node = NodeIndexAt(point);
    const TreeNode* selected = tree_.SelectedItem();
    gesture_ = {.Held = true,
                .Node = node,
                .NodeWasSelected = node != 0 && selected && selected->Index() == node,
                .Start = point};
    AsHandler([&] { Q_EMIT MouseDown(event->button(), point); });
    LetQtFollow([&] { QTreeView::mousePressEvent(event); });
}

void TreeControlView::mouseMoveEvent(QMouseEvent* event) {
    if (pressWentToView_) {
        QTreeView::mouseMoveEvent(event);
        return;
    }
    const QPoint point = event->position().toPoint();
    if (gesture_.Held && !gesture_.Dragging) {
        if ((point - gesture_.Start).manhattanLength() < QApplication::startDragDistance())
            return; // the hand shaking during a click
        gesture_.Dragging = true;
        CancelPendingEdit();
    }
    AsHandler([&] { Q_EMIT MouseMove(event->buttons(), point); });
}

void TreeControlView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPoint point = event->position().toPoint();
    if (OnArrow(point)) {
        QTreeView::mouseDoubleClickEvent(event);
        return;
    }
    CancelPendingEdit();
    gesture_.Held = true;
    gesture_.DoubleClick = true;
    // Qt hands a double click that did not follow a press on the same item back as a
    // press, which starts a gesture of its own.
    LetQtFollow([&] { QTreeView::mouseDoubleClickEvent(event); });
    if (gesture_.DoubleClick)
        AsHandler([&] { Q_EMIT DblClick(point); });
}

void TreeControlView::mouseReleaseEvent(QMouseEvent* event) {
    if (pressWentToView_) {
        QTreeView::mouseReleaseEvent(event);
        pressWentToView_ = false;
        return;
    }
    const QPoint point = event->position().toPoint();
    AsHandler([&] { Q_EMIT MouseUp(event->button(), point); });
    LetQtFollow([&] { QTreeView::mouseReleaseEvent(event); });
    const bool slowSecondClick = gesture_.Held && gesture_.NodeWasSelected && !gesture_.Dragging &&
                                 !gesture_.DoubleClick && event->button() == Qt::LeftButton &&
                                 NodeIndexAt(point) == gesture_.Node;
    if (slowSecondClick && pendingEdit_ == gesture_.Node)
        editDelay_.start(QApplication::doubleClickInterval(), this);
    else
        pendingEdit_ = 0;
    gesture_.Held = false;
}

void TreeControlView::timerEvent(QTimerEvent* event) {
    if (event->timerId() != editDelay_.timerId()) {
        QTreeView::timerEvent(event);
        return;
    }
    editDelay_.stop();
    TreeNode* node = tree_.Node(std::exchange(pendingEdit_, 0));
    if (node && node == tree_.SelectedItem())
        OpenEditor(node);
}

void TreeControlView::keyReleaseEvent(QKeyEvent* event) {
    QTreeView::keyReleaseEvent(event);
    Q_EMIT KeyUp(event->key());
}

void TreeControlView::keyPressEvent(QKeyEvent* event) {
    // Shift+F10 stands for the menu key on keyboards that have none.
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        reportMenuKey();
        return;
    }
    QTreeView::keyPressEvent(event);
}

void TreeControlView::contextMenuEvent(QContextMenuEvent* event) {
    // A right click has already come as its press and release.
    if (event->reason() == QContextMenuEvent::Keyboard)
        reportMenuKey();
    else
        QTreeView::contextMenuEvent(event);
}

void TreeControlView::reportMenuKey() {
    TreeNode* selected = tree_.SelectedItem();
    if (selected)
        scrollTo(model_.IndexOf(selected));
    const QRect text = NodeRect(selected);
    Q_EMIT menuKeyPressed(text.isValid() ? QPoint(text.left() + 1, text.center().y())
                                         : QPoint(-1, -1));
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
    if (!syncing_ && !qtFollows_)
        tree_.SetSelectedItem(TreeItemModel::NodeOf(current));
}

void TreeControlView::EnsureVisibleRequested(TreeNode* node) {
    scrollTo(model_.IndexOf(node));
}

void TreeControlView::LabelEditRequested(TreeNode* node) {
    // From a mouse handler the request is the user's click, which the platform's rules
    // may yet make something else.
    if (inHandler_)
        pendingEdit_ = node->Index();
    else
        OpenEditor(node);
}

void TreeControlView::OpenEditor(TreeNode* node) {
    const QModelIndex index = model_.IndexOf(node);
    setCurrentIndex(index);
    edit(index);
}

} // namespace vessa
