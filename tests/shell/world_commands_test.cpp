// The File menu's questions and its trust in a world, as a user reaches them with the
// keyboard: F10 for the menus, a letter for the command.
#include "shell/settings_store.h"
#include "shell/world_trust.h"
#include "world/open_world.h"
#include "world/world_folder.h"

#include "main_form_harness.h"
#include "support/window_wait.h"

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

struct Window : MainFormHarness {
    Window() {
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get(), kWindowWaitMs));
    }

    // Opens the File menu and presses the letter of one of its commands.
    void fileCommand(Qt::Key letter) {
        // After a box, the user is back in the main window.
        form->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get(), kWindowWaitMs));
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : form.get(), Qt::Key_F10);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        QTest::keyClick(menu, letter);
    }

    // The next question box is answered with a click on button; its text is kept.
    void answerNextBox(QMessageBox::StandardButton button) {
        auto* watch = new QTimer(form.get());
        QObject::connect(watch, &QTimer::timeout, [this, watch, button] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            watch->deleteLater();
            watch->stop();
            asked << box->text();
            QTest::mouseClick(box->button(button), Qt::LeftButton);
        });
        watch->start(5);
    }

    QList<QVariantList> trustTold() const {
        QList<QVariantList> told;
        for (qsizetype i = 0; i < log.calls.size(); ++i)
            if (log.calls[i] == QStringLiteral("SetWorldTrusted"))
                told << log.arguments[i];
        return told;
    }

    QAction* trustItem() const {
        return form->findChild<QAction*>(QStringLiteral("mnuTrustWorld"));
    }

    QStringList asked;
};

} // namespace

TEST(FileMenu, ExitAsksAboutAChangedWorldYesSavesItIntoItsFolderNoLeavesItAsItWas) {
    for (const auto button : {QMessageBox::Yes, QMessageBox::No}) {
        QTemporaryDir folder;
        Window w;
        w.world.SetSaveName(folder.path());
        w.world.status().markModified();
        w.answerNextBox(button);
        w.fileCommand(Qt::Key_X);
        EXPECT_EQ(w.asked, QStringList{QStringLiteral("Save changes to your world first?")});
        EXPECT_FALSE(w.form->isVisible());
        EXPECT_EQ(w.log.calls.last(), QStringLiteral("Close"));
        EXPECT_EQ(QFileInfo::exists(fileInFolder(folder.path(), world_files::TreeScript)),
                  button == QMessageBox::Yes);
        EXPECT_EQ(w.log.calls.contains(QStringLiteral("SaveScene")), button == QMessageBox::Yes);
    }
}

TEST(FileMenu, AWorldsCodeIsTrustedOnlyAfterTheUserSaysYesAndOnlyThatWorld) {
    QTemporaryDir first;
    QTemporaryDir second;
    Window w;
    QAction* trust = w.trustItem();
    // An unnamed world can't be trusted: there is no folder to remember.
    EXPECT_FALSE(trust->isEnabled());
    w.world.SetSaveName(first.path());
    ASSERT_TRUE(trust->isEnabled());
    EXPECT_FALSE(trust->isChecked());

    // The menu item as a screen reader knows it: by its words, a box that can be ticked.
    auto* menu = w.form->findChild<QMenu*>(QStringLiteral("FileMenuButton"));
    QAccessibleInterface* reading = QAccessible::queryAccessibleInterface(menu);
    bool heard = false;
    for (int i = 0; i < reading->childCount(); ++i) {
        QAccessibleInterface* item = reading->child(i);
        if (item->text(QAccessible::Name) == QStringLiteral("Trust This World's Code")) {
            heard = true;
            EXPECT_TRUE(item->state().checkable);
        }
    }
    EXPECT_TRUE(heard);

    // No keeps the engine's guard on the world's code.
    w.answerNextBox(QMessageBox::No);
    w.fileCommand(Qt::Key_T);
    ASSERT_EQ(w.asked.size(), 1);
    EXPECT_TRUE(w.asked[0].contains(QStringLiteral("Trust this world's code?")));
    EXPECT_FALSE(trust->isChecked());
    EXPECT_EQ(w.trustTold().last(), QVariantList{0});
    RegKeys settings;
    EXPECT_FALSE(WorldTrust(settings).isTrusted(first.path()));

    w.answerNextBox(QMessageBox::Yes);
    w.fileCommand(Qt::Key_T);
    EXPECT_TRUE(trust->isChecked());
    EXPECT_EQ(w.trustTold().last(), QVariantList{1});
    EXPECT_TRUE(WorldTrust(settings).isTrusted(first.path()));

    // Another world is not trusted for it; coming back, the first still is.
    w.world.SetSaveName(second.path());
    EXPECT_FALSE(trust->isChecked());
    w.world.SetSaveName(first.path());
    EXPECT_TRUE(trust->isChecked());

    // Taken back without a question.
    w.fileCommand(Qt::Key_T);
    EXPECT_EQ(w.asked.size(), 2);
    EXPECT_FALSE(trust->isChecked());
    EXPECT_EQ(w.trustTold().last(), QVariantList{0});
    EXPECT_FALSE(WorldTrust(settings).isTrusted(first.path()));
}

TEST(FileMenu, ARecentWorldWhoseFolderIsGoneIsToldAndDroppedAndOneThatIsThereOpens) {
    QTemporaryDir worlds;
    const QString there = worlds.path() + QStringLiteral("/Park");
    const QString gone = worlds.path() + QStringLiteral("/Zoo");
    ASSERT_TRUE(QDir().mkpath(there));
    QFile scene(there + QStringLiteral("/World_Scene.py"));
    ASSERT_TRUE(scene.open(QIODevice::WriteOnly));
    scene.close();
    Window w;
    const auto row = [](int n, const QString& path) {
        return QVariant(QVariantList{QStringLiteral("RecentFile%1").arg(n), path});
    };
    w.scripted->answers[QStringLiteral("GetRecentFiles")] =
        QVariantList{row(1, there), row(2, gone)};
    w.scripted->answers[QStringLiteral("DeleteRecentFile")] = QVariantList{row(1, there)};
    w.world.SetSaveName(there);
    auto* second = w.form->findChild<QAction*>(QStringLiteral("RecentFilesMenu1"));
    ASSERT_TRUE(second->isVisible());
    EXPECT_EQ(second->text(), QStringLiteral("&2 ") + gone);

    w.answerNextBox(QMessageBox::Ok);
    w.fileCommand(Qt::Key_2);
    EXPECT_EQ(w.asked, QStringList{gone + QStringLiteral(" is not a valid world folder.")});
    EXPECT_EQ(w.log.arguments[w.log.calls.lastIndexOf(QStringLiteral("DeleteRecentFile"))],
              QVariantList{gone});
    EXPECT_FALSE(second->isVisible());
    EXPECT_FALSE(w.log.calls.contains(QStringLiteral("LoadWorld")));

    w.fileCommand(Qt::Key_1);
    const qsizetype load = w.log.calls.lastIndexOf(QStringLiteral("LoadWorld"));
    ASSERT_GE(load, 0);
    EXPECT_EQ(w.log.arguments[load].value(0).toString(), there);
}
