#include "shell/main_form.h"

#include "controls/accessible_names.h"
#include "controls/named_tab_bar.h"
#include "controls/picture_button.h"
#include "events/event_panel.h"
#include "gateway/output_limits.h"
#include "scene/adding_commands.h"
#include "scene/mouse_tools.h"
#include "scene/scene_panel.h"
#include "script/script_panel.h"
#include "shell/archive_dialogs.h"
#include "shell/edit_menu.h"
#include "shell/error_form.h"
#include "shell/loop_wait.h"
#include "shell/main_form_area.h"
#include "shell/opening_scene.h"
#include "shell/recent_files_menu.h"
#include "shell/render_form.h"
#include "shell/settings_store.h"
#include "shell/trash_can.h"
#include "shell/view_hosts.h"
#include "shell/window_keeper.h"
#include "shell/world_dialog.h"
#include "shell/world_trust.h"
#include "text/arbitrary_code_box.h"
#include "text/code_editor.h"
#include "text/command_line_bar.h"
#include "text/find_form.h"
#include "text/font_lists.h"
#include "world/autosave.h"
#include "world/code_box_run.h"
#include "world/open_world.h"
#include "world/recovery_store.h"
#include "world/world_files.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QChildEvent>
#include <QCloseEvent>
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QStackedWidget>
#include <QStyle>
#include <QTextEdit>
#include <QToolButton>
#include <QVBoxLayout>

