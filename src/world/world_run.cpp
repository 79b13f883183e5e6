#include "world/world_run.h"

#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "world/open_world.h"
#include "world/python_generator.h"
#include "world/script_error_place.h"
#include "world/script_run.h"
#include "world/world_folder.h"

#include <QDateTime>
#include <QDir>
#include <QLocale>

namespace vessa {

namespace {

const QString kRestoreHandbasket = QStringLiteral("RestoreHandbasket()");
const QString kPreserveHandbasket = QStringLiteral("PreserveHandbasket()");
const QString kSwitchHandbasketFailed =
    QStringLiteral("MainForm:SwitchToTab: Error restoring handbasket.");
const QString kMakeCleanFailed = QStringLiteral("MainForm:SwitchToTab: Error making world clean.");

} // namespace

bool isStoredTrue(const QString& value) {
    bool isNumber = false;
    const int number = value.trimmed().toInt(&isNumber);
    return isNumber ? number != 0 : value.trimmed().compare(u"true", Qt::CaseInsensitive) == 0;
}

WorldRun::WorldRun(AppState& state, EngineLink& engine, ErrorReporter& reporter, OpenWorld& world,
                   Preferences preferences, RunView& view)
    : state_(state), engine_(engine), reporter_(reporter), world_(world),
      preferences_(std::move(preferences)), view_(view) {
}

void WorldRun::SwitchToTab(int tab) {
    const int old = world_.status().SceneScriptTab();
    try {
        if (tab == 0 && selectedTab_ != 0)
            toOpeningScene(old);
        else if (tab == 1 && selectedTab_ != 1)
            toAnimations(old);
        else if (tab == 2 && selectedTab_ != 2)
            toEvents(old);
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C, QStringLiteral("VB:MainForm:SwitchToTab() Error"), e);
    }
    // The tab shown as selected is the one chosen, also when the switch failed half way.
    view_.showSelectedTab(selectedTab_);
    try {
        moveCameraView(old);
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C, QStringLiteral("VB:MainForm:SwitchToTab() Error"), e);
    }
}

void WorldRun::toOpeningScene(int old) {
    selectedTab_ = 0;
    view_.enableMenuItems({"FileOpeningScene", "FileStartCameraHere", "EditFindMenuButton",
                           "EditReplaceMenuButton", "EditUndoTextMenuButton", "EditPasteMenuButton",
                           "EditCutMenuButton", "EditCopyMenuButton", "EditDeleteMenuButton"},
                          false);
    view_.enableMenuItems({"mnuMakeObject", "mnuAddObject", "mnuAddSounds", "mnuAddText"}, true);
    view_.showTabPage(0);
    if (old != 0)
        runTool(engine_, reporter_, kRestoreHandbasket, kSwitchHandbasketFailed);
    world_.status().setSceneScriptTab(0);
    reporter_.CheckInterpreterResult(engine_.call(QStringLiteral("SetIsDirty"), {0}),
                                     kMakeCleanFailed);
}

void WorldRun::toAnimations(int old) {
    selectedTab_ = 1;
    if (old == 0)
        runTool(engine_, reporter_, kPreserveHandbasket, kSwitchHandbasketFailed);
    world_.status().setSceneScriptTab(1);
    view_.showTabPage(1);
    applyCodeBoxPreference();
    view_.enableMenuItems({"EditFindMenuButton", "EditReplaceMenuButton", "EditUndoTextMenuButton",
                           "EditCutMenuButton", "EditCopyMenuButton", "EditDeleteMenuButton"},
                          true);
    view_.enableMenuItems({"mnuMakeObject", "mnuAddObject", "mnuAddSounds", "mnuAddText"}, false);
    view_.enableMenuItems({"FileOpeningScene", "FileStartCameraHere"}, true);
    // The backup must leave no mark: the engine is as clean or dirty afterwards as before.
    const bool wasClean = engine_.call(QStringLiteral("getisdirty")).toInt() == 0;
    backUpScene();
    reporter_.CheckInterpreterResult(engine_.call(QStringLiteral("SetIsDirty"), {wasClean ? 0 : 1}),
                                     kMakeCleanFailed);
    // The engine's mark is read only on the opening scene: a change made there is carried
    // over into the world's own.
    if (engine_.call(QStringLiteral("getisdirty")).toInt() != 0)
        world_.status().markModified();
}

