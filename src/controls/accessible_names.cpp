#include "controls/accessible_names.h"

#include <QHash>
#include <QWidget>

namespace vessa {

namespace {

const QHash<QString, QString>& table() {
    static const QHash<QString, QString> names = {
        // Windows
        {QStringLiteral("MainForm"), QStringLiteral("Vessa47")},
        {QStringLiteral("RenderForm"), QStringLiteral("Camera window")},
        {QStringLiteral("ErrorForm"), QStringLiteral("Error")},
        {QStringLiteral("SplashScreen"), QStringLiteral("Starting Vessa47")},
        {QStringLiteral("frmVessaHelp"), QStringLiteral("Help")},
        // Panels of the main window
        {QStringLiteral("OutputText"), QStringLiteral("Output")},
        {QStringLiteral("OpeningSceneFrame"), QStringLiteral("Camera view")},
        {QStringLiteral("SwitchTab"), QStringLiteral("World tabs")},
        {QStringLiteral("OpeningScenePanel"), QStringLiteral("Opening scene")},
        {QStringLiteral("ScriptPanel"), QStringLiteral("Animations")},
        {QStringLiteral("TreeView1"), QStringLiteral("Script")},
        {QStringLiteral("ConstructTree"), QStringLiteral("Blocks")},
        {QStringLiteral("CommandLineTreeview"), QStringLiteral("Line being built")},
        {QStringLiteral("UndoButton"), QStringLiteral("Undo")},
        {QStringLiteral("ScriptUndoButton"), QStringLiteral("Undo")},
        {QStringLiteral("ScenePanel"), QStringLiteral("Scene")},
        {QStringLiteral("ObjectTree"), QStringLiteral("Objects")},
        {QStringLiteral("ObjectTree2"), QStringLiteral("Objects for events")},
        {QStringLiteral("SplitterH2"), QStringLiteral("Divider above the sounds")},
        {QStringLiteral("SplitterV"), QStringLiteral("Divider beside the scene")},
        {QStringLiteral("SoundTree"), QStringLiteral("Sounds")},
        {QStringLiteral("EventPanel"), QStringLiteral("Event builder")},
        {QStringLiteral("ListView1"), QStringLiteral("Events")},
        {QStringLiteral("MakeEvent"), QStringLiteral("Make event")},
        {QStringLiteral("ArbitraryCodeBox"), QStringLiteral("Python code")},
        {QStringLiteral("CommandLineBox"), QStringLiteral("Command line")},
        {QStringLiteral("GoButton"), QStringLiteral("Run command line")},
        {QStringLiteral("menuBar"), QStringLiteral("Menu bar")},
        {QStringLiteral("SplitterH1"), QStringLiteral("Divider above the output")},
        // Camera window
        {QStringLiteral("RenderFrame"), QStringLiteral("Running world")},
        {QStringLiteral("Check1"), QStringLiteral("Always keep this window on top")},
        {QStringLiteral("FPSLabel"), QStringLiteral("Frames per second")},
        // Error form
        {QStringLiteral("ErrorTypeLabel"), QStringLiteral("What went wrong")},
        {QStringLiteral("ErrorLabel"), QStringLiteral("Error details")},
        {QStringLiteral("OkButton"), QStringLiteral("OK")},
        {QStringLiteral("Command1"), QStringLiteral("Copy report to clipboard")},
        // Help window
        {QStringLiteral("WebBrowser1"), QStringLiteral("Help page")},
    };
    return names;
}

} // namespace

QString accessibleNameOf(const QString& control) {
    return table().value(control);
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
