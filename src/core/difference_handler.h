#pragma once

#include "core/app_state.h"
#include "core/engine_link.h"
#include "core/error_reporter.h"

#include <QColor>
#include <QVariant>

namespace vessa {

// What the engine's difference records change on screen.
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

// Turns the records of the engine's polls into changes of the front end. A poll
// is a list of records; a record is a list whose item 0 is its tag. A record that
// fails stops the batch: the rest is dropped and the failure climbs to the caller
// with this routine's report block.
class DifferenceHandler {
public:
    DifferenceHandler(AppState& state, EngineLink& engine, ErrorReporter& reporter,
                      DifferenceView& view)
        : state_(state), engine_(engine), reporter_(reporter), view_(view) {}

    void HandleDifferences(const QVariant& differences);

    bool gUpdateObjectTree2 = false; // a record of this call changed ObjectTree
    bool UndoAvailable = false;
    bool WorldActive = false;

private:
    void handleRecord(const QString& tag, const QVariantList& record);
    void popUpErrorDialog(const QVariantList& record);

    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    DifferenceView& view_;
};

// Item `index` of a record; a record too short for its tag is an error.
QVariant recordItem(const QVariantList& record, int index);

} // namespace vessa
