#include "shell/archive_dialogs.h"

#include "export/mail_forms.h"
#include "shell/world_trust.h"

#include <QApplication>
#include <QFileDialog>
#include <QProcess>
#include <QProgressDialog>

namespace vessa {

QString ArchiveDialogs::chooseArchive(const QString& startIn) {
    QFileDialog dialog(parent_, kImportTitle, startIn,
                       QStringLiteral("VES Files (*.ves);;All Files (*)"));
    dialog.setObjectName(QStringLiteral("MiscDialog"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

ArchiveOutcome
ArchiveDialogs::runWithProgress(const QString& label,
                                const std::function<ArchiveOutcome(const ArchiveProgress&)>& work) {
    QProgressDialog progress(label, QStringLiteral("Cancel"), 0, 1000, parent_);
    progress.setWindowTitle(QStringLiteral("Vessa47"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(300);
    return work([&progress](qint64 done, qint64 total) {
        progress.setValue(total > 0 ? int(done * 1000 / total) : 0);
        QApplication::processEvents();
        return !progress.wasCanceled();
    });
}

std::optional<FriendMail> ArchiveDialogs::askFriendMail(const FriendMail& mail) {
    EmailForm form(mail, parent_);
    if (form.exec() != QDialog::Accepted)
        return std::nullopt;
    return form.mail();
}

void ArchiveDialogs::forgetTrust(const QString& folder) {
    trust_.setTrusted(folder, false);
}

bool ArchiveDialogs::startTool(const QString& program, const QStringList& arguments,
                               const QString& folder) {
    return QProcess::startDetached(program, arguments, folder);
}

} // namespace vessa
