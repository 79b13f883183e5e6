// Paint3d: paints the skin of one of the engine's objects in 3-D. Vessa47
// starts it through `jview Paint3d <object file>` in the home folder's
// VessaPaint3D; it answers only through the clipboard (see PaintWindow).

#include "paint_window.h"

#include "reading/reader_process.h"

#include <QApplication>
#include <QMessageBox>

int main(int argc, char* argv[]) {
    // OpenSceneGraph's objects survive a view that moves between windows.
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Paint3d"));
    QApplication::setOrganizationName(QStringLiteral("Vessa47"));
    const QStringList arguments = app.arguments().mid(1);
    if (arguments.size() != 1) {
        QMessageBox::warning(nullptr, QStringLiteral("Vessa47 - Paint"),
                             QStringLiteral("Usage: Paint3d OBJECT_FILE.mdl"));
        return 2;
    }
    vessa::paint3d::PaintWindow window(arguments.front(), vessa::core::ReaderProcess::shared());
    QObject::connect(&window, &vessa::paint3d::PaintWindow::finished, &app, &QApplication::quit,
                     Qt::QueuedConnection);
    window.show();
    return app.exec();
}
