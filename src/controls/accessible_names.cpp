#include "controls/accessible_names.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QHash>
#include <QWidget>

namespace vessa {

namespace {

const QHash<QString, QString>& table() {
    // A window that the user sees a title on is known by that title, which names the
    // world it holds or what it shows; a label is known by its text. Neither is here.
    static const QHash<QString, QString> names = {
        // Windows without a telling title
        {QStringLiteral("ErrorForm"), QStringLiteral("Error")},
        {QStringLiteral("SplashScreen"), QStringLiteral("Starting Vessa47")},
        // Panels of the main window
        {QStringLiteral("OutputText"), QStringLiteral("Output")},
        {QStringLiteral("OpeningSceneFrame"), QStringLiteral("Camera view")},
        {QStringLiteral("SwitchTab"), QStringLiteral("World tabs")},
        {QStringLiteral("OpeningScenePanel"), QStringLiteral("Opening scene")},
        {QStringLiteral("ScriptPanel"), QStringLiteral("Animations")},
        {QStringLiteral("TreeView1"), QStringLiteral("Script")},
        {QStringLiteral("ConstructTree"), QStringLiteral("Blocks")},
        {QStringLiteral("CommandLineTreeview"), QStringLiteral("Line being built")},
        {QStringLiteral("UndoButton"), QStringLiteral("Undo scene change")},
        {QStringLiteral("ScriptUndoButton"), QStringLiteral("Undo Changes to Script")},
        {QStringLiteral("ScenePanel"), QStringLiteral("Scene")},
        {QStringLiteral("ObjectTree"), QStringLiteral("Objects")},
        {QStringLiteral("ObjectTree2"), QStringLiteral("Objects for events")},
        {QStringLiteral("SplitterH2"), QStringLiteral("Divider above the sounds")},
        {QStringLiteral("SplitterV"), QStringLiteral("Divider beside the scene")},
        {QStringLiteral("SoundTree"), QStringLiteral("Sounds")},
        {QStringLiteral("EventPanel"), QStringLiteral("Event builder")},
        {QStringLiteral("ListView1"), QStringLiteral("Events")},
        {QStringLiteral("MakeEvent"), QStringLiteral("Make event")},
        {QStringLiteral("menuBar"), QStringLiteral("Menu bar")},
        {QStringLiteral("SplitterH1"), QStringLiteral("Divider above the output")},
        // Camera window
        {QStringLiteral("RenderFrame"), QStringLiteral("Running world")},
        {QStringLiteral("Check1"), QStringLiteral("Always keep this window on top")},
        // Error form
        {QStringLiteral("ErrorTypeLabel"), QStringLiteral("What went wrong")},
        {QStringLiteral("ErrorLabel"), QStringLiteral("Error details")},
        {QStringLiteral("OkButton"), QStringLiteral("OK")},
        {QStringLiteral("Command1"), QStringLiteral("Copy report to clipboard")},
        // Help window
        {QStringLiteral("WebBrowser1"), QStringLiteral("Help page")},
        // Web page forms
        {QStringLiteral("WidthField"), QStringLiteral("Width in pixels")},
        {QStringLiteral("HeightField"), QStringLiteral("Height in pixels")},
        {QStringLiteral("DriveList"), QStringLiteral("Drive")},
        {QStringLiteral("DirList"), QStringLiteral("Folder")},
        {QStringLiteral("FileNameText"), QStringLiteral("File name")},
    };
    return names;
}

// A window of our own made from a plain widget (the camera window, the help window) is a
// window to assistive technology; the platform would call it a filler.
QAccessibleInterface* plainWindowFactory(const QString& className, QObject* object) {
    if (!object->isWidgetType() || className != QLatin1String(object->metaObject()->className()))
        return nullptr;
    auto* widget = static_cast<QWidget*>(object);
    if (widget->windowType() != Qt::Window ||
        object->metaObject()->superClass() != &QWidget::staticMetaObject)
        return nullptr;
    return new QAccessibleWidget(widget, QAccessible::Window);
}

void installPlainWindowFactory() {
    QAccessible::installFactory(plainWindowFactory);
}

} // namespace

// Before any window exists, so that none is ever described the platform's way.
Q_COREAPP_STARTUP_FUNCTION(installPlainWindowFactory)

QString accessibleNameOf(const QString& control) {
    return table().value(control);
}

QStringList namedControls() {
    return table().keys();
}

void applyAccessibleNames(QWidget* root) {
    const auto apply = [](QWidget* widget) {
        const QString name = accessibleNameOf(widget->objectName());
        if (!name.isEmpty())
            widget->setAccessibleName(name);
    };
    apply(root);
    for (QWidget* child : root->findChildren<QWidget*>())
        apply(child);
}

} // namespace vessa
