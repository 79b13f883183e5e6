#pragma once

#include "world/disk_problem.h"
#include "world/world_files_view.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QPair>
#include <QString>

#include <map>
#include <memory>
#include <mutex>
#include <thread>

class QLockFile;

namespace vessa {

// What a copy of unsaved work holds: the world it belongs to, when it was taken, its
// scene file and script file, and the model and sound files the scene names (each by
// its path now and its name in the copy's folder).
struct RecoveryCopy {
    QString worldSaveFile;
    QDateTime savedAt;
    QByteArray scene;
    QString script;
    QList<QPair<QString, QString>> files;
};

// The copies of unsaved work, kept in the user's data folder, apart from the worlds
// themselves: a folder "Recovery" there, and in it one world folder for each running
// program that has unsaved work, locked while the program runs ("<name>.lock"). A
// folder whose lock no living program holds is work a program left when it was killed
// or crashed. Copies are written off the user interface's thread, each as one staged
// save (StagedSave), so a copy cut short leaves the one before.
class RecoveryStore {
public:
    // root: the folder that holds the copies; by default "Recovery" in the user's data
    // folder (XDG_DATA_HOME moves it).
    explicit RecoveryStore(const QString& root = defaultRoot());
    ~RecoveryStore();
    RecoveryStore(const RecoveryStore&) = delete;
    RecoveryStore& operator=(const RecoveryStore&) = delete;

    static QString defaultRoot();
    QString root() const { return root_; }

    // Work that programs left when they ended without a clean exit, newest first. Each
    // is held by this program from now on, so that no other offers it at once.
    QList<RecoveredWork> unclaimedWork();
    // The work was brought back: its copy becomes this program's own.
    void adopt(const RecoveredWork& work);
    // The user did not want it: it is kept until this program exits cleanly.
    void decline(const RecoveredWork& work);
    // Work not asked about: left for the next program that starts.
    void release(const RecoveredWork& work);

    // Writes copy as this program's copy, in the background. False, with nothing
    // started, while the copy before is still being written or after discard() was
    // called since generation() was read.
    bool startCopy(RecoveryCopy copy, int generation);
    // Counts the discards, so that a copy begun before one is not written after it.
    int generation() const { return generation_; }
    bool copying() const;
    void waitForCopy();
    // Why the last copy could not be written; empty when it was.
    DiskProblem lastProblem() const;

    // The open world was saved or left: its copy goes.
    void discard();
    // A clean exit: this program's copy goes, and the work the user did not want.
    void cleanExit();

private:
    void writeCopy(const QString& folder, const RecoveryCopy& copy);
    void removeHeld(const QString& folder);

    QString root_;
    QString own_;                                        // this program's copy; "" until it has one
    std::map<QString, std::unique_ptr<QLockFile>> held_; // by folder
    QList<QString> declined_;
    int generation_ = 0;
    std::thread writer_;
    mutable std::mutex mutex_;
    bool copying_ = false; // guarded by mutex_
    DiskProblem problem_;  // guarded by mutex_
};

// What a recovery copy says of itself, in its folder; empty worldSaveFile and an
// invalid time when it holds nothing usable.
RecoveredWork readRecoveredWork(const QString& folder);

} // namespace vessa
