#include "thumbnail.h"

#include <osg/Geometry>
#include <osg/Material>
#include <osg/NodeVisitor>
#include <osg/Transform>
#include <osg/TriangleFunctor>

#include <QLinearGradient>
#include <QPainter>
#include <QPolygonF>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>
#include <vector>

namespace gallery {

namespace {

struct Triangle {
    osg::Vec3 corners[3];
    osg::Vec4 color;
};

// Gathers every triangle of the model in object coordinates with its colour.
class TriangleCollector : public osg::NodeVisitor {
public:
    TriangleCollector() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}

    void apply(osg::Geometry& geometry) override {
        struct Sink {
            std::vector<osg::Vec3> corners;
            void operator()(const osg::Vec3& a, const osg::Vec3& b, const osg::Vec3& c) {
                corners.insert(corners.end(), {a, b, c});
            }
        };
        osg::TriangleFunctor<Sink> sink;
        geometry.accept(sink);
        const osg::Matrix toObject = osg::computeLocalToWorld(getNodePath());
        const osg::Vec4 color = colorOf(geometry);
        for (std::size_t i = 0; i + 2 < sink.corners.size(); i += 3) {
            triangles.push_back({{sink.corners[i] * toObject, sink.corners[i + 1] * toObject,
                                  sink.corners[i + 2] * toObject},
                                 color});
        }
    }

    std::vector<Triangle> triangles;

private:
    static osg::Vec4 colorOf(const osg::Geometry& geometry) {
        const osg::StateSet* stateSet = geometry.getStateSet();
        const auto* material = stateSet ? dynamic_cast<const osg::Material*>(
                                              stateSet->getAttribute(osg::StateAttribute::MATERIAL))
                                        : nullptr;
        return material ? material->getDiffuse(osg::Material::FRONT) : osg::Vec4(1, 1, 1, 1);
    }
};

// An orthographic camera: x to the right, y up the picture, depth towards the eye.
struct Camera {
    osg::Vec3 right, up, towardEye;

    static Camera threeQuarterView() {
        const float turn = osg::DegreesToRadians(32.0f);
        const float rise = osg::DegreesToRadians(24.0f);
        Camera camera;
        camera.towardEye = {std::sin(turn) * std::cos(rise), std::sin(rise),
                            std::cos(turn) * std::cos(rise)};
        camera.right = osg::Vec3(0, 1, 0) ^ camera.towardEye;
        camera.right.normalize();
        camera.up = camera.towardEye ^ camera.right;
        return camera;
    }

    osg::Vec3 view(const osg::Vec3& p) const { return {p * right, p * up, p * towardEye}; }
};

// Long triangles get sorted badly against their neighbours; cutting them into
// smaller ones lets the back-to-front order come out right.
void subdivide(const Triangle& triangle, float maxEdge, int depth, std::vector<Triangle>& out) {
    const osg::Vec3* c = triangle.corners;
    const float longest =
        std::max({(c[1] - c[0]).length(), (c[2] - c[1]).length(), (c[0] - c[2]).length()});
    if (longest <= maxEdge || depth == 0) {
        out.push_back(triangle);
        return;
    }
    const osg::Vec3 ab = (c[0] + c[1]) * 0.5f, bc = (c[1] + c[2]) * 0.5f, ca = (c[2] + c[0]) * 0.5f;
    for (const auto& piece :
         {Triangle{{c[0], ab, ca}, triangle.color}, Triangle{{ab, c[1], bc}, triangle.color},
          Triangle{{ca, bc, c[2]}, triangle.color}, Triangle{{ab, bc, ca}, triangle.color}}) {
        subdivide(piece, maxEdge, depth - 1, out);
    }
}

// Only triangles that face the camera, in view coordinates, cut to size.
std::vector<Triangle> visibleInView(const std::vector<Triangle>& triangles, const Camera& camera,
                                    float maxEdge) {
    std::vector<Triangle> visible;
    for (const auto& t : triangles) {
        const Triangle viewed{
            {camera.view(t.corners[0]), camera.view(t.corners[1]), camera.view(t.corners[2])},
            t.color};
        const osg::Vec3 normal =
            (viewed.corners[1] - viewed.corners[0]) ^ (viewed.corners[2] - viewed.corners[0]);
        if (normal.z() > 0) {
            subdivide(viewed, maxEdge, 3, visible);
        }
    }
    return visible;
}

struct Framing {
    float scale;
    QPointF center; // of the model's view bounds, in pixels

