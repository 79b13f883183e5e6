#include "shell/trash_can.h"

#include "base/run_time_error.h"
#include "controls/node_ref.h"
#include "events/event_list.h"
#include "script/script_host.h"
#include "script/script_model.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QStyle>

namespace vessa {

TrashCan::TrashCan(ScriptModel& script, EventList& events, std::function<int()> tab,
                   QWidget* parent)
    : QToolButton(parent), script_(script), events_(events), tab_(std::move(tab)) {
    setObjectName(QStringLiteral("TrashCanPicture"));
    setText(tr("Trash"));
    setIcon(style()->standardIcon(QStyle::SP_TrashIcon));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setToolTip(tr("Drop a line of the script or an event here to delete it; pressed, it "
                  "deletes the selected one"));
    setAcceptDrops(true);
    connect(this, &QToolButton::clicked, this, &TrashCan::EditDeleteMenuButton_Click);
}

void TrashCan::EditDeleteMenuButton_Click() {
    if (tab_() == 2)
        deleteSelectedRow();
    else if (TreeNode* node = script_.TreeView1().SelectedItem())
        deleteLine(node);
}

bool TrashCan::takes(const QMimeData* carried) const {
    if (carried->hasFormat(QString::fromLatin1(RowDragMimeType)))
        return events_.ListView1().SelectedItem() != nullptr;
    const NodeRef& dragged = script_.DragNode;
    return carried->hasFormat(QString::fromLatin1(NodeDragMimeType)) &&
           dragged.Tree == &script_.TreeView1() && dragged.Get();
}

void TrashCan::showOpen(bool open) {
    open_ = open;
    setDown(open);
}

void TrashCan::dragEnterEvent(QDragEnterEvent* event) {
    if (!takes(event->mimeData())) {
        event->ignore();
        return;
    }
    showOpen(true);
    event->acceptProposedAction();
}

void TrashCan::dragLeaveEvent(QDragLeaveEvent*) {
    showOpen(false);
}

void TrashCan::dropEvent(QDropEvent* event) {
    showOpen(false);
    const QMimeData* carried = event->mimeData();
    if (!takes(carried)) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    if (carried->hasFormat(QString::fromLatin1(RowDragMimeType))) {
        deleteSelectedRow();
        return;
    }
    TreeNode* node = script_.DragNode.Get();
    script_.TreeView1().SetSelectedItem(node);
    script_.TreeView1().SetDropHighlight(node);
    script_.DragNode = {};
    deleteLine(node);
}

void TrashCan::deleteSelectedRow() {
    const ListRow* row = events_.ListView1().SelectedItem();
    if (!row)
        return;
    try {
        events_.DeleteRow(row);
    } catch (const RunTimeError& error) {
        script_.Host().ReportError(error);
    }
}

void TrashCan::deleteLine(TreeNode* node) {
    const NodeRef line = NodeRef::To(script_.TreeView1(), node);
    const auto remove = [this, line] {
        // The line may have gone while the question was open.
        if (TreeNode* still = line.Get()) {
            try {
                script_.DeleteNode(still);
            } catch (const RunTimeError& error) {
                script_.Host().ReportError(error);
            }
        }
    };
    if (!script_.DeleteTakesEventRows(node)) {
        remove();
        return;
    }
    auto* question = new QMessageBox(
        QMessageBox::Warning, tr("Delete Animation"),
        QStringLiteral("This animation has been attached to a condition in the event builder.\r\n"
                       "If you delete this animation, any events to which it has been attached "
                       "\r\nwill be deleted as well."),
        QMessageBox::Ok | QMessageBox::Cancel, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QMessageBox::finished, this, [remove](int answer) {
        if (answer == QMessageBox::Ok)
            remove();
    });
    question->open();
}

} // namespace vessa
