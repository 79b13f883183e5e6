#include "objects.h"

#include "../palette.h"
#include "features.h"

namespace gallery {

using namespace palette;

namespace {

// Four wheels turning on their axles, at x = ±axle.x and z = ±axle.z.
std::vector<Part> wheels(const osg::Vec3& frontLeftAxle, float radius, float width) {
    return fourCorners({"FrontLeftWheel", frontLeftAxle, wheel(frontLeftAxle, radius, width), {}});
}

ObjectRecipe car() {
    ObjectRecipe recipe{"Vehicles", "Car", {}, wheels({0.72f, 0.34f, 1.15f}, 0.34f, 0.24f)};
    recipe.body = {box({1.6f, 0.55f, 3.6f}, Red).at({0, 0.6f, 0}),
                   taperedBox({1.45f, 0.55f, 1.9f}, 0.85f, 0.7f, SkyBlue).at({0, 1.15f, -0.25f}),
                   box({1.27f, 0.06f, 1.37f}, Red).at({0, 1.45f, -0.25f})};
    for (float z : {-1.82f, 1.82f}) {
        recipe.body.push_back(box({1.65f, 0.14f, 0.14f}, Gray).at({0, 0.4f, z}));
    }
    for (float x : {-0.55f, 0.55f}) {
        recipe.body.push_back(ball(0.1f, Yellow).at({x, 0.72f, 1.77f}));
        recipe.body.push_back(box({0.25f, 0.1f, 0.04f}, DarkRed).at({x, 0.72f, -1.81f}));
    }
    append(recipe.parts,
           leftAndRight({"LeftDoor",
                         {0.81f, 0.6f, 0.35f},
                         {box({0.04f, 0.45f, 1.0f}, DarkRed).at({0.815f, 0.62f, -0.15f}),
                          box({0.04f, 0.04f, 0.16f}, Gray).at({0.84f, 0.75f, -0.48f})},
                         {}}));
    return recipe;
}

// An open box: a floor and four walls.
std::vector<Shape> tray(const osg::Vec3& center, const osg::Vec3& size, float wall,
                        const osg::Vec4& color) {
    const float h = size.y() / 2;
    return {
        box({size.x(), wall, size.z()}, color).at(center + osg::Vec3(0, wall / 2 - h, 0)),
        box({wall, size.y(), size.z()}, color).at(center + osg::Vec3((size.x() - wall) / 2, 0, 0)),
        box({wall, size.y(), size.z()}, color).at(center - osg::Vec3((size.x() - wall) / 2, 0, 0)),
        box({size.x(), size.y(), wall}, color).at(center + osg::Vec3(0, 0, (size.z() - wall) / 2)),
        box({size.x(), size.y(), wall}, color).at(center - osg::Vec3(0, 0, (size.z() - wall) / 2))};
}

ObjectRecipe truck() {
    ObjectRecipe recipe{"Vehicles", "Truck", {}, wheels({0.95f, 0.5f, 1.5f}, 0.5f, 0.36f)};
    recipe.body = {box({1.8f, 0.35f, 5.0f}, DarkGray).at({0, 0.7f, 0}),
                   box({2.0f, 1.5f, 1.4f}, Yellow).at({0, 1.6f, 1.8f}),
                   box({1.7f, 0.6f, 0.06f}, SkyBlue).at({0, 1.95f, 2.5f}),
                   box({0.06f, 0.55f, 0.8f}, SkyBlue).at({1.0f, 1.95f, 1.9f}),
                   box({0.06f, 0.55f, 0.8f}, SkyBlue).at({-1.0f, 1.95f, 1.9f})};
    for (float x : {-0.7f, 0.7f}) {
        recipe.body.push_back(ball(0.13f, White).at({x, 1.15f, 2.5f}));
    }
    recipe.parts.push_back(
        {"Bed", {0, 0.9f, -2.45f}, tray({0, 1.45f, -0.8f}, {2.1f, 1.1f, 3.3f}, 0.1f, Orange), {}});
    return recipe;
}

ObjectRecipe bus() {
    ObjectRecipe recipe{"Vehicles", "Bus", {}, wheels({1.05f, 0.5f, 2.3f}, 0.5f, 0.3f)};
    recipe.body = {box({2.4f, 2.2f, 7.0f}, Yellow).at({0, 1.5f, 0}),
                   box({2.44f, 0.12f, 7.04f}, Black).at({0, 1.2f, 0}),
                   box({2.1f, 0.8f, 0.05f}, SkyBlue).at({0, 2.0f, 3.5f}),
                   box({2.5f, 0.2f, 0.2f}, Gray).at({0, 0.45f, 3.55f})};
    for (int i = 0; i < 5; ++i) {
        const float z = 1.9f - 1.15f * float(i);
        recipe.body.push_back(box({2.44f, 0.7f, 0.9f}, SkyBlue).at({0, 2.0f, z}));
    }
    for (float x : {-0.8f, 0.8f}) {
        recipe.body.push_back(ball(0.14f, White).at({x, 0.85f, 3.5f}));
    }
    recipe.parts.push_back({"Door",
                            {-1.21f, 0.45f, 3.25f},
                            {box({0.05f, 1.9f, 0.75f}, SkyBlue).at({-1.22f, 1.45f, 2.875f}),
                             box({0.06f, 1.9f, 0.06f}, Black).at({-1.225f, 1.45f, 2.875f})},
                            {}});
    return recipe;
}

ObjectRecipe airplane() {
    ObjectRecipe recipe{"Vehicles", "Airplane", {}, {}};
    recipe.body = {capsule(0.6f, 6.0f, White).turned(90, XAxis).at({0, 1.3f, 0}),
                   egg({0.45f, 0.4f, 0.85f}, SkyBlue).at({0, 1.75f, 0.9f}),
                   box({7.0f, 0.12f, 1.3f}, Red).at({0, 1.15f, 0.5f}),
                   box({2.4f, 0.08f, 0.7f}, Red).at({0, 1.5f, -2.5f}),
                   box({0.1f, 0.1f, 6.0f}, Red).at({0.58f, 1.3f, 0}),
                   box({0.1f, 0.1f, 6.0f}, Red).at({-0.58f, 1.3f, 0})};
    for (float x : {-0.8f, 0.8f}) {
        recipe.body.push_back(stick(0.05f, {x * 0.4f, 0.9f, 0.9f}, {x, 0.3f, 0.9f}, Gray));
        append(recipe.body, wheel({x, 0.3f, 0.9f}, 0.3f, 0.2f));
    }
    recipe.body.push_back(stick(0.04f, {0, 0.9f, -2.5f}, {0, 0.15f, -2.5f}, Gray));
    recipe.body.push_back(rod(0.15f, 0.1f, Black).turned(90, ZAxis).at({0, 0.15f, -2.5f}));
    const osg::Vec3 nose{0, 1.3f, 3.0f};
    recipe.parts.push_back(
        {"Propeller",
         nose,
         {cone(0.22f, 0.4f, Gray).turned(90, XAxis).at(nose + osg::Vec3(0, 0, 0.2f)),
          box({0.18f, 2.0f, 0.05f}, DarkGray).at(nose + osg::Vec3(0, 0, 0.1f))},
         {}});
    recipe.parts.push_back({"Rudder",
                            {0, 1.6f, -2.3f},
                            {slab({{0, 0}, {-0.8f, 0}, {-0.8f, 1.2f}, {-0.4f, 1.2f}}, 0.1f, Red)
                                 .turned(90, YAxis)
                                 .at({0, 1.6f, -2.3f})},
                            {}});
    return recipe;
}

ObjectRecipe sailboat() {
    const Part sail{
        "Sail",
        {0, 1.0f, 0.3f},
        {slab({{0, 0}, {1.6f, 0}, {0, 2.9f}}, 0.04f, White).turned(90, YAxis).at({0, 1.0f, 0.25f})},
        {}};
    const Part mast{"Mast",
                    {0, 0.75f, 0.3f},
                    {stick(0.05f, {0, 0.7f, 0.3f}, {0, 4.1f, 0.3f}, Brown),
                     slab({{0, 0}, {0.6f, 0.15f}, {0, 0.3f}}, 0.02f, Red).at({0.04f, 3.8f, 0.3f})},
                    {sail}};
    ObjectRecipe recipe{"Vehicles", "Sailboat", {}, {mast}};
    recipe.body = {
        taperedBox({1.4f, 0.7f, 3.4f}, 0.55f, 0.75f, Blue).turned(180, ZAxis).at({0, 0.35f, 0}),
        box({1.36f, 0.06f, 3.3f}, Tan).at({0, 0.69f, 0}),
        box({1.42f, 0.08f, 3.42f}, White).at({0, 0.6f, 0})};
    return recipe;
}

ObjectRecipe rocket() {
    ObjectRecipe recipe{"Vehicles", "Rocket", {}, {}};
    recipe.body = {rod(0.35f, 2.0f, White).at({0, 1.5f, 0}),
                   frustum(0.28f, 0.18f, 0.2f, DarkGray).at({0, 0.4f, 0}),
                   ring(0.15f, 0.04f, Gray).turned(90, XAxis).at({0, 1.9f, 0.34f}),
                   egg({0.14f, 0.14f, 0.04f}, SkyBlue).at({0, 1.9f, 0.34f}),
                   rod(0.36f, 0.1f, Red).at({0, 1.2f, 0})};
    for (int i = 0; i < 4; ++i) {
        recipe.body.push_back(
            slab({{0.3f, 0}, {0.78f, 0}, {0.78f, 0.25f}, {0.3f, 1.05f}}, 0.05f, Red)
                .turnedAbout(45.0f + 90.0f * float(i), YAxis, {}));
    }
    recipe.parts.push_back(
        {"NoseCone", {0, 2.5f, 0}, {cone(0.35f, 0.9f, Red).at({0, 2.95f, 0})}, {}});
    recipe.parts.push_back({"Flame",
                            {0, 0.3f, 0},
                            {cone(0.2f, 0.28f, Orange).turned(180, ZAxis).at({0, 0.16f, 0}),
                             cone(0.12f, 0.2f, Yellow).turned(180, ZAxis).at({0, 0.14f, 0})},
                            {}});
    return recipe;
}

} // namespace

std::vector<ObjectRecipe> vehicles() {
    return {car(), truck(), bus(), airplane(), sailboat(), rocket()};
}

} // namespace gallery
