#pragma once

#include "core/app_state.h"
#include "core/difference_handler.h"
#include "core/engine_link.h"
#include "core/error_reporter.h"
#include "core/world_status.h"
#include "scene/scene_trees.h"
#include "script/script_host.h"

#include <QMainWindow>
#include <QTimer>
#include <memory>

class QFrame;
class QStackedWidget;
class QTabBar;
class QTextEdit;
class QToolButton;

namespace vessa {

class RenderForm;
class ScenePanel;
class ScriptModel;
class ScriptPanel;

// The main window: the hub through which the panels of every subsystem reach
// each other. It stays a facade: records go to the DifferenceHandler, dirty
// logic to WorldStatus, errors to the ErrorReporter, the script to its model.
class MainForm : public QMainWindow, public DifferenceView, public ScriptHost {
    Q_OBJECT
public:
    MainForm(AppState& state, EngineLink& engine, ErrorReporter& reporter, RenderForm& renderForm);
    ~MainForm() override;

    // Hands a poll's records on, then rebuilds ObjectTree2 if ObjectTree changed.
    void HandleDifferences(const QVariant& differences);
    // Polls the object tree's records out of the rhythm of the main loop, as
    // loading a world must before the scene goes away.
    void PollTreeDifferences();
    bool objectTreeVisible() const;
    SceneTrees& sceneTrees() { return trees_; }

    bool IsWorldDirty();
    // Yes saves and answers 0, No answers 1, Cancel answers 2.
    int SaveChangesPrompt();
    void SetSaveName(const QString& name);
    void CleanUpAndExit();
    void setIdleTimerInterval(int ms);

    // Shows tab 0 (opening scene), 1 (animations) or 2 (events). Leaving the
    // opening scene keeps its state aside in the engine; coming back puts it back.
    void SwitchToTab(int tab);

    QWidget* OpeningSceneFrame() const;
    ScriptModel& script() { return *script_; }
    ScriptPanel& scriptPanel() { return *scriptPanel_; }
    ScenePanel& scenePanel() { return *scenePanel_; }
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
    void showObjectMenu(const QString& objectName) override;
    bool eventListHasItems() const override { return false; }
    void ListviewReplaceString(const QString&, const QString&) override {}

    // ScriptHost
    bool ScriptDirty() const override { return world_.ScriptDirty; }
    void SetScriptDirty(bool dirty) override { world_.ScriptDirty = dirty; }
    QString Caption() const override { return windowTitle(); }
    void SetCaption(const QString& caption) override { setWindowTitle(caption); }
    void LVUndoFromLog() override;
    void Dispatch(const ScriptRequest& request) override;
    void ReportError(const RunTimeError& error) override;

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
    void enableMenuItems(std::initializer_list<const char*> controls, bool enabled);
    void moveCameraView(QWidget* host);
    QWidget* cameraViewHost() const;
    void IdleTimer_Timer();
    // Answers whether the world was saved.
    bool FileSaveMenuButton_Click();

    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    RenderForm& renderForm_;
    WorldStatus world_;
    SceneTrees trees_;
    std::unique_ptr<ScriptModel> script_;
    DifferenceHandler differences_;
    QTextEdit* outputText_;
    QFrame* openingSceneFrame_;
    QTabBar* switchTab_ = nullptr;
    QStackedWidget* sceneScriptTab_ = nullptr; // 0 the opening scene, 1 the script
    ScriptPanel* scriptPanel_ = nullptr;
    ScenePanel* scenePanel_ = nullptr;
    QToolButton* scriptUndoButton_ = nullptr;
    // Keeps the engine stepping while a dialog or an external tool holds the
    // main loop.
    QTimer IdleTimer;
    bool cleanedUp_ = false;
};

} // namespace vessa
