#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace vessa {

// How an archive is written: names of the world folder's top level to leave
// out (what an export writes beside the world), and a question asked as the
// work goes on, with the fraction done, whose false cancels it.
struct VesArchiveOptions {
    QStringList leaveOut;
    std::function<bool(double fraction)> going;
};

// The manifest's name inside the archive, and the text of its first line.
inline const QString kVesManifestName = QStringLiteral("Vessa47_Archive.txt");
inline const QString kVesManifestTitle = QStringLiteral("Vessa47 world archive");

// Writes the archive of a world (.ves): a zip of the world folder's files,
// its sub-folders included and links left out, with a manifest naming the
// program's version. Answers "" when the file is written, else why not; a
// file not written to the end (failed or cancelled) is not left behind.
QString writeVesArchive(const QString& worldFolder, const QString& file,
                        const VesArchiveOptions& options = {});

// The text the user is told when an archive was cancelled.
inline const QString kVesArchiveCancelled = QStringLiteral("cancelled");

} // namespace vessa
