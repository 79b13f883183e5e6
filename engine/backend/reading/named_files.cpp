#include "reading/named_files.h"

#include <algorithm>
#include <cctype>

namespace vessa::core {

std::string lowerExtension(const std::string& path) {
    std::string ext = std::filesystem::path(path).extension().string();
    if (!ext.empty())
        ext.erase(0, 1);
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext;
}

FilesBesideTheModel::FilesBesideTheModel(const std::filesystem::path& folder) {
    std::error_code failed;
    folder_ = std::filesystem::weakly_canonical(std::filesystem::absolute(folder, failed), failed);
}

FilesBesideTheModel::Result FilesBesideTheModel::readNode(const std::string& name,
                                                          const osgDB::Options* options) {
    const auto file = inFolder(name);
    if (!file || !oneOf(kModelFormats, lowerExtension(name)))
        return Result::FILE_NOT_HANDLED;
    return ReadFileCallback::readNode(*file, options);
}

FilesBesideTheModel::Result FilesBesideTheModel::readImage(const std::string& name,
                                                           const osgDB::Options* options) {
    const auto file = inFolder(name);
    if (!file || !oneOf(kPictureFormats, lowerExtension(name)))
        return Result::FILE_NOT_HANDLED;
    return ReadFileCallback::readImage(*file, options);
}

FilesBesideTheModel::Result FilesBesideTheModel::openArchive(const std::string&,
                                                             osgDB::ReaderWriter::ArchiveStatus,
                                                             unsigned int, const osgDB::Options*) {
    return Result::FILE_NOT_HANDLED;
}

FilesBesideTheModel::Result FilesBesideTheModel::readObject(const std::string&,
                                                            const osgDB::Options*) {
    return Result::FILE_NOT_HANDLED;
}

FilesBesideTheModel::Result FilesBesideTheModel::readHeightField(const std::string&,
                                                                 const osgDB::Options*) {
    return Result::FILE_NOT_HANDLED;
}

FilesBesideTheModel::Result FilesBesideTheModel::readShader(const std::string&,
                                                            const osgDB::Options*) {
    return Result::FILE_NOT_HANDLED;
}

FilesBesideTheModel::Result FilesBesideTheModel::readScript(const std::string&,
                                                            const osgDB::Options*) {
    return Result::FILE_NOT_HANDLED;
}

std::optional<std::string> FilesBesideTheModel::inFolder(const std::string& name) const {
    if (folder_.empty() || name.find("://") != std::string::npos)
        return std::nullopt;
    std::error_code failed;
    // A name of its own folder (absolute) stays one: it must lead here too.
    const auto file = std::filesystem::weakly_canonical(folder_ / name, failed);
    if (failed)
        return std::nullopt;
    const auto [rest, within] =
        std::mismatch(folder_.begin(), folder_.end(), file.begin(), file.end());
    if (rest != folder_.end())
        return std::nullopt;
    return file.string();
}

} // namespace vessa::core