namespace vessa {

namespace {

// Diagnostics stay in the program but are switched off.
constexpr bool kLogMessagesOn = false;

// How often a copy of unsaved work is kept, unless the preferences say otherwise.
constexpr int kRecoveryCopySeconds = 120;

const QString kTrustExplanation = QStringLiteral(
    "A world's code can do anything a program on this computer can do: read, change and "
    "delete your files, use the network and start other programs. Until you trust a world, "
    "Vessa47 stops its code from doing these things.\n\nTrust only a world you made "
    "yourself or that comes from someone you know well. You can take your trust back by "
    "choosing this command again.\n\nTrust this world's code?");

struct MenuItemSpec {
    const char* control;
    const char* caption; // empty: a separator
};

struct MenuSpec {
    const char* control;
    const char* caption;
    std::initializer_list<MenuItemSpec> items;
};

const MenuSpec kMenus[] = {
    {"FileMenuButton",
     "&File",
     {{"FileNewMenuButton", "&New World"},
      {"FileOpenMenuButton", "&Open World..."},
      {"mnuImportVES", "&Import VES File..."},
      {"", ""},
      {"FileSaveMenuButton", "&Save"},
      {"FileSaveAsMenuButton", "Save &As..."},
      {"FileSaveAsWWWMenuButton", "Save As &WWW Page..."},
      {"mnuSendToFriend", "Send To A &Friend..."},
      {"mnuTrustWorld", "&Trust This World's Code"},
      {"", ""},
      {"FileStartCameraHere", "Make Camera Start Here in Opening Scene"},
      {"FileOpeningScene", "Make This the Opening Scene"},
      {"", ""},
      {"mnuMakeObject", "Make Object..."},
      {"mnuAddObject", "Add Object..."},
      {"mnuAddSounds", "Add Sound..."},
      {"mnuAddText", "Add Text..."},
      {"", ""},
      {"FileExitMenuButton", "E&xit"}}},
    {"EditMenuButton",
     "&Edit",
     {{"EditUndoTextMenuButton", "&Undo Changes to Script"},
      {"EditRedoTextMenuButton", "&Redo Changes to Script"},
      {"", ""},
      {"EditCutMenuButton", "Cu&t"},
      {"EditCopyMenuButton", "&Copy"},
      {"EditPasteMenuButton", "&Paste"},
      {"EditDeleteMenuButton", "&Delete"},
      {"", ""},
      {"EditSelectAllMenuButton", "Select A&ll"},
      {"", ""},
      {"EditFindMenuButton", "&Find..."},
      {"EditReplaceMenuButton", "Replace..."}}},
    {"HelpMenuButton",
     "&Help",
     {{"HelpViewMenuButton", "View Online Help..."},
      {"HelpExampleMenuButton", "Example Worlds..."},
      {"HelpPythonMenuButton", "Python Example Worlds..."},
      {"", ""},
      {"HelpAboutMenuButton", "About Vessa..."}}},
    {"SiteSpecificMenuButton", "S&ite Specific", {}},
    {"ScriptTextMenuButton",
     "Script Text",
     {{"ScriptTextOTFButton", "Make \"On The Fly\" &Button"}}},
};

} // namespace

MainForm::MainForm(AppState& state, EngineLink& engine, ErrorReporter& reporter,
                   RenderForm& renderForm, OpenWorld& world)
    : state_(state), engine_(engine), reporter_(reporter), renderForm_(renderForm), world_(world),
      outputText_(new QTextEdit(this)), openingSceneFrame_(new QFrame(this)),
      gCameraWindowOnTop(renderForm.Check1Value()) {
    setObjectName(QStringLiteral("MainForm"));
    setWindowTitle(QStringLiteral("Vessa47"));
    menuBar()->setObjectName(QStringLiteral("menuBar"));
    buildMenus();

    openingSceneFrame_->setObjectName(QStringLiteral("OpeningSceneFrame"));
    markViewHost(openingSceneFrame_, OpeningSceneHost);
    openingSceneFrame_->installEventFilter(this);
    renderForm_.RenderFrame()->installEventFilter(this);
    connect(&renderForm_, &RenderForm::alwaysOnTopChosen, this,
            [this](bool onTop) { gCameraWindowOnTop = onTop; });
    openingSceneFrame_->setFrameShape(QFrame::StyledPanel);
    openingSceneFrame_->setMinimumSize(320, 240);
    openingSceneFrame_->setStyleSheet(
        QStringLiteral("QFrame#OpeningSceneFrame { background: #20242c; }"));

    outputText_->setObjectName(QStringLiteral("OutputText"));
    outputText_->setReadOnly(true);
    // Read with the keyboard's caret, as a screen reader reads a document.
    outputText_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    outputText_->setAcceptRichText(false);
    outputText_->setLineWrapMode(QTextEdit::WidgetWidth);
    outputText_->document()->setMaximumBlockCount(kOutputPaneLines);

    const double perPixel = twipsPerPixel(this);
    resize(qRound(9000 / perPixel), qRound(9360 / perPixel));
    setCentralWidget(buildColumns());

    IdleTimer.setObjectName(QStringLiteral("IdleTimer"));
    connect(&IdleTimer, &QTimer::timeout, this, &MainForm::IdleTimer_Timer);

    applyAccessibleNames(this);
    addKeyboardCommands();
    orderTabStops();
    world_.attachView(this);
    world_.status().addObserver(*this);
    world_.script().setUndoListener([this] { showScriptUndoAvailable(); });
    settings_ = std::make_unique<RegKeys>();
    trust_ = std::make_unique<WorldTrust>(*settings_);
    recovery_ = std::make_unique<RecoveryStore>();
    files_ = std::make_unique<WorldFiles>(WorldContext{state_, engine_, reporter_, world_, *this,
                                                       [this](const QString& folder) {
                                                           return trust_->isTrusted(folder);
                                                       }},
                                          *recovery_);
    archiveDialogs_ = std::make_unique<ArchiveDialogs>(this, *trust_);
    archive_ = std::make_unique<WorldArchive>(*files_, *archiveDialogs_);
    autosave_ = std::make_unique<Autosave>(engine_, world_, *recovery_,
                                           [this](const QString& line) { PrintOutput(line); });
    connectFileCommands();
    connectRun();
    keepWindows();
    SwitchToTab(0);
    // Where a user begins: the objects of the scene.
    scenePanel_->ObjectTreeView().setFocus();
}

MainForm::~MainForm() {
    autosave_->stop();
    world_.setScriptErrorListener({});
    world_.script().setUndoListener({});
    world_.status().removeObserver(*this);
    world_.attachView(nullptr);
}

// The scene's column, the tabs and their pages, and the output pane: the area takes
// their controls and places them.
QWidget* MainForm::buildColumns() {
    scenePanel_ = new ScenePanel(world_.trees(), engine_, reporter_, world_.script().DragNode,
                                 {[this] { return world_.status().SceneScriptTab(); },
                                  [this](const QString& name, const QPoint& point) {
                                      world_.showObjectMenu(name, point);
                                  }},
                                 this);
    return buildArea({scenePanel_, buildScriptTabs()});
}

QWidget* MainForm::buildOpeningScenePanel() {
    auto* panel = new QWidget(this);
    panel->setObjectName(QStringLiteral("OpeningScenePanel"));
    undoButton_ = makeUndoButton(QStringLiteral("UndoButton"), QStringLiteral("Undo"), panel);
    // The engine's own undo, disabled while the engine has nothing to undo, which its
    // records tell.
    connect(undoButton_, &QToolButton::clicked, this, &MainForm::UndoButton_MouseUp);
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->addWidget(undoButton_);
    buttons->addWidget(buildAddingButtons(panel));
    buttons->addStretch(1);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(buttons);
    layout->addWidget(openingSceneFrame_, 1);
    layout->addWidget(buildOpeningSceneTools(panel));
    return panel;
}

QWidget* MainForm::buildAddingButtons(QWidget* parent) {
    adding_ = new AddingCommands(state_, engine_, reporter_, this);
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    const struct {
        const char* control;
        const char* menuEntry;
        const char* picture;
    } commands[] = {{"AddObjectButton", "mnuAddObject", "AddObject"},
                    {"AddSoundsButton", "mnuAddSounds", "AddSound"},
                    {"AddTextButton", "mnuAddText", "AddText"}};
    for (const auto& [control, menuEntry, picture] : commands) {
        QAction* entry = findChild<QAction*>(QString::fromLatin1(menuEntry));
        auto* button = new PictureButton(QString::fromLatin1(picture), entry->text(), row);
        button->setObjectName(QString::fromLatin1(control));
        layout->addWidget(button);
        connect(button, &QToolButton::clicked, this, [this, entry] {
            world_.trees().SelectedObjectName.clear();
            entry->trigger();
        });
        lastAddingButton_ = button;
    }
    // Marked as having their commands, so that the tabs that allow them enable them.
    connectMenuCommand("mnuAddObject", [this] { adding_->AddObjectFile(); });
    connectMenuCommand("mnuAddSounds", [this] { adding_->AddSoundFile(); });
    connectMenuCommand("mnuAddText", [this] { adding_->showAddTextForm(); });
    return row;
}

QToolButton* MainForm::makeUndoButton(const QString& control, const QString& picture,
                                      QWidget* parent) {
    auto* button = new PictureButton(picture, accessibleNameOf(control), parent);
    button->setObjectName(control);
    button->setEnabled(false);
    return button;
}

void MainForm::UndoButton_MouseUp() {
    try {
        runTool(engine_, reporter_, QStringLiteral("undo()"),
                QStringLiteral("MainForm:UndoButton_MouseUp: Error calling undo."));
        runTool(engine_, reporter_, QStringLiteral("PlaySystemSound('Undo')"),
                QStringLiteral("MainForm:UndoButton_MouseUp: Error playing sound."));
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C,
                              QStringLiteral("VB:MainForm:UndoButton_MouseUp() Error"), e);
    }
}

