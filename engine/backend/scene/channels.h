#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace vessa::core {

// The values the engine keeps per node. Position, size and color use three
// numbers; orientation is a unit quaternion (w, x, y, z). All are in the
// engine's own frame: x right, y up, z forward.
enum class Channel { Position, Orientation, Size, Color };

constexpr int kChannelCount = 4;
using ChannelValue = std::array<double, 4>;

std::optional<Channel> channelNamed(std::string_view name);
const char* channelName(Channel channel);
int channelWidth(Channel channel);

ChannelValue defaultValue(Channel channel);

} // namespace vessa::core
