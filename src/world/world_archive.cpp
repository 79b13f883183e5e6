#include "world/world_archive.h"

#include "export/web_export.h"
#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "gateway/interpreter.h"
#include "world/open_world.h"
#include "world/world_files.h"
#include "world/world_files_view.h"
#include "world/world_saver.h"

#include <QDir>
#include <QFileInfo>

namespace vessa {

namespace {

const QString kSaveForPluginFailure =
    QStringLiteral("WebSaveForm:OkButton:Click - Error calling python saveforplugin.");

} // namespace

QString WorldArchive::scratchFolder() {
    QString temp = qEnvironmentVariable("TEMP");
    if (temp.isEmpty())
        temp = qEnvironmentVariable("TMP");
    if (temp.isEmpty())
        temp = QDir::tempPath();
    // A former import may still be loaded from its folder.
    QString folder = QDir(temp).filePath(QStringLiteral("TempWorld"));
    while (QFileInfo(folder).isSymLink() ||
           (QFileInfo::exists(folder) &&
            !QDir(folder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)))
        folder += QLatin1Char('_');
    return folder;
}

void WorldArchive::mnuImportVES_Click() {
    WorldContext& context = files_.context();
    // The world that is open goes, as it does for Open World.
    if (context.world.IsWorldDirty() && files_.SaveChangesPrompt() == 2)
        return;
    const QString archive = view_.chooseArchive(context.state.HomeDir + QStringLiteral("Worlds"));
    if (archive.isEmpty())
        return;
    const QString scratch = scratchFolder();
    const ArchiveOutcome unpacked = view_.runWithProgress(
        QStringLiteral("Unpacking ") + QFileInfo(archive).fileName() + QStringLiteral("..."),
        [&](const ArchiveProgress& progress) {
            return unpackWorldArchive(archive, scratch, progress);
        });
    if (unpacked.kind == ArchiveOutcome::Kind::Refused)
        context.view.showMessage(kImportTitle, unpacked.message,
                                 QStringLiteral("Nothing was written, and your world stays open."));
    if (!unpacked.done())
        return;
    const QString failure =
        QStringLiteral("MainForm:mnuImportVES_Click: Error calling python ImportVESFile.");
    try {
        const QVariant answer =
            context.engine.call(QStringLiteral("ImportVESFile"), {archive, scratch});
        if (!isSuccessResult(answer)) {
            context.reporter.CheckInterpreterResult(answer, failure);
            QDir(scratch).removeRecursively();
            return;
        }
    } catch (const RunTimeError& e) {
        context.reporter.reportAtTop(ReportForm::C, failure, e);
        return;
    }
    view_.forgetTrust(scratch);
    if (!files_.LoadWorld(scratch, false))
        return;
    // The imported world lands in a folder of the user's; until then it is loaded from
    // the scratch folder.
    files_.FileSaveAsMenuButton_Click();
}

QString WorldArchive::packOpenWorld() {
    WorldContext& context = files_.context();
    const QString folder = context.world.status().worldSaveFile();
    const QString leaf = QFileInfo(folder).fileName();
    // The page goes with the archive, as a web page of the world would be written, so
    // that a friend without Vessa47 can see the world too.
    WebPageRequest request;
    request.worldFolder = folder;
    request.pageFile = QDir(folder).filePath(leaf + QStringLiteral(".html"));
    request.position = QStringLiteral("center");
    const QString archive = QDir(folder).filePath(leaf + QStringLiteral(".ves"));
    ArchiveOutcome packed;
    try {
        packed = view_.runWithProgress(
            QStringLiteral("Packing ") + leaf + QStringLiteral("..."),
            [&](const ArchiveProgress& progress) {
                const WebExportResult written =
                    WebExport(context.engine, context.state.HomeDir + QStringLiteral("WebPlayer"))
                        .run(request, [&](double fraction, const QString&) {
                            return progress(qint64(fraction * 1000), 1000);
                        });
                if (written.outcome == WebExportResult::Cancelled)
                    return ArchiveOutcome{ArchiveOutcome::Kind::Cancelled, {}, {}};
                if (written.outcome == WebExportResult::Failed)
                    return ArchiveOutcome{ArchiveOutcome::Kind::Refused, written.message, {}};
                return ArchiveOutcome{};
            });
    } catch (const RunTimeError& e) {
        context.reporter.reportAtTop(ReportForm::C, kSaveForPluginFailure, e);
        return {};
    }
    if (packed.kind == ArchiveOutcome::Kind::Refused)
        context.reporter.CheckInterpreterResult(packed.message, kSaveForPluginFailure);
    return packed.done() ? archive : QString();
}

void WorldArchive::mnuSendToFriend_Click() {
    WorldContext& context = files_.context();
    if (context.world.status().worldSaveFile().isEmpty()) {
        files_.FileSaveAsMenuButton_Click();
        if (context.world.status().worldSaveFile().isEmpty())
            return;
    } else {
        files_.FileSaveMenuButton_Click();
        if (files_.result() != kYesSave)
            return;
    }
    const QString archive = packOpenWorld();
    if (archive.isEmpty())
        return;
    FriendMail preset;
    preset.WorldName = QFileInfo(context.world.status().worldSaveFile()).fileName();
    const std::optional<FriendMail> mail = view_.askFriendMail(preset);
    if (!mail)
        return;
    const QString home = context.state.HomeDir;
    const QString folder = home + QStringLiteral("SendToAFriend");
    QDir().mkpath(folder);
    // The mail client tells the user itself whether the mail went out.
    view_.startTool(home + QStringLiteral("bin/jview"), vessaClientArguments(*mail, archive),
                    folder);
}

} // namespace vessa
