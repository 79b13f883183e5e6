#include "scene/scene_graph.h"

#include "scene/engine_frame.h"

#include <osg/ComputeBoundsVisitor>
#include <osg/Image>
#include <osg/LightSource>
#include <osg/Point>
#include <osg/PolygonMode>
#include <osg/TexEnvCombine>
#include <osgUtil/IntersectionVisitor>
#include <osgUtil/LineSegmentIntersector>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <stdexcept>

namespace vessa::core {

namespace {

// Light 0 belongs to the view's fill light; scene lights take the others.
constexpr int kFirstSceneLight = 1;
constexpr int kLightCount = 8;
constexpr int kTintUnit = 1;
constexpr float kPointSize = 3.0f;

osg::Texture2D* whitePixel() {
    osg::ref_ptr<osg::Image> image = new osg::Image;
    image->allocateImage(1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE);
    std::fill_n(image->data(), 4, 255);
    auto* texture = new osg::Texture2D(image.get());
    texture->setResizeNonPowerOfTwoHint(false);
    return texture;
}

bool sameWord(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) ==
               std::tolower(static_cast<unsigned char>(y));
    });
}

// A crowd is emptied newest first (a world that is closed, a run's objects
// put away), so a child is looked for from the end: that way each leaves in
// a moment however many stand beside it.
void removeFromEnd(osg::Group& group, const osg::Node* child) {
    for (unsigned int i = group.getNumChildren(); i-- > 0;) {
        if (group.getChild(i) == child) {
            group.removeChildren(i, 1);
            return;
        }
    }
}

void removeFromEnd(std::vector<int>& ids, int id) {
    const auto found = std::find(ids.rbegin(), ids.rend(), id);
    if (found != ids.rend())
        ids.erase(std::next(found).base());
}

bool isWhite(const ChannelValue& color) {
    return color[0] == 1.0 && color[1] == 1.0 && color[2] == 1.0;
}

} // namespace

std::optional<NodeKind> nodeKindNamed(std::string_view name) {
    if (name == "scene")
        return NodeKind::Scene;
    if (name == "camera")
        return NodeKind::Camera;
    if (name == "light")
        return NodeKind::Light;
    if (name == "model")
        return NodeKind::Model;
    return std::nullopt;
}

SceneGraph::SceneGraph()
    : world_(new osg::Group), white_(whitePixel()), lightNumbersInUse_(kLightCount, false) {
    world_->setName("world");
    // Sizes scale normals along with the shapes.
    world_->getOrCreateStateSet()->setMode(GL_NORMALIZE, osg::StateAttribute::ON);
    world_->getOrCreateStateSet()->setMode(GL_CULL_FACE, osg::StateAttribute::ON);
}

SceneGraph::~SceneGraph() = default;

SceneGraph::Node& SceneGraph::node(int id) {
    auto found = nodes_.find(id);
    if (found == nodes_.end())
        throw std::out_of_range("no node " + std::to_string(id));
    return found->second;
}

const SceneGraph::Node& SceneGraph::node(int id) const {
    return const_cast<SceneGraph*>(this)->node(id);
}

void SceneGraph::changed() const {
    if (onChange_)
        onChange_();
}

void SceneGraph::addNode(int id, NodeKind kind,
                         const std::array<ChannelValue, kChannelCount>& values) {
    if (nodes_.contains(id))
        removeNode(id);
    Node& n = nodes_[id];
    n.kind = kind;
    n.values = values;
    n.place->addChild(n.size);
    shapeOwners_[n.size.get()] = id;
    updatePlace(n);
    updateSize(n);
    updateColor(n);
    if (kind == NodeKind::Light)
        attachLight(n);
    if (kind == NodeKind::Scene)
        world_->addChild(n.place);
    changed();
}

void SceneGraph::removeNode(int id) {
    auto found = nodes_.find(id);
    if (found == nodes_.end())
        return;
    setParent(id, std::nullopt);
    Node& n = found->second;
    for (int child : std::vector<int>(n.children))
        setParent(child, std::nullopt);
    if (n.kind == NodeKind::Scene)
        world_->removeChild(n.place);
    detachLight(n);
    shapeOwners_.erase(n.size.get());
    nodes_.erase(found);
    changed();
}

NodeKind SceneGraph::kind(int id) const {
    return node(id).kind;
}

ChannelValue SceneGraph::get(int id, Channel channel) const {
    return node(id).values[static_cast<size_t>(channel)];
}

void SceneGraph::set(int id, Channel channel, const ChannelValue& value) {
    Node& n = node(id);
    n.values[static_cast<size_t>(channel)] = value;
    switch (channel) {
    case Channel::Position:
    case Channel::Orientation:
        updatePlace(n);
        break;
    case Channel::Size:
        updateSize(n);
        break;
    case Channel::Color:
        updateColor(n);
        break;
    }
    changed();
}

