#include "script/text_input_box_form.h"

#include "controls/accessible_names.h"
#include "script/in_place_editors.h"

#include <QAccessible>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vessa {

TextInputBoxForm::TextInputBoxForm(TextInputBox& box, QWidget* parent)
    : QDialog(parent), box_(box), label1_(new QLabel(this)), text1_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("TextInputBoxForm"));
    label1_->setObjectName(QStringLiteral("Label1"));
    text1_->setObjectName(QStringLiteral("Text1"));
    label1_->setBuddy(text1_);
    label1_->hide(); // until there is a prompt
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    QPushButton* cancel =
        buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    ok->setObjectName(QStringLiteral("OKButton"));
    cancel->setObjectName(QStringLiteral("CancelButton"));
    ok->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label1_);
    layout->addWidget(text1_);
    layout->addWidget(buttons);
    connect(ok, &QPushButton::clicked, this, &TextInputBoxForm::OKButton_Click);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    applyAccessibleNames(this);
}

void TextInputBoxForm::BringUpTextWidget(const QPoint& screenPoint, const QString& title,
                                         const QString& prompt, const QString& text) {
    setWindowTitle(title);
    setPrompt(prompt);
    text1_->setText(text);
    adjustSize();
    move(screenPoint.x() - width() / 2, screenPoint.y());
    open();
    text1_->setFocus();
    text1_->selectAll();
}

void TextInputBoxForm::OKButton_Click() {
    const EditorAnswer answer = box_.OKButton_Click(text1_->text(), label1_->text());
    if (answer.Close) {
        accept();
        return;
    }
    setPrompt(answer.Label);
    text1_->setFocus();
    text1_->selectAll();
}

void TextInputBoxForm::setPrompt(const QString& prompt) {
    label1_->setText(prompt);
    label1_->setVisible(!prompt.isEmpty());
    // The field tells the prompt, the reason for a refusal included: a reader hears it
    // where the focus is.
    text1_->setAccessibleDescription(prompt);
    QAccessibleEvent changed(text1_, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}

} // namespace vessa
