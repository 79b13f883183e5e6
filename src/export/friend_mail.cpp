#include "export/friend_mail.h"

namespace vessa {

MailFormProblem checkFriendMail(const FriendMail& mail) {
    for (const QString* field :
         {&mail.WorldName, &mail.MyName, &mail.myEmail, &mail.friendsEmail, &mail.myMessage})
        if (field->isEmpty())
            return {QStringLiteral("Missing Information"),
                    QStringLiteral("Please fill in all of the text fields.")};
    // Only the friends' addresses are looked at: the sender's is what the mail server knows.
    if (!mail.friendsEmail.contains(QLatin1Char('@')))
        return {QStringLiteral("Invalid Address"),
                QStringLiteral("An e-mail address you entered is invalid.\r\nPlease enter a "
                               "valid address.")};
    return {};
}

QStringList vessaClientArguments(const FriendMail& mail, const QString& archive) {
    QString friends = mail.friendsEmail;
    for (const char* separator : {"\r\n", ",", ";", ":"})
        friends.replace(QLatin1String(separator), QStringLiteral(" "));
    QString message = mail.myMessage;
    message.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    message.replace(QLatin1Char('"'), QLatin1Char(' '));
    return QStringList{QStringLiteral("VessaClient"),
                       mail.MyName,
                       mail.myEmail,
                       message,
                       mail.WorldName,
                       archive} +
           friends.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace vessa