// The undo and redo of what the user edits on the tab shown, from the Edit menu, the
// keys and the buttons over the script: the script's log, or on the events tab the event
// rows' log. Each log keeps its own history while the other tab shows.
void MainForm::EditUndoTextMenuButton_Click() {
    if (world_.status().SceneScriptTab() == 2)
        eventPanel_->LVUndoFromLog();
    else
        scriptPanel_->UndoFromLog();
}

void MainForm::EditRedoTextMenuButton_Click() {
    if (world_.status().SceneScriptTab() == 2)
        eventPanel_->LVRedoFromLog();
    else
        scriptPanel_->RedoFromLog();
}

void MainForm::showScriptUndoAvailable() {
    const bool events = world_.status().SceneScriptTab() == 2;
    scriptUndoButton_->setEnabled(events ? !world_.events().ListUndoLog().IsEmpty()
                                         : !world_.script().TreeUndoRecords().IsEmpty());
    const bool canRedo = world_.status().SceneScriptTab() != 0 &&
                         (events ? world_.events().ListUndoLog().CanRedo()
                                 : world_.script().TreeUndoRecords().CanRedo());
    scriptRedoButton_->setEnabled(canRedo);
    enableMenuItems({"EditRedoTextMenuButton"}, canRedo);
}

// The tab bar over the two panels: the opening scene, and the script that the
// animation and event tabs share.
QWidget* MainForm::buildScriptTabs() {
    auto* area = new QWidget(this);
    switchTab_ = new NamedTabBar(area);
    switchTab_->setObjectName(QStringLiteral("SwitchTab"));
    for (const char* caption : {"Opening Scene", "Animations", "Events"})
        switchTab_->addTab(QString::fromUtf8(caption));
    // However the current tab changes (a click, the arrow keys, a screen reader's
    // press), the page follows.
    connect(switchTab_, &QTabBar::currentChanged, this, [this](int tab) {
        if (!switchingTab_ && tab >= 0)
            SwitchToTab(tab);
    });

    scriptUndoButton_ =
        makeUndoButton(QStringLiteral("ScriptUndoButton"), QStringLiteral("UndoAnim"), area);
    connect(scriptUndoButton_, &QToolButton::clicked, this,
            &MainForm::EditUndoTextMenuButton_Click);
    // Made before the script, so that Tab reaches the events before the script below them.
    eventPanel_ = new EventPanel(world_.events(), world_.trees().ObjectTree2, area);
    scriptRedoButton_ =
        makeUndoButton(QStringLiteral("ScriptRedoButton"), QStringLiteral("RedoAnim"), area);
    connect(scriptRedoButton_, &QToolButton::clicked, this,
            &MainForm::EditRedoTextMenuButton_Click);
    connect(eventPanel_, &EventPanel::listHistoryChanged, this,
            [this] { showScriptUndoAvailable(); });
    scriptPanel_ = new ScriptPanel(world_.script(), area);
    auto* scriptTab = new QWidget(area);
    auto* scriptLayout = new QVBoxLayout(scriptTab);
    scriptLayout->setContentsMargins(0, 0, 0, 0);
    connectEditCommands();
    trashCan_ = new TrashCan(world_.script(), world_.events(), *editMenu_, area);
    scriptLayout->addWidget(buildRunControls(scriptTab));
    scriptLayout->addWidget(eventPanel_, 1);
    scriptLayout->addWidget(scriptPanel_, 2);
    scriptLayout->addWidget(buildCodeBox(scriptTab));
    editMenu_->setCodeBox(&codeBox_->editor(), [this] { return CodeBoxHasFocus(); });
    commandLine_ = new CommandLineBar(engine_, reporter_, scriptPanel_->CommandLineTreeviewView(),
                                      world_.trees().ObjectTree, scriptTab);
    commandLine_->followClicksOn(scriptPanel_->TreeView1View());
    connect(scenePanel_, &ScenePanel::objectClicked, commandLine_,
            &CommandLineBar::ObjectTree_NodeClick);
    scriptLayout->addWidget(commandLine_);
    scriptLayout->addWidget(scriptText_, 2);

    sceneScriptTab_ = new QStackedWidget(area);
    sceneScriptTab_->addWidget(buildOpeningScenePanel());
    sceneScriptTab_->addWidget(scriptTab);

    auto* layout = new QVBoxLayout(area);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(switchTab_);
    layout->addWidget(sceneScriptTab_, 1);
    return area;
}

