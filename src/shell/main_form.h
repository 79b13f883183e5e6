#pragma once

#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "world/difference_handler.h"
#include "world/world_status.h"

#include <QMainWindow>
#include <QTimer>

class QFrame;
class QStackedWidget;
class QTextEdit;
class QToolButton;

namespace vessa {

class EventPanel;
class NamedTabBar;
class OpenWorld;
class RenderForm;
class ScenePanel;
class ScriptPanel;

// The main window: it shows the open world and holds the panels of every
// subsystem, and owns no data of its own. It is the window side of the engine's
// records and of the world's status; the world, its script and its trees live in
// the OpenWorld it is given, errors go to the ErrorReporter.
class MainForm : public QMainWindow, public DifferenceView, public WorldStatusObserver {
    Q_OBJECT
public:
    MainForm(AppState& state, EngineLink& engine, ErrorReporter& reporter, RenderForm& renderForm,
             OpenWorld& world);
    ~MainForm() override;

    bool objectTreeVisible() const;

    // Yes saves and answers 0, No answers 1, Cancel answers 2.
    int SaveChangesPrompt();
    void CleanUpAndExit();
    void setIdleTimerInterval(int ms);
    // Answers whether the world was saved.
    bool FileSaveMenuButton_Click();

    // Shows tab 0 (opening scene), 1 (animations) or 2 (events). Leaving the
    // opening scene keeps its state aside in the engine; coming back puts it back.
    // The world tabs follow; a change of the current tab by any way comes here.
    void SwitchToTab(int tab);

    QWidget* OpeningSceneFrame() const;
    ScriptPanel& scriptPanel() { return *scriptPanel_; }
    EventPanel& eventPanel() { return *eventPanel_; }
    ScenePanel& scenePanel() { return *scenePanel_; }
    QTextEdit* OutputText() const { return outputText_; }

    // DifferenceView
    void appendOutput(const QString& text, const QColor& color) override;
    void PrintOutput(const QString& text) override;
    void showUndoAvailable(bool available) override;
    void showWorldActive(bool active) override;
    bool cameraWindowOnTop() const override { return gCameraWindowOnTop; }
    void setRenderFormAlwaysOnTop(bool onTop) override;
    void pumpEvents() override;
    void showUserError(const ErrorFormContent& content) override;

    // WorldStatusObserver: the caption names the world and says when it was modified.
    void worldNamed(const QString& worldSaveFile) override;
    void worldModified() override;

    // A diagnostic line in blue; off unless the program is built to trace.
    void LogMessage(const QString& text);

protected:
    void closeEvent(QCloseEvent* event) override;
    // The camera view follows the size of the frame that hosts it.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildMenus();
    QWidget* buildColumns();
    QWidget* buildOpeningScenePanel();
    QWidget* buildScriptTabs();
    void addKeyboardCommands();
    void orderTabStops();
    void enableMenuItems(std::initializer_list<const char*> controls, bool enabled);
    void moveCameraView(QWidget* host);
    QWidget* cameraViewHost() const;
    QToolButton* makeUndoButton(const QString& control, QWidget* parent);
    // Undoes the engine's last step.
    void UndoButton_MouseUp();
    // Undoes the newest change of the tab's own log: the script's, or the event rows'.
    void EditUndoTextMenuButton_Click();
    void showScriptUndoAvailable();
    void IdleTimer_Timer();

    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    RenderForm& renderForm_;
    OpenWorld& world_;
    QTextEdit* outputText_;
    QFrame* openingSceneFrame_;
    NamedTabBar* switchTab_ = nullptr;
    bool switchingTab_ = false;
    QStackedWidget* sceneScriptTab_ = nullptr; // 0 the opening scene, 1 the script
    ScriptPanel* scriptPanel_ = nullptr;
    EventPanel* eventPanel_ = nullptr; // on the events tab, above the script
    ScenePanel* scenePanel_ = nullptr;
    QToolButton* undoButton_ = nullptr;       // on the opening scene: the engine's undo
    QToolButton* scriptUndoButton_ = nullptr; // on the script's tabs: the tab's own undo
    // Keeps the engine stepping while a dialog or an external tool holds the
    // main loop.
    QTimer IdleTimer;
    // The camera window stays above the others: "Always keep this window on top".
    bool gCameraWindowOnTop;
    bool cleanedUp_ = false;
};

} // namespace vessa
