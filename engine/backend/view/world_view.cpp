#include "view/world_view.h"

#include "glwidget/widget_graphics_window.h"
#include "scene/engine_frame.h"
#include "scene/scene_graph.h"

#include <osg/BlendFunc>
#include <osg/Depth>
#include <osg/Geometry>
#include <osg/LightModel>
#include <osg/LightSource>
#include <osg/Material>
#include <osg/PolygonMode>
#include <osg/PolygonOffset>
#include <osg/Stencil>
#include <osgUtil/IntersectionVisitor>
#include <osgUtil/LineSegmentIntersector>

#include <algorithm>
#include <limits>

namespace vessa::core {

namespace {

// Node masks: what a pick may hit, and what only decorates the picture.
constexpr osg::Node::NodeMask kWorldMask = 0x1;
constexpr osg::Node::NodeMask kDecorationMask = 0x2;

constexpr double kFieldOfViewDegrees = 50.0;
// The eye comes as close as this to what it sees; the far plane lies just
// beyond the world, however big it is.
constexpr double kNear = 0.05;
constexpr double kFarBeyondTheWorld = 1.01;
// Shapes smaller on screen than this many pixels across are specks: not drawn.
constexpr float kSmallestFeaturePixels = 4.0f;

const osg::Vec4 kSkyTop(0.30f, 0.52f, 0.84f, 1.0f);
const osg::Vec4 kSkyHorizon(0.78f, 0.87f, 0.96f, 1.0f);
const osg::Vec4 kAmbient(0.32f, 0.32f, 0.34f, 1.0f);
const osg::Vec4 kFill(0.45f, 0.45f, 0.45f, 1.0f);
const osg::Vec4 kFillDirection(0.35f, 1.0f, -0.55f, 0.0f); // toward the fill light, OSG frame
const osg::Vec4 kShadow(0.0f, 0.0f, 0.0f, 0.35f);

// Shadows fall on the ground plane of the world, a hair above it.
constexpr double kShadowHeight = 0.002;
constexpr int kWorldDrawn = 1; // stencil value of pixels the world covers

// Without a camera in the world, the view stands where the default world's
// camera does.
const ChannelValue kDefaultEye = {0.0, 1.5, -8.0, 0.0};

osg::Node* makeSky() {
    auto* quad = new osg::Geometry;
    auto* corners = new osg::Vec3Array;
    for (const auto& [x, y] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}})
        corners->push_back(osg::Vec3(static_cast<float>(x), static_cast<float>(y), 0.0f));
    auto* colors = new osg::Vec4Array;
    for (const osg::Vec4& color : {kSkyHorizon, kSkyHorizon, kSkyTop, kSkyTop})
        colors->push_back(color);
    quad->setVertexArray(corners);
    quad->setColorArray(colors, osg::Array::BIND_PER_VERTEX);
    quad->addPrimitiveSet(new osg::DrawArrays(GL_QUADS, 0, 4));
    auto* geode = new osg::Geode;
    geode->addDrawable(quad);
    osg::StateSet* look = geode->getOrCreateStateSet();
    look->setMode(GL_LIGHTING, osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
    look->setAttributeAndModes(new osg::Depth(osg::Depth::ALWAYS, 0.0, 1.0, false));
    for (unsigned int unit = 0; unit < 2; ++unit)
        look->setTextureMode(unit, GL_TEXTURE_2D, osg::StateAttribute::OFF);
    look->setRenderBinDetails(-10, "RenderBin"); // behind everything

    auto* camera = new osg::Camera;
    camera->setReferenceFrame(osg::Transform::ABSOLUTE_RF);
    camera->setProjectionMatrixAsOrtho2D(0, 1, 0, 1);
    camera->setViewMatrix(osg::Matrixd::identity());
    camera->setRenderOrder(osg::Camera::NESTED_RENDER);
    camera->setClearMask(0);
    camera->setAllowEventFocus(false);
    camera->setNodeMask(kDecorationMask);
    camera->addChild(geode);
    return camera;
}

osg::LightSource* makeFillLight() {
    auto* source = new osg::LightSource;
    osg::Light* light = source->getLight();
    light->setLightNum(0);
    light->setPosition(kFillDirection);
    light->setAmbient(osg::Vec4(0, 0, 0, 1));
    light->setDiffuse(kFill);
    light->setSpecular(osg::Vec4(0, 0, 0, 1));
    source->setNodeMask(kDecorationMask);
    return source;
}

void light(osg::StateSet* look, osg::LightSource* fill) {
    auto* model = new osg::LightModel;
    model->setAmbientIntensity(kAmbient);
    look->setAttributeAndModes(model);
    // Shapes without a material of their own are lit in their vertex colors.
    auto* material = new osg::Material;
    material->setColorMode(osg::Material::AMBIENT_AND_DIFFUSE);
    material->setSpecular(osg::Material::FRONT_AND_BACK, osg::Vec4(0.15f, 0.15f, 0.15f, 1.0f));
    material->setShininess(osg::Material::FRONT_AND_BACK, 24.0f);
    look->setAttributeAndModes(material);
    look->setMode(GL_LIGHTING, osg::StateAttribute::ON);
    fill->setStateSetModes(*look, osg::StateAttribute::ON);
}

// Draws what it holds with only the shapes that cast shadows.
class CastersOnly : public osg::NodeCallback {
public:
    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override {
        const osg::Node::NodeMask all = visitor->getTraversalMask();
        visitor->setTraversalMask(SceneGraph::kCastsShadowMask);
        traverse(node, visitor);
        visitor->setTraversalMask(all);
    }
};

// The world drawn a second time, flattened onto the ground plane from the
// light as a dark glaze: shadows that cost one more pass and no shaders.
// Only the shapes that stand on or above the ground are drawn (the scene
// graph marks them), each as itself: nothing is made again for a frame.
osg::MatrixTransform* makeShadows(osg::Node* world) {
    auto* flatten = new osg::MatrixTransform;
    flatten->setNodeMask(kDecorationMask);
    flatten->setCullCallback(new CastersOnly);
    flatten->addChild(world);
    osg::StateSet* look = flatten->getOrCreateStateSet();
    const auto forced = osg::StateAttribute::ON | osg::StateAttribute::OVERRIDE;
    // However a shape is drawn itself, its shadow is solid, lit and whole.
    look->setMode(GL_LIGHTING, forced);
    look->setMode(GL_CULL_FACE, osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
    look->setAttribute(
        new osg::PolygonMode(osg::PolygonMode::FRONT_AND_BACK, osg::PolygonMode::FILL), forced);
    auto* dark = new osg::Material;
    dark->setColorMode(osg::Material::OFF);
    dark->setAmbient(osg::Material::FRONT_AND_BACK, osg::Vec4(0, 0, 0, kShadow.a()));
    dark->setDiffuse(osg::Material::FRONT_AND_BACK, kShadow);
    dark->setSpecular(osg::Material::FRONT_AND_BACK, osg::Vec4(0, 0, 0, kShadow.a()));
    dark->setEmission(osg::Material::FRONT_AND_BACK, osg::Vec4(0, 0, 0, kShadow.a()));
    look->setAttributeAndModes(dark, forced);
    look->setAttributeAndModes(new osg::BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA), forced);
    look->setAttributeAndModes(new osg::Depth(osg::Depth::LEQUAL, 0.0, 1.0, false), forced);
    look->setAttributeAndModes(new osg::PolygonOffset(-1.0f, -1.0f), forced);
    // Only where the world was drawn (not the sky beyond the ground), and
    // each pixel once however many shapes shade it.
    auto* once = new osg::Stencil;
    once->setFunction(osg::Stencil::EQUAL, kWorldDrawn, ~0u);
    once->setOperation(osg::Stencil::KEEP, osg::Stencil::KEEP, osg::Stencil::INCR);
    look->setAttributeAndModes(once, forced);
    for (unsigned int unit = 0; unit < 2; ++unit)
        look->setTextureMode(unit, GL_TEXTURE_2D,
                             osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
    look->setRenderBinDetails(5, "RenderBin");
    return flatten;
}

// Marks the pixels that the world's shapes cover.
osg::Stencil* markingTheWorld() {
    auto* mark = new osg::Stencil;
    mark->setFunction(osg::Stencil::ALWAYS, kWorldDrawn, ~0u);
    mark->setOperation(osg::Stencil::KEEP, osg::Stencil::KEEP, osg::Stencil::REPLACE);
    return mark;
}

// Projects points onto the plane y = h along lines from the light (w = 1) or
// along its direction (w = 0), as a matrix for OSG's row vectors.
osg::Matrixd flattenedFrom(const osg::Vec4d& light, double h) {
    const osg::Vec4d plane(0.0, 1.0, 0.0, -h);
    const double d = plane * light;
    osg::Matrixd m;
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col)
            m(row, col) = (row == col ? d : 0.0) - light[col] * plane[row];
    }
    return m;
}

} // namespace

