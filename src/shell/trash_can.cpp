#include "shell/trash_can.h"

#include "controls/node_ref.h"
#include "events/event_list.h"
#include "script/script_model.h"
#include "shell/edit_menu.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QStyle>

namespace vessa {

TrashCan::TrashCan(ScriptModel& script, EventList& events, EditMenu& commands, QWidget* parent)
    : QToolButton(parent), script_(script), events_(events), commands_(commands) {
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
    commands_.run([](EditCommands& edit) { edit.EditDeleteMenuButton_Click(); });
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
        commands_.run([](EditCommands& edit) { edit.DeleteRow(); });
        return;
    }
    TreeNode* node = script_.DragNode.Get();
    script_.TreeView1().SetSelectedItem(node);
    script_.TreeView1().SetDropHighlight(node);
    script_.DragNode = {};
    commands_.run([node](EditCommands& edit) { edit.DeleteLine(node); });
}

} // namespace vessa
