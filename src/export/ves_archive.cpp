#include "export/ves_archive.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

#include <sys/stat.h>
#include <zip.h>

#include <memory>
#include <vector>

namespace vessa {

namespace {

const QString kManifestTitle = QStringLiteral("Vessa47 world archive");
constexpr int kManifestFormat = 1;
constexpr qint64 kManifestMaxBytes = 4096;
constexpr qint64 kChunkBytes = 64 * 1024;

struct ZipCloser {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ZipHandle = std::unique_ptr<zip_t, ZipCloser>;

struct ZipFileCloser {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using ZipFileHandle = std::unique_ptr<zip_file_t, ZipFileCloser>;

ArchiveOutcome refused(const QString& why) {
    return {ArchiveOutcome::Kind::Refused, why, {}};
}

ArchiveOutcome cancelled() {
    return {ArchiveOutcome::Kind::Cancelled, {}, {}};
}

QString zipErrorText(int code) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const QString text = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    return text;
}

QByteArray manifestText(const QString& programVersion) {
    return (kManifestTitle + QStringLiteral("\nformat %1\nversion %2\n")
                                 .arg(kManifestFormat)
                                 .arg(programVersion.simplified()))
        .toUtf8();
}

// The files of a world folder, by their paths inside it. Links are left out: one could
// point anywhere on the disk, and the archive goes to someone else. So are the folder's
// own archives, which would otherwise hold each earlier send, and what leaveOut names at
// its top.
QStringList worldFiles(const QString& worldFolder, const QStringList& leaveOut) {
    QStringList files;
    QDirIterator it(worldFolder, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                    QDirIterator::Subdirectories);
    const QDir root(worldFolder);
    while (it.hasNext()) {
        const QString path = it.next();
        if (QFileInfo(path).isSymLink())
            continue;
        const QString inside = root.relativeFilePath(path);
        if (!inside.contains(QLatin1Char('/')) &&
            inside.endsWith(QStringLiteral(".ves"), Qt::CaseInsensitive))
            continue;
        if (leaveOut.contains(inside.section(QLatin1Char('/'), 0, 0)))
            continue;
        files << inside;
    }
    files.sort();
    return files;
}

// The state that libzip's callbacks share while an archive is written.
struct PackingReport {
    const ArchiveProgress* progress;
    qint64 total;
    bool stopped = false;
};

} // namespace

ArchiveOutcome packWorldArchive(const QString& worldFolder, const QString& archivePath,
                                const QString& programVersion, const ArchiveProgress& progress,
                                const QStringList& leaveOut) {
    if (!QFileInfo(worldFolder).isDir())
        return refused(worldFolder + QStringLiteral(" is not a folder."));
    const QStringList files = worldFiles(worldFolder, leaveOut);
    int errorCode = 0;
    ZipHandle archive(zip_open(QFile::encodeName(archivePath).constData(),
                               ZIP_CREATE | ZIP_TRUNCATE, &errorCode));
    if (!archive)
        return refused(archivePath + QStringLiteral(" can't be written: ") +
                       zipErrorText(errorCode));
    const QByteArray manifest = manifestText(programVersion);
    zip_source_t* manifestSource =
        zip_source_buffer(archive.get(), manifest.constData(), zip_uint64_t(manifest.size()), 0);
    if (!manifestSource || zip_file_add(archive.get(), kArchiveManifest.toUtf8().constData(),
                                        manifestSource, ZIP_FL_ENC_UTF_8) < 0) {
        zip_source_free(manifestSource);
        return refused(QString::fromUtf8(zip_strerror(archive.get())));
    }
    qint64 total = manifest.size();
    for (const QString& file : files) {
        const QString path = worldFolder + QLatin1Char('/') + file;
        total += QFileInfo(path).size();
        zip_source_t* source =
            zip_source_file_create(QFile::encodeName(path).constData(), 0, -1, nullptr);
        if (!source ||
            zip_file_add(archive.get(), file.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8) < 0) {
            zip_source_free(source);
            return refused(path + QStringLiteral(" can't be packed: ") +
                           QString::fromUtf8(zip_strerror(archive.get())));
        }
    }
    PackingReport report{&progress, total};
    if (progress) {
        zip_register_progress_callback_with_state(
            archive.get(), 0.01,
            [](zip_t*, double part, void* state) {
                auto* r = static_cast<PackingReport*>(state);
                if (!r->stopped && !(*r->progress)(qint64(part * double(r->total)), r->total))
                    r->stopped = true;
            },
            nullptr, &report);
        zip_register_cancel_callback_with_state(
            archive.get(),
            [](zip_t*, void* state) { return static_cast<PackingReport*>(state)->stopped ? 1 : 0; },
            nullptr, &report);
    }
    // libzip writes into a file of its own beside the archive and renames it at the end;
    // a failed close removes that file, and the archive that was there stays.
    if (zip_close(archive.get()) < 0) {
        const QString why = QString::fromUtf8(zip_strerror(archive.get()));
        if (report.stopped)
            return cancelled();
        return refused(archivePath + QStringLiteral(" can't be written: ") + why);
    }
    archive.release();
    return {};
}

namespace {

// One entry of an archive as checked before anything is written.
struct Entry {
    zip_uint64_t index;
    QString path; // inside the folder, "/" between parts, no "/" at the end
    bool folder;
    qint64 size;
};

bool hasControlCharacter(const char* raw) {
    for (const unsigned char* c = reinterpret_cast<const unsigned char*>(raw); *c; ++c)
        if (*c < 0x20 || *c == 0x7f)
            return true;
    return false;
}

// The path an entry's name gives inside the folder, or why it gives none. Names made on
// Windows use back-slashes between their parts, so they count as separators here.
QString pathOfName(QString name, QString* why) {
    name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    static const QRegularExpression drive(QStringLiteral("^[A-Za-z]:"));
    if (name.startsWith(QLatin1Char('/')) || drive.match(name).hasMatch()) {
        *why = QStringLiteral("it names a place outside the world's folder");
        return {};
    }
    if (name.endsWith(QLatin1Char('/')))
        name.chop(1);
    const QStringList parts = name.split(QLatin1Char('/'));
    for (const QString& part : parts) {
        if (part == QStringLiteral("..")) {
            *why = QStringLiteral("it climbs out of the world's folder");
            return {};
        }
        if (part.isEmpty() || part == QStringLiteral(".")) {
            *why = QStringLiteral("it is not a plain file name");
            return {};
        }
    }
    return name;
}

// Whether an entry is something other than a plain file or folder (a link, a device),
// as the system that packed it says.
bool isSpecialFile(zip_t* archive, zip_uint64_t index) {
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) < 0)
        return true;
    if (system != ZIP_OPSYS_UNIX)
        return false;
    const mode_t type = (attributes >> 16) & S_IFMT;
    return type != 0 && type != S_IFREG && type != S_IFDIR;
}

// The names an archive's entries take, folded for case, and whether each is a folder,
// so that two that would be one file on a disk that ignores case are found.
class NameSet {
public:
    // Why path can't stand beside the names before it, or "".
    QString add(const QString& path, bool folder) {
        const QStringList parts = path.split(QLatin1Char('/'));
        QString prefix;
        for (qsizetype i = 0; i < parts.size(); ++i) {
            prefix += (i ? QStringLiteral("/") : QString()) + parts[i];
            const bool isFolder = folder || i + 1 < parts.size();
            const QString clash = addOne(prefix, isFolder);
            if (!clash.isEmpty())
                return clash;
        }
        return {};
    }

private:
    QString addOne(const QString& path, bool folder) {
        const QString key = path.toCaseFolded();
        const auto found = names_.constFind(key);
        if (found == names_.cend()) {
            names_.insert(key, {path, folder});
            return {};
        }
        if (found->spelling != path)
            return QStringLiteral("\"%1\" and \"%2\" differ only in case")
                .arg(found->spelling, path);
        if (folder != found->folder)
            return QStringLiteral("\"%1\" is both a file and a folder in it").arg(path);
        if (!folder)
            return QStringLiteral("\"%1\" stands in it twice").arg(path);
        return {};
    }

