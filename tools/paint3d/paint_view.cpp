#include "paint_view.h"

#include "painted_file.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QSurfaceFormat>
#include <QWheelEvent>

#include <cmath>

namespace vessa::paint3d {

namespace {

// A stroke dabs at least this often along the mouse's path, in pixels.
constexpr double kDabSpacingPixels = 3.0;
constexpr double kTurnKeyPixels = 15.0;
constexpr double kPictureBrushes = 4.0; // a picture is as wide as this many brushes

QSurfaceFormat viewFormat() {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    return format;
}

} // namespace

PaintView::PaintView(PaintSession& session, QWidget* parent)
    : QOpenGLWidget(parent), session_(session),
      turntable_(session.picker().centre(), session.picker().radius()),
      viewer_(vessa::core::embeddedViewer()), window_(*this, *viewer_),
      place_(new osg::MatrixTransform) {
    setObjectName(QStringLiteral("PaintView"));
    setAccessibleDescription(QStringLiteral(
        "Drag to paint; right-drag or the arrow keys turn the object; Space paints in the middle"));
    setFormat(viewFormat());
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(320, 240);
    osg::Camera* camera = viewer_->getCamera();
    camera->setClearColor(osg::Vec4(0.82f, 0.85f, 0.9f, 1.0f));
    camera->setComputeNearFarMode(osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR);
    place_->addChild(graphOf(session_.object(), &skins_));
    viewer_->setSceneData(place_.get());
}

double PaintView::pictureAcross() const {
    return 2.0 * session_.brush.radius * kPictureBrushes;
}

void PaintView::showSkins() {
    for (int part : session_.takeChangedSkins())
        skins_[static_cast<size_t>(part)]->dirty();
    update();
}

void PaintView::initializeGL() {
    window_.contextMade();
}

void PaintView::resizeGL(int, int) {
    const QSize pixels = window_.resized();
    viewer_->getCamera()->setViewport(0, 0, pixels.width(), pixels.height());
}

void PaintView::paintGL() {
    turntable_.setSize(width(), height());
    place_->setMatrix(turntable_.objectPlace());
    viewer_->getCamera()->setViewMatrix(turntable_.viewMatrix());
    viewer_->getCamera()->setProjectionMatrix(turntable_.projection());
    window_.beginFrame();
    viewer_->frame();
}

bool PaintView::useToolAt(QPointF at) {
    turntable_.setSize(width(), height());
    const Ray ray = turntable_.rayAt(at.x(), at.y());
    switch (tool_) {
    case PaintTool::Brush: {
        const bool hit = session_.beginStroke(ray);
        session_.endStroke();
        return hit;
    }
    case PaintTool::Fill:
        return session_.fillPart(ray);
    case PaintTool::Picture:
        return hasPicture() && session_.placePicture(ray, picture_, pictureAcross());
    case PaintTool::Turn:
        return false;
    }
    return false;
}

void PaintView::strokeTo(QPointF at) {
    const QPointF from = *stroking_;
    const double length = std::hypot(at.x() - from.x(), at.y() - from.y());
    const int steps = std::max(1, static_cast<int>(std::ceil(length / kDabSpacingPixels)));
    bool hit = false;
    for (int k = 1; k <= steps; ++k) {
        const QPointF point = from + (at - from) * (static_cast<double>(k) / steps);
        hit = session_.continueStroke(turntable_.rayAt(point.x(), point.y())) || hit;
    }
    stroking_ = at;
    changed(hit);
}

void PaintView::changed(bool didPaint) {
    showSkins();
    if (didPaint)
        Q_EMIT painted();
}

void PaintView::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    turntable_.setSize(width(), height());
    const QPointF at = event->position();
    if (event->button() == Qt::RightButton ||
        (event->button() == Qt::LeftButton && tool_ == PaintTool::Turn)) {
        turning_ = at;
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    if (tool_ == PaintTool::Brush) {
        stroking_ = at;
        changed(session_.beginStroke(turntable_.rayAt(at.x(), at.y())));
        return;
    }
    changed(useToolAt(at));
}

void PaintView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (turning_) {
        turntable_.turnBy(at.x() - turning_->x(), at.y() - turning_->y());
        turning_ = at;
        update();
    } else if (stroking_) {
        strokeTo(at);
    }
}

void PaintView::mouseReleaseEvent(QMouseEvent*) {
    if (stroking_)
        session_.endStroke();
    stroking_.reset();
    turning_.reset();
}

void PaintView::wheelEvent(QWheelEvent* event) {
    turntable_.zoomBy(event->angleDelta().y() / 120.0);
    update();
}

void PaintView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
        turntable_.turnBy(-kTurnKeyPixels, 0);
        break;
    case Qt::Key_Right:
        turntable_.turnBy(kTurnKeyPixels, 0);
        break;
    case Qt::Key_Up:
        turntable_.turnBy(0, -kTurnKeyPixels);
        break;
    case Qt::Key_Down:
        turntable_.turnBy(0, kTurnKeyPixels);
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        turntable_.zoomBy(1);
        break;
    case Qt::Key_Minus:
        turntable_.zoomBy(-1);
        break;
    case Qt::Key_Space:
        changed(useToolAt(QPointF(width() / 2.0, height() / 2.0)));
        return;
    default:
        QOpenGLWidget::keyPressEvent(event);
        return;
    }
    update();
}

} // namespace vessa::paint3d
