// Drives the real program from inside its own process, as a user at the
// keyboard would, for whole-program tests and the start-up benchmark. Qt loads
// it when QT_QPA_GENERIC_PLUGINS names "vessatestdriver"; the program itself
// knows nothing of it.
//
// VESSA47_DRIVER_SCRIPT lists what it does once the main window is up, steps
// separated by ";":
//   "tab:N"       click tab N of the world tabs (0 opening scene, 1 animations)
//   "shot:PATH"   save a picture of the dialog in front (or the main window) to PATH
//   "dump:NAME"   print the items of the tree view NAME, one per line, indented
//                 by depth: "driver: NAME: <indent><text>", and for more than one
//                 column their texts between " | "
//   "wait:MS"     let the program run for MS milliseconds
//   "key:KEYS"    press KEYS ("Ctrl+Tab") where the keyboard focus is
//   "click:NAME"  click the middle of the main window's widget NAME with the left button
//   "reader:NAME" print what assistive technology reads of the window or widget NAME:
//                 "driver: reader: NAME <role> "<name>"", and for a tab list the
//                 selected tab: " selected "<tab>""
//   "place:NAME,X,Y,W,H"  move the window NAME to X, Y and size it W by H pixels
//   "divide:NAME,S" give the first pane of the divider NAME the share S
//   "where:NAME"  print the place of the window NAME, "driver: where: NAME X Y W H", or of
//                 the divider NAME, "driver: where: NAME <share of its first pane>"
//   "exit"        open the File menu with Alt+F and choose E&xit with X
//   "type:TEXT"   type TEXT where the keyboard focus is
//   "item:TREE,TEXT" click the item TEXT of the tree view TREE with the left button
//   "itemmenu:TREE,TEXT" the same with the right button
//   "seen:TREE,TEXT" go on once the tree view TREE shows the item TEXT (as "dump"
//                 prints it, or its first column)
//   "menu:TITLE"  open the menu TITLE of the menu bar with a click ("File")
//   "choose:TEXT" click the entry TEXT of the menu that is open ("Save As...")
//   "until:NAME,TEXT" go on once the button NAME reads TEXT ("Reset")
//   "folder:PATH" answer the world folder dialog with PATH, typed into its name box
//   "answer:TEXT" click the button TEXT of the message box that asks, after printing
//                 the box: "driver: box: <title> | <text> | <informative text>"
//   "dialog:NAME" go on once the dialog NAME is in front
//   "press:NAME"  click the button NAME of the dialog in front
//   "text:NAME"   print the text of the text box NAME, its line ends shown as "/":
//                 "driver: text: NAME <text>"
//   "position:NAME" print where the engine has the object NAME once nothing moves:
//                 "driver: position: NAME X Y Z W QX QY QZ", its place and its turn
//                 (a unit quaternion), both relative to its parent
// A step that needs something to be there (an item, a menu, a dialog, a reading)
// waits for it for up to 30 seconds; one that waits in vain prints "driver: gave
// up at <step>" and the script goes on. A step that opens a dialog of its own
// leaves the next steps to run while the dialog is up.
// Whatever the script, it reports on standard error when the main window is
// shown with its final caption: "driver: main window shown", and when the camera
// view in it has drawn its first frame: "driver: first frame drawn". An error box that
// comes up at any time is reported, "driver: ErrorForm: <caption> | <details>"
// with line ends shown as "/", and closed with its OK button.
// Loaded into the mail client (which the program starts with its own environment), the
// driver prints each message box the client shows, as "answer" does, and closes it with
// Escape.

#include <Python.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGenericPlugin>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QWidget>
#include <algorithm>
#include <cstdio>

namespace {

QString oneLine(QString text) {
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("/"))
        .replace(QLatin1Char('\n'), QLatin1Char('/'));
}

void printBox(const QMessageBox* box) {
    std::fprintf(stderr, "driver: box: %s | %s | %s\n", qPrintable(box->windowTitle()),
                 qPrintable(oneLine(box->text())), qPrintable(oneLine(box->informativeText())));
    std::fflush(stderr);
}

