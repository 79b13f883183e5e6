#pragma once

#include "export/sketch_outline.h"
#include "glwidget/widget_graphics_window.h"

#include <QOpenGLWidget>
#include <QPolygonF>

#include <osg/MatrixTransform>
#include <osg/Quat>
#include <osgViewer/Viewer>

#include <vector>

namespace vessa {

// The sketch tool's drawing area: the stroke being drawn, in a line over the object
// that the last stroke made. A left drag that starts off the object draws a stroke
// (told by strokeDrawn when the button is let go, in the area's pixels, points
// outside the area brought to its edge); a drag that starts on the object, or any
// right drag, turns the object, and so do the arrow keys; Home turns it back. The
// object is seen straight from the front without perspective, one meter to
// SketchSession's pixels per meter, so that it stands where its outline was drawn.
class SketchView : public QOpenGLWidget {
    Q_OBJECT
public:
    explicit SketchView(QWidget* parent = nullptr);

    // The object shown, or none; a new one starts unturned, the same one in another
    // colour stays as it was turned.
    void showObject(osg::ref_ptr<osg::Node> object, bool keepTurn = false);
    bool showsObject() const { return object_.valid(); }
    const osg::Quat& turn() const { return turn_; }
    // Whether the object covers the point (in the area's pixels).
    bool objectAt(QPointF point) const;

Q_SIGNALS:
    void strokeDrawn(const std::vector<vessa::SketchPoint>& pixels);

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    enum class Drag { None, Drawing, Turning };

    void placeCamera() const;
    void turnBy(double rightDegrees, double downDegrees);
    QPointF inside(QPointF point) const;

    osg::ref_ptr<osgViewer::Viewer> viewer_;
    core::WidgetGraphicsWindow window_;
    osg::ref_ptr<osg::MatrixTransform> turned_;
    osg::ref_ptr<osg::Node> object_;
    osg::Quat turn_;
    QWidget* strokeLayer_;
    QPolygonF stroke_;
    Drag drag_ = Drag::None;
    QPointF dragFrom_;

    friend class StrokeLayer;
};

} // namespace vessa
