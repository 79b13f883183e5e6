#pragma once

#include "scene/channels.h"

#include <osg/BoundingBox>
#include <osg/CullStack>
#include <osg/Group>
#include <osg/LightSource>
#include <osg/MatrixTransform>
#include <osg/Texture2D>
#include <osg/ref_ptr>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace vessa::core {

enum class NodeKind { Scene, Camera, Light, Model };

std::optional<NodeKind> nodeKindNamed(std::string_view name);

// How a node's own shape is drawn. Filling ("Solid", "Lines", "Points") and
// lighting ("Lit", "UnLit") are the engine's words, kept as they were given
// and read without regard to case. The model is the engine's reference to
// the shape (see ModelLibrary); the graph only keeps it.
struct NodeStyle {
    bool visible = true;
    std::string filling = "Solid";
    std::string lighting = "Lit";
    bool textured = true;
    std::string model;
    bool castsShadow = true; // on the ground, on the high-quality path
};

// An object as its model file has it, so that it can be drawn whole while
// it is small on screen: where each part hangs and stands, the parts known
// by their model references, and light shapes of the whole object and its
// parts (see models/whole_shape.h), each drawn while the object is smaller
// on screen than its size in pixels.
struct WholeObject {
    struct Part {
        int parent = -1; // index of the part it hangs from; -1 for the object itself
        ChannelValue position;
        ChannelValue orientation;
    };
    struct Level {
        float belowPixels = 0.0f;
        osg::ref_ptr<osg::Node> shape;
    };
    std::vector<Part> parts;
    std::unordered_map<std::string, int> partOf; // model reference -> index in parts
    std::vector<Level> levels;                   // the smallest first
};

// The scene graph that mirrors the engine's scene: one node per engine
// object, by the engine's id. Each node is a transform for its place (its
// position and orientation, which its children share) holding a transform
// for its size, under which its own shape hangs; a size does not stretch the
// children, as in the engine. Scene nodes are the tops of the drawn world; a
// node without a parent exists but is not drawn.
//
// Nodes that look alike share what they are drawn with: their shape (see
// ModelLibrary), and the state that their filling, lighting, textures and
// colour add to it, one state set for each such look; a node that looks as
// its shape does has none. A crowd of copies is drawn in one run of state.
//
// An object made from a model file that stands as its file has it (its
// parts where the file puts them, all looking alike, none resized) is drawn
// from one light shape of the whole while it is small on screen (see
// WholeObject): the far end of a crowd costs one drawing an object.
//
// Which shapes cast a shadow on the ground is kept in each size transform's
// node mask (kCastsShadowMask), brought up to date for what has changed since
// the last time a view asked (settleShadowCasters), so that a view never looks
// at every node to draw shadows.
//
// The graph owns its OSG nodes; shapes may be shared with other nodes.
class SceneGraph {
public:
    // Set on the size transform of a shape that casts a shadow now, on the
    // place transforms of every node, and on nothing else.
    static constexpr osg::Node::NodeMask kCastsShadowMask = 0x4;

    SceneGraph();
    ~SceneGraph();
    SceneGraph(const SceneGraph&) = delete;
    SceneGraph& operator=(const SceneGraph&) = delete;

    osg::Group* world() const { return world_.get(); }

    void addNode(int id, NodeKind kind, const std::array<ChannelValue, kChannelCount>& values);
    void removeNode(int id);
    bool has(int id) const { return nodes_.contains(id); }
    NodeKind kind(int id) const;

    ChannelValue get(int id, Channel channel) const;
    void set(int id, Channel channel, const ChannelValue& value);
    // Adds amount times delta; for orientation, delta is (axis x, y, z,
    // angle) in the parent's frame and the turn comes first.
    void change(int id, Channel channel, const ChannelValue& delta, double amount);

    void setParent(int id, std::optional<int> parent);
    std::optional<int> parent(int id) const;

