#pragma once

// The default world made straight in a backend, as the engine makes it:
// scene 1, camera 2 (at eye height, 8 m back), light 3 and ground 4; and
// what a picture of it shows.
#include "facade/backend.h"

#include <QColor>
#include <QImage>
#include <gtest/gtest.h>

#include <optional>

namespace vessa::core::small_world {

inline NodeValues values(ChannelValue position, ChannelValue size = {1, 1, 1, 0},
                         ChannelValue color = {1, 1, 1, 0}) {
    return {position, defaultValue(Channel::Orientation), size, color};
}

inline void add(Backend& backend, int id, const char* kind, const NodeValues& v,
                std::optional<int> parent) {
    backend.addNode(id, v, kind);
    if (parent)
        backend.setParent(id, *parent);
}

inline void addDefaultWorld(Backend& backend) {
    add(backend, 1, "scene", values({0, 0, 0, 0}), std::nullopt);
    add(backend, 2, "camera", values({0, 1.5, -8, 0}), 1);
    add(backend, 3, "light", values({2, 6, -4, 0}), 1);
    add(backend, 4, "model", values({0, -0.05, 0, 0}, {20, 0.1, 20, 0}, {0.3, 0.6, 0.25, 0}), 1);
}

inline bool isSky(const QColor& c) {
    return c.blue() > c.red() + 40;
}

inline bool isGround(const QColor& c) {
    return c.green() > c.red() + 30 && c.green() > c.blue() + 30;
}

inline bool isRed(const QColor& c) {
    return c.red() > 90 && c.red() > 2 * c.green() && c.red() > 2 * c.blue();
}

// A red box in the middle of the default world's picture, as a camera view
// of width x height shows it.
inline void addRedBox(Backend& backend) {
    add(backend, 5, "model", values({0, 1.5, 0, 0}, {1, 1, 1, 0}, {1, 0, 0, 0}), 1);
}

inline ::testing::AssertionResult showsTheRedBox(const QImage& image, int width, int height) {
    if (image.size() != QSize(width, height))
        return ::testing::AssertionFailure() << "a picture of another size";
    if (!isSky(image.pixelColor(width / 2, 2)))
        return ::testing::AssertionFailure() << "no sky at the top";
    if (!isGround(image.pixelColor(width / 2, height - 4)))
        return ::testing::AssertionFailure() << "no ground at the bottom";
    if (!isRed(image.pixelColor(width / 2, height / 2)))
        return ::testing::AssertionFailure() << "no red box in the middle";
    return ::testing::AssertionSuccess();
}

} // namespace vessa::core::small_world
