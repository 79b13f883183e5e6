#pragma once

#include "text/code_editing.h"

#include <QPlainTextEdit>

namespace vessa {

class PythonHighlighter;

// A box of Python text in Courier New: the lines are numbered in a margin on its left
// and coloured; Tab and Shift+Tab indent and unindent the caret's line or every
// selected line, Enter keeps the line's indentation (one step more after a line that
// opens a block), and Esc moves on to the next control, since Tab stays in the text.
// A paste that is no text, or would make the box too long, is refused with a message
// and the box stays as it was. One line can be marked, as the place of an error, until
// the text next changes.
class CodeEditor : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit CodeEditor(QWidget* parent = nullptr);

    PythonHighlighter& highlighter() const { return *highlighter_; }
    // Puts the caret on line (from 0), selects it and marks it; a line past the end
    // marks nothing. The view scrolls to it.
    void markLine(int line);
    // The line marked; -1 when none is.
    int markedLine() const { return markedLine_; }
    // The lines a run of the selection covers: from the line of the selection's start
    // to that of its last character (a selection that ends with a line's line break
    // runs that line only); the caret's line alone when nothing is selected.
    LineRange selectedLines() const;
    // The width of the margin of line numbers, in pixels.
    int marginWidth() const;
    // Why the last paste was refused; empty when none was.
    const QString& lastPasteRefusal() const { return lastRefusal_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    friend class LineNumberMargin;
    void paintMargin(QPaintEvent* event);
    void fitMargin();
    void fitTabStops();
    void indentSelection(bool unindent);
    void newLine();
    void showMark();

    QWidget* margin_;                // Owned by Qt.
    PythonHighlighter* highlighter_; // Owned by Qt.
    int markedLine_ = -1;
    QString lastRefusal_;
};

} // namespace vessa
