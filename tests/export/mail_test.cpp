#include "export/friend_mail.h"
#include "export/mail_sender.h"

#include "support/smtp_server.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// A world goes to friends as a real mail: the form's fields become the client's command
// line, and the client's mail reaches a real SMTP server on this machine with every
// address, the text and both files as they are on disk.

namespace {

using namespace vessa;
using namespace vessa::testing;

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
        SmtpServer refusing(maildir, {.sizeLimit = 1000});
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

// Over STARTTLS and over TLS from the first byte, the mail goes only to a server whose
// certificate this computer trusts, here through the certificate file of the settings.
TEST_F(MailTest, OverTlsOnlyAServerWithATrustedCertificateGetsTheMail) {
    Certificate school;
    Certificate stranger;
    ASSERT_TRUE(makeCertificate(scratch_.path(), QStringLiteral("school"), &school));
    ASSERT_TRUE(makeCertificate(scratch_.path(), QStringLiteral("stranger"), &stranger));
    for (const MailServer::Security security :
         {MailServer::Security::StartTls, MailServer::Security::Tls}) {
        SCOPED_TRACE(int(security));
        const QString maildir = scratch_.filePath(QStringLiteral("maildir%1").arg(int(security)));
        SmtpServer server(maildir, {.security = security, .certificate = school});
        ASSERT_TRUE(server.ready());
        MailServer trusting = server.address();
        for (const QString& caFile : {QString(), stranger.certificate}) {
            trusting.caFile = caFile;
            const MailOutcome refused = sendMail(trusting, mailFromForm());
            EXPECT_FALSE(refused.sent);
            EXPECT_TRUE(refused.message.contains(
                QStringLiteral("this computer does not trust its certificate")))
                << refused.message.toStdString();
            EXPECT_TRUE(refused.message.contains(QStringLiteral("Nothing was sent.")));
        }
        EXPECT_TRUE(receivedIn(maildir).isEmpty());

        trusting.caFile = scratch_.filePath(QStringLiteral("missing.pem"));
        EXPECT_TRUE(sendMail(trusting, mailFromForm())
                        .message.startsWith(QStringLiteral("The certificate file")));

        trusting.caFile = school.certificate;
        const MailOutcome outcome = sendMail(trusting, mailFromForm());
        ASSERT_TRUE(outcome.sent) << outcome.message.toStdString();
        const QList<Received> mails = receivedIn(maildir);
        ASSERT_EQ(mails.size(), 1);
        EXPECT_EQ(mails.first().parts.at(QStringLiteral("Bunny World.ves")),
                  read(world_ + QStringLiteral("/Bunny World.ves")));
    }
}

// A server that does not offer STARTTLS gets nothing in the clear when the settings ask
// for it.
TEST_F(MailTest, StartTlsRefusesAServerThatOffersItNot) {
    const QString maildir = scratch_.filePath(QStringLiteral("maildir"));
    SmtpServer plain(maildir);
    ASSERT_TRUE(plain.ready());
    MailServer insisting = plain.address();
    insisting.security = MailServer::Security::StartTls;
    const MailOutcome outcome = sendMail(insisting, mailFromForm());
    EXPECT_FALSE(outcome.sent);
    EXPECT_TRUE(outcome.message.contains(QStringLiteral("offers no secure connection")))
        << outcome.message.toStdString();
    EXPECT_TRUE(receivedIn(maildir).isEmpty());
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

    // The teacher names the school's certificate as it lies beside the preset.
    const QString classroom = scratch_.filePath(QStringLiteral("SendToAFriend"));
    QDir().mkpath(classroom);
    write(classroom + QStringLiteral("/mail_server.ini"),
          "[MailServer]\nHost=smtp.school.example\nSecurity=tls\nPort=465\nCaFile=school.pem\n");
    const MailServer preset2 = loadMailServer(scratch_.filePath(QStringLiteral("none.ini")),
                                              classroom + QStringLiteral("/mail_server.ini"));
    EXPECT_EQ(preset2.caFile, classroom + QStringLiteral("/school.pem"));
    EXPECT_EQ(preset2.security, MailServer::Security::Tls);
}

} // namespace
