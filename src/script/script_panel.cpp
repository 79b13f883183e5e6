#include "script/script_panel.h"

#include "base/run_time_error.h"
#include "controls/accessible_names.h"
#include "controls/tree_images.h"
#include "script/menu_view.h"
#include "script/script_host.h"
#include "script/script_icons.h"
#include "script/script_menus_view.h"
#include "script/script_model.h"

#include <QAccessible>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace vessa {

namespace {

TreeControlView* MakeView(TreeControl& tree, const QString& name, const QList<QIcon>& icons,
                          QWidget* parent) {
    auto* view = new TreeControlView(tree, parent);
    view->setObjectName(name);
    view->ItemModel().SetImageList(icons);
    return view;
}

// A view tall enough for rows lines and no more.
void FitRows(TreeControlView& view, int rows) {
    const int frame = 2 * view.frameWidth();
    view.setFixedHeight(rows * view.fontMetrics().height() * 5 / 4 + frame + 4);
}

// Where a piece of a node's text is drawn in the view.
QRect pieceRect(const TreeControlView& view, const TreeNode* node, const LinePiece& piece) {
    const QRect text = view.NodeRect(node);
    const QFontMetrics metrics(view.font());
    const QString& line = node->Text();
    const int left = text.left() + metrics.horizontalAdvance(line.left(piece.Offset));
    return {left, text.top(), metrics.horizontalAdvance(line.mid(piece.Offset, piece.Length)),
            text.height()};
}

// Draws the items as usual, and a frame round the current piece of the line the
// keyboard works on while the tree has the focus.
class PieceDelegate : public QStyledItemDelegate {
public:
    PieceDelegate(const ScriptPanel& panel, TreeControlView& view)
        : QStyledItemDelegate(&view), panel_(panel), view_(view) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        const TreeNode* node = TreeItemModel::NodeOf(index);
        if (!view_.hasFocus() || node != view_.Tree().SelectedItem())
            return;
        const LinePiece piece = panel_.currentPiece(node);
        if (piece.Length == 0)
            return;
        painter->save();
        painter->setPen(QPen(option.palette.highlightedText(), 1, Qt::DashLine));
        painter->drawRect(pieceRect(view_, node, piece).adjusted(-1, 1, 0, -2));
        painter->restore();
    }

private:
    const ScriptPanel& panel_;
    TreeControlView& view_;
};

// What a piece is, as a screen reader says it: "Forward, Direction".
QString pieceDescription(const QString& line, const LinePiece& piece) {
    ParseState probe;
    try {
        ParseString(probe, line, piece.Offset);
    } catch (const RunTimeError&) {
        return {};
    }
    QString what;
    switch (probe.ClickedKind) {
    case ObjectKind:
        what = QStringLiteral("object");
        break;
    case 2:
        what = QStringLiteral("command");
        break;
    case MarkerKind:
        what = QStringLiteral("more values");
        break;
    default:
        what = ParameterKinds(probe.ClickedKind).Name;
    }
    return probe.ClickedValue + QStringLiteral(", ") + what;
}

} // namespace

