#include "scene/scene_panel.h"

#include "controls/tree_control_view.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "scene/scene_trees.h"
#include "support/scripted_engine.h"

#include <QApplication>
#include <QDropEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QScopeGuard>
#include <QStyleHints>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

// The scene column over a scripted engine, with Scene > Bunny > .arm and a Sun.
struct Column : ScriptedProgram {
    SceneTrees trees;
    NodeRef dragNode;
    int tab = 0;
    QStringList objectMenus;
    std::unique_ptr<ScenePanel> panel;
    TreeNode *scene, *bunny, *arm, *sun;

    Column() {
        scripted->answers[QStringLiteral("isvalidname")] = true;
        TreeControl& t = trees.ObjectTree;
        scene =
            add(nullptr, QStringLiteral("Scene"), QStringLiteral("Scene"), object_images::Scene);
        bunny = add(scene, QStringLiteral("Bunny"), QStringLiteral("Bunny"), object_images::Model);
        arm = add(bunny, QStringLiteral(".arm"), QStringLiteral("Bunny.arm"),
                  object_images::ModelPart);
        sun = add(scene, QStringLiteral("Sun"), QStringLiteral("Sun"), object_images::Light);
        t.SetExpanded(scene, true);
        t.SetExpanded(bunny, true);
        panel = std::make_unique<ScenePanel>(
            trees, engine, reporter, dragNode,
            ScenePanel::Hooks{[this] { return tab; },
                              [this](const QString& name, const QPoint&) {
                                  objectMenus << name;
                              }});
        panel->resize(300, 400);
        panel->show();
        QApplication::processEvents();
        log.calls.clear();
        log.arguments.clear();
    }

    TreeNode* add(TreeNode* parent, const QString& text, const QString& tag, int image) {
        TreeControl& t = trees.ObjectTree;
        TreeNode* node =
            parent ? t.Add(parent, Relation::Child, QString(), text) : t.AddRoot(QString(), text);
        t.SetTag(node, tag);
        t.SetImage(node, image);
        return node;
    }

    QPoint at(const TreeNode* node) { return panel->ObjectTreeView().NodeRect(node).center(); }

    // Presses on `from`, drags, and drops on `to` as the view's drop events would.
    void dragAndDrop(const TreeNode* from, const TreeNode* to) {
        panel->ObjectTree_MouseDown(Qt::LeftButton, at(from));
        panel->ObjectTree_MouseMove(Qt::LeftButton, at(from));
        QWidget* viewport = panel->ObjectTreeView().viewport();
        QMimeData data;
        data.setData(QStringLiteral("application/x-vessa47-node"), "k");
        QDragEnterEvent enter(at(to), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &enter);
        QDragMoveEvent move(at(to), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &move);
        QDropEvent drop(QPointF(at(to)), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &drop);
    }
};

// An in-place editor is open on the view.
bool editing(const TreeControlView& view) {
    for (const QLineEdit* editor : view.findChildren<QLineEdit*>())
        if (editor->isVisible())
            return true;
    return false;
}

void answerNextMessageBox() {
    QTimer::singleShot(0, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            box->accept();
    });
}

} // namespace

TEST(ObjectTreePanel, DroppingOnAnotherObjectAsksTheEngineAndOnASameLabelAsksNothing) {
    Column c;
    c.dragAndDrop(c.sun, c.bunny);
    EXPECT_EQ(c.statements(), (QStringList{QStringLiteral("PlaySystemSound('Selection')"),
                                           QStringLiteral("Sun.BecomeChildOf(Bunny,Duration=0)"),
                                           QStringLiteral("playsystemsound('TreeDrop')")}));
    // The tree itself waits for the engine's records.
    EXPECT_EQ(c.sun->Parent(), c.scene);
    EXPECT_FALSE(c.panel->InDrag());

    Column same;
    same.trees.ObjectTree.SetText(same.sun, QStringLiteral("bunny"));
    same.dragAndDrop(same.sun, same.bunny);
    EXPECT_FALSE(same.statements().contains(QStringLiteral("Sun.BecomeChildOf(Bunny,Duration=0)")));
}

