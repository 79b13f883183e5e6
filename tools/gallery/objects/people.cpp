#include "objects.h"

#include "../palette.h"
#include "features.h"

namespace gallery {

using namespace palette;

namespace {

struct PersonLook {
    osg::Vec4 skin, hair, shirt, pants, shoes;
};

const osg::Vec3 headCenter{0, 1.1f, 0};
const osg::Vec3 headRadii{0.16f, 0.16f, 0.16f};

// A child of about 1.25 m with a big friendly head; grown-ups are scaled up.
ObjectRecipe person(const std::string& name, const PersonLook& look) {
    Part head{"Head",
              {0, 0.96f, 0},
              {ball(headRadii.x(), look.skin).at(headCenter),
               ball(0.022f, look.skin).at(onEgg(headCenter, headRadii, 0, -5)),
               egg({0.035f, 0.012f, 0.012f}, Red).at(onEgg(headCenter, headRadii, 0, -25)),
               ball(0.028f, Pink).at(onEgg(headCenter, headRadii * 0.97f, 36, -12)),
               ball(0.028f, Pink).at(onEgg(headCenter, headRadii * 0.97f, -36, -12)),
               egg({0.025f, 0.04f, 0.03f}, look.skin).at({0.16f, 1.1f, -0.01f}),
               egg({0.025f, 0.04f, 0.03f}, look.skin).at({-0.16f, 1.1f, -0.01f})},
              {}};
    append(head.shapes, eyes(headCenter, headRadii, 0.022f, 21, 6));
    const Part arm{"LeftArm",
                   {0.17f, 0.9f, 0},
                   {limb(0.045f, {0.17f, 0.9f, 0}, {0.22f, 0.62f, 0.02f}, look.shirt),
                    ball(0.05f, look.skin).at({0.225f, 0.57f, 0.03f})},
                   {}};
    const Part leg{"LeftLeg",
                   {0.075f, 0.56f, 0},
                   {limb(0.055f, {0.075f, 0.56f, 0}, {0.075f, 0.12f, 0}, look.pants),
                    egg({0.065f, 0.05f, 0.1f}, look.shoes).at({0.075f, 0.05f, 0.03f})},
                   {}};
    ObjectRecipe recipe{"People", name, {}, {head}};
    append(recipe.parts, leftAndRight(arm));
    append(recipe.parts, leftAndRight(leg));
    recipe.body = {egg({0.17f, 0.24f, 0.13f}, look.shirt).at({0, 0.74f, 0}),
                   rod(0.05f, 0.1f, look.skin).at({0, 0.97f, 0})};
    return recipe;
}

Shape shortHair(const osg::Vec4& color) {
    return egg({0.168f, 0.11f, 0.168f}, color).at({0, 1.16f, -0.02f});
}

ObjectRecipe boy() {
    ObjectRecipe recipe = person("Boy", {Skin, Brown, Blue, Navy, Red});
    partNamed(recipe, "Head").shapes.push_back(shortHair(Brown));
    return recipe;
}

ObjectRecipe girl() {
    ObjectRecipe recipe = person("Girl", {DarkSkin, Black, Pink, Purple, Purple});
    Part& head = partNamed(recipe, "Head");
    head.shapes.push_back(shortHair(Black));
    for (float side : {1.0f, -1.0f}) {
        head.shapes.push_back(ball(0.065f, Black).at({side * 0.18f, 1.13f, -0.05f}));
        head.shapes.push_back(ball(0.03f, Yellow).at({side * 0.15f, 1.19f, -0.02f}));
    }
    recipe.body.push_back(frustum(0.23f, 0.13f, 0.4f, Pink).at({0, 0.66f, 0}));
    return recipe;
}

ObjectRecipe wizard() {
    ObjectRecipe recipe = person("Wizard", {Skin, White, Purple, Navy, Brown});
    Part& head = partNamed(recipe, "Head");
    head.shapes.push_back(
        cone(0.11f, 0.24f, White)
            .turned(180, ZAxis)
            .at(onEgg(headCenter, headRadii, 0, -50) + osg::Vec3(0, -0.06f, 0.02f)));
    head.parts.push_back(
        {"Hat",
         {0, 1.2f, 0},
         {cone(0.17f, 0.44f, Purple).at({0, 1.42f, -0.01f}),
          ring(0.19f, 0.035f, Purple).at({0, 1.21f, -0.01f}),
          ball(0.035f, Yellow).at(onEgg({0, 1.38f, -0.01f}, {0.085f, 0.1f, 0.085f}, 0, 0))},
         {}});
    partNamed(recipe, "RightArm")
        .shapes.push_back(
            stick(0.012f, {-0.225f, 0.52f, -0.05f}, {-0.225f, 0.62f, 0.28f}, DarkBrown));
    partNamed(recipe, "RightArm").shapes.push_back(ball(0.03f, Yellow).at({-0.225f, 0.63f, 0.3f}));
    recipe.body.push_back(frustum(0.26f, 0.15f, 0.6f, Purple).at({0, 0.6f, 0}));
    return scaled(recipe, 1.3f);
}

ObjectRecipe robot() {
    const Part antenna{"Antenna",
                       {0, 1.29f, 0},
                       {stick(0.012f, {0, 1.28f, 0}, {0, 1.42f, 0}, DarkGray),
                        ball(0.035f, Red).at({0, 1.44f, 0})},
                       {}};
    Part head{"Head",
              {0, 0.97f, 0},
              {rod(0.045f, 0.08f, DarkGray).at({0, 1.0f, 0}),
               box({0.32f, 0.26f, 0.26f}, Gray).at({0, 1.16f, 0}),
               box({0.14f, 0.03f, 0.02f}, DarkGray).at({0, 1.09f, 0.13f})},
              {antenna}};
    for (float side : {1.0f, -1.0f}) {
        head.shapes.push_back(
            rod(0.045f, 0.03f, SkyBlue).turned(90, XAxis).at({side * 0.075f, 1.19f, 0.135f}));
        head.shapes.push_back(
            rod(0.04f, 0.04f, Red).turned(90, ZAxis).at({side * 0.175f, 1.16f, 0}));
    }
    const osg::Vec3 shoulder{0.25f, 0.92f, 0};
    const Part arm{"LeftArm",
                   shoulder,
                   {ball(0.055f, Blue).at(shoulder),
                    stick(0.035f, shoulder, {0.27f, 0.62f, 0}, DarkGray),
                    ball(0.055f, Blue).at({0.27f, 0.58f, 0})},
                   {}};
    const Part leg{"LeftLeg",
                   {0.1f, 0.51f, 0},
                   {box({0.12f, 0.45f, 0.14f}, DarkGray).at({0.1f, 0.3f, 0}),
                    box({0.16f, 0.08f, 0.24f}, Blue).at({0.1f, 0.04f, 0.04f})},
                   {}};
    ObjectRecipe recipe{"People", "Robot", {}, {head}};
    append(recipe.parts, leftAndRight(arm));
    append(recipe.parts, leftAndRight(leg));
    recipe.body = {box({0.44f, 0.46f, 0.3f}, Gray).at({0, 0.74f, 0}),
                   box({0.24f, 0.16f, 0.02f}, Teal).at({0, 0.8f, 0.155f}),
                   ball(0.025f, Red).at({-0.07f, 0.63f, 0.15f}),
                   ball(0.025f, Yellow).at({0, 0.63f, 0.15f}),
                   ball(0.025f, Lime).at({0.07f, 0.63f, 0.15f})};
    return recipe;
}

} // namespace

std::vector<ObjectRecipe> people() {
    return {boy(), girl(), wizard(), robot()};
}

} // namespace gallery
