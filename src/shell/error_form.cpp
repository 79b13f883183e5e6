#include "shell/error_form.h"

#include "controls/accessible_names.h"
#include "shell/window_keeper.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QGridLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace vessa {

ErrorForm::ErrorForm(const ErrorFormContent& content, VersionSource version, QWidget* parent)
    : QDialog(parent), content_(content), ErrorTypeLabel_(new QLabel(this)),
      ErrorLabel_(new QPlainTextEdit(this)), version_(std::move(version)) {
    setObjectName(QStringLiteral("ErrorForm"));
    setWindowTitle(QStringLiteral("Vessa"));
    setModal(true);

    ErrorTypeLabel_->setObjectName(QStringLiteral("ErrorTypeLabel"));
    ErrorTypeLabel_->setWordWrap(true);
    ErrorTypeLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    ErrorTypeLabel_->setText(content.typeCaption);

    ErrorLabel_->setObjectName(QStringLiteral("ErrorLabel"));
    ErrorLabel_->setReadOnly(true);
    ErrorLabel_->setPlainText(content.labelText);

    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("OkButton"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    auto* copy = new QPushButton(QStringLiteral("&Copy"), this);
    copy->setObjectName(QStringLiteral("Command1"));
    connect(copy, &QPushButton::clicked, this, &ErrorForm::Command1_Click);

    auto* layout = new QGridLayout(this);
    layout->addWidget(ErrorTypeLabel_, 0, 0);
    layout->addWidget(copy, 0, 1, Qt::AlignTop);
    layout->addWidget(ErrorLabel_, 1, 0, 1, 2);
    layout->addWidget(ok, 2, 1);
    layout->setRowStretch(1, 1);
    layout->setColumnStretch(0, 1);

    const double perPixel = twipsPerPixel(parent);
    resize(qRound(content.widthTwips / perPixel), qRound(content.heightTwips / perPixel));
    applyAccessibleNames(this);
}

QString ErrorForm::typeCaption() const {
    return content_.typeCaption;
}
QString ErrorForm::labelText() const {
    return content_.labelText;
}

void ErrorForm::Command1_Click() {
    QClipboard* clipboard = QApplication::clipboard();
    clipboard->clear();
    clipboard->setText(
        clipboardReport(version_(), QDateTime::currentDateTime(), typeCaption(), labelText()));
}

void QtErrorDisplay::showModal(const ErrorFormContent& content) {
    QCoreApplication::processEvents();
    ErrorForm form(content, version_, QApplication::activeWindow());
    form.exec();
}

} // namespace vessa