void MainForm::SwitchToTab(int tab) {
    const QScopedValueRollback<bool> switching(switchingTab_, true);
    run_->SwitchToTab(tab);
    showScriptUndoAvailable();
    area_->Form_Resize();
}

QWidget* MainForm::cameraViewHost() const {
    return world_.status().SceneScriptTab() == 0 ? openingSceneFrame_ : renderForm_.RenderFrame();
}

bool MainForm::eventFilter(QObject* watched, QEvent* event) {
    // The engine's camera view, when it comes into the opening scene, is reached right
    // after the buttons above it.
    if (event->type() == QEvent::ChildPolished && watched == openingSceneFrame_) {
        QObject* child = static_cast<QChildEvent*>(event)->child();
        if (child->isWidgetType())
            setTabOrder(lastAddingButton_, static_cast<QWidget*>(child));
    }
    if (event->type() == QEvent::Resize && watched == cameraViewHost() && engine_.isSet() &&
        !renderForm_.isMinimized()) {
        const QSize size = cameraViewHost()->size();
        try {
            reporter_.CheckInterpreterResult(engine_.call(QStringLiteral("setimagenavigatorsize"),
                                                          {size.width(), size.height()}),
                                             QStringLiteral("VB:RenderForm:Form_Resize() Error."));
        } catch (const RunTimeError& e) {
            reporter_.reportAtTop(ReportForm::A,
                                  QStringLiteral("VB:RenderForm:Form_Resize() Error."), e);
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainForm::buildMenus() {
    for (const MenuSpec& entry : kMenus) {
        QMenu* menu = menuBar()->addMenu(QString::fromUtf8(entry.caption));
        menu->setObjectName(QString::fromUtf8(entry.control));
        menu->menuAction()->setObjectName(QString::fromUtf8(entry.control));
        for (const MenuItemSpec& item : entry.items) {
            if (*item.control == '\0') {
                menu->addSeparator();
                continue;
            }
            QAction* action = menu->addAction(QString::fromUtf8(item.caption));
            action->setObjectName(QString::fromUtf8(item.control));
            // Commands come to life as the subsystems behind them are built.
            action->setEnabled(false);
        }
    }
    // Shown only when the engine offers site commands.
    findChild<QMenu*>(QStringLiteral("SiteSpecificMenuButton"))->menuAction()->setVisible(false);
    findChild<QAction*>(QStringLiteral("EditUndoTextMenuButton"))->setShortcut(QKeySequence::Undo);
    connectMenuCommand("EditUndoTextMenuButton", [this] { EditUndoTextMenuButton_Click(); });
    findChild<QAction*>(QStringLiteral("EditRedoTextMenuButton"))
        ->setShortcuts(
            {QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    connectMenuCommand("EditRedoTextMenuButton", [this] { EditRedoTextMenuButton_Click(); });
    findChild<QAction*>(QStringLiteral("EditFindMenuButton"))->setShortcut(QKeySequence::Find);
    connectMenuCommand("EditFindMenuButton", [this] { findForm().EditFindMenuButton_Click(); });
    findChild<QAction*>(QStringLiteral("EditReplaceMenuButton"))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_H));
    connectMenuCommand("EditReplaceMenuButton",
                       [this] { findForm().EditReplaceMenuButton_Click(); });
    QAction* exit = findChild<QAction*>(QStringLiteral("FileExitMenuButton"));
    exit->setEnabled(true);
    exit->setShortcut(QKeySequence::Quit);
    connect(exit, &QAction::triggered, this, &QWidget::close);
}

// The keys of the window as a whole: F10 opens the menus; Ctrl+Tab and Ctrl+PageDown go
// to the next tab, Ctrl+Shift+Tab and Ctrl+PageUp to the one before, round the end.
void MainForm::addKeyboardCommands() {
    const auto command = [this](const QList<QKeySequence>& keys, auto work) {
        auto* action = new QAction(this);
        action->setShortcuts(keys);
        connect(action, &QAction::triggered, this, work);
        addAction(action);
    };
    command({Qt::Key_F10}, [this] { menuBar()->setActiveAction(menuBar()->actions().first()); });
    const auto step = [this](int by) {
        SwitchToTab((world_.status().SceneScriptTab() + by + switchTab_->count()) %
                    switchTab_->count());
    };
    command({QKeySequence(Qt::CTRL | Qt::Key_Tab), QKeySequence(Qt::CTRL | Qt::Key_PageDown)},
            [step] { step(1); });
    command({QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab),
             QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab),
             QKeySequence(Qt::CTRL | Qt::Key_PageUp)},
            [step] { step(-1); });
}

// Tab goes through the window as it reads: the scene's column top to bottom, then the
// tabs and the page under them, then the output. Panels hidden by the tab are passed.
void MainForm::orderTabStops() {
    ScriptPanel& script = *scriptPanel_;
    // The tools under the camera view, left to right and then the row below; the
    // camera view itself comes before them, after the adding buttons.
    QList<QWidget*> openingSceneTools;
    for (int tool = 0; tool < kMouseToolCount; ++tool)
        openingSceneTools << mouseTools_->option(static_cast<MouseTool>(tool));
    openingSceneTools << openingSceneOptions_->option(0) << openingSceneOptions_->option(1);
    QList<QWidget*> order = {&scenePanel_->ObjectTreeView(),
                             &scenePanel_->ObjectTree2View(),
                             &scenePanel_->SoundTreeView(),
                             switchTab_,
                             findChild<QWidget*>(QStringLiteral("HelpButton")),
                             findChild<QWidget*>(QStringLiteral("TeachMe2Button")),
                             undoButton_,
                             findChild<QWidget*>(QStringLiteral("AddObjectButton")),
                             findChild<QWidget*>(QStringLiteral("AddSoundsButton")),
                             findChild<QWidget*>(QStringLiteral("AddTextButton")),
                             lastAddingButton_,
                             scriptUndoButton_,
                             scriptRedoButton_,
                             performScriptButton_,
                             trafficLightImage_,
                             findChild<QWidget*>(QStringLiteral("MakeAnimation")),
                             &eventPanel_->MakeEventButton(),
                             trashCan_,
                             &script.ConstructTreeView(),
                             &script.TreeView1View(),
                             &fontLists_->FontNames(),
                             &fontLists_->FontSizes(),
                             &fontLists_->FontEffect(),
                             &codeBox_->editor(),
                             &commandLine_->CommandLineBox(),
                             &script.CommandLineTreeviewView(),
                             &commandLine_->GoButton(),
                             scriptText_,
                             outputText_};
    for (qsizetype i = 0; i < openingSceneTools.size(); ++i)
        order.insert(order.indexOf(lastAddingButton_) + 1 + i, openingSceneTools[i]);
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

FindForm& MainForm::findForm() {
    if (!findForm_) {
        findForm_ = new FindForm(world_.script(), this);
        findForm_->setCodeBox(&codeBox_->editor());
        findForm_->setCodeBoxHasFocus([this] { return CodeBoxHasFocus(); });
    }
    return *findForm_;
}

QWidget* MainForm::OpeningSceneFrame() const {
    return openingSceneFrame_;
}

bool MainForm::objectTreeVisible() const {
    return scenePanel_->objectTreeVisible();
}

int MainForm::SaveChangesPrompt() {
    return files_->SaveChangesPrompt();
}

bool MainForm::LoadWorld(const QString& worldPath, bool showHelp) {
    return files_->LoadWorld(worldPath, showHelp);
}

QString MainForm::SaveWorld(const QString& worldPath) {
    return files_->SaveWorld(worldPath);
}

void MainForm::offerRecoveredWork() {
    files_->offerRecoveredWork();
}

bool MainForm::FileSaveMenuButton_Click() {
    files_->FileSaveMenuButton_Click();
    return worldIsSaved();
}

bool MainForm::FileSaveAsMenuButton_Click() {
    files_->FileSaveAsMenuButton_Click();
    return worldIsSaved();
}

bool MainForm::worldIsSaved() const {
    return !world_.status().worldSaveFile().isEmpty() && !world_.status().ScriptDirty();
}

void MainForm::connectFileCommands() {
    const auto command = [this](const char* control, QKeySequence::StandardKey key, auto work) {
        QAction* action = findChild<QAction*>(QString::fromUtf8(control));
        action->setEnabled(true);
        if (key != QKeySequence::UnknownKey)
            action->setShortcut(key);
        connect(action, &QAction::triggered, this, work);
    };
    command("FileNewMenuButton", QKeySequence::New, [this] { files_->FileNewMenuButton_Click(); });
    command("FileOpenMenuButton", QKeySequence::Open,
            [this] { files_->FileOpenMenuButton_Click(); });
    command("FileSaveMenuButton", QKeySequence::Save, [this] { FileSaveMenuButton_Click(); });
    command("FileSaveAsMenuButton", QKeySequence::SaveAs, [this] { FileSaveAsMenuButton_Click(); });
    command("mnuImportVES", QKeySequence::UnknownKey, [this] { archive_->mnuImportVES_Click(); });
    command("mnuSendToFriend", QKeySequence::UnknownKey,
            [this] { archive_->mnuSendToFriend_Click(); });
    QAction* trust = findChild<QAction*>(QStringLiteral("mnuTrustWorld"));
    trust->setCheckable(true);
    connect(trust, &QAction::triggered, this, &MainForm::mnuTrustWorld_Click);
    const int seconds = settings_
                            ->GetRegValue(RegistryRoot::LocalMachine, kPreferencesKey,
                                          QStringLiteral("RecoveryCopySeconds"))
                            .toInt();
    autosave_->start(std::chrono::seconds(seconds > 0 ? seconds : kRecoveryCopySeconds));
}

void MainForm::mnuTrustWorld_Click(bool trusted) {
    const QString folder = world_.status().worldSaveFile();
    if (trusted && QMessageBox::question(this, QStringLiteral("Vessa47 - Trust This World's Code"),
                                         kTrustExplanation, QMessageBox::Yes | QMessageBox::No,
                                         QMessageBox::No) != QMessageBox::Yes)
        trusted = false;
    trust_->setTrusted(folder, trusted);
    files_->context().tellTrust();
    showTrustOfWorld();
}

// Only a world in a folder of its own can be trusted.
void MainForm::showTrustOfWorld() {
    QAction* trust = findChild<QAction*>(QStringLiteral("mnuTrustWorld"));
    const QString folder = world_.status().worldSaveFile();
    trust->setEnabled(!folder.isEmpty());
    trust->setChecked(trust_->isTrusted(folder));
}

void MainForm::showMessage(const QString& title, const QString& text, const QString& details) {
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, this);
    box.setInformativeText(details);
    box.exec();
}

namespace {

WorldFilesView::Answer answerOf(QMessageBox::StandardButton button) {
    switch (button) {
    case QMessageBox::Yes:
        return WorldFilesView::Answer::Yes;
    case QMessageBox::No:
        return WorldFilesView::Answer::No;
    default: // a box closed without a choice keeps things as they are, as Cancel does
        return WorldFilesView::Answer::Cancel;
    }
}

} // namespace

WorldFilesView::Answer MainForm::askSaveChanges() {
    return answerOf(QMessageBox::question(
        this, QStringLiteral("Vessa47"), QStringLiteral("Save changes to your world first?"),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes));
}

WorldFilesView::Answer MainForm::askOverwrite(const QString& folder) {
    QMessageBox box(QMessageBox::Question, QStringLiteral("Vessa - World Save"),
                    QStringLiteral("This world already exists.  Overwrite?"),
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, this);
    box.setInformativeText(folder);
    return answerOf(static_cast<QMessageBox::StandardButton>(box.exec()));
}

bool MainForm::askBringBack(const RecoveredWork& work) {
    const QString world = work.worldSaveFile.isEmpty()
                              ? QStringLiteral("a new world that had not been saved yet")
                              : work.worldSaveFile;
    return QMessageBox::question(
               this, QStringLiteral("Vessa47 - Unsaved Work"),
               QStringLiteral("When Vessa47 last stopped without closing properly, it kept a "
                              "copy of work you had not saved: %1, as it was at %2.\n\nBring "
                              "it back?\n\nIf you choose No, the copy is kept until you next "
                              "close Vessa47.")
                   .arg(world,
                        QLocale::c().toString(work.savedAt, QStringLiteral("MMM d yyyy hh:mm:ss"))),
               QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) == QMessageBox::Yes;
}

QString MainForm::chooseWorldFolder(FolderUse use, const QString& startIn) {
    if (!worldForm_)
        worldForm_ = new WorldForm(this);
    // An unnamed world is offered a name to begin with; a named one keeps the box empty.
    const QString name =
        world_.status().worldSaveFile().isEmpty() ? QStringLiteral("Untitled") : QString();
    worldForm_->begin(use == FolderUse::Open ? WorldForm::Use::Open : WorldForm::Use::Save, startIn,
                      name);
    if (worldForm_->exec() != QDialog::Accepted)
        return {};
    return worldForm_->chosenFolder();
}

CameraFrame MainForm::cameraFrame() const {
    const QWidget* host = cameraViewHost();
    return {host->width(), host->height(), viewHostId(host)};
}

void MainForm::showHelpPage(const QString& page) {
    Q_EMIT helpPageWanted(page);
}

void MainForm::keepCameraWindowOnTop() {
    renderForm_.AlwaysOnTop(renderForm_.Check1Value());
}

void MainForm::worldNamed(const QString& worldSaveFile) {
    showTrustOfWorld();
    showWorldInCodeBoxes();
    recentFiles_->refresh();
    const QString version = engine_.call(QStringLiteral("GetVersionText")).toString();
    setWindowTitle(worldSaveFile.isEmpty()
                       ? QStringLiteral("Vessa47 [") + version + QLatin1Char(']')
                       : QStringLiteral("Vessa47 - ") + worldSaveFile + QStringLiteral(" [") +
                             version + QLatin1Char(']'));
}

void MainForm::worldModified() {
    setWindowTitle(windowTitle() + QStringLiteral(" [modified]"));
}

void MainForm::closeEvent(QCloseEvent* event) {
    if (cleanedUp_) {
        event->accept();
        return;
    }
    try {
        if (world_.IsWorldDirty() && SaveChangesPrompt() == 2) {
            event->ignore();
            return;
        }
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C, QStringLiteral("VB:MainForm:Form_QueryUnload() Error"),
                              e);
    }
    event->accept();
    CleanUpAndExit();
}

