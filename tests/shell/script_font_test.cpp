// The font lists over the code box, as a user meets them: a size typed or chosen, bold
// from the effect list, a family from the names, each reaching the script, the line
// being built, the code box and the event rows; what can't be applied changes nothing,
// and the choice comes back after a restart.
#include "controls/list_control_view.h"
#include "controls/tree_control_view.h"
#include "events/event_panel.h"
#include "script/script_panel.h"
#include "shell/settings_store.h"
#include "text/arbitrary_code_box.h"
#include "text/code_editor.h"

#include "main_form_harness.h"
#include "support/qt_print.h"
#include "support/window_wait.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

// A user whose preferences show the code box, in a folder of the test's own.
struct CodeBoxShown {
    QTemporaryDir folder;
    CodeBoxShown() {
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
        RegKeys().SetRegValue(RegistryRoot::LocalMachine, kPreferencesKey,
                              QStringLiteral("CodeBoxVisible"), QStringLiteral("True"));
    }
};

struct Window : MainFormHarness {
    QComboBox* names = form->findChild<QComboBox*>(QStringLiteral("FontNames"));
    QComboBox* sizes = form->findChild<QComboBox*>(QStringLiteral("FontSizes"));
    QComboBox* effect = form->findChild<QComboBox*>(QStringLiteral("FontEffect"));

    Window() {
        form->RestoreSettings();
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get(), kWindowWaitMs));
        world.ArbitraryCodeBox().Visible = true;
        auto* tabs = form->findChild<QTabBar*>(QStringLiteral("SwitchTab"));
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    }

    QList<QWidget*> views() {
        return {&form->scriptPanel().TreeView1View(),
                &form->scriptPanel().CommandLineTreeviewView(), &form->codeBox().editor(),
                &form->eventPanel().ListView1View()};
    }
    QList<QFont> fonts() {
        QList<QFont> all;
        for (QWidget* view : views())
            all << view->font();
        return all;
    }
    void typeSize(const QString& size) {
        QTest::mouseClick(sizes->lineEdit(), Qt::LeftButton);
        QWidget* typing = QApplication::focusWidget();
        QTest::keyClick(typing, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(typing, size);
        QTest::keyClick(typing, Qt::Key_Return);
    }
};

// What a screen reader says names control: the text of the label that labels it.
QString labelOf(QWidget* control) {
    const auto labels =
        QAccessible::queryAccessibleInterface(control)->relations(QAccessible::Label);
    return labels.isEmpty() ? QString() : labels.first().first->text(QAccessible::Name);
}

} // namespace

TEST(FontLists, ASizeAndBoldReachAllFourViewsAndTheCodeBoxStaysFixedWidth) {
    CodeBoxShown preferences;
    Window w;
    ASSERT_TRUE(w.sizes->isVisible() && w.names->isVisible() && w.effect->isVisible());
    const QString codeFamily = w.form->codeBox().editor().font().family();
    // The names list shows the script's family, or the one that stands in for it.
    EXPECT_EQ(w.names->currentText(),
              QFontInfo(w.form->scriptPanel().TreeView1View().font()).family());

    w.typeSize(QStringLiteral("17"));
    for (const QFont& font : w.fonts())
        EXPECT_EQ(font.pointSize(), 17);

    // The effect list opened with a click; "Bold Text" taken from it with the keys.
    QTest::mouseClick(w.effect, Qt::LeftButton);
    QAbstractItemView* entries = w.effect->view();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(entries->window()));
    QTest::keyClick(entries, Qt::Key_Down);
    QTest::keyClick(entries, Qt::Key_Return);
    EXPECT_EQ(w.effect->currentText(), QStringLiteral("Bold Text"));
    for (const QFont& font : w.fonts()) {
        EXPECT_TRUE(font.bold());
        EXPECT_EQ(font.pointSize(), 17);
    }

    // A family from the keyboard: the script's views take it, the code box keeps its own.
    w.names->setFocus();
    const int before = w.names->currentIndex();
    QTest::keyClick(w.names, before + 1 < w.names->count() ? Qt::Key_Down : Qt::Key_Up);
    const QString chosen = w.names->currentText();
    ASSERT_NE(w.names->currentIndex(), before);
    EXPECT_EQ(w.form->scriptPanel().TreeView1View().font().family(), chosen);
    EXPECT_EQ(w.form->scriptPanel().CommandLineTreeviewView().font().family(), chosen);
    EXPECT_EQ(w.form->eventPanel().ListView1View().font().family(), chosen);
    EXPECT_EQ(w.form->codeBox().editor().font().family(), codeFamily);
    EXPECT_TRUE(w.form->codeBox().editor().font().bold());
}

