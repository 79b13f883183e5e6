#pragma once

#include "glwidget/widget_graphics_window.h"
#include "paint_session.h"
#include "turntable.h"

#include <QOpenGLWidget>
#include <QPointF>

#include <osg/Image>
#include <osg/MatrixTransform>
#include <osgViewer/Viewer>

#include <optional>
#include <vector>

namespace vessa::paint3d {

// What a left press in the view does.
enum class PaintTool { Brush, Fill, Picture, Turn };

// The object on screen, turned by a right drag (or a left one with the
// Turn tool), the arrow keys and the wheel, and painted with the left
// button; Space uses the tool at the middle of the view. A thin widget:
// the session paints, the turntable says where the mouse points.
class PaintView : public QOpenGLWidget {
    Q_OBJECT
public:
    PaintView(PaintSession& session, QWidget* parent);

    void setTool(PaintTool tool) { tool_ = tool; }
    PaintTool tool() const { return tool_; }
    // The picture the Picture tool lays on, and how many texels across.
    void setPicture(const Skin& picture) { picture_ = picture; }
    bool hasPicture() const { return picture_.width() > 0; }
    double pictureAcross() const;
    // Shows the skins as the session has them now.
    void showSkins();

Q_SIGNALS:
    // The skins changed through this view.
    void painted();

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // The tool's work where (x, y) points; true when it painted.
    bool useToolAt(QPointF at);
    void strokeTo(QPointF at);
    void changed(bool didPaint);

    PaintSession& session_;
    Turntable turntable_;
    osg::ref_ptr<osgViewer::Viewer> viewer_;
    vessa::core::WidgetGraphicsWindow window_;
    osg::ref_ptr<osg::MatrixTransform> place_;
    std::vector<osg::ref_ptr<osg::Image>> skins_;
    PaintTool tool_ = PaintTool::Brush;
    Skin picture_;
    std::optional<QPointF> stroking_, turning_;
};

} // namespace vessa::paint3d
