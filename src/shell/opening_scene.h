#pragma once

#include <QWidget>

#include <functional>

class QCheckBox;

namespace vessa {

class EngineLink;
class ErrorReporter;

// The opening scene's options beside the camera view, and the File menu's commands that
// carry a running world over into the opening scene.
class OpeningSceneOptions : public QWidget {
    Q_OBJECT
public:
    // cameraViewSize: the pixel size of the opening scene's camera view.
    OpeningSceneOptions(EngineLink& engine, ErrorReporter& reporter,
                        std::function<QSize()> cameraViewSize, QWidget* parent = nullptr);

    QCheckBox* option(int index) const;
    // The stored choice, shown and told to the engine when it was stored; the box for
    // acceleration is disabled where the engine draws without the hardware.
    void restore(bool useHardwareAcceleration, bool chosen);
    bool gUseHardwareAcceleration() const;
    void OpeningSceneOptions_Click(int index);

private:
    EngineLink& engine_;
    ErrorReporter& reporter_;
    std::function<QSize()> cameraViewSize_;
    QCheckBox* options_[2];
};

// "Make This the Opening Scene": the world as it now stands is where it will start.
void FileOpeningScene_Click(EngineLink& engine, ErrorReporter& reporter);
// "Make Camera Start Here in Opening Scene"; nothing on the opening scene's own tab.
void FileStartCameraHere_Click(EngineLink& engine, ErrorReporter& reporter, int sceneScriptTab);

} // namespace vessa