ScriptPanel::ScriptPanel(ScriptModel& model, QWidget* parent)
    : QWidget(parent), model_(model), clicks_(model), drops_(model, clicks_) {
    setObjectName(QStringLiteral("ScriptPanel"));
    const QList<QIcon> icons = TreeImages();
    constructTree_ = MakeView(model.ConstructTree(), QStringLiteral("ConstructTree"), icons, this);
    treeView1_ = MakeView(model.TreeView1(), QStringLiteral("TreeView1"), icons, this);
    commandLine_ =
        MakeView(model.CommandLineTreeview(), QStringLiteral("CommandLineTreeview"), icons, this);
    constructTree_->setRootIsDecorated(false);
    commandLine_->setRootIsDecorated(false);
    FitRows(*constructTree_, 2);
    FitRows(*commandLine_, 1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(constructTree_);
    layout->addWidget(treeView1_, 1);
    layout->addWidget(commandLine_);
    menusView_ = new ScriptMenusView(
        model, *treeView1_, [this](const ScriptRequest& request) { Show(request, *treeView1_); },
        this);
    applyAccessibleNames(this);

    treeView1_->ItemModel().SetLabelEditHandler(
        [this](TreeNode* node, const QString& text) { model_.AfterLabelEdit(node, text); });
    connect(treeView1_, &TreeControlView::MouseDown, this,
            [this](Qt::MouseButton button, const QPoint& point) {
                Guarded([&] { clicks_.TreeView1_MouseDown(button, point, *treeView1_); });
            });
    connect(treeView1_, &TreeControlView::MouseUp, this,
            [this](Qt::MouseButton button, const QPoint& point) {
                takePieceAt(*treeView1_, point);
                Guarded([&] {
                    Show(clicks_.TreeView1_MouseUp(button, point, *treeView1_), *treeView1_);
                });
            });
    // The menu key asks for what a right click on the current piece of the line shows.
    connect(treeView1_, &TreeControlView::menuKeyPressed, this, [this](const QPoint& point) {
        TreeNode* node = model_.TreeView1().SelectedItem();
        Guarded([&] {
            ScriptRequest request = clicks_.pressMenuKey(node, currentPiece(node).Offset);
            request.TreePoint = node ? piecePoint(*treeView1_, node) : point;
            Show(request, *treeView1_);
        });
    });
    connect(commandLine_, &TreeControlView::MouseUp, this,
            [this](Qt::MouseButton button, const QPoint& point) {
                takePieceAt(*commandLine_, point);
                Guarded([&] {
                    Show(clicks_.CommandLineTreeview_MouseUp(button, point, *commandLine_),
                         *commandLine_);
                });
            });
    connectTree(*treeView1_);
    connectTree(*commandLine_);
    insertionMark_ = new QWidget(treeView1_->viewport());
    insertionMark_->setObjectName(QStringLiteral("InsertionMark"));
    insertionMark_->setAttribute(Qt::WA_TransparentForMouseEvents);
    // Its own role: a child of the viewport would take the viewport's, and be as white.
    insertionMark_->setBackgroundRole(QPalette::Highlight);
    insertionMark_->setAutoFillBackground(true);
    insertionMark_->hide();
    ScrollTimer.setObjectName(QStringLiteral("ScrollTimer"));
    ScrollTimer.setInterval(100);
    connect(&ScrollTimer, &QTimer::timeout, this, [this] { ScrollTimer_Timer(); });
    connectDrags();
}

void ScriptPanel::connectTree(TreeControlView& view) {
    view.setItemDelegate(new PieceDelegate(*this, view));
    view.installEventFilter(this);
    // A reader is told the current piece of each line the keyboard comes to.
    connect(view.selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this, &view](const QModelIndex& current) {
                if (const TreeNode* node = TreeItemModel::NodeOf(current))
                    tellPiece(view, node);
            });
}

void ScriptPanel::connectDrags() {
    const auto pressedIn = [this](const TreeControl& tree) {
        return model_.DragNode.Tree == &tree ? model_.DragNode.Get() : nullptr;
    };
    connect(treeView1_, &TreeControlView::MouseMove, this,
            [this, pressedIn](Qt::MouseButtons buttons, const QPoint&) {
                TreeNode* node = pressedIn(model_.TreeView1());
                if (node && node->Parent() && (buttons & model_.DragButton))
                    beginDrag(*treeView1_, node);
            });
    connect(constructTree_, &TreeControlView::MouseDown, this,
            [this](Qt::MouseButton button, const QPoint& point) {
                TreeNode* node = constructTree_->HitTest(point);
                if (button != Qt::LeftButton || !node)
                    return;
                model_.DragNode = NodeRef::To(model_.ConstructTree(), node);
                model_.ConstructTree().SetSelectedItem(node);
            });
    connect(constructTree_, &TreeControlView::MouseMove, this,
            [this, pressedIn](Qt::MouseButtons buttons, const QPoint&) {
                if (TreeNode* node = pressedIn(model_.ConstructTree());
                    node && (buttons & Qt::LeftButton))
                    beginDrag(*constructTree_, node);
            });
    constructTree_->installEventFilter(this);
    for (TreeControlView* target : {treeView1_, commandLine_}) {
        target->viewport()->setAcceptDrops(true);
        target->viewport()->installEventFilter(this);
    }
}

