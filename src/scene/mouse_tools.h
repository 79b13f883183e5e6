#pragma once

#include <QFrame>

#include <array>

class QLabel;
class QToolButton;

namespace vessa {

class EngineLink;
class ErrorReporter;

// What a drag on an object in the camera view does to it. The first five are the
// engine's numbers for them.
enum class MouseTool { Move, Raise, TurnLR, TurnFB, Tumble, Inspect };
constexpr int kMouseToolCount = 6;

// MouseControlsFrame: six picture buttons, one always chosen, each with a label that
// acts as the button does. The chosen one is told to the engine.
class MouseToolsPanel : public QFrame {
    Q_OBJECT
public:
    MouseToolsPanel(EngineLink& engine, ErrorReporter& reporter, QWidget* parent = nullptr);

    MouseTool SelectedOption() const { return selected_; }
    QToolButton* option(MouseTool tool) const;
    // What a click on an option does: chooses it, with a sound when it is a change, and
    // tells the engine.
    void SelectOptionButton(MouseTool tool);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showPicture(MouseTool tool, const char* state);
    void showAtRest(MouseTool tool);
    void tellEngine(MouseTool tool);

    EngineLink& engine_;
    ErrorReporter& reporter_;
    std::array<QToolButton*, kMouseToolCount> options_{};
    std::array<QLabel*, kMouseToolCount> labels_{};
    MouseTool selected_ = MouseTool::Move;
};

} // namespace vessa