TEST(ObjectTreePanel, TheSceneCannotBeDragged) {
    Column c;
    c.panel->ObjectTree_MouseDown(Qt::LeftButton, c.at(c.scene));
    c.panel->ObjectTree_MouseMove(Qt::LeftButton, c.at(c.scene));
    EXPECT_FALSE(c.panel->InDrag());
    EXPECT_EQ(c.dragNode.Get(), c.scene); // a drag target still knows what was pressed
}

TEST(ObjectTreePanel, RenamingAskTheEngineKeepsTheDotAndNeverChangesTheNode) {
    Column c;
    c.trees.ObjectTree.SetSelectedItem(c.arm);
    c.panel->ObjectTree_MouseDown(Qt::LeftButton, c.at(c.arm)); // the selection before: .arm
    c.panel->ObjectTree_MouseUp(Qt::LeftButton, c.at(c.arm));   // second click: edit
    EXPECT_TRUE(editing(c.panel->ObjectTreeView()));
    // Typing "leg" and pressing Enter.
    QLineEdit* editor = c.panel->ObjectTreeView().findChild<QLineEdit*>();
    editor->setText(QStringLiteral("leg"));
    QTest::keyClick(editor, Qt::Key_Return);
    QApplication::processEvents(); // the editor hands its text over once back in the loop
    EXPECT_TRUE(c.statements().contains(QStringLiteral("Bunny.arm.Rename('.leg')")));
    EXPECT_EQ(c.arm->Text(), QStringLiteral(".arm"));

    c.scripted->answers[QStringLiteral("isvalidname")] = false;
    c.log.calls.clear();
    answerNextMessageBox();
    c.panel->ObjectTree_AfterLabelEdit(c.arm, QStringLiteral("Sun"));
    EXPECT_TRUE(c.statements().isEmpty());
}

TEST(ObjectTreePanel, NamesAreEditedOnTheOpeningSceneTabOnly) {
    Column c;
    c.tab = 1;
    c.trees.ObjectTree.SetSelectedItem(c.bunny);
    c.panel->ObjectTree_MouseDown(Qt::LeftButton, c.at(c.bunny));
    c.panel->ObjectTree_MouseUp(Qt::LeftButton, c.at(c.bunny));
    EXPECT_FALSE(editing(c.panel->ObjectTreeView()));
}

TEST(ObjectTreePanel, RightClickOnBlankSpaceShowsNoMenuButTellsTheSelectedObject) {
    Column c;
    c.trees.ObjectTree.SetSelectedItem(c.sun);
    c.panel->ObjectTree_MouseUp(Qt::RightButton, QPoint(5, 390));
    EXPECT_TRUE(c.objectMenus.isEmpty());
    EXPECT_EQ(c.log.calls, QStringList{QStringLiteral("SetCurrentObject")});
    EXPECT_EQ(c.log.arguments[0][0].toString(), QStringLiteral("Sun"));

    c.panel->ObjectTree_MouseUp(Qt::RightButton, c.at(c.bunny));
    EXPECT_EQ(c.objectMenus, QStringList{QStringLiteral("Bunny")});
    EXPECT_EQ(c.trees.ObjectTree.SelectedItem(), c.bunny);
}

TEST(ObjectTreePanel, TheObjectsMenuOpensOnTheSceneAndAnimationsTabsButNotOnTheEventsTab) {
    Column c;
    for (int tab : {1, 2, 0}) {
        c.tab = tab;
        c.panel->ObjectTree_MouseUp(Qt::RightButton, c.at(c.sun));
    }
    EXPECT_EQ(c.objectMenus, (QStringList{QStringLiteral("Sun"), QStringLiteral("Sun")}));
}

