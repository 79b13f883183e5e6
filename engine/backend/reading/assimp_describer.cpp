#include "reading/assimp_describer.h"

#include "reading/budgeted_buffer.h"
#include "reading/formats.h"
#include "reading/pictures.h"

#include <assimp/GltfMaterial.h>
#include <assimp/IOStream.hpp>
#include <assimp/IOSystem.hpp>
#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <numbers>
#include <unordered_set>

namespace vessa::core {

namespace {

namespace fs = std::filesystem;

constexpr unsigned kSteps =
    aiProcess_Triangulate | aiProcess_GenSmoothNormals | aiProcess_ValidateDataStructure;
// Normals made for a file without them keep edges sharper than this.
constexpr float kSmoothestEdgeDegrees = 80.0f;

// Formats whose pieces have no pivots of their own: a piece turns about its
// middle. (Their pieces are their groups and meshes.)
constexpr std::array<std::string_view, 4> kWithoutPivots = {"obj", "3ds", "stl", "ply"};
// Formats that stand on z, which Assimp leaves standing there.
constexpr std::array<std::string_view, 1> kStandingOnZ = {"stl"};

// A file's bytes for Assimp, with a budget of reading (BudgetedBuffer).
class BudgetedStream : public Assimp::IOStream {
public:
    explicit BudgetedStream(std::vector<char> bytes)
        : size_(bytes.size()), buffer_(std::move(bytes), readingBudget(size_)) {}

    size_t Read(void* to, size_t size, size_t count) override {
        const auto most = static_cast<size_t>(std::numeric_limits<std::streamsize>::max());
        if (size == 0 || count > most / size)
            return 0;
        const auto got = static_cast<size_t>(
            buffer_.sgetn(static_cast<char*>(to), static_cast<std::streamsize>(size * count)));
        at_ += got;
        return got / size;
    }
    size_t Write(const void*, size_t, size_t) override { return 0; }
    aiReturn Seek(size_t offset, aiOrigin origin) override {
        const auto from = origin == aiOrigin_SET   ? std::ios_base::beg
                          : origin == aiOrigin_CUR ? std::ios_base::cur
                                                   : std::ios_base::end;
        // From the end the offset is negative, carried in an unsigned number.
        const auto to =
            buffer_.pubseekoff(static_cast<std::streamoff>(offset), from, std::ios_base::in);
        if (to == std::streampos(std::streamoff(-1)))
            return aiReturn_FAILURE;
        at_ = static_cast<size_t>(std::streamoff(to));
        return aiReturn_SUCCESS;
    }
    size_t Tell() const override { return at_; }
    size_t FileSize() const override { return size_; }
    void Flush() override {}

private:
    size_t size_;
    BudgetedBuffer buffer_;
    size_t at_ = 0;
};

// Assimp's way to files: the model's own, and (unless withheld) what it
// names from its folder (ModelFolder). Nothing is written, made or deleted.
class FolderFiles : public Assimp::IOSystem {
public:
    FolderFiles(std::string model, ModelFolder& folder, bool withholdsNamedFiles)
        : model_(std::move(model)), folder_(folder), withholds_(withholdsNamedFiles) {}

    bool Exists(const char* name) const override { return name && named(name); }
    char getOsSeparator() const override { return '/'; }
    Assimp::IOStream* Open(const char* name, const char* mode) override {
        if (!name || !mode || std::string_view(mode).find_first_of("wa+") != std::string::npos)
            return nullptr;
        const auto file = named(name);
        std::ifstream in(file.value_or(fs::path()), std::ios::binary);
        if (!file || !in)
            return nullptr;
        return new BudgetedStream({std::istreambuf_iterator<char>(in), {}});
    }
    void Close(Assimp::IOStream* stream) override { delete stream; }
    bool CreateDirectory(const std::string&) override { return false; }
    bool ChangeDirectory(const std::string&) override { return false; }
    bool DeleteFile(const std::string&) override { return false; }

private:
    std::optional<fs::path> named(const std::string& name) const {
        if (name == model_)
            return fs::path(model_);
        return withholds_ ? std::nullopt : folder_.find(name);
    }

