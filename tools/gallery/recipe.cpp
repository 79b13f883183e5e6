#include "recipe.h"

#include <stdexcept>

namespace gallery {

namespace {

std::string replaced(std::string name, const std::string& from, const std::string& to) {
    if (const auto at = name.find(from); at != std::string::npos) {
        name.replace(at, from.size(), to);
    }
    return name;
}

void renameAll(Part& part, const std::string& from, const std::string& to) {
    part.name = replaced(part.name, from, to);
    for (auto& child : part.parts) {
        renameAll(child, from, to);
    }
}

Part* findPart(std::vector<Part>& parts, const std::string& name) {
    for (auto& part : parts) {
        if (part.name == name) {
            return &part;
        }
        if (Part* found = findPart(part.parts, name)) {
            return found;
        }
    }
    return nullptr;
}

Part transformedPart(const Part& part, const osg::Matrix& matrix) {
    Part result{part.name, part.pivot * matrix, {}, {}};
    for (const auto& shape : part.shapes) {
        result.shapes.push_back(shape.transformed(matrix));
    }
    for (const auto& child : part.parts) {
        result.parts.push_back(transformedPart(child, matrix));
    }
    return result;
}

Part mirrored(const Part& part, const osg::Matrix& mirror, const std::string& from,
              const std::string& to) {
    Part image = transformedPart(part, mirror);
    renameAll(image, from, to);
    return image;
}

} // namespace

Part& partNamed(ObjectRecipe& recipe, const std::string& name) {
    if (Part* found = findPart(recipe.parts, name)) {
        return *found;
    }
    throw std::invalid_argument(recipe.name + " has no part " + name);
}

ObjectRecipe scaled(const ObjectRecipe& recipe, float factor) {
    const osg::Matrix scale = osg::Matrix::scale(factor, factor, factor);
    ObjectRecipe result{recipe.folder, recipe.name, {}, {}};
    for (const auto& shape : recipe.body) {
        result.body.push_back(shape.transformed(scale));
    }
    for (const auto& part : recipe.parts) {
        result.parts.push_back(transformedPart(part, scale));
    }
    return result;
}

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
