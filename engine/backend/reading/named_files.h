#pragma once

#include <osgDB/Callbacks>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vessa::core {

// The folder of a model file, where everything the model names (materials,
// pictures, buffers) is looked for: there and in the folders in it, never
// elsewhere, and never on the network. Names written on another computer
// are found as far as they can be: back-slashes are folder marks, letters
// match whatever their case, and a name that leads out of the folder (an
// absolute path, "../") is looked for by its last parts inside it. Each
// file found and each name not found are kept: a saved world copies the
// first with the model, and the user is told of the others. Used by the
// reader program only.
class ModelFolder {
public:
    explicit ModelFolder(const std::string& modelFile);

    // The file name names, kept as found or as missing.
    std::optional<std::filesystem::path> find(const std::string& name);
    // The same, keeping nothing.
    std::optional<std::filesystem::path> locate(const std::string& name) const;

    // Paths relative to the folder, with "/" between folders; each once.
    const std::vector<std::string>& found() const { return found_; }
    // Names as the model gives them; each once.
    const std::vector<std::string>& missing() const { return missing_; }

private:
    std::optional<std::filesystem::path> inFolder(const std::vector<std::string>& parts) const;

    std::filesystem::path folder_;
    std::filesystem::path model_;
    std::vector<std::string> found_;
    std::vector<std::string> missing_;
};

// What OpenSceneGraph's binary format may read besides its own file: the
// pictures it names, from the model's folder (see ModelFolder). No other
// models, archives, scripts or other formats of OpenSceneGraph (some of
// which start programs).
class FilesBesideTheModel : public osgDB::ReadFileCallback {
public:
    using Result = osgDB::ReaderWriter::ReadResult;

    explicit FilesBesideTheModel(ModelFolder& folder) : folder_(folder) {}

    Result readImage(const std::string& name, const osgDB::Options* options) override;
    Result readNode(const std::string&, const osgDB::Options*) override;
    Result openArchive(const std::string&, osgDB::ReaderWriter::ArchiveStatus, unsigned int,
                       const osgDB::Options*) override;
    Result readObject(const std::string&, const osgDB::Options*) override;
    Result readHeightField(const std::string&, const osgDB::Options*) override;
    Result readShader(const std::string&, const osgDB::Options*) override;
    Result readScript(const std::string&, const osgDB::Options*) override;

private:
    ModelFolder& folder_;
};

} // namespace vessa::core