TEST(FontLists, ASizeThatCannotBeAppliedChangesNothing) {
    CodeBoxShown preferences;
    Window w;
    w.typeSize(QStringLiteral("11"));
    const QList<QFont> before = w.fonts();
    for (const QString& bad : {QStringLiteral("huge"), QStringLiteral("0"), QStringLiteral("-4"),
                               QStringLiteral("100000")}) {
        w.typeSize(bad);
        EXPECT_EQ(w.fonts(), before) << bad.toStdString();
        EXPECT_EQ(w.sizes->currentText(), QStringLiteral("11")) << bad.toStdString();
    }
}

TEST(FontLists, TabReachesTheNamedListsBetweenTheScriptAndTheCodeBox) {
    CodeBoxShown preferences;
    Window w;
    w.form->scriptPanel().TreeView1View().setFocus();
    QList<QWidget*> reached;
    for (int step = 0; step < 4; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QWidget* now = QApplication::focusWidget();
        // An editable list may give its line the focus; the list is what was reached.
        reached << (now && now->parentWidget() == w.sizes ? w.sizes : now);
    }
    EXPECT_EQ(reached, (QList<QWidget*>{w.names, w.sizes, w.effect, &w.form->codeBox().editor()}));
    // A reader names a list by its label (the list's own name is its value).
    EXPECT_EQ(labelOf(w.names), QStringLiteral("Font:"));
    EXPECT_EQ(labelOf(w.sizes), QStringLiteral("Size:"));
    EXPECT_EQ(labelOf(w.effect), QStringLiteral("Effect:"));
}

TEST(FontLists, ASizeTypedIsTakenWhenTheFocusLeavesTheList) {
    CodeBoxShown preferences;
    Window w;
    QTest::mouseClick(w.sizes->lineEdit(), Qt::LeftButton);
    QWidget* typing = QApplication::focusWidget();
    QTest::keyClick(typing, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(typing, QStringLiteral("19"));
    QTest::keyClick(typing, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), w.effect);
    for (const QFont& font : w.fonts())
        EXPECT_EQ(font.pointSize(), 19);
}

TEST(CommandLine, ItsLabelNamesTheBoxAndF12ReachesTheLineInTheWindow) {
    CodeBoxShown preferences;
    Window w;
    auto* box = w.form->findChild<QComboBox*>(QStringLiteral("CommandLineBox"));
    auto* label = w.form->findChild<QLabel*>(QStringLiteral("CommandLineBoxLabel"));
    ASSERT_TRUE(box && label && label->isVisible());
    EXPECT_LT(label->geometry().right(), box->geometry().left());
    box->setFocus();
    box->setEditText(QStringLiteral("x = 1")); // what the reader would say as its name
    EXPECT_EQ(labelOf(box), QStringLiteral("Command:"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F12);
    // The window's own F12 (the world's Python) does not take the key from the line.
    QWidget* tree = &w.form->scriptPanel().CommandLineTreeviewView();
    ASSERT_EQ(QApplication::focusWidget(), tree);
    EXPECT_TRUE(box->isHidden());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(tree)->text(QAccessible::Name),
              QStringLiteral("Line being built"));
    QTest::keyClick(tree, Qt::Key_F12);
    EXPECT_TRUE(box->isVisible());
}

TEST(FontLists, TheChosenFontComesBackAfterARestart) {
    CodeBoxShown preferences;
    {
        Window w;
        w.typeSize(QStringLiteral("15"));
        w.effect->setFocus();
        QTest::keyClick(w.effect, Qt::Key_Down);
        w.form->close();
    }
    Window again;
    for (const QFont& font : again.fonts()) {
        EXPECT_EQ(font.pointSize(), 15);
        EXPECT_TRUE(font.bold());
    }
    EXPECT_EQ(again.sizes->currentText(), QStringLiteral("15"));
    EXPECT_EQ(again.effect->currentText(), QStringLiteral("Bold Text"));
}
