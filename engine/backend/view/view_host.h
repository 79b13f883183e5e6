#pragma once

#include "view/world_view.h"

#include <QPointer>

#include <optional>
#include <string>

class QWidget;

namespace vessa::core {

class InputQueue;
class SceneGraph;
class ViewWidget;

// Puts the camera view into the front end's windows. The front end names a
// host widget by an integer id, kept in the widget's dynamic property
// "vessaHostId"; the view is a child widget of the host and moves between
// hosts without being made anew. Without a QApplication (a plain python3)
// or a platform that shows windows, there is nothing to draw into, and every
// call succeeds doing nothing.
//
// The host owns the view widget while it exists; the scene graph and the
// input queue belong to the backend and outlive the view.
class ViewHost {
public:
    ViewHost(SceneGraph& scene, InputQueue& input);
    ~ViewHost();
    ViewHost(const ViewHost&) = delete;
    ViewHost& operator=(const ViewHost&) = delete;

    static bool canDraw();

    // Each answers "" on success and the failure text otherwise; open fails
    // where no OpenGL context can be made.
    std::string open(int width, int height, long long hostId);
    std::string moveTo(long long hostId);
    void resize(int width, int height);
    void close();
    std::string focus();
    std::string setHighQuality(bool high);
    // A picture of the world as a BMP file: the view's own, or drawn offscreen
    // when there is no view. A width and height above 0 draw it offscreen at
    // that size, view or not.
    std::string savePicture(const std::string& path, int width = 0, int height = 0);

    // "" when an OpenGL context can be made, else why not.
    static std::string checkOpenGL();
    // Whether OpenGL is drawn by the graphics hardware rather than in software.
    static bool hardwareAccelerated();

    double framesPerSecond() const;
    // The primary screen's size in pixels, or a common one without a screen.
    static std::pair<int, int> screenSize();
    ViewWidget* widget() const;

private:
    static QWidget* hostNamed(long long hostId);
    void sceneChanged();

    SceneGraph& scene_;
    InputQueue& input_;
    QPointer<ViewWidget> widget_;
    bool highQuality_ = false;
};

} // namespace vessa::core
