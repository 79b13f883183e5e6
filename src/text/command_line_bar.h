#pragma once

#include "text/command_line_runner.h"

#include <QWidget>

class QComboBox;
class QCompleter;
class QStringListModel;
class QToolButton;

namespace vessa {

class TreeControl;
class TreeControlView;

// The command line: one line for the engine, run at once. Two faces, one shown at a
// time, with the GO button beside them: CommandLineBox, where a line is typed and whose
// list is the history of lines run, and CommandLineTreeview, the one-line tree that
// shows a script line and takes drops. F12 changes faces; Enter and F5 run the line.
// In the box, Up and Down walk the history and Tab completes object names, commands
// and values from the words of the script's menus (a list comes up when several fit);
// a Tab with nothing to complete goes on to the next control.
class CommandLineBar : public QWidget {
    Q_OBJECT
public:
    // objects is the scene's object tree, whose names Tab completes. The tree face is
    // taken into the bar.
    CommandLineBar(EngineLink& engine, ErrorReporter& reporter, TreeControlView& treeFace,
                   const TreeControl& objects, QWidget* parent = nullptr);

    QComboBox& CommandLineBox() const { return *box_; }
    TreeControlView& CommandLineTreeview() const { return treeFace_; }
    QToolButton& GoButton() const { return *go_; }
    CommandLineRunner& runner() { return runner_; }

    // Runs the line; it stays in the box with the caret at its end.
    void ExecuteCommandLine(const QString& line);
    bool CommandLineIsEmpty() const;
    // An object clicked in the object tree: its name is written into the box, selected.
    void ObjectTree_NodeClick(const QString& objectName);
    // A script line clicked: the line, as the engine takes it, comes onto the face shown.
    void takeScriptLine(const QString& line, bool pythonLine);
    // Clicks on the lines of a script view put them on the command line.
    void followClicksOn(TreeControlView& scriptView);
    // F12: the other face.
    void switchFaces();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void CommandLineBox_KeyPress13();
    void GoButton_MouseUp();
    bool boxKey(int key);
    bool complete();
    void showLine(const QString& line);
    void showHelp(const QString& title, const QString& text);
    void guarded(const std::function<void()>& work);

    ErrorReporter& reporter_; // Not owned.
    CommandLineRunner runner_;
    TreeControlView& treeFace_;     // Owned by Qt, as a child of the bar.
    const TreeControl& objects_;    // Not owned.
    QComboBox* box_;                // Owned by Qt.
    QToolButton* go_;               // Owned by Qt.
    QCompleter* choices_;           // Owned by Qt.
    QStringListModel* choiceWords_; // Owned by Qt.
};

} // namespace vessa
