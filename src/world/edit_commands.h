#pragma once

#include "script/script_clipboard.h"

#include <QString>

#include <functional>

namespace vessa {

class EventList;
class ScriptModel;
class TreeNode;

// What the Edit commands need from the window: the code box, the question before an
// animation's event rows go, the system clipboard, and where Paste is offered.
class EditView {
public:
    virtual ~EditView() = default;

    // Whether the code box holds the keyboard: Cut and Copy then take its selected text.
    virtual bool codeBoxHasFocus() = 0;
    virtual void cutCodeBoxText() = 0;
    virtual void copyCodeBoxText() = 0;
    virtual void pasteCodeBoxText() = 0;
    // Asks whether an animation may go with the event rows that do it; agreed runs on OK,
    // later, and nothing on Cancel.
    virtual void askDeleteAnimation(std::function<void()> agreed) = 0;
    // Something was copied: Paste is offered from now on, in the Edit menu and as "Paste
    // Line" in the node menu.
    virtual void offerPaste() = 0;
    // Puts lines of the script on the system clipboard as plain text, marked as this
    // program's own copy.
    virtual void putScriptLines(const QString& text) = 0;
    // The text on the system clipboard when something else than this program's copy of
    // lines put it there (another program, a text box): the newest thing copied. Empty
    // when the clipboard holds the lines copied here, or no text.
    virtual QString foreignClipboardText() = 0;
    // A paste that could not be done, told to the user.
    virtual void refusePaste(const QString& message) = 0;
};

// The Edit menu's Cut, Copy, Paste and Delete and the node menu's "Cut Line", "Copy Line",
// "Paste Line" and "Delete Line", on what the user works on: on the animations tab the
// script tree, or the code box's text while it has the keyboard; on the events tab the
// event rows; on the opening scene nothing. Each change is one step of the tab's undo.
//
// Copying lines also puts their text on the system clipboard; a paste when the
// clipboard holds newer text from elsewhere, or nothing was copied, pastes that text
// as lines when every line of it is one, and otherwise says why not.
class EditCommands {
public:
    // tab answers the tab shown: 0 the opening scene, 1 the animations, 2 the events.
    EditCommands(ScriptModel& script, EventList& events, std::function<int()> tab, EditView& view);

    void EditCutMenuButton_Click();
    void EditCopyMenuButton_Click();
    void EditPasteMenuButton_Click();
    // Delete takes the tree's selected node even while the code box has the keyboard.
    void EditDeleteMenuButton_Click();
    // Rows 2 to 5 of the node menu: cut, copy, paste and delete on the script tree.
    void mnuNodeRightB_Click(int row);

    // Deletes the line, block or animation, asking first whether the event rows that do
    // an animation may go too.
    void DeleteLine(TreeNode* node);
    // Deletes the event list's selected row, if any.
    void DeleteRow();

    ScriptClipboard& scriptClipboard() { return clipboard_; }

private:
    void CutLine();
    void CopyLine();
    void PasteLine();
    // Runs work on node once the user agrees that its event rows go with it, at once
    // when it takes none. node may be gone by the time the user answers.
    void afterAgreement(TreeNode* node, const std::function<void(TreeNode*)>& work);

    ScriptModel& script_; // Not owned.
    EventList& events_;   // Not owned.
    std::function<int()> tab_;
    EditView& view_; // Not owned.
    ScriptClipboard clipboard_;
};

} // namespace vessa
