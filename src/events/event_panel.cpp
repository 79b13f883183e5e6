#include "events/event_panel.h"

#include "base/run_time_error.h"
#include "controls/accessible_names.h"
#include "controls/list_control_view.h"
#include "controls/node_ref.h"
#include "controls/picture_button.h"
#include "events/event_list.h"
#include "events/event_menus_view.h"
#include "script/script_host.h"
#include "script/script_model.h"

#include <QApplication>
#include <QDrag>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace vessa {

EventPanel::EventPanel(EventList& list, const TreeControl& objectTree2, QWidget* parent)
    : QWidget(parent), list_(list), objectTree2_(objectTree2),
      makeEvent_(new PictureButton(QStringLiteral("MakeEvent"), tr("Make Event"), this)),
      listView1_(new ListControlView(list.ListView1(), this)),
      menusView_(new EventMenusView(list, *listView1_, this)) {
    setObjectName(QStringLiteral("EventPanel"));
    makeEvent_->setObjectName(QStringLiteral("MakeEvent"));
    makeEvent_->setToolTip(tr("A new event for the newest animation"));
    connect(makeEvent_, &QToolButton::clicked, this,
            [this] { guarded([this] { list_.MakeEvent(); }); });

    listView1_->setObjectName(QStringLiteral("ListView1"));
    // The first column is the row's own text, which stays empty; to assistive technology
    // it reads as the whole row.
    listView1_->setColumnHidden(0, true);
    listView1_->setSelectionMode(QAbstractItemView::SingleSelection);
    listView1_->setSelectionBehavior(QAbstractItemView::SelectRows);
    listView1_->setAllColumnsShowFocus(true);
    listView1_->header()->setSectionsMovable(false);
    listView1_->viewport()->setAcceptDrops(true);
    listView1_->viewport()->installEventFilter(this);
    listView1_->installEventFilter(this);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makeEvent_, 0, Qt::AlignLeft);
    layout->addWidget(listView1_, 1);
    applyAccessibleNames(this);

    listView1_->ItemModel().setCellLooks(
        [this](const ListRow& row, int column) { return list_.cellLook(row, column); });
    list_.Script().TreeView1().AddObserver(this);
    list_.ListUndoLog().setWatcher([this](bool, bool) { Q_EMIT listHistoryChanged(); });
    list_.setNotice([this](const QString& message) { tellGone(message); });
    showScriptChanged();
}

EventPanel::~EventPanel() {
    list_.setNotice({});
    list_.ListUndoLog().setWatcher({});
    list_.Script().TreeView1().RemoveObserver(this);
}

void EventPanel::NodeAdded(TreeNode*) {
    showScriptChanged();
}

void EventPanel::NodeRemoved() {
    showScriptChanged();
}

void EventPanel::NodeChanged(TreeNode* node) {
    // Only an animation's name can make a row's animation come or go.
    if (!node->Parent())
        showScriptChanged();
}

void EventPanel::Cleared() {
    showScriptChanged();
}

void EventPanel::showScriptChanged() {
    makeEvent_->setEnabled(list_.Script().TreeView1().RootCount() > 0);
    listView1_->ItemModel().refreshLooks();
}

void EventPanel::tellGone(const QString& message) {
    auto* box = new QMessageBox(QMessageBox::Information, QStringLiteral("Undo"), message,
                                QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("EventGoneBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void EventPanel::LVUndoFromLog() {
    guarded([this] { list_.LVUndoFromLog(list_.ListUndoLog()); });
}

void EventPanel::LVRedoFromLog() {
    guarded([this] { list_.LVRedoFromLog(list_.ListUndoLog()); });
}

void EventPanel::guarded(const std::function<void()>& work) {
    // A failure ends the handler and is reported; it never reaches the event loop.
    try {
        work();
    } catch (const RunTimeError& error) {
        list_.Script().Host().ReportError(error);
    }
}

bool EventPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == listView1_ && event->type() == QEvent::KeyPress) {
        const auto* press = static_cast<QKeyEvent*>(event);
        const int key = press->key();
        if (key == Qt::Key_Menu ||
            (key == Qt::Key_F10 && press->modifiers() == Qt::ShiftModifier)) {
            ListView1_MenuKey();
            return true;
        }
        if (key == Qt::Key_Backspace) {
            if (const ListRow* row = list_.ListView1().SelectedItem())
                guarded([&] { list_.DeleteRow(row); });
            return true;
        }
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Left ||
            key == Qt::Key_Right) {
            ListView1_KeyDown(key);
            return true;
        }
        return false;
    }
    if (watched != listView1_->viewport())
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        ListView1_MouseDown(mouse->button(), mouse->position().toPoint());
        return false;
    }
    case QEvent::MouseMove: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        ListView1_MouseMove(mouse->buttons(), mouse->position().toPoint());
        return false;
    }
    case QEvent::MouseButtonRelease: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        pressedRowKey_.clear();
        ListView1_MouseUp(mouse->button(), mouse->position().toPoint());
        return false; // the view finishes the click
    }
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return filterDrag(event);
    case QEvent::Resize: {
        // The three columns share the width; the user may move their borders after.
        const int third = static_cast<QResizeEvent*>(event)->size().width() / 3;
        for (int column : {EventList::When, EventList::HappensTo})
            listView1_->setColumnWidth(column, third);
        return false;
    }
    default:
        return false;
    }
}

