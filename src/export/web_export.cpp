#include "export/web_export.h"

#include "export/folder_copy.h"
#include "export/ves_archive.h"
#include "gateway/engine_link.h"
#include "gateway/interpreter.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace vessa {

namespace {

// Shares of the work, for the fraction done: the page is quick, the player
// and the archive are bytes to copy.
constexpr double kPageShare = 0.1;
constexpr double kPlayerShare = 0.6;

const QString WorkFolderPrefix = QStringLiteral(".vessa47-export-");

QString stemOf(const QString& pageFile) {
    return QFileInfo(pageFile).completeBaseName();
}

// Puts what the work folder holds in its place in folder, replacing what
// an earlier export of the same page left there.
QString moveIntoPlace(const QString& work, const QString& folder, const QStringList& names) {
    for (const QString& name : names) {
        const QString from = QDir(work).filePath(name);
        const QString to = QDir(folder).filePath(name);
        if (!QFileInfo::exists(from))
            continue;
        const QFileInfo old(to);
        bool removed = true;
        if (old.isDir() && !old.isSymLink())
            removed = QDir(to).removeRecursively();
        else if (old.exists() || old.isSymLink())
            removed = QFile::remove(to);
        if (!removed || !QFile::rename(from, to))
            return QStringLiteral("%1 can't be written").arg(to);
    }
    return {};
}

} // namespace

WebExport::WebExport(EngineLink& engine, QString playerFolder)
    : engine_(engine), playerFolder_(std::move(playerFolder)) {
}

QStringList WebExport::writtenNames(const QString& pageFile) {
    const QString stem = stemOf(pageFile);
    return {stem + QStringLiteral(".ves"), stem + QStringLiteral(".models.json"), kWebPlayerFolder,
            QFileInfo(pageFile).fileName()};
}

WebExportResult WebExport::run(const WebPageRequest& request, const Going& going) {
    const auto ask = [&](double fraction, const QString& step) {
        return !going || going(fraction, step);
    };
    const auto failed = [](const QString& why) {
        return WebExportResult{WebExportResult::Failed, why};
    };
    const QFileInfo page(request.pageFile);
    const QString folder = page.absolutePath();
    QTemporaryDir work(QDir(folder).filePath(WorkFolderPrefix + QStringLiteral("XXXXXX")));
    if (!work.isValid())
        return failed(QStringLiteral("%1 can't be written").arg(folder));
    if (!ask(0.0, QStringLiteral("Writing the page")))
        return {WebExportResult::Cancelled, {}};

    const QVariant written = engine_.call(QStringLiteral("SaveForPlugin"),
                                          {request.worldFolder, work.filePath(page.fileName()),
                                           request.width, request.height, request.position,
                                           request.navigator ? 1 : 0, kWebPlayerFolder});
    if (!isSuccessResult(written))
        return failed(written.toString());

    if (!QFileInfo::exists(QDir(playerFolder_).filePath(QStringLiteral("player.js"))))
        return failed(QStringLiteral("The web player is missing from %1").arg(playerFolder_));
    const FolderCopy player =
        copyFolderFiles(playerFolder_, work.filePath(kWebPlayerFolder), [&](double f) {
            return ask(kPageShare + kPlayerShare * f, QStringLiteral("Copying the player"));
        });
    if (player.outcome == FolderCopy::Cancelled)
        return {WebExportResult::Cancelled, {}};
    if (player.outcome == FolderCopy::Failed)
        return failed(player.failure);

    const QStringList names = writtenNames(request.pageFile);
    QStringList leaveOut = names;
    leaveOut << QDir(work.path()).dirName();
    const ArchiveOutcome packed = packWorldArchive(
        request.worldFolder, work.filePath(stemOf(request.pageFile) + QStringLiteral(".ves")),
        QCoreApplication::applicationVersion(),
        [&](qint64 done, qint64 total) {
            const double f = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 1;
            return ask(kPageShare + kPlayerShare + (1.0 - kPageShare - kPlayerShare) * f,
                       QStringLiteral("Packing the world"));
        },
        leaveOut);
    if (packed.kind == ArchiveOutcome::Kind::Cancelled)
        return {WebExportResult::Cancelled, {}};
    if (!packed.done())
        return failed(packed.message);
    if (!ask(1.0, QStringLiteral("Putting the files in place")))
        return {WebExportResult::Cancelled, {}};
    const QString failure = moveIntoPlace(work.path(), folder, names);
    return failure.isEmpty() ? WebExportResult{WebExportResult::Written, {}} : failed(failure);
}

} // namespace vessa
