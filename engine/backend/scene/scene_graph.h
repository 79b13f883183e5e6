#pragma once

#include "scene/channels.h"

#include <osg/BoundingBox>
#include <osg/Group>
#include <osg/LightSource>
#include <osg/MatrixTransform>
#include <osg/TexEnvCombine>
#include <osg/Texture2D>
#include <osg/ref_ptr>

#include <functional>
#include <optional>
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

// The scene graph that mirrors the engine's scene: one node per engine
// object, by the engine's id. Each node is a transform for its place (its
// position and orientation, which its children share) holding a transform
// for its size, under which its own shape hangs; a size does not stretch the
// children, as in the engine. Scene nodes are the tops of the drawn world; a
// node without a parent exists but is not drawn.
//
// The graph owns its OSG nodes; shapes may be shared with other nodes.
class SceneGraph {
public:
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
    // Whether the node and all its ancestors are in the drawn world.
    bool inWorld(int id) const;
    // How far along a line (engine world frame, direction of unit length)
    // the first visible shape in the world is met.
    std::optional<double> firstHit(const ChannelValue& origin, const ChannelValue& direction,
                                   double maxDistance) const;

    // Told after every change that alters what a view would show.
    void setOnChange(std::function<void()> onChange) { onChange_ = std::move(onChange); }

private:
    struct Node {
        NodeKind kind = NodeKind::Model;
        std::array<ChannelValue, kChannelCount> values;
        std::optional<int> parent;
        std::vector<int> children;
        NodeStyle style;
        osg::ref_ptr<osg::MatrixTransform> place = new osg::MatrixTransform;
        osg::ref_ptr<osg::MatrixTransform> size = new osg::MatrixTransform;
        osg::ref_ptr<osg::Node> shape;
        std::optional<osg::BoundingBox> shapeBox; // measured when first asked for
        osg::ref_ptr<osg::TexEnvCombine> tint;
        osg::ref_ptr<osg::LightSource> light;
    };
    Node& node(int id);
    const Node& node(int id) const;
    void updatePlace(Node& n);
    void updateSize(Node& n);
    void updateColor(Node& n);
    osg::StateSet* lookOf(Node& n);
    void attachLight(Node& n);
    void detachLight(Node& n);
    void changed() const;

    osg::ref_ptr<osg::Group> world_;
    osg::ref_ptr<osg::Texture2D> white_; // unit 1 carries the tint of a node's color
    std::unordered_map<int, Node> nodes_;
    std::unordered_map<const osg::Node*, int> shapeOwners_;
    std::vector<bool> lightNumbersInUse_;
    std::function<void()> onChange_;
};

} // namespace vessa::core
