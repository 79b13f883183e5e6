#include "objects.h"
namespace gallery {
std::vector<ObjectRecipe> shapes() {
    return {};
}
} // namespace gallery
