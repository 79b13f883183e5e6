// The code box under the keys, the mouse and the clipboard of a user: its line label and
// focus tag, its own keys ahead of the window's shortcuts, indentation, its own undo,
// pastes it refuses, the colours of tricky Python, and the mark of an error's line.
#include "text/arbitrary_code_box.h"
#include "text/code_editor.h"
#include "text/python_highlighter.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <QVBoxLayout>
#include <gtest/gtest.h>

using namespace vessa;

namespace {

// The code box in a window, beside a line edit to take the focus away, with a window
// shortcut on Alt+P as the Perform button has.
struct BoxInWindow {
    QMainWindow window;
    ArbitraryCodeBox* box = new ArbitraryCodeBox;
    QLineEdit* other = new QLineEdit;
    QAction* perform = new QAction(&window);
    QAction* undoScript = new QAction(&window); // the Edit menu's undo of the script
    CodeEditor& editor = box->editor();

    BoxInWindow() {
        auto* page = new QWidget;
        auto* layout = new QVBoxLayout(page);
        layout->addWidget(other);
        layout->addWidget(box);
        window.setCentralWidget(page);
        perform->setShortcut(QKeySequence(Qt::ALT | Qt::Key_P));
        window.addAction(perform);
        undoScript->setShortcut(QKeySequence::Undo);
        window.addAction(undoScript);
        window.resize(500, 400);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        editor.setFocus();
        QApplication::processEvents();
    }
    QString label() const { return box->LineLabel().text(); }
    void type(const QString& text) { QTest::keyClicks(editor.viewport(), text); }
    void key(Qt::Key key, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QTest::keyClick(&editor, key, mods);
    }
    void paste(QMimeData* data) {
        QApplication::clipboard()->setMimeData(data);
        key(Qt::Key_V, Qt::ControlModifier);
    }
};

// The colour a character of the editor is drawn in by the highlighter.
QColor colourAt(const CodeEditor& editor, int line, int column) {
    const QTextBlock block = editor.document()->findBlockByNumber(line);
    for (const QTextLayout::FormatRange& range : block.layout()->formats())
        if (column >= range.start && column < range.start + range.length)
            return range.format.foreground().color();
    return {};
}

} // namespace

TEST(CodeBox, TheLineLabelAndTheTagFollowTheFocusAndTheCaretsLine) {
    BoxInWindow w;
    // Focused, the empty box is on its first line.
    EXPECT_EQ(w.box->Tag(), "1");
    EXPECT_TRUE(w.box->LineLabel().isVisible());
    EXPECT_EQ(w.label(), "Line: 1");
    w.type(QStringLiteral("a = 1"));
    w.key(Qt::Key_Return);
    w.type(QStringLiteral("b = 2"));
    EXPECT_EQ(w.label(), "Line: 2"); // a change refreshes it
    w.key(Qt::Key_Up);
    EXPECT_EQ(w.label(), "Line: 1");
    // Right at the end of the line goes to the next one, but only Up and Down tell.
    w.key(Qt::Key_End);
    w.key(Qt::Key_Right);
    EXPECT_EQ(w.editor.textCursor().blockNumber(), 1);
    EXPECT_EQ(w.label(), "Line: 1");
    w.key(Qt::Key_Down);
    w.key(Qt::Key_Up);
    EXPECT_EQ(w.label(), "Line: 1");
    // A click tells the line clicked.
    const QRect second =
        w.editor.cursorRect(QTextCursor(w.editor.document()->findBlockByNumber(1)));
    QTest::mouseClick(w.editor.viewport(), Qt::LeftButton, {}, second.center());
    EXPECT_EQ(w.label(), "Line: 2");

    w.other->setFocus();
    QApplication::processEvents();
    EXPECT_EQ(w.box->Tag(), "0");
    EXPECT_FALSE(w.box->LineLabel().isVisible());
}