    std::string model_;
    ModelFolder& folder_;
    bool withholds_;
};

bool isFinite(const aiMatrix4x4& m) {
    for (unsigned r = 0; r < 4; ++r) {
        for (unsigned c = 0; c < 4; ++c) {
            if (!std::isfinite(m[r][c]))
                return false;
        }
    }
    return true;
}

// The turn and place of a transform, without its scale.
aiMatrix4x4 rigid(const aiMatrix4x4& m) {
    aiVector3D scale, position;
    aiQuaternion turn;
    m.Decompose(scale, turn, position);
    aiMatrix4x4 result(turn.GetMatrix());
    result.a4 = position.x;
    result.b4 = position.y;
    result.c4 = position.z;
    return isFinite(result) ? result : aiMatrix4x4();
}

aiMatrix4x4 inverse(aiMatrix4x4 m) {
    const aiMatrix4x4 inverted = m.Inverse();
    return isFinite(inverted) ? inverted : aiMatrix4x4();
}

std::array<float, 4> colorOf(const aiColor4D& c) {
    return {sensible(c.r, 1), sensible(c.g, 1), sensible(c.b, 1), sensible(c.a, 1)};
}

// "%20" and the like in a name written as an address (glTF's).
std::string percentDecoded(const std::string& name) {
    std::string text;
    for (size_t i = 0; i < name.size(); ++i) {
        if (name[i] == '%' && i + 2 < name.size() &&
            std::isxdigit(static_cast<unsigned char>(name[i + 1])) &&
            std::isxdigit(static_cast<unsigned char>(name[i + 2]))) {
            text += static_cast<char>(std::stoi(name.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            text += name[i];
        }
    }
    return text;
}

// A scene as Assimp reads it, made into parts: one for each node of the
// file that holds surfaces or has such nodes below it, keeping the file's
// tree and names. A node without surfaces that holds only one such node is
// one part with it (the inner name kept), so a mesh inside a group inside
// the file's top is not three parts, and cameras, lights and other nodes
// without surfaces make no parts. In .obj files the groups of one name are
// one part, however the file spreads them.
//
// Each part gets a frame in the object's space: the file's own pivot
// without its scale, or, in formats without pivots, its middle. Its
// meshes are given in that frame, so scales, mirrors and skews of the file
// are kept in the shapes.
class SceneDescriber {
public:
    SceneDescriber(const aiScene& scene, const std::string& ext, ModelFolder& folder)
        : scene_(scene), folder_(folder), pivotless_(oneOf(kWithoutPivots, ext)),
          mergesNamesakes_(ext == "obj") {
        aiMatrix4x4 up, unit;
        if (oneOf(kStandingOnZ, ext))
            aiMatrix4x4::RotationX(-std::numbers::pi_v<float> / 2, up);
        // An .fbx file says how many centimeters its unit is.
        float centimeters = 1.0f;
        if (ext == "fbx" && scene.mMetaData &&
            scene.mMetaData->Get("UnitScaleFactor", centimeters) && std::isfinite(centimeters) &&
            centimeters > 0)
            aiMatrix4x4::Scaling(aiVector3D(centimeters / 100.0f), unit);
        top_ = up * unit * scene.mRootNode->mTransformation;
        fromTop_ = inverse(top_);
        keep(*scene.mRootNode);
    }

    ModelDescription describe() {
        const aiNode* object = scene_.mRootNode;
        aiMatrix4x4 world = top_;
        while (const aiNode* only = onlyPiece(*object)) {
            object = only;
            world = world * object->mTransformation;
        }
        parts_.push_back({"", -1, {{object, world}}, false, aiMatrix4x4()});
        addPartsBelow(0);
        ModelDescription model;
        for (Part& part : parts_) {
            if (part.parent >= 0)
                placeFrame(part);
        }
        for (const Part& part : parts_)
            model.parts.push_back(describePart(part));
        model.textures = std::move(textures_);
        return model;
    }

private:
    struct Source {
        const aiNode* node;
        aiMatrix4x4 world; // in the object's space
    };
    struct Part {
        std::string name;
        int parent;
        std::vector<Source> sources;
        bool turnsAboutItsMiddle;
        aiMatrix4x4 frame; // in the object's space, without scale
    };

    bool hasSurfaces(const aiNode& node) const {
        for (unsigned i = 0; i < node.mNumMeshes; ++i) {
            if (scene_.mMeshes[node.mMeshes[i]]->mPrimitiveTypes & aiPrimitiveType_TRIANGLE)
                return true;
        }
        return false;
    }

    // Marks the nodes that hold surfaces or have such nodes below them.
    bool keep(const aiNode& node) {
        bool kept = hasSurfaces(node);
        for (unsigned i = 0; i < node.mNumChildren; ++i)
            kept = keep(*node.mChildren[i]) || kept;
        if (kept)
            kept_.insert(&node);
        return kept;
    }

    // The one kept child of a node without surfaces, or null.
    const aiNode* onlyPiece(const aiNode& node) const {
        if (hasSurfaces(node))
            return nullptr;
        const aiNode* only = nullptr;
        for (unsigned i = 0; i < node.mNumChildren; ++i) {
            if (!kept_.contains(node.mChildren[i]))
                continue;
            if (only)
                return nullptr;
            only = node.mChildren[i];
        }
        return only;
    }

    void addPartsBelow(int index) {
        const std::vector<Source> sources = parts_[static_cast<size_t>(index)].sources;
        std::map<std::string, int> byName;
        const size_t first = parts_.size();
        for (const Source& source : sources) {
            for (unsigned i = 0; i < source.node->mNumChildren; ++i) {
                if (kept_.contains(source.node->mChildren[i]))
                    addPart(*source.node->mChildren[i], source.world, index, byName);
            }
        }
        for (size_t child = first, end = parts_.size(); child < end; ++child)
            addPartsBelow(static_cast<int>(child));
    }

    void addPart(const aiNode& start, const aiMatrix4x4& parentWorld, int parent,
                 std::map<std::string, int>& byName) {
        const aiNode* node = &start;
        aiMatrix4x4 world = parentWorld * node->mTransformation;
        bool still = node->mTransformation.IsIdentity();
        std::string name = node->mName.C_Str();
        while (const aiNode* only = onlyPiece(*node)) {
            node = only;
            world = world * node->mTransformation;
            still = still && node->mTransformation.IsIdentity();
            if (node->mName.length > 0)
                name = node->mName.C_Str();
        }
        if (mergesNamesakes_) {
            const auto [found, added] = byName.try_emplace(name, static_cast<int>(parts_.size()));
            if (!added) {
                parts_[static_cast<size_t>(found->second)].sources.push_back({node, world});
                return;
            }
        }
        parts_.push_back({name, parent, {{node, world}}, pivotless_ && still, aiMatrix4x4()});
    }

    void placeFrame(Part& part) const {
        part.frame = rigid(part.sources.front().world * fromTop_);
        if (!part.turnsAboutItsMiddle)
            return;
        aiVector3D low(std::numeric_limits<float>::max()), high(-low);
        for (const Source& source : part.sources) {
            forEachSurface(*source.node, [&](const aiMesh& mesh) {
                for (unsigned v = 0; v < mesh.mNumVertices; ++v) {
                    const aiVector3D at = source.world * mesh.mVertices[v];
                    low = aiVector3D(std::min(low.x, at.x), std::min(low.y, at.y),
                                     std::min(low.z, at.z));
                    high = aiVector3D(std::max(high.x, at.x), std::max(high.y, at.y),
                                      std::max(high.z, at.z));
                }
            });
        }
        const aiVector3D middle = (low + high) * 0.5f;
        if (low.x <= high.x && std::isfinite(middle.x + middle.y + middle.z)) {
            part.frame.a4 = middle.x;
            part.frame.b4 = middle.y;
            part.frame.c4 = middle.z;
        }
    }

    template <typename Visit> void forEachSurface(const aiNode& node, const Visit& visit) const {
        for (unsigned i = 0; i < node.mNumMeshes; ++i) {
            const aiMesh& mesh = *scene_.mMeshes[node.mMeshes[i]];
            if (mesh.mPrimitiveTypes & aiPrimitiveType_TRIANGLE)
                visit(mesh);
        }
    }

    PartDescription describePart(const Part& part) {
        PartDescription description;
        description.name = part.name;
        description.parent = part.parent;
        if (part.parent >= 0) {
            const aiMatrix4x4 place =
                inverse(parts_[static_cast<size_t>(part.parent)].frame) * part.frame;
            aiVector3D scale, position;
            aiQuaternion turn;
            place.Decompose(scale, turn, position);
            description.position = {position.x, position.y, position.z};
            if (std::isfinite(turn.x + turn.y + turn.z + turn.w))
                description.rotation = {turn.x, turn.y, turn.z, turn.w};
        }
        const aiMatrix4x4 toPart = inverse(part.frame);
        for (const Source& source : part.sources) {
            forEachSurface(*source.node, [&](const aiMesh& mesh) {
                if (auto described = describeMesh(mesh, toPart * source.world))
                    description.meshes.push_back(std::move(*described));
            });
        }
        return description;
    }

    std::optional<MeshDescription> describeMesh(const aiMesh& mesh, const aiMatrix4x4& place) {
        MeshDescription out;
        for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
            const aiFace& face = mesh.mFaces[f];
            if (face.mNumIndices == 3 && face.mIndices[0] < mesh.mNumVertices &&
                face.mIndices[1] < mesh.mNumVertices && face.mIndices[2] < mesh.mNumVertices)
                out.triangles.insert(out.triangles.end(),
                                     {face.mIndices[0], face.mIndices[1], face.mIndices[2]});
        }
        if (out.triangles.empty())
            return std::nullopt;
        for (unsigned v = 0; v < mesh.mNumVertices; ++v) {
            const aiVector3D at = place * mesh.mVertices[v];
            for (float x : {at.x, at.y, at.z}) {
                if (!std::isfinite(x) || std::abs(x) > kMaxCoordinate)
                    return std::nullopt;
                out.positions.push_back(x);
            }
        }
        if (mesh.mNormals) {
            const aiMatrix3x3 turn = aiMatrix3x3(place).Inverse().Transpose();
            for (unsigned v = 0; v < mesh.mNumVertices; ++v) {
                const aiVector3D normal = (turn * mesh.mNormals[v]).NormalizeSafe();
                out.normals.insert(out.normals.end(), {normal.x, normal.y, normal.z});
            }
            if (!std::all_of(out.normals.begin(), out.normals.end(),
                             [](float x) { return std::isfinite(x); }))
                out.normals.clear();
        }
        if (const aiColor4D* colors = mesh.mColors[0]) {
            for (unsigned v = 0; v < mesh.mNumVertices; ++v) {
                const auto c = colorOf(colors[v]);
                out.colors.insert(out.colors.end(), c.begin(), c.end());
            }
        }
        if (const aiVector3D* coords = mesh.mTextureCoords[0]) {
            for (unsigned v = 0; v < mesh.mNumVertices; ++v)
                out.texCoords.insert(out.texCoords.end(), {coords[v].x, coords[v].y});
            if (!std::all_of(out.texCoords.begin(), out.texCoords.end(),
                             [](float x) { return std::isfinite(x) && std::abs(x) < 1e6f; }))
                out.texCoords.clear();
        }
        out.look = lookOf(mesh.mMaterialIndex);
        out.look.litVertexColors = !out.colors.empty();
        return out;
    }

    LookDescription lookOf(unsigned index) {
        LookDescription look;
        if (index >= scene_.mNumMaterials)
            return look;
        const aiMaterial& material = *scene_.mMaterials[index];
        aiColor4D diffuse(1, 1, 1, 1), ambient, specular(0, 0, 0, 1), emission(0, 0, 0, 1);
        if (material.Get(AI_MATKEY_COLOR_DIFFUSE, diffuse) != aiReturn_SUCCESS)
            material.Get(AI_MATKEY_BASE_COLOR, diffuse);
        float opacity = 1.0f, shininess = 0.0f;
        material.Get(AI_MATKEY_OPACITY, opacity);
        diffuse.a = std::min(diffuse.a, sensible(opacity, 1));
        if (material.Get(AI_MATKEY_COLOR_AMBIENT, ambient) != aiReturn_SUCCESS)
            ambient = diffuse;
        material.Get(AI_MATKEY_COLOR_SPECULAR, specular);
        material.Get(AI_MATKEY_COLOR_EMISSIVE, emission);
        material.Get(AI_MATKEY_SHININESS, shininess);
        aiString alphaMode;
        material.Get(AI_MATKEY_GLTF_ALPHAMODE, alphaMode);
        look.hasMaterial = true;
        look.diffuse = colorOf(diffuse);
        look.ambient = colorOf(ambient);
        look.ambient[3] = look.diffuse[3];
        look.specular = colorOf(specular);
        look.emission = colorOf(emission);
        look.shininess = sensible(shininess, 128);
        look.blended = look.diffuse[3] < 1.0f || std::string_view(alphaMode.C_Str()) == "BLEND";
        aiString picture;
        if (material.GetTexture(aiTextureType_DIFFUSE, 0, &picture) == aiReturn_SUCCESS ||
            material.GetTexture(aiTextureType_BASE_COLOR, 0, &picture) == aiReturn_SUCCESS)
            look.texture = textureOf(picture.C_Str());
        return look;
    }

    // Pictures held in the file or named by it; one that can't be read, or
    // is too big, is left out and its shapes drawn without it.
    std::int32_t textureOf(const std::string& name) {
        const auto [found, added] = textureIndex_.try_emplace(name, -1);
        if (!added)
            return found->second;
        std::optional<TextureDescription> picture;
        if (const aiTexture* held = scene_.GetEmbeddedTexture(name.c_str())) {
            if (held->mHeight == 0 && held->pcData)
                picture = readPictureBytes(
                    std::string_view(reinterpret_cast<const char*>(held->pcData), held->mWidth),
                    lowerCase(held->achFormatHint));
        } else if (const auto file = findPicture(name)) {
            picture = readPictureFile(*file);
        }
        if (picture) {
            textures_.push_back(std::move(*picture));
            found->second = static_cast<std::int32_t>(textures_.size()) - 1;
        }
        return found->second;
    }

    std::optional<fs::path> findPicture(const std::string& name) {
        std::string wanted = name;
        if (const std::string decoded = percentDecoded(name);
            decoded != name && !folder_.locate(name) && folder_.locate(decoded))
            wanted = decoded;
        if (!oneOf(kPictureFormats, lowerExtension(wanted)))
            return std::nullopt;
        return folder_.find(wanted);
    }

    const aiScene& scene_;
    ModelFolder& folder_;
    bool pivotless_;
    bool mergesNamesakes_;
    aiMatrix4x4 top_;     // the file's space to the object's
    aiMatrix4x4 fromTop_; // and back
    std::unordered_set<const aiNode*> kept_;
    std::vector<Part> parts_;
    std::vector<TextureDescription> textures_;
    std::map<std::string, std::int32_t> textureIndex_;
};

} // namespace

std::optional<ModelDescription> describeWithAssimp(const std::string& path, ModelFolder& folder) {
    // A damaged material is no reason to refuse its object: a file that
    // can't be read with what it names is read again without it.
    for (const bool withholdsNamedFiles : {false, true}) {
        Assimp::Importer importer;
        importer.SetIOHandler(new FolderFiles(path, folder, withholdsNamedFiles));
        importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
        importer.SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, kSmoothestEdgeDegrees);
        const aiScene* scene = importer.ReadFile(path, kSteps);
        if (scene && scene->mRootNode)
            return SceneDescriber(*scene, lowerExtension(path), folder).describe();
        if (folder.found().empty())
            break;
    }
    return std::nullopt;
}

} // namespace vessa::core