// Closes every message box of the mail client once it is printed.
class ClientBoxes : public QObject {
public:
    ClientBoxes() {
        connect(&poll_, &QTimer::timeout, this, [] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            printBox(box);
            QTest::keyClick(box, Qt::Key_Escape);
        });
        poll_.start(10);
    }

private:
    QTimer poll_;
};

QWidget* readyMainWindow() {
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == QStringLiteral("MainForm") && w->isVisible() &&
            w->windowTitle().startsWith(QStringLiteral("Vessa47 [")))
            return w;
    return nullptr;
}

class Driver : public QObject {
    Q_OBJECT
public:
    Driver() {
        connect(&poll_, &QTimer::timeout, this, &Driver::step);
        poll_.start(10);
        connect(&errorBoxes_, &QTimer::timeout, this, &Driver::closeErrorBox);
        errorBoxes_.start(10);
        qApp->installEventFilter(this);
    }

protected:
    // The camera view is an OpenGL widget; it is caught as it is made, before it draws.
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Polish && !cameraView_ && watched->inherits("QOpenGLWidget")) {
            cameraView_ = watched;
            connect(watched, SIGNAL(frameSwapped()), this, SLOT(firstFrame()));
        }
        return false;
    }

private Q_SLOTS:
    void firstFrame() {
        if (!cameraView_)
            return;
        disconnect(cameraView_, SIGNAL(frameSwapped()), this, SLOT(firstFrame()));
        std::fprintf(stderr, "driver: first frame drawn\n");
        std::fflush(stderr);
    }

