#pragma once

#include "world/disk_problem.h"

#include <QByteArray>
#include <QString>

#include <memory>

class QLockFile;

namespace vessa {

// How the files of a world folder change together, so that a save cut short at any
// instant (the program killed, the power gone) leaves the old world or the new one,
// never a mix of both and never a half-written file.
//
// A save writes every file it changes into a folder of its own inside the world,
// ".vessa-saving", each flushed to the disk. Renaming that folder to ".vessa-saved" is
// the instant the save happens. Its files then replace the world's own, one rename
// each, and the folder goes. Whoever reads or saves a world folder first finishes a
// save found cut short (finishInterruptedSave): ".vessa-saving" is dropped, so the world
// is the old one; the files of ".vessa-saved" are moved into place, so it is the new
// one. A lock file, ".vessa-save.lock", keeps two programs from doing either at once.
namespace staged_save {
inline const QString Writing = QStringLiteral(".vessa-saving");
inline const QString Written = QStringLiteral(".vessa-saved");
inline const QString Lock = QStringLiteral(".vessa-save.lock");
} // namespace staged_save

// One save of a folder's files: begun on construction, dropped on destruction unless
// committed.
class StagedSave {
public:
    // Finishes a save of folder found cut short, then makes the staging folder.
    explicit StagedSave(const QString& folder);
    ~StagedSave();
    StagedSave(const StagedSave&) = delete;
    StagedSave& operator=(const StagedSave&) = delete;

    // Why the save could not begin; empty when it did.
    const DiskProblem& problem() const { return problem_; }
    QString stagingFolder() const;

    // Writes the file that will be the folder's name (found whatever its case there).
    DiskProblem write(const QString& name, const QByteArray& bytes);
    // Writes path, on the folder's disk but outside this save's set (a backup), whole
    // or not at all, at once.
    DiskProblem writeWhole(const QString& path, const QByteArray& bytes);
    // The save happens: what was written replaces the folder's files. A problem means
    // it did not happen, and the folder's files are as they were.
    DiskProblem commit();

private:
    QString folder_;
    std::unique_ptr<QLockFile> lock_;
    DiskProblem problem_;
    bool committed_ = false;
};

// Completes or drops a save of folder that was cut short. A folder with none is not
// touched. Answers why it could not be done.
DiskProblem finishInterruptedSave(const QString& folder);

} // namespace vessa
