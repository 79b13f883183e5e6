#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace vessa {

// A world travels as one `.ves` file: a zip of the files of its folder, and beside them
// a manifest that names the program that packed it. The files keep their paths inside
// the folder, with "/" between the parts.

// Told how far a long piece of work has come, in bytes; answers false to stop it.
using ArchiveProgress = std::function<bool(qint64 done, qint64 total)>;

// How a packing or an unpacking ended: done, stopped by the user, or refused with a
// message for the user. A stopped or refused one leaves nothing behind.
struct ArchiveOutcome {
    enum class Kind { Done, Cancelled, Refused };
    Kind kind = Kind::Done;
    QString message;       // why it was refused
    QString packedVersion; // of an unpacked archive: the version that packed it

    bool done() const { return kind == Kind::Done; }
};

// The manifest's name inside an archive; a world has no file of that name.
inline const QString kArchiveManifest = QStringLiteral("vessa-archive.txt");

// Limits that keep a hostile archive from filling the disk or the folder.
struct ArchiveLimits {
    int maxEntries = 10'000;
    qint64 maxUnpackedBytes = qint64(1) << 30;
    // Unpacked size to packed size, above which an entry or the whole is a bomb. Small
    // entries are exempt: a short run of one byte packs better than this quite honestly.
    int maxRatio = 100;
    qint64 ratioExemptBytes = qint64(1) << 20;
};

// Packs every file of worldFolder, the folder's own archives and what leaveOut names at
// its top aside, into archivePath.
// The archive is written beside its place and moved there whole once complete: a
// stopped or failed packing leaves an archive that was there as it was.
ArchiveOutcome packWorldArchive(const QString& worldFolder, const QString& archivePath,
                                const QString& programVersion, const ArchiveProgress& progress = {},
                                const QStringList& leaveOut = {});

// Unpacks archivePath into freshFolder, which must not exist yet or be empty. Every
// entry is checked before anything is written; an archive with one entry that would
// land outside the folder, is no plain file or folder, has a name that could not be a
// file's, or is too big is refused whole. Nothing in the archive is run or interpreted
// beyond its manifest. A refused or stopped unpacking removes what it wrote.
ArchiveOutcome unpackWorldArchive(const QString& archivePath, const QString& freshFolder,
                                  const ArchiveProgress& progress = {},
                                  const ArchiveLimits& limits = {});

} // namespace vessa
