#include "world/disk_problem.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vessa {

namespace {

const QString kSaveElsewhere = QStringLiteral(
    " Your world is still open as it was: use SAVE AS (in the Vessa FILE menu) to save it to a "
    "different location.");

} // namespace

DiskProblem DiskProblem::fromErrorNumber(int errorNumber, const QString& path) {
    DiskProblem problem{Kind::Other, path, QString::fromLocal8Bit(std::strerror(errorNumber))};
    switch (errorNumber) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        problem.kind = Kind::Full;
        break;
    case EROFS:
        problem.kind = Kind::ReadOnly;
        break;
    case EACCES:
    case EPERM:
        problem.kind = Kind::NotAllowed;
        break;
    case ENOENT:
    case ENOTDIR:
        problem.kind = Kind::Gone;
        break;
    default:
        break;
    }
    return problem;
}

DiskProblem checkReadable(const QString& path) {
    // Without blocking: a pipe in a world from elsewhere must not hold the program.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return DiskProblem::fromErrorNumber(errno, path);
    struct stat info {};
    const bool regular = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
    ::close(fd);
    if (!regular)
        return {DiskProblem::Kind::Other, path, QStringLiteral("it is not a file")};
    return {};
}

QString saveAdvice(const DiskProblem& problem) {
    switch (problem.kind) {
    case DiskProblem::Kind::None:
        return {};
    case DiskProblem::Kind::Full:
        return QStringLiteral("The disk is full: %1 could not be written. Make room on the disk "
                              "by deleting files you no longer need and save again.")
                   .arg(problem.path) +
               kSaveElsewhere;
    case DiskProblem::Kind::ReadOnly:
        return QStringLiteral("The disk that holds %1 can only be read, not written.")
                   .arg(problem.path) +
               kSaveElsewhere;
    case DiskProblem::Kind::NotAllowed:
        return QStringLiteral("You are not allowed to change %1 (the file may be locked or "
                              "marked read only). Ask whoever looks after this computer to let "
                              "you write there.")
                   .arg(problem.path) +
               kSaveElsewhere;
    case DiskProblem::Kind::Gone:
        return QStringLiteral("%1 is not there any more: the folder may have been deleted, "
                              "moved or renamed, or its disk taken out.")
                   .arg(problem.path) +
               kSaveElsewhere;
    case DiskProblem::Kind::Other:
        break;
    }
    return QStringLiteral("%1 could not be written: %2.").arg(problem.path, problem.reason) +
           kSaveElsewhere;
}

QString readAdvice(const DiskProblem& problem) {
    switch (problem.kind) {
    case DiskProblem::Kind::None:
        return {};
    case DiskProblem::Kind::NotAllowed:
        return QStringLiteral("You are not allowed to read or change %1. Ask whoever looks "
                              "after this computer to let you use it, or copy the world to "
                              "a folder of your own and open it there.")
            .arg(problem.path);
    case DiskProblem::Kind::ReadOnly:
        return QStringLiteral("The world's last save was cut short, and the disk that holds %1 "
                              "can only be read, so it can't be finished. Copy the world to a "
                              "folder you can write to and open it there.")
            .arg(problem.path);
    case DiskProblem::Kind::Gone:
        return QStringLiteral("%1 is not there any more: the folder may have been deleted, "
                              "moved or renamed, or its disk taken out.")
            .arg(problem.path);
    case DiskProblem::Kind::Full:
    case DiskProblem::Kind::Other:
        break;
    }
    return QStringLiteral("%1 could not be read: %2.").arg(problem.path, problem.reason);
}

} // namespace vessa
