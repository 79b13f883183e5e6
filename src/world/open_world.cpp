#include "world/open_world.h"

#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"

namespace vessa {

OpenWorld::OpenWorld(AppState& state, EngineLink& engine, ErrorReporter& reporter)
    : state_(state), engine_(engine), reporter_(reporter), script_(*this), events_(script_),
      differences_(state, engine, reporter, trees_, followers_,
                   [this](const QString& objectName) { showObjectMenu(objectName); }) {
    InitSoundTree(trees_);
    script_.setDragSource(trees_.ObjectTree, DragSource::Object);
    script_.setDragSource(trees_.SoundTree, DragSource::Sound);
    followers_.add([this](const QString& oldName, const QString& newName) {
        script_.ReplaceObjectName(oldName, newName);
        events_.ListviewReplaceString(oldName, newName);
    });
    script_.requests().registerHandler(
        ScriptRequest::Kind::PerformLine,
        [this](const ScriptRequest& request) { RunSelectedLine(request.Value); });
}

void OpenWorld::RunSelectedLine(const QString& python) {
    // Tagged as the script's own code, a mistake in it reaches the user as one in their
    // script; the engine starts what the line makes at its next step.
    reporter_.CheckInterpreterResult(
        engine_.ExecuteCode(python, QStringLiteral("<treeview>")),
        QStringLiteral("MainForm:RunSelectedLine: Error running the line."));
}

DifferenceResult OpenWorld::HandleDifferences(const QVariant& differences) {
    const DifferenceResult result = differences_.HandleDifferences(differences, view_);
    if (result.objectTreeChanged)
        ObjectTree2_Update(trees_);
    if (result.scriptError && scriptErrorListener_)
        scriptErrorListener_(*result.scriptError);
    return result;
}

DifferenceResult OpenWorld::pollTreeDifferences() {
    return HandleDifferences(engine_.call(QStringLiteral("PollForTreeDifferences")));
}

void OpenWorld::showObjectMenu(const QString& objectName, const QPoint& screenPoint) {
    ScriptRequest menu;
    menu.What = ScriptRequest::Kind::ObjectMenu;
    menu.Value = objectName;
    menu.ScreenPoint = screenPoint;
    script_.requests().route(menu);
}

bool OpenWorld::IsWorldDirty() {
    return status_.IsWorldDirty(state_.HomeDir, [this] {
        return engine_.isSet() && engine_.call(QStringLiteral("getisdirty")).toInt() != 0;
    });
}

void OpenWorld::SetSaveName(const QString& name) {
    const bool isDefault =
        name.toLower() == (state_.HomeDir + QStringLiteral("worlds/default")).toLower();
    status_.setWorldSaveFile(isDefault ? QString() : name);
    // The recent-files menu shows this list; the engine keeps it in order.
    if (!status_.worldSaveFile().isEmpty())
        engine_.call(QStringLiteral("ReorderRecentFiles"), {name});
    reporter_.CheckInterpreterResult(
        engine_.call(QStringLiteral("SetIsDirty"), {0}),
        QStringLiteral("MainForm:SetSaveName: Error making world clean."));
}

void OpenWorld::emptyForNextWorld() {
    script_.Initialize();
    events_.InitEventList();
    codeBox_ = CodeBoxText();
    trees_.ObjectTree.Clear();
    trees_.ObjectTree2.Clear();
    trees_.Junkyard.Clear();
    InitSoundTree(trees_);
}

ScriptTargets OpenWorld::scriptTargets() {
    return {script_.TreeView1(), script_.AnimationNames(), [this] { events_.ListView1().Clear(); },
            [this](const QString& when, const QString& happensTo, const QString& animation) {
                events_.addRow(when, happensTo, animation);
            },
            codeBox_};
}

void OpenWorld::LVUndoFromLog() {
    events_.LVUndoFromLog(events_.TreeListUndoLog());
}

void OpenWorld::LVRedoFromLog() {
    events_.LVRedoFromLog(events_.TreeListUndoLog());
}

int OpenWorld::ReplaceInListView(const QString& oldName, const QString& newName) {
    return events_.ReplaceInListView(oldName, newName);
}

void OpenWorld::ReportError(const RunTimeError& error) {
    reporter_.reportHandlerFailure(error);
}

QStringList OpenWorld::sceneSounds() {
    QStringList sounds;
    // The scene's sounds stand side by side at the top of the tree.
    for (const TreeNode* sound = trees_.SoundTree.FirstRoot(); sound; sound = sound->Next())
        sounds << sound->Text();
    return sounds;
}

QVariantList OpenWorld::objectMenuFacts(const QString& objectName) {
    return engine_.call(QStringLiteral("PrepareObjectMenu"), {objectName}).toList();
}

void OpenWorld::runTool(const QString& statement, const QString& failureMessage) {
    vessa::runTool(engine_, reporter_, statement, failureMessage);
}

bool OpenWorld::isValidObjectName(const QString& name) {
    return acceptsName(engine_, name);
}

} // namespace vessa
