#pragma once

#include "../recipe.h"

namespace gallery {

// The gallery's objects, one function per theme folder.
std::vector<ObjectRecipe> animals();
std::vector<ObjectRecipe> people();
std::vector<ObjectRecipe> buildings();
std::vector<ObjectRecipe> furniture();
std::vector<ObjectRecipe> nature();
std::vector<ObjectRecipe> vehicles();
std::vector<ObjectRecipe> shapes();

// Every object of every theme.
std::vector<ObjectRecipe> allObjects();

} // namespace gallery