void ScriptPanel::beginDrag(TreeControlView& view, TreeNode* node) {
    view.dragNode(node, Qt::MoveAction | Qt::CopyAction);
    endDragOver();
}

bool ScriptPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == constructTree_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter)
            return false;
        if (!key->isAutoRepeat())
            ConstructTree_KeyDown(key->key());
        return true;
    }
    if (watched == commandLine_->viewport())
        return CommandLineTreeview_DragEvent(event);
    if (auto* view = qobject_cast<TreeControlView*>(watched);
        event->type() == QEvent::KeyPress && (view == treeView1_ || view == commandLine_)) {
        const auto* key = static_cast<QKeyEvent*>(event);
        return !(key->modifiers() & ~Qt::KeypadModifier) && keyOnLine(*view, key->key());
    }
    if (watched != treeView1_->viewport())
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::DragEnter: {
        // Taken in whole, so that every move over the rows is judged on its own.
        auto* enter = static_cast<QDragEnterEvent*>(event);
        if (enter->mimeData()->hasFormat(QString::fromLatin1(NodeDragMimeType)) &&
            drops_.draggedSource() != DragSource::None)
            enter->acceptProposedAction();
        else
            enter->ignore();
        return true;
    }
    case QEvent::DragMove: {
        auto* move = static_cast<QDragMoveEvent*>(event);
        if (TreeView1_DragOver(move))
            move->acceptProposedAction();
        else
            move->ignore();
        return true;
    }
    case QEvent::DragLeave:
        endDragOver();
        return true;
    case QEvent::Drop:
        TreeView1_DragDrop(static_cast<QDropEvent*>(event));
        return true;
    default:
        return false;
    }
}

bool ScriptPanel::TreeView1_DragOver(QDropEvent* event) {
    if (!event->mimeData()->hasFormat(QString::fromLatin1(NodeDragMimeType)))
        return false;
    dragPoint_ = event->position().toPoint();
    return showDropPlace();
}

bool ScriptPanel::showDropPlace() {
    DropPlace place;
    Guarded([&] { place = drops_.TreeView1_DragOver(dragPoint_, *treeView1_); });
    const std::optional<InsertionMark> mark = ScriptDrops::MarkFor(place, *treeView1_);
    if (mark) {
        const QWidget* viewport = treeView1_->viewport();
        insertionMark_->setGeometry(mark->Start.x(), mark->Start.y() - 1,
                                    std::max(viewport->width() - mark->Start.x(), 8), 2);
        insertionMark_->show();
        insertionMark_->raise();
    } else {
        insertionMark_->hide();
    }
    ScrollDirection = ScriptDrops::ScrollDirection(dragPoint_.y(), treeView1_->viewport()->height(),
                                                   treeView1_->TwipsPerPixel());
    if (ScrollDirection == 0)
        ScrollTimer.stop();
    else if (!ScrollTimer.isActive())
        ScrollTimer.start();
    return place.IsPlace() || place.Click;
}

void ScriptPanel::ScrollTimer_Timer() {
    treeView1_->verticalScrollBar()->triggerAction(ScrollDirection < 0
                                                       ? QAbstractSlider::SliderSingleStepSub
                                                       : QAbstractSlider::SliderSingleStepAdd);
    // The rows moved under the pointer, and the place it shows with them.
    showDropPlace();
}

