#include "thumbnail.h"

#include "model.h"

#include <osg/Geometry>
#include <osg/Material>
#include <osg/NodeVisitor>
#include <osg/Transform>

#include <QLinearGradient>
#include <QPainter>
#include <QPolygonF>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace gallery {

namespace {

struct Triangle {
    osg::Vec3 corners[3];
    osg::Vec3 normals[3];
    osg::Vec4 color;
};

// Gathers every triangle of the model in object coordinates with its normals
// and colour. Reads the vertex and normal arrays the gallery writes.
class TriangleCollector : public osg::NodeVisitor {
public:
    TriangleCollector() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}

    void apply(osg::Geometry& geometry) override {
        const auto* vertices = dynamic_cast<const osg::Vec3Array*>(geometry.getVertexArray());
        const auto* normals = dynamic_cast<const osg::Vec3Array*>(geometry.getNormalArray());
        if (!vertices || !normals || normals->size() != vertices->size()) {
            return;
        }
        const std::vector<unsigned> indices = triangleIndices(geometry);
        const osg::Matrix toObject = osg::computeLocalToWorld(getNodePath());
        const osg::Vec4 color = colorOf(geometry);
        for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
            Triangle triangle{{}, {}, color};
            for (int k = 0; k < 3; ++k) {
                const unsigned index = indices[i + std::size_t(k)];
                triangle.corners[k] = (*vertices)[index] * toObject;
                triangle.normals[k] = osg::Matrix::transform3x3((*normals)[index], toObject);
            }
            triangles.push_back(triangle);
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
        const float turn = osg::DegreesToRadians(26.0f);
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

// Triangles facing the camera, in view coordinates.
std::vector<Triangle> facingCamera(const std::vector<Triangle>& triangles, const Camera& camera) {
    std::vector<Triangle> visible;
    for (const auto& t : triangles) {
        const Triangle viewed{
            {camera.view(t.corners[0]), camera.view(t.corners[1]), camera.view(t.corners[2])},
            {camera.view(t.normals[0]), camera.view(t.normals[1]), camera.view(t.normals[2])},
            t.color};
        const osg::Vec3 normal =
            (viewed.corners[1] - viewed.corners[0]) ^ (viewed.corners[2] - viewed.corners[0]);
        if (normal.z() > 0) {
            visible.push_back(viewed);
        }
    }
    return visible;
}

struct Framing {
    float scale;
    QPointF center; // the middle of the model's bounds in view coordinates

    QPointF toPixels(const osg::Vec3& viewed, const QPointF& middle) const {
        return {middle.x() + (viewed.x() - center.x()) * scale,
                middle.y() - (viewed.y() - center.y()) * scale};
    }
};

// The ground under the object, as the corners of its footprint.
std::vector<osg::Vec3> footprint(const std::vector<Triangle>& triangles) {
    osg::BoundingBox bounds;
    for (const auto& t : triangles) {
        for (const auto& corner : t.corners) {
            bounds.expandBy(corner.x(), 0, corner.z());
        }
    }
    return {{bounds.xMin(), 0, bounds.zMin()},
            {bounds.xMax(), 0, bounds.zMin()},
            {bounds.xMin(), 0, bounds.zMax()},
            {bounds.xMax(), 0, bounds.zMax()}};
}

// Fits the object and its shadow into the picture.
Framing frame(const std::vector<Triangle>& triangles, const Camera& camera, float pixels) {
    osg::BoundingBox bounds;
    for (const auto& t : triangles) {
        for (const auto& corner : t.corners) {
            bounds.expandBy(camera.view(corner));
        }
    }
    for (const auto& corner : footprint(triangles)) {
        bounds.expandBy(camera.view(corner));
    }
    const float extent = std::max(bounds.xMax() - bounds.xMin(), bounds.yMax() - bounds.yMin());
    return {pixels / std::max(extent, 1e-6f), QPointF(bounds.center().x(), bounds.center().y())};
}

// Light from above, a little from the left and from the viewer.
QRgb shaded(const osg::Vec4& color, osg::Vec3 normal) {
    static const osg::Vec3 light = [] {
        osg::Vec3 direction(-0.45f, 0.75f, 0.55f);
        direction.normalize();
        return direction;
    }();
    normal.normalize();
    const float brightness = std::min(1.0f, 0.42f + 0.62f * std::max(0.0f, normal * light));
    return QColor::fromRgbF(color.r() * brightness, color.g() * brightness, color.b() * brightness)
        .rgb();
}

// Fills triangles into an image, keeping at each pixel the one nearest the
// eye, so that faces lying close together (a pane on a wall) come out right.
class DepthCanvas {
public:
    explicit DepthCanvas(QImage& image)
        : image_(image), nearest_(std::size_t(image.width() * image.height()),
                                  -std::numeric_limits<float>::infinity()) {}

    // Corners in pixels with their depth; normals in view coordinates.
    void fill(const osg::Vec3 (&corners)[3], const osg::Vec3 (&normals)[3],
              const osg::Vec4& color) {
        const float area = edge(corners[0], corners[1], corners[2].x(), corners[2].y());
        if (std::abs(area) < 1e-9f) {
            return;
        }
        const auto [minX, maxX] = std::minmax({corners[0].x(), corners[1].x(), corners[2].x()});
        const auto [minY, maxY] = std::minmax({corners[0].y(), corners[1].y(), corners[2].y()});
        const int left = std::max(0, int(std::floor(minX)));
        const int right = std::min(image_.width() - 1, int(std::ceil(maxX)));
        const int top = std::max(0, int(std::floor(minY)));
        const int bottom = std::min(image_.height() - 1, int(std::ceil(maxY)));
        for (int y = top; y <= bottom; ++y) {
            for (int x = left; x <= right; ++x) {
                const float px = float(x) + 0.5f, py = float(y) + 0.5f;
                const float w0 = edge(corners[1], corners[2], px, py) / area;
                const float w1 = edge(corners[2], corners[0], px, py) / area;
                const float w2 = 1 - w0 - w1;
                if (w0 < 0 || w1 < 0 || w2 < 0) {
                    continue;
                }
                const float depth = w0 * corners[0].z() + w1 * corners[1].z() + w2 * corners[2].z();
                float& nearest = nearest_[std::size_t(y * image_.width() + x)];
                if (depth > nearest) {
                    nearest = depth;
                    image_.setPixel(
                        x, y, shaded(color, normals[0] * w0 + normals[1] * w1 + normals[2] * w2));
                }
            }
        }
    }

private:
    static float edge(const osg::Vec3& a, const osg::Vec3& b, float x, float y) {
        return (b.x() - a.x()) * (y - a.y()) - (b.y() - a.y()) * (x - a.x());
    }

    QImage& image_;
    std::vector<float> nearest_;
};

void paintBackground(QPainter& painter, int size) {
    QLinearGradient sky(0, 0, 0, size);
    sky.setColorAt(0, QColor(236, 244, 252));
    sky.setColorAt(1, QColor(250, 252, 255));
    painter.fillRect(0, 0, size, size, sky);
}

// A soft shadow on the ground under the object, so it does not float: an
// ellipse filling the picture of its footprint.
void paintShadow(QPainter& painter, const std::vector<Triangle>& triangles, const Camera& camera,
                 const Framing& framing, const QPointF& middle) {
    QPolygonF ground;
    for (const auto& corner : footprint(triangles)) {
        ground << framing.toPixels(camera.view(corner), middle);
    }
    const QRectF area = ground.boundingRect();
    const float radius = std::max(1.0, area.width() / 2);
    QRadialGradient shadow(QPointF(0, 0), radius);
    shadow.setColorAt(0, QColor(40, 50, 70, 80));
    shadow.setColorAt(1, QColor(40, 50, 70, 0));
    painter.save();
    painter.translate(area.center());
    painter.scale(1, std::max(0.2, area.height() / area.width()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadow);
    painter.drawEllipse(QPointF(0, 0), radius, radius);
    painter.restore();
}

} // namespace

QImage drawThumbnail(osg::Node& model, int size) {
    TriangleCollector collector;
    model.accept(collector);

    // Draw three times as large and shrink, which smooths the edges.
    const int canvas = 3 * size;
    const float margin = 0.08f * float(canvas);
    const Camera camera = Camera::threeQuarterView();
    const Framing framing = frame(collector.triangles, camera, float(canvas) - 2 * margin);
    const QPointF middle(canvas / 2.0, canvas / 2.0);

    QImage image(canvas, canvas, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBackground(painter, canvas);
    paintShadow(painter, collector.triangles, camera, framing, middle);
    painter.end();

    DepthCanvas depthCanvas(image);
    for (const auto& t : facingCamera(collector.triangles, camera)) {
        osg::Vec3 corners[3];
        for (int k = 0; k < 3; ++k) {
            const QPointF pixel = framing.toPixels(t.corners[k], middle);
            corners[k].set(float(pixel.x()), float(pixel.y()), t.corners[k].z());
        }
        depthCanvas.fill(corners, t.normals, t.color);
    }
    return image.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace gallery
