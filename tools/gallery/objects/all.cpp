#include "objects.h"

namespace gallery {

std::vector<ObjectRecipe> allObjects() {
    std::vector<ObjectRecipe> all;
    for (auto theme : {animals, people, buildings, furniture, nature, vehicles, shapes}) {
        append(all, theme());
    }
    return all;
}

} // namespace gallery