TEST(CodeBox, ItsOwnKeysComeBeforeTheWindowsShortcutsAndNothingElseIsTaken) {
    BoxInWindow w;
    QSignalSpy run(w.box, &ArbitraryCodeBox::runWanted);
    QSignalSpy selection(w.box, &ArbitraryCodeBox::runSelectionWanted);
    QSignalSpy undo(w.box, &ArbitraryCodeBox::undoWanted);
    QSignalSpy perform(w.perform, &QAction::triggered);
    w.key(Qt::Key_P, Qt::ControlModifier);
    w.key(Qt::Key_P, Qt::AltModifier);
    w.key(Qt::Key_F5);
    w.key(Qt::Key_F4);
    EXPECT_EQ(run.count(), 2);
    EXPECT_EQ(selection.count(), 1);
    EXPECT_EQ(undo.count(), 1);
    EXPECT_EQ(perform.count(), 0);
    EXPECT_EQ(w.editor.toPlainText(), ""); // none of them typed anything
    // Outside the box the window's shortcut works as before.
    w.other->setFocus();
    QTest::keyClick(w.other, Qt::Key_P, Qt::AltModifier);
    EXPECT_EQ(perform.count(), 1);
    EXPECT_EQ(run.count(), 2);
}

TEST(CodeBox, TypingTellsEachChangeInTheWorldsLineEndsAndCtrlZUndoesIt) {
    BoxInWindow w;
    QSignalSpy edited(w.box, &ArbitraryCodeBox::edited);
    QSignalSpy undoScript(w.undoScript, &QAction::triggered);
    w.type(QStringLiteral("x = 1"));
    w.key(Qt::Key_Return);
    w.type(QStringLiteral("y"));
    EXPECT_EQ(w.box->Text(), "x = 1\r\ny");
    EXPECT_EQ(edited.count(), 7);
    w.key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(w.box->Text(), "x = 1\r\ny");
    while (w.editor.document()->isUndoAvailable())
        w.key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(w.box->Text(), "");
    EXPECT_EQ(undoScript.count(), 0); // the window's undo stays the script's

    // A world's text coming in is no edit of the user's, and can't be undone into the
    // text before it.
    const int before = edited.count();
    w.box->showText(QStringLiteral("a = 1\r\nb = 2\r\n"));
    EXPECT_EQ(edited.count(), before);
    EXPECT_EQ(w.editor.toPlainText(), "a = 1\nb = 2\n");
    EXPECT_EQ(w.box->Text(), "a = 1\r\nb = 2\r\n");
    EXPECT_FALSE(w.editor.document()->isUndoAvailable());
}

TEST(CodeBox, EnterKeepsIndentationAndTabAndShiftTabIndentWholeLines) {
    BoxInWindow w;
    w.type(QStringLiteral("def hop():"));
    w.key(Qt::Key_Return);
    w.type(QStringLiteral("x = 1"));
    w.key(Qt::Key_Return);
    w.type(QStringLiteral("y = 2"));
    EXPECT_EQ(w.editor.toPlainText(), "def hop():\n    x = 1\n    y = 2");
    // One undo takes back the line break and its blanks together.
    w.key(Qt::Key_Z, Qt::ControlModifier);
    w.key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(w.editor.toPlainText(), "def hop():\n    x = 1");
    w.key(Qt::Key_Return);
    w.type(QStringLiteral("y = 2"));

    // The two body lines selected (from the middle of one to the start of the other
    // counts both), Tab and Shift+Tab move them together.
    QTextCursor select(w.editor.document()->findBlockByNumber(1));
    select.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, 6);
    select.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    w.editor.setTextCursor(select);
    w.key(Qt::Key_Tab);
    EXPECT_EQ(w.editor.toPlainText(), "def hop():\n        x = 1\n        y = 2");
    w.key(Qt::Key_Backtab, Qt::ShiftModifier);
    w.key(Qt::Key_Backtab, Qt::ShiftModifier);
    w.key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(w.editor.toPlainText(), "def hop():\nx = 1\ny = 2");
    // Without a selection Tab puts blanks up to the next step at the caret.
    w.editor.moveCursor(QTextCursor::End);
    w.key(Qt::Key_Tab);
    EXPECT_EQ(w.editor.toPlainText(), "def hop():\nx = 1\ny = 2   ");
    // Esc moves on, Tab being the text's.
    w.key(Qt::Key_Escape);
    EXPECT_FALSE(w.editor.hasFocus());
}

