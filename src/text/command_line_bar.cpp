#include "text/command_line_bar.h"

#include "base/run_time_error.h"
#include "controls/accessible_names.h"
#include "controls/control_label.h"
#include "controls/picture_button.h"
#include "controls/tree_control.h"
#include "controls/tree_control_view.h"
#include "gateway/error_reporter.h"
#include "script/script_line.h"
#include "text/command_completion.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCompleter>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QStringListModel>

#include <limits>

namespace vessa {

namespace {

void addNamesBelow(const TreeNode* node, QStringList& names) {
    for (; node; node = node->Next()) {
        if (!node->Tag().isEmpty())
            names << node->Tag();
        addNamesBelow(node->Child(), names);
    }
}

// The full names of the scene's objects, in the order the tree shows them.
QStringList objectNamesOf(const TreeControl& objects) {
    QStringList names;
    addNamesBelow(objects.FirstRoot(), names);
    return names;
}

} // namespace

CommandLineBar::CommandLineBar(EngineLink& engine, ErrorReporter& reporter,
                               TreeControlView& treeFace, const TreeControl& objects,
                               QWidget* parent)
    : QWidget(parent), reporter_(reporter), runner_(engine, reporter), treeFace_(treeFace),
      objects_(objects), box_(new QComboBox(this)),
      go_(new PictureButton(QStringLiteral("Go"), QStringLiteral("GO"), this)),
      choices_(new QCompleter(this)), choiceWords_(new QStringListModel(this)) {
    box_->setObjectName(QStringLiteral("CommandLineBox"));
    box_->setEditable(true);
    // No completion from the history while typing: Enter must run what was typed.
    box_->setCompleter(nullptr);
    // The history is kept by the runner: the list shows it, Enter does not add to it.
    box_->setInsertPolicy(QComboBox::NoInsert);
    // A very long line must not make the box as wide as itself.
    box_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box_->setMinimumContentsLength(20);
    // A line is as long as the user makes it, not cut at a line edit's 32,767.
    box_->lineEdit()->setMaxLength(std::numeric_limits<int>::max());
    // The box has the focus and hands its keys to its line: both are watched.
    box_->installEventFilter(this);
    box_->lineEdit()->installEventFilter(this);
    go_->setObjectName(QStringLiteral("GoButton"));
    go_->setFocusPolicy(Qt::StrongFocus);
    treeFace_.setParent(this);
    treeFace_.installEventFilter(this);
    treeFace_.hide();
    auto* label = labelFor(box_, tr("Command:"));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(box_, 1);
    layout->addWidget(&treeFace_, 1);
    layout->addWidget(go_);
    setTabOrder(box_, &treeFace_);
    setTabOrder(&treeFace_, go_);

    choices_->setModel(choiceWords_);
    choices_->setWidget(box_->lineEdit());
    choices_->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    choices_->setCaseSensitivity(Qt::CaseInsensitive);
    connect(choices_, qOverload<const QString&>(&QCompleter::activated), this,
            [this](const QString& word) {
                QLineEdit* edit = box_->lineEdit();
                const QString line = edit->text();
                const int caret = edit->cursorPosition();
                const int start = completionWordStart(line, caret);
                edit->setText(line.left(start) + word + line.mid(caret));
                edit->setCursorPosition(start + static_cast<int>(word.size()));
            });
    // A line chosen from the list is selected whole, to run or to type over.
    connect(box_, &QComboBox::activated, this, [this] { box_->lineEdit()->selectAll(); });
    connect(box_, &QComboBox::editTextChanged, this, [this] { runner_.history().endWalk(); });
    connect(go_, &QToolButton::clicked, this, [this] { guarded([this] { GoButton_MouseUp(); }); });
    applyAccessibleNames(this);
}

bool CommandLineBar::CommandLineIsEmpty() const {
    return box_->currentText().trimmed().isEmpty();
}

void CommandLineBar::ExecuteCommandLine(const QString& line) {
    const QString ran = runner_.ExecuteCommandLine(line);
    QLineEdit* edit = box_->lineEdit();
    if (box_->count() == 0 || box_->itemText(0) != runner_.history().lines().first()) {
        // The list grows; the line typed stays in the box as it was typed.
        const QString typed = edit->text();
        const QSignalBlocker quiet(box_);
        box_->insertItem(0, ran);
        box_->setEditText(typed);
    }
    edit->deselect();
    edit->setCursorPosition(static_cast<int>(edit->text().size()));
}

void CommandLineBar::CommandLineBox_KeyPress13() {
    if (CommandLineIsEmpty()) {
        showHelp(CommandLineHelpTitle, CommandLineHelpText);
        box_->setEditText(QString());
        return;
    }
    ExecuteCommandLine(box_->currentText());
}

void CommandLineBar::GoButton_MouseUp() {
    if (treeFace_.isHidden()) {
        CommandLineBox_KeyPress13();
        return;
    }
    TreeControl& tree = treeFace_.Tree();
    if (!tree.FirstRoot()) {
        showHelp(GoButtonHelpTitle, GoButtonHelpText);
        tree.Clear();
        return;
    }
    ExecuteCommandLine(NormalizeLine(tree.FirstRoot()->Text()));
}

void CommandLineBar::switchFaces() {
    const bool toTree = treeFace_.isHidden();
    box_->setVisible(!toTree);
    treeFace_.setVisible(toTree);
    if (toTree)
        treeFace_.setFocus();
    else
        box_->setFocus();
}

void CommandLineBar::ObjectTree_NodeClick(const QString& objectName) {
    if (box_->isHidden())
        return;
    showLine(objectName);
}

void CommandLineBar::takeScriptLine(const QString& line, bool pythonLine) {
    if (!box_->isHidden()) {
        showLine(pythonLine ? line : NormalizeLine(line));
        return;
    }
    if (pythonLine)
        return;
    TreeControl& tree = treeFace_.Tree();
    if (TreeNode* node = tree.FirstRoot())
        tree.SetText(node, line);
    else
        tree.AddRoot(QString(), line);
}

void CommandLineBar::followClicksOn(TreeControlView& scriptView) {
    connect(&scriptView, &TreeControlView::MouseUp, this,
            [this, &scriptView](Qt::MouseButton button, const QPoint& point) {
                const TreeNode* node = scriptView.HitTest(point);
                // Lines only: an animation or a block is no line to run.
                if (button != Qt::LeftButton || !node || !node->Parent() || IsBlock(node->Text()))
                    return;
                takeScriptLine(node->Text(), node->Tag() == PythonLineTag);
            });
}

void CommandLineBar::showLine(const QString& line) {
    box_->setEditText(line);
    box_->lineEdit()->selectAll();
}

void CommandLineBar::showHelp(const QString& title, const QString& text) {
    auto* box = new QMessageBox(QMessageBox::Information, title, text, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

bool CommandLineBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        // F5 and F12 belong to the line ahead of the window's shortcuts for them.
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_F5 || key == Qt::Key_F12) {
            event->accept();
            return true;
        }
    }
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (watched == &treeFace_) {
        if (key->key() == Qt::Key_F5) {
            guarded([this] { GoButton_MouseUp(); });
            return true;
        }
        if (key->key() == Qt::Key_F12) {
            switchFaces();
            return true;
        }
        return false;
    }
    if ((watched == box_ || watched == box_->lineEdit()) &&
        !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
        return boxKey(key->key());
    return QWidget::eventFilter(watched, event);
}

bool CommandLineBar::boxKey(int key) {
    QLineEdit* edit = box_->lineEdit();
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F5:
        guarded([this] { CommandLineBox_KeyPress13(); });
        return true;
    case Qt::Key_F12:
        switchFaces();
        return true;
    case Qt::Key_Up:
        if (const std::optional<QString> line = runner_.history().older(edit->text())) {
            const QSignalBlocker quiet(box_);
            box_->setEditText(*line);
        }
        return true;
    case Qt::Key_Down:
        if (const std::optional<QString> line = runner_.history().newer()) {
            const QSignalBlocker quiet(box_);
            box_->setEditText(*line);
        }
        return true;
    case Qt::Key_Tab:
        return complete();
    default:
        return false;
    }
}

bool CommandLineBar::complete() {
    QLineEdit* edit = box_->lineEdit();
    const QString before = edit->text();
    const CommandCompletion done =
        completeCommandLine(before, edit->cursorPosition(), objectNamesOf(objects_));
    if (done.Text != before) {
        edit->setText(done.Text);
        edit->setCursorPosition(done.Caret);
    }
    if (done.Choices.isEmpty())
        return done.Text != before;
    choiceWords_->setStringList(done.Choices);
    choices_->complete();
    return true;
}

void CommandLineBar::guarded(const std::function<void()>& work) {
    // A failure ends the handler and is reported; it never reaches the event loop.
    try {
        work();
    } catch (const RunTimeError& error) {
        reporter_.reportHandlerFailure(error);
    }
}

} // namespace vessa
