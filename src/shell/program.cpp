#include "shell/program.h"

#include "shell/loop_wait.h"
#include "world/open_world.h"

#include <QFileInfo>
#include <cmath>
#include <cstdio>
#include <vector>

namespace vessa {

namespace {

const QString kBeforeEngine =
    QStringLiteral("VB:MainModule:Main() Error before initing COM server");
const QString kAfterEngine =
    QStringLiteral("VB:MainModule:Main() Error after setting up COM server object");
const QString kInLoop = QStringLiteral("VB:MainModule:Main() Error while running main loop");
const QString kDirectXDownloadPage = QStringLiteral("https://www.mesa3d.org/");
const QString kSelectDefaultScene =
    QStringLiteral("_CurrentlySelectedObject = Vessa.GetDefaultScene()");

int roundToInt(double value) {
    return static_cast<int>(std::lround(value));
}

bool isEmptyPoll(const QVariant& records) {
    return records.typeId() == QMetaType::QVariantList && records.toList().isEmpty();
}

// The engine answers whether it has a camera as a boolean or a number.
bool answersNoCamera(const QVariant& answer) {
    if (answer.isNull() || !answer.isValid())
        return false;
    bool ok = false;
    const double number = answer.toDouble(&ok);
    return ok ? number == 0 : !answer.toBool();
}

} // namespace

ErrorFormContent displayDepthErrorContent(int bitsPerPixel) {
    ErrorFormContent content;
    content.typeCaption = QStringLiteral(
        "This is NOT a problem with Vessa. This is a problem with your display settings.");
    content.labelText =
        QStringLiteral("Sorry, but Vessa can not run when the video display has less than 8 bits "
                       "per pixel.  Your video display has") +
        QString::number(bitsPerPixel) +
        QStringLiteral(" bits per pixel.  Please go to the SETTINGS tab in the DISPLAY part of the "
                       "Windows Control Panel and select 256 colors (or preferably High Color) in "
                       "the COLOR PALETTE setting and then re-run Vessa.  Thank you.");
    return content;
}

Program::Program(AppState& state, EngineLink& engine, const InterpreterRegistry& registry,
                 OpenWorld& world, Shell& shell, ErrorReporter& reporter, ErrorDisplay& errors,
                 ProcessControl& process)
    : state_(state), engine_(engine), registry_(registry), world_(world), shell_(shell),
      errors_(errors), process_(process), reporter_(reporter) {
}

int Program::Main() {
    startUp();
    while (engine_.isSet() && runLoopRound()) {
    }
    return 0;
}

void Program::startUp() {
    beforeEngine();
    createEngine();
    checkEngine();
    setUpWindowsAndWorld();
    showDefaultWorld();
    state_.ErrorLine = 92;
    state_.RunEngineLoop = true;
}

void Program::fatal(ReportForm form, const QString& firstLine, const RunTimeError& error) {
    reporter_.reportAtTop(form, firstLine, error);
    process_.endProcess(1);
}

void Program::unhandled(const RunTimeError& error) {
    std::fprintf(stderr, "Vessa47: unhandled run-time error %d at step %d: %s\n", error.number(),
                 state_.ErrorLine, qPrintable(error.description()));
    // A desktop user sees no standard error: the report comes in a box as well, as
    // the platform shows an error that no handler caught.
    fatal(ReportForm::B, QStringLiteral("Run-time error '%1':").arg(error.number()), error);
}

QVariant Program::engineCall(const QString& method, const QVariantList& args) {
    return engine_.call(method, args);
}

void Program::resumeNext(const QString& firstLine, const std::function<void()>& statement) {
    try {
        asRunTimeError(statement);
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::B, firstLine, e);
    }
}

void Program::beforeEngine() {
    try {
        asRunTimeError([&] {
            state_.ErrorLine = 10;
            state_.ErrorChain.clear();
            state_.VersionText = QStringLiteral("Interpreter Not running yet...");
            state_.ErrorLine = 12;
            state_.DirectXMessage =
                QStringLiteral("Vessa 47 requires Microsoft Direct X version 3.0 or higher in "
                               "order to run.  Your machine does not appear to have Direct X 3.0 "
                               "or later installed.  Please download Direct X from ") +
                kDirectXDownloadPage +
                QStringLiteral(", run their installation program, and then re-run Vessa 47.  "
                               "Thank you.");
            state_.ErrorLine = 14;
            state_.ExitOnFatal = true;
            state_.ErrorLineOffset = 0;
            state_.ErrorLine = 16;
            shell_.createSplash();
            const int bits = shell_.displayBitsPerPixel();
            if (bits < 8) {
                errors_.showModal(displayDepthErrorContent(bits));
                process_.endProcess(1);
            }
            state_.ErrorLine = 18;
            shell_.showSplash();
            state_.ErrorLine = 20;
            shell_.refreshSplash();
            state_.ErrorLine = 22;
            shell_.pumpEvents();
        });
    } catch (const RunTimeError& e) {
        fatal(ReportForm::A, kBeforeEngine, e);
    }
}

