#pragma once

#include "world/world_loader.h"
#include "world/world_saver.h"

#include <QDate>

namespace vessa {

class RecoveryStore;

// The File menu's world commands and the one question they share, over the world's
// folder: New, Open, Save and Save As, loading and saving, and the unsaved work kept
// apart (RecoveryStore): its copy goes once the world is saved or left, and work a
// program left behind when it was killed is offered back at start.
class WorldFiles {
public:
    WorldFiles(WorldContext context, RecoveryStore& recovery);

    bool LoadWorld(const QString& worldPath, bool showHelp);
    QString SaveWorld(const QString& worldPath);

    // "Save changes to your world first?": Yes saves and answers 0, No answers 1, Cancel
    // answers 2, as does a Yes whose save did not happen: the world stays open.
    int SaveChangesPrompt();

    void FileNewMenuButton_Click(const QDate& today = QDate::currentDate());
    void FileOpenMenuButton_Click(const QDate& today = QDate::currentDate());
    void FileSaveMenuButton_Click();
    void FileSaveAsMenuButton_Click();
    // "yessave" or "nosave": whether the last command saved the world.
    const QString& result() const { return result_; }

    // At start: the work that programs left unsaved when they were killed, newest first,
    // each offered until one is brought back.
    void offerRecoveredWork();

    WorldContext& context() { return context_; }

private:
    QString worldsFolder() const;

    WorldContext context_;
    WorldLoader loader_;
    WorldSaver saver_;
    RecoveryStore& recovery_;
    QString result_;
};

} // namespace vessa
