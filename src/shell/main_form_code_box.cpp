// The main window's side of the two boxes of Python: the code box beside the script,
// and the script text (the world's Python as a run hands it to the engine). Their keys,
// the script text's menu, and the marks of errors on their lines. What runs is the
// CodeBoxRun's and the WorldRun's; the code box's text is the world's.
#include "controls/list_control_view.h"
#include "controls/tree_control_view.h"
#include "events/event_panel.h"
#include "script/script_panel.h"
#include "script/vocabulary.h"
#include "shell/main_form.h"
#include "shell/render_form.h"
#include "shell/window_keeper.h"
#include "text/arbitrary_code_box.h"
#include "text/box_keys.h"
#include "text/code_editor.h"
#include "text/font_lists.h"
#include "text/python_highlighter.h"
#include "text/script_font.h"
#include "world/code_box_run.h"
#include "world/open_world.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMessageBox>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTextBlock>

namespace vessa {

namespace {

void addNames(const TreeNode* node, QStringList& names) {
    for (; node; node = node->Next()) {
        names << node->Text();
        addNames(node->Child(), names);
    }
}

// The right button on the script text, as a press or release of the button or as the
// menu key: the watcher says where, in the viewport's pixels.
class RightClickWatcher : public QObject {
public:
    RightClickWatcher(QPlainTextEdit* box, std::function<void(const QPoint&)> clicked)
        : QObject(box), clicked_(std::move(clicked)) {
        box->installEventFilter(this); // the menu key, where the focus is
        box->viewport()->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ContextMenu) {
            clicked_(static_cast<QContextMenuEvent*>(event)->pos());
            return true;
        }
        // The release, as the menu comes up after the click where the platform does not
        // tell of a menu of its own.
        if (event->type() == QEvent::MouseButtonRelease) {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() == Qt::RightButton && !QApplication::activePopupWidget())
                clicked_(mouse->position().toPoint());
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void(const QPoint&)> clicked_;
};

} // namespace

// The code box, hidden until the world or the user asks for it; the window places it
// under the script tree, with the divider between them, and the font lists over it.
QWidget* MainForm::buildCodeBox(QWidget* parent) {
    fontLists_ = new FontLists([this] { return scriptPanel_->TreeView1View().font(); }, parent);
    codeBox_ = new ArbitraryCodeBox(parent);
    codeBox_->editor().hide();
    return codeBox_;
}

void MainForm::connectCodeBox() {
    codeBoxRun_ = std::make_unique<CodeBoxRun>(state_, engine_, reporter_, world_, *run_, *this);
    connect(codeBox_, &ArbitraryCodeBox::edited, this, [this] {
        world_.ArbitraryCodeBox().Text = codeBox_->Text();
        world_.status().markModified();
    });
    connect(codeBox_, &ArbitraryCodeBox::runWanted, this, [this] { codeBoxRun_->RunCodeBox(); });
    connect(codeBox_, &ArbitraryCodeBox::runSelectionWanted, this,
            [this] { codeBoxRun_->RunCodeBoxSelection(codeBox_->selectedLines()); });
    connect(codeBox_, &ArbitraryCodeBox::undoWanted, this, [this] { codeBoxRun_->UndoKey(); });

    auto* keys = new BoxKeys(scriptText_);
    keys->add(Qt::Key_F5, [this] {
        codeBoxRun_->RunSelectedLine(scriptText_->toPlainText(), scriptText_->selectedLines());
    });
    keys->add(Qt::ALT | Qt::Key_P, [this] { run_->PerformScriptButton_MouseUp(); });
    keys->add(Qt::CTRL | Qt::Key_P, [this] {
        FileSaveMenuButton_Click();
        run_->PerformScriptButton_MouseUp();
    });
    keys->add(Qt::Key_F4, [this] { codeBoxRun_->UndoKey(); });
    new RightClickWatcher(scriptText_, [this](const QPoint& point) { ScriptText_MouseUp(point); });
    // The scene's objects come and go: the boxes colour those there are when the user
    // comes to them.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (now == &codeBox_->editor() || now == scriptText_)
            refreshWorldNames();
    });
    connectMenuCommand("ScriptTextOTFButton", [this] { ScriptTextOTFButton_Click(); });
    connect(&renderForm_, &RenderForm::onTheFlyButtonPressed, this,
            &MainForm::OnTheFlyButton_Click);
    world_.script().requests().registerHandler(
        ScriptRequest::Kind::BlankCommand,
        [this](const ScriptRequest& request) { mnuBlankRightB_Click(request.Number); });
    connect(fontLists_, &FontLists::fontChosen, this, &MainForm::chooseScriptFont);
    ApplyScriptFont();
}

// The chosen font is the user's for next time as well.
void MainForm::chooseScriptFont(const QFont& font) {
    scriptPanel_->TreeView1View().setFont(font);
    Preferences& preferences = keeper_->preferences();
    preferences.fontName = font.family();
    preferences.fontSize = qRound(font.pointSizeF());
    preferences.fontBold = font.bold();
    ApplyScriptFont();
}

void MainForm::ApplyScriptFont() {
    const QFont font = scriptPanel_->TreeView1View().font();
    scriptPanel_->CommandLineTreeviewView().setFont(font);
    codeBox_->editor().setFont(script_font::forCodeBox(font, codeBox_->editor().font()));
    eventPanel_->ListView1View().setFont(font);
    fontLists_->showFont(font);
}

