#include "app/program_run.h"
#include "export/friend_mail.h"
#include "support/smtp_server.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>
#include <zip.h>

// A world leaves as mail and comes back as a world, through the real processes: the mail
// client started by the home folder's jview with the program's own command line, and the
// program's File menu driven as a user would.

namespace {

using namespace vessa;
using namespace vessa::testing;

const QString kJview = QStringLiteral(VESSA_HOME_DIR "/bin/jview");

QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// The mail server's settings as a teacher or a user writes them.
QByteArray serverSettings(const MailServer& server) {
    const char* security = server.security == MailServer::Security::Tls        ? "tls"
                           : server.security == MailServer::Security::StartTls ? "starttls"
                                                                               : "none";
    return "[MailServer]\nHost=" + server.host.toUtf8() +
           "\nPort=" + QByteArray::number(server.port) + "\nSecurity=" + security +
           "\nCaFile=" + server.caFile.toUtf8() + '\n';
}

// What arrived in maildir once something did, within a minute.
QList<Received> awaitMail(const QString& maildir) {
    const QDeadlineTimer deadline(60000);
    QList<Received> mails;
    while ((mails = receivedIn(maildir)).isEmpty() && !deadline.hasExpired())
        QThread::msleep(50);
    return mails;
}

// A header or a part of mail, empty when it has none.
QByteArray header(const Received& mail, const QByteArray& name) {
    const auto found = mail.headers.find(name);
    return found == mail.headers.end() ? QByteArray() : found->second;
}
QByteArray part(const Received& mail, const QString& name) {
    const auto found = mail.parts.find(name);
    return found == mail.parts.end() ? QByteArray() : found->second;
}

struct ToolRun {
    int exitCode = -1;
    QString errors;
};

// jview with arguments in folder, headless, the driver closing the client's boxes; with
// the user's settings in configFolder.
ToolRun runJview(const QStringList& arguments, const QString& folder, const QString& configFolder) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("vessatestdriver"));
    env.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(VESSA_TEST_PLUGIN_DIR));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), configFolder);
    QProcess process;
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(folder);
    process.start(kJview, arguments);
    ToolRun run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.errors = QString::fromLocal8Bit(process.readAllStandardError());
    return run;
}

class SendAndImport : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(scratch_.isValid());
        ASSERT_TRUE(makeCertificate(scratch_.path(), QStringLiteral("school"), &school_));
    }
    QString path(const QString& name) const { return scratch_.filePath(name); }

    QTemporaryDir scratch_;
    Certificate school_;
};

