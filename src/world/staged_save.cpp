#include "world/staged_save.h"

#include "world/world_folder.h"

#include <QDir>
#include <QFile>
#include <QLockFile>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace vessa {

namespace {

using staged_save::Lock;
using staged_save::Writing;
using staged_save::Written;

// How long a save or a load waits for another program to finish saving the same world.
constexpr int kLockWaitMs = 10'000;

QByteArray native(const QString& path) {
    return QFile::encodeName(path);
}

DiskProblem lastError(const QString& path) {
    return DiskProblem::fromErrorNumber(errno, path);
}

DiskProblem closeAfterFailure(int fd, const QString& path) {
    const DiskProblem problem = lastError(path);
    ::close(fd);
    ::unlink(native(path).constData());
    return problem;
}

// Writes bytes as the whole of path and asks the disk to keep them.
DiskProblem writeAndKeep(const QString& path, const QByteArray& bytes) {
    const int fd = ::open(native(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return lastError(path);
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t written =
            ::write(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return closeAfterFailure(fd, path);
        done += written;
    }
    if (::fsync(fd) != 0)
        return closeAfterFailure(fd, path);
    if (::close(fd) != 0) {
        const DiskProblem problem = lastError(path);
        ::unlink(native(path).constData());
        return problem;
    }
    return {};
}

// Asks the disk to keep what it holds of a file or folder: its data, or its names.
DiskProblem keep(const QString& path) {
    const int fd = ::open(native(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return lastError(path);
    // Some file systems keep a folder's names without being asked, and say so.
    if (::fsync(fd) != 0 && errno != EINVAL) {
        const DiskProblem problem = lastError(path);
        ::close(fd);
        return problem;
    }
    ::close(fd);
    return {};
}

DiskProblem rename(const QString& from, const QString& to) {
    if (::rename(native(from).constData(), native(to).constData()) != 0)
        return lastError(to);
    return {};
}

// An entry of that name, of any kind, without following a link.
bool entryExists(const QString& path) {
    struct stat info {};
    return ::lstat(native(path).constData(), &info) == 0;
}

DiskProblem removeAll(const QString& path) {
    std::error_code error;
    std::filesystem::remove_all(std::filesystem::path(native(path).toStdString()), error);
    if (error)
        return DiskProblem::fromErrorNumber(error.value(), path);
    return {};
}

// The regular files of a folder, links and other kinds left out.
QStringList regularFiles(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Name);
}

DiskProblem moveWrittenIntoPlace(const QString& folder) {
    const QString written = QDir(folder).filePath(Written);
    for (const QString& name : regularFiles(written)) {
        if (DiskProblem problem = rename(QDir(written).filePath(name), fileInFolder(folder, name));
            !problem.isEmpty())
            return problem;
    }
    if (DiskProblem problem = keep(folder); !problem.isEmpty())
        return problem;
    return removeAll(written);
}

bool hasInterruptedSave(const QString& folder) {
    const QDir dir(folder);
    return entryExists(dir.filePath(Writing)) || entryExists(dir.filePath(Written));
}

std::unique_ptr<QLockFile> takeLock(const QString& folder, DiskProblem& problem) {
    auto lock = std::make_unique<QLockFile>(QDir(folder).filePath(Lock));
    // Only a program that is gone leaves a lock to take over, however old it is.
    lock->setStaleLockTime(0);
    if (lock->tryLock(kLockWaitMs))
        return lock;
    if (lock->error() == QLockFile::LockFailedError) {
        problem = {DiskProblem::Kind::Other, folder,
                   QStringLiteral("another Vessa47 is saving this world just now")};
    } else if (::access(native(folder).constData(), W_OK) != 0) {
        problem = lastError(folder);
    } else {
        problem = {DiskProblem::Kind::Other, folder, QStringLiteral("its lock can't be made")};
    }
    return nullptr;
}

// Finishes a save cut short; the caller holds the lock.
DiskProblem settle(const QString& folder) {
    const QDir dir(folder);
    if (entryExists(dir.filePath(Written))) {
        if (DiskProblem problem = moveWrittenIntoPlace(folder); !problem.isEmpty())
            return problem;
    }
    return entryExists(dir.filePath(Writing)) ? removeAll(dir.filePath(Writing)) : DiskProblem{};
}

} // namespace

DiskProblem finishInterruptedSave(const QString& folder) {
    if (!hasInterruptedSave(folder))
        return {};
    DiskProblem problem;
    const std::unique_ptr<QLockFile> lock = takeLock(folder, problem);
    return lock ? settle(folder) : problem;
}

StagedSave::StagedSave(const QString& folder) : folder_(folder) {
    lock_ = takeLock(folder_, problem_);
    if (!lock_)
        return;
    problem_ = settle(folder_);
    if (problem_.isEmpty() && ::mkdir(native(stagingFolder()).constData(), 0755) != 0)
        problem_ = lastError(stagingFolder());
}

StagedSave::~StagedSave() {
    if (lock_ && problem_.isEmpty() && !committed_)
        removeAll(stagingFolder());
}

QString StagedSave::stagingFolder() const {
    return QDir(folder_).filePath(Writing);
}

DiskProblem StagedSave::write(const QString& name, const QByteArray& bytes) {
    return writeAndKeep(QDir(stagingFolder()).filePath(name), bytes);
}

DiskProblem StagedSave::writeWhole(const QString& path, const QByteArray& bytes) {
    const QString staged = QDir(stagingFolder()).filePath(QStringLiteral("whole.part"));
    if (DiskProblem problem = writeAndKeep(staged, bytes); !problem.isEmpty())
        return problem;
    if (DiskProblem problem = rename(staged, path); !problem.isEmpty()) {
        ::unlink(native(staged).constData());
        return problem;
    }
    return {};
}

DiskProblem StagedSave::commit() {
    const QString staging = stagingFolder();
    // The engine wrote some of the files itself: each is asked to stay on the disk.
    for (const QString& name : regularFiles(staging))
        if (DiskProblem problem = keep(QDir(staging).filePath(name)); !problem.isEmpty())
            return problem;
    if (DiskProblem problem = keep(staging); !problem.isEmpty())
        return problem;
    // The instant the save happens.
    if (DiskProblem problem = rename(staging, QDir(folder_).filePath(Written)); !problem.isEmpty())
        return problem;
    committed_ = true;
    // The save has happened: what is left of moving its files in, should the disk
    // refuse it now, is finished by whoever reads or saves the folder next.
    keep(folder_);
    moveWrittenIntoPlace(folder_);
    return {};
}

} // namespace vessa