ListRow* EventPanel::rowAt(const QPoint& point) const {
    const QModelIndex index = listView1_->indexAt(point);
    return index.isValid() ? list_.ListView1().Row(index.row()) : nullptr;
}

void EventPanel::ListView1_MouseUp(Qt::MouseButton button, const QPoint& point) {
    guarded([&] {
        ScriptRequest request =
            list_.ListView1_MouseUp(button, rowAt(point), listView1_->columnAt(point.x()));
        request.TreePoint = point;
        routeRequest(request);
    });
}

void EventPanel::ListView1_KeyDown(int key) {
    ListRow* row = list_.ListView1().SelectedItem();
    if (!row)
        return;
    const int position = list_.ListView1().PositionOf(row);
    // The hidden first column stands for When.
    int column = std::clamp(listView1_->currentIndex().column(), int{EventList::When},
                            int{EventList::DoAnimation});
    if (key == Qt::Key_Left || key == Qt::Key_Right) {
        column = std::clamp(column + (key == Qt::Key_Left ? -1 : 1), int{EventList::When},
                            int{EventList::DoAnimation});
        listView1_->selectionModel()->setCurrentIndex(listView1_->model()->index(position, column),
                                                      QItemSelectionModel::NoUpdate);
        return;
    }
    // Return is a click in the middle of the column the keyboard works on.
    const QPoint point =
        listView1_->visualRect(listView1_->model()->index(position, column)).center();
    guarded([&] {
        ScriptRequest request = list_.ListView1_MouseUp(Qt::LeftButton, row, column);
        request.TreePoint = point;
        routeRequest(request);
    });
}

void EventPanel::ListView1_MenuKey() {
    // The menu opens at the selected row, or at the top of the list when none is.
    ListRow* row = list_.ListView1().SelectedItem();
    const int position = list_.ListView1().PositionOf(row);
    const QPoint point =
        position < 0 ? QPoint(0, 0)
                     : listView1_->visualRect(listView1_->model()->index(position, 1)).center();
    guarded([&] {
        ScriptRequest request = list_.ListView1_MouseUp(Qt::RightButton, row, EventList::When);
        request.TreePoint = point;
        routeRequest(request);
    });
}

// A press on a row chooses it, so that a drag takes it along.
void EventPanel::ListView1_MouseDown(Qt::MouseButton button, const QPoint& point) {
    ListRow* row = button == Qt::LeftButton ? rowAt(point) : nullptr;
    pressedRowKey_ = row ? row->Key() : QString();
    pressPoint_ = point;
    if (row)
        list_.ListView1().SetSelectedItem(row);
}

void EventPanel::ListView1_MouseMove(Qt::MouseButtons buttons, const QPoint& point) {
    if (!(buttons & Qt::LeftButton) || pressedRowKey_.isEmpty() ||
        (point - pressPoint_).manhattanLength() < QApplication::startDragDistance())
        return;
    auto* carried = new QMimeData;
    carried->setData(QString::fromLatin1(RowDragMimeType),
                     std::exchange(pressedRowKey_, {}).toUtf8());
    auto* drag = new QDrag(listView1_);
    drag->setMimeData(carried);
    drag->exec(Qt::MoveAction);
}

bool EventPanel::filterDrag(QEvent* event) {
    auto* drag = static_cast<QDropEvent*>(event);
    const QMimeData* carried = drag->mimeData();
    const QPoint point = drag->position().toPoint();
    // What may be taken somewhere on the list is let in, and each move judged on its own.
    const bool taken = ListView1_DragOver(carried, point) ||
                       (event->type() == QEvent::DragEnter &&
                        carried->hasFormat(QString::fromLatin1(RowDragMimeType)));
    if (!taken) {
        drag->ignore();
        return true;
    }
    if (event->type() == QEvent::Drop)
        ListView1_DragDrop(carried, point);
    drag->acceptProposedAction();
    return true;
}

// An object from ObjectTree2 anywhere, or a row back onto itself, which is a click on it;
// a row onto another row is refused.
bool EventPanel::ListView1_DragOver(const QMimeData* carried, const QPoint& point) const {
    if (carried->hasFormat(QString::fromLatin1(RowDragMimeType))) {
        const ListRow* row = rowAt(point);
        return row &&
               row->Key() == QString::fromUtf8(carried->data(QString::fromLatin1(RowDragMimeType)));
    }
    const NodeRef& dragged = list_.Script().DragNode;
    return carried->hasFormat(QString::fromLatin1(NodeDragMimeType)) &&
           dragged.Tree == &objectTree2_ && dragged.Get();
}

void EventPanel::ListView1_DragDrop(const QMimeData* carried, const QPoint& point) {
    if (carried->hasFormat(QString::fromLatin1(RowDragMimeType))) {
        ListView1_MouseUp(Qt::LeftButton, point);
        return;
    }
    const QString objectName = list_.Script().DragNode.Get()->Tag();
    guarded([&] { list_.addDroppedObject(objectName); });
}

void EventPanel::routeRequest(ScriptRequest request) {
    if (request.What == ScriptRequest::Kind::None)
        return;
    request.ScreenPoint = listView1_->viewport()->mapToGlobal(request.TreePoint);
    list_.Script().requests().route(request);
}

} // namespace vessa