// The client gets the command line the program builds from the form, through jview, in
// the classroom's folder with the teacher's preset: over TLS, with the school's
// certificate beside the preset, the mail arrives with both files byte for byte; without
// that certificate the user is told and nothing goes out.
TEST_F(SendAndImport, JviewStartsTheMailClientWhichSendsOnlyToATrustedServer) {
    const QString world = path(QStringLiteral("Worlds/Bunny World"));
    QByteArray archive;
    for (int i = 0; i < 50'000; ++i)
        archive.append(char(unsigned(i) * 2654435761u >> 24));
    ASSERT_TRUE(write(world + QStringLiteral("/Bunny World.ves"), archive));
    ASSERT_TRUE(write(world + QStringLiteral("/Bunny World.html"), "<html><p>Bunny</p></html>\n"));
    const FriendMail form{QStringLiteral("Bunny World"), QStringLiteral("Ann \"A\" Lee"),
                          QStringLiteral("ann@school.example"),
                          QStringLiteral("bo@x.example,\r\ncy@x.example"),
                          QStringLiteral("Look at \"this\"!\r\nBye")};
    const QStringList line = vessaClientArguments(form, world + QStringLiteral("/Bunny World.ves"));

    const QString maildir = path(QStringLiteral("maildir"));
    SmtpServer server(maildir, {.security = MailServer::Security::Tls, .certificate = school_});
    ASSERT_TRUE(server.ready());
    const QString classroom = path(QStringLiteral("SendToAFriend"));
    MailServer preset = server.address();
    preset.caFile = QStringLiteral("school.pem");
    ASSERT_TRUE(write(classroom + QStringLiteral("/mail_server.ini"), serverSettings(preset)));
    ASSERT_TRUE(QFile::copy(school_.certificate, classroom + QStringLiteral("/school.pem")));

    const ToolRun sent = runJview(line, classroom, path(QStringLiteral("config")));
    ASSERT_EQ(sent.exitCode, 0) << sent.errors.toStdString();
    EXPECT_TRUE(sent.errors.contains(
        QStringLiteral("driver: box: Vessa47 - Send To A Friend | Your world \"Bunny World\" was "
                       "sent to bo@x.example, cy@x.example.")))
        << sent.errors.toStdString();
    const QList<Received> mails = receivedIn(maildir);
    ASSERT_EQ(mails.size(), 1);
    const Received& mail = mails.first();
    EXPECT_EQ(header(mail, "x-rcptto"), "bo@x.example, cy@x.example");
    EXPECT_EQ(header(mail, "from"), "Ann \"A\" Lee <ann@school.example>");
    EXPECT_TRUE(part(mail, QString()).startsWith("Look at  this ! Bye\r\n"));
    EXPECT_EQ(part(mail, QStringLiteral("Bunny World.ves")), archive);
    EXPECT_EQ(part(mail, QStringLiteral("Bunny World.html")),
              read(world + QStringLiteral("/Bunny World.html")));

    preset.caFile.clear();
    ASSERT_TRUE(write(classroom + QStringLiteral("/mail_server.ini"), serverSettings(preset)));
    const ToolRun refused = runJview(line, classroom, path(QStringLiteral("config")));
    EXPECT_EQ(refused.exitCode, 1) << refused.errors.toStdString();
    EXPECT_TRUE(refused.errors.contains(
        QStringLiteral("driver: box: Vessa47 - Send To A Friend | Your world was not sent. | ")))
        << refused.errors.toStdString();
    EXPECT_TRUE(refused.errors.contains(QStringLiteral("does not trust its certificate")))
        << refused.errors.toStdString();
    EXPECT_EQ(receivedIn(maildir).size(), 1);
}

TEST_F(SendAndImport, JviewStartsNothingButOurOwnTools) {
    const QString mark = path(QStringLiteral("started"));
    for (const QStringList& line :
         {QStringList{QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("touch ") + mark},
          QStringList{QStringLiteral("../bin/VessaClient")},
          QStringList{QStringLiteral("/bin/touch"), mark}, QStringList{}}) {
        const ToolRun run = runJview(line, scratch_.path(), path(QStringLiteral("config")));
        EXPECT_EQ(run.exitCode, 127) << line.join(' ').toStdString();
        EXPECT_TRUE(run.errors.startsWith(QStringLiteral("jview: no tool named")))
            << run.errors.toStdString();
    }
    EXPECT_FALSE(QFile::exists(mark));
}

// The archive with one more entry that climbs out of the world's folder.
bool addEscapingEntry(const QString& archive) {
    int error = 0;
    zip_t* zip = zip_open(QFile::encodeName(archive).constData(), 0, &error);
    if (!zip)
        return false;
    static const char kBytes[] = "escaped";
    zip_source_t* source = zip_source_buffer(zip, kBytes, sizeof kBytes - 1, 0);
    const bool added = zip_file_add(zip, "Models/../../../escaped.txt", source, 0) >= 0;
    if (!added)
        zip_source_free(source);
    return zip_close(zip) == 0 && added;
}

// A user adds the bunny, sends the world from the File menu (saving it first, as it has
// no name), and the friend's mail comes over STARTTLS with the world's archive and page.
// The friend imports that archive from the File menu and keeps it in a folder of theirs:
// the bunny is there. A hostile archive imported after it is refused with a box, and
// the world stays as it was.
TEST_F(SendAndImport, AWorldSentFromTheFileMenuComesBackThroughImport) {
    const QString maildir = path(QStringLiteral("maildir"));
    SmtpServer server(maildir,
                      {.security = MailServer::Security::StartTls, .certificate = school_});
    ASSERT_TRUE(server.ready());
    MailServer own = server.address();
    own.caFile = school_.certificate;
    // The settings the user made in the client the first time.
    const QString config = path(QStringLiteral("config"));
    ASSERT_TRUE(write(config + QStringLiteral("/Vessa47/VessaClient/mail_server.ini"),
                      serverSettings(own)));
    // Imports unpack under TEMP.
    qputenv("TEMP", QFile::encodeName(path(QStringLiteral("temp"))));
    QDir().mkpath(path(QStringLiteral("temp")));

    // The user's worlds folder, where Save As names a new one.
    QDir().mkpath(path(QStringLiteral("Worlds")));
    const QString hopper = path(QStringLiteral("Worlds/Hopper"));
    const ProgramRun sending = runProgram(
        QStringLiteral(VESSA_PROGRAM),
        QStringLiteral("click:AddObjectButton;type:bunny;key:Return;item:ObjectTree,Bunny;"
                       "menu:File;choose:Send To A Friend...;folder:") +
            hopper +
            QStringLiteral(";dialog:EmailForm;key:Tab;type:Ann Lee;key:Tab;"
                           "type:ann@school.example;key:Tab;type:bo@x.example, cy@x.example;"
                           "key:Tab;type:A bunny!;press:OkButton;exit"),
        config);
    const std::string sendingErrors = sending.errors.toStdString();
    ASSERT_TRUE(sending.finished) << sendingErrors;
    EXPECT_EQ(sending.exitCode, 0) << sendingErrors;
    EXPECT_FALSE(sending.errors.contains(QStringLiteral("driver: gave up"))) << sendingErrors;
    const QList<Received> mails = awaitMail(maildir);
    ASSERT_EQ(mails.size(), 1) << sendingErrors;
    const Received& mail = mails.first();
    EXPECT_EQ(header(mail, "x-rcptto"), "bo@x.example, cy@x.example");
    EXPECT_TRUE(header(mail, "subject").contains("Hopper"));
    EXPECT_TRUE(part(mail, QString()).startsWith("A bunny!\r\n"));
    const QByteArray archive = part(mail, QStringLiteral("Hopper.ves"));
    ASSERT_FALSE(archive.isEmpty());
    EXPECT_EQ(archive, read(hopper + QStringLiteral("/Hopper.ves")));
    // The world's page goes with it, as the web export writes it.
    const QByteArray page = part(mail, QStringLiteral("Hopper.html"));
    EXPECT_TRUE(page.contains("Hopper.ves")) << page.left(400).toStdString();
    EXPECT_EQ(page, read(hopper + QStringLiteral("/Hopper.html")));

    const QString received = path(QStringLiteral("Inbox/Hopper.ves"));
    const QString hostile = path(QStringLiteral("Inbox/Hostile.ves"));
    ASSERT_TRUE(write(received, archive));
    ASSERT_TRUE(write(hostile, archive));
    ASSERT_TRUE(addEscapingEntry(hostile));
    const ProgramRun importing = runProgram(
        QStringLiteral(VESSA_PROGRAM),
        QStringLiteral("menu:File;choose:Import VES File...;dialog:MiscDialog;type:") + received +
            QStringLiteral(";key:Return;folder:") + path(QStringLiteral("Worlds/Kept Hopper")) +
            QStringLiteral(";seen:ObjectTree,Bunny;dump:ObjectTree;"
                           "menu:File;choose:Import VES File...;dialog:MiscDialog;type:") +
            hostile + QStringLiteral(";key:Return;answer:OK;dump:ObjectTree;reader:MainForm;exit"),
        path(QStringLiteral("config2")));
    const std::string errors = importing.errors.toStdString();
    ASSERT_TRUE(importing.finished) << errors;
    EXPECT_EQ(importing.exitCode, 0) << errors;
    EXPECT_FALSE(importing.errors.contains(QStringLiteral("driver: gave up"))) << errors;
    EXPECT_FALSE(importing.errors.contains(QStringLiteral("driver: ErrorForm"))) << errors;
    EXPECT_TRUE(QFile::exists(path(QStringLiteral("Worlds/Kept Hopper/world_script.tv"))))
        << errors;
    const qsizetype box =
        importing.errors.indexOf(QStringLiteral("driver: box: Import VES File | "));
    ASSERT_GE(box, 0) << errors;
    const QString afterBox = importing.errors.mid(box);
    EXPECT_TRUE(afterBox.section(QLatin1Char('\n'), 0, 0)
                    .contains(QStringLiteral("Nothing was written, and your world stays open.")))
        << errors;
    EXPECT_TRUE(afterBox.contains(QStringLiteral("driver: ObjectTree:   Bunny\n"))) << errors;
    EXPECT_TRUE(afterBox.contains(QStringLiteral("Kept Hopper"))) << errors;
    // Nothing of it landed anywhere near the scratch folders.
    QDirIterator all(scratch_.path(), QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext())
        EXPECT_NE(QFileInfo(all.next()).fileName(), QStringLiteral("escaped.txt"));
}

} // namespace
