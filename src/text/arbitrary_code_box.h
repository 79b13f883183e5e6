#pragma once

#include "text/code_editing.h"

#include <QWidget>

class QLabel;

namespace vessa {

class CodeEditor;

// The code box: the Python the user writes by hand beside the script, with the number
// of the caret's line under it while the box has the focus. Its text is the world's;
// the owner keeps the two alike (edited() on each change of the user, showText() for
// a world that comes in). Typing is undone by the box itself (Ctrl+Z).
//
// Keys: Ctrl+P or Alt+P runs the box's text (runWanted), F5 the selected lines or the
// caret's line (runSelectionWanted), F4 undoes the engine's last step (undoWanted).
//
// State: Tag, "1" while the box has the focus and "0" otherwise, which tells the Edit
// menu whether it works on text or on the script's lines.
class ArbitraryCodeBox : public QWidget {
    Q_OBJECT
public:
    explicit ArbitraryCodeBox(QWidget* parent = nullptr);

    CodeEditor& editor() const { return *editor_; }
    QLabel& LineLabel() const { return *lineLabel_; }
    const QString& Tag() const { return tag_; }

    // The text with CR LF line ends, as the world keeps it.
    QString Text() const;
    // Shows the world's text; the change is not the user's, so edited() stays quiet
    // and the box's own undo begins again from it.
    void showText(const QString& text);

    // The lines a run of the selection covers (see CodeEditor::selectedLines).
    LineRange selectedLines() const;

    // The caret on line (from 0), the line selected and marked as the place of an error.
    void markErrorLine(int line);

Q_SIGNALS:
    void edited();
    void runWanted();
    void runSelectionWanted();
    void undoWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refreshLineLabel();

    CodeEditor* editor_; // Owned by Qt.
    QLabel* lineLabel_;  // Owned by Qt.
    QString tag_ = QStringLiteral("0");
    QString shown_; // the editor's text, as last seen
};

} // namespace vessa
