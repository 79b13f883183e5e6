#include "facade/backend.h"

#include "models/model_library.h"
#include "scene/engine_frame.h"

#include <algorithm>
#include <stdexcept>

namespace vessa::core {

Channel channelFromName(const std::string& name) {
    if (auto channel = channelNamed(name))
        return *channel;
    throw std::invalid_argument("unknown channel " + name);
}

Backend::Backend() : view_(scene_, input_) {
}
Backend::~Backend() = default;

void Backend::addNode(int id, const NodeValues& values, const std::string& kind) {
    const auto nodeKind = nodeKindNamed(kind);
    if (!nodeKind)
        throw std::invalid_argument("unknown kind of node " + kind);
    tweens_.forgetNode(id);
    scene_.addNode(id, *nodeKind, values);
    scene_.setModel(id, "", shapeFor(id, ""));
}

void Backend::removeNode(int id) {
    tweens_.forgetNode(id);
    scene_.removeNode(id);
}

ChannelValue Backend::get(int id, const std::string& channel) const {
    return scene_.get(id, channelFromName(channel));
}

void Backend::set(int id, const std::string& channel, const ChannelValue& value) {
    scene_.set(id, channelFromName(channel), value);
}

void Backend::setParent(int id, std::optional<int> parent) {
    scene_.setParent(id, parent);
}

StyleValue Backend::getStyle(int id, const std::string& style) const {
    const NodeStyle& look = scene_.style(id);
    if (style == "visible")
        return look.visible;
    if (style == "filling")
        return look.filling;
    if (style == "lighting")
        return look.lighting;
    if (style == "texture")
        return look.textured;
    if (style == "model")
        return look.model;
    if (style == "shadow")
        return look.castsShadow;
    throw std::invalid_argument("unknown style " + style);
}

void Backend::setStyle(int id, const std::string& style, const StyleValue& value) {
    const bool* flag = std::get_if<bool>(&value);
    const std::string* word = std::get_if<std::string>(&value);
    if (style == "visible" && flag)
        scene_.setVisible(id, *flag);
    else if (style == "texture" && flag)
        scene_.setTextured(id, *flag);
    else if (style == "shadow" && flag)
        scene_.setCastsShadow(id, *flag);
    else if (style == "filling" && word)
        scene_.setFilling(id, *word);
    else if (style == "lighting" && word)
        scene_.setLighting(id, *word);
    else if (style == "model" && word) {
        scene_.setModel(id, *word, shapeFor(id, *word));
        scene_.setWhole(id, scene_.kind(id) == NodeKind::Model ? models_.wholeFor(*word) : nullptr);
    } else
        throw std::invalid_argument("unknown style " + style + " or a value of the wrong kind");
}

std::optional<std::pair<ChannelValue, ChannelValue>> Backend::bounds(int id) const {
    const osg::BoundingBox& box = scene_.shapeBox(id);
    if (!box.valid())
        return std::nullopt;
    const ChannelValue size = scene_.get(id, Channel::Size);
    const ChannelValue a = fromOsgPoint(osg::Vec3d(box._min));
    const ChannelValue b = fromOsgPoint(osg::Vec3d(box._max));
    ChannelValue low{};
    ChannelValue high{};
    for (size_t i = 0; i < 3; ++i) {
        low[i] = std::min(a[i] * size[i], b[i] * size[i]);
        high[i] = std::max(a[i] * size[i], b[i] * size[i]);
    }
    return std::pair(low, high);
}

osg::Node* Backend::shapeFor(int id, const std::string& model) {
    if (scene_.kind(id) != NodeKind::Model)
        return nullptr;
    return models_.shapeFor(model);
}

int Backend::addTween(std::optional<int> node, const std::string& channel,
                      const ChannelValue& delta, double start, double duration,
                      const std::string& style) {
    const Channel which = node ? channelFromName(channel) : Channel::Position;
    return tweens_.add(node, which, delta, start, duration, style);
}

void Backend::cancel(int tweenId) {
    tweens_.cancel(tweenId);
}

std::vector<int> Backend::step(double now) {
    return tweens_.step(
        now, [this](int node, Channel channel, const ChannelValue& delta, double amount) {
            if (scene_.has(node))
                scene_.change(node, channel, delta, amount);
        });
}

} // namespace vessa::core
