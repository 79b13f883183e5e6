#pragma once

#include <QString>
#include <QStringList>

namespace vessa {

// What "Send To A Friend..." asks in its form, one text a field.
struct FriendMail {
    QString WorldName;
    QString MyName;
    QString myEmail;
    QString friendsEmail;
    QString myMessage;
};

// Why the form can't be sent as it is: a box's title and text; empty when it can.
struct MailFormProblem {
    QString title;
    QString text;
    bool empty() const { return title.isEmpty(); }
};
MailFormProblem checkFriendMail(const FriendMail& mail);

// The mail client's command line after `jview`: the tool's name, the sender, the
// message on one line, the title, the archive and one argument for each address.
QStringList vessaClientArguments(const FriendMail& mail, const QString& archive);

} // namespace vessa