TEST(ObjectTreePanel, TheMenuKeyAsksForTheSelectedObjectsMenuAsARightClickDoes) {
    Column c;
    c.trees.ObjectTree.SetSelectedItem(c.sun);
    QTest::keyClick(&c.panel->ObjectTreeView(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(c.objectMenus, QStringList{QStringLiteral("Sun")});
    c.trees.ObjectTree.SetSelectedItem(nullptr);
    QTest::keyClick(&c.panel->ObjectTreeView(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(c.objectMenus.size(), 1);
}

TEST(ObjectTree2Panel, GreyNodesCannotBeChosen) {
    Column c;
    c.tab = 2;
    ObjectTree2_Update(c.trees);
    c.panel->showTab(2);
    QApplication::processEvents();
    TreeControlView& view = c.panel->ObjectTree2View();
    const TreeNode* scene = c.trees.ObjectTree2.FirstRoot();
    c.panel->ObjectTree2_MouseDown(Qt::LeftButton, view.NodeRect(scene).center());
    EXPECT_FALSE(c.trees.ObjectTree2.SelectedItem());
    const TreeNode* anywhere = c.trees.ObjectTree2.RootAt(1);
    c.panel->ObjectTree2_MouseDown(Qt::LeftButton, view.NodeRect(anywhere).center());
    EXPECT_EQ(c.trees.ObjectTree2.SelectedItem(), anywhere);
    EXPECT_EQ(c.dragNode.Get(), anywhere);
}

TEST(SoundTreePanel, PlayDeleteAndAListThatNeverFolds) {
    Column c;
    TreeControl& sounds = c.trees.SoundTree;
    c.panel->SoundTree_DblClick(); // nothing selected: nothing sent
    EXPECT_TRUE(c.statements().isEmpty());

    TreeNode* boing = sounds.AddRoot(QStringLiteral("s1"), QStringLiteral("Boing"));
    sounds.SetSelectedItem(boing);
    c.panel->SoundTree_DblClick();
    c.panel->SoundTree_KeyUp(Qt::Key_Delete);
    EXPECT_EQ(c.statements(),
              (QStringList{QStringLiteral("Playsound(Boing)"),
                           QStringLiteral("Vessa.GetDefaultScene().RemoveSound(Boing)")}));

    sounds.Add(boing, Relation::Child, QString(), QStringLiteral("inner"));
    sounds.SetExpanded(boing, true);
    QApplication::processEvents();
    c.panel->SoundTreeView().collapse(c.panel->SoundTreeView().ItemModel().IndexOf(boing));
    EXPECT_TRUE(boing->Expanded());
}

// Real double clicks through the window, so that the platform's rules apply.
TEST(ScenePanelMouse, ADoubleClickPlaysOrOpensAndNeverRenames) {
    QStyleHints* hints = QGuiApplication::styleHints();
    const auto restore = qScopeGuard([hints, interval = hints->mouseDoubleClickInterval()] {
        hints->setMouseDoubleClickInterval(interval);
    });
    hints->setMouseDoubleClickInterval(100);
    Column c;
    TreeNode* boing = c.trees.SoundTree.AddRoot(QStringLiteral("s1"), QStringLiteral("Boing"));
    c.trees.ObjectTree.SetExpanded(c.bunny, false);
    c.trees.ObjectTree.SetSelectedItem(c.bunny);
    QApplication::processEvents();
    QWindow* window = c.panel->windowHandle();
    const auto at = [&](TreeControlView& view, const TreeNode* node) {
        return view.viewport()->mapTo(c.panel.get(), view.NodeRect(node).center());
    };
    TreeControlView& objects = c.panel->ObjectTreeView();
    QTest::mouseDClick(window, Qt::LeftButton, {}, at(objects, c.bunny));
    EXPECT_TRUE(c.bunny->Expanded());
    // A sound not selected yet, then the selected one.
    TreeControlView& sounds = c.panel->SoundTreeView();
    QTest::mouseDClick(window, Qt::LeftButton, {}, at(sounds, boing));
    QTest::mouseDClick(window, Qt::LeftButton, {}, at(sounds, boing));
    QTest::qWait(300); // past the time in which a second click would start a rename
    EXPECT_FALSE(editing(objects) || editing(sounds));
    EXPECT_EQ(c.statements(), (QStringList{QStringLiteral("PlaySystemSound('Selection')"),
                                           QStringLiteral("playsystemsound('TreeExpand')"),
                                           QStringLiteral("Playsound(Boing)"),
                                           QStringLiteral("Playsound(Boing)")}));
    // A slow second click on the selected sound is how it is renamed.
    QTest::mouseClick(window, Qt::LeftButton, {}, at(sounds, boing));
    EXPECT_TRUE(QTest::qWaitFor([&] { return editing(sounds); }));
}
