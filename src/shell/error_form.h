#pragma once

#include "gateway/error_display.h"

#include <QDialog>
#include <functional>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace vessa {

// The one dialog for internal errors and for errors in the user's code. Its copy
// button puts a dated report on the clipboard for a mail to support.
class ErrorForm : public QDialog {
    Q_OBJECT
public:
    using VersionSource = std::function<QString()>;
    ErrorForm(const ErrorFormContent& content, VersionSource version, QWidget* parent = nullptr);

    QString typeCaption() const;
    QString labelText() const;
    void Command1_Click();

private:
    ErrorFormContent content_; // the texts as given: the copy keeps their CR LF
    QLabel* ErrorTypeLabel_;
    QPlainTextEdit* ErrorLabel_;
    VersionSource version_;
};

// Shows ErrorForm modally, after one pump of events.
class QtErrorDisplay : public ErrorDisplay {
public:
    explicit QtErrorDisplay(ErrorForm::VersionSource version) : version_(std::move(version)) {}
    void showModal(const ErrorFormContent& content) override;

private:
    ErrorForm::VersionSource version_;
};

} // namespace vessa
