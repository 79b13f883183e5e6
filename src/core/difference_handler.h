#pragma once

#include "core/app_state.h"
#include "core/engine_link.h"
#include "core/error_reporter.h"

#include <QColor>
#include <QVariant>

namespace vessa {

struct SceneTrees;
class TreeControl;
class TreeNode;

// What the engine's difference records change beyond the scene trees.
class DifferenceView {
public:
    virtual ~DifferenceView() = default;
    // Appends at the end of OutputText in `color`, adding no line end.
    virtual void appendOutput(const QString& text, const QColor& color) = 0;
    // One line in black at the insertion point.
    virtual void PrintOutput(const QString& text) = 0;
    // Undo buttons show their normal (true) or disabled pictures.
    virtual void showUndoAvailable(bool available) = 0;
    // The traffic light; a stopped world also puts the run button back to normal.
    virtual void showWorldActive(bool active) = 0;
    virtual bool cameraWindowOnTop() const = 0;
    virtual void setRenderFormAlwaysOnTop(bool onTop) = 0;
    virtual void pumpEvents() = 0;
    virtual void showUserError(const ErrorFormContent& content) = 0;
    // The right-click menu of an object in the camera view.
    virtual void showObjectMenu(const QString& objectName) = 0;
    // The event list, whose rows name objects and sounds as the script does.
    virtual bool eventListHasItems() const = 0;
    virtual void ListviewReplaceString(const QString& oldName, const QString& newName) = 0;
};

// Turns the records of the engine's polls into changes of the front end. A poll
// is a list of records; a record is a list whose item 0 is its tag. A record that
// fails stops the batch: the rest is dropped and the failure climbs to the caller
// with this routine's report block. Once a sound rename has been seen, a failure
// is taken instead for a rename of a sound in the scene, and a failure after that
// climbs without a block: kept as the program always behaved.
class DifferenceHandler {
public:
    DifferenceHandler(AppState& state, EngineLink& engine, ErrorReporter& reporter,
                      DifferenceView& view, SceneTrees& trees, TreeControl& script)
        : state_(state), engine_(engine), reporter_(reporter), view_(view), trees_(trees),
          script_(script) {}

    void HandleDifferences(const QVariant& differences);

    bool gUpdateObjectTree2 = false; // a record of this call changed ObjectTree
    bool UndoAvailable = false;
    bool WorldActive = false;
    QString JunkyardKey; // the engine's id of its holder of destroyed objects
    QString NoParentKey; // the engine's id that stands for "no parent"

private:
    struct Batch;

    void handleRecord(Batch& batch, const QString& tag, const QVariantList& record);
    void popUpErrorDialog(const QVariantList& record);
    void objectConstruct(Batch& batch, const QVariantList& record);
    void soundNameChange(Batch& batch, const QVariantList& record);
    void renameSoundInScene(Batch& batch, const QVariantList& record);
    void sceneAddSound(Batch& batch);
    void sceneRemoveSound(Batch& batch, const QVariantList& record);
    void objectNameChange(Batch& batch, const QVariantList& record);
    void objectFirstClassOrPartChange(Batch& batch, const QVariantList& record);
    void objectParentChange(Batch& batch, const QVariantList& record);
    void objectDestruct(Batch& batch, const QVariantList& record);
    void objectResurrect(Batch& batch, const QVariantList& record);
    // Script lines and event rows that name oldName follow it to newName.
    void followRename(const QString& oldName, const QString& newName);

    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    DifferenceView& view_;
    SceneTrees& trees_;
    TreeControl& script_; // TreeView1
};

} // namespace vessa
