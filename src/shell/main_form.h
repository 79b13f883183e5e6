#pragma once

#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "shell/settings_store.h"
#include "world/difference_handler.h"
#include "world/world_files_view.h"
#include "world/world_run.h"
#include "world/world_status.h"

#include <QMainWindow>
#include <QTimer>
#include <functional>
#include <memory>

#include <memory>

class QFrame;
class QPlainTextEdit;
class QStackedWidget;
class QTextEdit;
class QToolButton;

namespace vessa {

class AddingCommands;
class EditMenu;
class ArbitraryCodeBox;
class CommandLineBar;
class FindForm;
class FontLists;
class ArchiveDialogs;
class Autosave;
class CodeBoxRun;
class CodeEditor;
class EventPanel;
class MainFormArea;
class MouseToolsPanel;
class NamedTabBar;
class OpeningSceneOptions;
class OpenWorld;
class PictureButton;
class RecentFilesMenu;
class RecoveryStore;
class RegKeys;
class RenderForm;
class ScenePanel;
class ScriptPanel;
class TrashCan;
class WorldFiles;
class WorldForm;
class WorldArchive;
class WindowKeeper;
class WorldTrust;

// The main window: it shows the open world and holds the panels of every
// subsystem, and owns no data of its own. It is the window side of the engine's
// records, of the world's status and of its files; the world, its script and its trees
// live in the OpenWorld it is given, the File commands in WorldFiles, errors go to the
// ErrorReporter, and the tabs and runs are the WorldRun's, which it shows.
class MainForm : public QMainWindow,
                 public DifferenceView,
                 public WorldStatusObserver,
                 public WorldFilesView,
                 public RunView {
    Q_OBJECT
public:
    MainForm(AppState& state, EngineLink& engine, ErrorReporter& reporter, RenderForm& renderForm,
             OpenWorld& world);
    ~MainForm() override;

    bool objectTreeVisible() const;

    // Yes saves and answers 0, No answers 1, Cancel answers 2, as does a Yes whose save
    // did not happen.
    int SaveChangesPrompt();
    bool LoadWorld(const QString& worldPath, bool showHelp);
    // "yessave" or "nosave".
    QString SaveWorld(const QString& worldPath);
    // At start: unsaved work that programs killed before their end left behind.
    void offerRecoveredWork();
    void CleanUpAndExit();
    // Puts the windows where the user left them, with the preferences and the recent
    // worlds; from then on they are kept again at the end.
    void RestoreSettings();
    // The help window comes back where the user left it.
    void keepHelpForm(QWidget& helpForm);
    void setIdleTimerInterval(int ms);
    // A menu item's command: the item works from now on, whenever its tab allows.
    void connectMenuCommand(const char* control, const std::function<void()>& work);
    // Save and Save As for commands that need the world saved first: each answers
    // whether the world now has a folder that holds it as it is.
    bool FileSaveMenuButton_Click();
    bool FileSaveAsMenuButton_Click();

    // Shows tab 0 (opening scene), 1 (animations) or 2 (events). Leaving the
    // opening scene keeps its state aside in the engine; coming back puts it back.
    // The world tabs follow; a change of the current tab by any way comes here.
    void SwitchToTab(int tab);

    QWidget* OpeningSceneFrame() const;
    ScriptPanel& scriptPanel() { return *scriptPanel_; }
    EventPanel& eventPanel() { return *eventPanel_; }
    ScenePanel& scenePanel() { return *scenePanel_; }
    CommandLineBar& commandLine() { return *commandLine_; }
    // Find and Replace, made the first time they are asked for.
    FindForm& findForm();
    // Add Object, Add Sound and Add Text, from the menu and from their buttons.
    AddingCommands& addingCommands() { return *adding_; }
    TrashCan& trashCan() { return *trashCan_; }
    // Cut, Copy, Paste and Delete; the code box is given to it once there is one.
    EditMenu& editMenu() { return *editMenu_; }
    // The client area, which places every control (Form_Resize).
    MainFormArea& area() { return *area_; }
    QTextEdit* OutputText() const { return outputText_; }
    WorldRun& worldRun() { return *run_; }
    // The code box beside the script, and whether it has the focus (its Tag is "1"):
    // the Edit menu then works on its text rather than on the script's lines.
    ArbitraryCodeBox& codeBox() { return *codeBox_; }
    bool CodeBoxHasFocus() const;
    // The script tree's font, as the font lists or the settings set it, onto the line
    // being built, the code box and the event rows.
    void ApplyScriptFont();
    // The script text: brings its line (from 1) to the top; selects the line and gives
    // the box the focus, answering the position of the line's first character.
    void ScrollErrorText(int line);
    int HighlightErrorText(int line);

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

    // WorldFilesView
    void showMessage(const QString& title, const QString& text,
                     const QString& details = QString()) override;
    Answer askSaveChanges() override;
    Answer askOverwrite(const QString& folder) override;
    bool askBringBack(const RecoveredWork& work) override;
    QString chooseWorldFolder(FolderUse use, const QString& startIn) override;
    CameraFrame cameraFrame() const override;
    void showHelpPage(const QString& page) override;
    void keepCameraWindowOnTop() override;

    // RunView
    void showSelectedTab(int tab) override;
    void showTabPage(int tab) override;
    void enableMenuItems(std::initializer_list<const char*> items, bool enabled) override;
    void showCodeBox(bool shown) override;
    ViewHostPlace openingSceneHost() const override;
    ViewHostPlace cameraWindowHost() const override;
    void showCameraWindow(bool shown) override;
    void focusCameraWindow() override;
    void showPerformPicture(PerformPicture picture) override;
    void showLightPicture(LightPicture picture) override;
    void showNotice(const QString& text) override;
    void showScriptText(const ScriptTextBox& box) override;
    void markCodeBoxLine(int line) override;
    // A diagnostic line in blue; off unless the program is built to trace.
    void LogMessage(const QString& text) override;

Q_SIGNALS:
    // A world's help page, to be shown beside the world.
    void helpPageWanted(const QString& page);

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
    // The row of the undo, Perform and traffic-light buttons; also makes the script text,
    // which the caller places.
    QWidget* buildRunControls(QWidget* parent);
    void connectRun();
    QWidget* buildCodeBox(QWidget* parent);
    void connectCodeBox();
    void chooseScriptFont(const QFont& font);
    void showWorldInCodeBoxes();
    void showCodeBoxOfWorld();
    void refreshWorldNames();
    void ScriptText_MouseUp(const QPoint& point);
    void ScriptTextOTFButton_Click();
    void showOnTheFlyButtons();
    void OnTheFlyButton_Click(int number);
    void mnuBlankRightB_Click(int row);
    QWidget* cameraViewHost() const;
    QToolButton* makeUndoButton(const QString& control, const QString& picture, QWidget* parent);
    // The buttons and menu entries by which things come into the scene.
    QWidget* buildAddingButtons(QWidget* parent);
    // Undoes the engine's last step.
    void UndoButton_MouseUp();
    // Undoes the newest change of the tab's own log: the script's, or the event rows'.
    void EditUndoTextMenuButton_Click();
    // Does again what the tab's own log undid last.
    void EditRedoTextMenuButton_Click();
    void showScriptUndoAvailable();
    // The Edit menu's Cut, Copy, Paste and Delete, and the node menu's rows for them.
    void connectEditCommands();
    void IdleTimer_Timer();
    void connectFileCommands();
    bool worldIsSaved() const;
    // The user trusts the open world's code, or no longer does.
    void mnuTrustWorld_Click(bool trusted);
    void showTrustOfWorld();
    void keepWindows();
    // The area that places the panels' controls (main_form_layout.cpp), and the picture
    // buttons that no panel makes.
    QWidget* buildArea(std::initializer_list<QWidget*> panels);
    void buildPictureButtons(QWidget* parent);
    // The mouse tools and the opening scene's options, under its camera view.
    QWidget* buildOpeningSceneTools(QWidget* parent);

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
    CommandLineBar* commandLine_ = nullptr; // under the script
    FindForm* findForm_ = nullptr;          // Owned by Qt.
    EventPanel* eventPanel_ = nullptr;      // on the events tab, above the script
    ScenePanel* scenePanel_ = nullptr;
    QToolButton* undoButton_ = nullptr;            // on the opening scene: the engine's undo
    QToolButton* scriptUndoButton_ = nullptr;      // on the script's tabs: the tab's own undo
    QToolButton* scriptRedoButton_ = nullptr;      // beside it: the tab's own redo
    AddingCommands* adding_ = nullptr;             // Owned by Qt.
    QWidget* lastAddingButton_ = nullptr;          // the camera view comes after it
    TrashCan* trashCan_ = nullptr;                 // beside the script's undo
    PictureButton* performScriptButton_ = nullptr; // runs the world
    PictureButton* trafficLightImage_ = nullptr;   // stops it and puts its start back
    CodeEditor* scriptText_ = nullptr;             // the world's Python, shown on demand
    FontLists* fontLists_ = nullptr;               // over the code box
    ArbitraryCodeBox* codeBox_ = nullptr;          // the user's own Python, under the script
    std::unique_ptr<WorldRun> run_;
    std::unique_ptr<CodeBoxRun> codeBoxRun_;
    // Keeps the engine stepping while a dialog or an external tool holds the
    // main loop.
    QTimer IdleTimer;
    // The camera window stays above the others: "Always keep this window on top".
    bool gCameraWindowOnTop;
    bool cleanedUp_ = false;
    std::unique_ptr<RegKeys> settings_;
    std::unique_ptr<WorldTrust> trust_;
    std::unique_ptr<RecoveryStore> recovery_;
    std::unique_ptr<WorldFiles> files_;
    std::unique_ptr<ArchiveDialogs> archiveDialogs_;
    std::unique_ptr<WorldArchive> archive_; // Import VES File, Send To A Friend
    std::unique_ptr<Autosave> autosave_;
    std::unique_ptr<EditMenu> editMenu_;
    std::unique_ptr<WindowKeeper> keeper_;
    RecentFilesMenu* recentFiles_ = nullptr;
    MouseToolsPanel* mouseTools_ = nullptr;
    MainFormArea* area_ = nullptr; // Owned by Qt.
    OpeningSceneOptions* openingSceneOptions_ = nullptr;
    WorldForm* worldForm_ = nullptr; // Owned by Qt; made the first time it is asked for
};

} // namespace vessa
