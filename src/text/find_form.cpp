#include "text/find_form.h"

#include "controls/accessible_names.h"
#include "script/script_model.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vessa {

namespace {

const QString FindTitle = QStringLiteral("Vessa - Find");
const QString ReplaceTitle = QStringLiteral("Vessa - Replace");

QPushButton* makeButton(const QString& name, const QString& caption, QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(name);
    return button;
}

} // namespace

FindForm::FindForm(ScriptModel& script, QWidget* parent)
    : QDialog(parent), script_(script), treeFind_(script.TreeView1()), treeReplace_(script),
      FindTextBox(new QLineEdit(this)), replaceLabel_(new QLabel(tr("Replace with :"), this)),
      ReplaceTextBox(new QLineEdit(this)), MatchCaseCheck(new QCheckBox(tr("Match &case"), this)),
      WholeWordCheck(new QCheckBox(tr("&Whole word"), this)),
      FindButton(makeButton(QStringLiteral("FindButton"), tr("Find"), this)),
      ReplaceButton(makeButton(QStringLiteral("ReplaceButton"), tr("&Replace"), this)),
      ReplaceAllButton(makeButton(QStringLiteral("ReplaceAllButton"), tr("Replace &All"), this)),
      CancelButton(makeButton(QStringLiteral("CancelButton"), tr("Cancel"), this)),
      status_(new QLabel(this)) {
    setObjectName(QStringLiteral("FindForm"));
    setWindowTitle(FindTitle);
    setModal(false);
    FindTextBox->setObjectName(QStringLiteral("FindTextBox"));
    ReplaceTextBox->setObjectName(QStringLiteral("ReplaceTextBox"));
    MatchCaseCheck->setObjectName(QStringLiteral("MatchCaseCheck"));
    WholeWordCheck->setObjectName(QStringLiteral("WholeWordCheck"));
    auto* findLabel = new QLabel(tr("Find :"), this);
    findLabel->setBuddy(FindTextBox);
    replaceLabel_->setBuddy(ReplaceTextBox);
    // Enter anywhere on the form finds, unless another button has the focus.
    FindButton->setDefault(true);

    auto* fields = new QGridLayout;
    fields->addWidget(findLabel, 0, 0);
    fields->addWidget(FindTextBox, 0, 1);
    fields->addWidget(replaceLabel_, 1, 0);
    fields->addWidget(ReplaceTextBox, 1, 1);
    auto* checks = new QHBoxLayout;
    checks->addWidget(MatchCaseCheck);
    checks->addWidget(WholeWordCheck);
    checks->addStretch(1);
    fields->addLayout(checks, 2, 1);
    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {FindButton, ReplaceButton, ReplaceAllButton, CancelButton})
        buttons->addWidget(button);
    buttons->addStretch(1);
    auto* columns = new QHBoxLayout;
    columns->addLayout(fields, 1);
    columns->addLayout(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addWidget(status_);

    connect(FindTextBox, &QLineEdit::textChanged, this, [this] { restart(); });
    connect(MatchCaseCheck, &QCheckBox::toggled, this, [this] { restart(); });
    connect(WholeWordCheck, &QCheckBox::toggled, this, [this] { restart(); });
    connect(FindButton, &QPushButton::clicked, this, &FindForm::FindButton_Click);
    connect(ReplaceButton, &QPushButton::clicked, this, &FindForm::ReplaceButton_Click);
    connect(ReplaceAllButton, &QPushButton::clicked, this, &FindForm::ReplaceAllButton_Click);
    connect(CancelButton, &QPushButton::clicked, this, &QDialog::hide);
    applyAccessibleNames(this);
}

void FindForm::openFor(bool replacing) {
    searchesText_ = codeBox_ && codeBoxHasFocus_ && codeBoxHasFocus_();
    setWindowTitle(replacing ? ReplaceTitle : FindTitle);
    for (QWidget* part :
         {static_cast<QWidget*>(replaceLabel_), static_cast<QWidget*>(ReplaceTextBox),
          static_cast<QWidget*>(ReplaceButton), static_cast<QWidget*>(ReplaceAllButton)})
        part->setVisible(replacing);
    status_->clear();
    show();
    raise();
    activateWindow();
    FindTextBox->selectAll();
    FindTextBox->setFocus();
}

FindOptions FindForm::options() const {
    return {MatchCaseCheck->isChecked(), WholeWordCheck->isChecked()};
}

void FindForm::restart() {
    treeFind_.restart();
    showFindCaption();
}

void FindForm::showFindCaption() {
    const ScriptFind::Step step = treeFind_.step();
    FindButton->setText(ScriptFind::Caption(step));
    FindButton->setAccessibleName(
        step == ScriptFind::Step::Find
            ? accessibleNameOf(QStringLiteral("FindButton"))
            : accessibleNameOf(QStringLiteral("FindButton"), ScriptFind::Caption(step)));
}

void FindForm::FindButton_Click() {
    status_->clear();
    if (searchesText_) {
        if (!codeBox_)
            return;
        QTextCursor cursor = codeBox_->textCursor();
        if (textFind_.ArbitraryCodeBox_FindText(cursor, FindTextBox->text(), options())) {
            codeBox_->setTextCursor(cursor);
            codeBox_->ensureCursorVisible();
        } else {
            noMoreMatches();
        }
        return;
    }
    const bool found = treeFind_.FindButton_Click(FindTextBox->text(), options());
    showFindCaption();
    if (!found)
        noMoreMatches();
}

void FindForm::ReplaceButton_Click() {
    status_->clear();
    if (searchesText_) {
        if (!codeBox_)
            return;
        QTextCursor cursor = codeBox_->textCursor();
        const bool next =
            textFind_.Replace(cursor, FindTextBox->text(), ReplaceTextBox->text(), options());
        codeBox_->setTextCursor(cursor);
        if (!next)
            noMoreMatches();
        return;
    }
    const ScriptReplaceResult result =
        treeReplace_.ReplaceInSelected(FindTextBox->text(), ReplaceTextBox->text(), options());
    if (!result.Refused.isEmpty()) {
        tellRefused(result.Refused);
        return;
    }
    FindButton_Click();
}

void FindForm::ReplaceAllButton_Click() {
    if (searchesText_) {
        if (codeBox_)
            tellReplaced(tr("%n place(s) changed.", nullptr,
                            CodeTextFind::ReplaceAll(*codeBox_->document(), FindTextBox->text(),
                                                     ReplaceTextBox->text(), options())));
        return;
    }
    const ScriptReplaceResult result =
        treeReplace_.ReplaceAll(FindTextBox->text(), ReplaceTextBox->text(), options());
    tellReplaced(tr("%n line(s) changed.", nullptr, result.Lines));
    if (!result.Refused.isEmpty())
        tellRefused(result.Refused);
}

void FindForm::noMoreMatches() {
    auto* box =
        new QMessageBox(QMessageBox::Information, FindTitle,
                        QStringLiteral("No more matches for \"") + FindTextBox->text() + u'"',
                        QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void FindForm::tellRefused(const QStringList& lines) {
    auto* box = new QMessageBox(
        QMessageBox::Warning, ReplaceTitle,
        tr("These lines were left as they were: with the change they would no longer be lines "
           "of the script, or an animation or a block would change more than its name, or "
           "get a name already used or one that is not only letters, numbers and "
           "blanks.\n\n") +
            lines.mid(0, 10).join(u'\n') +
            (lines.size() > 10 ? QStringLiteral("\n...") : QString()),
        QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void FindForm::tellReplaced(const QString& told) {
    status_->setText(told);
}

} // namespace vessa