void WorldRun::toEvents(int old) {
    selectedTab_ = 2;
    if (old == 0)
        runTool(engine_, reporter_, kPreserveHandbasket, kSwitchHandbasketFailed);
    world_.status().setSceneScriptTab(2);
    ObjectTree2_Update(world_.trees());
    view_.showTabPage(2);
    applyCodeBoxPreference();
    view_.enableMenuItems({"EditFindMenuButton", "EditReplaceMenuButton", "EditPasteMenuButton"},
                          false);
    view_.enableMenuItems({"EditUndoTextMenuButton", "EditCutMenuButton", "EditCopyMenuButton",
                           "EditDeleteMenuButton"},
                          true);
    view_.enableMenuItems({"mnuMakeObject", "mnuAddObject", "mnuAddSounds", "mnuAddText"}, false);
    // FileOpeningScene and FileStartCameraHere stay as they were: coming from the opening
    // scene they stay disabled.
}

// The camera view lives in the opening-scene panel, and in the camera window while a
// script tab shows.
void WorldRun::moveCameraView(int old) {
    const int now = world_.status().SceneScriptTab();
    if (now == 0 && old != 0) {
        view_.showCameraWindow(false);
        const ViewHostPlace home = view_.openingSceneHost();
        engine_.call(QStringLiteral("setimagenavigatorsize"), {home.width, home.height});
        engine_.call(QStringLiteral("setimagenavigatorparent"), {home.id});
    } else if (now != 0 && old == 0) {
        const ViewHostPlace camera = view_.cameraWindowHost();
        try {
            engine_.call(QStringLiteral("setimagenavigatorsize"), {camera.width, camera.height});
            engine_.call(QStringLiteral("setimagenavigatorparent"), {camera.id});
        } catch (const RunTimeError&) {
            // A view that can't move stays where it is; the world still runs.
        }
        view_.showCameraWindow(true);
    }
}

// A stored choice of the user shows or hides the code box; without one it stays as it is.
void WorldRun::applyCodeBoxPreference() {
    CodeBoxText& codeBox = world_.ArbitraryCodeBox();
    const QString stored = preferences_.CodeBoxVisible ? preferences_.CodeBoxVisible() : QString();
    if (!stored.isEmpty())
        codeBox.Visible = isStoredTrue(stored);
    view_.showCodeBox(codeBox.Visible);
}

// A dated copy of the scene and of the world's Python in the world's Backups folder. A
// backup is a safety net: nothing that goes wrong with it stops the switch.
void WorldRun::backUpScene() {
    const QString& folder = world_.status().worldSaveFile();
    if (folder.isEmpty() || !preferences_.BackupsEnabled)
        return;
    try {
        const QString backups = fileInFolder(folder, QStringLiteral("Backups"));
        if (!QFileInfo(backups).isDir()) {
            view_.LogMessage(QStringLiteral("creating 'Backups' directory ") + backups +
                             QStringLiteral("..."));
            QDir().mkpath(backups);
        }
        if (!scriptText_.Visible)
            makePythonScript();
        reporter_.CheckInterpreterResult(
            engine_.call(QStringLiteral("BackupScene"), {backups, scriptText_.Text}),
            QStringLiteral("MainForm:SwitchToTab: Error calling python BackupScene."));
    } catch (const RunTimeError&) {
    }
}

void WorldRun::makePythonScript() {
    PythonScript python = MakePythonScript(world_.script().TreeView1(), world_.events().ListView1(),
                                           world_.ArbitraryCodeBox().Text);
    for (const ScriptNotice& notice : python.notices)
        view_.showNotice(notice.message);
    scriptText_.Text = std::move(python.text);
    scriptText_.errorLine = -1;
    handEditedLine_ = python.handEditedLine;
}

