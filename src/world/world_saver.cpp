#include "world/world_saver.h"

#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "gateway/interpreter.h"
#include "world/open_world.h"
#include "world/python_generator.h"
#include "world/script_backups.h"
#include "world/staged_save.h"
#include "world/world_files_view.h"
#include "world/world_folder.h"
#include "world/world_loader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>
#include <unistd.h>

namespace vessa {

namespace {

const QString kErrorTitle = QStringLiteral("Vessa47 - Error");

const QString kFolderGone = QStringLiteral(
    "Error - I am not able to save your world because the world directory has been deleted "
    "since you loaded your world.  Please use SAVE AS (in the Vessa FILE menu) to save your "
    "world to a different location.  Your world has NOT been saved.");
const QString kReadOnly = QStringLiteral(
    "Error - I am not able to save your world because the files are marked read only. Please "
    "either change the world files to be not read only or use SAVE AS (in the Vessa FILE menu) "
    "to save your world to a different location.  Your world has NOT been saved.");
const QString kFolderNotUsable = QStringLiteral(
    "Error - I was unable save the world because I was unable to create the directory you "
    "specified.  Do you have permission to write files there?  NOTE THAT YOUR WORLD HAS *NOT* "
    "BEEN SAVED!");
const QString kFilesNotCreated = QStringLiteral(
    "Error - I was unable save the world because I was unable to create the world files in the "
    "directory you specified.  Do you have permission to write files there?  NOTE THAT YOUR "
    "WORLD HAS *NOT* BEEN SAVED!");
const QString kScriptNotSaved = QStringLiteral("Error - I was unable to save the script file.");
const QString kWorldNotSaved =
    QStringLiteral("Error - I was unable to save your world.  Your world has NOT been saved.");

bool allowed(const QString& path, int mode) {
    return ::access(QFile::encodeName(path).constData(), mode) == 0;
}

} // namespace

QString WorldSaver::notSaved(const QString& text, const QString& details) {
    context_.view.showMessage(kErrorTitle, text, details);
    return kNoSave;
}

QString WorldSaver::SaveWorld(const QString& worldPath, const QDateTime& now) {
    OpenWorld& world = context_.world;
    const QString folder = worldPathOf(worldPath);
    // A save from a script tab writes the scene as it stood before running.
    if (world.status().SceneScriptTab() != 0)
        context_.runTool(
            QStringLiteral("RestoreHandbasket()"),
            QStringLiteral("MainForm:FileSaveMenuButton: Error restoring handbasket."));
    if (!QFileInfo(folder).isDir())
        return notSaved(kFolderGone);
    if (!allowed(folder, X_OK))
        return notSaved(kFolderNotUsable);
    // Every check comes before the first write: a refused save changes nothing.
    const QString treeScript = fileInFolder(folder, world_files::TreeScript);
    std::optional<StagedSave> staged;
    if (!QFileInfo::exists(treeScript)) {
        staged.emplace(folder);
        if (!staged->problem().isEmpty())
            return notSaved(kFilesNotCreated, saveAdvice(staged->problem()));
    }
    if (!allowed(folder, W_OK) || (QFileInfo::exists(treeScript) && !allowed(treeScript, W_OK)))
        return notSaved(kReadOnly);
    if (!staged) {
        staged.emplace(folder);
        if (!staged->problem().isEmpty())
            return notSaved(kFilesNotCreated, saveAdvice(staged->problem()));
    }

    const ScriptFileText script = MakeTVscript(
        world.script().TreeView1(), world.events().ListView1(), world.ArbitraryCodeBox().Text);
    for (const QString& notice : script.notices)
        context_.view.PrintOutput(notice);
    const QByteArray scriptBytes = scriptFileBytes(script.text);
    if (const DiskProblem problem = staged->write(world_files::TreeScript, scriptBytes);
        !problem.isEmpty())
        return notSaved(kScriptNotSaved, saveAdvice(problem));
    // A backup is a safety net: when it can't be written, the save goes on without it.
    if (const QString backups = makeBackupsFolder(folder); !backups.isEmpty())
        staged->writeWhole(QDir(backups).filePath(saveBackupName(now)), scriptBytes);
    const PythonScript python = MakePythonScript(
        world.script().TreeView1(), world.events().ListView1(), world.ArbitraryCodeBox().Text);
    for (const ScriptNotice& notice : python.notices)
        context_.view.PrintOutput(notice.message);
    if (const DiskProblem problem =
            staged->write(world_files::Python, scriptFileBytes(python.text));
        !problem.isEmpty())
        return notSaved(kWorldNotSaved, saveAdvice(problem));
    QVariant sceneFailure;
    try {
        sceneFailure =
            context_.engine.call(QStringLiteral("SaveScene"), {folder, staged->stagingFolder()});
    } catch (const RunTimeError& e) {
        context_.reporter.reportAtTop(
            ReportForm::C,
            QStringLiteral("MainForm.FileSaveMenuButton_Click: Error calling python SaveScene."),
            e);
        return kNoSave;
    }
    if (!isSuccessResult(sceneFailure))
        return notSaved(kWorldNotSaved, sceneFailure.toString() +
                                            QStringLiteral(". Your world is still open as it "
                                                           "was: use SAVE AS (in the Vessa FILE "
                                                           "menu) to save it to a different "
                                                           "location."));
    if (const DiskProblem problem = staged->commit(); !problem.isEmpty())
        return notSaved(kWorldNotSaved, saveAdvice(problem));

    world.SetSaveName(folder);
    world.status().markClean();
    // The code of the folder saved into is trusted as the user said of that folder.
    context_.tellTrust();
    return kYesSave;
}

} // namespace vessa