    const NodeStyle& style(int id) const;
    void setVisible(int id, bool visible);
    void setFilling(int id, const std::string& filling);
    void setLighting(int id, const std::string& lighting);
    void setTextured(int id, bool textured);
    void setCastsShadow(int id, bool casts);
    void setModel(int id, const std::string& model, osg::Node* shape);
    // How the node's object is drawn whole while small; null: never.
    void setWhole(int id, std::shared_ptr<const WholeObject> whole);
    // The whole shape to draw instead of the node and its descendants, as
    // the cull visitor sees it now, and the node's look to draw it with;
    // no shape when they are drawn as they are.
    struct Drawn {
        osg::Node* shape = nullptr;
        osg::StateSet* look = nullptr;
    };
    Drawn wholeWhenSmall(int id, const osg::CullStack& cull);
    osg::Node* shape(int id) const;
    // The box around a node's own shape in the shape's coordinates, without
    // its size; invalid when the node has no shape. Shapes never change once
    // made, so the box is measured once.
    const osg::BoundingBox& shapeBox(int id) const;

    // Where a node is, in OpenSceneGraph's frame, with and without its size.
    osg::Matrixd placeToWorld(int id) const;
    // The engine node whose shape a picked path runs through, innermost first.
    std::optional<int> nodeOnPath(const osg::NodePath& path) const;
    std::vector<int> nodesOfKind(NodeKind kind) const;
    // The node of that kind with the lowest id that is in the drawn world.
    std::optional<int> firstInWorld(NodeKind kind) const;
    // Whether the node and all its ancestors are in the drawn world.
    bool inWorld(int id) const;
    // Marks the shapes that cast a shadow now (visible, not told otherwise,
    // and not sunk into the ground: their lowest point at most a centimetre
    // below it), looking only at nodes that changed since the last call.
    void settleShadowCasters();
    // How far along a line (engine world frame, direction of unit length)
    // the first visible shape in the world is met.
    std::optional<double> firstHit(const ChannelValue& origin, const ChannelValue& direction,
                                   double maxDistance) const;

    // Told after every change that alters what a view would show.
    void setOnChange(std::function<void()> onChange) { onChange_ = std::move(onChange); }

private:
    // What a node's own state adds to its shape's: the key of a shared state set.
    struct Look {
        int filling = 0; // solid, lines, points
        bool unlit = false;
        bool untextured = false;
        std::optional<std::array<float, 3>> tint; // none for white
        auto operator<=>(const Look&) const = default;
    };
    struct Node {
        int id = 0;
        NodeKind kind = NodeKind::Model;
        std::array<ChannelValue, kChannelCount> values;
        std::optional<int> parent;
        std::vector<int> children;
        NodeStyle style;
        osg::ref_ptr<osg::MatrixTransform> place = new osg::MatrixTransform;
        osg::ref_ptr<osg::MatrixTransform> size = new osg::MatrixTransform;
        osg::ref_ptr<osg::Node> shape;
        std::optional<osg::BoundingBox> shapeBox; // measured when first asked for
        osg::ref_ptr<osg::LightSource> light;
        bool castsShadowNow = false;
        bool shadowUnsettled = false; // among shadowsToSettle_
        std::shared_ptr<const WholeObject> whole;
        bool wholeKnown = false; // whether standsWhole is up to date
        bool standsWhole = false;
    };
    Node& node(int id);
    const Node& node(int id) const;
    void updatePlace(Node& n);
    void updateSize(Node& n);
    Look lookOf(const Node& n) const;
    void updateLook(Node& n);
    void unsettleWhole(Node& n);
    bool standsAsFiled(const Node& object) const;
    void updateMask(Node& n);
    osg::StateSet* stateOf(const Look& look);
    void unsettleShadow(Node& n, bool withDescendants);
    bool castsShadow(const Node& n) const;
    void attachLight(Node& n);
    void detachLight(Node& n);
    void changed() const;

    osg::ref_ptr<osg::Group> world_;
    osg::ref_ptr<osg::Texture2D> white_; // unit 1 carries the tint of a node's color
    std::unordered_map<int, Node> nodes_;
    std::array<std::set<int>, 4> ofKind_; // ids, by NodeKind
    std::unordered_map<const osg::Node*, int> shapeOwners_;
    std::map<Look, osg::ref_ptr<osg::StateSet>> looks_;
    size_t looksAfterSweep_ = 0;
    std::vector<int> shadowsToSettle_;
    std::vector<bool> lightNumbersInUse_;
    std::function<void()> onChange_;
};

} // namespace vessa::core
