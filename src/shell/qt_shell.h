#pragma once

#include "gateway/error_display.h"
#include "shell/shell.h"

#include <memory>

namespace vessa {

class MainForm;
class RenderForm;
class HelpAndTools;
class HelpForm;
class SplashScreen;
struct AppState;
class EngineLink;
class ErrorReporter;
class OpenWorld;
class WebPageCommand;

// The program's windows and Qt's event pump behind the Shell that start-up and
// the main loop drive.
class QtShell : public Shell {
public:
    QtShell(AppState& state, EngineLink& engine, ErrorReporter& reporter, OpenWorld& world);
    ~QtShell() override;

    MainForm* mainForm() const { return mainForm_.get(); }
    HelpAndTools* helpAndTools() const { return helpAndTools_; }
    HelpForm* helpForm() const { return helpForm_.get(); }
    RenderForm* renderForm() const { return renderForm_.get(); }

    int displayBitsPerPixel() override;
    void createSplash() override;
    void showSplash() override;
    void refreshSplash() override;
    void unloadSplash() override;
    void pumpEvents() override;
    void pumpEventsWaiting(int maxWaitMs) override;
    void createMainForm() override;
    void createRenderForm() override;
    double twipsPerPixelX() const override;
    double twipsPerPixelY() const override;
    void showMainForm() override;
    void setMainFormCaption(const QString& caption) override;
    qint64 openingSceneHostId() const override;
    QSize openingSceneSizeTwips() const override;
    void showHelpPage(const QString& page) override;
    void setIdleTimerInterval(int ms) override;
    bool HelpFormWanted() const override;
    bool objectTreeVisible() const override;
    void LogMessage(const QString& text) override;
    void offerRecoveredWork() override;

private:
    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    OpenWorld& world_;
    std::unique_ptr<SplashScreen> splash_;
    std::unique_ptr<RenderForm> renderForm_;
    std::unique_ptr<MainForm> mainForm_;
    std::unique_ptr<HelpForm> helpForm_;
    HelpAndTools* helpAndTools_ = nullptr; // Owned by the main window.
    std::unique_ptr<WebPageCommand> webPageCommand_;
};

// Ends the process at once, without running destructors of windows or of the
// embedded engine.
class QtProcessControl : public ProcessControl {
public:
    [[noreturn]] void endProcess(int exitCode) override;
};

} // namespace vessa