void Program::createEngine() {
    state_.ErrorLine = 24;
    try {
        engine_.attach(registry_.create(kEngineProgId));
    } catch (const RunTimeError& first) {
        try {
            engine_.attach(registry_.create(kFallbackEngineProgId));
        } catch (const RunTimeError& second) {
            const QString why = QStringLiteral("The engine could not be created.\n  %1: %2\n  %3: %4")
                                    .arg(kEngineProgId, first.description(),
                                         kFallbackEngineProgId, second.description());
            std::fprintf(stderr, "Vessa47: %s\n", qPrintable(why));
            fatal(ReportForm::B,
                  QStringLiteral("VB:MainModule:Main() Error Creating COM server object"),
                  RunTimeError(second.number(), why, second.source()));
        }
    }
}

void Program::checkEngine() {
    try {
        asRunTimeError([&] {
            state_.ErrorLine = 26;
            reporter_.CheckInterpreterResult(
                engineCall(QStringLiteral("CheckForDirectX")),
                QStringLiteral("VB Main: PyInterpreter.CheckForDirectX() failed. ") +
                    state_.DirectXMessage);
        });
    } catch (const RunTimeError& e) {
        fatal(ReportForm::B,
              QStringLiteral("VB:MainModule:Main() Check for DirectX failed. ") +
                  state_.DirectXMessage,
              e);
    }
    try {
        asRunTimeError([&] {
            state_.ErrorLine = 28;
            reporter_.CheckInterpreterResult(
                engineCall(QStringLiteral("Initialize")),
                QStringLiteral("VB Main: PyInterpreter.Initialize() failed"));
        });
    } catch (const RunTimeError& e) {
        fatal(
            ReportForm::B,
            QStringLiteral("VB:MainModule:Main() Error calling INIT routine of COM server object"),
            e);
    }
}

void Program::setUpWindowsAndWorld() {
    const auto step = [&](int errorLine, const std::function<void()>& statement) {
        state_.ErrorLine = errorLine;
        resumeNext(kAfterEngine, statement);
    };
    step(30, [&] { state_.ExitOnFatal = false; });
    step(32, [&] { shell_.createMainForm(); });
    step(34, [&] { shell_.createRenderForm(); });
    step(36, [&] {
        state_.ScreenWidthTwips = roundToInt(shell_.twipsPerPixelX() *
                                             engineCall(QStringLiteral("ScreenWidth")).toDouble());
    });
    step(38, [&] {
        state_.ScreenHeightTwips = roundToInt(
            shell_.twipsPerPixelY() * engineCall(QStringLiteral("ScreenHeight")).toDouble());
    });
    step(40,
         [&] { state_.HomeDir = engineCall(QStringLiteral("ReadRegistryHomeDir")).toString(); });
    step(42, [&] {
        reporter_.CheckInterpreterResult(
            engineCall(QStringLiteral("SetHomeDirectory"), {state_.HomeDir}),
            QStringLiteral("MainModule:Main choked on SetHomeDirectory."));
    });
    step(44, [&] { engineCall(QStringLiteral("InitializeSound")); });
    step(46, [&] {
        reporter_.CheckInterpreterResult(
            engine_.ExecuteCode(QStringLiteral("import __builtin__"), QStringLiteral("<Init>")),
            QStringLiteral("VB Main: 'import __builtin__' choked"));
    });
    step(48, [&] { state_.VersionText = engineCall(QStringLiteral("GetVersionText")).toString(); });
    step(49, [&] { shell_.showMainForm(); });
    step(50, [&] { shell_.pumpEvents(); });
    step(51, [&] {
        reporter_.CheckInterpreterResult(
            engine_.ExecuteCode(QStringLiteral("Vessa._SetDefaultParentWindowHwnd(") +
                                    QString::number(shell_.openingSceneHostId()) + QLatin1Char(')'),
                                QStringLiteral("<Init>")),
            QStringLiteral("VB MAIN: 'Vessa._SetDefaultParentWindowHwnd' failed."));
    });
    step(52, [&] {
        engineCall(QStringLiteral("LoadWorld"),
                   {state_.HomeDir + QStringLiteral("Worlds/Default")});
    });
}

