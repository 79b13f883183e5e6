#include "export/ves_archive.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <zip.h>

namespace vessa {

namespace {

// The world's files, by their paths from the folder with "/" between folders.
QStringList filesOf(const QString& folder, const QStringList& leaveOut) {
    const QString worldFolder = QFileInfo(folder).absoluteFilePath();
    QStringList files;
    const QDir world(worldFolder);
    QDirIterator entries(worldFolder, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        const QString relative = world.relativeFilePath(path);
        const QString top = relative.section(u'/', 0, 0);
        // The iterator does not go into linked folders; linked files stay out too.
        if (!entries.fileInfo().isSymLink() && !leaveOut.contains(top, Qt::CaseInsensitive))
            files << relative;
    }
    files.sort();
    return files;
}

QByteArray manifest() {
    return (kVesManifestTitle + QStringLiteral("\r\nversion=") +
            QCoreApplication::applicationVersion() + QStringLiteral("\r\n"))
        .toUtf8();
}

QString zipFailure(zip_t* archive) {
    return QString::fromUtf8(zip_strerror(archive));
}

struct Going {
    const std::function<bool(double)>* going;
    bool cancelled = false;
};

int cancelIfAsked(zip_t*, void* state) {
    auto* asked = static_cast<Going*>(state);
    return asked->cancelled ? 1 : 0;
}

void progress(zip_t*, double fraction, void* state) {
    auto* asked = static_cast<Going*>(state);
    if (!asked->cancelled && *asked->going && !(*asked->going)(fraction))
        asked->cancelled = true;
}

} // namespace

QString writeVesArchive(const QString& worldFolder, const QString& file,
                        const VesArchiveOptions& options) {
    if (!QFileInfo(worldFolder).isDir())
        return QStringLiteral("There is no world folder %1").arg(worldFolder);
    const QStringList files = filesOf(worldFolder, options.leaveOut);
    int error = 0;
    zip_t* archive =
        zip_open(QFile::encodeName(file).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!archive)
        return QStringLiteral("%1 can't be written").arg(file);
    Going going{&options.going};
    zip_register_progress_callback_with_state(archive, 0.01, progress, nullptr, &going);
    zip_register_cancel_callback_with_state(archive, cancelIfAsked, nullptr, &going);

    const QByteArray about = manifest();
    zip_source_t* aboutSource =
        zip_source_buffer(archive, about.constData(), static_cast<zip_uint64_t>(about.size()), 0);
    QString failure;
    if (!aboutSource || zip_file_add(archive, kVesManifestName.toUtf8().constData(), aboutSource,
                                     ZIP_FL_ENC_UTF_8) < 0) {
        zip_source_free(aboutSource);
        failure = zipFailure(archive);
    }
    for (const QString& name : files) {
        if (!failure.isEmpty())
            break;
        const QByteArray path = QFile::encodeName(QDir(worldFolder).filePath(name));
        zip_source_t* source = zip_source_file(archive, path.constData(), 0, -1);
        if (!source ||
            zip_file_add(archive, name.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8) < 0) {
            zip_source_free(source);
            failure = QStringLiteral("%1 can't be read: %2").arg(name, zipFailure(archive));
        }
    }
    if (failure.isEmpty() && zip_close(archive) == 0)
        return {};
    if (failure.isEmpty())
        failure = going.cancelled ? kVesArchiveCancelled : zipFailure(archive);
    zip_discard(archive);
    QFile::remove(file);
    return failure;
}

} // namespace vessa
