#include "objects.h"

#include "../palette.h"
#include "features.h"

#include <cmath>

namespace gallery {

using namespace palette;

namespace {

ObjectRecipe tree() {
    Part leaves{"Leaves",
                {0, 2.1f, 0},
                {ball(1.1f, Green).at({0, 3.0f, 0}), ball(0.8f, Green).at({0.75f, 2.6f, 0.25f}),
                 ball(0.8f, Green).at({-0.7f, 2.65f, -0.2f}),
                 ball(0.75f, Green).at({0.1f, 2.55f, 0.75f}),
                 ball(0.7f, Green).at({-0.1f, 3.6f, -0.35f})},
                {}};
    const osg::Vec3 crown{0, 3.0f, 0}, crownRadii{1.1f, 1.1f, 1.1f};
    for (auto [turn, rise] : {std::pair{-20.0f, 20.0f},
                              {25.0f, 35.0f},
                              {50.0f, 0.0f},
                              {-45.0f, -5.0f},
                              {5.0f, 55.0f}}) {
        leaves.shapes.push_back(ball(0.11f, Red).at(onEgg(crown, crownRadii, turn, rise)));
    }
    const Part trunk{
        "Trunk", {0, 0, 0}, {frustum(0.26f, 0.17f, 2.3f, Brown).at({0, 1.15f, 0})}, {leaves}};
    return {"Nature", "Tree", {}, {trunk}};
}

ObjectRecipe pineTree() {
    const Part leaves{"Leaves",
                      {0, 0.8f, 0},
                      {cone(1.3f, 1.8f, DarkGreen).at({0, 1.7f, 0}),
                       cone(1.0f, 1.5f, DarkGreen).at({0, 2.7f, 0}),
                       cone(0.7f, 1.2f, DarkGreen).at({0, 3.6f, 0})},
                      {}};
    const Part trunk{
        "Trunk", {0, 0, 0}, {frustum(0.2f, 0.15f, 1.0f, Brown).at({0, 0.5f, 0})}, {leaves}};
    return {"Nature", "PineTree", {}, {trunk}};
}

ObjectRecipe flower() {
    const osg::Vec3 middle{0, 0.47f, 0.015f};
    Part blossom{
        "Blossom", {0, 0.44f, 0}, {ball(0.04f, Yellow).at(middle + osg::Vec3(0, 0, 0.01f))}, {}};
    constexpr int petals = 6;
    for (int i = 0; i < petals; ++i) {
        const float angle = 360.0f * float(i) / petals;
        blossom.shapes.push_back(egg({0.045f, 0.026f, 0.012f}, Pink)
                                     .at(middle + osg::Vec3(0.055f, 0, 0))
                                     .turnedAbout(angle, ZAxis, middle));
    }
    const Part leftLeaf{
        "LeftLeaf",
        {0.01f, 0.25f, 0},
        {egg({0.06f, 0.014f, 0.03f}, Green).turned(20, ZAxis).at({0.065f, 0.27f, 0})},
        {}};
    Part stem{"Stem",
              {0, 0.14f, 0},
              {stick(0.012f, {0, 0.14f, 0}, {0, 0.45f, 0}, Green)},
              leftAndRight(leftLeaf)};
    stem.parts.push_back(blossom);
    ObjectRecipe recipe{"Nature", "Flower", {}, {stem}};
    recipe.body = {frustum(0.08f, 0.11f, 0.14f, Orange).at({0, 0.07f, 0}),
                   rod(0.1f, 0.02f, DarkBrown).at({0, 0.135f, 0})};
    return recipe;
}

ObjectRecipe mushroom() {
    const osg::Vec3 capBase{0, 0.24f, 0}, capRadii{0.22f, 0.16f, 0.22f};
    Part cap{
        "Cap", capBase, {dome(capRadii, Red).at(capBase), rod(0.2f, 0.01f, Cream).at(capBase)}, {}};
    for (auto [turn, rise] : {std::pair{0.0f, 30.0f},
                              {60.0f, 20.0f},
                              {-50.0f, 35.0f},
                              {120.0f, 25.0f},
                              {20.0f, 65.0f},
                              {-130.0f, 30.0f}}) {
        cap.shapes.push_back(
            egg({0.035f, 0.02f, 0.035f}, White).at(onEgg(capBase, capRadii * 0.97f, turn, rise)));
    }
    const Part stem{
        "Stem", {0, 0, 0}, {frustum(0.08f, 0.06f, 0.25f, Cream).at({0, 0.125f, 0})}, {cap}};
    return {"Nature", "Mushroom", {}, {stem}};
}

ObjectRecipe rocks() {
    return {"Nature",
            "Rocks",
            {},
            {{"BigRock",
              {0.15f, 0, 0},
              {rock({0.5f, 0.38f, 0.45f}, 1, Gray).at({0.15f, 0.38f, 0})},
              {}},
             {"SmallRock",
              {-0.5f, 0, 0.3f},
              {rock({0.26f, 0.2f, 0.24f}, 7, DarkGray).at({-0.5f, 0.2f, 0.3f})},
              {}}}};
}

ObjectRecipe snowman() {
    const osg::Vec3 headCenter{0, 1.55f, 0}, headRadii{0.24f, 0.24f, 0.24f};
    const Part hat{"Hat",
                   {0, 1.75f, 0},
                   {rod(0.27f, 0.03f, Black).at({0, 1.765f, 0}),
                    rod(0.17f, 0.3f, Black).at({0, 1.93f, 0}),
                    rod(0.175f, 0.06f, Red).at({0, 1.82f, 0})},
                   {}};
    Part head{"Head",
              {0, 1.33f, 0},
              {ball(0.24f, White).at(headCenter),
               cone(0.04f, 0.22f, Orange)
                   .turned(90, XAxis)
                   .at(onEgg(headCenter, headRadii, 0, -5) + osg::Vec3(0, 0, 0.1f))},
              {hat}};
    append(head.shapes, eyes(headCenter, headRadii, 0.03f, 22, 15));
    const osg::Vec3 shoulder{0.28f, 1.12f, 0};
    const Part arm{"LeftArm",
                   shoulder,
                   {stick(0.025f, shoulder, {0.75f, 1.4f, 0}, Brown),
                    stick(0.018f, {0.62f, 1.32f, 0}, {0.7f, 1.5f, 0}, Brown)},
                   {}};
    ObjectRecipe recipe{"Nature", "Snowman", {}, {head}};
    append(recipe.parts, leftAndRight(arm));
    const osg::Vec3 middle{0, 1.05f, 0}, middleRadii{0.33f, 0.33f, 0.33f};
    recipe.body = {ball(0.45f, White).at({0, 0.45f, 0}), ball(0.33f, White).at(middle),
                   ring(0.22f, 0.06f, Red).at({0, 1.34f, 0})};
    for (float rise : {-25.0f, 0.0f, 25.0f}) {
        recipe.body.push_back(ball(0.035f, Black).at(onEgg(middle, middleRadii, 0, rise)));
    }
    return recipe;
}

ObjectRecipe cactus() {
    const Part leftArm{"LeftArm",
                       {0.2f, 0.7f, 0},
                       {limb(0.11f, {0.2f, 0.7f, 0}, {0.42f, 0.7f, 0}, Green),
                        limb(0.11f, {0.42f, 0.7f, 0}, {0.42f, 1.05f, 0}, Green)},
                       {}};
    Part rightArm{"RightArm",
                  {-0.2f, 0.95f, 0},
                  {limb(0.1f, {-0.2f, 0.95f, 0}, {-0.4f, 0.95f, 0}, Green),
                   limb(0.1f, {-0.4f, 0.95f, 0}, {-0.4f, 1.25f, 0}, Green)},
                  {}};
    ObjectRecipe recipe{"Nature", "Cactus", {}, {leftArm, rightArm}};
    recipe.body = {frustum(0.25f, 0.3f, 0.3f, Orange).at({0, 0.15f, 0}),
                   limb(0.17f, {0, 0.3f, 0}, {0, 1.45f, 0}, Green)};
    recipe.body.push_back(ball(0.07f, Pink).at({0, 1.62f, 0}));
    return recipe;
}

} // namespace

std::vector<ObjectRecipe> nature() {
    return {tree(), pineTree(), flower(), mushroom(), rocks(), snowman(), cactus()};
}

} // namespace gallery
