#pragma once

#include "reading/reader_process.h"
#include "scene/channels.h"

#include <osg/Node>
#include <osg/ref_ptr>

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

namespace vessa::core {

class SceneGraph;
struct WholeObject;

// One part of a model file, or its root: what the engine makes an object
// (the root) or a part of it from.
struct ModelPart {
    std::string name;      // as the file names it; the engine makes it a valid name
    int parent = -1;       // index of the parent part; -1 for the root
    ChannelValue position; // relative to the parent, engine frame
    ChannelValue orientation;
    int vertices = 0;
    int faces = 0;
    osg::ref_ptr<osg::Node> shape; // its own geometry, without its parts'
};

// A model file taken apart: parts[0] is the object itself, parents come
// before their children.
struct Model {
    std::string name;
    std::vector<ModelPart> parts;
    std::vector<std::string> files;   // what it named and was read with it, relative to its folder
    std::vector<std::string> missing; // what it named that is not in its folder
};

class ModelError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What store() writes of an engine object: a node, the name it has and the
// index of its parent in the list (-1 for the object itself).
struct StoredPart {
    int node;
    std::string name;
    int parent;
};

// Reads model files (through the reader program: see ReaderProcess) into
// shapes that every object made from the same file shares, and writes
// objects as the engine's own files (.mdl: OpenSceneGraph's binary format,
// one object with its parts as named transforms, textures inside). A file
// read once, or refused once, is read again only when it changed.
//
// Shapes are named by the engine's model references: "" a box one meter on
// each side, "text:<words>" solid letters, "<file>#<part index>" a part of a
// model file ("#0" the object itself).
class ModelLibrary {
public:
    explicit ModelLibrary(ReaderProcess& reader = ReaderProcess::shared());

    std::shared_ptr<const Model> load(const std::string& path); // throws ModelError
    osg::Node* shapeFor(const std::string& model);              // nullptr: draws nothing
    // For a file's object itself ("<file>#0"): how it is drawn whole while
    // small on screen; null for anything else.
    std::shared_ptr<const WholeObject> wholeFor(const std::string& model);
    void store(const SceneGraph& scene, const std::vector<StoredPart>& parts,
               const std::string& path) const; // throws ModelError

private:
    struct Entry {
        FileStamp stamp;
        std::shared_ptr<const Model> model; // null when refused
        std::shared_ptr<const WholeObject> whole;
        std::string failure;
    };
    // The file and the part a model reference names; no file for words or a box.
    static std::optional<std::pair<std::string, size_t>> filePart(const std::string& model);
    ReaderProcess& reader_;
    std::unordered_map<std::string, Entry> read_;
};

} // namespace vessa::core
