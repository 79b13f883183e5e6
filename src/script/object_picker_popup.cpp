#include "script/object_picker_popup.h"

#include "controls/accessible_names.h"
#include "controls/tree_control_view.h"
#include "controls/tree_copy.h"
#include "controls/tree_images.h"
#include "script/in_place_editors.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QVBoxLayout>

namespace vessa {

namespace {

// The share of the script's height the picker takes.
constexpr double kHeightShare = 0.6;
constexpr int kWidth = 300;

} // namespace

ObjectPickerPopup::ObjectPickerPopup(ObjectPicker& picker, QWidget* parent)
    : QFrame(parent, Qt::Popup), picker_(picker), find_(new QLineEdit(this)),
      message_(new QLabel(this)), tree_(new TreeControlView(picker.TreeWidget(), this)) {
    setObjectName(QStringLiteral("TreeWidgetPopup"));
    setFrameShape(QFrame::Box);
    find_->setObjectName(QStringLiteral("TreeWidgetFind"));
    find_->setPlaceholderText(QStringLiteral("Type a name"));
    message_->setObjectName(QStringLiteral("TreeWidgetMessage"));
    message_->setWordWrap(true);
    message_->hide();
    tree_->setObjectName(QStringLiteral("TreeWidget"));
    tree_->ItemModel().SetImageList(TreeImages());
    tree_->viewport()->setMouseTracking(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(find_);
    layout->addWidget(message_);
    layout->addWidget(tree_, 1);
    applyAccessibleNames(this);

    TreeControl& objects = picker.TreeWidget();
    // The pointer shows which object a click would pick; a grey one can't be.
    connect(tree_, &TreeControlView::MouseMove, this,
            [this, &objects](Qt::MouseButtons, const QPoint& point) {
                TreeNode* node = tree_->HitTest(point);
                objects.SetDropHighlight(node && node->ForeColor() != kGreyedOut ? node : nullptr);
            });
    connect(tree_, &TreeControlView::MouseUp, this,
            [this](Qt::MouseButton button, const QPoint& point) {
                if (button == Qt::LeftButton)
                    finish(picker_.TreeWidget_MouseUp(tree_->HitTest(point)));
            });
    connect(tree_, &TreeControlView::Collapse, this, [&objects](TreeNode* node) {
        if (!node->Parent())
            objects.SetExpanded(node, true);
    });
    connect(find_, &QLineEdit::textEdited, this, [this, &objects](const QString& text) {
        if (TreeNode* node = picker_.firstNamed(text)) {
            objects.SetSelectedItem(node);
            objects.EnsureVisible(node);
        }
    });
    connect(find_, &QLineEdit::returnPressed, this,
            [this] { finish(picker_.pickByName(find_->text())); });
    tree_->installEventFilter(this);
    find_->installEventFilter(this);
}

void ObjectPickerPopup::StartTreeWidget(const QPoint& screenPoint, const QRect& area) {
    find_->clear();
    message_->hide();
    resize(kWidth, std::max(160, static_cast<int>(area.height() * kHeightShare)));
    // Beside the pointer, to the right when it fits within the script, else to the left;
    // as high as the script allows.
    int left = screenPoint.x() + 8;
    if (left + width() > area.right())
        left = std::max(area.left(), screenPoint.x() - 8 - width());
    const int top =
        std::clamp(screenPoint.y(), area.top(), std::max(area.top(), area.bottom() - height()));
    move(left, top);
    show();
    tree_->setFocus();
}

void ObjectPickerPopup::finish(const EditorAnswer& answer) {
    if (answer.Close) {
        close();
        return;
    }
    if (answer.Label.isEmpty())
        return;
    message_->setText(answer.Label);
    message_->show();
    QAccessibleEvent alert(message_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
    find_->setFocus();
    find_->selectAll();
}

bool ObjectPickerPopup::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QFrame::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (watched == tree_ && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
        finish(picker_.TreeWidget_MouseUp(picker_.TreeWidget().SelectedItem()));
        return true;
    }
    // From the field the arrows go on into the tree.
    if (watched == find_ && (key == Qt::Key_Down || key == Qt::Key_Up)) {
        tree_->setFocus();
        return true;
    }
    return QFrame::eventFilter(watched, event);
}

void ObjectPickerPopup::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QFrame::keyPressEvent(event);
}

} // namespace vessa
