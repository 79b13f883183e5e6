#pragma once

#include "primitives.h"

#include <string>
#include <vector>

namespace gallery {

// A part that can move on its own, turning about its pivot. Pivot and shapes
// are given in object coordinates; the model builder makes them relative.
struct Part {
    std::string name;
    osg::Vec3 pivot;
    std::vector<Shape> shapes;
    std::vector<Part> parts;
};

// How to build one gallery object. The object stands on y = 0 with its base
// centred on the origin, y up, facing +z; its left is +x.
struct ObjectRecipe {
    std::string folder;
    std::string name;
    std::vector<Shape> body; // what stays put when the parts move
    std::vector<Part> parts;
};

// A part on the object's left and its mirror image on the right: "LeftEar"
// gives "LeftEar" and "RightEar".
std::vector<Part> leftAndRight(const Part& left);
// A front-left part and its three mirror images, as the legs of a table.
std::vector<Part> fourCorners(const Part& frontLeft);

// The part with this name anywhere in the object; throws if there is none.
Part& partNamed(ObjectRecipe& recipe, const std::string& name);
// The whole object made bigger or smaller about its origin.
ObjectRecipe scaled(const ObjectRecipe& recipe, float factor);

template <typename T> void append(std::vector<T>& to, const std::vector<T>& from) {
    to.insert(to.end(), from.begin(), from.end());
}

} // namespace gallery
