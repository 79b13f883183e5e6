#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace vessa {

// The mail server a world is sent through, as the user (or a teacher, for a whole class)
// set it once.
struct MailServer {
    enum class Security { None, StartTls, Tls };
    QString host;
    int port = 587;
    Security security = Security::StartTls;
    QString user; // empty: the server takes mail without a login
    QString password;
    // The certificate (or certificates) that a server signed by a school's own authority
    // is trusted by; empty: the ones this computer trusts.
    QString caFile;

    bool complete() const { return !host.isEmpty() && port > 0 && port < 65536; }
};

// The server as the user set it in userFile, else as a teacher preset it in presetFile.
// A certificate file named without a folder is found beside the file that names it.
MailServer loadMailServer(const QString& userFile, const QString& presetFile);
bool saveMailServer(const MailServer& server, const QString& userFile);

// One world on its way to friends: who sends it, to whom, the message, and the files.
struct OutgoingMail {
    QString senderName;
    QString senderAddress;
    QString text;
    QString title; // the world's
    QStringList receivers;
    QStringList attachments; // paths
};

// The mail of the client's command line: the sender's name and address, the message,
// the world's title, its archive and then one argument for each friend's address. The
// world's page, when it stands beside the archive, goes with it. Empty receivers when
// the line is too short; why says so.
OutgoingMail mailOfCommandLine(const QStringList& arguments, QString* why);

// Whether the mail went out, and what to tell the user.
struct MailOutcome {
    bool sent = false;
    QString message;
};

// Sends mail through server over SMTP; keepGoing is asked now and then, and false stops.
MailOutcome sendMail(const MailServer& server, const OutgoingMail& mail,
                     const std::function<bool()>& keepGoing = {});

} // namespace vessa