// "Add Python Code Box" after a warning, and "Remove Python Code Box", which hides the
// box and keeps its text, still run with the world. The choice is kept for next time.
void MainForm::mnuBlankRightB_Click(int row) {
    const bool add = row == ScriptClicks::AddCodeBox;
    if (add && QMessageBox::warning(
                   this, QStringLiteral("Warning - Typing ahead"),
                   QStringLiteral("Warning! This will allow you to add Python Code to your "
                                  "script.\n\nIncorrect syntax WILL lead to errors.\n\nProceed "
                                  "only if you are very familiar with Vessa and Python."),
                   QMessageBox::Ok | QMessageBox::Cancel) != QMessageBox::Ok)
        return;
    if (!add && row != ScriptClicks::RemoveCodeBox)
        return;
    world_.ArbitraryCodeBox().Visible = add;
    showCodeBox(add);
    settings_->SetRegValue(RegistryRoot::LocalMachine, kPreferencesKey,
                           QStringLiteral("CodeBoxVisible"),
                           add ? QStringLiteral("True") : QStringLiteral("False"));
    if (add)
        codeBox_->editor().setFocus(Qt::OtherFocusReason);
}

bool MainForm::CodeBoxHasFocus() const {
    return codeBox_->Tag() == QStringLiteral("1");
}

// A world loaded or made new brings its own code box text, and the engine has dropped
// the old world's on-the-fly buttons.
void MainForm::showWorldInCodeBoxes() {
    showCodeBoxOfWorld();
    showOnTheFlyButtons();
}

void MainForm::showCodeBoxOfWorld() {
    codeBox_->showText(world_.ArbitraryCodeBox().Text);
    // The window hears the box shown or hidden, and gives its room to the script or back.
    codeBox_->editor().setVisible(world_.ArbitraryCodeBox().Visible);
    refreshWorldNames();
}

// The names the boxes colour: the world's commands and its objects as they are now.
void MainForm::refreshWorldNames() {
    QStringList commands;
    for (int command = 0; command < VocabularySize; ++command)
        if (!CommandNames(command).isEmpty())
            commands << CommandNames(command);
    QStringList objects;
    addNames(world_.trees().ObjectTree.FirstRoot(), objects);
    // Colouring anew tells of a change of the text, which it is not.
    const QSignalBlocker quietBox(&codeBox_->editor());
    const QSignalBlocker quietText(scriptText_);
    codeBox_->editor().highlighter().setWorldNames(commands, objects);
    scriptText_->highlighter().setWorldNames(commands, objects);
}

void MainForm::markCodeBoxLine(int line) {
    codeBox_->showText(world_.ArbitraryCodeBox().Text);
    codeBox_->markErrorLine(line);
}

void MainForm::ScrollErrorText(int line) {
    // The first line to the top whatever the position, then down to the line.
    QScrollBar* lines = scriptText_->verticalScrollBar();
    lines->setValue(lines->minimum());
    lines->setValue(std::min(lines->maximum(), line - 1));
}

int MainForm::HighlightErrorText(int line) {
    scriptText_->setFocus(Qt::OtherFocusReason);
    scriptText_->markLine(line - 1);
    return scriptText_->document()->findBlockByNumber(line - 1).position();
}

// The right button on a selection of the script text offers its menu.
void MainForm::ScriptText_MouseUp(const QPoint& point) {
    const QPoint global = scriptText_->viewport()->mapToGlobal(point);
    if (!scriptText_->textCursor().hasSelection()) {
        QMenu* standard = scriptText_->createStandardContextMenu(point);
        standard->setAttribute(Qt::WA_DeleteOnClose);
        standard->popup(global);
        return;
    }
    findChild<QMenu*>(QStringLiteral("ScriptTextMenuButton"))->popup(global);
}

// A button in the camera window that runs the selected Python each time it is pressed.
void MainForm::ScriptTextOTFButton_Click() {
    const QString code =
        scriptText_->isVisible()
            ? scriptText_->textCursor().selectedText().replace(QChar::ParagraphSeparator, u'\n')
            : QString();
    if (code.trimmed().isEmpty()) {
        QMessageBox::information(
            this, QStringLiteral("Vessa47 - On The Fly Button"),
            QStringLiteral("Select the lines of the world's Python (F12 shows it) that the button "
                           "is to run, then make the button."));
        return;
    }
    try {
        reporter_.CheckInterpreterResult(
            engine_.call(QStringLiteral("OnTheFlyButton"), {code}),
            QStringLiteral("MainForm:ScriptTextOTFButton_Click: Error making the button."));
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C,
                              QStringLiteral("VB:MainForm:ScriptTextOTFButton_Click() Error"), e);
    }
    showOnTheFlyButtons();
}

void MainForm::showOnTheFlyButtons() {
    if (engine_.isSet())
        renderForm_.showOnTheFlyButtons(
            engine_.call(QStringLiteral("GetOnTheFlyButtons")).toList());
}

void MainForm::OnTheFlyButton_Click(int number) {
    try {
        reporter_.CheckInterpreterResult(
            engine_.call(QStringLiteral("PressOnTheFlyButton"), {number}),
            QStringLiteral("MainForm:OnTheFlyButton_Click: Error pressing the button."));
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C,
                              QStringLiteral("VB:MainForm:OnTheFlyButton_Click() Error"), e);
    }
}

} // namespace vessa