void Program::showDefaultWorld() {
    const std::vector<std::function<void()>> steps = {
        [&] { // the help window, if it was open when the program last ended
            const QString page =
                state_.HomeDir + QStringLiteral("Worlds/Default/World_VessaHelp.html");
            if (shell_.HelpFormWanted() && QFileInfo::exists(page))
                shell_.showHelpPage(page);
        },
        [&] {
            const QSize twips = shell_.openingSceneSizeTwips();
            reporter_.CheckInterpreterResult(
                engineCall(QStringLiteral("imagenavigator"),
                           {roundToInt(twips.width() / shell_.twipsPerPixelX()),
                            roundToInt(twips.height() / shell_.twipsPerPixelY()),
                            shell_.openingSceneHostId()}),
                QStringLiteral("MainModule: Error Creating Navigator"));
        },
        [&] {
            state_.ErrorLine = 54;
            if (answersNoCamera(engineCall(QStringLiteral("IsThereADefaultCamera")))) {
                state_.ErrorLine = 56;
                shell_.LogMessage(QStringLiteral("There is no default camera!"));
                state_.ErrorLine = 58;
                reporter_.CheckInterpreterResult(
                    QStringLiteral("VB MAIN: Default camera not detected after default scene "
                                   "load. ") +
                        state_.DirectXMessage,
                    QString());
            } else {
                state_.ErrorLine = 60;
                shell_.LogMessage(QStringLiteral("Default camera detected!"));
            }
        },
        [&] {
            state_.ErrorLine = 62;
            engineCall(QStringLiteral("PreserveDefaultCameraPOV"));
        },
        [&] {
            state_.ErrorLine = 64;
            world_.SetSaveName(QString());
        },
        [&] {
            state_.ErrorLine = 66;
            reporter_.CheckInterpreterResult(
                engine_.ExecuteCode(kSelectDefaultScene, QStringLiteral("<Tool>")),
                QStringLiteral("MainModule:Main died on setting currently selected object."));
        },
        [&] {
            state_.ErrorLine = 68;
            state_.ErrorLine = 70;
            state_.ErrorLine = 72;
            shell_.setMainFormCaption(QStringLiteral("Vessa47 [") +
                                      engineCall(QStringLiteral("GetVersionText")).toString() +
                                      QLatin1Char(']'));
            state_.ErrorLine = 74;
            shell_.unloadSplash();
            state_.ErrorLine = 76;
            shell_.showMainForm();
            state_.ErrorLine = 78;
            shell_.pumpEvents();
            state_.ErrorLine = 80;
            shell_.setIdleTimerInterval(1);
        },
        [&] {
            state_.ErrorLine = 82;
            shell_.LogMessage(QStringLiteral("Homedir from registry = ") + state_.HomeDir);
            state_.ErrorLine = 84;
            shell_.LogMessage(QStringLiteral("homedir from python = ") +
                              engineCall(QStringLiteral("GetHomeDirectory")).toString());
            state_.ErrorLine = 86;
            shell_.LogMessage(QStringLiteral("Screen size = ") +
                              QString::number(state_.ScreenWidthTwips) + QStringLiteral(" x ") +
                              QString::number(state_.ScreenHeightTwips));
            state_.ErrorLine = 88;
            reporter_.CheckInterpreterResult(
                engineCall(QStringLiteral("SetIsDirty"), {0}),
                QStringLiteral("MainModule:Main: Error making world clean."));
        },
    };
    // A failure anywhere here sends start-up back to creating the camera view,
    // once; a second failure is not caught.
    constexpr size_t kCreateNavigator = 1;
    bool jumped = false;
    for (size_t i = 0; i < steps.size(); ++i) {
        try {
            asRunTimeError(steps[i]);
        } catch (const RunTimeError& e) {
            if (jumped)
                unhandled(e);
            jumped = true;
            state_.ErrorChain.clear();
            i = kCreateNavigator - 1;
        }
    }
}

bool Program::runLoopRound() {
    const auto statement = [&](int errorLine, const std::function<void()>& body) {
        if (errorLine > 0)
            state_.ErrorLine = errorLine;
        resumeNext(kInLoop, body);
    };
    statement(0, [&] { engineCall(QStringLiteral("getisdirty")); });
    if (state_.RunEngineLoop)
        statement(94, [&] {
            reporter_.CheckInterpreterResult(
                engineCall(QStringLiteral("Loop")),
                QStringLiteral("VB MainLoop: Call to PyInterpreter.Loop() failed"));
        });
    statement(96, [&] { shell_.pumpEventsWaiting(nextPumpWaitMs_); });
    state_.ErrorLine = 98;
    if (!engine_.isSet())
        return false;
    statement(100, [&] { engineCall(QStringLiteral("flushout")); });
    QVariant misc = QVariantList();
    statement(102, [&] { misc = engineCall(QStringLiteral("PollForMiscDifferences")); });
    statement(104, [&] { world_.HandleDifferences(misc); });
    QVariant tree = QVariantList();
    bool treeVisible = false;
    statement(106, [&] { treeVisible = shell_.objectTreeVisible(); });
    if (treeVisible) {
        statement(108, [&] { tree = engineCall(QStringLiteral("PollForTreeDifferences")); });
        statement(110, [&] { world_.HandleDifferences(tree); });
    }
    // Sleep in the next pump only when this round brought nothing and the engine
    // has nothing due: the loop then costs no processor time while idle.
    nextPumpWaitMs_ = 0;
    if (engine_.isSet() && isEmptyPoll(misc) && isEmptyPoll(tree))
        nextPumpWaitMs_ = restBeforeNextStepMs(engine_);
    return engine_.isSet();
}

} // namespace vessa
