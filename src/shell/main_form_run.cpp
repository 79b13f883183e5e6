// The main window's side of the tabs and of a run: the Perform button, the traffic
// light, the script text, the menu items each tab allows, and where the camera view
// stands. What happens is the WorldRun's; these only show it and forward the user's
// presses.
#include "controls/accessible_names.h"
#include "controls/named_tab_bar.h"
#include "controls/picture_button.h"
#include "events/event_panel.h"
#include "scene/scene_panel.h"
#include "script/script_panel.h"
#include "shell/main_form.h"
#include "shell/render_form.h"
#include "shell/trash_can.h"
#include "shell/view_hosts.h"
#include "text/code_editor.h"
#include "world/open_world.h"

#include <QAction>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTextBlock>
#include <QToolButton>

namespace vessa {

namespace {

// Whether a menu item has its command yet, and whether the tab shown allows it.
const char* const kHasCommand = "vessaHasCommand";
const char* const kTabAllows = "vessaTabAllows";

bool tabAllows(const QAction* action) {
    const QVariant allows = action->property(kTabAllows);
    return !allows.isValid() || allows.toBool();
}

// The stored yes or no of a preference; `otherwise` when none is stored.
bool storedChoice(const RegKeys& settings, const QString& name, bool otherwise) {
    const QString stored = settings.GetRegValue(RegistryRoot::LocalMachine, kPreferencesKey, name);
    return stored.isEmpty() ? otherwise : isStoredTrue(stored);
}

void setNamedState(QToolButton* button, const QString& text, const QString& state) {
    button->setText(text);
    const QString control = button->objectName();
    button->setAccessibleName(state.isEmpty() ? accessibleNameOf(control)
                                              : accessibleNameOf(control, state));
}

} // namespace

QWidget* MainForm::buildRunControls(QWidget* parent) {
    const auto makeButton = [&](const char* control, const char* picture, const QString& toolTip) {
        auto* button = new PictureButton(QString::fromLatin1(picture), QString(), parent);
        button->setObjectName(QString::fromLatin1(control));
        button->setShowsCaption(true);
        button->setToolTip(toolTip);
        return button;
    };
    // The underlined letters are the keys: Alt+P performs, Alt+S stops, Alt+R resets.
    performScriptButton_ = makeButton("PerformScriptButton", "PerformScript",
                                      QStringLiteral("Run the world in the camera window (Alt+P)"));
    trafficLightImage_ = makeButton(
        "TrafficLightImage", "LightReset",
        QStringLiteral("Stop the world and put it back as it starts (Alt+S while it runs, Alt+R "
                       "after; Esc in the camera window)"));
    scriptText_ = new CodeEditor(parent);
    scriptText_->setObjectName(QStringLiteral("ScriptText"));
    scriptText_->hide();

    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scriptUndoButton_);
    layout->addWidget(scriptRedoButton_);
    layout->addWidget(performScriptButton_);
    layout->addWidget(trafficLightImage_);
    layout->addStretch();
    layout->addWidget(trashCan_);
    return row;
}

void MainForm::connectRun() {
    WorldRun::Preferences preferences;
    preferences.CodeBoxVisible = [this] {
        return settings_->GetRegValue(RegistryRoot::LocalMachine, kPreferencesKey,
                                      QStringLiteral("CodeBoxVisible"));
    };
    preferences.BackupsEnabled = storedChoice(*settings_, QStringLiteral("AutoSaveEnabled"), true);
    run_ = std::make_unique<WorldRun>(state_, engine_, reporter_, world_, std::move(preferences),
                                      *this);
    connect(performScriptButton_, &QToolButton::clicked, this,
            [this] { run_->PerformScriptButton_MouseUp(); });
    connect(trafficLightImage_, &QToolButton::clicked, this,
            [this] { run_->TrafficLightImage_MouseUp(); });
    connect(&renderForm_, &RenderForm::stopAsked, this,
            [this] { run_->TrafficLightImage_MouseUp(); });
    // Closing the camera window takes the view home, and a running world stops.
    connect(&renderForm_, &RenderForm::closedByUser, this, [this] {
        if (cleanedUp_)
            return;
        SwitchToTab(0);
        pumpEvents();
    });
    connect(scriptText_, &QPlainTextEdit::textChanged, this,
            [this] { run_->editScriptText(scriptText_->toPlainText()); });
    // F12 shows the world's Python, or hides it, on the script's tabs.
    auto* flip = new QAction(this);
    flip->setShortcut(Qt::Key_F12);
    connect(flip, &QAction::triggered, this, [this] {
        if (world_.status().SceneScriptTab() != 0)
            run_->flipScriptText();
    });
    addAction(flip);
    world_.setScriptErrorListener(
        [this](const ScriptErrorPlace& place) { run_->markError(place); });
    run_->SetWorldIdle();
    connectCodeBox();
}

