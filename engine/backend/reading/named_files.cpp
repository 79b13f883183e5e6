#include "reading/named_files.h"

#include "reading/formats.h"

#include <algorithm>

namespace vessa::core {

namespace {

namespace fs = std::filesystem;

// The last parts of a name tried inside the folder, longest first.
constexpr std::size_t kMostPartsTried = 8;

bool isWithin(const fs::path& folder, const fs::path& file) {
    const auto [rest, within] =
        std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
    return rest == folder.end();
}

// Anything but a folder: a pipe that nobody writes to stalls its reading
// until the time limit, as a reader going round in circles would.
bool isFile(const fs::path& path) {
    std::error_code failed;
    return fs::exists(path, failed) && !fs::is_directory(path, failed);
}

// The parts of a name between its folder marks, "." left out.
std::vector<std::string> partsOf(const std::string& name) {
    std::string text = name;
    std::replace(text.begin(), text.end(), '\\', '/');
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find('/', start), text.size());
        std::string part = text.substr(start, end - start);
        if (!part.empty() && part != ".")
            parts.push_back(std::move(part));
        start = end + 1;
    }
    return parts;
}

} // namespace

ModelFolder::ModelFolder(const std::string& modelFile) {
    std::error_code failed;
    model_ = fs::weakly_canonical(fs::absolute(modelFile, failed), failed);
    folder_ = model_.parent_path();
}

std::optional<fs::path> ModelFolder::locate(const std::string& name) const {
    if (folder_.empty() || name.empty() || name.find("://") != std::string::npos)
        return std::nullopt;
    std::error_code failed;
    const fs::path direct = fs::weakly_canonical(folder_ / name, failed);
    if (!failed && isWithin(folder_, direct) && isFile(direct))
        return direct;
    const std::vector<std::string> parts = partsOf(name);
    const std::size_t first = parts.size() > kMostPartsTried ? parts.size() - kMostPartsTried : 0;
    for (std::size_t from = first; from < parts.size(); ++from) {
        const std::vector<std::string> tail(parts.begin() + static_cast<std::ptrdiff_t>(from),
                                            parts.end());
        if (std::find(tail.begin(), tail.end(), "..") != tail.end())
            continue;
        if (auto file = inFolder(tail))
            return file;
    }
    return std::nullopt;
}

std::optional<fs::path> ModelFolder::find(const std::string& name) {
    const auto file = locate(name);
    if (!file) {
        if (std::find(missing_.begin(), missing_.end(), name) == missing_.end())
            missing_.push_back(name);
        return std::nullopt;
    }
    const std::string relative = file->lexically_relative(folder_).generic_string();
    if (*file != model_ && std::find(found_.begin(), found_.end(), relative) == found_.end())
        found_.push_back(relative);
    return file;
}

std::optional<fs::path> ModelFolder::inFolder(const std::vector<std::string>& parts) const {
    fs::path at = folder_;
    std::error_code failed;
    for (const std::string& part : parts) {
        if (fs::exists(at / part, failed)) {
            at /= part;
            continue;
        }
        const std::string wanted = lowerCase(part);
        const auto found =
            std::find_if(fs::directory_iterator(at, failed), fs::directory_iterator(),
                         [&wanted](const fs::directory_entry& e) {
                             return lowerCase(e.path().filename().string()) == wanted;
                         });
        if (failed || found == fs::directory_iterator())
            return std::nullopt;
        at = found->path();
    }
    const fs::path file = fs::weakly_canonical(at, failed);
    if (failed || !isWithin(folder_, file) || !isFile(file))
        return std::nullopt;
    return file;
}

FilesBesideTheModel::Result FilesBesideTheModel::readImage(const std::string& name,
                                                           const osgDB::Options* options) {
    if (!oneOf(kPictureFormats, lowerExtension(name)))
        return Result::FILE_NOT_HANDLED;
    const auto file = folder_.find(name);
    if (!file)
        return Result::FILE_NOT_FOUND;
    return ReadFileCallback::readImage(file->string(), options);
}

FilesBesideTheModel::Result FilesBesideTheModel::readNode(const std::string&,
                                                          const osgDB::Options*) {
    return Result::FILE_NOT_HANDLED;
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

} // namespace vessa::core
