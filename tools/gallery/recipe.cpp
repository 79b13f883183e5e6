#include "recipe.h"

namespace gallery {

namespace {

std::string replaced(std::string name, const std::string& from, const std::string& to) {
    if (const auto at = name.find(from); at != std::string::npos) {
        name.replace(at, from.size(), to);
    }
    return name;
}

Part mirrored(const Part& part, const osg::Matrix& mirror, const std::string& from,
              const std::string& to) {
    Part image{replaced(part.name, from, to), part.pivot * mirror, {}, {}};
    for (const auto& shape : part.shapes) {
        image.shapes.push_back(shape.transformed(mirror));
    }
    for (const auto& child : part.parts) {
        image.parts.push_back(mirrored(child, mirror, from, to));
    }
    return image;
}

} // namespace

std::vector<Part> leftAndRight(const Part& left) {
    return {left, mirrored(left, osg::Matrix::scale(-1, 1, 1), "Left", "Right")};
}

std::vector<Part> fourCorners(const Part& frontLeft) {
    std::vector<Part> corners = leftAndRight(frontLeft);
    for (const auto& front : leftAndRight(frontLeft)) {
        corners.push_back(mirrored(front, osg::Matrix::scale(1, 1, -1), "Front", "Back"));
    }
    return corners;
}

} // namespace gallery