void MainForm::CleanUpAndExit() {
    cleanedUp_ = true;
    IdleTimer.stop();
    // Nothing unsaved is left that the user wanted: the copies of it go.
    autosave_->stop();
    recovery_->cleanExit();
    if (keeper_->restored()) {
        keeper_->preferences().gUseHardwareAcceleration =
            openingSceneOptions_->gUseHardwareAcceleration();
        keeper_->StoreSettings(recentFiles_->rows());
    }
    // Errors are ignored from here on: the program is on its way out.
    const auto ignoringErrors = [&](const QString& method, const QString& message) {
        try {
            reporter_.CheckInterpreterResult(engine_.call(method), message);
        } catch (const RunTimeError&) {
        }
    };
    ignoringErrors(
        QStringLiteral("DestroyImageNavigator"),
        QStringLiteral("Mainform:CleanUpAndExit() - PyInterpreter.DestroyImageNavigator() failed"));
    ignoringErrors(QStringLiteral("Close"),
                   QStringLiteral("MainForm:CleanUpAndExit() - PyInterpreter.Close() failed"));
    engine_.release();
    renderForm_.close();
}

void MainForm::setIdleTimerInterval(int ms) {
    if (ms <= 0) {
        IdleTimer.stop();
        return;
    }
    IdleTimer.start(ms);
}

