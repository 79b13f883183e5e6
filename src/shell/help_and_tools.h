#pragma once

#include "export/tool_sessions.h"

#include <QObject>

#include <memory>

class QMenu;

namespace vessa {

class AboutForm;
class EngineLink;
class ErrorReporter;
class MainForm;
class OpenWorld;
class RenderForm;
class WorldForm;
struct AppState;

// The main window's commands that reach outside the world: the paint and sketch tools,
// the Help menu (the guide, the example worlds, About) and the site's own menu.
class HelpAndTools : public QObject, public ToolSessionsView {
    Q_OBJECT
public:
    using ShowHelpPage = std::function<void(const QString& page)>;
    HelpAndTools(MainForm& form, RenderForm& renderForm, AppState& state, EngineLink& engine,
                 ErrorReporter& reporter, OpenWorld& world, ShowHelpPage showHelpPage);
    ~HelpAndTools() override;

    ToolSessions& tools() { return *tools_; }
    // The guide's first page.
    QString guidePage() const;

    void HelpViewMenuButton_Click();
    void HelpExampleMenuButton_Click();
    void HelpPythonMenuButton_Click();
    void HelpAboutMenuButton_Click();
    // Fills the Site Specific menu with the engine's rows; hidden when there are none.
    void fillSiteMenu();

    // ToolSessionsView
    void showMessage(const QString& title, const QString& text) override;
    void showToolMissing(const ErrorFormContent& content) override;
    int sceneScriptTab() const override;
    void switchToTab(int tab) override;
    void setIdleTimerInterval(int ms) override;

private:
    // Chooses a world to load in folder, after the question about unsaved work.
    void chooseWorldIn(const QString& folder);
    void guarded(const QString& handler, const std::function<void()>& work);

    MainForm& form_;
    RenderForm& renderForm_;
    AppState& state_;
    EngineLink& engine_;
    ErrorReporter& reporter_;
    OpenWorld& world_;
    ShowHelpPage showHelpPage_;
    std::unique_ptr<ToolClipboard> clipboard_;
    std::unique_ptr<ToolSessions> tools_;
    WorldForm* worldForm_ = nullptr; // Owned by Qt; made the first time it is asked for
    AboutForm* aboutForm_ = nullptr; // Owned by Qt; made the first time it is asked for
};

} // namespace vessa
