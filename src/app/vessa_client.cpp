// VessaClient: mails a world to friends. Vessa47 starts it through `jview` with the
// sender, the message, the world's title, its archive and the friends' addresses on the
// command line, in the home folder's SendToAFriend, and goes on; this program asks for
// the mail server the first time (a teacher can preset it in that folder's
// mail_server.ini), sends, and tells the user whether the mail went out.

#include "export/mail_forms.h"
#include "export/mail_sender.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QStandardPaths>

#include <atomic>
#include <thread>

namespace {

using namespace vessa;

const QString kTitle = QStringLiteral("Vessa47 - Send To A Friend");

QString userSettingsFile() {
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
           QStringLiteral("/mail_server.ini");
}

// Sends on a thread of its own while a window says so; Cancel stops the sending.
MailOutcome sendShowingProgress(const MailServer& server, const OutgoingMail& mail) {
    QProgressDialog progress(QStringLiteral("Sending \"%1\"...").arg(mail.title),
                             QStringLiteral("Cancel"), 0, 0);
    progress.setWindowTitle(kTitle);
    progress.setMinimumDuration(0);
    std::atomic<bool> stop = false;
    QObject::connect(&progress, &QProgressDialog::canceled, [&] { stop = true; });
    MailOutcome outcome;
    std::thread sending([&] {
        outcome = sendMail(server, mail, [&] { return !stop; });
        QMetaObject::invokeMethod(&progress, &QProgressDialog::reset, Qt::QueuedConnection);
    });
    progress.exec();
    sending.join();
    return outcome;
}

// The mail server as the user sets it, kept for the next time; false when cancelled.
bool askServer(MailServer& server) {
    MailSettingsForm settings(server);
    if (settings.exec() != QDialog::Accepted)
        return false;
    server = settings.server();
    QDir().mkpath(QFileInfo(userSettingsFile()).path());
    saveMailServer(server, userSettingsFile());
    return true;
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("VessaClient"));
    QApplication::setOrganizationName(QStringLiteral("Vessa47"));
    QString why;
    const OutgoingMail mail = mailOfCommandLine(app.arguments().mid(1), &why);
    if (mail.receivers.isEmpty()) {
        QMessageBox::warning(nullptr, kTitle,
                             why.isEmpty() ? QStringLiteral("There is nobody to send the world to.")
                                           : QStringLiteral("Usage: ") + why);
        return 2;
    }
    const QString preset = QDir::current().filePath(QStringLiteral("mail_server.ini"));
    MailServer server = loadMailServer(userSettingsFile(), preset);
    if (!server.complete() && !askServer(server)) {
        QMessageBox::information(nullptr, kTitle, QStringLiteral("Your world was not sent."));
        return 1;
    }
    for (;;) {
        const MailOutcome outcome = sendShowingProgress(server, mail);
        if (outcome.sent) {
            QMessageBox::information(nullptr, kTitle, outcome.message);
            return 0;
        }
        QMessageBox box(QMessageBox::Warning, kTitle, QStringLiteral("Your world was not sent."),
                        QMessageBox::Close);
        box.setInformativeText(outcome.message);
        QPushButton* change =
            box.addButton(QStringLiteral("Mail &Settings..."), QMessageBox::ActionRole);
        box.exec();
        if (box.clickedButton() != change || !askServer(server))
            return 1;
    }
}
