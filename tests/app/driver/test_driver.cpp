// Drives the real program from inside its own process, as a user at the
// keyboard would, for whole-program tests and the start-up benchmark. Qt loads
// it when QT_QPA_GENERIC_PLUGINS names "vessatestdriver"; the program itself
// knows nothing of it.
//
// VESSA47_DRIVER_SCRIPT chooses what it does once the main window is up:
//   "exit"  open the File menu with Alt+F and choose E&xit with X.
// Whatever the script, it reports on standard error when the main window is
// shown with its final caption: "driver: main window shown".

#include <QApplication>
#include <QElapsedTimer>
#include <QGenericPlugin>
#include <QKeyEvent>
#include <QMenu>
#include <QTimer>
#include <QWidget>
#include <cstdio>

namespace {

QWidget* readyMainWindow() {
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == QStringLiteral("MainForm") && w->isVisible() &&
            w->windowTitle().startsWith(QStringLiteral("Vessa47 [")))
            return w;
    return nullptr;
}

void pressKey(QWidget* target, int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(target, &press);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QApplication::sendEvent(target, &release);
}

class Driver : public QObject {
public:
    Driver() {
        connect(&poll_, &QTimer::timeout, this, &Driver::step);
        poll_.start(10);
    }

private:
    void step() {
        QWidget* main = readyMainWindow();
        if (!main)
            return;
        poll_.stop();
        std::fprintf(stderr, "driver: main window shown\n");
        std::fflush(stderr);
        if (qgetenv("VESSA47_DRIVER_SCRIPT") == "exit")
            QTimer::singleShot(50, this, [this, main] { chooseExit(main); });
    }

    void chooseExit(QWidget* main) {
        pressKey(main, Qt::Key_F, Qt::AltModifier, QStringLiteral("f"));
        QTimer::singleShot(50, this, [] {
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget()))
                pressKey(menu, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
            else
                std::fprintf(stderr, "driver: the File menu did not open\n");
        });
    }

    QTimer poll_;
};

class DriverPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "test_driver.json")
public:
    QObject* create(const QString&, const QString&) override { return new Driver; }
};

} // namespace

#include "test_driver.moc"
