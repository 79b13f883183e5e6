#include "scene/tween_set.h"

#include <algorithm>
#include <iterator>
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
    if (node)
        ++countOfNode_[*node];
    return id;
}

void TweenSet::erase(std::map<int, Tween>::iterator tween) {
    if (const auto node = tween->second.node) {
        const auto count = countOfNode_.find(*node);
        if (--count->second == 0)
            countOfNode_.erase(count);
    }
    tweens_.erase(tween);
}

void TweenSet::cancel(int tweenId) {
    if (const auto found = tweens_.find(tweenId); found != tweens_.end())
        erase(found);
}

void TweenSet::forgetNode(int node) {
    if (!countOfNode_.contains(node))
        return;
    for (auto tween = tweens_.begin(); tween != tweens_.end();) {
        const auto next = std::next(tween);
        if (tween->second.node == node)
            erase(tween);
        tween = next;
    }
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
        erase(tweens_.find(id));
        ids.push_back(id);
    }
    return ids;
}

} // namespace vessa::core
