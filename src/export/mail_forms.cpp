#include "export/mail_forms.h"

#include "controls/accessible_names.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>

namespace vessa {

namespace {

template <typename Field> Field* named(Field* field, const char* control) {
    field->setObjectName(QString::fromUtf8(control));
    return field;
}

// OK and Cancel, named, in the order Tab reaches them after the fields.
QDialogButtonBox* okAndCancel(QDialog* dialog) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("OkButton"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("CancelButton"));
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

// A text box in which Tab goes on to the next field instead of typing a tab.
QPlainTextEdit* textBox(const char* control, int lines, QWidget* parent) {
    auto* box = named(new QPlainTextEdit(parent), control);
    box->setTabChangesFocus(true);
    box->setFixedHeight(box->fontMetrics().lineSpacing() * lines + 12);
    return box;
}

} // namespace

EmailForm::EmailForm(const FriendMail& preset, QWidget* parent)
    : QDialog(parent), WorldName_(named(new QLineEdit(preset.WorldName, this), "WorldName")),
      MyName_(named(new QLineEdit(preset.MyName, this), "MyName")),
      myEmail_(named(new QLineEdit(preset.myEmail, this), "myEmail")),
      friendsEmail_(textBox("friendsEmail", 3, this)), myMessage_(textBox("myMessage", 5, this)) {
    setObjectName(QStringLiteral("EmailForm"));
    setWindowTitle(QStringLiteral("eMail This World To My Friends"));
    friendsEmail_->setPlainText(preset.friendsEmail);
    myMessage_->setPlainText(preset.myMessage);
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("&World Title:"), WorldName_);
    form->addRow(QStringLiteral("My &Name:"), MyName_);
    form->addRow(QStringLiteral("My &eMail:"), myEmail_);
    form->addRow(QStringLiteral("&Friends' eMail:"), friendsEmail_);
    form->addRow(QStringLiteral("My &Message:"), myMessage_);
    QDialogButtonBox* buttons = okAndCancel(this);
    connect(buttons, &QDialogButtonBox::accepted, this, &EmailForm::OkButton_Click);
    form->addRow(buttons);
    applyAccessibleNames(this);
    resize(460, sizeHint().height());
}

FriendMail EmailForm::mail() const {
    // Line ends as a form on Windows gave them: the addresses and the message are
    // taken apart and put on one line at CR LF.
    const auto crlf = [](QString text) {
        return text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    };
    return {WorldName_->text(), MyName_->text(), myEmail_->text(),
            crlf(friendsEmail_->toPlainText()), crlf(myMessage_->toPlainText())};
}

void EmailForm::OkButton_Click() {
    const MailFormProblem problem = checkFriendMail(mail());
    if (!problem.empty()) {
        QMessageBox::warning(this, problem.title, problem.text);
        return;
    }
    accept();
}

MailSettingsForm::MailSettingsForm(const MailServer& server, QWidget* parent)
    : QDialog(parent), host_(named(new QLineEdit(server.host, this), "MailServerHost")),
      port_(named(new QSpinBox(this), "MailServerPort")),
      security_(named(new QComboBox(this), "MailServerSecurity")),
      user_(named(new QLineEdit(server.user, this), "MailServerUser")),
      password_(named(new QLineEdit(server.password, this), "MailServerPassword")),
      caFile_(named(new QLineEdit(server.caFile, this), "MailServerCertificate")) {
    setObjectName(QStringLiteral("MailSettingsForm"));
    setWindowTitle(QStringLiteral("Vessa47 - Mail Settings"));
    port_->setRange(1, 65535);
    port_->setValue(server.port);
    security_->addItems(
        {QStringLiteral("None"), QStringLiteral("STARTTLS"), QStringLiteral("SSL/TLS")});
    security_->setCurrentIndex(int(server.security));
    password_->setEchoMode(QLineEdit::Password);
    auto* form = new QFormLayout(this);
    auto* explanation = new QLabel(QStringLiteral("The mail server that sends your worlds. Your "
                                                  "teacher or your mail provider can tell you."),
                                   this);
    explanation->setWordWrap(true);
    form->addRow(explanation);
    form->addRow(QStringLiteral("Mail &server:"), host_);
    form->addRow(QStringLiteral("&Port:"), port_);
    form->addRow(QStringLiteral("S&ecurity:"), security_);
    form->addRow(QStringLiteral("&User name:"), user_);
    form->addRow(QStringLiteral("Pass&word:"), password_);
    caFile_->setPlaceholderText(QStringLiteral("This computer's own"));
    auto* browse =
        named(new QPushButton(QStringLiteral("&Browse..."), this), "MailServerCertificateBrowse");
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString file = QFileDialog::getOpenFileName(
            this, QStringLiteral("Trusted Certificate"), caFile_->text(),
            QStringLiteral("Certificates (*.pem *.crt *.cer);;All Files (*)"));
        if (!file.isEmpty())
            caFile_->setText(file);
    });
    auto* certificate = new QHBoxLayout;
    certificate->addWidget(caFile_);
    certificate->addWidget(browse);
    auto* certificateLabel = new QLabel(QStringLiteral("&Trusted certificate:"), this);
    certificateLabel->setBuddy(caFile_);
    form->addRow(certificateLabel, certificate);
    QDialogButtonBox* buttons = okAndCancel(this);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        if (host_->text().trimmed().isEmpty()) {
            QMessageBox::warning(this, QStringLiteral("Missing Information"),
                                 QStringLiteral("Please name the mail server."));
            return;
        }
        accept();
    });
    form->addRow(buttons);
    applyAccessibleNames(this);
    resize(460, sizeHint().height());
}

MailServer MailSettingsForm::server() const {
    return {host_->text().trimmed(),
            port_->value(),
            static_cast<MailServer::Security>(security_->currentIndex()),
            user_->text(),
            password_->text(),
            caFile_->text().trimmed()};
}

} // namespace vessa
