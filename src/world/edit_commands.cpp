#include "world/edit_commands.h"

#include "controls/node_ref.h"
#include "events/event_list.h"
#include "script/script_clicks.h"
#include "script/script_lines_text.h"
#include "script/script_model.h"

namespace vessa {

namespace {

constexpr int EventsTab = 2;
constexpr int AnimationsTab = 1;

} // namespace

EditCommands::EditCommands(ScriptModel& script, EventList& events, std::function<int()> tab,
                           EditView& view)
    : script_(script), events_(events), tab_(std::move(tab)), view_(view), clipboard_(script) {
}

void EditCommands::EditCutMenuButton_Click() {
    const int tab = tab_();
    if (tab == EventsTab) {
        if (const ListRow* row = events_.ListView1().SelectedItem()) {
            events_.CutRow(row);
            view_.offerPaste();
        }
    } else if (tab == AnimationsTab) {
        if (!view_.codeBoxHasFocus()) {
            CutLine();
            return;
        }
        view_.cutCodeBoxText();
        view_.offerPaste();
    }
}

void EditCommands::EditCopyMenuButton_Click() {
    const int tab = tab_();
    if (tab == EventsTab) {
        if (const ListRow* row = events_.ListView1().SelectedItem())
            events_.rowClipboard().Copy(*row);
        view_.offerPaste();
    } else if (tab == AnimationsTab) {
        if (!view_.codeBoxHasFocus()) {
            CopyLine();
            return;
        }
        view_.copyCodeBoxText();
        view_.offerPaste();
    }
}

void EditCommands::EditPasteMenuButton_Click() {
    const int tab = tab_();
    if (tab == EventsTab)
        events_.PasteRow();
    else if (tab == AnimationsTab && view_.codeBoxHasFocus())
        view_.pasteCodeBoxText();
    else if (tab == AnimationsTab)
        PasteLine();
}

void EditCommands::EditDeleteMenuButton_Click() {
    const int tab = tab_();
    if (tab == EventsTab)
        DeleteRow();
    else if (tab == AnimationsTab)
        if (TreeNode* node = script_.TreeView1().SelectedItem())
            DeleteLine(node);
}

void EditCommands::mnuNodeRightB_Click(int row) {
    switch (row) {
    case ScriptClicks::CutLine:
        CutLine();
        return;
    case ScriptClicks::CopyLine:
        CopyLine();
        return;
    case ScriptClicks::PasteLine:
        PasteLine();
        return;
    case ScriptClicks::DeleteLine:
        if (TreeNode* node = script_.TreeView1().SelectedItem())
            DeleteLine(node);
        return;
    default:
        return;
    }
}

void EditCommands::CutLine() {
    TreeNode* node = script_.TreeView1().SelectedItem();
    if (!node)
        return;
    afterAgreement(node, [this](TreeNode* agreed) {
        const QString lines = ScriptLinesText(agreed);
        clipboard_.Cut(agreed);
        view_.putScriptLines(lines);
        view_.offerPaste();
    });
}

void EditCommands::CopyLine() {
    if (const TreeNode* node = script_.TreeView1().SelectedItem()) {
        clipboard_.Copy(node);
        view_.putScriptLines(ScriptLinesText(node));
    }
    view_.offerPaste();
}

void EditCommands::PasteLine() {
    const QString text = view_.foreignClipboardText();
    if (text.isEmpty()) {
        clipboard_.Paste();
        return;
    }
    if (const QString problem = clipboard_.PasteText(text); !problem.isEmpty())
        view_.refusePaste(problem);
}

void EditCommands::DeleteLine(TreeNode* node) {
    afterAgreement(node, [this](TreeNode* agreed) { script_.DeleteNode(agreed); });
}

void EditCommands::DeleteRow() {
    if (const ListRow* row = events_.ListView1().SelectedItem())
        events_.DeleteRow(row);
}

void EditCommands::afterAgreement(TreeNode* node, const std::function<void(TreeNode*)>& work) {
    if (!script_.DeleteTakesEventRows(node)) {
        work(node);
        return;
    }
    const NodeRef line = NodeRef::To(script_.TreeView1(), node);
    view_.askDeleteAnimation([line, work] {
        if (TreeNode* still = line.Get())
            work(still);
    });
}

} // namespace vessa
