#include "reading/pictures.h"

#include "reading/formats.h"

#include <osgDB/Registry>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

namespace vessa::core {

namespace {

osg::ref_ptr<osg::Image> readImage(std::istream& in, std::string_view kind) {
    osgDB::ReaderWriter* reader =
        oneOf(kPictureFormats, kind)
            ? osgDB::Registry::instance()->getReaderWriterForExtension(std::string(kind))
            : nullptr;
    return reader ? reader->readImage(in).getImage() : nullptr;
}

// What the first bytes of a picture say it is, for pictures whose file
// doesn't say.
std::string_view kindOf(std::string_view bytes) {
    if (bytes.starts_with("\x89PNG"))
        return "png";
    if (bytes.starts_with("\xFF\xD8"))
        return "jpg";
    return {};
}

} // namespace

std::optional<TextureDescription> describePicture(const osg::Image& picture) {
    const int width = picture.s(), height = picture.t();
    if (!picture.data() || width < 1 || height < 1 || picture.r() != 1 ||
        width > static_cast<int>(kMaxTextureSide) || height > static_cast<int>(kMaxTextureSide))
        return std::nullopt;
    TextureDescription texture;
    texture.width = static_cast<std::uint32_t>(width);
    texture.height = static_cast<std::uint32_t>(height);
    texture.rgba.reserve(size_t{4} * texture.width * texture.height);
    for (int t = 0; t < height; ++t) {
        for (int s = 0; s < width; ++s) {
            const osg::Vec4 c =
                picture.getColor(static_cast<unsigned>(s), static_cast<unsigned>(t));
            for (int k = 0; k < 4; ++k)
                texture.rgba.push_back(
                    static_cast<std::uint8_t>(std::clamp(c[k], 0.0f, 1.0f) * 255.0f + 0.5f));
        }
    }
    return texture;
}

std::optional<TextureDescription> readPictureFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    osg::ref_ptr<osg::Image> image = in ? readImage(in, lowerExtension(file.string())) : nullptr;
    return image ? describePicture(*image) : std::nullopt;
}

std::optional<TextureDescription> readPictureBytes(std::string_view bytes, std::string_view kind) {
    std::istringstream in{std::string(bytes)};
    osg::ref_ptr<osg::Image> image = readImage(in, kind.empty() ? kindOf(bytes) : kind);
    return image ? describePicture(*image) : std::nullopt;
}

void preparePictureReaders() {
    for (std::string_view ext : kPictureFormats)
        osgDB::Registry::instance()->getReaderWriterForExtension(std::string(ext));
}

} // namespace vessa::core
