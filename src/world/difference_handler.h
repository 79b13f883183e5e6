#pragma once

#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "world/script_error_place.h"

#include <QColor>
#include <QVariant>
#include <functional>
#include <optional>
#include <vector>

namespace vessa {

struct SceneTrees;

// What the engine's difference records change beyond the scene trees: the window side.
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
};

// What hold names of objects and sounds and follow their renames: the script's lines
// and the event list's rows. Each is told the old and the new full name.
class RenameFollowers {
public:
    using Follower = std::function<void(const QString& oldName, const QString& newName)>;
    void add(Follower follower) { followers_.push_back(std::move(follower)); }
    void follow(const QString& oldName, const QString& newName) const {
        for (const Follower& follower : followers_)
            follower(oldName, newName);
    }

private:
    std::vector<Follower> followers_;
};

// What one call of HandleDifferences changed.
struct DifferenceResult {
    bool objectTreeChanged = false;    // gUpdateObjectTree2: a record changed ObjectTree
    std::optional<bool> undoAvailable; // the engine's undo stack, as last reported
    std::optional<bool> worldActive;   // whether the world runs, as last reported
    // Where the last error of the user's code stands, when the records name a place.
    std::optional<ScriptErrorPlace> scriptError;
};

// Turns the records of the engine's polls into changes of the front end. A poll
// is a list of records; a record is a list whose item 0 is its tag. A record that
// fails stops the batch: the rest is dropped and the failure climbs to the caller
// with this routine's report block. Once a sound rename has been seen, a failure
// is taken instead for a rename of a sound in the scene, and a failure after that
// climbs without a block: kept as the program always behaved.
class DifferenceHandler {
public:
    // Asks for the right-click menu of the object named, as the camera view reports it.
    using ObjectMenu = std::function<void(const QString& objectName)>;

    DifferenceHandler(AppState& state, EngineLink& engine, ErrorReporter& reporter,
                      SceneTrees& trees, const RenameFollowers& followers, ObjectMenu objectMenu)
        : state_(state), engine_(engine), reporter_(reporter), trees_(trees), followers_(followers),
          objectMenu_(std::move(objectMenu)) {}

    // view shows what the records change beyond the trees; without one, a record that
    // needs it fails.
    DifferenceResult HandleDifferences(const QVariant& differences, DifferenceView* view);

private:
    struct Batch;

    void handleRecord(Batch& batch, const QString& tag, const QVariantList& record);
    void popUpErrorDialog(Batch& batch, const QVariantList& record);
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

    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    SceneTrees& trees_;
    const RenameFollowers& followers_;
    ObjectMenu objectMenu_;
    QString NoParentKey; // the engine's id that stands for "no parent"
};

} // namespace vessa
