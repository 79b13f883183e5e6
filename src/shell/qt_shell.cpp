#include "shell/qt_shell.h"

#include "controls/twips.h"
#include "gateway/app_state.h"
#include "shell/help_and_tools.h"
#include "shell/help_form.h"
#include "shell/main_form.h"
#include "shell/render_form.h"
#include "shell/splash_screen.h"
#include "shell/view_hosts.h"
#include "shell/web_page_command.h"
#include "world/open_world.h"

#include <QAction>
#include <QApplication>
#include <QScreen>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

namespace vessa {

namespace {

QScreen* primaryScreen() {
    return QGuiApplication::primaryScreen();
}

} // namespace

QtShell::QtShell(AppState& state, EngineLink& engine, ErrorReporter& reporter, OpenWorld& world)
    : state_(state), engine_(engine), reporter_(reporter), world_(world) {
}

QtShell::~QtShell() = default;

int QtShell::displayBitsPerPixel() {
    return splash_ ? splash_->displayBitsPerPixel() : 32;
}

void QtShell::createSplash() {
    splash_ = std::make_unique<SplashScreen>();
}

void QtShell::showSplash() {
    if (splash_)
        splash_->show();
}

void QtShell::refreshSplash() {
    if (splash_)
        splash_->repaint();
}

void QtShell::unloadSplash() {
    splash_.reset();
}

void QtShell::pumpEvents() {
    QCoreApplication::processEvents();
}

void QtShell::pumpEventsWaiting(int maxWaitMs) {
    if (maxWaitMs <= 0) {
        QCoreApplication::processEvents();
        return;
    }
    QTimer wake;
    wake.setSingleShot(true);
    wake.start(maxWaitMs);
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void QtShell::createMainForm() {
    createRenderForm();
    mainForm_ = std::make_unique<MainForm>(state_, engine_, reporter_, *renderForm_, world_);
    mainForm_->RestoreSettings();
    QObject::connect(mainForm_.get(), &MainForm::helpPageWanted,
                     [this](const QString& page) { showHelpPage(page); });
    helpAndTools_ = new HelpAndTools(*mainForm_, *renderForm_, state_, engine_, reporter_, world_,
                                     [this](const QString& page) { showHelpPage(page); });
    helpAndTools_->fillSiteMenu();
    webPageCommand_ = std::make_unique<WebPageCommand>(
        mainForm_.get(), state_, engine_, reporter_, world_,
        [this] { return mainForm_->FileSaveMenuButton_Click(); },
        [this] { return mainForm_->FileSaveAsMenuButton_Click(); });
    auto* saveAsWWW = mainForm_->findChild<QAction*>(QStringLiteral("FileSaveAsWWWMenuButton"));
    saveAsWWW->setEnabled(true);
    QObject::connect(saveAsWWW, &QAction::triggered, mainForm_.get(),
                     [this] { webPageCommand_->FileSaveAsWWWMenuButton_Click(); });
}

void QtShell::createRenderForm() {
    if (renderForm_)
        return;
    renderForm_ = std::make_unique<RenderForm>();
}

double QtShell::twipsPerPixelX() const {
    return twipsPerPixel(primaryScreen());
}

double QtShell::twipsPerPixelY() const {
    return twipsPerPixel(primaryScreen());
}

void QtShell::showMainForm() {
    mainForm_->show();
}

void QtShell::setMainFormCaption(const QString& caption) {
    mainForm_->setWindowTitle(caption);
}

qint64 QtShell::openingSceneHostId() const {
    return viewHostId(mainForm_->OpeningSceneFrame());
}

QSize QtShell::openingSceneSizeTwips() const {
    const QSize pixels = mainForm_->OpeningSceneFrame()->size();
    return {static_cast<int>(pixels.width() * twipsPerPixelX()),
            static_cast<int>(pixels.height() * twipsPerPixelY())};
}

void QtShell::showHelpPage(const QString& page) {
    if (!helpForm_) {
        helpForm_ = std::make_unique<HelpForm>(QStringList{
            state_.HomeDir + QStringLiteral("Help"), state_.HomeDir + QStringLiteral("Worlds")});
        // A link to a world's page opens the world, unless the user keeps the one open.
        QObject::connect(helpForm_.get(), &HelpForm::worldWanted, [this](const QString& folder) {
            if (world_.IsWorldDirty() && mainForm_->SaveChangesPrompt() == 2)
                return;
            mainForm_->LoadWorld(folder, false);
        });
        mainForm_->keepHelpForm(*helpForm_);
    }
    helpForm_->show();
    helpForm_->navigate(page);
    renderForm_->AlwaysOnTop(renderForm_->Check1Value());
}

void QtShell::setIdleTimerInterval(int ms) {
    mainForm_->setIdleTimerInterval(ms);
}

bool QtShell::HelpFormWanted() const {
    return state_.HelpFormWanted;
}

bool QtShell::objectTreeVisible() const {
    return mainForm_ && mainForm_->objectTreeVisible();
}

void QtShell::LogMessage(const QString& text) {
    if (mainForm_)
        mainForm_->LogMessage(text);
}

void QtShell::offerRecoveredWork() {
    if (mainForm_)
        mainForm_->offerRecoveredWork();
}

void QtProcessControl::endProcess(int exitCode) {
    std::fflush(stdout);
    std::fflush(stderr);
    std::_Exit(exitCode);
}

} // namespace vessa
