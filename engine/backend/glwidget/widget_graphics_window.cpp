#include "glwidget/widget_graphics_window.h"

#include <QOpenGLContext>
#include <QOpenGLWidget>

namespace vessa::core {

osg::ref_ptr<osgViewer::Viewer> embeddedViewer() {
    osg::ref_ptr<osgViewer::Viewer> viewer = new osgViewer::Viewer;
    viewer->setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    viewer->setKeyEventSetsDone(0);
    viewer->setQuitEventSetsDone(false);
    viewer->setUpViewerAsEmbeddedInWindow(0, 0, 1, 1);
    return viewer;
}

WidgetGraphicsWindow::WidgetGraphicsWindow(QOpenGLWidget& widget, osgViewer::Viewer& viewer)
    : widget_(widget), window_(static_cast<osgViewer::GraphicsWindowEmbedded*>(
                           viewer.getCamera()->getGraphicsContext())) {
}

// The viewer closes its window again as it dies, with OpenGL calls while the
// window is open: it is closed first, in the widget's context while there is
// one, else only forgetting its objects, which no context holds.
WidgetGraphicsWindow::~WidgetGraphicsWindow() {
    if (widget_.context())
        close();
    else
        window_->close(false);
}

void WidgetGraphicsWindow::contextMade() {
    // A window closed with the last context starts again with a state of its own.
    if (!isOpen())
        window_->init();
    window_->getState()->initializeExtensionProcs();
    connect(widget_.context(), &QOpenGLContext::aboutToBeDestroyed, this,
            &WidgetGraphicsWindow::close, Qt::UniqueConnection);
}

// Releasing OpenGL objects takes OpenGL calls, so the widget's context is made
// current even while Qt is destroying it.
void WidgetGraphicsWindow::close() {
    if (!isOpen())
        return;
    widget_.makeCurrent();
    window_->close(true);
    widget_.doneCurrent();
}

QSize WidgetGraphicsWindow::resized() {
    const double ratio = widget_.devicePixelRatioF();
    const QSize pixels(static_cast<int>(widget_.width() * ratio),
                       static_cast<int>(widget_.height() * ratio));
    window_->resized(0, 0, pixels.width(), pixels.height());
    window_->getEventQueue()->windowResize(0, 0, pixels.width(), pixels.height());
    return pixels;
}

void WidgetGraphicsWindow::beginFrame() {
    window_->setDefaultFboId(widget_.defaultFramebufferObject());
}

} // namespace vessa::core
