#include "scene/scene_panel.h"

#include "controls/accessible_names.h"
#include "controls/tree_control_view.h"
#include "controls/tree_copy.h"
#include "controls/tree_images.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "scene/scene_trees.h"

#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QVBoxLayout>

namespace vessa {

namespace {

TreeControlView* makeView(TreeControl& tree, const QString& name, QWidget* parent) {
    auto* view = new TreeControlView(tree, parent);
    view->setObjectName(name);
    view->ItemModel().SetImageList(TreeImages());
    return view;
}

bool isGrey(const TreeNode* node) {
    return node->ForeColor() == kGreyedOut;
}

} // namespace

ScenePanel::ScenePanel(SceneTrees& trees, EngineLink& engine, ErrorReporter& reporter,
                       NodeRef& dragNode, Hooks hooks, QWidget* parent)
    : QWidget(parent), trees_(trees), engine_(engine), reporter_(reporter), dragNode_(dragNode),
      hooks_(std::move(hooks)) {
    setObjectName(QStringLiteral("ScenePanel"));
    objectTree_ = makeView(trees.ObjectTree, QStringLiteral("ObjectTree"), this);
    objectTree2_ = makeView(trees.ObjectTree2, QStringLiteral("ObjectTree2"), this);
    soundTree_ = makeView(trees.SoundTree, QStringLiteral("SoundTree"), this);
    objectTree2_->hide();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(objectTree_, 2);
    layout->addWidget(objectTree2_, 2);
    layout->addWidget(soundTree_, 1);

    connectObjectTree();
    connectObjectTree2();
    connectSoundTree();
    applyAccessibleNames(this);
}

void ScenePanel::showTab(int tab) {
    objectTree_->setVisible(tab != 2);
    objectTree2_->setVisible(tab == 2);
}

bool ScenePanel::objectTreeVisible() const {
    return objectTree_->isVisible();
}

void ScenePanel::guarded(const std::function<void()>& handler) {
    try {
        asRunTimeError(handler);
    } catch (const RunTimeError& e) {
        reporter_.reportHandlerFailure(e);
    }
}

bool ScenePanel::acceptableName(const QString& name) {
    if (acceptsName(engine_, name))
        return true;
    QMessageBox::information(
        this, QStringLiteral("Invalid name"),
        QStringLiteral("An object with this name already exists or the new name was invalid."));
    return false;
}

void ScenePanel::connectObjectTree() {
    TreeControlView* view = objectTree_;
    connect(view, &TreeControlView::MouseDown, this, [this](Qt::MouseButton b, const QPoint& p) {
        guarded([&] { ObjectTree_MouseDown(b, p); });
    });
    connect(view, &TreeControlView::MouseMove, this, [this](Qt::MouseButtons b, const QPoint& p) {
        if (TreeNode* node = ObjectTree_MouseMove(b, p))
            beginDrag(*objectTree_, node);
    });
    connect(view, &TreeControlView::MouseUp, this, [this](Qt::MouseButton b, const QPoint& p) {
        guarded([&] { ObjectTree_MouseUp(b, p); });
    });
    // The menu key opens what a right click on the selected object opens.
    connect(view, &TreeControlView::menuKeyPressed, this,
            [this](const QPoint& p) { guarded([&] { ObjectTree_MouseUp(Qt::RightButton, p); }); });
    connectFoldingSounds(*view, QStringLiteral("ObjectTree"));
    view->ItemModel().SetLabelEditHandler([this](TreeNode* node, const QString& text) {
        guarded([&] { ObjectTree_AfterLabelEdit(node, text); });
    });
    view->setAcceptDrops(true);
    view->viewport()->setAcceptDrops(true);
    view->viewport()->installEventFilter(this);
}

void ScenePanel::connectObjectTree2() {
    TreeControlView* view = objectTree2_;
    connect(view, &TreeControlView::MouseDown, this, [this](Qt::MouseButton b, const QPoint& p) {
        TreeNode* node = nullptr;
        guarded([&] { node = ObjectTree2_MouseDown(b, p); });
        if (node)
            beginDrag(*objectTree2_, node);
    });
    connectFoldingSounds(*view, QStringLiteral("ObjectTree2"));
}

void ScenePanel::connectFoldingSounds(TreeControlView& view, const QString& control) {
    connect(&view, &TreeControlView::Expand, this, [this, control] {
        guarded([&] {
            runTool(engine_, reporter_, QStringLiteral("playsystemsound('TreeExpand')"),
                    QStringLiteral("MainForm:") + control +
                        QStringLiteral("_Expand: Error playing sound."));
        });
    });
    connect(&view, &TreeControlView::Collapse, this, [this, control] {
        guarded([&] {
            runTool(engine_, reporter_, QStringLiteral("PlaySystemSound('TreeCollapse')"),
                    QStringLiteral("MainForm:") + control +
                        QStringLiteral("_Collapse: Error playing sound."));
        });
    });
}

void ScenePanel::connectSoundTree() {
    TreeControlView* view = soundTree_;
    connect(view, &TreeControlView::MouseDown, this, [this](Qt::MouseButton b, const QPoint& p) {
        guarded([&] { SoundTree_MouseDown(b, p); });
    });
    connect(view, &TreeControlView::MouseMove, this, [this](Qt::MouseButtons b, const QPoint&) {
        if (TreeNode* node = SoundTree_MouseMove(b))
            beginDrag(*soundTree_, node);
    });
    connect(view, &TreeControlView::DblClick, this,
            [this] { guarded([&] { SoundTree_DblClick(); }); });
    connect(view, &TreeControlView::KeyUp, this,
            [this](int key) { guarded([&] { SoundTree_KeyUp(key); }); });
    // The list of sounds never folds away.
    connect(view, &TreeControlView::Collapse, this,
            [this](TreeNode* node) { trees_.SoundTree.SetExpanded(node, true); });
    view->ItemModel().SetLabelEditHandler([this](TreeNode*, const QString& text) {
        guarded([&] { SoundTree_AfterLabelEdit(text); });
    });
}

// -- ObjectTree --------------------------------------------------------------

void ScenePanel::ObjectTree_MouseDown(Qt::MouseButton button, const QPoint& point) {
    if (button != Qt::LeftButton)
        return;
    TreeControl& tree = trees_.ObjectTree;
    TreeNode* pressed = objectTree_->HitTest(point);
    pressedNode_ = NodeRef::To(tree, pressed);
    // The name of the object as selected before this press.
    if (tree.SelectedItem())
        trees_.SelectedObjectName = tree.SelectedItem()->Tag();
    dragNode_ = pressedNode_;
    pressedSelectedNode_ = pressed && pressed == tree.SelectedItem();
    if (pressed) {
        tree.SetSelectedItem(pressed);
        ObjectTree_NodeClick(pressed);
    }
}

void ScenePanel::ObjectTree_NodeClick(TreeNode* node) {
    runTool(engine_, reporter_, QStringLiteral("PlaySystemSound('Selection')"),
            QStringLiteral("MainForm:ObjectTree_NodeClick: Error calling python."));
    // The command line takes the object's name from here.
    Q_EMIT objectClicked(node->Tag());
}

TreeNode* ScenePanel::ObjectTree_MouseMove(Qt::MouseButtons buttons, const QPoint&) {
    TreeNode* pressed = pressedNode_.Get();
    // The scene itself, and a node without a picture, stay where they are.
    if (!(buttons & Qt::LeftButton) || !pressed || pressed->Image() == 0 || !pressed->Parent())
        return nullptr;
    inDrag_ = true;
    return pressed;
}

void ScenePanel::beginDrag(TreeControlView& view, TreeNode* node) {
    pressedSelectedNode_ = false; // a drag is no click to rename
    view.dragNode(node, Qt::MoveAction | Qt::CopyAction);
}

bool ScenePanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched != objectTree_->viewport())
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove: {
        auto* drag = static_cast<QDragMoveEvent*>(event);
        if (!inDrag_ || !drag->mimeData()->hasFormat(QString::fromLatin1(NodeDragMimeType)))
            return false;
        ObjectTree_DragOver(drag->position().toPoint());
        drag->acceptProposedAction();
        return true;
    }
    case QEvent::Drop:
        guarded([&] { ObjectTree_DragDrop(); });
        static_cast<QDropEvent*>(event)->acceptProposedAction();
        return true;
    default:
        return false;
    }
}

