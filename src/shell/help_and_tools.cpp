#include "shell/help_and_tools.h"

#include "export/tool_process.h"
#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "shell/about_form.h"
#include "shell/error_form.h"
#include "shell/main_form.h"
#include "shell/render_form.h"
#include "shell/world_dialog.h"
#include "world/open_world.h"
#include "world/script_backups.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenu>
#include <QMessageBox>

namespace vessa {

namespace {

const QString kFirstExample = QStringLiteral("Worlds/Examples/Example1 - First World");
const QString kExamples = QStringLiteral("Worlds/Examples");
const QString kPythonExamples = QStringLiteral("Worlds/Python Examples");
const QString kGuide = QStringLiteral("Help/index.html");

class SystemClipboard : public ToolClipboard {
public:
    QString text() const override { return QGuiApplication::clipboard()->text(); }
    void clear() override { QGuiApplication::clipboard()->clear(); }
};

} // namespace

HelpAndTools::HelpAndTools(MainForm& form, RenderForm& renderForm, AppState& state,
                           EngineLink& engine, ErrorReporter& reporter, OpenWorld& world,
                           ShowHelpPage showHelpPage)
    : QObject(&form), form_(form), renderForm_(renderForm), state_(state), engine_(engine),
      reporter_(reporter), world_(world), showHelpPage_(std::move(showHelpPage)),
      clipboard_(std::make_unique<SystemClipboard>()) {
    tools_ = std::make_unique<ToolSessions>(
        state_, engine_, reporter_, *this, *clipboard_,
        [] { return std::make_unique<QtToolProcess>(); }, QDir::tempPath());
    world_.script().requests().registerHandler(
        ScriptRequest::Kind::PaintObject,
        [this](const ScriptRequest& request) { tools_->mnuPaint_Click(request.Value); });
    form_.connectMenuCommand("mnuMakeObject", [this] { tools_->StartSketchTool(); });
    const auto command = [this](const char* control, auto work) {
        QAction* action = form_.findChild<QAction*>(QString::fromUtf8(control));
        action->setEnabled(true);
        connect(action, &QAction::triggered, this, work);
        return action;
    };
    command("HelpViewMenuButton", [this] {
        HelpViewMenuButton_Click();
    })->setShortcut(QKeySequence::HelpContents);
    command("HelpExampleMenuButton", [this] { HelpExampleMenuButton_Click(); });
    command("HelpPythonMenuButton", [this] { HelpPythonMenuButton_Click(); });
    command("HelpAboutMenuButton", [this] { HelpAboutMenuButton_Click(); });
}

HelpAndTools::~HelpAndTools() {
    world_.script().requests().registerHandler(ScriptRequest::Kind::PaintObject, {});
}

QString HelpAndTools::guidePage() const {
    return state_.HomeDir + kGuide;
}

void HelpAndTools::guarded(const QString& handler, const std::function<void()>& work) {
    try {
        asRunTimeError(work);
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(
            ReportForm::C, QStringLiteral("VB:MainForm:") + handler + QStringLiteral(" Error"), e);
    }
}

// The first example world, with its page of the guide beside it.
void HelpAndTools::HelpViewMenuButton_Click() {
    guarded(QStringLiteral("HelpViewMenuButton_Click()"), [&] {
        if (world_.IsWorldDirty() && form_.SaveChangesPrompt() == 2)
            return;
        const QString example = state_.HomeDir + kFirstExample;
        if (QFileInfo(example).isDir())
            form_.LoadWorld(example, true);
        else if (QFileInfo::exists(guidePage()))
            showHelpPage_(guidePage());
    });
}

void HelpAndTools::HelpExampleMenuButton_Click() {
    chooseWorldIn(state_.HomeDir + kExamples);
}

void HelpAndTools::HelpPythonMenuButton_Click() {
    chooseWorldIn(state_.HomeDir + kPythonExamples);
}

void HelpAndTools::chooseWorldIn(const QString& folder) {
    guarded(QStringLiteral("HelpExampleMenuButton_Click()"), [&] {
        if (form_.objectTreeVisible())
            world_.pollTreeDifferences();
        if (world_.IsWorldDirty() && form_.SaveChangesPrompt() == 2)
            return;
        QCoreApplication::processEvents();
        if (!worldForm_)
            worldForm_ = new WorldForm(&form_);
        worldForm_->begin(WorldForm::Use::Open, folder);
        worldForm_->setWindowTitle(QStringLiteral("Vessa47 - Load A World"));
        if (worldForm_->exec() != QDialog::Accepted || worldForm_->chosenFolder().isEmpty())
            return;
        if (const QString left = world_.status().worldSaveFile(); !left.isEmpty())
            CleanUpBackups(left, QDate::currentDate());
        form_.LoadWorld(worldForm_->chosenFolder(), true);
    });
}

void HelpAndTools::HelpAboutMenuButton_Click() {
    if (!aboutForm_) {
        aboutForm_ =
            new AboutForm(engine_.call(QStringLiteral("GetVersionText")).toString(), &form_);
        aboutForm_->setAttribute(Qt::WA_DeleteOnClose);
        connect(aboutForm_, &QObject::destroyed, this, [this] { aboutForm_ = nullptr; });
    }
    aboutForm_->show();
    aboutForm_->raise();
    aboutForm_->activateWindow();
}

void HelpAndTools::fillSiteMenu() {
    auto* menu = form_.findChild<QMenu*>(QStringLiteral("SiteSpecificMenuButton"));
    menu->clear();
    const QVariantList rows = engine_.call(QStringLiteral("GetSiteSpecific")).toList();
    for (const QVariant& row : rows) {
        const QVariantList items = row.toList();
        if (items.size() < 2)
            continue;
        QAction* item = menu->addAction(items[0].toString());
        item->setObjectName(QStringLiteral("SiteMenuButton"));
        item->setData(items[1].toString());
        connect(item, &QAction::triggered, this, [this, item] {
            guarded(QStringLiteral("SiteMenuButton_Click()"), [&] {
                reporter_.CheckInterpreterResult(
                    engine_.ExecuteCode(item->data().toString(), QStringLiteral("<Tool>")),
                    QStringLiteral("MainForm:SiteMenuButton_Click: Error bringing up site "
                                   "specific menu."));
            });
        });
    }
    menu->menuAction()->setVisible(!menu->actions().isEmpty());
}

void HelpAndTools::showMessage(const QString& title, const QString& text) {
    QMessageBox::information(&form_, title, text);
}

void HelpAndTools::showToolMissing(const ErrorFormContent& content) {
    // The form would be hidden under a camera window kept on top.
    renderForm_.AlwaysOnTop(false);
    ErrorForm errorForm(
        content, [this] { return state_.VersionText; }, &form_);
    errorForm.exec();
    renderForm_.AlwaysOnTop(renderForm_.Check1Value());
}

int HelpAndTools::sceneScriptTab() const {
    return world_.status().SceneScriptTab();
}

void HelpAndTools::switchToTab(int tab) {
    form_.SwitchToTab(tab);
}

void HelpAndTools::setIdleTimerInterval(int ms) {
    form_.setIdleTimerInterval(ms);
}

} // namespace vessa