private:
    void closeErrorBox() {
        QWidget* box = QApplication::activeModalWidget();
        if (!box || box->objectName() != QStringLiteral("ErrorForm") || !box->isVisible())
            return;
        const auto* caption = box->findChild<QLabel*>(QStringLiteral("ErrorTypeLabel"));
        const auto* details = box->findChild<QPlainTextEdit*>(QStringLiteral("ErrorLabel"));
        std::fprintf(stderr, "driver: ErrorForm: %s | %s\n",
                     qPrintable(caption ? oneLine(caption->text()) : QString()),
                     qPrintable(details ? oneLine(details->toPlainText()) : QString()));
        std::fflush(stderr);
        if (auto* ok = box->findChild<QPushButton*>(QStringLiteral("OkButton")))
            QTest::mouseClick(ok, Qt::LeftButton);
    }

    void step() {
        QWidget* main = readyMainWindow();
        if (!main)
            return;
        poll_.stop();
        std::fprintf(stderr, "driver: main window shown\n");
        std::fflush(stderr);
        steps_ = QString::fromLocal8Bit(qgetenv("VESSA47_DRIVER_SCRIPT"))
                     .split(QLatin1Char(';'), Qt::SkipEmptyParts);
        main_ = main;
        QTimer::singleShot(50, this, &Driver::nextStep);
    }

    void nextStep() {
        if (steps_.isEmpty() || !main_)
            return;
        const QString step = steps_.first().trimmed();
        const QString kind = step.section(QLatin1Char(':'), 0, 0);
        const QString argument = step.section(QLatin1Char(':'), 1);
        if (!waiting_.isValid())
            waiting_.start();
        const bool ready = isReady(kind, argument);
        if (!ready && waiting_.elapsed() < kPatienceMs) {
            QTimer::singleShot(50, this, &Driver::nextStep);
            return;
        }
        steps_.removeFirst();
        waiting_.invalidate();
        if (!ready) {
            std::fprintf(stderr, "driver: gave up at %s%s\n", qPrintable(step),
                         qPrintable(whatIsOpen()));
            std::fflush(stderr);
        }
        // The next step is due before this one acts: an action that opens a dialog
        // returns only when the dialog closes, and a later step may be what closes it.
        QTimer::singleShot(kind == QStringLiteral("wait") ? argument.toInt() : 100, this,
                           &Driver::nextStep);
        if (ready)
            act(kind, argument);
    }

    // What was there instead, to say why a step waited in vain.
    static QString whatIsOpen() {
        QString open;
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            open += QStringLiteral(" (the menu open offers");
            for (QAction* action : menu->actions())
                open += QStringLiteral(" \"") + action->text() +
                        (action->isEnabled() ? QStringLiteral("\"") : QStringLiteral("\" off"));
            open += QLatin1Char(')');
        } else if (QWidget* popup = QApplication::activePopupWidget())
            open += QStringLiteral(" (open: ") + popup->objectName() + QLatin1Char(')');
        if (QWidget* modal = QApplication::activeModalWidget())
            open += QStringLiteral(" (in front: ") + modal->objectName() + QLatin1Char(' ') +
                    modal->windowTitle() + QLatin1Char(')');
        return open;
    }

    // Whether what the step needs is there yet.
    bool isReady(const QString& kind, const QString& argument) {
        if (kind == QStringLiteral("item") || kind == QStringLiteral("itemmenu") ||
            kind == QStringLiteral("seen"))
            return itemRect(argument.section(QLatin1Char(','), 0, 0),
                            argument.section(QLatin1Char(','), 1))
                .isValid();
        if (kind == QStringLiteral("choose"))
            return openMenuEntry(argument) != nullptr;
        if (kind == QStringLiteral("until")) {
            auto* button =
                qobject_cast<QAbstractButton*>(named(argument.section(QLatin1Char(','), 0, 0)));
            return button &&
                   withoutAmpersand(button->text()) == argument.section(QLatin1Char(','), 1);
        }
        if (kind == QStringLiteral("folder")) {
            QWidget* dialog = QApplication::activeModalWidget();
            return dialog && dialog->objectName() == QStringLiteral("WorldForm");
        }
        if (kind == QStringLiteral("answer"))
            return answerButton(argument) != nullptr;
        if (kind == QStringLiteral("dialog"))
            return QApplication::activeModalWidget() &&
                   QApplication::activeModalWidget()->objectName() == argument;
        if (kind == QStringLiteral("press"))
            return dialogButton(argument) != nullptr;
        if (kind == QStringLiteral("position"))
            return !enginePosition(argument).isEmpty();
        return true;
    }

    void act(const QString& kind, const QString& argument) {
        if (kind == QStringLiteral("exit"))
            chooseExit(main_);
        else if (kind == QStringLiteral("tab"))
            clickTab(argument.toInt());
        else if (kind == QStringLiteral("shot"))
            (QApplication::activeModalWidget() ? QApplication::activeModalWidget() : main_)
                ->grab()
                .save(argument);
        else if (kind == QStringLiteral("dump"))
            dumpTree(argument);
        else if (kind == QStringLiteral("wait"))
            return;
        else if (kind == QStringLiteral("key"))
            pressKeys(QKeySequence::fromString(argument));
        else if (kind == QStringLiteral("type"))
            QTest::keyClicks(QApplication::focusWidget() ? QApplication::focusWidget() : main_,
                             argument);
        else if (kind == QStringLiteral("click"))
            clickWidget(argument);
        else if (kind == QStringLiteral("item") || kind == QStringLiteral("itemmenu"))
            clickItem(argument.section(QLatin1Char(','), 0, 0),
                      argument.section(QLatin1Char(','), 1),
                      kind == QStringLiteral("item") ? Qt::LeftButton : Qt::RightButton);
        else if (kind == QStringLiteral("menu"))
            openMenuBarMenu(argument);
        else if (kind == QStringLiteral("choose"))
            chooseMenuEntry(argument);
        else if (kind == QStringLiteral("until") || kind == QStringLiteral("seen"))
            return;
        else if (kind == QStringLiteral("folder"))
            answerFolderDialog(argument);
        else if (kind == QStringLiteral("answer")) {
            printBox(qobject_cast<QMessageBox*>(QApplication::activeModalWidget()));
            QTest::mouseClick(answerButton(argument), Qt::LeftButton);
        } else if (kind == QStringLiteral("dialog"))
            return;
        else if (kind == QStringLiteral("press"))
            QTest::mouseClick(dialogButton(argument), Qt::LeftButton);
        else if (kind == QStringLiteral("position"))
            printPosition(argument);
        else if (kind == QStringLiteral("reader"))
            printReading(argument);
        else if (kind == QStringLiteral("text"))
            printText(argument);
        else if (kind == QStringLiteral("place"))
            place(argument.split(QLatin1Char(',')));
        else if (kind == QStringLiteral("divide"))
            divide(argument.section(QLatin1Char(','), 0, 0),
                   argument.section(QLatin1Char(','), 1).toDouble());
        else if (kind == QStringLiteral("where"))
            printWhere(argument);
        else
            std::fprintf(stderr, "driver: unknown step %s:%s\n", qPrintable(kind),
                         qPrintable(argument));
    }

    static QString withoutAmpersand(QString text) { return text.remove(QLatin1Char('&')); }

    // The place of the item text in the tree view tree, on its viewport; invalid while
    // there is none.
    QRect itemRect(const QString& tree, const QString& text) {
        auto* view = qobject_cast<QTreeView*>(named(tree));
        if (!view || !view->isVisible())
            return {};
        const QModelIndex found = findRow(view->model(), QModelIndex(), text);
        if (!found.isValid())
            return {};
        view->scrollTo(found);
        // The first column that shows: a list may hide its first.
        for (int column = 0; column < view->model()->columnCount(found.parent()); ++column)
            if (const QRect at = view->visualRect(found.siblingAtColumn(column)); at.isValid())
                return at;
        return {};
    }

    // The texts of the row of index, its columns between " | ".
    static QString rowText(const QAbstractItemModel* model, const QModelIndex& index) {
        QStringList columns;
        for (int column = 0; column < model->columnCount(index.parent()); ++column)
            columns << index.siblingAtColumn(column).data().toString();
        return columns.join(QStringLiteral(" | "));
    }

    static QModelIndex findRow(const QAbstractItemModel* model, const QModelIndex& parent,
                               const QString& text) {
        for (int row = 0; row < model->rowCount(parent); ++row) {
            const QModelIndex index = model->index(row, 0, parent);
            if (index.data().toString() == text || rowText(model, index) == text)
                return index;
            if (const QModelIndex below = findRow(model, index, text); below.isValid())
                return below;
        }
        return {};
    }

    void clickItem(const QString& tree, const QString& text, Qt::MouseButton button) {
        auto* view = qobject_cast<QTreeView*>(named(tree));
        const QRect at = itemRect(tree, text);
        bringToFront(view);
        // On the text, a little in from its start, where the label is.
        QTest::mouseClick(view->viewport(), button, Qt::NoModifier,
                          QPoint(at.left() + std::min(at.width() / 2, 30), at.center().y()));
    }

    void openMenuBarMenu(const QString& title) {
        auto* bar = main_->findChild<QMenuBar*>();
        for (QAction* action : bar->actions())
            if (withoutAmpersand(action->text()) == title) {
                QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier,
                                  bar->actionGeometry(action).center());
                return;
            }
        std::fprintf(stderr, "driver: no menu %s\n", qPrintable(title));
    }

    // The entry text of the menu open on top, enabled; null while there is none.
    static QAction* openMenuEntry(const QString& text) {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return nullptr;
        for (QAction* action : menu->actions())
            if (action->isEnabled() && action->isVisible() &&
                withoutAmpersand(action->text()) == text)
                return action;
        return nullptr;
    }

    void chooseMenuEntry(const QString& text) {
        QAction* entry = openMenuEntry(text);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        // As a pointer would: onto the entry, then a click; an entry with a menu below
        // opens it.
        const QPoint at = menu->actionGeometry(entry).center();
        QTest::mouseMove(menu, at);
        if (entry->menu())
            QTest::keyClick(menu, Qt::Key_Right);
        else
            QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, at);
    }

    // The world dialog: shows the folder that holds path, then types path's own name and
    // presses Return, as a user who browsed there would.
    void answerFolderDialog(const QString& path) {
        QWidget* dialog = QApplication::activeModalWidget();
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("WorldNameText"));
        const QFileInfo world(path);
        if (!name || !QMetaObject::invokeMethod(dialog, "showFolder",
                                                Q_ARG(QString, world.absolutePath()))) {
            std::fprintf(stderr, "driver: the world dialog has no name box or no folder\n");
            return;
        }
        name->setFocus();
        name->selectAll();
        QTest::keyClicks(name, world.fileName());
        QTest::keyClick(name, Qt::Key_Return);
    }

    static QAbstractButton* dialogButton(const QString& name) {
        QWidget* dialog = QApplication::activeModalWidget();
        auto* button = dialog ? dialog->findChild<QAbstractButton*>(name) : nullptr;
        return button && button->isVisible() && button->isEnabled() ? button : nullptr;
    }
    static QAbstractButton* answerButton(const QString& text) {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return nullptr;
        for (QAbstractButton* button : box->buttons())
            if (withoutAmpersand(button->text()) == text)
                return button;
        return nullptr;
    }

    // The engine's reading of the object name, "X Y Z W QX QY QZ", once no animation
    // runs; "" while one does or there is no such object. Asked of the engine object
    // itself, through the interpreter the program embeds.
    static QString enginePosition(const QString& name) {
        if (!Py_IsInitialized())
            return {};
        const PyGILState_STATE gil = PyGILState_Ensure();
        QString reading;
        PyObject* globals = PyDict_New();
        PyDict_SetItemString(globals, "__builtins__", PyEval_GetBuiltins());
        PyObject* asked = PyUnicode_FromString(name.toUtf8().constData());
        PyDict_SetItemString(globals, "name", asked);
        Py_DECREF(asked);
        PyObject* done = PyRun_String(kPositionCode, Py_file_input, globals, globals);
        if (!done)
            PyErr_Print();
        Py_XDECREF(done);
        if (PyObject* answer = PyDict_GetItemString(globals, "answer"))
            reading = QString::fromUtf8(PyUnicode_AsUTF8(answer));
        Py_DECREF(globals);
        PyGILState_Release(gil);
        return reading;
    }

    static constexpr const char* kPositionCode = R"(