void ScenePanel::ObjectTree_DragOver(const QPoint& point) {
    trees_.ObjectTree.SetDropHighlight(objectTree_->HitTest(point));
}

void ScenePanel::ObjectTree_DragDrop() {
    TreeControl& tree = trees_.ObjectTree;
    TreeNode* target = tree.DropHighlight();
    TreeNode* pressed = pressedNode_.Get();
    if (!target || !pressed) {
        inDrag_ = false;
        return;
    }
    // Dropping on a node of the same label asks for nothing, even another object.
    if (pressed->Text().compare(target->Text(), Qt::CaseInsensitive) != 0) {
        runTool(engine_, reporter_,
                pressed->Tag() + QStringLiteral(".BecomeChildOf(") + target->Tag() +
                    QStringLiteral(",Duration=0)"),
                QStringLiteral("MainForm:ObjectTree_DragDrop: Error reparenting object."));
        runTool(engine_, reporter_, QStringLiteral("playsystemsound('TreeDrop')"),
                QStringLiteral("MainForm:ObjectTree_DragDrop: Error playing sound."));
    }
    tree.SetDropHighlight(nullptr);
    inDrag_ = false;
}

void ScenePanel::ObjectTree_MouseUp(Qt::MouseButton button, const QPoint& point) {
    TreeControl& tree = trees_.ObjectTree;
    const int tab = hooks_.sceneScriptTab();
    // The object's menu runs its commands at once on the opening scene and makes lines of
    // them on the animations tab; the events tab has a tree of its own.
    if (button == Qt::RightButton && tab != 2) {
        pressedNode_ = NodeRef::To(tree, objectTree_->HitTest(point));
        if (TreeNode* node = pressedNode_.Get()) {
            tree.SetSelectedItem(node);
            hooks_.showObjectMenu(node->Tag(), objectTree_->viewport()->mapToGlobal(point));
        }
    }
    if (TreeNode* selected = tree.SelectedItem())
        engine_.call(QStringLiteral("SetCurrentObject"), {selected->Tag()});
    // A second click on the selected object edits its name, on the opening scene only.
    if (button == Qt::LeftButton && pressedSelectedNode_ && tab == 0 &&
        objectTree_->HitTest(point) == tree.SelectedItem()) {
        oldLabel_ = tree.SelectedItem()->Text();
        tree.StartLabelEdit(tree.SelectedItem());
    }
    pressedSelectedNode_ = false;
}

