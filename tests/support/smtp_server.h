#pragma once

#include "export/mail_sender.h"

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QString>

#include <map>

// A real SMTP server for mail tests: Debian's aiosmtpd on the loopback address, keeping
// what it receives in a maildir, in the clear or behind TLS with a certificate made for
// the run.

namespace vessa::testing {

// A self-signed certificate for 127.0.0.1 and localhost, made with openssl: name.pem
// and name.key in folder. False, and nothing usable, when openssl failed.
struct Certificate {
    QString certificate{};
    QString key{};
};
bool makeCertificate(const QString& folder, const QString& name, Certificate* made);

class SmtpServer {
public:
    struct Options {
        // How the server speaks TLS: not at all, after STARTTLS (and only so), or from
        // the first byte.
        MailServer::Security security = MailServer::Security::None;
        Certificate certificate{};
        int sizeLimit = 0; // bigger mail is refused; 0: the server's own limit
    };
    SmtpServer(const QString& maildir, const Options& options);
    explicit SmtpServer(const QString& maildir) : SmtpServer(maildir, Options{}) {}
    ~SmtpServer();
    SmtpServer(const SmtpServer&) = delete;
    SmtpServer& operator=(const SmtpServer&) = delete;

    bool ready() const { return ready_; }
    // Where to send, with the security the server speaks; trusting no certificate of its own.
    MailServer address() const;

private:
    int port_;
    MailServer::Security security_;
    QProcess server_;
    bool ready_ = false;
};

int freePort();

// One received mail: its headers by lower-case name, and its parts' decoded bytes by
// file name ("" for the text).
struct Received {
    std::map<QByteArray, QByteArray> headers;
    std::map<QString, QByteArray> parts;
};
QList<Received> receivedIn(const QString& maildir);

} // namespace vessa::testing
