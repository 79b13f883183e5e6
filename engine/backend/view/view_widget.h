#pragma once

#include "glwidget/widget_graphics_window.h"
#include "input/input_event.h"
#include "view/frame_rate.h"
#include "view/world_view.h"

#include <QElapsedTimer>
#include <QOpenGLWidget>

#include <memory>

namespace vessa::core {

class SceneGraph;

// The camera view on screen: a thin OpenGL widget that lets a WorldView draw
// into it and turns the mouse and keys into events for the engine. It draws
// only when the scene changed, the widget was exposed or resized: a still
// world costs nothing. The widget owns its WorldView; the scene and the
// input queue belong to the backend.
class ViewWidget : public QOpenGLWidget {
    Q_OBJECT
public:
    ViewWidget(SceneGraph& scene, InputQueue& input, bool highQuality, QWidget* parent);

    // Asks for one frame, however many changes come before it is drawn.
    void sceneChanged();
    double framesPerSecond();
    unsigned long long framesDrawn() const { return framesDrawn_; }
    WorldView& view() { return *view_; }
    // x, y in the widget's own (logical) pixels.
    std::optional<ViewHit> pick(double x, double y) const;

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    void sendButton(QMouseEvent* event, const char* upOrDown);
    void sendKey(QKeyEvent* event, const char* kind);
    InputEvent pointerEvent(const char* kind, QPointF at) const;
    double seconds() const;

    std::unique_ptr<WorldView> view_;
    WidgetGraphicsWindow window_; // after the view, whose viewer outlives it
    InputQueue& input_;
    FrameRate frames_;
    QElapsedTimer clock_;
    unsigned long long framesDrawn_ = 0;
    bool frameAsked_ = false;
};

} // namespace vessa::core
