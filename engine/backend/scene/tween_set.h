#pragma once

#include "scene/channels.h"
#include "scene/easing.h"

#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vessa::core {

// Running tweens: each changes one channel of one node by a delta over a span
// of time, shaped by an easing curve. Tweens add up, so two on one channel
// combine. What a change means for a channel is the caller's business: step()
// hands it the delta and the share of it to apply now.
class TweenSet {
public:
    using Apply =
        std::function<void(int node, Channel channel, const ChannelValue& delta, double amount)>;

    // A tween without a node is a pure timer: it only reports its end.
    int add(std::optional<int> node, Channel channel, const ChannelValue& delta, double start,
            double duration, std::string_view style);
    void cancel(int tweenId);
    void forgetNode(int node);

    // Advances every tween that has begun to now, never past its end, and
    // answers the ids of those that reached their end, in order of end.
    std::vector<int> step(double now, const Apply& apply);

    size_t size() const { return tweens_.size(); }

private:
    struct Tween {
        std::optional<int> node;
        Channel channel;
        ChannelValue delta;
        double start;
        double duration;
        Easing ease;
        double done = 0.0; // eased fraction applied so far

        double end() const { return start + duration; }
        double fraction(double now) const;
    };

    void erase(std::map<int, Tween>::iterator tween);

    std::map<int, Tween> tweens_; // by id, which is also the order they were made in
    // How many tweens each node has: a node made or let go among thousands
    // of running tweens is looked for only when it has some.
    std::unordered_map<int, int> countOfNode_;
    int nextId_ = 1;
};

} // namespace vessa::core
