#include "world/world_files.h"

#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/interpreter.h"
#include "world/open_world.h"
#include "world/recovery_store.h"
#include "world/script_backups.h"
#include "world/world_files_view.h"
#include "world/world_folder.h"

#include <QDir>
#include <QFileInfo>

namespace vessa {

WorldFiles::WorldFiles(WorldContext context, RecoveryStore& recovery)
    : context_(std::move(context)), loader_(context_), saver_(context_), recovery_(recovery) {
}

QString WorldFiles::worldsFolder() const {
    return context_.state.HomeDir + QStringLiteral("Worlds");
}

bool WorldFiles::LoadWorld(const QString& worldPath, bool showHelp) {
    if (!loader_.LoadWorld(worldPath, showHelp))
        return false;
    // The work of the world left behind was saved or thrown away when the user was asked.
    recovery_.discard();
    return true;
}

QString WorldFiles::SaveWorld(const QString& worldPath) {
    const QString saved = saver_.SaveWorld(worldPath);
    if (saved == kYesSave)
        recovery_.discard();
    return saved;
}

int WorldFiles::SaveChangesPrompt() {
    switch (context_.view.askSaveChanges()) {
    case WorldFilesView::Answer::Yes:
        FileSaveMenuButton_Click();
        return result_ == kYesSave ? 0 : 2;
    case WorldFilesView::Answer::No:
        return 1;
    case WorldFilesView::Answer::Cancel:
        break;
    }
    return 2;
}

void WorldFiles::FileNewMenuButton_Click(const QDate& today) {
    OpenWorld& world = context_.world;
    const QString where = QStringLiteral("VB:MainForm:FileNewMenuButton_Click() Error");
    if (world.status().SceneScriptTab() != 0)
        context_.view.SwitchToTab(0);
    context_.pollTreeDifferences(where);
    if (world.IsWorldDirty() && SaveChangesPrompt() == 2)
        return;
    context_.pollTreeDifferences(where);
    // The engine reads the new world before anything of the old one goes.
    const QString defaultWorld = worldsFolder() + QStringLiteral("/Default");
    QVariant refusal;
    try {
        refusal = context_.engine.call(QStringLiteral("LoadWorld"), {defaultWorld});
    } catch (const RunTimeError& e) {
        refusal = e.description();
    }
    if (!isSuccessResult(refusal)) {
        context_.view.showMessage(kWorldLoadTitle,
                                  defaultWorld + QStringLiteral(" can't be opened: ") +
                                      refusal.toString(),
                                  QStringLiteral("The world that was open stays open, as it "
                                                 "was."));
        return;
    }
    world.emptyForNextWorld();
    context_.pollTreeDifferences(where);
    CleanUpBackups(world.status().worldSaveFile(), today);
    world.SetSaveName(QString());
    world.status().markClean();
    const CameraFrame frame = context_.view.cameraFrame();
    context_.call(QStringLiteral("imagenavigator"), {frame.width, frame.height, frame.hostId},
                  QStringLiteral("MainForm:FileNewMenuButton: Error Creating Navigator"));
    context_.runTool(QStringLiteral("_CurrentlySelectedObject = Vessa.GetDefaultScene()"),
                     QStringLiteral("MainForm:FileNewMenuButton: Error getting default scene."));
    context_.pollTreeDifferences(where);
    context_.call(QStringLiteral("SetIsDirty"), {0},
                  QStringLiteral("MainForm:FileNewMenuButton_Click: Error making world clean."));
    recovery_.discard();
}

void WorldFiles::FileOpenMenuButton_Click(const QDate& today) {
    const WorldStatus& status = context_.world.status();
    if (context_.world.IsWorldDirty() && SaveChangesPrompt() == 2)
        return;
    if (!status.worldSaveFile().isEmpty())
        CleanUpBackups(status.worldSaveFile(), today);
    const QString folder =
        context_.view.chooseWorldFolder(WorldFilesView::FolderUse::Open, worldsFolder());
    if (folder.isEmpty()) {
        result_ = kNoSave;
        return;
    }
    LoadWorld(folder, true);
}

void WorldFiles::FileSaveMenuButton_Click() {
    const QString folder = context_.world.status().worldSaveFile();
    if (folder.isEmpty())
        FileSaveAsMenuButton_Click();
    else
        result_ = SaveWorld(folder);
}

void WorldFiles::FileSaveAsMenuButton_Click() {
    result_ = kNoSave;
    for (;;) {
        const QString folder =
            context_.view.chooseWorldFolder(WorldFilesView::FolderUse::SaveAs, worldsFolder());
        if (folder.isEmpty())
            return;
        if (isWorldFolder(folder)) {
            const WorldFilesView::Answer answer = context_.view.askOverwrite(folder);
            if (answer == WorldFilesView::Answer::No)
                continue;
            if (answer == WorldFilesView::Answer::Cancel)
                return;
        }
        // A new name in the dialog is a new folder for the world.
        if (!QFileInfo(folder).isDir() && !QDir().mkpath(folder)) {
            context_.view.showMessage(
                QStringLiteral("Vessa - Error"),
                QStringLiteral("Error - I was unable to create the directory you specified.  Do "
                               "you have permission to create directories there?  Your world has "
                               "NOT been saved."));
            return;
        }
        result_ = SaveWorld(folder);
        return;
    }
}

void WorldFiles::offerRecoveredWork() {
    bool broughtBack = false;
    for (const RecoveredWork& work : recovery_.unclaimedWork()) {
        if (broughtBack) {
            recovery_.release(work);
        } else if (!context_.view.askBringBack(work)) {
            recovery_.decline(work);
        } else if (loader_.loadCopy(work.folder, work.worldSaveFile)) {
            recovery_.adopt(work);
            broughtBack = true;
        } else {
            recovery_.release(work);
        }
    }
}

} // namespace vessa
