#include "export/sketch_view.h"

#include "export/sketch_session.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QSurfaceFormat>

#include <osgUtil/IntersectionVisitor>
#include <osgUtil/LineSegmentIntersector>

#include <cmath>

namespace vessa {

namespace {

constexpr double kDegreesPerPixel = 0.5;
constexpr double kDegreesPerKey = 15;
constexpr double kDepth = 1000; // meters before and behind the drawing plane that are seen
const QColor kPaper(0xf4, 0xf1, 0xe8);
const QColor kInk(0x30, 0x30, 0x40);

// OpenSceneGraph draws with the fixed-function pipeline.
QSurfaceFormat viewFormat() {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    format.setSamples(4);
    return format;
}

} // namespace

// The stroke in a line over the drawing: a widget over the OpenGL one, so that the
// painter never meddles with OpenSceneGraph's state.
class StrokeLayer : public QWidget {
public:
    explicit StrokeLayer(SketchView& view) : QWidget(&view), view_(view) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        if (view_.stroke_.size() < 2)
            return;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(kInk, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(view_.stroke_);
    }

private:
    SketchView& view_;
};

SketchView::SketchView(QWidget* parent)
    : QOpenGLWidget(parent), viewer_(core::embeddedViewer()), window_(*this, *viewer_),
      turned_(new osg::MatrixTransform), strokeLayer_(new StrokeLayer(*this)) {
    setObjectName(QStringLiteral("SketchView"));
    setFormat(viewFormat());
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
    viewer_->setLightingMode(osg::View::HEADLIGHT);
    osg::Camera* camera = viewer_->getCamera();
    camera->setClearColor(osg::Vec4(static_cast<float>(kPaper.redF()),
                                    static_cast<float>(kPaper.greenF()),
                                    static_cast<float>(kPaper.blueF()), 1.0f));
    camera->setComputeNearFarMode(osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR);
    camera->setViewMatrix(osg::Matrixd::identity());
    viewer_->setSceneData(turned_.get());
}

void SketchView::showObject(osg::ref_ptr<osg::Node> object, bool keepTurn) {
    turned_->removeChildren(0, turned_->getNumChildren());
    object_ = object;
    if (!keepTurn)
        turn_ = osg::Quat();
    if (object_)
        turned_->addChild(object_);
    turnBy(0, 0);
}

void SketchView::turnBy(double rightDegrees, double downDegrees) {
    turn_ = turn_ * osg::Quat(osg::DegreesToRadians(rightDegrees), osg::Vec3d(0, 1, 0)) *
            osg::Quat(osg::DegreesToRadians(downDegrees), osg::Vec3d(1, 0, 0));
    const osg::Vec3d middle = object_ ? osg::Vec3d(object_->getBound().center()) : osg::Vec3d();
    turned_->setMatrix(osg::Matrixd::translate(-middle) * osg::Matrixd::rotate(turn_) *
                       osg::Matrixd::translate(middle));
    update();
}

void SketchView::placeCamera() const {
    const double ratio = devicePixelRatioF();
    osg::Camera* camera = viewer_->getCamera();
    camera->setViewport(0, 0, width() * ratio, height() * ratio);
    camera->setProjectionMatrixAsOrtho(0, width() / SketchSession::kPixelsPerMeter,
                                       -height() / SketchSession::kPixelsPerMeter, 0, -kDepth,
                                       kDepth);
}

bool SketchView::objectAt(QPointF point) const {
    if (!object_)
        return false;
    placeCamera();
    const double ratio = devicePixelRatioF();
    osg::ref_ptr<osgUtil::LineSegmentIntersector> picker = new osgUtil::LineSegmentIntersector(
        osgUtil::Intersector::WINDOW, point.x() * ratio, (height() - point.y()) * ratio);
    osgUtil::IntersectionVisitor visitor(picker.get());
    viewer_->getCamera()->accept(visitor);
    return picker->containsIntersections();
}

void SketchView::initializeGL() {
    window_.contextMade();
}

void SketchView::resizeGL(int, int) {
    window_.resized();
    placeCamera();
}

void SketchView::resizeEvent(QResizeEvent* event) {
    strokeLayer_->setGeometry(rect());
    QOpenGLWidget::resizeEvent(event);
}

void SketchView::paintGL() {
    window_.beginFrame();
    placeCamera();
    viewer_->frame();
}

QPointF SketchView::inside(QPointF point) const {
    return {std::clamp(point.x(), 0.0, static_cast<double>(width())),
            std::clamp(point.y(), 0.0, static_cast<double>(height()))};
}

void SketchView::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    if (drag_ != Drag::None)
        return;
    dragFrom_ = event->position();
    if (event->button() == Qt::RightButton ||
        (event->button() == Qt::LeftButton && objectAt(event->position()))) {
        drag_ = Drag::Turning;
    } else if (event->button() == Qt::LeftButton) {
        drag_ = Drag::Drawing;
        stroke_ = QPolygonF{inside(event->position())};
        strokeLayer_->update();
    }
}

void SketchView::mouseMoveEvent(QMouseEvent* event) {
    if (drag_ == Drag::Turning) {
        const QPointF moved = event->position() - dragFrom_;
        dragFrom_ = event->position();
        turnBy(moved.x() * kDegreesPerPixel, moved.y() * kDegreesPerPixel);
    } else if (drag_ == Drag::Drawing) {
        stroke_ << inside(event->position());
        strokeLayer_->update();
    }
}

void SketchView::mouseReleaseEvent(QMouseEvent* event) {
    const bool ownButton = drag_ == Drag::Turning ? event->buttons() == Qt::NoButton
                                                  : event->button() == Qt::LeftButton;
    if (drag_ == Drag::None || !ownButton)
        return;
    const Drag ended = drag_;
    drag_ = Drag::None;
    if (ended != Drag::Drawing)
        return;
    stroke_ << inside(event->position());
    std::vector<SketchPoint> pixels;
    pixels.reserve(static_cast<size_t>(stroke_.size()));
    for (const QPointF& p : std::as_const(stroke_))
        pixels.push_back({p.x(), p.y()});
    stroke_.clear();
    strokeLayer_->update();
    Q_EMIT strokeDrawn(pixels);
}

void SketchView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
        turnBy(-kDegreesPerKey, 0);
        break;
    case Qt::Key_Right:
        turnBy(kDegreesPerKey, 0);
        break;
    case Qt::Key_Up:
        turnBy(0, -kDegreesPerKey);
        break;
    case Qt::Key_Down:
        turnBy(0, kDegreesPerKey);
        break;
    case Qt::Key_Home:
        turn_ = osg::Quat();
        turnBy(0, 0);
        break;
    default:
        QOpenGLWidget::keyPressEvent(event);
    }
}

} // namespace vessa
