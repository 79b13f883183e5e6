// The main window as a keyboard user and a screen reader meet it: the tabs, the
// names and roles that assistive technology reads in-process, and the Tab order.
#include "controls/accessible_names.h"
#include "controls/tree_control_view.h"
#include "export/mail_forms.h"
#include "export/sketch_window.h"
#include "export/web_forms.h"
#include "scene/adding_commands.h"
#include "scene/gallery_dialog.h"
#include "scene/scene_panel.h"
#include "script/script_panel.h"
#include "shell/about_form.h"
#include "shell/error_form.h"
#include "shell/help_form.h"
#include "shell/splash_screen.h"
#include "shell/world_dialog.h"
#include "text/find_form.h"

#include "main_form_harness.h"
#include "support/qt_print.h"
#include "support/window_wait.h"

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QSet>
#include <QTabBar>
#include <QTest>
#include <QTextEdit>
#include <gtest/gtest.h>

#include <algorithm>

using namespace vessa;
using namespace vessa::testing;

namespace {

QAccessibleInterface* reader(QObject* object) {
    return QAccessible::queryAccessibleInterface(object);
}

QString spokenName(QWidget* widget) {
    return reader(widget)->text(QAccessible::Name);
}

struct Window : MainFormHarness {
    QTabBar* tabs = form->findChild<QTabBar*>(QStringLiteral("SwitchTab"));

    Window() {
        form->show();
        useMainWindow();
    }

    // The camera window comes up with a script tab; the user goes back to the main one.
    void useMainWindow() {
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get(), kWindowWaitMs));
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(static_cast<QWidget*>(nullptr), key, modifiers);
    }

    // The names of the stops that Tab (or Shift+Tab) reaches, from the focus round to it.
    QStringList walk(Qt::Key key) {
        QWidget* start = QApplication::focusWidget();
        QStringList stops;
        for (QWidget* stop = start; stops.size() < 20;) {
            EXPECT_TRUE(stop->isVisible()) << stop->objectName().toStdString();
            stops << spokenName(stop);
            press(key);
            stop = QApplication::focusWidget();
            if (stop == start)
                break;
        }
        return stops;
    }

    // The stops as the window reads: the scene's column top to bottom, then the other;
    // a row left to right.
    QStringList inReadingOrder(const QStringList& names) {
        QList<QWidget*> stops;
        for (QWidget* widget : form->findChildren<QWidget*>())
            if (widget->isVisible() && names.contains(spokenName(widget)) &&
                widget->focusPolicy() & Qt::TabFocus)
                stops << widget;
        const int rightColumn = tabs->mapTo(form.get(), QPoint(0, 0)).x();
        const auto place = [&](QWidget* widget) {
            const QPoint at = widget->mapTo(form.get(), QPoint(0, 0));
            return std::tuple(at.x() >= rightColumn, at.y(), at.x());
        };
        std::stable_sort(stops.begin(), stops.end(),
                         [&](QWidget* a, QWidget* b) { return place(a) < place(b); });
        QStringList ordered;
        for (QWidget* stop : stops)
            ordered << spokenName(stop);
        return ordered;
    }
};

} // namespace

TEST(WorldTabs, ThePageFollowsTheTabHoweverItIsChosenWithOneHandbasketCallPerSwitch) {
    Window w;
    QWidget* openingScene = w.form->OpeningSceneFrame();
    QWidget& script = w.form->scriptPanel().TreeView1View();
    QWidget& eventObjects = w.form->scenePanel().ObjectTree2View();
    const QStringList none;
    const QStringList preserve = {QStringLiteral("PreserveHandbasket()")};
    const QStringList restore = {QStringLiteral("RestoreHandbasket()")};
    const auto expectTab = [&](int tab, const QStringList& handbasket, const char* way) {
        EXPECT_EQ(w.world.status().SceneScriptTab(), tab) << way;
        EXPECT_EQ(w.tabs->currentIndex(), tab) << way;
        EXPECT_EQ(openingScene->isVisible(), tab == 0) << way;
        EXPECT_EQ(script.isVisible(), tab != 0) << way;
        EXPECT_EQ(eventObjects.isVisible(), tab == 2) << way;
        EXPECT_EQ(w.newStatements(), handbasket) << way;
    };

    QTest::mouseClick(w.tabs, Qt::LeftButton, {}, w.tabs->tabRect(1).center());
    expectTab(1, preserve, "a click");
    w.useMainWindow();
    w.tabs->setFocus();
    w.press(Qt::Key_Right);
    expectTab(2, none, "the arrow key on the tabs");
    reader(w.tabs)->child(0)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    expectTab(0, restore, "a screen reader's press");
    w.tabs->setCurrentIndex(1);
    expectTab(1, preserve, "the program");

    w.useMainWindow();
    script.setFocus();
    w.press(Qt::Key_PageDown, Qt::ControlModifier);
    expectTab(2, none, "Ctrl+PageDown");
    w.press(Qt::Key_Tab, Qt::ControlModifier);
    expectTab(0, restore, "Ctrl+Tab, round the end");
    w.useMainWindow();
    w.press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    expectTab(2, preserve, "Ctrl+Shift+Tab, round the start");
    w.useMainWindow();
    w.press(Qt::Key_PageUp, Qt::ControlModifier);
    expectTab(1, none, "Ctrl+PageUp");
}

