#include "world/world_loader.h"

#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "gateway/interpreter.h"
#include "world/disk_problem.h"
#include "world/open_world.h"
#include "world/staged_save.h"
#include "world/world_files_view.h"
#include "world/world_folder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace vessa {

namespace {

const QString kHelpPage = QStringLiteral("World_VessaHelp.html");
const QString kTabFile = QStringLiteral("World_Tab.py");
const QString kStaysOpen = QStringLiteral("The world that was open stays open, as it was.");

// The tab a world asks to open on: "Event", "Animations" or "OpeningScene", as the one
// value of its tab file, with or without quotes; -1 for anything else.
int tabNamed(const QString& folder) {
    const QString path = fileInFolder(folder, kTabFile);
    if (!checkReadable(path).isEmpty())
        return -1;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    QString value = QString::fromUtf8(file.read(256)).section(QLatin1Char('\n'), 0, 0).trimmed();
    if (value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"'))
        value = value.mid(1, value.size() - 2);
    const QStringList tabs = {QStringLiteral("OpeningScene"), QStringLiteral("Animations"),
                              QStringLiteral("Event")};
    for (int tab = 0; tab < tabs.size(); ++tab)
        if (value.compare(tabs[tab], Qt::CaseInsensitive) == 0)
            return tab;
    return -1;
}

} // namespace

QString worldPathOf(const QString& path) {
    QString cleaned = QDir::cleanPath(path);
    while (cleaned.size() > 1 && cleaned.endsWith(u'/'))
        cleaned.chop(1);
    return cleaned;
}

bool WorldLoader::LoadWorld(const QString& worldPath, bool showHelp) {
    const QString folder = worldPathOf(worldPath);
    // The page is shown beside the world, which loads at once.
    const QString page = fileInFolder(folder, kHelpPage);
    if (showHelp && checkReadable(page).isEmpty())
        context_.view.showHelpPage(page);
    return load(folder, folder);
}

bool WorldLoader::loadCopy(const QString& folder, const QString& worldSaveFile) {
    if (!load(worldPathOf(folder), worldSaveFile))
        return false;
    context_.world.status().markModified();
    return true;
}

bool WorldLoader::refuse(const QString& folder, const QString& why, const QString& whatToDo) {
    context_.view.showMessage(kWorldLoadTitle, folder + QStringLiteral(" can't be opened: ") + why,
                              whatToDo.isEmpty() ? kStaysOpen : whatToDo + u' ' + kStaysOpen);
    return false;
}

bool WorldLoader::load(const QString& folder, const QString& name) {
    OpenWorld& world = context_.world;
    EngineLink& engine = context_.engine;
    // What can refuse the world, before anything changes.
    if (!isWorldFolder(folder)) {
        context_.view.showMessage(kWorldLoadTitle, notAWorldMessage(folder));
        return false;
    }
    if (const DiskProblem unfinished = finishInterruptedSave(folder); !unfinished.isEmpty())
        return refuse(folder, unfinished.reason, readAdvice(unfinished));
    for (const QString& file : {world_files::Scene, world_files::TreeScript}) {
        const QString path = fileInFolder(folder, file);
        if (const DiskProblem problem = checkReadable(path);
            !problem.isEmpty() && (file == world_files::Scene || QFileInfo::exists(path)))
            return refuse(folder, QFileInfo(path).fileName() + QStringLiteral(": ") + problem.reason,
                          readAdvice(problem));
    }
    const ScriptFileRead script = readTreeScript(fileInFolder(folder, world_files::TreeScript));
    if (!script.ok())
        return refuse(folder, script.problem.text(),
                      QStringLiteral("The file may be damaged, or was not made by Vessa47."));
    // The object tree's records of the world going, before its scene goes.
    const QString where = QStringLiteral("VB:MainForm:LoadWorld() Error");
    context_.view.pumpEvents();
    context_.pollTreeDifferences(where);
    context_.view.pumpEvents();
    QVariant refusal;
    try {
        refusal = engine.call(QStringLiteral("LoadWorld"), {folder});
    } catch (const RunTimeError& e) {
        refusal = e.description();
    }
    if (!isSuccessResult(refusal))
        return refuse(folder, refusal.toString(),
                      QStringLiteral("The scene file may be damaged, or was not made by Vessa47."));

    // The world is in the engine: from here on the open world follows it.
    world.emptyForNextWorld();
    const CameraFrame frame = context_.view.cameraFrame();
    context_.call(QStringLiteral("imagenavigator"), {frame.width, frame.height, frame.hostId},
                  QStringLiteral("MainForm:LoadWorld: Error creating Navigator"));
    fillScriptControls(script.content, world.scriptTargets());
    world.SetSaveName(name);
    world.status().markClean();
    // The engine's load put its policy back on: a world the user trusts is told again.
    if (!world.status().worldSaveFile().isEmpty())
        context_.tellTrust();
    context_.runTool(QStringLiteral("_CurrentlySelectedObject = Vessa.GetDefaultScene()"),
                     QStringLiteral("WorldForm:OkButton_Click: Error getting default scene."));
    context_.call(QStringLiteral("SetIsDirty"), {0},
                  QStringLiteral("MainForm:FileOpenMenuButton_Click: Error making world clean."));
    context_.pollTreeDifferences(where);
    context_.view.pumpEvents();
    context_.runTool(QStringLiteral("PreserveHandbasket()"),
                     QStringLiteral("MainForm:LoadWorld: Error restoring handbasket."));
    showTabOfWorld(folder);
    return true;
}

void WorldLoader::showTabOfWorld(const QString& folder) {
    WorldStatus& status = context_.world.status();
    if (QFileInfo::exists(fileInFolder(folder, kTabFile))) {
        const int tab = tabNamed(folder);
        if (tab >= 0 && tab != status.SceneScriptTab())
            context_.view.SwitchToTab(tab);
        context_.view.keepCameraWindowOnTop();
    } else if (status.SceneScriptTab() != 0) {
        context_.view.SwitchToTab(0);
    }
}

void WorldContext::call(const QString& method, const QVariantList& args, const QString& failure) {
    try {
        reporter.CheckInterpreterResult(engine.call(method, args), failure);
    } catch (const RunTimeError& e) {
        reporter.reportAtTop(ReportForm::C, failure, e);
    }
}

void WorldContext::runTool(const QString& statement, const QString& failure) {
    call(QStringLiteral("ExecuteCode"),
         {statement, QStringLiteral("<Tool>"), QStringLiteral("exec")}, failure);
}

void WorldContext::pollTreeDifferences(const QString& where) {
    try {
        world.pollTreeDifferences();
    } catch (const RunTimeError& e) {
        reporter.reportAtTop(ReportForm::C, where, e);
    }
}

void WorldContext::tellTrust() {
    const QString folder = world.status().worldSaveFile();
    const bool trust = !folder.isEmpty() && trusted && trusted(folder);
    call(QStringLiteral("SetWorldTrusted"), {trust ? 1 : 0},
         QStringLiteral("MainForm:SetWorldTrusted: Error telling the engine whether to trust the "
                        "world's code."));
}

} // namespace vessa