    struct Name {
        QString spelling;
        bool folder;
    };
    QHash<QString, Name> names_;
};

// Reads the manifest, within its bound; "" when it can't be read.
QByteArray readManifest(zip_t* archive, zip_uint64_t index, qint64 size) {
    if (size > kManifestMaxBytes)
        return {};
    ZipFileHandle file(zip_fopen_index(archive, index, 0));
    if (!file)
        return {};
    QByteArray text(size, '\0');
    if (zip_fread(file.get(), text.data(), zip_uint64_t(size)) != size)
        return {};
    return text;
}

// The version that packed the archive, or why the manifest is not ours.
QString versionOfManifest(const QByteArray& text, QString* why) {
    const QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    if (lines.isEmpty() || lines.first().trimmed() != kManifestTitle) {
        *why = QStringLiteral("it is not a Vessa47 world archive");
        return {};
    }
    QString version;
    for (const QString& line : lines) {
        if (line.startsWith(QStringLiteral("format ")) &&
            line.mid(7).trimmed().toInt() > kManifestFormat) {
            *why = QStringLiteral("it was made by a newer Vessa47; this one can't read it");
            return {};
        }
        if (line.startsWith(QStringLiteral("version ")))
            version = line.mid(8).trimmed();
    }
    return version;
}

// Every entry, checked against the limits; the first reason to refuse the archive
// leaves the list empty and says why.
std::vector<Entry> checkedEntries(zip_t* archive, qint64 archiveBytes, const ArchiveLimits& limits,
                                  QString* version, QString* why) {
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    if (count > limits.maxEntries) {
        *why = QStringLiteral("it holds %1 files, more than the %2 a world may have")
                   .arg(count)
                   .arg(limits.maxEntries);
        return {};
    }
    std::vector<Entry> entries;
    NameSet names;
    qint64 total = 0;
    bool manifestFound = false;
    for (zip_uint64_t i = 0; i < zip_uint64_t(count); ++i) {
        zip_stat_t stat;
        const char* raw = zip_get_name(archive, i, ZIP_FL_ENC_RAW);
        if (!raw || zip_stat_index(archive, i, 0, &stat) < 0) {
            *why = QStringLiteral("it is damaged");
            return {};
        }
        QString name = QString::fromUtf8(zip_get_name(archive, i, 0));
        const auto refuse = [&](const QString& reason) {
            *why = QStringLiteral("the name \"%1\" in it: %2").arg(name, reason);
            return std::vector<Entry>{};
        };
        if (hasControlCharacter(raw)) {
            for (QChar& c : name)
                if (c.category() == QChar::Other_Control)
                    c = QLatin1Char('?');
            return refuse(QStringLiteral("it holds control characters"));
        }
        QString pathWhy;
        const QString path = pathOfName(name, &pathWhy);
        if (path.isEmpty())
            return refuse(pathWhy);
        if (isSpecialFile(archive, i))
            return refuse(QStringLiteral("it is a link or a device, not a plain file"));
        if (stat.encryption_method != ZIP_EM_NONE)
            return refuse(QStringLiteral("it is locked with a password"));
        const bool folder = name.endsWith(QLatin1Char('/')) || name.endsWith(QLatin1Char('\\'));
        const qint64 size = qint64(stat.size);
        const qint64 packed = qint64(stat.comp_size);
        if (size < 0 || size > limits.maxUnpackedBytes ||
            (size > limits.ratioExemptBytes && size / limits.maxRatio > packed))
            return refuse(QStringLiteral("it unpacks to far more than it holds"));
        const QString clash = names.add(path, folder);
        if (!clash.isEmpty()) {
            *why = clash;
            return {};
        }
        total += size;
        if (total > limits.maxUnpackedBytes) {
            *why =
                QStringLiteral("it unpacks to more than %1 MiB").arg(limits.maxUnpackedBytes >> 20);
            return {};
        }
        if (path.compare(kArchiveManifest, Qt::CaseInsensitive) == 0 && !folder) {
            *version = versionOfManifest(readManifest(archive, i, size), why);
            if (!why->isEmpty())
                return {};
            manifestFound = true;
            continue;
        }
        entries.push_back({i, path, folder, size});
    }
    if (total > limits.ratioExemptBytes && total / limits.maxRatio > archiveBytes) {
        *why = QStringLiteral("it unpacks to far more than it holds");
        return {};
    }
    if (!manifestFound) {
        *why = QStringLiteral("it is not a Vessa47 world archive");
        return {};
    }
    return entries;
}

// Writes one entry's bytes, never more than it said it holds.
QString unpackFile(zip_t* archive, const Entry& entry, const QString& target, qint64& done,
                   qint64 total, const ArchiveProgress& progress, bool* stop) {
    ZipFileHandle source(zip_fopen_index(archive, entry.index, 0));
    QFile file(target);
    if (!source || !file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return QStringLiteral("\"%1\" can't be written").arg(entry.path);
    QByteArray buffer(kChunkBytes, '\0');
    qint64 written = 0;
    for (;;) {
        const zip_int64_t read = zip_fread(source.get(), buffer.data(), zip_uint64_t(kChunkBytes));
        if (read < 0)
            return QStringLiteral("\"%1\" in it is damaged").arg(entry.path);
        if (read == 0)
            break;
        written += read;
        if (written > entry.size)
            return QStringLiteral("\"%1\" in it is damaged").arg(entry.path);
        if (file.write(buffer.constData(), read) != read)
            return QStringLiteral("\"%1\" can't be written: %2")
                .arg(entry.path, file.errorString());
        done += read;
        if (progress && !progress(done, total)) {
            *stop = true;
            return {};
        }
    }
    if (written != entry.size)
        return QStringLiteral("\"%1\" in it is damaged").arg(entry.path);
    return {};
}

// Takes away what an unpacking wrote into a folder that was empty before it.
void removeUnpacked(const QString& folder, bool folderWasMade) {
    QDir dir(folder);
    if (folderWasMade) {
        dir.removeRecursively();
        return;
    }
    for (const QFileInfo& info :
         dir.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
        if (info.isDir() && !info.isSymLink())
            QDir(info.filePath()).removeRecursively();
        else
            QFile::remove(info.filePath());
    }
}

} // namespace

ArchiveOutcome unpackWorldArchive(const QString& archivePath, const QString& freshFolder,
                                  const ArchiveProgress& progress, const ArchiveLimits& limits) {
    const QString cant = archivePath + QStringLiteral(" can't be imported: ");
    int errorCode = 0;
    ZipHandle archive(zip_open(QFile::encodeName(archivePath).constData(),
                               ZIP_RDONLY | ZIP_CHECKCONS, &errorCode));
    if (!archive)
        return refused(cant + zipErrorText(errorCode) + QLatin1Char('.'));
    QString version;
    QString why;
    const std::vector<Entry> entries =
        checkedEntries(archive.get(), QFileInfo(archivePath).size(), limits, &version, &why);
    if (!why.isEmpty())
        return refused(cant + why + QLatin1Char('.'));

    const QFileInfo target(freshFolder);
    if (target.isSymLink() || (target.exists() && !target.isDir()) ||
        (target.isDir() &&
         !QDir(freshFolder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)))
        return refused(cant + freshFolder + QStringLiteral(" is not an empty folder."));
    const bool folderWasMade = !target.exists();
    if (folderWasMade && !QDir().mkpath(freshFolder))
        return refused(cant + freshFolder + QStringLiteral(" can't be made."));

    qint64 total = 0;
    for (const Entry& entry : entries)
        total += entry.size;
    qint64 done = 0;
    bool stop = false;
    const QDir root(freshFolder);
    for (const Entry& entry : entries) {
        const QString path = root.filePath(entry.path);
        const QString folder = entry.folder ? path : QFileInfo(path).path();
        QString failure;
        if (!QDir().mkpath(folder))
            failure = QStringLiteral("\"%1\" can't be made").arg(entry.path);
        else if (!entry.folder)
            failure = unpackFile(archive.get(), entry, path, done, total, progress, &stop);
        if (stop || !failure.isEmpty()) {
            removeUnpacked(freshFolder, folderWasMade);
            return stop ? cancelled() : refused(cant + failure + QLatin1Char('.'));
        }
    }
    return {ArchiveOutcome::Kind::Done, {}, version};
}

} // namespace vessa