TEST(ScreenReader, HearsTheTitleTheWindowsTheTabsAndEveryTreeByItsName) {
    Window w;
    w.scripted->answers[QStringLiteral("GetVersionText")] = QStringLiteral("9.9");
    w.world.SetSaveName(QStringLiteral("/worlds/Garden"));
    w.world.status().markModified();
    QAccessibleInterface* main = reader(w.form.get());
    EXPECT_EQ(main->role(), QAccessible::Window);
    EXPECT_EQ(main->text(QAccessible::Name),
              QStringLiteral("Vessa47 - /worlds/Garden [9.9] [modified]"));
    QAccessibleInterface* camera = reader(&w.renderForm);
    EXPECT_EQ(camera->role(), QAccessible::Window);
    EXPECT_EQ(camera->text(QAccessible::Name), QStringLiteral("Vessa - Camera"));
    // The frame rate, once the label shows one, is what the label says.
    w.renderForm.FPSLabel()->setText(QStringLiteral("24.3 Frames/Second"));
    EXPECT_EQ(spokenName(w.renderForm.FPSLabel()), QStringLiteral("24.3 Frames/Second"));

    QAccessibleInterface* tabs = reader(w.tabs);
    EXPECT_EQ(tabs->role(), QAccessible::PageTabList);
    EXPECT_EQ(tabs->text(QAccessible::Name), QStringLiteral("World tabs"));
    ASSERT_EQ(tabs->childCount(), 3);
    const QStringList captions = {QStringLiteral("Opening Scene"), QStringLiteral("Animations"),
                                  QStringLiteral("Events")};
    for (int tab = 0; tab < 3; ++tab) {
        EXPECT_EQ(tabs->child(tab)->role(), QAccessible::PageTab);
        EXPECT_EQ(tabs->child(tab)->text(QAccessible::Name), captions[tab]);
        EXPECT_EQ(tabs->indexOfChild(tabs->child(tab)), tab);
        EXPECT_EQ(tabs->child(tab)->state().selected, tab == 0);
    }
    w.tabs->setCurrentIndex(1);
    EXPECT_TRUE(tabs->child(1)->state().selected);
    EXPECT_FALSE(tabs->child(0)->state().selected);

    // The trees' one column is announced by the tree's name, never by its number.
    ScriptPanel& script = w.form->scriptPanel();
    ScenePanel& scene = w.form->scenePanel();
    for (TreeControlView* tree :
         {&script.ConstructTreeView(), &script.TreeView1View(), &script.CommandLineTreeviewView(),
          &scene.ObjectTreeView(), &scene.ObjectTree2View(), &scene.SoundTreeView()}) {
        QAccessibleInterface* header = reader(tree)->child(0);
        ASSERT_NE(header, nullptr);
        EXPECT_EQ(header->role(), QAccessible::ColumnHeader);
        EXPECT_EQ(header->text(QAccessible::Name), tree->accessibleName());
        EXPECT_FALSE(tree->accessibleName().isEmpty());
    }
}

TEST(ScreenReader, TheListNamesOnlyControlsThatExistAndEveryShownControlHasAName) {
    MainFormHarness h;
    ErrorForm error(ErrorFormContent{}, [] { return QString(); });
    HelpForm help;
    AboutForm about(QStringLiteral("1.0"));
    SplashScreen splash;
    // The gallery and the Add Text form are made the first time they are asked for.
    AddingCommands& adding = h.form->addingCommands();
    adding.AddObjectFile();
    adding.showAddTextForm();
    EmailForm email(FriendMail{});
    MailSettingsForm mailServer(MailServer{});
    PreWebSaveForm preWebSave;
    WebForm web;
    WebSaveForm webSave(QDir::homePath());
    WorldForm worldForm;
    worldForm.begin(WorldForm::Use::Save, QDir::homePath(), QStringLiteral("Untitled"));
    QList<QWidget*> widgets = {h.form.get(),
                               &h.renderForm,
                               &error,
                               &help,
                               &about,
                               &splash,
                               adding.gallery(),
                               adding.addTextForm(),
                               &email,
                               &mailServer,
                               &preWebSave,
                               &web,
                               &webSave,
                               &worldForm,
                               &h.form->findForm()};
    SketchWindow sketchTool;
    widgets << &sketchTool;
    for (QWidget* window : QList<QWidget*>(widgets))
        widgets << window->findChildren<QWidget*>();
    QSet<QString> made;
    for (QWidget* widget : widgets)
        made << widget->objectName();
    for (const QString& control : namedControls())
        EXPECT_TRUE(made.contains(control)) << control.toStdString() << " is not a control";
    for (QWidget* widget : widgets) {
        const QString control = widget->objectName();
        if (control.isEmpty() || control.startsWith(QStringLiteral("qt_")) || widget->isHidden() ||
            qobject_cast<QMenu*>(widget))
            continue;
        EXPECT_FALSE(spokenName(widget).isEmpty()) << control.toStdString();
    }
}