void SceneGraph::change(int id, Channel channel, const ChannelValue& delta, double amount) {
    ChannelValue value = get(id, channel);
    if (channel == Channel::Orientation) {
        const ChannelValue turn =
            quatFromAxisAngle(delta[0], delta[1], delta[2], delta[3] * amount);
        value = quatNormalized(quatMultiply(turn, value));
    } else {
        for (int i = 0; i < 3; ++i)
            value[static_cast<size_t>(i)] += delta[static_cast<size_t>(i)] * amount;
    }
    set(id, channel, value);
}

void SceneGraph::setParent(int id, std::optional<int> parent) {
    Node& n = node(id);
    if (parent)
        node(*parent); // throws before anything changes if it does not exist
    if (n.kind == NodeKind::Scene || n.parent == parent)
        return;
    if (n.parent) {
        Node& old = node(*n.parent);
        removeFromEnd(*old.place, n.place.get());
        removeFromEnd(old.children, id);
    }
    n.parent = parent;
    if (parent) {
        Node& now = node(*parent);
        now.place->addChild(n.place);
        now.children.push_back(id);
    }
    changed();
}

std::optional<int> SceneGraph::parent(int id) const {
    return node(id).parent;
}

const NodeStyle& SceneGraph::style(int id) const {
    return node(id).style;
}

osg::StateSet* SceneGraph::lookOf(Node& n) {
    return n.size->getOrCreateStateSet();
}

void SceneGraph::setVisible(int id, bool visible) {
    Node& n = node(id);
    n.style.visible = visible;
    n.size->setNodeMask(visible ? ~0u : 0u);
    changed();
}

void SceneGraph::setFilling(int id, const std::string& filling) {
    Node& n = node(id);
    n.style.filling = filling;
    osg::StateSet* look = lookOf(n);
    look->removeAttribute(osg::StateAttribute::POLYGONMODE);
    look->removeAttribute(osg::StateAttribute::POINT);
    const bool lines = sameWord(filling, "Lines");
    if (lines || sameWord(filling, "Points")) {
        const auto mode = lines ? osg::PolygonMode::LINE : osg::PolygonMode::POINT;
        look->setAttribute(new osg::PolygonMode(osg::PolygonMode::FRONT_AND_BACK, mode),
                           osg::StateAttribute::ON | osg::StateAttribute::OVERRIDE);
        if (!lines)
            look->setAttribute(new osg::Point(kPointSize),
                               osg::StateAttribute::ON | osg::StateAttribute::OVERRIDE);
    }
    changed();
}

