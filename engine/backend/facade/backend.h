#pragma once

#include "input/input_event.h"
#include "models/model_library.h"
#include "scene/channels.h"
#include "scene/scene_graph.h"
#include "scene/tween_set.h"
#include "view/view_host.h"

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vessa::core {

using StyleValue = std::variant<bool, std::string>;
using NodeValues = std::array<ChannelValue, kChannelCount>;

// The compiled backend of the engine, the C++ side of `vessa._backend.Backend`:
// the engine's Python layer keeps names, commands and events and tells this
// class where nodes are, how they look and which changes to ease over time.
// It owns the scene graph that views draw. Names of channels and styles are
// the engine's words.
class Backend {
public:
    Backend();
    ~Backend();
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;

    void addNode(int id, const NodeValues& values, const std::string& kind);
    void removeNode(int id);
    ChannelValue get(int id, const std::string& channel) const;
    void set(int id, const std::string& channel, const ChannelValue& value);
    void setParent(int id, std::optional<int> parent);

    StyleValue getStyle(int id, const std::string& style) const;
    void setStyle(int id, const std::string& style, const StyleValue& value);

    int addTween(std::optional<int> node, const std::string& channel, const ChannelValue& delta,
                 double start, double duration, const std::string& style);
    void cancel(int tweenId);
    std::vector<int> step(double now);
    size_t tweenCount() const { return tweens_.size(); }

    // The camera view; see ViewHost. Texts answered are failures, "" none.
    ViewHost& view() { return view_; }
    const ViewHost& view() const { return view_; }
    std::vector<InputEvent> takeInput() { return input_.takeAll(); }
    bool inputWaiting() const { return !input_.empty(); }

    // The box around a node's own shape (not its children's), in the node's
    // frame in the engine's axes, its size included: the lowest corner and
    // the highest. None when the node has no shape.
    std::optional<std::pair<ChannelValue, ChannelValue>> bounds(int id) const;

    std::optional<double> firstHit(const ChannelValue& origin, const ChannelValue& direction,
                                   double maxDistance) const {
        return scene_.firstHit(origin, direction, maxDistance);
    }

    SceneGraph& scene() { return scene_; }
    ModelLibrary& models() { return models_; }

private:
    osg::Node* shapeFor(int id, const std::string& model);

    SceneGraph scene_;
    TweenSet tweens_;
    ModelLibrary models_;
    InputQueue input_;
    ViewHost view_; // last: the view draws the scene and fills the queue
};

Channel channelFromName(const std::string& name);

} // namespace vessa::core
