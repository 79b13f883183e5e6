#include "scene/scene_graph.h"

#include "scene/engine_frame.h"

#include <osg/ComputeBoundsVisitor>
#include <osg/Image>
#include <osg/LightSource>
#include <osg/Point>
#include <osg/PolygonMode>
#include <osg/TexEnvCombine>
#include <osgUtil/CullVisitor>
#include <osgUtil/IntersectionVisitor>
#include <osgUtil/LineSegmentIntersector>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace vessa::core {

namespace {

// Light 0 belongs to the view's fill light; scene lights take the others.
constexpr int kFirstSceneLight = 1;
constexpr int kLightCount = 8;
constexpr int kTintUnit = 1;
constexpr float kPointSize = 3.0f;
constexpr int kSolid = 0;
constexpr int kLines = 1;
constexpr int kPoints = 2;
// A shape whose lowest point is further below the ground than this is sunk
// into it (the ground itself is): it casts no shadow on it.
constexpr double kSunk = 0.01;

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

constexpr double kSamePlace = 1e-6; // a scene file keeps places to 9 decimals

bool nearly(const ChannelValue& a, const ChannelValue& b) {
    for (size_t i = 0; i < a.size(); ++i) {
        if (std::abs(a[i] - b[i]) > kSamePlace)
            return false;
    }
    return true;
}

bool isWhite(const ChannelValue& color) {
    return color[0] == 1.0 && color[1] == 1.0 && color[2] == 1.0;
}

double lowestPoint(const osg::BoundingBox& box, const osg::Matrixd& toWorld) {
    double lowest = std::numeric_limits<double>::max();
    for (unsigned int corner = 0; corner < 8; ++corner)
        lowest = std::min(lowest, (osg::Vec3d(box.corner(corner)) * toWorld).y());
    return lowest;
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

namespace {

// On an object's place: draws the whole object's light shape instead of the
// object and its descendants while that is how the scene graph says it is
// drawn. Shadows are drawn from the shapes themselves.
class DrawnWholeWhenSmall : public osg::NodeCallback {
public:
    DrawnWholeWhenSmall(SceneGraph& scene, int id) : scene_(scene), id_(id) {}

    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override {
        osgUtil::CullVisitor* cull = visitor->asCullVisitor();
        const SceneGraph::Drawn whole =
            cull && cull->getTraversalMask() != SceneGraph::kCastsShadowMask
                ? scene_.wholeWhenSmall(id_, *cull)
                : SceneGraph::Drawn{};
        if (!whole.shape) {
            traverse(node, visitor);
            return;
        }
        if (whole.look)
            cull->pushStateSet(whole.look);
        whole.shape->accept(*cull);
        if (whole.look)
            cull->popStateSet();
    }

private:
    SceneGraph& scene_;
    int id_;
};

} // namespace

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
    n.id = id;
    n.kind = kind;
    n.values = values;
    n.place->addChild(n.size);
    shapeOwners_[n.size.get()] = id;
    ofKind_[static_cast<size_t>(kind)].insert(id);
    updatePlace(n);
    updateSize(n);
    updateLook(n);
    updateMask(n);
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
    ofKind_[static_cast<size_t>(n.kind)].erase(id);
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
    unsettleWhole(n);
    switch (channel) {
    case Channel::Position:
    case Channel::Orientation:
        updatePlace(n);
        break;
    case Channel::Size:
        updateSize(n);
        break;
    case Channel::Color:
        updateLook(n);
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
        unsettleWhole(old);
    }
    n.parent = parent;
    if (parent) {
        Node& now = node(*parent);
        now.place->addChild(n.place);
        now.children.push_back(id);
        unsettleWhole(now);
    }
    unsettleShadow(n, true);
    changed();
}

std::optional<int> SceneGraph::parent(int id) const {
    return node(id).parent;
}

const NodeStyle& SceneGraph::style(int id) const {
    return node(id).style;
}

void SceneGraph::setVisible(int id, bool visible) {
    Node& n = node(id);
    n.style.visible = visible;
    updateMask(n);
    unsettleWhole(n);
    changed();
}

void SceneGraph::setFilling(int id, const std::string& filling) {
    Node& n = node(id);
    n.style.filling = filling;
    updateLook(n);
    unsettleWhole(n);
    changed();
}

void SceneGraph::setLighting(int id, const std::string& lighting) {
    Node& n = node(id);
    n.style.lighting = lighting;
    updateLook(n);
    unsettleWhole(n);
    changed();
}

void SceneGraph::setTextured(int id, bool textured) {
    Node& n = node(id);
    n.style.textured = textured;
    updateLook(n);
    unsettleWhole(n);
    changed();
}

void SceneGraph::setCastsShadow(int id, bool casts) {
    Node& n = node(id);
    n.style.castsShadow = casts;
    unsettleShadow(n, false);
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
    unsettleShadow(n, false);
    unsettleWhole(n);
    changed();
}

void SceneGraph::setWhole(int id, std::shared_ptr<const WholeObject> whole) {
    Node& n = node(id);
    n.whole = whole && !whole->levels.empty() ? std::move(whole) : nullptr;
    n.wholeKnown = false;
    n.place->setCullCallback(n.whole ? new DrawnWholeWhenSmall(*this, id) : nullptr);
}

SceneGraph::Drawn SceneGraph::wholeWhenSmall(int id, const osg::CullStack& cull) {
    Node& n = node(id);
    if (!n.whole)
        return {};
    const auto& levels = n.whole->levels;
    const float size = cull.clampedPixelSize(levels.back().shape->getBound());
    const auto level = std::find_if(levels.begin(), levels.end(),
                                    [size](const auto& l) { return size < l.belowPixels; });
    if (level == levels.end())
        return {};
    if (!n.wholeKnown) {
        n.standsWhole = standsAsFiled(n);
        n.wholeKnown = true;
    }
    return n.standsWhole ? Drawn{level->shape.get(), n.size->getStateSet()} : Drawn{};
}

// The objects above a node (and the node itself) may no longer stand as
// their files have them.
void SceneGraph::unsettleWhole(Node& n) {
    for (Node* at = &n; at; at = at->parent ? &node(*at->parent) : nullptr)
        at->wholeKnown = false;
}

// The object and every descendant are its file's parts, one each, hanging
// and standing where the file has them, visible, none resized, all looking
// as the object does; nothing else hangs from them.
bool SceneGraph::standsAsFiled(const Node& object) const {
    const WholeObject& whole = *object.whole;
    const ChannelValue unit = defaultValue(Channel::Size);
    const Look look = lookOf(object);
    auto asFiled = [&](const Node& n) {
        return n.kind == NodeKind::Model && n.style.visible && !n.light &&
               nearly(n.values[static_cast<size_t>(Channel::Size)], unit) && lookOf(n) == look;
    };
    if (!asFiled(object))
        return false;
    std::vector<int> nodeOfPart(whole.parts.size(), -1);
    nodeOfPart[0] = object.id;
    size_t found = 1;
    std::vector<const Node*> open{&object};
    while (!open.empty()) {
        const Node& parent = *open.back();
        open.pop_back();
        for (int id : parent.children) {
            const Node& child = node(id);
            const auto part = whole.partOf.find(child.style.model);
            if (part == whole.partOf.end() || part->second <= 0 ||
                nodeOfPart[static_cast<size_t>(part->second)] != -1)
                return false;
            const WholeObject::Part& filed = whole.parts[static_cast<size_t>(part->second)];
            if (filed.parent < 0 || nodeOfPart[static_cast<size_t>(filed.parent)] != parent.id ||
                !asFiled(child) ||
                !nearly(child.values[static_cast<size_t>(Channel::Position)], filed.position) ||
                !nearly(child.values[static_cast<size_t>(Channel::Orientation)], filed.orientation))
                return false;
            nodeOfPart[static_cast<size_t>(part->second)] = child.id;
            ++found;
            open.push_back(&child);
        }
    }
    return found == whole.parts.size();
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
    unsettleShadow(n, true);
}

void SceneGraph::updateSize(Node& n) {
    const ChannelValue& size = n.values[static_cast<size_t>(Channel::Size)];
    n.size->setMatrix(osg::Matrixd::scale(size[0], size[1], size[2]));
    unsettleShadow(n, false);
}

// The state a look adds to a shape, made once and shared by every node that
// looks so. A node's color tints its shape: white leaves the shape's own
// colors, anything else multiplies them, lit or unlit, textured or not.
osg::StateSet* SceneGraph::stateOf(const Look& look) {
    osg::ref_ptr<osg::StateSet>& state = looks_[look];
    if (state)
        return state.get();
    state = new osg::StateSet;
    const auto forced = osg::StateAttribute::ON | osg::StateAttribute::OVERRIDE;
    if (look.filling != kSolid) {
        const auto mode = look.filling == kLines ? osg::PolygonMode::LINE : osg::PolygonMode::POINT;
        state->setAttribute(new osg::PolygonMode(osg::PolygonMode::FRONT_AND_BACK, mode), forced);
        if (look.filling == kPoints)
            state->setAttribute(new osg::Point(kPointSize), forced);
    }
    if (look.unlit)
        state->setMode(GL_LIGHTING, osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
    if (look.untextured)
        state->setTextureMode(0, GL_TEXTURE_2D,
                              osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
    if (look.tint) {
        auto* tint = new osg::TexEnvCombine;
        tint->setCombine_RGB(osg::TexEnvCombine::MODULATE);
        tint->setSource0_RGB(osg::TexEnvCombine::PREVIOUS);
        tint->setSource1_RGB(osg::TexEnvCombine::CONSTANT);
        tint->setCombine_Alpha(osg::TexEnvCombine::REPLACE);
        tint->setSource0_Alpha(osg::TexEnvCombine::PREVIOUS);
        const auto& [r, g, b] = *look.tint;
        tint->setConstantColor(osg::Vec4(r, g, b, 1.0f));
        state->setTextureAttributeAndModes(kTintUnit, white_.get(), osg::StateAttribute::ON);
        state->setTextureAttribute(kTintUnit, tint);
    }
    return state.get();
}

SceneGraph::Look SceneGraph::lookOf(const Node& n) const {
    Look look;
    look.filling = sameWord(n.style.filling, "Lines")    ? kLines
                   : sameWord(n.style.filling, "Points") ? kPoints
                                                         : kSolid;
    look.unlit = sameWord(n.style.lighting, "UnLit");
    look.untextured = !n.style.textured;
    const ChannelValue& color = n.values[static_cast<size_t>(Channel::Color)];
    if (!isWhite(color))
        look.tint = std::array{static_cast<float>(color[0]), static_cast<float>(color[1]),
                               static_cast<float>(color[2])};
    return look;
}

void SceneGraph::updateLook(Node& n) {
    const Look look = lookOf(n);
    n.size->setStateSet(look == Look{} ? nullptr : stateOf(look));
    // Looks no node has any more (the colours of a fade) go now and then.
    if (looks_.size() > 2 * looksAfterSweep_ + 16) {
        std::erase_if(looks_,
                      [](const auto& entry) { return entry.second->referenceCount() == 1; });
        looksAfterSweep_ = looks_.size();
    }
}

void SceneGraph::updateMask(Node& n) {
    n.size->setNodeMask(!n.style.visible ? 0u : n.castsShadowNow ? ~0u : ~kCastsShadowMask);
}

// A change to a node's place moves its descendants' shapes too.
void SceneGraph::unsettleShadow(Node& n, bool withDescendants) {
    if (!n.shadowUnsettled) {
        n.shadowUnsettled = true;
        shadowsToSettle_.push_back(n.id);
    }
    if (withDescendants) {
        for (int child : n.children)
            unsettleShadow(node(child), true);
    }
}

bool SceneGraph::castsShadow(const Node& n) const {
    if (n.kind != NodeKind::Model || !n.style.castsShadow || !n.shape)
        return false;
    const osg::BoundingBox& box = shapeBox(n.id);
    if (!box.valid())
        return false;
    const ChannelValue& size = n.values[static_cast<size_t>(Channel::Size)];
    return lowestPoint(box, osg::Matrixd::scale(size[0], size[1], size[2]) * placeToWorld(n.id)) >=
           -kSunk;
}

void SceneGraph::settleShadowCasters() {
    for (int id : shadowsToSettle_) {
        const auto found = nodes_.find(id);
        if (found == nodes_.end() || !found->second.shadowUnsettled)
            continue;
        Node& n = found->second;
        n.shadowUnsettled = false;
        n.castsShadowNow = castsShadow(n);
        updateMask(n);
    }
    shadowsToSettle_.clear();
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
    n.light->setNodeMask(~kCastsShadowMask); // it lights the world, not its shadows
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
    const std::set<int>& ids = ofKind_[static_cast<size_t>(kind)];
    return {ids.begin(), ids.end()};
}

std::optional<int> SceneGraph::firstInWorld(NodeKind kind) const {
    for (int id : ofKind_[static_cast<size_t>(kind)]) {
        if (inWorld(id))
            return id;
    }
    return std::nullopt;
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
