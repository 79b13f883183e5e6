// Drives the real program from inside its own process, as a user at the
// keyboard would, for whole-program tests and the start-up benchmark. Qt loads
// it when QT_QPA_GENERIC_PLUGINS names "vessatestdriver"; the program itself
// knows nothing of it.
//
// VESSA47_DRIVER_SCRIPT lists what it does once the main window is up, steps
// separated by ";":
//   "tab:N"       click tab N of the world tabs (0 opening scene, 1 animations)
//   "shot:PATH"   save a picture of the main window to PATH
//   "dump:NAME"   print the items of the tree view NAME, one per line, indented
//                 by depth: "driver: NAME: <indent><text>"
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
// Whatever the script, it reports on standard error when the main window is
// shown with its final caption: "driver: main window shown". An error box that
// comes up at any time is reported, "driver: ErrorForm: <caption> | <details>"
// with line ends shown as "/", and closed with its OK button.

#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QGenericPlugin>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QWidget>
#include <algorithm>
#include <cstdio>

namespace {

QWidget* readyMainWindow() {
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == QStringLiteral("MainForm") && w->isVisible() &&
            w->windowTitle().startsWith(QStringLiteral("Vessa47 [")))
            return w;
    return nullptr;
}

class Driver : public QObject {
public:
    Driver() {
        connect(&poll_, &QTimer::timeout, this, &Driver::step);
        poll_.start(10);
        connect(&errorBoxes_, &QTimer::timeout, this, &Driver::closeErrorBox);
        errorBoxes_.start(10);
    }

private:
    void closeErrorBox() {
        QWidget* box = QApplication::activeModalWidget();
        if (!box || box->objectName() != QStringLiteral("ErrorForm") || !box->isVisible())
            return;
        const auto* caption = box->findChild<QLabel*>(QStringLiteral("ErrorTypeLabel"));
        const auto* details = box->findChild<QPlainTextEdit*>(QStringLiteral("ErrorLabel"));
        const auto oneLine = [](QString text) {
            return text.replace(QStringLiteral("\r\n"), QStringLiteral("/"))
                .replace(QLatin1Char('\n'), QLatin1Char('/'));
        };
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
        const QString step = steps_.takeFirst().trimmed();
        const QString argument = step.section(QLatin1Char(':'), 1);
        int pause = 100;
        if (step == QStringLiteral("exit"))
            chooseExit(main_);
        else if (step.startsWith(QStringLiteral("tab:")))
            clickTab(argument.toInt());
        else if (step.startsWith(QStringLiteral("shot:")))
            main_->grab().save(argument);
        else if (step.startsWith(QStringLiteral("dump:")))
            dumpTree(argument);
        else if (step.startsWith(QStringLiteral("wait:")))
            pause = argument.toInt();
        else if (step.startsWith(QStringLiteral("key:")))
            pressKeys(QKeySequence::fromString(argument));
        else if (step.startsWith(QStringLiteral("click:")))
            clickWidget(argument);
        else if (step.startsWith(QStringLiteral("reader:")))
            printReading(argument);
        else if (step.startsWith(QStringLiteral("place:")))
            place(argument.split(QLatin1Char(',')));
        else if (step.startsWith(QStringLiteral("divide:")))
            divide(argument.section(QLatin1Char(','), 0, 0),
                   argument.section(QLatin1Char(','), 1).toDouble());
        else if (step.startsWith(QStringLiteral("where:")))
            printWhere(argument);
        else
            std::fprintf(stderr, "driver: unknown step %s\n", qPrintable(step));
        QTimer::singleShot(pause, this, &Driver::nextStep);
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
                         qPrintable(index.data().toString()));
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
        QTest::mouseClick(widget, Qt::LeftButton);
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

    void divide(const QString& name, double share) {
        if (auto* divider = qobject_cast<QSplitter*>(named(name))) {
            const QList<int> sizes = divider->sizes();
            const int whole = sizes.value(0) + sizes.value(1);
            divider->setSizes({qRound(whole * share), whole - qRound(whole * share)});
        }
    }

    void printWhere(const QString& name) {
        QWidget* widget = named(name);
        if (auto* divider = qobject_cast<QSplitter*>(widget)) {
            const QList<int> sizes = divider->sizes();
            std::fprintf(stderr, "driver: where: %s %.2f\n", qPrintable(name),
                         double(sizes.value(0)) / std::max(1, sizes.value(0) + sizes.value(1)));
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

    QTimer poll_;
    QTimer errorBoxes_;
    QStringList steps_;
    QWidget* main_ = nullptr;
};

class DriverPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "test_driver.json")
public:
    QObject* create(const QString&, const QString&) override { return new Driver; }
};

} // namespace

#include "test_driver.moc"