void ScenePanel::ObjectTree_AfterLabelEdit(TreeNode*, const QString& newString) {
    // The node is never changed here: the engine's rename record changes it.
    QString name = newString;
    if (oldLabel_.startsWith(QLatin1Char('.')) && !name.startsWith(QLatin1Char('.')))
        name.prepend(QLatin1Char('.'));
    if (name == oldLabel_)
        return; // left as it was: nothing to ask
    if (!acceptableName(name))
        return;
    runTool(engine_, reporter_,
            trees_.SelectedObjectName + QStringLiteral(".Rename('") + name + QStringLiteral("')"),
            QStringLiteral("MainForm:ObjectTree_AfterLabelEdit: Error on call to python."));
}

// -- ObjectTree2 -------------------------------------------------------------

TreeNode* ScenePanel::ObjectTree2_MouseDown(Qt::MouseButton button, const QPoint& point) {
    if (button != Qt::LeftButton)
        return nullptr;
    TreeControl& tree = trees_.ObjectTree2;
    TreeNode* node = objectTree2_->HitTest(point);
    if (!node)
        return nullptr;
    if (isGrey(node)) {
        // Who an event happens to can't be one of these.
        tree.SetSelectedItem(nullptr);
        tree.SetDropHighlight(nullptr);
        return nullptr;
    }
    tree.SetSelectedItem(node);
    tree.SetDropHighlight(node);
    dragNode_ = NodeRef::To(tree, node);
    return node;
}

// -- SoundTree ---------------------------------------------------------------

void ScenePanel::SoundTree_MouseDown(Qt::MouseButton, const QPoint& point) {
    TreeControl& tree = trees_.SoundTree;
    TreeNode* node = soundTree_->HitTest(point);
    if (!node)
        return;
    const bool wasSelected = node == tree.SelectedItem();
    trees_.SelectedSoundName = node->Text();
    dragNode_ = NodeRef::To(tree, node);
    tree.SetSelectedItem(node);
    if (wasSelected && hooks_.sceneScriptTab() == 0)
        tree.StartLabelEdit(node);
}

TreeNode* ScenePanel::SoundTree_MouseMove(Qt::MouseButtons buttons) {
    TreeNode* node = dragNode_.Tree == &trees_.SoundTree ? dragNode_.Get() : nullptr;
    if (!(buttons & Qt::LeftButton) || !node)
        return nullptr;
    trees_.SoundTree.SetSelectedItem(node);
    trees_.SoundTree.SetDropHighlight(node);
    return node;
}

void ScenePanel::SoundTree_DblClick() {
    TreeNode* selected = trees_.SoundTree.SelectedItem();
    if (!selected)
        return;
    runTool(engine_, reporter_, QStringLiteral("Playsound(") + selected->Text() + QLatin1Char(')'),
            QStringLiteral("MainForm: SoundTree: Error Playing Sound."));
    trees_.SoundTree.SetDropHighlight(selected);
}

void ScenePanel::SoundTree_KeyUp(int key) {
    TreeNode* selected = trees_.SoundTree.SelectedItem();
    if (key != Qt::Key_Delete || !selected)
        return;
    runTool(engine_, reporter_,
            QStringLiteral("Vessa.GetDefaultScene().RemoveSound(") + selected->Text() +
                QLatin1Char(')'),
            QStringLiteral("MainForm: SoundTree: Error Deleting Sound."));
}

void ScenePanel::SoundTree_AfterLabelEdit(const QString& newString) {
    if (!acceptableName(newString))
        return;
    runTool(engine_, reporter_,
            trees_.SelectedSoundName + QStringLiteral(".Rename('") + newString +
                QStringLiteral("')"),
            QStringLiteral("MainForm:SoundTree_AfterLabelEdit: Error on call to python."));
}

} // namespace vessa
