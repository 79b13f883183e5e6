#include "objects.h"

#include "../palette.h"

namespace gallery {

using namespace palette;

namespace {

// A pane of glass in a white frame, on a wall facing along +z or +x.
std::vector<Shape> window(const osg::Vec3& center, const osg::Vec2& size, bool facesSide) {
    const osg::Vec3 frame = facesSide ? osg::Vec3(0.06f, size.y() + 0.12f, size.x() + 0.12f)
                                      : osg::Vec3(size.x() + 0.12f, size.y() + 0.12f, 0.06f);
    const osg::Vec3 glass =
        facesSide ? osg::Vec3(0.08f, size.y(), size.x()) : osg::Vec3(size.x(), size.y(), 0.08f);
    const osg::Vec3 bar =
        facesSide ? osg::Vec3(0.1f, size.y(), 0.05f) : osg::Vec3(0.05f, size.y(), 0.1f);
    return {box(frame, White).at(center), box(glass, SkyBlue).at(center),
            box(bar, White).at(center)};
}

// A door hung on its hinge, which is its pivot, with a knob on the far side.
Part door(const std::string& name, const osg::Vec3& hinge, const osg::Vec3& size, bool opensLeft,
          const osg::Vec4& color) {
    const float across = opensLeft ? -size.x() : size.x();
    const osg::Vec3 center = hinge + osg::Vec3(across / 2, size.y() / 2, size.z() / 2);
    const osg::Vec3 knob = hinge + osg::Vec3(across * 0.82f, size.y() * 0.5f, size.z() + 0.04f);
    return {name, hinge, {box(size, color).at(center), ball(0.06f, Yellow).at(knob)}, {}};
}

ObjectRecipe house() {
    ObjectRecipe recipe{"Buildings", "House", {}, {}};
    recipe.body = {box({4, 2.6f, 3.2f}, Cream).at({0, 1.3f, 0}),
                   box({1.3f, 0.1f, 0.5f}, Gray).at({0, 0.05f, 1.85f})};
    for (float x : {-1.25f, 1.25f}) {
        append(recipe.body, window({x, 1.5f, 1.6f}, {0.8f, 0.8f}, false));
        append(recipe.body, window({2 * x / std::abs(x), 1.5f, 0.4f * x}, {0.8f, 0.8f}, true));
    }
    recipe.parts.push_back(door("Door", {-0.45f, 0.1f, 1.6f}, {0.9f, 1.9f, 0.08f}, false, Blue));
    recipe.parts.push_back({"Roof",
                            {0, 2.6f, 0},
                            {taperedBox({4.5f, 1.6f, 3.7f}, 1, 0, Red).at({0, 3.4f, 0}),
                             box({0.45f, 1.1f, 0.45f}, Brown).at({1.2f, 3.85f, -0.7f})},
                            {}});
    return recipe;
}

ObjectRecipe castle() {
    ObjectRecipe recipe{"Buildings", "Castle", {}, {}};
    recipe.body = {box({5, 3, 5}, Gray).at({0, 1.5f, 0}),
                   box({1.8f, 2.2f, 0.05f}, DarkGray).at({0, 1.1f, 2.5f})};
    for (int i = -2; i <= 2; ++i) {
        const float along = float(i) * 0.95f;
        for (const osg::Vec3& at :
             {osg::Vec3(along, 3.25f, 2.25f), osg::Vec3(along, 3.25f, -2.25f),
              osg::Vec3(2.25f, 3.25f, along), osg::Vec3(-2.25f, 3.25f, along)}) {
            recipe.body.push_back(box({0.5f, 0.5f, 0.5f}, Gray).at(at));
        }
    }
    const osg::Vec3 corner{2.5f, 0, 2.5f};
    recipe.parts =
        fourCorners({"FrontLeftTower",
                     corner,
                     {rod(0.9f, 4.2f, Gray).at(corner + osg::Vec3(0, 2.1f, 0)),
                      cone(1.1f, 1.6f, Blue).at(corner + osg::Vec3(0, 5.0f, 0)),
                      box({0.3f, 0.6f, 0.1f}, DarkGray).at(corner + osg::Vec3(0, 3.0f, 0.88f))},
                     {}});
    recipe.parts.push_back(
        {"Gate", {0, 0, 2.54f}, {box({1.6f, 2.0f, 0.12f}, Brown).at({0, 1.0f, 2.6f})}, {}});
    recipe.parts.push_back({"Flag",
                            {0, 3, 0},
                            {stick(0.05f, {0, 3, 0}, {0, 5, 0}, DarkGray),
                             box({1.0f, 0.6f, 0.04f}, Red).at({0.52f, 4.65f, 0})},
                            {}});
    return recipe;
}

ObjectRecipe barn() {
    ObjectRecipe recipe{"Buildings", "Barn", {}, {}};
    recipe.body = {box({4, 3, 5}, Red).at({0, 1.5f, 0}),
                   box({2.6f, 2.4f, 0.04f}, DarkBrown).at({0, 1.2f, 2.5f}),
                   box({0.9f, 0.9f, 0.06f}, White).at({0, 3.55f, 2.72f}),
                   box({0.7f, 0.7f, 0.08f}, DarkBrown).at({0, 3.55f, 2.72f})};
    for (float x : {-1.98f, 1.98f}) {
        recipe.body.push_back(box({0.1f, 3, 0.1f}, White).at({x, 1.5f, 2.48f}));
    }
    const Part leftDoor{
        "LeftDoor",
        {1.3f, 0, 2.52f},
        {box({1.3f, 2.4f, 0.08f}, Red).at({0.65f, 1.2f, 2.56f}),
         box({0.12f, 2.5f, 0.1f}, White).turned(-28, ZAxis).at({0.65f, 1.2f, 2.58f}),
         box({0.12f, 2.5f, 0.1f}, White).turned(28, ZAxis).at({0.65f, 1.2f, 2.58f}),
         box({1.3f, 0.12f, 0.1f}, White).at({0.65f, 2.34f, 2.58f}),
         box({1.3f, 0.12f, 0.1f}, White).at({0.65f, 0.06f, 2.58f})},
        {}};
    recipe.parts = leftAndRight(leftDoor);
    recipe.parts.push_back(
        {"Roof", {0, 3, 0}, {taperedBox({4.5f, 1.8f, 5.4f}, 0, 1, DarkRed).at({0, 3.9f, 0})}, {}});
    return recipe;
}

ObjectRecipe lighthouse() {
    ObjectRecipe recipe{"Buildings", "Lighthouse", {}, {}};
    constexpr int bands = 5;
    for (int i = 0; i < bands; ++i) {
        const float bottom = 1.2f - 0.08f * float(i), top = 1.2f - 0.08f * float(i + 1);
        recipe.body.push_back(
            frustum(bottom, top, 1.0f, i % 2 ? White : Red).at({0, 0.5f + float(i), 0}));
    }
    recipe.body.push_back(rod(1.05f, 0.15f, DarkGray).at({0, 5.07f, 0}));
    recipe.body.push_back(cone(0.75f, 0.7f, Red).at({0, 6.4f, 0}));
    recipe.body.push_back(ball(0.12f, Yellow).at({0, 6.78f, 0}));
    recipe.body.push_back(rod(0.6f, 0.06f, DarkGray).at({0, 6.05f, 0}));
    for (int i = 0; i < 4; ++i) {
        recipe.body.push_back(stick(0.04f, {0.55f, 5.1f, 0}, {0.55f, 6.05f, 0}, DarkGray)
                                  .turnedAbout(45.0f + 90.0f * float(i), YAxis, {}));
    }
    for (float y : {2.4f, 3.5f}) {
        recipe.body.push_back(box({0.3f, 0.45f, 0.1f}, SkyBlue).at({0, y, 1.2f - 0.08f * y}));
    }
    recipe.parts.push_back(
        {"Lamp",
         {0, 5.6f, 0},
         {ball(0.32f, Yellow).at({0, 5.6f, 0}), rod(0.15f, 0.4f, Gray).at({0, 5.3f, 0})},
         {}});
    recipe.parts.push_back(door("Door", {-0.35f, 0, 1.16f}, {0.7f, 1.3f, 0.1f}, false, Blue));
    return recipe;
}

ObjectRecipe windmill() {
    ObjectRecipe recipe{"Buildings", "Windmill", {}, {}};
    recipe.body = {frustum(1.5f, 1.0f, 4.5f, Cream).at({0, 2.25f, 0}),
                   cone(1.25f, 1.3f, DarkRed).at({0, 5.15f, 0})};
    recipe.body.push_back(box({0.5f, 0.6f, 0.08f}, SkyBlue).at({0, 3.0f, 1.2f}));
    const osg::Vec3 hub{0, 4.1f, 1.3f};
    Part sails{"Sails",
               hub,
               {ball(0.22f, DarkGray).at(hub),
                rod(0.1f, 0.5f, DarkGray).turned(90, XAxis).at(hub - osg::Vec3(0, 0, 0.25f))},
               {}};
    for (int i = 0; i < 4; ++i) {
        const float angle = 45.0f + 90.0f * float(i);
        sails.shapes.push_back(box({0.6f, 2.4f, 0.04f}, White)
                                   .at(hub + osg::Vec3(0.22f, 1.55f, 0.1f))
                                   .turnedAbout(angle, ZAxis, hub));
        sails.shapes.push_back(box({0.08f, 2.8f, 0.08f}, Brown)
                                   .at(hub + osg::Vec3(0, 1.4f, 0.14f))
                                   .turnedAbout(angle, ZAxis, hub));
    }
    recipe.parts.push_back(sails);
    recipe.parts.push_back(door("Door", {-0.4f, 0, 1.47f}, {0.8f, 1.5f, 0.1f}, false, Brown));
    return recipe;
}

} // namespace

std::vector<ObjectRecipe> buildings() {
    return {house(), castle(), barn(), lighthouse(), windmill()};
}

} // namespace gallery