void ScriptPanel::TreeView1_DragDrop(QDropEvent* event) {
    endDragOver();
    if (!event->mimeData()->hasFormat(QString::fromLatin1(NodeDragMimeType))) {
        event->ignore();
        return;
    }
    const QPoint point = event->position().toPoint();
    Guarded([&] { Show(drops_.TreeView1_DragDrop(point, *treeView1_), *treeView1_); });
    event->acceptProposedAction();
}

void ScriptPanel::endDragOver() {
    ScrollTimer.stop();
    insertionMark_->hide();
    model_.TreeView1().SetDropHighlight(nullptr);
}

bool ScriptPanel::CommandLineTreeview_DragEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove: {
        auto* move = static_cast<QDragMoveEvent*>(event);
        if (move->mimeData()->hasFormat(QString::fromLatin1(NodeDragMimeType)) &&
            drops_.CommandLineTreeview_Accepts())
            move->acceptProposedAction();
        else
            move->ignore();
        return true;
    }
    case QEvent::Drop: {
        auto* drop = static_cast<QDropEvent*>(event);
        const QPoint point = drop->position().toPoint();
        Guarded([&] { Show(drops_.CommandLineTreeview_DragDrop(point), *commandLine_); });
        drop->acceptProposedAction();
        return true;
    }
    default:
        return false;
    }
}

void ScriptPanel::ConstructTree_KeyDown(int) {
    TreeNode* block = model_.ConstructTree().SelectedItem();
    if (!block)
        return;
    Guarded([&] {
        ScriptRequest next = drops_.InsertAtSelection(NodeRef::To(model_.ConstructTree(), block));
        if (TreeNode* made = model_.TreeView1().SelectedItem())
            next.TreePoint = treeView1_->NodeRect(made).bottomLeft();
        Show(next, *treeView1_);
    });
}

void ScriptPanel::ApplyScriptFont(const QFont& font) {
    treeView1_->setFont(font);
    commandLine_->setFont(font);
    FitRows(*commandLine_, 1);
}

void ScriptPanel::UndoFromLog() {
    Guarded([this] { model_.UndoFromLog(); });
}

void ScriptPanel::RedoFromLog() {
    Guarded([this] { model_.RedoFromLog(); });
}

void ScriptPanel::Guarded(const std::function<void()>& work) {
    // A failure ends the handler and is reported; it never reaches the event loop.
    try {
        work();
    } catch (const RunTimeError& error) {
        model_.Host().ReportError(error);
    }
}

