#include "support/smtp_server.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>

namespace vessa::testing {

namespace {

std::map<QByteArray, QByteArray> headersOf(const QByteArray& block) {
    std::map<QByteArray, QByteArray> headers;
    QByteArray last;
    for (const QByteArray& line : block.split('\n')) {
        if ((line.startsWith(' ') || line.startsWith('\t')) && !last.isEmpty()) {
            headers[last] += line.trimmed();
            continue;
        }
        const qsizetype colon = line.indexOf(':');
        if (colon > 0)
            headers[last = line.left(colon).toLower()] = line.mid(colon + 1).trimmed();
    }
    return headers;
}

Received parse(QByteArray message) {
    message.replace("\r\n", "\n");
    Received received;
    const qsizetype end = message.indexOf("\n\n");
    received.headers = headersOf(message.left(end));
    const QRegularExpression boundaryOf(QStringLiteral("boundary=\"?([^\";]+)\"?"));
    const QByteArray boundary =
        "--" +
        boundaryOf.match(QString::fromUtf8(received.headers["content-type"])).captured(1).toUtf8();
    QByteArray part;
    const auto finish = [&] {
        const qsizetype split = part.indexOf("\n\n");
        if (split < 0)
            return;
        const auto headers = headersOf(part.left(split));
        const QRegularExpression fileName(QStringLiteral("filename=\"([^\"]+)\""));
        const auto disposition = headers.find("content-disposition");
        const QString name =
            disposition == headers.end()
                ? QString()
                : fileName.match(QString::fromUtf8(disposition->second)).captured(1);
        received.parts[name] = QByteArray::fromBase64(part.mid(split + 2));
    };
    bool inPart = false;
    for (const QByteArray& line : message.mid(end + 2).split('\n')) {
        if (line.startsWith(boundary)) {
            if (inPart)
                finish();
            part.clear();
            inPart = !line.startsWith(boundary + "--");
            continue;
        }
        if (inPart)
            part += line + '\n';
    }
    return received;
}

} // namespace

bool makeCertificate(const QString& folder, const QString& name, Certificate* made) {
    made->certificate = QDir(folder).filePath(name + QStringLiteral(".pem"));
    made->key = QDir(folder).filePath(name + QStringLiteral(".key"));
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                   QStringLiteral("ec"), QStringLiteral("-pkeyopt"),
                   QStringLiteral("ec_paramgen_curve:prime256v1"), QStringLiteral("-nodes"),
                   QStringLiteral("-days"), QStringLiteral("2"), QStringLiteral("-subj"),
                   QStringLiteral("/CN=") + name, QStringLiteral("-addext"),
                   QStringLiteral("subjectAltName=DNS:localhost,IP:127.0.0.1"),
                   QStringLiteral("-keyout"), made->key, QStringLiteral("-out"),
                   made->certificate});
    return openssl.waitForFinished(60000) && openssl.exitStatus() == QProcess::NormalExit &&
           openssl.exitCode() == 0 && QFile::exists(made->certificate);
}

int freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

SmtpServer::SmtpServer(const QString& maildir, const Options& options)
    : port_(freePort()), security_(options.security) {
    QStringList arguments{QStringLiteral("-m"),
                          QStringLiteral("aiosmtpd"),
                          QStringLiteral("-n"),
                          QStringLiteral("-l"),
                          QStringLiteral("127.0.0.1:%1").arg(port_),
                          QStringLiteral("-c"),
                          QStringLiteral("aiosmtpd.handlers.Mailbox")};
    if (options.sizeLimit > 0)
        arguments << QStringLiteral("-s") << QString::number(options.sizeLimit);
    if (options.security == MailServer::Security::StartTls)
        arguments << QStringLiteral("--tlscert") << options.certificate.certificate
                  << QStringLiteral("--tlskey") << options.certificate.key;
    if (options.security == MailServer::Security::Tls)
        arguments << QStringLiteral("--smtpscert") << options.certificate.certificate
                  << QStringLiteral("--smtpskey") << options.certificate.key;
    server_.start(QStringLiteral("/usr/bin/python3"), arguments << maildir);
    // Ready once it takes connections.
    for (int attempt = 0; attempt < 300; ++attempt) {
        QTcpSocket probe;
        probe.connectToHost(QHostAddress::LocalHost, quint16(port_));
        if (probe.waitForConnected(100)) {
            ready_ = true;
            return;
        }
        server_.waitForFinished(100);
    }
}

SmtpServer::~SmtpServer() {
    server_.kill();
    server_.waitForFinished();
}

MailServer SmtpServer::address() const {
    MailServer server;
    server.host = QStringLiteral("127.0.0.1");
    server.port = port_;
    server.security = security_;
    return server;
}

QList<Received> receivedIn(const QString& maildir) {
    QList<Received> mails;
    QDirIterator it(maildir + QStringLiteral("/new"), QDir::Files);
    while (it.hasNext()) {
        QFile file(it.next());
        if (file.open(QIODevice::ReadOnly))
            mails << parse(file.readAll());
    }
    return mails;
}

} // namespace vessa::testing
