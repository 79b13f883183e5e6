#pragma once

#include <QObject>
#include <QSize>

#include <osg/ref_ptr>
#include <osgViewer/GraphicsWindow>
#include <osgViewer/Viewer>

class QOpenGLWidget;

namespace vessa::core {

// A viewer that draws on this thread into whatever context is current, through
// an embedded window (its camera's graphics context), and that no key ends.
osg::ref_ptr<osgViewer::Viewer> embeddedViewer();

// The graphics window of an OpenSceneGraph viewer that a QOpenGLWidget draws:
// the steps every such widget takes with its context, taken in one place. The
// window lives as long as the widget's context. Qt makes the context anew when
// the widget moves to another top-level window and destroys the old one first;
// the window is closed then, with that context current (its OpenGL objects are
// released and OpenSceneGraph forgets them), and opened again with fresh state
// for the new context, where the objects are made again as they are drawn.
// Needs no display until the widget makes its context; the viewer holding the
// window must outlive this.
class WidgetGraphicsWindow : public QObject {
public:
    // The viewer is one that embeddedViewer() made.
    WidgetGraphicsWindow(QOpenGLWidget& widget, osgViewer::Viewer& viewer);
    // Closes the window; it must run before the QOpenGLWidget's own destructor
    // (a member of the widget's class does).
    ~WidgetGraphicsWindow() override;

    // From the widget's initializeGL, with the new context current.
    void contextMade();
    // From the widget's resizeGL: the window takes the widget's size in device
    // pixels, which this returns.
    QSize resized();
    // From the widget's paintGL, before the viewer draws: the frame goes into
    // the widget's framebuffer.
    void beginFrame();
    // Whether the window is open in a context now.
    bool isOpen() const { return window_->getState() != nullptr; }

private:
    void close();

    QOpenGLWidget& widget_;
    osg::ref_ptr<osgViewer::GraphicsWindowEmbedded> window_;
};

} // namespace vessa::core