    QPointF toPixels(const osg::Vec3& viewed, const QPointF& middle) const {
        return {middle.x() + (viewed.x() - center.x()) * scale,
                middle.y() - (viewed.y() - center.y()) * scale};
    }
};

Framing frame(const std::vector<Triangle>& triangles, const Camera& camera, float pixels) {
    osg::BoundingBox bounds;
    for (const auto& t : triangles) {
        for (const auto& corner : t.corners) {
            bounds.expandBy(camera.view(corner));
        }
    }
    const float extent = std::max(bounds.xMax() - bounds.xMin(), bounds.yMax() - bounds.yMin());
    return {pixels / std::max(extent, 1e-6f), QPointF(bounds.center().x(), bounds.center().y())};
}

// Light from above, a little from the left and from the viewer.
QColor shaded(const Triangle& viewed) {
    static const osg::Vec3 light = [] {
        osg::Vec3 direction(-0.45f, 0.75f, 0.55f);
        direction.normalize();
        return direction;
    }();
    osg::Vec3 normal =
        (viewed.corners[1] - viewed.corners[0]) ^ (viewed.corners[2] - viewed.corners[0]);
    normal.normalize();
    const float brightness = std::min(1.0f, 0.42f + 0.62f * std::max(0.0f, normal * light));
    const osg::Vec4& c = viewed.color;
    return QColor::fromRgbF(c.r() * brightness, c.g() * brightness, c.b() * brightness);
}

void paintBackground(QPainter& painter, int size) {
    QLinearGradient sky(0, 0, 0, size);
    sky.setColorAt(0, QColor(236, 244, 252));
    sky.setColorAt(1, QColor(250, 252, 255));
    painter.fillRect(0, 0, size, size, sky);
}

// A soft shadow on the ground under the object, so it does not float.
void paintShadow(QPainter& painter, const std::vector<Triangle>& triangles, const Camera& camera,
                 const Framing& framing, const QPointF& middle) {
    osg::BoundingBox footprint;
    for (const auto& t : triangles) {
        for (const auto& corner : t.corners) {
            footprint.expandBy(corner.x(), 0, corner.z());
        }
    }
    const QPointF center = framing.toPixels(camera.view(footprint.center()), middle);
    const float radius =
        0.5f * framing.scale *
        std::max(footprint.xMax() - footprint.xMin(), footprint.zMax() - footprint.zMin());
    QRadialGradient shadow(center, radius);
    shadow.setColorAt(0, QColor(40, 50, 70, 70));
    shadow.setColorAt(1, QColor(40, 50, 70, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadow);
    const float flattening = std::sin(osg::DegreesToRadians(24.0f));
    painter.drawEllipse(center, radius, radius * flattening);
}

} // namespace

QImage drawThumbnail(osg::Node& model, int size) {
    TriangleCollector collector;
    model.accept(collector);

    // Draw twice as large and shrink, which smooths the edges.
    const int canvas = 2 * size;
    const float margin = 0.08f * float(canvas);
    const Camera camera = Camera::threeQuarterView();
    const Framing framing = frame(collector.triangles, camera, float(canvas) - 2 * margin);
    const QPointF middle(canvas / 2.0, canvas / 2.0);

    std::vector<Triangle> visible =
        visibleInView(collector.triangles, camera, 12.0f / framing.scale);
    std::stable_sort(visible.begin(), visible.end(), [](const Triangle& a, const Triangle& b) {
        return a.corners[0].z() + a.corners[1].z() + a.corners[2].z() <
               b.corners[0].z() + b.corners[1].z() + b.corners[2].z();
    });

    QImage image(canvas, canvas, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBackground(painter, canvas);
    paintShadow(painter, collector.triangles, camera, framing, middle);
    for (const auto& t : visible) {
        const QColor color = shaded(t);
        // An outline of the same colour closes the hairline gaps between
        // neighbouring triangles.
        painter.setPen(QPen(color, 1.0));
        painter.setBrush(color);
        const QPointF corners[3] = {framing.toPixels(t.corners[0], middle),
                                    framing.toPixels(t.corners[1], middle),
                                    framing.toPixels(t.corners[2], middle)};
        painter.drawPolygon(corners, 3);
    }
    painter.end();
    return image.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace gallery