void SceneGraph::setLighting(int id, const std::string& lighting) {
    Node& n = node(id);
    n.style.lighting = lighting;
    if (!sameWord(lighting, "UnLit"))
        lookOf(n)->removeMode(GL_LIGHTING);
    else
        lookOf(n)->setMode(GL_LIGHTING, osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
    changed();
}

void SceneGraph::setTextured(int id, bool textured) {
    Node& n = node(id);
    n.style.textured = textured;
    if (textured)
        lookOf(n)->removeTextureMode(0, GL_TEXTURE_2D);
    else
        lookOf(n)->setTextureMode(0, GL_TEXTURE_2D,
                                  osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
    changed();
}

void SceneGraph::setCastsShadow(int id, bool casts) {
    node(id).style.castsShadow = casts;
    changed();
}

void SceneGraph::setModel(int id, const std::string& model, osg::Node* shape) {
    Node& n = node(id);
    n.style.model = model;
    if (n.shape)
        n.size->removeChild(n.shape);
    n.shape = shape;
    n.shapeBox.reset();
    if (shape)
        n.size->addChild(shape);
    changed();
}

osg::Node* SceneGraph::shape(int id) const {
    return node(id).shape.get();
}

const osg::BoundingBox& SceneGraph::shapeBox(int id) const {
    Node& n = const_cast<SceneGraph*>(this)->node(id);
    if (!n.shapeBox) {
        osg::ComputeBoundsVisitor measure;
        if (n.shape)
            n.shape->accept(measure);
        n.shapeBox = measure.getBoundingBox();
    }
    return *n.shapeBox;
}

void SceneGraph::updatePlace(Node& n) {
    const ChannelValue& position = n.values[static_cast<size_t>(Channel::Position)];
    const ChannelValue& orientation = n.values[static_cast<size_t>(Channel::Orientation)];
    n.place->setMatrix(osg::Matrixd::rotate(toOsgRotation(orientation)) *
                       osg::Matrixd::translate(toOsgPoint(position)));
}

void SceneGraph::updateSize(Node& n) {
    const ChannelValue& size = n.values[static_cast<size_t>(Channel::Size)];
    n.size->setMatrix(osg::Matrixd::scale(size[0], size[1], size[2]));
}

// A node's color tints its shape: white leaves the shape's own colors,
// anything else multiplies them, lit or unlit, textured or not.
void SceneGraph::updateColor(Node& n) {
    const ChannelValue& color = n.values[static_cast<size_t>(Channel::Color)];
    if (!n.tint) {
        if (isWhite(color))
            return;
        n.tint = new osg::TexEnvCombine;
        n.tint->setCombine_RGB(osg::TexEnvCombine::MODULATE);
        n.tint->setSource0_RGB(osg::TexEnvCombine::PREVIOUS);
        n.tint->setSource1_RGB(osg::TexEnvCombine::CONSTANT);
        n.tint->setCombine_Alpha(osg::TexEnvCombine::REPLACE);
        n.tint->setSource0_Alpha(osg::TexEnvCombine::PREVIOUS);
        osg::StateSet* look = lookOf(n);
        look->setTextureAttributeAndModes(kTintUnit, white_.get(), osg::StateAttribute::ON);
        look->setTextureAttribute(kTintUnit, n.tint.get());
    }
    n.tint->setConstantColor(osg::Vec4(static_cast<float>(color[0]), static_cast<float>(color[1]),
                                       static_cast<float>(color[2]), 1.0f));
}

void SceneGraph::attachLight(Node& n) {
    auto free =
        std::find(lightNumbersInUse_.begin() + kFirstSceneLight, lightNumbersInUse_.end(), false);
    if (free == lightNumbersInUse_.end())
        return; // fixed-function drawing has eight lights; more add nothing
    *free = true;
    const int number = static_cast<int>(free - lightNumbersInUse_.begin());
    n.light = new osg::LightSource;
    osg::Light* light = n.light->getLight();
    light->setLightNum(number);
    light->setPosition(osg::Vec4(0.0f, 0.0f, 0.0f, 1.0f));
    light->setAmbient(osg::Vec4(0.0f, 0.0f, 0.0f, 1.0f));
    light->setDiffuse(osg::Vec4(0.8f, 0.8f, 0.8f, 1.0f));
    light->setSpecular(osg::Vec4(0.3f, 0.3f, 0.3f, 1.0f));
    n.light->setStateSetModes(*world_->getOrCreateStateSet(), osg::StateAttribute::ON);
    n.place->addChild(n.light);
}

void SceneGraph::detachLight(Node& n) {
    if (!n.light)
        return;
    const int number = n.light->getLight()->getLightNum();
    world_->getOrCreateStateSet()->removeMode(static_cast<GLenum>(GL_LIGHT0 + number));
    lightNumbersInUse_[static_cast<size_t>(number)] = false;
    n.place->removeChild(n.light);
    n.light = nullptr;
}

osg::Matrixd SceneGraph::placeToWorld(int id) const {
    osg::Matrixd matrix;
    for (std::optional<int> at = id; at; at = node(*at).parent)
        matrix.postMult(node(*at).place->getMatrix());
    return matrix;
}

std::optional<int> SceneGraph::nodeOnPath(const osg::NodePath& path) const {
    for (auto it = path.rbegin(); it != path.rend(); ++it) {
        auto found = shapeOwners_.find(*it);
        if (found != shapeOwners_.end())
            return found->second;
    }
    return std::nullopt;
}

std::vector<int> SceneGraph::nodesOfKind(NodeKind kind) const {
    std::vector<int> found;
    for (const auto& [id, n] : nodes_) {
        if (n.kind == kind)
            found.push_back(id);
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool SceneGraph::inWorld(int id) const {
    for (std::optional<int> at = id; at; at = node(*at).parent) {
        if (node(*at).kind == NodeKind::Scene)
            return true;
    }
    return false;
}

} // namespace vessa::core

namespace vessa::core {

std::optional<double> SceneGraph::firstHit(const ChannelValue& origin,
                                           const ChannelValue& direction,
                                           double maxDistance) const {
    const osg::Vec3d start = toOsgPoint(origin);
    const osg::Vec3d end = start + toOsgPoint(direction) * maxDistance;
    osg::ref_ptr<osgUtil::LineSegmentIntersector> line =
        new osgUtil::LineSegmentIntersector(osgUtil::Intersector::MODEL, start, end);
    line->setIntersectionLimit(osgUtil::Intersector::LIMIT_NEAREST);
    osgUtil::IntersectionVisitor visitor(line.get());
    world_->accept(visitor);
    if (!line->containsIntersections())
        return std::nullopt;
    return line->getFirstIntersection().ratio * maxDistance;
}

} // namespace vessa::core