void MainForm::IdleTimer_Timer() {
    if (!engine_.isSet())
        return;
    try {
        reporter_.CheckInterpreterResult(
            engine_.call(QStringLiteral("Loop")),
            QStringLiteral("MainForm:IdleTimer_Timer() - Error calling PyInterpreter.Loop()"));
        // Tick as often as the engine has work; rest while it has none. An
        // external tool that drives the engine through this timer keeps its pace.
        if (state_.RunEngineLoop)
            IdleTimer.setInterval(std::max(1, restBeforeNextStepMs(engine_)));
    } catch (const RunTimeError& e) {
        IdleTimer.setInterval(kLongestRestMs);
        reporter_.reportAtTop(ReportForm::C, QStringLiteral("VB:MainForm:IdleTimer_Timer() Error"),
                              e);
    }
}

void MainForm::appendOutput(const QString& text, const QColor& color) {
    QTextCursor cursor(outputText_->document());
    cursor.movePosition(QTextCursor::End);
    QTextCharFormat format;
    format.setForeground(color);
    cursor.insertText(cutLongLines(text), format);
    outputText_->ensureCursorVisible();
}

void MainForm::PrintOutput(const QString& text) {
    QTextCursor cursor = outputText_->textCursor();
    QTextCharFormat format;
    format.setForeground(QColor(0, 0, 0));
    cursor.insertText(cutLongLines(text) + QLatin1Char('\n'), format);
}

void MainForm::LogMessage(const QString& text) {
    if constexpr (kLogMessagesOn) {
        QTextCursor cursor = outputText_->textCursor();
        QTextCharFormat format;
        format.setForeground(QColor(0, 0, 180));
        cursor.insertText(text + QLatin1Char('\n'), format);
    } else {
        Q_UNUSED(text);
    }
}

void MainForm::showUndoAvailable(bool available) {
    undoButton_->setEnabled(available);
}

void MainForm::showWorldActive(bool active) {
    if (active)
        run_->SetWorldActive();
    else
        run_->SetWorldIdle();
}

void MainForm::setRenderFormAlwaysOnTop(bool onTop) {
    renderForm_.AlwaysOnTop(onTop);
}

void MainForm::pumpEvents() {
    QCoreApplication::processEvents();
}

void MainForm::showUserError(const ErrorFormContent& content) {
    ErrorForm form(
        content, [this] { return state_.VersionText; }, this);
    form.exec();
}

} // namespace vessa
