#pragma once

#include "world/script_error_place.h"

#include <QString>
#include <functional>
#include <initializer_list>

namespace vessa {

struct AppState;
class EngineLink;
class ErrorReporter;
class OpenWorld;

// The world's Python as the last run handed it to the engine, shown on demand. While it
// is shown, a run takes it as it stands, edits included.
struct ScriptTextBox {
    QString Text;
    bool Visible = false;
    int errorLine = -1; // the line (from 0) at which the engine found a mistake; -1 none
};

// Where the engine's camera view can stand: its host widget's id, and its size in pixels.
struct ViewHostPlace {
    qint64 id = 0;
    int width = 0;
    int height = 0;
};

// The window side of the tabs and of a run.
class RunView {
public:
    enum class PerformPicture { Plain, Again };
    enum class LightPicture { Reset, Stop };

    virtual ~RunView() = default;
    // The tab that the tab bar shows as the selected one.
    virtual void showSelectedTab(int tab) = 0;
    // The page of a tab: the opening scene (0), or the script with the block palette (1)
    // or with the event builder and the objects for events (2).
    virtual void showTabPage(int tab) = 0;
    // The items of the main menu, by control name.
    virtual void enableMenuItems(std::initializer_list<const char*> items, bool enabled) = 0;
    // The code box and its splitter, and the rows of the blank-space menu that add or
    // remove it.
    virtual void showCodeBox(bool shown) = 0;
    virtual ViewHostPlace openingSceneHost() const = 0;
    virtual ViewHostPlace cameraWindowHost() const = 0;
    virtual void showCameraWindow(bool shown) = 0;
    // The camera window becomes the active window.
    virtual void focusCameraWindow() = 0;
    virtual void showPerformPicture(PerformPicture picture) = 0;
    virtual void showLightPicture(LightPicture picture) = 0;
    // One line in black at the output's insertion point.
    virtual void PrintOutput(const QString& text) = 0;
    // Something the user should know of the world's Python, as a line of the output.
    virtual void showNotice(const QString& text) = 0;
    virtual void showScriptText(const ScriptTextBox& box) = 0;
    // The caret on line (from 0) of the code box, the line marked as an error's place.
    virtual void markCodeBoxLine(int line) = 0;
    // A diagnostic line; off unless the program is built to trace.
    virtual void LogMessage(const QString& text) = 0;
};

// The three tabs and the run of the open world. The tab decides what the scene is: on
// the opening scene the user edits the world's start; leaving it keeps that start aside
// in the engine (the handbasket), coming back puts it back. On the script tabs Perform
// runs the world's Python from the handbasket's state in the camera window, and the
// traffic light stops it and puts the start back.
//
// State: the selected tab (which may differ from the world's SceneScriptTab when a
// switch failed half way), whether the engine reports the world running, the text of
// the last run and where its hand-edited lines began. Owns no window: the view shows.
class WorldRun {
public:
    struct Preferences {
        // The stored "CodeBoxVisible" text; "" when none is stored.
        std::function<QString()> CodeBoxVisible;
        // Whether entering the animations tab backs up a named world's scene and script.
        bool BackupsEnabled = true;
    };

    WorldRun(AppState& state, EngineLink& engine, ErrorReporter& reporter, OpenWorld& world,
             Preferences preferences, RunView& view);
    WorldRun(const WorldRun&) = delete;
    WorldRun& operator=(const WorldRun&) = delete;

    // Tab 0 (opening scene), 1 (animations) or 2 (events). The tab already selected
    // only gets the camera view put where its tab wants it.
    void SwitchToTab(int tab);
    int selectedTab() const { return selectedTab_; }

    // Runs the world's Python from the start kept in the handbasket: generated anew,
    // unless the script text is shown, which then runs as it stands.
    void PerformScriptButton_MouseUp();
    // Stops the world and puts its start back.
    void TrafficLightImage_MouseUp();
    // What the engine reports of the world: running, or not.
    void SetWorldActive();
    void SetWorldIdle();
    bool WorldActive() const { return worldActive_; }

    const ScriptTextBox& ScriptText() const { return scriptText_; }
    // The user's edit of the shown script text.
    void editScriptText(const QString& text);
    // Shows the script text, or hides it; shown for the first time, it holds the world's
    // Python as it stands now.
    void flipScriptText();
    // Marks the line that an error of the user's code names, in the box that holds the
    // text that ran: the script text, or the code box (shown for it). Nothing is marked
    // for an error of other code, or when the line reads otherwise now.
    void markError(const ScriptErrorPlace& place);
    // Code of the boxes ran apart from a run of the world (see CodeBoxRun).
    void tellRan(RanText ran) { ran_ = ran; }
    // "Running <world> at <date>...", for the output.
    QString runningLine() const;

private:
    void toOpeningScene(int old);
    void toAnimations(int old);
    void toEvents(int old);
    void moveCameraView(int old);
    void applyCodeBoxPreference();
    void backUpScene();
    // The world's Python into the script text, and where its hand-edited part begins.
    void makePythonScript();

    AppState& state_;         // Not owned.
    EngineLink& engine_;      // Not owned.
    ErrorReporter& reporter_; // Not owned.
    OpenWorld& world_;        // Not owned.
    Preferences preferences_;
    RunView& view_;        // Not owned.
    int selectedTab_ = -1; // none before the first switch
    bool worldActive_ = false;
    ScriptTextBox scriptText_;
    int handEditedLine_ = 0; // the first line of the hand-edited part of the text that ran
    RanText ran_ = RanText::Other;
};

// A stored yes or no as the settings keep it: "True" or a number other than 0 is yes.
bool isStoredTrue(const QString& value);

} // namespace vessa
