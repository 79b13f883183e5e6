#include "objects.h"

#include "../palette.h"

namespace gallery {

using namespace palette;

namespace {

ObjectRecipe bunny() {
    const Part leftEar{
        "LeftEar",
        {0.035f, 0.335f, 0.06f},
        {egg({0.026f, 0.085f, 0.014f}, White).turned(-12, ZAxis).at({0.05f, 0.41f, 0.06f}),
         egg({0.016f, 0.065f, 0.006f}, Pink).turned(-12, ZAxis).at({0.05f, 0.41f, 0.072f})},
        {}};
    const Part head{"Head",
                    {0, 0.2f, 0.05f},
                    {egg({0.085f, 0.08f, 0.08f}, White).at({0, 0.27f, 0.07f}),
                     ball(0.014f, Black).at({0.037f, 0.29f, 0.138f}),
                     ball(0.014f, Black).at({-0.037f, 0.29f, 0.138f}),
                     ball(0.012f, Pink).at({0, 0.262f, 0.148f}),
                     egg({0.03f, 0.025f, 0.02f}, Cream).at({0.022f, 0.245f, 0.135f}),
                     egg({0.03f, 0.025f, 0.02f}, Cream).at({-0.022f, 0.245f, 0.135f})},
                    leftAndRight(leftEar)};
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

} // namespace

std::vector<ObjectRecipe> animals() {
    return {bunny()};
}

} // namespace gallery