TEST(CodeBox, RunsOfTheSelectionCoverTheLinesOfItsFirstAndLastCharacters) {
    BoxInWindow w;
    w.box->showText(QStringLiteral("a = 1\nb = 2\nc = 3\n"));
    QTextCursor caret(w.editor.document()->findBlockByNumber(1));
    w.editor.setTextCursor(caret);
    EXPECT_EQ(w.box->selectedLines(), (LineRange{1, 1, false}));
    // A selection of the second line with its line break runs that line only.
    caret.movePosition(QTextCursor::Down, QTextCursor::KeepAnchor);
    w.editor.setTextCursor(caret);
    EXPECT_EQ(w.box->selectedLines(), (LineRange{1, 1, true}));
    caret.movePosition(QTextCursor::Right, QTextCursor::KeepAnchor);
    w.editor.setTextCursor(caret);
    EXPECT_EQ(w.box->selectedLines(), (LineRange{1, 2, true}));
}

TEST(CodeBox, PastesOfBinaryOrOfTooMuchAreRefusedWithAMessageAndTheTextStays) {
    BoxInWindow w;
    w.type(QStringLiteral("keep = 1"));
    QSignalSpy edited(w.box, &ArbitraryCodeBox::edited);

    auto* binary = new QMimeData;
    binary->setData(QStringLiteral("text/plain"), QByteArray("\x7f"
                                                             "ELF\x00\x01\xff\xfe",
                                                             8));
    w.paste(binary);
    EXPECT_EQ(w.box->Text(), "keep = 1");
    EXPECT_TRUE(w.editor.lastPasteRefusal().contains("not plain text"));
    auto* box = w.editor.findChild<QMessageBox*>(QStringLiteral("PasteRefusedBox"));
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), w.editor.lastPasteRefusal());
    box->close();

    auto* megabyte = new QMimeData;
    megabyte->setText(QStringLiteral("x = 1\n").repeated(200'000));
    w.paste(megabyte);
    EXPECT_EQ(w.box->Text(), "keep = 1");
    EXPECT_TRUE(w.editor.lastPasteRefusal().contains("1,200,000"));
    EXPECT_EQ(edited.count(), 0);

    // Plain text comes in, and the box goes on working.
    auto* text = new QMimeData;
    text->setText(QStringLiteral("\nmore = 2"));
    w.editor.moveCursor(QTextCursor::End);
    w.paste(text);
    EXPECT_EQ(w.box->Text(), "keep = 1\r\nmore = 2");
    EXPECT_TRUE(w.editor.lastPasteRefusal().isEmpty());
}

TEST(CodeBox, ColoursFollowTrickyPythonAndTheWorldsNames) {
    BoxInWindow w;
    PythonHighlighter& colours = w.editor.highlighter();
    const auto look = [&](PythonHighlighter::Look which) {
        return colours.format(which).foreground().color();
    };
    colours.setWorldNames({QStringLiteral("Move")}, {QStringLiteral("Bunny")});
    w.box->showText(QStringLiteral("s = '''one # two\n"
                                   "it\\''' still\n"
                                   "'''; bunny.Move(Up, 2) # hop\n"
                                   "t = \"q\\\"x\" if True else 0\n"));
    EXPECT_EQ(colourAt(w.editor, 0, 6), look(PythonHighlighter::Look::String));
    EXPECT_EQ(colourAt(w.editor, 0, 10), look(PythonHighlighter::Look::String)); // no comment
    EXPECT_EQ(colourAt(w.editor, 1, 9), look(PythonHighlighter::Look::String));
    EXPECT_EQ(colourAt(w.editor, 2, 5), look(PythonHighlighter::Look::Object)); // any capitals
    EXPECT_EQ(colourAt(w.editor, 2, 11), look(PythonHighlighter::Look::Command));
    EXPECT_EQ(colourAt(w.editor, 2, 20), look(PythonHighlighter::Look::Number));
    EXPECT_EQ(colourAt(w.editor, 2, 24), look(PythonHighlighter::Look::Comment));
    EXPECT_EQ(colourAt(w.editor, 3, 7), look(PythonHighlighter::Look::String)); // after \"
    EXPECT_EQ(colourAt(w.editor, 3, 11), look(PythonHighlighter::Look::Keyword));
    EXPECT_EQ(colourAt(w.editor, 3, 14), look(PythonHighlighter::Look::Keyword));

    // Closing the string early colours the lines after it as code.
    QTextCursor first(w.editor.document()->findBlockByNumber(0));
    first.movePosition(QTextCursor::EndOfBlock);
    first.insertText(QStringLiteral("'''"));
    EXPECT_EQ(colourAt(w.editor, 1, 0), QColor());
    EXPECT_EQ(colourAt(w.editor, 2, 0), look(PythonHighlighter::Look::String)); // opens one
}

// The colours of every line, as (start, length, colour) triples.
QList<QList<int>> coloursOf(const QTextDocument& document) {
    QList<QList<int>> lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QList<int> line;
        for (const QTextLayout::FormatRange& range : block.layout()->formats())
            line << range.start << range.length << int(range.format.foreground().color().rgb());
        lines << line;
    }
    return lines;
}

