#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace vessa::core {

// The kinds of object file the reader program reads, by extension in lower
// case: the engine's own first, then those of other programs.
constexpr std::array<std::string_view, 9> kModelFormats = {"mdl", "gltf", "glb", "fbx", "dae",
                                                           "obj", "3ds",  "ply", "stl"};
// The pictures an object file may name.
constexpr std::array<std::string_view, 12> kPictureFormats = {
    "png", "jpg", "jpeg", "bmp", "tga", "gif", "rgb", "rgba", "sgi", "tif", "tiff", "dds"};

// Text with its ASCII capitals made small.
std::string lowerCase(std::string text);
// The extension of path without its dot, in lower case.
std::string lowerExtension(const std::string& path);

template <std::size_t N>
bool oneOf(const std::array<std::string_view, N>& formats, std::string_view ext) {
    return std::find(formats.begin(), formats.end(), ext) != formats.end();
}

// The model kinds as a person reads them: ".mdl, .gltf, ... or .stl".
std::string modelFormatsInWords();

} // namespace vessa::core