void MainForm::connectMenuCommand(const char* control, const std::function<void()>& work) {
    QAction* action = findChild<QAction*>(QString::fromUtf8(control));
    connect(action, &QAction::triggered, this, work);
    action->setProperty(kHasCommand, true);
    action->setEnabled(tabAllows(action));
}

void MainForm::enableMenuItems(std::initializer_list<const char*> items, bool enabled) {
    for (const char* control : items) {
        QAction* action = findChild<QAction*>(QString::fromUtf8(control));
        action->setProperty(kTabAllows, enabled);
        // A command still to be built stays disabled rather than do nothing.
        action->setEnabled(enabled && action->property(kHasCommand).toBool());
    }
}

void MainForm::showSelectedTab(int tab) {
    switchTab_->setCurrentIndex(tab);
}

void MainForm::showTabPage(int tab) {
    if (tab != 0) {
        scriptPanel_->ConstructTreeView().setVisible(tab == 1);
        eventPanel_->setVisible(tab == 2);
    }
    scenePanel_->showTab(tab);
    sceneScriptTab_->setCurrentIndex(tab == 0 ? 0 : 1);
}

void MainForm::showCodeBox(bool shown) {
    scriptPanel_->SetCodeBoxShown(shown);
    showCodeBoxOfWorld();
}

ViewHostPlace MainForm::openingSceneHost() const {
    return {viewHostId(openingSceneFrame_), openingSceneFrame_->width(),
            openingSceneFrame_->height()};
}

ViewHostPlace MainForm::cameraWindowHost() const {
    const QWidget* frame = renderForm_.RenderFrame();
    return {viewHostId(frame), frame->width(), frame->height()};
}

void MainForm::showCameraWindow(bool shown) {
    renderForm_.setVisible(shown);
}

void MainForm::focusCameraWindow() {
    renderForm_.raise();
    renderForm_.activateWindow();
}

void MainForm::showPerformPicture(PerformPicture picture) {
    performScriptButton_->setPicture(picture == PerformPicture::Again
                                         ? QStringLiteral("PerformScriptAgain")
                                         : QStringLiteral("PerformScript"));
    if (picture == PerformPicture::Again)
        setNamedState(performScriptButton_, QStringLiteral("&Perform Again"),
                      QStringLiteral("running"));
    else
        setNamedState(performScriptButton_, QStringLiteral("&Perform"), QString());
}

void MainForm::showLightPicture(LightPicture picture) {
    if (picture == LightPicture::Stop) {
        trafficLightImage_->setPicture(QStringLiteral("LightStop"));
        setNamedState(trafficLightImage_, QStringLiteral("&Stop"), QStringLiteral("running"));
    } else {
        trafficLightImage_->setPicture(QStringLiteral("LightReset"));
        setNamedState(trafficLightImage_, QStringLiteral("&Reset"), QString());
    }
}

void MainForm::showNotice(const QString& text) {
    appendOutput(text + QLatin1Char('\n'), QColor(255, 0, 0));
}

void MainForm::showScriptText(const ScriptTextBox& box) {
    scriptText_->setVisible(box.Visible);
    if (!box.Visible)
        return; // a hidden text is brought up to date when it is shown
    QString shown = box.Text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (scriptText_->toPlainText() != shown) {
        // The text the run holds is already the model's; only the widget follows.
        const QSignalBlocker quiet(scriptText_);
        scriptText_->setPlainText(shown);
    }
    refreshWorldNames();
    if (box.errorLine >= 0) {
        ScrollErrorText(box.errorLine + 1);
        HighlightErrorText(box.errorLine + 1);
    }
}

} // namespace vessa