void ScriptPanel::Show(ScriptRequest request, TreeControlView& view) {
    if (request.ScreenPoint.isNull())
        request.ScreenPoint = view.viewport()->mapToGlobal(request.TreePoint);
    switch (request.What) {
    case ScriptRequest::Kind::None:
        return;
    case ScriptRequest::Kind::NodeMenu:
        PopUp(request, [this](int row) { NodeRowChosen(row); });
        return;
    case ScriptRequest::Kind::Message: {
        auto* box = new QMessageBox(QMessageBox::Information, request.Title, request.Value,
                                    QMessageBox::Ok, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
        return;
    }
    case ScriptRequest::Kind::BlankMenu:
        PopUp(request, [this, &view, request](int row) {
            Guarded([&] {
                ScriptRequest next = clicks_.mnuBlankRightB_Click(row);
                next.TreePoint = request.TreePoint;
                Show(next, view);
            });
        });
        return;
    default:
        model_.requests().route(request);
    }
}

void ScriptPanel::PopUp(const ScriptRequest& request, const std::function<void(int)>& chosen) {
    if (menu_)
        menu_->close();
    const bool node = request.What == ScriptRequest::Kind::NodeMenu;
    menu_ = new QMenu(node ? tr("&Node") : tr("Blank Space"), this);
    menu_->setAttribute(Qt::WA_DeleteOnClose);
    fillMenu(*menu_, request.Rows, [chosen](int row, const MenuRow&) { chosen(row); });
    menu_->popup(request.ScreenPoint);
}

void ScriptPanel::NodeRowChosen(int row) {
    if (row == ScriptClicks::PythonLine) {
        AskForPythonLine();
        return;
    }
    Guarded([&] { Show(clicks_.mnuNodeRightB_Click(row), *treeView1_); });
}

void ScriptPanel::AskForPythonLine() {
    auto* box = new QMessageBox(QMessageBox::Warning, tr("Warning - Typing ahead"),
                                QStringLiteral("Warning! This will give you a line of Python "
                                               "Code\n\nIncorrect syntax may lead to errors."
                                               "\n\nProceed only if you are very familiar "
                                               "with Vessa."),
                                QMessageBox::Yes | QMessageBox::No, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setAccessibleName(tr("Warning - Typing ahead"));
    connect(box, &QMessageBox::finished, this, [this](int answer) {
        if (answer == QMessageBox::Yes)
            Guarded([this] { clicks_.mnuNodeRightB_Click(ScriptClicks::PythonLine); });
    });
    box->open();
}

// -- The keyboard on a line ----------------------------------------------------------------

LinePiece ScriptPanel::currentPiece(const TreeNode* node) const {
    if (!node || node->Tag() == PythonLineTag)
        return {};
    const std::vector<LinePiece> pieces = linePieces(node->Text());
    if (pieces.empty())
        return {};
    const int index = pieceNode_.Get() == node ? pieceIndex_ : 0;
    return pieces[static_cast<size_t>(std::clamp(index, 0, static_cast<int>(pieces.size()) - 1))];
}

QPoint ScriptPanel::piecePoint(TreeControlView& view, const TreeNode* node) const {
    view.scrollTo(view.ItemModel().IndexOf(node));
    const LinePiece piece = currentPiece(node);
    const QRect text = view.NodeRect(node);
    if (piece.Length == 0)
        return {text.left() + 1, text.center().y()};
    const QRect rect = pieceRect(view, node, piece);
    return {rect.left() + std::min(rect.width() / 2, 4), rect.center().y()};
}

void ScriptPanel::takePieceAt(TreeControlView& view, const QPoint& point) {
    TreeNode* node = view.HitTest(point);
    if (!node)
        return;
    const int offset = RichCharNumOver(node->Text(), view.TextFont(), view.NodeRect(node), point);
    const std::vector<LinePiece> pieces = linePieces(node->Text());
    int index = 0;
    while (index + 1 < static_cast<int>(pieces.size()) &&
           pieces[static_cast<size_t>(index + 1)].Offset <= offset)
        ++index;
    pieceNode_ = NodeRef::To(view.Tree(), node);
    pieceIndex_ = index;
}

bool ScriptPanel::keyOnLine(TreeControlView& view, int key) {
    TreeControl& tree = view.Tree();
    TreeNode* node = tree.SelectedItem();
    if (!node)
        return false;
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        Guarded([&] {
            ScriptRequest request = clicks_.pressEnter(tree, node, currentPiece(node).Offset);
            request.TreePoint = piecePoint(view, node);
            Show(request, view);
        });
        return true;
    }
    if (key != Qt::Key_Left && key != Qt::Key_Right)
        return false;
    const int pieces =
        currentPiece(node).Length == 0 ? 0 : static_cast<int>(linePieces(node->Text()).size());
    if (pieces == 0)
        return false; // blocks and Python lines open and close as tree items do
    int index = pieceNode_.Get() == node ? std::clamp(pieceIndex_, 0, pieces - 1) : 0;
    // Left of the first piece is the tree's own: up to the block the line is in.
    if (key == Qt::Key_Left && index == 0)
        return false;
    index = std::clamp(index + (key == Qt::Key_Left ? -1 : 1), 0, pieces - 1);
    pieceNode_ = NodeRef::To(tree, node);
    pieceIndex_ = index;
    tellPiece(view, node);
    return true;
}

void ScriptPanel::tellPiece(TreeControlView& view, const TreeNode* node) {
    view.viewport()->update();
    view.setAccessibleDescription(pieceDescription(node->Text(), currentPiece(node)));
    QAccessibleEvent told(&view, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&told);
}

} // namespace vessa
