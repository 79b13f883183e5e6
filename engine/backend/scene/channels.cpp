#include "scene/channels.h"

namespace vessa::core {

namespace {

constexpr std::array<const char*, kChannelCount> kNames = {"position", "orientation", "size",
                                                           "color"};

} // namespace

std::optional<Channel> channelNamed(std::string_view name) {
    for (int i = 0; i < kChannelCount; ++i) {
        if (name == kNames[static_cast<size_t>(i)])
            return static_cast<Channel>(i);
    }
    return std::nullopt;
}

const char* channelName(Channel channel) {
    return kNames[static_cast<size_t>(channel)];
}

int channelWidth(Channel channel) {
    return channel == Channel::Orientation ? 4 : 3;
}

ChannelValue defaultValue(Channel channel) {
    switch (channel) {
    case Channel::Orientation:
        return {1.0, 0.0, 0.0, 0.0};
    case Channel::Size:
    case Channel::Color:
        return {1.0, 1.0, 1.0, 0.0};
    case Channel::Position:
        break;
    }
    return {0.0, 0.0, 0.0, 0.0};
}

} // namespace vessa::core
