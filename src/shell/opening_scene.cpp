#include "shell/opening_scene.h"

#include "base/run_time_error.h"
#include "controls/accessible_names.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"

#include <QCheckBox>
#include <QHBoxLayout>

namespace vessa {

namespace {

enum { kHardwareAcceleration = 0, kPassThrough = 1 };

void reportFailure(ErrorReporter& reporter, const char* routine, const RunTimeError& e) {
    reporter.reportAtTop(ReportForm::C,
                         QStringLiteral("VB:MainForm:%1() Error").arg(QString::fromLatin1(routine)),
                         e);
}

} // namespace

OpeningSceneOptions::OpeningSceneOptions(EngineLink& engine, ErrorReporter& reporter,
                                         std::function<QSize()> cameraViewSize, QWidget* parent)
    : QWidget(parent), engine_(engine), reporter_(reporter),
      cameraViewSize_(std::move(cameraViewSize)) {
    setObjectName(QStringLiteral("OpeningSceneOptions"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(0);
    const char* captions[] = {"Use Hardware Acceleration", "Camera Can Pass Through Objects"};
    for (int index = 0; index < 2; ++index) {
        options_[index] = new QCheckBox(QString::fromLatin1(captions[index]), this);
        options_[index]->setObjectName(QStringLiteral("OpeningSceneOptions%1").arg(index));
        connect(options_[index], &QCheckBox::clicked, this,
                [this, index] { OpeningSceneOptions_Click(index); });
        layout->addWidget(options_[index]);
    }
    layout->addStretch();
    applyAccessibleNames(this);
}

QCheckBox* OpeningSceneOptions::option(int index) const {
    return options_[index];
}

bool OpeningSceneOptions::gUseHardwareAcceleration() const {
    return options_[kHardwareAcceleration]->isChecked();
}

void OpeningSceneOptions::restore(bool useHardwareAcceleration, bool chosen) {
    options_[kHardwareAcceleration]->setChecked(useHardwareAcceleration);
    if (!chosen || !engine_.isSet())
        return;
    try {
        if (engine_.call(QStringLiteral("CheckForHardwareAcceleration")).toInt() == 0)
            options_[kHardwareAcceleration]->setEnabled(false);
        reporter_.CheckInterpreterResult(
            engine_.call(QStringLiteral("SetAcceleration"), {useHardwareAcceleration ? 1 : 0}),
            QStringLiteral("MainForm:RestoreSettings: Error calling python SetAcceleration."));
    } catch (const RunTimeError& e) {
        reportFailure(reporter_, "RestoreSettings", e);
    }
}

void OpeningSceneOptions::OpeningSceneOptions_Click(int index) {
    const bool checked = options_[index]->isChecked();
    try {
        if (index == kPassThrough) {
            engine_.call(checked ? QStringLiteral("SetImageNavigatorCollisionDetectionOff")
                                 : QStringLiteral("SetImageNavigatorCollisionDetectionOn"));
            return;
        }
        reporter_.CheckInterpreterResult(
            engine_.call(QStringLiteral("SetAcceleration"), {checked ? 1 : 0}),
            QStringLiteral("Mainform:Hardware Acceleration: Error calling python "
                           "SetAcceleration."));
        if (checked)
            runTool(engine_, reporter_, QStringLiteral("PlaySystemSound('Copy')"),
                    QStringLiteral("MainForm:OpeningSceneOptions: Error playing sound."));
    } catch (const RunTimeError& e) {
        reportFailure(reporter_, "OpeningSceneOptions_Click", e);
    }
    // The engine builds its view anew with the other drawing.
    try {
        const QSize size = cameraViewSize_();
        engine_.call(QStringLiteral("setimagenavigatorsize"), {size.width(), size.height()});
    } catch (const RunTimeError&) {
    }
}

void FileOpeningScene_Click(EngineLink& engine, ErrorReporter& reporter) {
    try {
        runTool(engine, reporter, QStringLiteral("MakeThisTheOpeningScene()"),
                QStringLiteral("MainForm:FileOpeningScene_Click: error in call to interpreter."));
        runTool(engine, reporter, QStringLiteral("RestoreHandbasket()"),
                QStringLiteral("MainForm:MakeThisTheOpeningScene: Error restoring handbasket."));
    } catch (const RunTimeError& e) {
        reportFailure(reporter, "FileOpeningScene_Click", e);
    }
}

void FileStartCameraHere_Click(EngineLink& engine, ErrorReporter& reporter, int sceneScriptTab) {
    if (sceneScriptTab == 0)
        return;
    try {
        reporter.CheckInterpreterResult(
            engine.call(QStringLiteral("SetCameraPosInOpeningScene")),
            QStringLiteral("MainForm:FileStartCameraHere_Click: Error calling python side."));
    } catch (const RunTimeError& e) {
        reportFailure(reporter, "FileStartCameraHere_Click", e);
    }
}

} // namespace vessa
