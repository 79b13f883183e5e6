#include "export/friend_mail.h"
#include "export/mail_sender.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <map>

// A world goes to friends as a real mail: the form's fields become the client's command
// line, and the client's mail reaches a real SMTP server on this machine with every
// address, the text and both files as they are on disk.

namespace {

using namespace vessa;

int freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

// Debian's aiosmtpd on the loopback address, keeping what it receives in a maildir; with
// a size limit it refuses bigger mail.
class SmtpServer {
public:
    explicit SmtpServer(const QString& maildir, int sizeLimit = 0) : port_(freePort()) {
        QStringList arguments{QStringLiteral("-m"),
                              QStringLiteral("aiosmtpd"),
                              QStringLiteral("-n"),
                              QStringLiteral("-l"),
                              QStringLiteral("127.0.0.1:%1").arg(port_),
                              QStringLiteral("-c"),
                              QStringLiteral("aiosmtpd.handlers.Mailbox")};
        if (sizeLimit > 0)
            arguments << QStringLiteral("-s") << QString::number(sizeLimit);
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
    ~SmtpServer() {
        server_.kill();
        server_.waitForFinished();
    }
    bool ready() const { return ready_; }
    MailServer address() const {
        MailServer server;
        server.host = QStringLiteral("127.0.0.1");
        server.port = port_;
        server.security = MailServer::Security::None;
        return server;
    }

private:
    int port_;
    QProcess server_;
    bool ready_ = false;
};

// One received mail: its headers by lower-case name, and its parts' decoded bytes by
// file name ("" for the text).
struct Received {
    std::map<QByteArray, QByteArray> headers;
    std::map<QString, QByteArray> parts;
};

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
    const QList<QByteArray> parts = message.mid(end + 2).split('\n');
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
    for (const QByteArray& line : parts) {
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

QList<Received> receivedIn(const QString& maildir) {
    QList<Received> mails;
    QDirIterator it(maildir + QStringLiteral("/new"), QDir::Files);
    while (it.hasNext()) {
        QFile file(it.next());
        file.open(QIODevice::ReadOnly);
        mails << parse(file.readAll());
    }
    return mails;
}

TEST(FriendMail, TheFormsFieldsBecomeTheClientsCommandLine) {
    FriendMail mail{QStringLiteral("Bunny World"), QStringLiteral("Ann \"A\" Lee"),
                    QStringLiteral("ann@school.example"),
                    QStringLiteral("bo@x.example, cy@x.example;\r\ndee@x.example:ed@x.example"),
                    QStringLiteral("Look at \"this\"!\r\nBye")};
    EXPECT_TRUE(checkFriendMail(mail).empty());
    EXPECT_EQ(vessaClientArguments(mail, QStringLiteral("/w/Bunny World/Bunny World.ves")),
              (QStringList{QStringLiteral("VessaClient"), QStringLiteral("Ann \"A\" Lee"),
                           QStringLiteral("ann@school.example"),
                           QStringLiteral("Look at  this ! Bye"), QStringLiteral("Bunny World"),
                           QStringLiteral("/w/Bunny World/Bunny World.ves"),
                           QStringLiteral("bo@x.example"), QStringLiteral("cy@x.example"),
                           QStringLiteral("dee@x.example"), QStringLiteral("ed@x.example")}));

    FriendMail missing = mail;
    missing.myMessage.clear();
    EXPECT_EQ(checkFriendMail(missing).title, QStringLiteral("Missing Information"));
    FriendMail noAt = mail;
    noAt.friendsEmail = QStringLiteral("bo at x");
    EXPECT_EQ(checkFriendMail(noAt).title, QStringLiteral("Invalid Address"));
}

class MailTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(scratch_.isValid());
        world_ = scratch_.filePath(QStringLiteral("Bunny World"));
        QDir().mkpath(world_);
        QByteArray archive;
        for (int i = 0; i < 100'000; ++i)
            archive.append(char(unsigned(i) * 2654435761u >> 24));
        write(world_ + QStringLiteral("/Bunny World.ves"), archive);
        write(world_ + QStringLiteral("/Bunny World.html"), "<html>\r\n<p>Bunny</p></html>\n");
    }
    static void write(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    static QByteArray read(const QString& path) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }
    OutgoingMail mailFromForm() {
        const FriendMail form{QStringLiteral("Bunny World"), QStringLiteral("Ann Lee"),
                              QStringLiteral("ann@school.example"),
                              QStringLiteral("bo@x.example,cy@x.example; dee@x.example"),
                              QStringLiteral("Hello!\r\nIt hops.")};
        QStringList line = vessaClientArguments(form, world_ + QStringLiteral("/Bunny World.ves"));
        QString why;
        return mailOfCommandLine(line.mid(1), &why);
    }

    QTemporaryDir scratch_;
    QString world_;
};

TEST_F(MailTest, TheMailArrivesWithEveryAddressTheTextAndBothFiles) {
    const QString maildir = scratch_.filePath(QStringLiteral("maildir"));
    SmtpServer server(maildir);
    ASSERT_TRUE(server.ready());
    const MailOutcome outcome = sendMail(server.address(), mailFromForm());
    ASSERT_TRUE(outcome.sent) << outcome.message.toStdString();
    EXPECT_TRUE(outcome.message.contains(QStringLiteral("dee@x.example")));

    const QList<Received> mails = receivedIn(maildir);
    ASSERT_EQ(mails.size(), 1);
    const Received& mail = mails.first();
    EXPECT_EQ(mail.headers.at("x-mailfrom"), "ann@school.example");
    EXPECT_EQ(mail.headers.at("x-rcptto"), "bo@x.example, cy@x.example, dee@x.example");
    EXPECT_EQ(mail.headers.at("from"), "Ann Lee <ann@school.example>");
    EXPECT_TRUE(mail.headers.at("subject").contains("Bunny World"));
    ASSERT_EQ(mail.parts.size(), 3u);
    EXPECT_TRUE(mail.parts.at(QString()).startsWith("Hello! It hops.\r\n"));
    EXPECT_EQ(mail.parts.at(QStringLiteral("Bunny World.ves")),
              read(world_ + QStringLiteral("/Bunny World.ves")));
    EXPECT_EQ(mail.parts.at(QStringLiteral("Bunny World.html")),
              read(world_ + QStringLiteral("/Bunny World.html")));
}

TEST_F(MailTest, AServerThatRefusesOrIsNotThereIsToldToTheUser) {
    const QString maildir = scratch_.filePath(QStringLiteral("maildir"));
    {
        SmtpServer refusing(maildir, 1000);
        ASSERT_TRUE(refusing.ready());
        const MailOutcome outcome = sendMail(refusing.address(), mailFromForm());
        EXPECT_FALSE(outcome.sent);
        EXPECT_TRUE(outcome.message.startsWith(QStringLiteral("The mail server 127.0.0.1:")))
            << outcome.message.toStdString();
        EXPECT_TRUE(receivedIn(maildir).isEmpty());
    }
    MailServer absent;
    absent.host = QStringLiteral("127.0.0.1");
    absent.port = freePort();
    absent.security = MailServer::Security::None;
    const MailOutcome outcome = sendMail(absent, mailFromForm());
    EXPECT_FALSE(outcome.sent);
    EXPECT_TRUE(outcome.message.contains(QStringLiteral("could not be reached")))
        << outcome.message.toStdString();
}

TEST_F(MailTest, TheUsersServerComesBeforeTheTeachersPreset) {
    const QString preset = scratch_.filePath(QStringLiteral("preset.ini"));
    const QString own = scratch_.filePath(QStringLiteral("own.ini"));
    MailServer teacher;
    teacher.host = QStringLiteral("smtp.school.example");
    teacher.port = 465;
    teacher.security = MailServer::Security::Tls;
    ASSERT_TRUE(saveMailServer(teacher, preset));
    EXPECT_EQ(loadMailServer(own, preset).host, teacher.host);
    EXPECT_EQ(loadMailServer(own, preset).security, MailServer::Security::Tls);
    MailServer mine = teacher;
    mine.host = QStringLiteral("smtp.home.example");
    mine.user = QStringLiteral("ann");
    ASSERT_TRUE(saveMailServer(mine, own));
    EXPECT_EQ(loadMailServer(own, preset).host, mine.host);
    EXPECT_EQ(loadMailServer(own, preset).user, QStringLiteral("ann"));
}

} // namespace
