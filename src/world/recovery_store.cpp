#include "world/recovery_store.h"

#include "world/script_file_format.h"
#include "world/staged_save.h"
#include "world/world_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSet>
#include <QStandardPaths>

#include <algorithm>
#include <filesystem>

namespace vessa {

namespace {

const QString kInfoFile = QStringLiteral("Recovery.txt");
// What the program reads of an info file: a few lines a file of the world.
constexpr qint64 kLargestInfo = 1 << 20;

// A model or sound file copied into a recovery copy, as its info file remembers it:
// copied again only when its source is another or has changed since.
struct CopiedFile {
    QString name;
    QString source;
    qint64 size = 0;
    qint64 modifiedMs = 0;

    QString line() const {
        return QStringLiteral("file=%1\t%2\t%3\t%4\n").arg(name, source).arg(size).arg(modifiedMs);
    }
    bool sameAs(const CopiedFile& other) const {
        return name == other.name && source == other.source && size == other.size &&
               modifiedMs == other.modifiedMs;
    }
};

struct CopyInfo {
    RecoveredWork work;
    QList<CopiedFile> files;
};

CopyInfo readInfo(const QString& folder) {
    CopyInfo info;
    info.work.folder = folder;
    const QString path = QDir(folder).filePath(kInfoFile);
    QFile file(path);
    if (!checkReadable(path).isEmpty() || !file.open(QIODevice::ReadOnly))
        return info;
    const QStringList lines = QString::fromUtf8(file.read(kLargestInfo)).split(u'\n');
    for (const QString& line : lines) {
        const QString key = line.section(u'=', 0, 0);
        const QString value = line.section(u'=', 1);
        if (key == QStringLiteral("world")) {
            info.work.worldSaveFile = value;
        } else if (key == QStringLiteral("saved")) {
            info.work.savedAt = QDateTime::fromString(value, Qt::ISODateWithMs);
        } else if (key == QStringLiteral("file")) {
            const QStringList fields = value.split(u'\t');
            if (fields.size() == 4)
                info.files.append(
                    {fields[0], fields[1], fields[2].toLongLong(), fields[3].toLongLong()});
        }
    }
    return info;
}

std::unique_ptr<QLockFile> lockOf(const QString& folder) {
    auto lock = std::make_unique<QLockFile>(folder + QStringLiteral(".lock"));
    // A program may run for days: only one that is gone leaves its copy to others.
    lock->setStaleLockTime(0);
    return lock;
}

void removeFolder(const QString& folder) {
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::path(QFile::encodeName(folder).toStdString()),
                                ignored);
}

CopiedFile describeSource(const QString& source, const QString& name) {
    const QFileInfo info(source);
    return {name, source, info.size(), info.lastModified().toMSecsSinceEpoch()};
}

} // namespace

RecoveredWork readRecoveredWork(const QString& folder) {
    return readInfo(folder).work;
}

QString RecoveryStore::defaultRoot() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
        .filePath(QStringLiteral("Recovery"));
}

RecoveryStore::RecoveryStore(const QString& root) : root_(root) {
}

RecoveryStore::~RecoveryStore() {
    waitForCopy();
}

QList<RecoveredWork> RecoveryStore::unclaimedWork() {
    QList<RecoveredWork> found;
    const QDir dir(root_);
    for (const QString& name :
         dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Name)) {
        const QString folder = dir.filePath(name);
        if (held_.count(folder) != 0)
            continue;
        std::unique_ptr<QLockFile> lock = lockOf(folder);
        if (!lock->tryLock(0))
            continue; // a program that runs now keeps it
        finishInterruptedSave(folder);
        const RecoveredWork work = readRecoveredWork(folder);
        if (!work.savedAt.isValid()) {
            // Left before its first copy was whole: nothing in it to bring back.
            removeFolder(folder);
            continue;
        }
        held_[folder] = std::move(lock);
        found.append(work);
    }
    std::sort(found.begin(), found.end(),
              [](const RecoveredWork& a, const RecoveredWork& b) { return a.savedAt > b.savedAt; });
    return found;
}

void RecoveryStore::adopt(const RecoveredWork& work) {
    discard();
    own_ = work.folder;
}

void RecoveryStore::decline(const RecoveredWork& work) {
    declined_.append(work.folder);
}

