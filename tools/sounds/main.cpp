// Makes the interface sounds and the sounds offered for worlds, as WAVE files.
#include "synth.h"
#include "wav.h"

#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: " << argv[0] << " SOUNDS_FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    auto all = sounds::interfaceSounds();
    for (auto& recipe : sounds::sceneSounds()) {
        all.push_back(std::move(recipe));
    }
    for (const auto& recipe : all) {
        const auto file = folder / (recipe.name + ".wav");
        if (!sounds::writeWav(file, sounds::render(recipe.voices, recipe.peak),
                              sounds::sampleRate)) {
            std::cerr << "Could not write " << file << "\n";
            return 1;
        }
    }
    return 0;
}
