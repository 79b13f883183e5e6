#pragma once

#include "export/friend_mail.h"
#include "export/mail_sender.h"

#include <QDialog>

class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QSpinBox;

namespace vessa {

// "eMail This World To My Friends": the world's title, the sender, the friends and the
// message. OK checks the fields and stays open, with a box, until they can be sent.
class EmailForm : public QDialog {
    Q_OBJECT
public:
    EmailForm(const FriendMail& preset, QWidget* parent = nullptr);
    FriendMail mail() const;

    void OkButton_Click();

private:
    QLineEdit* WorldName_;
    QLineEdit* MyName_;
    QLineEdit* myEmail_;
    QPlainTextEdit* friendsEmail_;
    QPlainTextEdit* myMessage_;
};

// The mail server, its port, security, account and the certificate it is trusted by, set
// once by the user.
class MailSettingsForm : public QDialog {
    Q_OBJECT
public:
    MailSettingsForm(const MailServer& server, QWidget* parent = nullptr);
    MailServer server() const;

private:
    QLineEdit* host_;
    QSpinBox* port_;
    QComboBox* security_;
    QLineEdit* user_;
    QLineEdit* password_;
    QLineEdit* caFile_;
};

} // namespace vessa
