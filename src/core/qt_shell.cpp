#include "core/qt_shell.h"

#include "core/app_state.h"
#include "core/help_form.h"
#include "core/main_form.h"
#include "core/render_form.h"
#include "core/splash_screen.h"
#include "core/view_hosts.h"

#include <QApplication>
#include <QScreen>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

namespace vessa {

namespace {

double twipsPerPixelOf(double logicalDpi) {
    return logicalDpi > 0 ? 1440.0 / logicalDpi : 15.0;
}

QScreen* primaryScreen() {
    return QGuiApplication::primaryScreen();
}

} // namespace

QtShell::QtShell(AppState& state, EngineLink& engine, ErrorReporter& reporter)
    : state_(state), engine_(engine), reporter_(reporter) {
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
    mainForm_ = std::make_unique<MainForm>(state_, engine_, reporter_, *renderForm_);
}

void QtShell::createRenderForm() {
    if (renderForm_)
        return;
    renderForm_ = std::make_unique<RenderForm>();
}

double QtShell::twipsPerPixelX() const {
    return twipsPerPixelOf(primaryScreen() ? primaryScreen()->logicalDotsPerInchX() : 96);
}

double QtShell::twipsPerPixelY() const {
    return twipsPerPixelOf(primaryScreen() ? primaryScreen()->logicalDotsPerInchY() : 96);
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
    if (!helpForm_)
        helpForm_ = std::make_unique<HelpForm>();
    helpForm_->show();
    helpForm_->navigate(page);
    renderForm_->AlwaysOnTop(renderForm_->Check1Value());
}

void QtShell::SetSaveName(const QString& name) {
    mainForm_->SetSaveName(name);
}

void QtShell::setIdleTimerInterval(int ms) {
    mainForm_->setIdleTimerInterval(ms);
}

void QtShell::markWorldClean() {
    mainForm_->worldIsDirty = false;
}

bool QtShell::HelpFormWanted() const {
    return state_.HelpFormWanted;
}

void QtShell::HandleDifferences(const QVariant& differences) {
    mainForm_->HandleDifferences(differences);
}

bool QtShell::objectTreeVisible() const {
    return mainForm_ && mainForm_->objectTreeVisible();
}

void QtShell::LogMessage(const QString& text) {
    if (mainForm_)
        mainForm_->LogMessage(text);
}

void QtProcessControl::endProcess(int exitCode) {
    std::fflush(stdout);
    std::fflush(stderr);
    std::_Exit(exitCode);
}

} // namespace vessa