TEST(Keyboard, FocusStartsOnTheObjectsAndTabReadsTheWindowInOrderBothWays) {
    Window w;
    EXPECT_EQ(QApplication::focusWidget(), &w.form->scenePanel().ObjectTreeView());
    // Undo buttons with something to undo are stops; so is the camera view that the
    // engine puts into the opening scene's frame.
    w.world.HandleDifferences(
        QVariantList{QVariant(QVariantList{QStringLiteral("undoemptychange"), QString(), false})});
    w.world.script().AddNewAnimation();
    auto* cameraView = new QWidget(w.form->OpeningSceneFrame());
    cameraView->setFocusPolicy(Qt::StrongFocus);
    cameraView->setAccessibleName(QStringLiteral("Camera view"));
    cameraView->setGeometry(0, 0, 100, 80);
    cameraView->show();

    const QStringList opening = {QStringLiteral("Objects"),
                                 QStringLiteral("Sounds"),
                                 QStringLiteral("World tabs"),
                                 QStringLiteral("Undo scene change"),
                                 QStringLiteral("Add object"),
                                 QStringLiteral("Add sound"),
                                 QStringLiteral("Add text"),
                                 QStringLiteral("Camera view"),
                                 QStringLiteral("Drag moves objects"),
                                 QStringLiteral("Drag moves objects up and down"),
                                 QStringLiteral("Drag turns objects left and right"),
                                 QStringLiteral("Drag turns objects forward and back"),
                                 QStringLiteral("Drag tumbles objects"),
                                 QStringLiteral("Drag looks around objects"),
                                 QStringLiteral("Use Hardware Acceleration"),
                                 QStringLiteral("Camera Can Pass Through Objects"),
                                 QStringLiteral("Output")};
    EXPECT_EQ(w.walk(Qt::Key_Tab), opening);
    EXPECT_EQ(w.inReadingOrder(opening), opening);
    QStringList backwards = opening.mid(1);
    std::reverse(backwards.begin(), backwards.end());
    EXPECT_EQ(w.walk(Qt::Key_Backtab), QStringList{opening[0]} + backwards);

    w.press(Qt::Key_Tab, Qt::ControlModifier);
    w.useMainWindow();
    const QStringList animations = {
        QStringLiteral("Objects"),          QStringLiteral("Sounds"),
        QStringLiteral("World tabs"),       QStringLiteral("Undo Changes to Script"),
        QStringLiteral("Perform"),          QStringLiteral("Reset the world"),
        QStringLiteral("Make animation"),   QStringLiteral("Trash can"),
        QStringLiteral("Blocks"),           QStringLiteral("Script"),
        QStringLiteral("Command line"),     QStringLiteral("Run the command line"),
        QStringLiteral("Output")};
    EXPECT_EQ(w.walk(Qt::Key_Tab), animations);
    EXPECT_EQ(w.inReadingOrder(animations), animations);
}

TEST(Keyboard, F10OpensTheFileMenu) {
    Window w;
    w.press(Qt::Key_F10);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->objectName(), QStringLiteral("FileMenuButton"));
    w.press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

namespace {

TEST(Keyboard, TheMailFormIsFilledAndSentFromTheKeyboardInTheOrderItReads) {
    FriendMail preset;
    preset.WorldName = QStringLiteral("Bunny World");
    EmailForm form(preset);
    form.show();
    QApplication::setActiveWindow(&form);
    QWidget* first = form.findChild<QWidget*>(QStringLiteral("WorldName"));
    first->setFocus();
    QStringList order;
    for (int i = 0; i < 7; ++i) {
        order << QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order, (QStringList{"WorldName", "MyName", "myEmail", "friendsEmail", "myMessage",
                                  "OkButton", "CancelButton"}));
    // Typed into, field by field, and sent with Enter on OK.
    const auto type = [&](const char* control, const QString& text) {
        QTest::keyClicks(form.findChild<QWidget*>(QString::fromUtf8(control)), text);
    };
    type("MyName", QStringLiteral("Ann"));
    type("myEmail", QStringLiteral("ann@x.example"));
    type("friendsEmail", QStringLiteral("bo@x.example"));
    type("myMessage", QStringLiteral("Hi"));
    QTest::keyClick(form.findChild<QWidget*>(QStringLiteral("OkButton")), Qt::Key_Return);
    EXPECT_EQ(form.result(), QDialog::Accepted);
    EXPECT_EQ(form.mail().friendsEmail, QStringLiteral("bo@x.example"));
}

} // namespace
