// Teddy: the sketch tool. Vessa47 starts it as `jview Teddy` in the home folder's Teddy2
// and waits for its answer on the clipboard: "TEDDY_SAVE_AND_EXIT <path>" with the
// object file it made (in a folder of its own in the user's temporary folder), or
// "TEDDY_DISCARD_AND_EXIT".

#include "export/sketch_window.h"

#include <QApplication>
#include <QClipboard>
#include <QTimer>

namespace {

// On X11 the clipboard's text lives in the program that put it there, so the tool
// stays, its window gone, until the program has had time to read the answer or
// someone puts something else on the clipboard.
constexpr int kAnswerKeptMilliseconds = 10'000;

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Teddy"));
    QApplication::setQuitOnLastWindowClosed(false);
    vessa::SketchWindow window;
    QObject::connect(&window, &vessa::SketchWindow::finished, &app, [] {
        QClipboard* clipboard = QGuiApplication::clipboard();
        if (!clipboard->ownsClipboard()) {
            QApplication::quit();
            return;
        }
        QObject::connect(clipboard, &QClipboard::dataChanged, qApp, [clipboard] {
            if (!clipboard->ownsClipboard())
                QApplication::quit();
        });
        QTimer::singleShot(kAnswerKeptMilliseconds, qApp, &QApplication::quit);
    });
    window.show();
    return app.exec();
}
