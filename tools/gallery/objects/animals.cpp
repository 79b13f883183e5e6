#include "objects.h"

#include "../palette.h"
#include "features.h"

namespace gallery {

using namespace palette;

namespace {

ObjectRecipe bunny() {
    const osg::Vec3 headCenter{0, 0.27f, 0.07f}, headRadii{0.085f, 0.08f, 0.08f};
    const Part leftEar{
        "LeftEar",
        {0.035f, 0.335f, 0.06f},
        {egg({0.026f, 0.085f, 0.014f}, White).turned(-12, ZAxis).at({0.05f, 0.41f, 0.06f}),
         egg({0.016f, 0.065f, 0.006f}, Pink).turned(-12, ZAxis).at({0.05f, 0.41f, 0.072f})},
        {}};
    Part head{"Head",
              {0, 0.2f, 0.05f},
              {egg(headRadii, White).at(headCenter),
               ball(0.012f, Pink).at(onEgg(headCenter, headRadii, 0, -5)),
               egg({0.03f, 0.025f, 0.02f}, Cream).at({0.022f, 0.245f, 0.135f}),
               egg({0.03f, 0.025f, 0.02f}, Cream).at({-0.022f, 0.245f, 0.135f})},
              leftAndRight(leftEar)};
    append(head.shapes, eyes(headCenter, headRadii, 0.014f, 28, 15));
    ObjectRecipe recipe{"Animals", "Bunny", {}, {head}};
    recipe.body = {egg({0.11f, 0.12f, 0.13f}, White).at({0, 0.12f, -0.02f}),
                   egg({0.075f, 0.085f, 0.06f}, Cream).at({0, 0.11f, 0.065f})};
    append(recipe.parts,
           leftAndRight({"LeftFoot",
                         {0.065f, 0.03f, -0.02f},
                         {egg({0.035f, 0.028f, 0.075f}, White).at({0.065f, 0.028f, 0.04f})},
                         {}}));
    append(recipe.parts,
           leftAndRight({"LeftPaw",
                         {0.05f, 0.12f, 0.08f},
                         {egg({0.026f, 0.045f, 0.026f}, White).at({0.052f, 0.08f, 0.1f})},
                         {}}));
    recipe.parts.push_back(
        {"Tail", {0, 0.1f, -0.13f}, {ball(0.035f, White).at({0, 0.1f, -0.155f})}, {}});
    return recipe;
}

// A four-legged animal: a long round body, a leg at each corner with a pale
// paw, a head at the front and a tail at the back.
struct QuadrupedLook {
    float bodyRadius, bodyLength, hipHeight, legRadius, legX, legZ;
    osg::Vec4 coat, paws;
};

ObjectRecipe quadruped(const std::string& name, const QuadrupedLook& look, Part head,
                       const Shape& tail) {
    const float bodyY = look.hipHeight + look.bodyRadius * 0.3f;
    const osg::Vec3 hip{look.legX, look.hipHeight, look.legZ};
    const osg::Vec3 paw{look.legX, look.legRadius * 1.1f, look.legZ + look.legRadius * 0.4f};
    const Part leg{"FrontLeftLeg",
                   hip,
                   {limb(look.legRadius, hip, {look.legX, look.legRadius, look.legZ}, look.coat),
                    egg(osg::Vec3(1, 0.75f, 1.3f) * look.legRadius * 1.15f, look.paws).at(paw)},
                   {}};
    ObjectRecipe recipe{"Animals", name, {}, fourCorners(leg)};
    recipe.body = {
        capsule(look.bodyRadius, look.bodyLength, look.coat).turned(90, XAxis).at({0, bodyY, 0})};
    recipe.parts.push_back(std::move(head));
    const osg::Vec3 tailRoot{0, bodyY + look.bodyRadius * 0.4f,
                             -look.bodyLength / 2 + look.bodyRadius * 0.3f};
    recipe.parts.push_back({"Tail", tailRoot, {tail}, {}});
    return recipe;
}

ObjectRecipe cat() {
    const osg::Vec3 headCenter{0, 0.3f, 0.2f}, headRadii{0.08f, 0.075f, 0.075f};
    const Part leftEar{"LeftEar",
                       {0.045f, 0.355f, 0.19f},
                       {cone(0.032f, 0.06f, Orange).turned(-18, ZAxis).at({0.055f, 0.38f, 0.19f}),
                        cone(0.018f, 0.04f, Pink).turned(-18, ZAxis).at({0.055f, 0.375f, 0.205f})},
                       {}};
    Part head{"Head",
              {0, 0.24f, 0.15f},
              {egg(headRadii, Orange).at(headCenter),
               egg({0.042f, 0.028f, 0.025f}, White).at(onEgg(headCenter, headRadii, 0, -22)),
               ball(0.011f, Pink).at(onEgg(headCenter, headRadii, 0, -8) + osg::Vec3(0, 0, 0.01f))},
              leftAndRight(leftEar)};
    append(head.shapes, eyes(headCenter, headRadii, 0.013f, 27, 12));
    const QuadrupedLook look{0.075f, 0.34f, 0.16f, 0.024f, 0.045f, 0.12f, Orange, White};
    ObjectRecipe recipe =
        quadruped("Cat", look, head, limb(0.018f, {0, 0.235f, -0.15f}, {0, 0.35f, -0.28f}, Orange));
    for (float z : {-0.06f, 0.02f, 0.1f}) {
        recipe.body.push_back(ring(0.071f, 0.008f, Rust).turned(90, XAxis).at({0, 0.1825f, z}));
    }
    return recipe;
}

ObjectRecipe dog() {
    const osg::Vec3 headCenter{0, 0.56f, 0.3f}, headRadii{0.12f, 0.115f, 0.115f};
    const Part leftEar{
        "LeftEar",
        {0.1f, 0.63f, 0.29f},
        {egg({0.03f, 0.1f, 0.06f}, Brown).turned(12, ZAxis).at({0.13f, 0.55f, 0.29f})},
        {}};
    const osg::Vec3 snout{0, 0.515f, 0.41f};
    Part head{"Head",
              {0, 0.45f, 0.25f},
              {egg(headRadii, Tan).at(headCenter), egg({0.065f, 0.055f, 0.08f}, Cream).at(snout),
               ball(0.028f, Black).at(snout + osg::Vec3(0, 0.03f, 0.075f)),
               egg({0.025f, 0.012f, 0.03f}, Pink).at(snout + osg::Vec3(0, -0.05f, 0.03f))},
              leftAndRight(leftEar)};
    append(head.shapes, eyes(headCenter, headRadii, 0.02f, 24, 18));
    const QuadrupedLook look{0.12f, 0.56f, 0.3f, 0.045f, 0.07f, 0.19f, Tan, White};
    ObjectRecipe recipe =
        quadruped("Dog", look, head, limb(0.025f, {0, 0.4f, -0.24f}, {0, 0.5f, -0.36f}, Tan));
    recipe.body.push_back(ring(0.075f, 0.018f, Red).turned(-40, XAxis).at({0, 0.46f, 0.24f}));
    recipe.body.push_back(ball(0.03f, Yellow).at({0, 0.42f, 0.32f}));
    return recipe;
}

ObjectRecipe penguin() {
    const osg::Vec3 headCenter{0, 0.49f, 0}, headRadii{0.1f, 0.1f, 0.1f};
    Part head{"Head",
              {0, 0.4f, 0},
              {ball(0.1f, Black).at(headCenter),
               egg({0.075f, 0.06f, 0.04f}, White)
                   .at(onEgg(headCenter, headRadii, 0, -5) - osg::Vec3(0, 0, 0.03f)),
               cone(0.026f, 0.07f, Orange)
                   .turned(90, XAxis)
                   .at(onEgg(headCenter, headRadii, 0, -15) + osg::Vec3(0, 0, 0.03f))},
              {}};
    append(head.shapes, eyes(headCenter, headRadii, 0.015f, 25, 12));
    ObjectRecipe recipe{"Animals", "Penguin", {}, {head}};
    recipe.body = {egg({0.15f, 0.22f, 0.14f}, Black).at({0, 0.22f, 0}),
                   egg({0.115f, 0.17f, 0.08f}, White).at({0, 0.2f, 0.07f})};
    append(recipe.parts,
           leftAndRight(
               {"LeftWing",
                {0.13f, 0.36f, 0},
                {egg({0.03f, 0.14f, 0.07f}, Black).turned(18, ZAxis).at({0.165f, 0.24f, -0.01f})},
                {}}));
    append(recipe.parts,
           leftAndRight({"LeftFoot",
                         {0.06f, 0.02f, 0.02f},
                         {egg({0.045f, 0.02f, 0.075f}, Orange).at({0.06f, 0.02f, 0.08f})},
                         {}}));
    return recipe;
}

ObjectRecipe duck() {
    const osg::Vec3 headCenter{0, 0.26f, 0.1f}, headRadii{0.08f, 0.08f, 0.08f};
    Part head{"Head",
              {0, 0.17f, 0.09f},
              {ball(0.08f, Yellow).at(headCenter)},
              {{"Beak",
                {0, 0.245f, 0.165f},
                {egg({0.045f, 0.016f, 0.055f}, Orange).at({0, 0.24f, 0.2f})},
                {}}}};
    append(head.shapes, eyes(headCenter, headRadii, 0.014f, 32, 22));
    ObjectRecipe recipe{"Animals", "Duck", {}, {head}};
    recipe.body = {egg({0.13f, 0.1f, 0.17f}, Yellow).at({0, 0.1f, 0})};
    append(recipe.parts,
           leftAndRight(
               {"LeftWing",
                {0.11f, 0.14f, 0.05f},
                {egg({0.025f, 0.05f, 0.085f}, Gold).turned(-10, XAxis).at({0.125f, 0.12f, -0.02f})},
                {}}));
    recipe.parts.push_back(
        {"Tail",
         {0, 0.13f, -0.15f},
         {cone(0.045f, 0.08f, Yellow).turned(-60, XAxis).at({0, 0.15f, -0.185f})},
         {}});
    return recipe;
}

ObjectRecipe fish() {
    const osg::Vec3 bodyCenter{0, 0.09f, 0}, bodyRadii{0.05f, 0.09f, 0.15f};
    ObjectRecipe recipe{"Animals", "Fish", {}, {}};
    recipe.body = {egg(bodyRadii, Orange).at(bodyCenter),
                   egg({0.053f, 0.075f, 0.02f}, White).at({0, 0.09f, 0.07f}),
                   egg({0.053f, 0.085f, 0.022f}, White).at({0, 0.09f, -0.04f}),
                   egg({0.01f, 0.04f, 0.07f}, Orange).at({0, 0.17f, -0.02f})};
    for (float side : {1.0f, -1.0f}) {
        const osg::Vec3 eye = onEgg(bodyCenter, bodyRadii, side * 55, 15);
        recipe.body.push_back(ball(0.017f, Black).at(eye));
        recipe.body.push_back(
            ball(0.006f, White).at(eye + osg::Vec3(side * 0.012f, 0.008f, 0.008f)));
    }
    recipe.parts.push_back({"Tail",
                            {0, 0.09f, -0.14f},
                            {egg({0.012f, 0.07f, 0.045f}, Orange).at({0, 0.09f, -0.18f})},
                            {}});
    append(recipe.parts,
           leftAndRight(
               {"LeftFin",
                {0.045f, 0.07f, 0.04f},
                {egg({0.008f, 0.03f, 0.04f}, Orange).turned(-30, ZAxis).at({0.06f, 0.06f, 0.02f})},
                {}}));
    return recipe;
}

} // namespace

std::vector<ObjectRecipe> animals() {
    return {bunny(), cat(), dog(), penguin(), duck(), fish()};
}

} // namespace gallery
