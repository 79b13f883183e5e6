#include "scene/tween_set.h"

#include <algorithm>
#include <utility>

namespace vessa::core {

double TweenSet::Tween::fraction(double now) const {
    if (duration <= 0.0 || now >= end())
        return 1.0;
    return ease(std::max(0.0, (now - start) / duration));
}

int TweenSet::add(std::optional<int> node, Channel channel, const ChannelValue& delta, double start,
                  double duration, std::string_view style) {
    const int id = nextId_++;
    tweens_.emplace(id,
                    Tween{node, channel, delta, start, std::max(duration, 0.0), easingFor(style)});
    return id;
}

void TweenSet::cancel(int tweenId) {
    tweens_.erase(tweenId);
}

void TweenSet::forgetNode(int node) {
    std::erase_if(tweens_, [node](const auto& entry) { return entry.second.node == node; });
}

std::vector<int> TweenSet::step(double now, const Apply& apply) {
    std::vector<std::pair<double, int>> finished;
    for (auto& [id, tween] : tweens_) {
        if (now < tween.start)
            continue;
        const double fraction = tween.fraction(now);
        if (tween.node && fraction != tween.done)
            apply(*tween.node, tween.channel, tween.delta, fraction - tween.done);
        tween.done = fraction;
        if (now >= tween.end())
            finished.emplace_back(tween.end(), id);
    }
    std::sort(finished.begin(), finished.end());
    std::vector<int> ids;
    ids.reserve(finished.size());
    for (const auto& [end, id] : finished) {
        tweens_.erase(id);
        ids.push_back(id);
    }
    return ids;
}

} // namespace vessa::core
