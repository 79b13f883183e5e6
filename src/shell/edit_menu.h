#pragma once

#include "world/edit_commands.h"

#include <QObject>
#include <QPointer>

#include <functional>

class QPlainTextEdit;
class QWidget;

namespace vessa {

class EventList;
class ScriptModel;

// The window side of Cut, Copy, Paste and Delete: it answers the node menu's rows 2 to 5
// through the script's requests, carries the Edit menu's commands to EditCommands, asks
// the "Delete Animation" question, tells why a paste was refused, and keeps the system
// clipboard: lines copied go there as plain text, marked as this program's own, so that
// text copied anywhere else later is known as newer.
//
// The code box is any QPlainTextEdit given to it, with the query that says whether it
// holds the keyboard; until one is given, the script tree is what the commands act on.
class EditMenu : public QObject, public EditView {
    Q_OBJECT
public:
    // tab answers the tab shown; dialogParent is where questions and refusals show.
    EditMenu(ScriptModel& script, EventList& events, std::function<int()> tab,
             QWidget& dialogParent);
    ~EditMenu() override;

    // The code box whose text Cut, Copy and Paste take while hasFocus answers true.
    void setCodeBox(QPlainTextEdit* box, std::function<bool()> hasFocus);
    // Runs one of the commands; a failure is reported, never passed on to the event loop.
    void run(const std::function<void(EditCommands&)>& command);

    // EditView
    bool codeBoxHasFocus() override;
    void cutCodeBoxText() override;
    void copyCodeBoxText() override;
    void pasteCodeBoxText() override;
    void askDeleteAnimation(std::function<void()> agreed) override;
    void offerPaste() override { Q_EMIT pasteOffered(); }
    void putScriptLines(const QString& text) override;
    QString foreignClipboardText() override;
    void refusePaste(const QString& message) override;

Q_SIGNALS:
    // Something was copied, here or, while the animations tab shows, in another program:
    // Paste is to be offered from now on.
    void pasteOffered();

private:
    ScriptModel& script_;   // Not owned.
    QWidget& dialogParent_; // Not owned.
    std::function<int()> tab_;
    QPointer<QPlainTextEdit> codeBox_;
    std::function<bool()> codeBoxHasFocus_;
    EditCommands commands_;
};

} // namespace vessa