void RecoveryStore::release(const RecoveredWork& work) {
    held_.erase(work.folder);
}

bool RecoveryStore::copying() const {
    const std::lock_guard guard(mutex_);
    return copying_;
}

DiskProblem RecoveryStore::lastProblem() const {
    const std::lock_guard guard(mutex_);
    return problem_;
}

void RecoveryStore::waitForCopy() {
    if (writer_.joinable())
        writer_.join();
}

bool RecoveryStore::startCopy(RecoveryCopy copy, int generation) {
    if (generation != generation_ || copying())
        return false;
    waitForCopy();
    if (own_.isEmpty()) {
        if (!QDir().mkpath(root_)) {
            const std::lock_guard guard(mutex_);
            problem_ = {DiskProblem::Kind::Other, root_, QStringLiteral("it can't be made")};
            return false;
        }
        const QString folder = QDir(root_).filePath(
            QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss-")) +
            QString::number(QCoreApplication::applicationPid()));
        std::unique_ptr<QLockFile> lock = lockOf(folder);
        if (!lock->tryLock(0))
            return false;
        held_[folder] = std::move(lock);
        own_ = folder;
    }
    {
        const std::lock_guard guard(mutex_);
        copying_ = true;
    }
    writer_ = std::thread([this, folder = own_, copy = std::move(copy)] {
        writeCopy(folder, copy);
        const std::lock_guard guard(mutex_);
        copying_ = false;
    });
    return true;
}

// On the writer's thread.
void RecoveryStore::writeCopy(const QString& folder, const RecoveryCopy& copy) {
    DiskProblem problem;
    const auto finish = [&] {
        const std::lock_guard guard(mutex_);
        problem_ = problem;
    };
    if (!QDir().mkpath(folder)) {
        problem = {DiskProblem::Kind::Other, folder, QStringLiteral("it can't be made")};
        return finish();
    }
    StagedSave save(folder);
    if (problem = save.problem(); !problem.isEmpty())
        return finish();
    const QList<CopiedFile> before = readInfo(folder).files;
    QString info = QStringLiteral("world=%1\nsaved=%2\n")
                       .arg(copy.worldSaveFile, copy.savedAt.toString(Qt::ISODateWithMs));
    QSet<QString> kept = {world_files::Scene, world_files::TreeScript, kInfoFile};
    for (const auto& [source, name] : copy.files) {
        if (!QFileInfo(source).isFile())
            continue; // named by the scene, and already gone: nothing to keep of it
        const CopiedFile file = describeSource(source, name);
        const QString target = QDir(folder).filePath(name);
        const bool alreadyThere =
            QFileInfo(target).canonicalFilePath() == QFileInfo(source).canonicalFilePath() ||
            (QFileInfo::exists(target) &&
             std::any_of(before.begin(), before.end(),
                         [&](const CopiedFile& old) { return old.sameAs(file); }));
        if (!alreadyThere && !QFile::copy(source, QDir(save.stagingFolder()).filePath(name))) {
            problem = {DiskProblem::Kind::Other, target, QStringLiteral("it could not be copied")};
            return finish();
        }
        kept.insert(name);
        info += file.line();
    }
    for (const auto& [name, bytes] :
         {std::pair{world_files::Scene, copy.scene},
          std::pair{world_files::TreeScript, scriptFileBytes(copy.script)},
          std::pair{kInfoFile, info.toUtf8()}}) {
        if (problem = save.write(name, bytes); !problem.isEmpty())
            return finish();
    }
    if (problem = save.commit(); !problem.isEmpty())
        return finish();
    // Files of an earlier copy that this one no longer names.
    const QDir dir(folder);
    for (const QString& name : dir.entryList(QDir::Files | QDir::NoSymLinks))
        if (!kept.contains(name))
            QFile::remove(dir.filePath(name));
    finish();
}

void RecoveryStore::removeHeld(const QString& folder) {
    removeFolder(folder);
    held_.erase(folder);
}

void RecoveryStore::discard() {
    ++generation_;
    waitForCopy();
    if (!own_.isEmpty())
        removeHeld(own_);
    own_.clear();
}

void RecoveryStore::cleanExit() {
    discard();
    for (const QString& folder : declined_)
        removeHeld(folder);
    declined_.clear();
}

} // namespace vessa
