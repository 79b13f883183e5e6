#pragma once

#include "core/app_state.h"
#include "core/difference_handler.h"
#include "core/engine_link.h"
#include "core/error_reporter.h"
#include "core/world_status.h"

#include <QMainWindow>
#include <QTimer>

class QTextEdit;
class QFrame;

namespace vessa {

class RenderForm;

// The main window: the hub through which the panels of every subsystem reach
// each other. It stays a facade: records go to the DifferenceHandler, dirty
// logic to WorldStatus, errors to the ErrorReporter.
class MainForm : public QMainWindow, public DifferenceView {
    Q_OBJECT
public:
    MainForm(AppState& state, EngineLink& engine, ErrorReporter& reporter, RenderForm& renderForm);

    void HandleDifferences(const QVariant& differences) {
        differences_.HandleDifferences(differences);
    }
    bool gUpdateObjectTree2() const { return differences_.gUpdateObjectTree2; }
    bool objectTreeVisible() const;

    bool IsWorldDirty();
    // Yes saves and answers 0, No answers 1, Cancel answers 2.
    int SaveChangesPrompt();
    void SetSaveName(const QString& name);
    void CleanUpAndExit();
    void setIdleTimerInterval(int ms);

    QWidget* OpeningSceneFrame() const;
    QTextEdit* OutputText() const { return outputText_; }
    WorldStatus& world() { return world_; }
    bool worldIsDirty = false;
    bool gCameraWindowOnTop = true;

    // DifferenceView
    void appendOutput(const QString& text, const QColor& color) override;
    void PrintOutput(const QString& text) override;
    void showUndoAvailable(bool available) override;
    void showWorldActive(bool active) override;
    bool cameraWindowOnTop() const override { return gCameraWindowOnTop; }
    void setRenderFormAlwaysOnTop(bool onTop) override;
    void pumpEvents() override;
    void showUserError(const ErrorFormContent& content) override;

    // A diagnostic line in blue; off unless the program is built to trace.
    void LogMessage(const QString& text);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    void IdleTimer_Timer();
    void FileSaveMenuButton_Click();

    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    RenderForm& renderForm_;
    DifferenceHandler differences_;
    WorldStatus world_;
    QTextEdit* outputText_;
    QFrame* openingSceneFrame_;
    // Keeps the engine stepping while a dialog or an external tool holds the
    // main loop.
    QTimer IdleTimer;
    bool cleanedUp_ = false;
};

} // namespace vessa
