#pragma once

#include <osgDB/Callbacks>

#include <array>
#include <filesystem>
#include <optional>
#include <string>

namespace vessa::core {

// Objects come as these; their pictures as the others. Used by the reader
// program only.
constexpr std::array kModelFormats = {"mdl", "obj", "3ds"};
constexpr std::array kPictureFormats = {"png", "jpg",  "jpeg", "bmp", "tga",  "gif",
                                        "rgb", "rgba", "sgi",  "tif", "tiff", "dds"};

// The extension of path without its dot, in lower case.
std::string lowerExtension(const std::string& path);

template <std::size_t N>
bool oneOf(const std::array<const char*, N>& formats, const std::string& ext) {
    for (const char* format : formats) {
        if (ext == format)
            return true;
    }
    return false;
}

// What a model file names (its pictures, say) is read only from the
// model's own folder and the folders in it, and only as a model or a
// picture: no addresses on the network, no files elsewhere on the computer,
// no archives, scripts or other formats of OpenSceneGraph (some of which
// start programs).
class FilesBesideTheModel : public osgDB::ReadFileCallback {
public:
    using Result = osgDB::ReaderWriter::ReadResult;

    explicit FilesBesideTheModel(const std::filesystem::path& folder);

    Result readNode(const std::string& name, const osgDB::Options* options) override;
    Result readImage(const std::string& name, const osgDB::Options* options) override;
    Result openArchive(const std::string&, osgDB::ReaderWriter::ArchiveStatus, unsigned int,
                       const osgDB::Options*) override;
    Result readObject(const std::string&, const osgDB::Options*) override;
    Result readHeightField(const std::string&, const osgDB::Options*) override;
    Result readShader(const std::string&, const osgDB::Options*) override;
    Result readScript(const std::string&, const osgDB::Options*) override;

private:
    // The file name names within the folder, or nullopt.
    std::optional<std::string> inFolder(const std::string& name) const;

    std::filesystem::path folder_;
};

} // namespace vessa::core
