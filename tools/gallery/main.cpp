// Makes the gallery of ready-made objects: for each, an object file and a
// thumbnail picture, in a folder per theme.
#include "model.h"
#include "objects/objects.h"
#include "thumbnail.h"

#include <iostream>

namespace {

constexpr int thumbnailSize = 128;

bool make(const gallery::ObjectRecipe& recipe, const std::filesystem::path& objectsFolder) {
    const std::filesystem::path folder = objectsFolder / recipe.folder;
    std::filesystem::create_directories(folder);
    const auto model = gallery::buildModel(recipe);
    if (!gallery::writeModel(*model, folder / (recipe.name + ".mdl"))) {
        return false;
    }
    const auto thumbnail = folder / (recipe.name + ".png");
    if (!gallery::drawThumbnail(*model, thumbnailSize).save(QString::fromStdString(thumbnail))) {
        std::cerr << "Could not write " << thumbnail << "\n";
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: " << argv[0] << " OBJECTS_FOLDER\n";
        return 2;
    }
    const std::filesystem::path objectsFolder = argv[1];
    for (const auto& recipe : gallery::allObjects()) {
        if (!make(recipe, objectsFolder)) {
            return 1;
        }
    }
    return 0;
}
