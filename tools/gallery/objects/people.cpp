#include "objects.h"
namespace gallery {
std::vector<ObjectRecipe> people() {
    return {};
}
} // namespace gallery
