#include "events/key_capture_form.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vessa {

KeyCaptureForm::KeyCaptureForm(QWidget* parent) : QDialog(parent), prompt_(new QLabel(this)) {
    setObjectName(QStringLiteral("KeyCaptureForm"));
    prompt_->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    // The keys go to the question, not to a button that Space or Enter would press.
    QPushButton* cancel = buttons->button(QDialogButtonBox::Cancel);
    cancel->setFocusPolicy(Qt::NoFocus);
    cancel->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prompt_);
    layout->addWidget(buttons);
    setFocusPolicy(Qt::StrongFocus);
}

void KeyCaptureForm::ask(const QString& keyEvent, const QString& prompt,
                         const QPoint& screenPoint) {
    keyEvent_ = keyEvent;
    setWindowTitle(keyEvent);
    prompt_->setText(prompt);
    setAccessibleDescription(prompt);
    adjustSize();
    move(screenPoint);
    open();
    activateWindow();
    setFocus();
}

void KeyCaptureForm::keyPressEvent(QKeyEvent* event) {
    const QString typed = event->text();
    if (event->key() == Qt::Key_Escape || typed.isEmpty() || !typed.at(0).isPrint()) {
        QDialog::keyPressEvent(event);
        return;
    }
    // Closed first: what the answer leads to may open the next window.
    QDialog::accept();
    Q_EMIT answered(keyEvent_, typed);
}

void KeyCaptureForm::reject() {
    QDialog::reject();
    Q_EMIT answered(keyEvent_, QString());
}

} // namespace vessa