void WorldRun::PerformScriptButton_MouseUp() {
    try {
        view_.showPerformPicture(RunView::PerformPicture::Again);
        view_.showLightPicture(RunView::LightPicture::Stop);
        // Every run starts from the start kept aside.
        runTool(engine_, reporter_, kRestoreHandbasket,
                QStringLiteral("MainForm:PerformScript: Error restoring handbasket"));
        if (scriptText_.Visible) {
            // The user is looking at the text: it runs as it stands, all of it as their own.
            handEditedLine_ = 0;
            scriptText_.errorLine = -1;
            ran_ = RanText::ScriptTextAsItStands;
        } else {
            makePythonScript();
            ran_ = RanText::World;
        }
        view_.showScriptText(scriptText_);
        view_.PrintOutput(runningLine());
        view_.focusCameraWindow();
        reporter_.CheckInterpreterResult(
            engine_.call(QStringLiteral("setrenderwindowfocus")),
            QStringLiteral("MainForm:PerformScript:SetRenderWindowFocus unsuccessful"));
        state_.ErrorLineOffset = 0;
        const ScriptRunResults results =
            runPythonScript(engine_, PythonScript{scriptText_.Text, handEditedLine_, {}});
        reporter_.CheckInterpreterResult(results.generated,
                                         QStringLiteral("MainForm:PerformScript: Error running "
                                                        "the generated script."));
        reporter_.CheckInterpreterResult(results.handEdited,
                                         QStringLiteral("MainForm:PerformScript: Error running "
                                                        "the hand-edited script."));
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C,
                              QStringLiteral("VB:MainForm:PerformScriptButton_MouseUp() Error"), e);
    }
}

QString WorldRun::runningLine() const {
    const QString now =
        QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("MMM d yyyy hh:mm:ss"));
    const QString& name = world_.status().worldSaveFile();
    return (name.isEmpty() ? QStringLiteral("Running unnamed world at ")
                           : QStringLiteral("Running ") + name + QStringLiteral(" at ")) +
           now + QStringLiteral("...");
}

void WorldRun::TrafficLightImage_MouseUp() {
    try {
        runTool(engine_, reporter_, kRestoreHandbasket,
                QStringLiteral("World Active Label: Error restoring handbasket."));
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C,
                              QStringLiteral("VB:MainForm:TrafficLightImage_MouseUp() Error"), e);
    }
    SetWorldIdle();
}

void WorldRun::SetWorldActive() {
    view_.showLightPicture(RunView::LightPicture::Stop);
    worldActive_ = true;
}

void WorldRun::SetWorldIdle() {
    worldActive_ = false;
    view_.showLightPicture(RunView::LightPicture::Reset);
    view_.showPerformPicture(RunView::PerformPicture::Plain);
}

void WorldRun::editScriptText(const QString& text) {
    scriptText_.Text = text;
    scriptText_.errorLine = -1;
}

void WorldRun::flipScriptText() {
    scriptText_.Visible = !scriptText_.Visible;
    if (scriptText_.Visible && scriptText_.Text.isEmpty())
        makePythonScript();
    view_.showScriptText(scriptText_);
}

void WorldRun::markError(const ScriptErrorPlace& place) {
    const std::optional<ErrorMark> mark =
        errorMark(place, ran_, handEditedLine_, state_.ErrorLineOffset);
    if (!mark)
        return;
    if (mark->box == ErrorMark::Box::CodeBox) {
        CodeBoxText& codeBox = world_.ArbitraryCodeBox();
        if (!lineReads(codeBox.Text, mark->line, place.sourceLine))
            return;
        if (!codeBox.Visible) {
            codeBox.Visible = true;
            view_.showCodeBox(true);
        }
        view_.markCodeBoxLine(mark->line);
        return;
    }
    if (!lineReads(scriptText_.Text, mark->line, place.sourceLine))
        return;
    scriptText_.errorLine = mark->line;
    scriptText_.Visible = true;
    view_.showScriptText(scriptText_);
}

} // namespace vessa
