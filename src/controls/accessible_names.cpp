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
        {QStringLiteral("MainFormArea"), QStringLiteral("World editor")},
        {QStringLiteral("OutputText"), QStringLiteral("Output")},
        {QStringLiteral("OpeningSceneFrame"), QStringLiteral("Camera view")},
        {QStringLiteral("SwitchTab"), QStringLiteral("World tabs")},
        {QStringLiteral("OpeningScenePanel"), QStringLiteral("Opening scene")},
        {QStringLiteral("ScriptPanel"), QStringLiteral("Animations")},
        {QStringLiteral("TreeView1"), QStringLiteral("Script")},
        {QStringLiteral("ConstructTree"), QStringLiteral("Blocks")},
        {QStringLiteral("CommandLineTreeview"), QStringLiteral("Line being built")},
        {QStringLiteral("CommandLineBox"), QStringLiteral("Command line")},
        {QStringLiteral("GoButton"), QStringLiteral("Run the command line")},
        {QStringLiteral("UndoButton"), QStringLiteral("Undo scene change")},
        {QStringLiteral("ScriptUndoButton"), QStringLiteral("Undo Changes to Script")},
        {QStringLiteral("ScriptRedoButton"), QStringLiteral("Redo Changes to Script")},
        {QStringLiteral("PerformScriptButton"), QStringLiteral("Perform")},
        {QStringLiteral("TrafficLightImage"), QStringLiteral("Reset the world")},
        {QStringLiteral("ScriptText"), QStringLiteral("The world's Python")},
        {QStringLiteral("ArbitraryCodeBoxPanel"), QStringLiteral("Python code box")},
        {QStringLiteral("ArbitraryCodeBox"), QStringLiteral("Your own Python code")},
        {QStringLiteral("FontNames"), QStringLiteral("Script font")},
        {QStringLiteral("FontSizes"), QStringLiteral("Script font size")},
        {QStringLiteral("FontEffect"), QStringLiteral("Script font effect")},
        {QStringLiteral("SplitterH3"), QStringLiteral("Divider above the code box")},
        {QStringLiteral("LineNumberMargin"), QStringLiteral("Line numbers")},
        {QStringLiteral("ScenePanel"), QStringLiteral("Scene")},
        {QStringLiteral("ObjectTree"), QStringLiteral("Objects")},
        {QStringLiteral("ObjectTree2"), QStringLiteral("Objects for events")},
        {QStringLiteral("SplitterH2"), QStringLiteral("Divider above the sounds")},
        {QStringLiteral("SplitterV"), QStringLiteral("Divider beside the scene")},
        {QStringLiteral("SoundTree"), QStringLiteral("Sounds")},
        {QStringLiteral("EventPanel"), QStringLiteral("Event builder")},
        {QStringLiteral("ListView1"), QStringLiteral("Events")},
        {QStringLiteral("MakeEvent"), QStringLiteral("Make event")},
        {QStringLiteral("KeyCaptureForm"), QStringLiteral("Key to respond to")},
        {QStringLiteral("menuBar"), QStringLiteral("Menu bar")},
        {QStringLiteral("AddObjectButton"), QStringLiteral("Add object")},
        {QStringLiteral("AddSoundsButton"), QStringLiteral("Add sound")},
        {QStringLiteral("AddTextButton"), QStringLiteral("Add text")},
        {QStringLiteral("TrashCanPicture"), QStringLiteral("Trash can")},
        {QStringLiteral("SplitterH1"), QStringLiteral("Divider above the output")},
        // Find and Replace
        {QStringLiteral("FindTextBox"), QStringLiteral("Find")},
        {QStringLiteral("ReplaceTextBox"), QStringLiteral("Replace with")},
        {QStringLiteral("MatchCaseCheck"), QStringLiteral("Match case")},
        {QStringLiteral("WholeWordCheck"), QStringLiteral("Whole word")},
        {QStringLiteral("FindButton"), QStringLiteral("Find")},
        {QStringLiteral("ReplaceButton"), QStringLiteral("Replace")},
        {QStringLiteral("ReplaceAllButton"), QStringLiteral("Replace All")},
        {QStringLiteral("MakeObjectButton"), QStringLiteral("Make object")},
        {QStringLiteral("MakeAnimation"), QStringLiteral("Make animation")},
        {QStringLiteral("HelpButton"), QStringLiteral("Help")},
        {QStringLiteral("TeachMe2Button"), QStringLiteral("Teach me")},
        // Editors over the script
        {QStringLiteral("Text1"), QStringLiteral("Value")},
        {QStringLiteral("TreeWidget"), QStringLiteral("Objects to pick from")},
        {QStringLiteral("TreeWidgetFind"), QStringLiteral("Name of the object to pick")},
        // The opening scene's tools
        {QStringLiteral("MouseControlsFrame"), QStringLiteral("Mouse tools")},
        {QStringLiteral("MouseMoveOption"), QStringLiteral("Drag moves objects")},
        {QStringLiteral("MouseRaiseOption"), QStringLiteral("Drag moves objects up and down")},
        {QStringLiteral("MouseTurnLROption"), QStringLiteral("Drag turns objects left and right")},
        {QStringLiteral("MouseTurnFBOption"),
         QStringLiteral("Drag turns objects forward and back")},
        {QStringLiteral("MouseTumbleOption"), QStringLiteral("Drag tumbles objects")},
        {QStringLiteral("MouseInspectOption"), QStringLiteral("Drag looks around objects")},
        {QStringLiteral("OpeningSceneOptions"), QStringLiteral("Opening scene options")},
        {QStringLiteral("OpeningSceneOptions0"), QStringLiteral("Use Hardware Acceleration")},
        {QStringLiteral("OpeningSceneOptions1"), QStringLiteral("Camera Can Pass Through Objects")},
        // Camera window
        {QStringLiteral("RenderFrame"), QStringLiteral("Running world")},
        {QStringLiteral("Check1"), QStringLiteral("Always keep this window on top")},
        {QStringLiteral("OnTheFlyButtons"), QStringLiteral("On the fly buttons")},
        // Error form
        {QStringLiteral("ErrorTypeLabel"), QStringLiteral("What went wrong")},
        {QStringLiteral("ErrorLabel"), QStringLiteral("Error details")},
        {QStringLiteral("OkButton"), QStringLiteral("OK")},
        {QStringLiteral("Command1"), QStringLiteral("Copy report to clipboard")},
        // The gallery of objects to add
        {QStringLiteral("GallerySearch"), QStringLiteral("Search objects")},
        {QStringLiteral("GalleryThemes"), QStringLiteral("Themes")},
        {QStringLiteral("GalleryList"), QStringLiteral("Objects to add")},
        {QStringLiteral("GalleryOtherFile"), QStringLiteral("Other file...")},
        {QStringLiteral("GalleryAdd"), QStringLiteral("Add")},
        {QStringLiteral("GalleryCancel"), QStringLiteral("Cancel")},
        // The world dialog, for Open and Save As
        {QStringLiteral("WorldPlaces"), QStringLiteral("Places")},
        {QStringLiteral("WorldFolderUp"), QStringLiteral("Up one folder")},
        {QStringLiteral("WorldFolderPath"), QStringLiteral("Folder shown")},
        {QStringLiteral("WorldList"), QStringLiteral("Worlds and folders")},
        {QStringLiteral("WorldNameText"), QStringLiteral("World name")},
        {QStringLiteral("WorldOkButton"), QStringLiteral("Open")},
        {QStringLiteral("WorldCancelButton"), QStringLiteral("Cancel")},
        // Add Text form
        {QStringLiteral("AddTextBox"), QStringLiteral("Text to add")},
        {QStringLiteral("CancelButton"), QStringLiteral("Cancel")},
        // Sending a world to friends, and the mail client's settings
        {QStringLiteral("WorldName"), QStringLiteral("World Title")},
        {QStringLiteral("MyName"), QStringLiteral("My Name")},
        {QStringLiteral("myEmail"), QStringLiteral("My eMail")},
        {QStringLiteral("friendsEmail"), QStringLiteral("Friends' eMail")},
        {QStringLiteral("myMessage"), QStringLiteral("My Message")},
        {QStringLiteral("MailServerHost"), QStringLiteral("Mail server")},
        {QStringLiteral("MailServerPort"), QStringLiteral("Port")},
        {QStringLiteral("MailServerSecurity"), QStringLiteral("Security")},
        {QStringLiteral("MailServerUser"), QStringLiteral("User name")},
        {QStringLiteral("MailServerPassword"), QStringLiteral("Password")},
        {QStringLiteral("MailServerCertificate"), QStringLiteral("Trusted certificate")},
        {QStringLiteral("MailServerCertificateBrowse"),
         QStringLiteral("Choose a trusted certificate")},
        // Help window, and the window about the program
        {QStringLiteral("WebBrowser1"), QStringLiteral("Help page")},
        {QStringLiteral("NameList"), QStringLiteral("Who made Vessa47")},
        {QStringLiteral("AboutPicture"), QStringLiteral("Vessa47")},
        // Web page forms
        {QStringLiteral("WidthField"), QStringLiteral("Width in pixels")},
        {QStringLiteral("HeightField"), QStringLiteral("Height in pixels")},
        {QStringLiteral("DriveList"), QStringLiteral("Drive")},
        {QStringLiteral("DirList"), QStringLiteral("Folder")},
        {QStringLiteral("FileNameText"), QStringLiteral("File name")},
        // The sketch tool
        {QStringLiteral("SketchView"), QStringLiteral("Drawing area")},
        {QStringLiteral("SketchUndoButton"), QStringLiteral("Undo the last outline")},
        {QStringLiteral("SketchDiscardButton"), QStringLiteral("Discard and Exit")},
        {QStringLiteral("SketchSaveButton"), QStringLiteral("Save and Exit")},
        {QStringLiteral("SketchColourBrown"), QStringLiteral("Brown")},
        {QStringLiteral("SketchColourRed"), QStringLiteral("Red")},
        {QStringLiteral("SketchColourOrange"), QStringLiteral("Orange")},
        {QStringLiteral("SketchColourYellow"), QStringLiteral("Yellow")},
        {QStringLiteral("SketchColourGreen"), QStringLiteral("Green")},
        {QStringLiteral("SketchColourBlue"), QStringLiteral("Blue")},
        {QStringLiteral("SketchColourPurple"), QStringLiteral("Purple")},
        {QStringLiteral("SketchColourWhite"), QStringLiteral("White")},
    };
    return names;
}

// Names of the other states of the controls whose name follows their state, by
// control and state.
const QHash<QString, QString>& stateTable() {
    static const QHash<QString, QString> names = {
        {QStringLiteral("PerformScriptButton/running"), QStringLiteral("Perform again")},
        {QStringLiteral("TrafficLightImage/running"), QStringLiteral("Stop the world")},
        {QStringLiteral("WorldOkButton/save"), QStringLiteral("Save")},
        {QStringLiteral("FindButton/Find Next"), QStringLiteral("Find Next")},
        {QStringLiteral("FindButton/Find Again"), QStringLiteral("Find Again")},
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

QString accessibleNameOf(const QString& control, const QString& state) {
    return stateTable().value(control + QLatin1Char('/') + state);
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
