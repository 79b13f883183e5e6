// A line made without typing: the object's menu from the object tree, the star menu on a
// value of the line, and the keyboard on the line, with the real engine behind the window.
#include "window_on_the_engine.h"

#include "scene/scene_panel.h"
#include "script/script_menus_view.h"

#include "support/qt_print.h"
#include "support/window_wait.h"

#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

struct MenusOnTheEngine : WindowOnTheEngine {
    TreeControlView& objects = form->scenePanel().ObjectTreeView();
    TreeControlView& lines = form->scriptPanel().TreeView1View();

    // A model named Bunny in the scene and in the object tree, the tree open.
    TreeNode* AddBunny() {
        engine.call(QStringLiteral("AddText"), {QStringLiteral("Bunny")});
        world.pollTreeDifferences();
        TreeControl& tree = world.trees().ObjectTree;
        tree.SetExpanded(tree.FirstRoot(), true);
        for (TreeNode* node = tree.FirstRoot()->Child(); node; node = node->Next())
            if (node->Tag() == QStringLiteral("Bunny"))
                return node;
        ADD_FAILURE() << "no Bunny in the object tree";
        return nullptr;
    }

    QMenu* OpenMenu() { return form->scriptPanel().menusView().openMenu(); }

    // A click on the row of menu with caption; the menu it opens, if it opens one.
    static QMenu* ClickRow(QMenu* menu, const QString& caption) {
        if (!menu)
            return nullptr;
        EXPECT_TRUE(QTest::qWaitForWindowExposed(menu, kWindowWaitMs));
        for (QAction* row : menu->actions()) {
            if (row->text() != caption)
                continue;
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(row).center());
            if (QMenu* below = row->menu()) {
                EXPECT_TRUE(QTest::qWaitFor([below] { return below->isVisible(); }));
                return below;
            }
            return nullptr;
        }
        ADD_FAILURE() << "no row " << caption.toStdString() << " in "
                      << menu->title().toStdString();
        return nullptr;
    }

    // The middle of character offset of the line's text in the script's view.
    QPoint AtCharacter(const TreeNode* line, int offset) {
        const QFontMetrics metrics(lines.font());
        return {lines.NodeRect(line).left() + metrics.horizontalAdvance(line->Text().left(offset)) +
                    metrics.horizontalAdvance(line->Text().at(offset)) / 2,
                lines.NodeRect(line).center().y()};
    }
};

} // namespace

TEST(MenusOnTheEngine, TheObjectsMenuMakesALineAndTheStarMenuChangesItsValue) {
    MenusOnTheEngine w;
    TreeNode* bunny = w.AddBunny();
    ASSERT_NE(bunny, nullptr);
    QApplication::processEvents();
    QTest::mouseClick(w.objects.viewport(), Qt::RightButton, {},
                      w.objects.NodeRect(bunny).center());
    QMenu* menu = w.OpenMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->objectName(), QStringLiteral("ObjectMenuButton"));
    w.ClickRow(w.ClickRow(w.ClickRow(menu, "Move"), "Forward"), "1 (meter)");
    TreeNode* line = w.action1->Child();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->Text(), QStringLiteral("Bunny.Move(Forward, 1, more...)"));

    QApplication::processEvents();
    QTest::mouseClick(w.lines.viewport(), Qt::LeftButton, {},
                      w.AtCharacter(line, static_cast<int>(line->Text().indexOf(u'1'))));
    QMenu* star = w.OpenMenu();
    ASSERT_NE(star, nullptr);
    EXPECT_EQ(star->objectName(), QStringLiteral("mnuStar"));
    w.ClickRow(star, "2 (meters)");
    EXPECT_EQ(line->Text(), QStringLiteral("Bunny.Move(Forward, 2, more...)"));
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());

    // Both changes are undone.
    for (int undo = 0; undo < 2; ++undo)
        w.world.script().UndoFromLog();
    EXPECT_EQ(w.action1->Children(), 0);
}

TEST(MenusOnTheEngine, TheKeyboardMakesALineFromTheObjectTreeAndChangesAValueOnIt) {
    MenusOnTheEngine w;
    TreeNode* bunny = w.AddBunny();
    ASSERT_NE(bunny, nullptr);
    w.world.trees().ObjectTree.SetSelectedItem(bunny);
    w.objects.setFocus();
    QTest::keyClick(&w.objects, Qt::Key_F10, Qt::ShiftModifier);
    QMenu* menu = w.OpenMenu();
    ASSERT_NE(menu, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu, kWindowWaitMs));
    // It opens at the object, wherever the mouse is.
    const QPoint object = w.objects.viewport()->mapToGlobal(w.objects.NodeRect(bunny).center());
    EXPECT_LT((menu->pos() - object).manhattanLength(), 60);
    // Down past the name to "Move", into it, "Forward", into it, "1/2 (meter)".
    for (Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Right, Qt::Key_Right, Qt::Key_Return})
        QTest::keyClick(QApplication::activePopupWidget(), key);
    TreeNode* line = w.action1->Child();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->Text(), QStringLiteral("Bunny.Move(Forward, 1/2, more...)"));

    // On the line: Right to the command, Right to the direction, Enter opens its values.
    w.lines.setFocus();
    w.script.SetSelectedItem(line);
    for (Qt::Key key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Return})
        QTest::keyClick(&w.lines, key);
    QMenu* star = w.OpenMenu();
    ASSERT_NE(star, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(star, kWindowWaitMs));
    for (Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return})
        QTest::keyClick(star, key);
    EXPECT_EQ(line->Text(), QStringLiteral("Bunny.Move(Back, 1/2, more...)"));
}