WorldView::WorldView(SceneGraph& scene)
    : scene_(scene), viewer_(embeddedViewer()), root_(new osg::Group), world_(new osg::Group) {
    viewer_->setLightingMode(osg::View::NO_LIGHT);
    window_ =
        static_cast<osgViewer::GraphicsWindowEmbedded*>(viewer_->getCamera()->getGraphicsContext());
    osg::Camera* camera = viewer_->getCamera();
    camera->setClearColor(kSkyHorizon);
    camera->setClearMask(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    camera->setComputeNearFarMode(osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR);
    camera->setCullMask(kWorldMask | kDecorationMask);
    camera->setSmallFeatureCullingPixelSize(kSmallestFeaturePixels);

    auto* fill = makeFillLight();
    light(root_->getOrCreateStateSet(), fill);
    root_->addChild(makeSky());
    root_->addChild(fill);
    world_->addChild(scene_.world());
    root_->addChild(world_);
    viewer_->setSceneData(root_.get());
}

// A viewer that dies holding its window closes it with OpenGL calls, which
// need a current context: the widget on screen closes the window while it
// has one, a picture drawn offscreen calls releaseGL(), and a view that never
// had one only forgets its objects.
WorldView::~WorldView() {
    if (!released_)
        window_->close(false);
    viewer_->getCamera()->setGraphicsContext(nullptr);
}

void WorldView::setSize(int width, int height) {
    width_ = std::max(width, 1);
    height_ = std::max(height, 1);
    window_->resized(0, 0, width_, height_);
    window_->getEventQueue()->windowResize(0, 0, width_, height_);
}

void WorldView::setHighQuality(bool high) {
    highQuality_ = high;
    if (high && !shadows_) {
        shadows_ = makeShadows(scene_.world());
        world_->getOrCreateStateSet()->setAttributeAndModes(markingTheWorld());
        root_->addChild(shadows_);
    } else if (!high && shadows_) {
        root_->removeChild(shadows_);
        world_->getOrCreateStateSet()->removeAttribute(osg::StateAttribute::STENCIL);
        world_->getOrCreateStateSet()->removeMode(GL_STENCIL_TEST);
        shadows_ = nullptr;
    }
}

std::optional<int> WorldView::cameraNode() const {
    return scene_.firstInWorld(NodeKind::Camera);
}

osg::Matrixd WorldView::viewMatrix() const {
    // A camera node looks along its forward axis, OSG's +z in its frame; an
    // OSG eye looks along its -z: half a turn about up between them.
    const auto camera = cameraNode();
    const osg::Matrixd place =
        camera ? scene_.placeToWorld(*camera) : osg::Matrixd::translate(toOsgPoint(kDefaultEye));
    return osg::Matrixd::inverse(place) * osg::Matrixd::rotate(osg::PI, osg::Vec3d(0, 1, 0));
}

// The far plane lies just beyond the farthest point of the world from the
// eye, so that nothing in it is cut away, and depth is measured finely.
void WorldView::placeCamera() const {
    osg::Camera* camera = viewer_->getCamera();
    camera->setViewport(0, 0, width_, height_);
    const osg::Matrixd view = viewMatrix();
    const osg::BoundingSphere& world = scene_.world()->getBound();
    const osg::Vec3d eye = osg::Matrixd::inverse(view).getTrans();
    const double farthest = world.valid() ? (osg::Vec3d(world.center()) - eye).length() +
                                                static_cast<double>(world.radius())
                                          : 0.0;
    camera->setProjectionMatrixAsPerspective(
        kFieldOfViewDegrees, static_cast<double>(width_) / static_cast<double>(height_), kNear,
        std::max(farthest * kFarBeyondTheWorld, 2.0 * kNear));
    camera->setViewMatrix(view);
}

void WorldView::placeShadows() {
    const auto lit = scene_.firstInWorld(NodeKind::Light);
    const osg::Vec4d from =
        lit ? osg::Vec4d(scene_.placeToWorld(*lit).getTrans(), 1.0) : osg::Vec4d(kFillDirection);
    shadows_->setMatrix(flattenedFrom(from, kShadowHeight));
    scene_.settleShadowCasters();
}

void WorldView::draw(unsigned int fbo) {
    window_->setDefaultFboId(fbo);
    placeCamera();
    if (shadows_)
        placeShadows();
    viewer_->frame();
}

void WorldView::releaseGL() {
    window_->close(true);
    released_ = true;
}

ViewRay WorldView::rayAt(double x, double y) const {
    placeCamera();
    const osg::Camera* camera = viewer_->getCamera();
    const osg::Matrixd toWindow = camera->getViewMatrix() * camera->getProjectionMatrix() *
                                  camera->getViewport()->computeWindowMatrix();
    const osg::Matrixd fromWindow = osg::Matrixd::inverse(toWindow);
    const double wy = height_ - y;
    const osg::Vec3d nearPoint = osg::Vec3d(x, wy, 0.0) * fromWindow;
    osg::Vec3d direction = osg::Vec3d(x, wy, 1.0) * fromWindow - nearPoint;
    direction.normalize();
    return {fromOsgPoint(nearPoint), fromOsgPoint(direction)};
}

std::optional<ViewHit> WorldView::pick(double x, double y) const {
    placeCamera();
    osg::ref_ptr<osgUtil::LineSegmentIntersector> picker =
        new osgUtil::LineSegmentIntersector(osgUtil::Intersector::WINDOW, x, height_ - y);
    osgUtil::IntersectionVisitor visitor(picker.get());
    visitor.setTraversalMask(kWorldMask);
    viewer_->getCamera()->accept(visitor);
    for (const auto& hit : picker->getIntersections()) {
        if (const auto node = scene_.nodeOnPath(hit.nodePath))
            return ViewHit{*node, fromOsgPoint(hit.getWorldIntersectPoint())};
    }
    return std::nullopt;
}

} // namespace vessa::core
