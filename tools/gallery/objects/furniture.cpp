#include "objects.h"

#include "../palette.h"

namespace gallery {

using namespace palette;

namespace {

// A square leg hanging from its top, which is where it turns.
Part leg(const std::string& name, const osg::Vec3& top, float width, const osg::Vec4& color) {
    return {
        name, top, {box({width, top.y(), width}, color).at({top.x(), top.y() / 2, top.z()})}, {}};
}

ObjectRecipe chair() {
    ObjectRecipe recipe{"Furniture",
                        "Chair",
                        {},
                        fourCorners(leg("FrontLeftLeg", {0.19f, 0.42f, 0.19f}, 0.05f, Brown))};
    recipe.body = {box({0.46f, 0.06f, 0.46f}, Brown).at({0, 0.45f, 0}),
                   box({0.4f, 0.06f, 0.4f}, Red).at({0, 0.5f, 0.01f})};
    Part back{"Back",
              {0, 0.48f, -0.2f},
              {box({0.42f, 0.12f, 0.04f}, Brown).at({0, 0.86f, -0.2f}),
               box({0.42f, 0.08f, 0.04f}, Brown).at({0, 0.68f, -0.2f})},
              {}};
    for (float x : {-0.19f, 0.19f}) {
        back.shapes.push_back(box({0.05f, 0.48f, 0.05f}, Brown).at({x, 0.72f, -0.2f}));
    }
    recipe.parts.push_back(back);
    return recipe;
}

ObjectRecipe table() {
    ObjectRecipe recipe{"Furniture",
                        "Table",
                        {},
                        fourCorners(leg("FrontLeftLeg", {0.52f, 0.7f, 0.32f}, 0.07f, Brown))};
    recipe.parts.push_back({"Top",
                            {0, 0.7f, 0},
                            {box({1.2f, 0.06f, 0.8f}, Tan).at({0, 0.73f, 0}),
                             frustum(0.1f, 0.16f, 0.07f, SkyBlue).at({0.15f, 0.795f, 0}),
                             ball(0.055f, Red).at({0.12f, 0.865f, 0.03f}),
                             ball(0.05f, Orange).at({0.2f, 0.86f, -0.02f}),
                             ball(0.045f, Lime).at({0.14f, 0.86f, -0.06f})},
                            {}});
    return recipe;
}

ObjectRecipe bed() {
    ObjectRecipe recipe{"Furniture", "Bed", {}, {}};
    recipe.body = {box({1.0f, 0.25f, 2.0f}, Brown).at({0, 0.225f, 0}),
                   box({1.06f, 0.95f, 0.08f}, Brown).at({0, 0.475f, -1.0f}),
                   box({1.06f, 0.55f, 0.08f}, Brown).at({0, 0.275f, 1.0f}),
                   box({0.96f, 0.16f, 1.9f}, White).at({0, 0.43f, 0})};
    for (float x : {-0.46f, 0.46f}) {
        for (float z : {-0.95f, 0.95f}) {
            recipe.body.push_back(box({0.08f, 0.1f, 0.08f}, DarkBrown).at({x, 0.05f, z}));
        }
    }
    recipe.parts.push_back({"Pillow",
                            {0, 0.51f, -0.72f},
                            {egg({0.32f, 0.07f, 0.17f}, SkyBlue).at({0, 0.56f, -0.72f})},
                            {}});
    recipe.parts.push_back({"Blanket",
                            {0, 0.52f, 0.95f},
                            {box({1.0f, 0.06f, 1.35f}, Blue).at({0, 0.54f, 0.28f}),
                             box({1.0f, 0.065f, 0.12f}, White).at({0, 0.54f, -0.35f})},
                            {}});
    return recipe;
}

ObjectRecipe lamp() {
    ObjectRecipe recipe{"Furniture", "Lamp", {}, {}};
    recipe.body = {frustum(0.2f, 0.17f, 0.05f, DarkGray).at({0, 0.025f, 0}),
                   rod(0.02f, 1.4f, Gray).at({0, 0.72f, 0})};
    recipe.parts.push_back({"Shade",
                            {0, 1.4f, 0},
                            {frustum(0.26f, 0.15f, 0.3f, Yellow).at({0, 1.52f, 0}),
                             ball(0.07f, Cream).at({0, 1.45f, 0})},
                            {}});
    return recipe;
}

ObjectRecipe sofa() {
    ObjectRecipe recipe{"Furniture", "Sofa", {}, {}};
    recipe.body = {box({2.0f, 0.3f, 0.9f}, Teal).at({0, 0.23f, 0}),
                   box({2.0f, 0.55f, 0.25f}, Teal).at({0, 0.65f, -0.33f})};
    for (float x : {-0.9f, 0.9f}) {
        recipe.body.push_back(box({0.2f, 0.32f, 0.9f}, Teal).at({x, 0.52f, 0}));
        for (float z : {-0.38f, 0.38f}) {
            recipe.body.push_back(box({0.1f, 0.08f, 0.1f}, DarkBrown).at({x, 0.04f, z}));
        }
    }
    append(recipe.parts,
           leftAndRight({"LeftCushion",
                         {0.4f, 0.38f, 0.1f},
                         {box({0.78f, 0.14f, 0.64f}, SkyBlue).at({0.4f, 0.45f, 0.1f})},
                         {}}));
    append(recipe.parts,
           leftAndRight(
               {"LeftPillow",
                {0.55f, 0.52f, -0.18f},
                {egg({0.2f, 0.18f, 0.07f}, Yellow).turned(-12, XAxis).at({0.55f, 0.7f, -0.16f})},
                {}}));
    return recipe;
}

} // namespace

std::vector<ObjectRecipe> furniture() {
    return {chair(), table(), bed(), lamp(), sofa()};
}

} // namespace gallery
