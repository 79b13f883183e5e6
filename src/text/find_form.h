#pragma once

#include "text/code_text_find.h"
#include "text/script_find.h"
#include "text/script_replace.h"

#include <QDialog>
#include <QPlainTextEdit>
#include <QPointer>

#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace vessa {

class ScriptModel;

// Find and Replace over the script tree or a box of code, as the Edit menu opens it. It
// stays open over the main window without holding it. Which of the two it searches is
// decided each time it is opened: the code box when that has the focus, otherwise the
// script. The Find button's caption is where a find through the script stands ("Find",
// "Find Next", "Find Again"). Case is ignored unless Match case is checked.
class FindForm : public QDialog {
    Q_OBJECT
public:
    FindForm(ScriptModel& script, QWidget* parent);

    // The box of code that Find searches when it has the focus; nullptr for none.
    void setCodeBox(QPlainTextEdit* box) { codeBox_ = box; }
    // Asked when the form is opened: whether the code box is where the user works.
    void setCodeBoxHasFocus(std::function<bool()> query) { codeBoxHasFocus_ = std::move(query); }

    // Opens the form to find; to find and replace.
    void EditFindMenuButton_Click() { openFor(false); }
    void EditReplaceMenuButton_Click() { openFor(true); }
    // Whether the form searches the code box now rather than the script.
    bool searchesCodeBox() const { return searchesText_; }

    void FindButton_Click();
    void ReplaceButton_Click();
    void ReplaceAllButton_Click();

private:
    void openFor(bool replacing);
    FindOptions options() const;
    void restart();
    void showFindCaption();
    void noMoreMatches();
    void tellRefused(const QStringList& lines);
    void tellReplaced(const QString& told);

    ScriptModel& script_; // Not owned.
    ScriptFind treeFind_;
    ScriptReplace treeReplace_;
    CodeTextFind textFind_;
    QPointer<QPlainTextEdit> codeBox_;
    std::function<bool()> codeBoxHasFocus_;
    bool searchesText_ = false; // the code box, not the script (the form's whichWidget)
    QLineEdit* FindTextBox;
    QLabel* replaceLabel_;
    QLineEdit* ReplaceTextBox;
    QCheckBox* MatchCaseCheck;
    QCheckBox* WholeWordCheck;
    QPushButton* FindButton;
    QPushButton* ReplaceButton;
    QPushButton* ReplaceAllButton;
    QPushButton* CancelButton;
    QLabel* status_;
};

} // namespace vessa