import gc, json
engine = next(o for o in gc.get_objects()
              if type(o).__name__ == "Interpreter" and type(o).__module__ == "vessa.interpreter")
state = json.loads(engine.GetObjectStates()).get(name)
answer = ""
if state and not engine.animator.busy():
    answer = " ".join(repr(float(v)) for v in state["position"] + state["orientation"])
)";

    void printPosition(const QString& name) {
        std::fprintf(stderr, "driver: position: %s %s\n", qPrintable(name),
                     qPrintable(enginePosition(name)));
        std::fflush(stderr);
    }

    void printText(const QString& name) {
        auto* box = main_->findChild<QPlainTextEdit*>(name);
        const QString text = box ? box->toPlainText().replace(QLatin1Char('\n'), QLatin1Char('/'))
                                 : QStringLiteral("(no such box)");
        std::fprintf(stderr, "driver: text: %s %s\n", qPrintable(name), qPrintable(text));
        std::fflush(stderr);
    }

    void dumpTree(const QString& name) {
        auto* view = main_->findChild<QTreeView*>(name);
        if (!view) {
            std::fprintf(stderr, "driver: no tree %s\n", qPrintable(name));
            return;
        }
        dumpRows(name, view->model(), QModelIndex(), 0);
        std::fflush(stderr);
    }

    void dumpRows(const QString& name, const QAbstractItemModel* model, const QModelIndex& parent,
                  int depth) {
        for (int row = 0; row < model->rowCount(parent); ++row) {
            const QModelIndex index = model->index(row, 0, parent);
            std::fprintf(stderr, "driver: %s: %s%s\n", qPrintable(name),
                         qPrintable(QString(depth * 2, QLatin1Char(' '))),
                         qPrintable(rowText(model, index)));
            dumpRows(name, model, index, depth + 1);
        }
    }

    void pressKeys(const QKeySequence& keys) {
        QWidget* focus = QApplication::focusWidget();
        const QKeyCombination key = keys[0];
        QTest::keyClick(focus ? focus : main_, key.key(), key.keyboardModifiers());
    }

    void clickWidget(const QString& name) {
        auto* widget = main_->findChild<QWidget*>(name);
        if (!widget || !widget->isVisible()) {
            std::fprintf(stderr, "driver: no widget %s to click\n", qPrintable(name));
            return;
        }
        bringToFront(widget);
        QTest::mouseClick(widget, Qt::LeftButton);
    }

    // A click on a window that is behind brings it to the front first, and the keys
    // go there after.
    static void bringToFront(QWidget* widget) {
        if (widget->window()->isActiveWindow())
            return;
        widget->window()->activateWindow();
        QApplication::processEvents();
    }

    void printReading(const QString& name) {
        QWidget* widget = nullptr;
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == name)
                widget = window;
        if (!widget)
            widget = main_->findChild<QWidget*>(name);
        QAccessibleInterface* reading =
            widget ? QAccessible::queryAccessibleInterface(widget) : nullptr;
        if (!reading) {
            std::fprintf(stderr, "driver: reader: %s is not there\n", qPrintable(name));
            return;
        }
        const QAccessible::Role role = reading->role();
        QString line = name + QLatin1Char(' ') +
                       (role == QAccessible::Window        ? QStringLiteral("window")
                        : role == QAccessible::PageTabList ? QStringLiteral("page-tab-list")
                                                           : QString::number(role)) +
                       QStringLiteral(" \"") + reading->text(QAccessible::Name) + QLatin1Char('"');
        for (int child = 0; child < reading->childCount(); ++child) {
            QAccessibleInterface* tab = reading->child(child);
            if (tab && tab->role() == QAccessible::PageTab && tab->state().selected)
                line += QStringLiteral(" selected \"") + tab->text(QAccessible::Name) +
                        QLatin1Char('"');
        }
        std::fprintf(stderr, "driver: reader: %s\n", qPrintable(line));
        std::fflush(stderr);
    }

    QWidget* named(const QString& name) {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->objectName() == name)
                return window;
        return main_->findChild<QWidget*>(name);
    }

    void place(const QStringList& where) {
        if (QWidget* window = where.size() == 5 ? named(where[0]) : nullptr)
            window->setGeometry(where[1].toInt(), where[2].toInt(), where[3].toInt(),
                                where[4].toInt());
    }

    // A divider's bar says the share of its upper or left neighbour as its "share".
    void divide(const QString& name, double share) {
        if (QWidget* divider = named(name); divider && divider->property("share").isValid())
            divider->setProperty("share", share);
    }

    void printWhere(const QString& name) {
        QWidget* widget = named(name);
        if (const QVariant share = widget ? widget->property("share") : QVariant();
            share.isValid()) {
            std::fprintf(stderr, "driver: where: %s %.2f\n", qPrintable(name), share.toDouble());
        } else if (widget) {
            const QRect at = widget->geometry();
            std::fprintf(stderr, "driver: where: %s %d %d %d %d\n", qPrintable(name), at.x(),
                         at.y(), at.width(), at.height());
        }
        std::fflush(stderr);
    }

    void clickTab(int index) {
        auto* tabs = main_->findChild<QTabBar*>(QStringLiteral("SwitchTab"));
        if (!tabs) {
            std::fprintf(stderr, "driver: no world tabs\n");
            return;
        }
        const QPoint at = tabs->tabRect(index).center();
        QTest::mouseClick(tabs, Qt::LeftButton, Qt::NoModifier, at);
    }

    void chooseExit(QWidget* main) {
        // As a user would, bring the main window to the front first: the camera
        // window may have taken the focus.
        main->activateWindow();
        QTimer::singleShot(50, this, [this, main] { openFileMenuAndExit(main); });
    }

    void openFileMenuAndExit(QWidget* main) {
        QWidget* focus = main->focusWidget();
        QTest::keyClick(focus ? focus : main, Qt::Key_F, Qt::AltModifier);
        QTimer::singleShot(50, this, [] {
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget()))
                QTest::keyClick(menu, Qt::Key_X);
            else
                std::fprintf(stderr, "driver: the File menu did not open\n");
        });
    }

    static constexpr qint64 kPatienceMs = 30000;

    QTimer poll_;
    QTimer errorBoxes_;
    QElapsedTimer waiting_; // since the step at the head first waited
    QStringList steps_;
    QWidget* main_ = nullptr;
    QObject* cameraView_ = nullptr;
};

class DriverPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "test_driver.json")
public:
    QObject* create(const QString&, const QString&) override {
        if (QFileInfo(QCoreApplication::applicationFilePath()).fileName() ==
            QStringLiteral("VessaClient"))
            return new ClientBoxes;
        return new Driver;
    }
};

} // namespace

#include "test_driver.moc"
