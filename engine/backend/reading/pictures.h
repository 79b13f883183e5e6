#pragma once

#include "reading/description.h"

#include <osg/Image>

#include <filesystem>
#include <optional>
#include <string_view>

namespace vessa::core {

// Pictures for the reader program's answers, read by OpenSceneGraph's
// picture readers. A picture that can't be read, or is bigger than
// kMaxTextureSide, is nullopt: its shape is drawn without it.
std::optional<TextureDescription> describePicture(const osg::Image& picture);
std::optional<TextureDescription> readPictureFile(const std::filesystem::path& file);
// A picture held inside a model file: its bytes, and the kind its file
// says they are ("png", "jpg"; empty when it says nothing).
std::optional<TextureDescription> readPictureBytes(std::string_view bytes, std::string_view kind);

// Loads the picture readers, once, before the first reading.
void preparePictureReaders();

} // namespace vessa::core
