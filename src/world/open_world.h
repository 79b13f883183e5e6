#pragma once

#include "events/event_list.h"
#include "scene/scene_trees.h"
#include "script/script_host.h"
#include "script/script_model.h"
#include "world/code_box_text.h"
#include "world/difference_handler.h"
#include "world/world_script_file.h"
#include "world/world_status.h"

namespace vessa {

struct AppState;
class EngineLink;
class ErrorReporter;

// The world the user has open, without a window: the trees that mirror the engine's
// scene, the script and the event list, whether the world holds unsaved work, and what
// the engine's difference records change. The main window shows it; it owns no data of
// its own. Renames of objects reach the script's lines and the event rows; renames and
// removals of animations reach the event rows through the script's host.
//
// Records that need the window (output, dialogs, pictures) go to the view attached;
// a record of that kind while none is attached fails like any other bad record.
class OpenWorld : public ScriptHost {
public:
    OpenWorld(AppState& state, EngineLink& engine, ErrorReporter& reporter);
    OpenWorld(const OpenWorld&) = delete;
    OpenWorld& operator=(const OpenWorld&) = delete;

    SceneTrees& trees() { return trees_; }
    ScriptModel& script() { return script_; }
    EventList& events() { return events_; }
    WorldStatus& status() { return status_; }
    // The text of the code box, which the world's files keep and its Python ends with.
    CodeBoxText& ArbitraryCodeBox() { return codeBox_; }
    // Whoever holds names of objects and sounds registers here to follow renames.
    RenameFollowers& renameFollowers() { return followers_; }

    // The window side of the records; nullptr detaches it.
    void attachView(DifferenceView* view) { view_ = view; }
    // Applies a poll's records; a changed ObjectTree is copied again into ObjectTree2, and
    // the place of an error of the user's code goes to the listener.
    DifferenceResult HandleDifferences(const QVariant& differences);
    // Told where each error of the user's code stands that the records place.
    void setScriptErrorListener(std::function<void(const ScriptErrorPlace&)> listener) {
        scriptErrorListener_ = std::move(listener);
    }
    // The object tree's records, out of the rhythm of the main loop, as loading a world
    // must have them before the scene goes away.
    DifferenceResult pollTreeDifferences();

    // The right-click menu of an object, from the object tree or the camera view: at
    // screenPoint, or where the mouse is when none is given.
    void showObjectMenu(const QString& objectName, const QPoint& screenPoint = {});
    // "Perform this Line": runs the Python of a line or block of the script at once, in
    // the scene as it stands.
    void RunSelectedLine(const QString& python);

    // Whether closing or replacing the world would lose work worth saving.
    bool IsWorldDirty();
    // Names the world after its folder ("" and the default world's folder: unnamed),
    // puts a named one first among the engine's recent files, and makes the engine's
    // scene clean.
    void SetSaveName(const QString& name);

    // Before another world comes in: the script of a new world, the event list with its
    // start row, no code, and empty scene trees for the engine's records to fill.
    void emptyForNextWorld();
    // Where a world's script file is read into: the script, the rows (each with a fresh
    // key), the code box.
    ScriptTargets scriptTargets();

    // ScriptHost
    void scriptModified() override { status_.markModified(); }
    void LVUndoFromLog() override;
    void LVRedoFromLog() override;
    int ReplaceInListView(const QString& oldName, const QString& newName) override;
    bool FindInListView(const QString& name) override { return events_.FindInListView(name); }
    int RemoveFromListView(const QString& name) override {
        return events_.RemoveFromListView(name);
    }
    void ReportError(const RunTimeError& error) override;
    const TreeControl& sceneObjects() override { return trees_.ObjectTree; }
    QStringList sceneSounds() override;
    bool openingSceneShown() override { return status_.SceneScriptTab() == 0; }
    QVariantList objectMenuFacts(const QString& objectName) override;
    void runTool(const QString& statement, const QString& failureMessage) override;
    bool isValidObjectName(const QString& name) override;

private:
    AppState& state_;         // Not owned.
    EngineLink& engine_;      // Not owned.
    ErrorReporter& reporter_; // Not owned.
    SceneTrees trees_;
    ScriptModel script_;
    EventList events_;
    WorldStatus status_;
    CodeBoxText codeBox_;
    RenameFollowers followers_;
    DifferenceHandler differences_;
    DifferenceView* view_ = nullptr; // Not owned.
    std::function<void(const ScriptErrorPlace&)> scriptErrorListener_;
};

} // namespace vessa
