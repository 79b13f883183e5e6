// The main window's settings: where its windows are, its preferences, its recent worlds.
#include "shell/main_form.h"

#include "scene/mouse_tools.h"
#include "scene/scene_panel.h"
#include "script/script_panel.h"
#include "shell/opening_scene.h"
#include "shell/recent_files_menu.h"
#include "shell/render_form.h"
#include "shell/settings_store.h"
#include "shell/window_keeper.h"
#include "world/open_world.h"
#include "world/world_files.h"

#include <QAction>
#include <QMenu>
#include <QTextEdit>
#include <QVBoxLayout>

namespace vessa {

void MainForm::keepWindows() {
    auto* fileMenu = findChild<QMenu*>(QStringLiteral("FileMenuButton"));
    recentFiles_ = new RecentFilesMenu(
        *fileMenu, findChild<QAction*>(QStringLiteral("FileExitMenuButton")), engine_,
        {[this] { SwitchToTab(world_.status().SceneScriptTab()); },
         [this] { return world_.IsWorldDirty(); }, [this] { return SaveChangesPrompt(); },
         [this](const QString& path) { LoadWorld(path, true); },
         [this](const QString& title, const QString& text) {
             showMessage(title, text);
         }});
    keeper_ = std::make_unique<WindowKeeper>(
        *settings_, engine_,
        WindowKeeper::Windows{
            *this, renderForm_, *area_, {&scriptPanel_->TreeView1View(), outputText_}},
        [this](const QString& line) { PrintOutput(line); });
}

QWidget* MainForm::buildOpeningSceneTools(QWidget* parent) {
    auto* tools = new QWidget(parent);
    mouseTools_ = new MouseToolsPanel(engine_, reporter_, tools);
    openingSceneOptions_ = new OpeningSceneOptions(
        engine_, reporter_, [this] { return openingSceneFrame_->size(); }, tools);
    auto* column = new QVBoxLayout(tools);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(mouseTools_);
    column->addWidget(openingSceneOptions_);
    const auto command = [this](const char* control, auto work) {
        connect(findChild<QAction*>(QString::fromUtf8(control)), &QAction::triggered, this, work);
    };
    command("FileOpeningScene", [this] { FileOpeningScene_Click(engine_, reporter_); });
    command("FileStartCameraHere", [this] {
        FileStartCameraHere_Click(engine_, reporter_, world_.status().SceneScriptTab());
    });
    return tools;
}

void MainForm::keepHelpForm(QWidget& helpForm) {
    keeper_->keepHelpForm(helpForm);
}

void MainForm::RestoreSettings() {
    const WindowSettings& settings = keeper_->RestoreSettings();
    ApplyScriptFont();
    openingSceneOptions_->restore(settings.preferences.gUseHardwareAcceleration,
                                  settings.preferences.accelerationChosen);
    recentFiles_->restore(settings.recentFiles);
    gCameraWindowOnTop = settings.preferences.gCameraWindowOnTop;
    state_.HelpFormWanted = settings.helpFormWanted;
}

} // namespace vessa