TEST(CodeBox, AKeyThatRecoloursALongTextLeavesLinesForLaterTurnsThatEndAsIfAtOnce) {
    BoxInWindow w;
    const PythonHighlighter& colours = w.editor.highlighter();
    const QColor string = colours.format(PythonHighlighter::Look::String).foreground().color();
    const int lines = 4 * PythonHighlighter::kLinesPerTurn;
    w.box->showText(QStringLiteral("x = 1  # one\n").repeated(lines));
    // The third quote opens a string in three quotes over every line after it.
    w.editor.moveCursor(QTextCursor::Start);
    w.type(QStringLiteral("\"\"\""));
    EXPECT_TRUE(colours.colouringLater());
    EXPECT_EQ(colourAt(w.editor, PythonHighlighter::kLinesPerTurn / 2, 4), string);
    EXPECT_NE(colourAt(w.editor, lines - 2, 4), string);
    // Edits while lines wait: one closes the string far down, one above it opens another.
    const auto endOfLine = [&](int line, const QString& text) {
        QTextCursor at(w.editor.document()->findBlockByNumber(line));
        at.movePosition(QTextCursor::EndOfBlock);
        w.editor.setTextCursor(at);
        w.type(text);
    };
    endOfLine(3 * PythonHighlighter::kLinesPerTurn, QStringLiteral("\"\"\""));
    endOfLine(2 * PythonHighlighter::kLinesPerTurn + 7, QStringLiteral(" '''"));
    for (int turn = 0; turn < 100 && colours.colouringLater(); ++turn)
        QApplication::processEvents();
    EXPECT_FALSE(colours.colouringLater());

    // Every line as a highlighter colours the same text in one go.
    QTextDocument fresh;
    fresh.setPlainText(w.editor.toPlainText());
    PythonHighlighter once(&fresh);
    once.rehighlight();
    EXPECT_EQ(coloursOf(*w.editor.document()), coloursOf(fresh));
    EXPECT_EQ(colourAt(w.editor, lines - 2, 4), // code again after the closing quotes
              colours.format(PythonHighlighter::Look::Number).foreground().color());
}

TEST(CodeBox, TheMarkOfAnErrorsLineStaysThroughColouringAndGoesWithAnEdit) {
    BoxInWindow w;
    w.box->showText(QStringLiteral("a = 1\nprint(b)\nc = 3\n"));
    w.other->setFocus();
    w.box->markErrorLine(1);
    EXPECT_TRUE(w.editor.hasFocus());
    EXPECT_EQ(w.editor.textCursor().selectedText(), "print(b)");
    EXPECT_EQ(w.label(), "Line: 2");
    EXPECT_EQ(w.editor.markedLine(), 1);
    ASSERT_EQ(w.editor.extraSelections().size(), 1);
    w.editor.highlighter().setWorldNames({QStringLiteral("Move")}, {QStringLiteral("b")});
    EXPECT_EQ(w.editor.markedLine(), 1);
    w.key(Qt::Key_End);
    w.type(QStringLiteral(" "));
    EXPECT_EQ(w.editor.markedLine(), -1);
    EXPECT_TRUE(w.editor.extraSelections().isEmpty());
    w.box->markErrorLine(7); // past the end: nothing
    EXPECT_EQ(w.editor.markedLine(), -1);
}

TEST(CodeBox, TheMarginNumbersEveryLineAndWidensWithThem) {
    BoxInWindow w;
    const int narrow = w.editor.marginWidth();
    w.box->showText(QStringLiteral("x\n").repeated(1200));
    EXPECT_GT(w.editor.marginWidth(), narrow);
    auto* margin = w.editor.findChild<QWidget*>(QStringLiteral("LineNumberMargin"));
    ASSERT_NE(margin, nullptr);
    QApplication::processEvents();
    EXPECT_EQ(margin->width(), w.editor.marginWidth());
}
