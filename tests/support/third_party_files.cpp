#include "support/third_party_files.h"

#include <osg/Image>
#include <osgDB/Registry>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vessa::samples {

namespace {

using Vec3 = std::array<float, 3>;

// One box as a mesh: four corners on each side with its normal and
// picture places (the picture upright on the front), two triangles a side.
struct Mesh {
    std::vector<Vec3> points;
    std::vector<Vec3> normals;
    std::vector<std::array<float, 2>> coords; // t = 0 at the bottom of the picture
    std::vector<std::uint32_t> triangles;
};

Mesh boxMesh(const Vec3& middle, const Vec3& size, float scale) {
    // Each side: its normal, then across and up on it, so that across x up = normal.
    static const std::array<std::array<Vec3, 3>, 6> sides = {{
        {{{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}},
        {{{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}}},
        {{{0, 1, 0}, {1, 0, 0}, {0, 0, -1}}},
        {{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}},
        {{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}},
        {{{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}}},
    }};
    Mesh mesh;
    for (const auto& [normal, across, up] : sides) {
        const auto first = static_cast<std::uint32_t>(mesh.points.size());
        for (const auto& [s, t] : {std::array<float, 2>{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
            Vec3 point;
            for (int k = 0; k < 3; ++k)
                point[k] =
                    (middle[k] +
                     size[k] / 2 * (normal[k] + (2 * s - 1) * across[k] + (2 * t - 1) * up[k])) *
                    scale;
            mesh.points.push_back(point);
            mesh.normals.push_back(normal);
            mesh.coords.push_back({s, t});
        }
        for (std::uint32_t corner : {0u, 1u, 2u, 0u, 2u, 3u})
            mesh.triangles.push_back(first + corner);
    }
    return mesh;
}

// Where a piece's middle is from the file's top.
Vec3 middleOf(const ThirdPartyModel& model, int index) {
    Vec3 at{};
    for (int i = index; i >= 0; i = model.pieces[static_cast<size_t>(i)].parent) {
        for (int k = 0; k < 3; ++k)
            at[k] += model.pieces[static_cast<size_t>(i)].at[k];
    }
    return at;
}

// Blue below, yellow above, as a PNG file's bytes.
std::string skinPng() {
    osg::ref_ptr<osg::Image> picture = new osg::Image;
    picture->allocateImage(8, 8, 1, GL_RGB, GL_UNSIGNED_BYTE);
    for (int t = 0; t < 8; ++t) {
        for (int s = 0; s < 8; ++s) {
            unsigned char* pixel =
                picture->data(static_cast<unsigned>(s), static_cast<unsigned>(t));
            const bool above = t >= 4; // row 0 is the bottom row
            pixel[0] = above ? 255 : 40;
            pixel[1] = above ? 230 : 70;
            pixel[2] = above ? 20 : 230;
        }
    }
    std::ostringstream png;
    osgDB::Registry::instance()->getReaderWriterForExtension("png")->writeImage(*picture, png);
    return png.str();
}

void writeFile(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

void writeSkin(const std::string& folder) {
    writeFile(std::filesystem::path(folder) / "textures" / "skin.png", skinPng());
}

std::string number(float x) {
    std::ostringstream text;
    text.precision(9);
    text << x;
    return text.str();
}

std::string numbers(std::initializer_list<float> xs) {
    std::string text;
    for (float x : xs)
        text += (text.empty() ? "" : " ") + number(x);
    return text;
}

// --- .3ds: chunks of an id and a length, standing on z -------------------------------------

class Chunks {
public:
    template <typename T> void put(T value) {
        bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void text(const std::string& s) { bytes_.append(s.c_str(), s.size() + 1); }
    // A chunk's start; close() writes its length once its content is in.
    size_t open(std::uint16_t id) {
        const size_t at = bytes_.size();
        put(id);
        put(std::uint32_t{0});
        return at;
    }
    void close(size_t at) {
        const auto length = static_cast<std::uint32_t>(bytes_.size() - at);
        std::memcpy(bytes_.data() + at + 2, &length, sizeof length);
    }
    void color(std::uint16_t id, const Vec3& c) {
        const size_t chunk = open(id);
        const size_t rgb = open(0x0011);
        for (float x : c)
            put(static_cast<std::uint8_t>(x * 255.0f + 0.5f));
        close(rgb);
        close(chunk);
    }
    const std::string& bytes() const { return bytes_; }

private:
    std::string bytes_;
};

// y up and z forward in the model; z up and -y forward in a .3ds file.
Vec3 standingOnZ(const Vec3& p) {
    return {p[0], -p[2], p[1]};
}

// --- glTF: a JSON description and a buffer of numbers ---------------------------------------

class GltfWriter {
public:
    explicit GltfWriter(const ThirdPartyModel& model) : model_(model) {}

    // The JSON and the buffer; the picture is held in the buffer or named
    // beside the file, the buffer named by bufferUri unless it is held too.
    std::pair<std::string, std::string> write(bool holdsAll, const std::string& bufferUri) {
        std::string nodes, meshes, materials, top;
        const auto& pieces = model_.pieces;
        for (size_t i = 0; i < pieces.size(); ++i) {
            const Piece& piece = pieces[i];
            const Mesh mesh = boxMesh({}, piece.size, model_.scale);
            std::vector<float> points, normals, coords;
            for (size_t v = 0; v < mesh.points.size(); ++v) {
                points.insert(points.end(), mesh.points[v].begin(), mesh.points[v].end());
                normals.insert(normals.end(), mesh.normals[v].begin(), mesh.normals[v].end());
                // glTF pictures start at their top row
                coords.insert(coords.end(), {mesh.coords[v][0], 1 - mesh.coords[v][1]});
            }
            const int position = accessor(points, "VEC3", true);
            const int normal = accessor(normals, "VEC3", false);
            const int coord = accessor(coords, "VEC2", false);
            const int indices = indexAccessor(mesh.triangles);
            std::string children;
            for (size_t c = 0; c < pieces.size(); ++c) {
                if (pieces[c].parent == static_cast<int>(i))
                    children += (children.empty() ? "" : ",") + std::to_string(c);
            }
            if (piece.parent < 0)
                top += std::to_string(i) + ",";
            nodes += (i ? "," : "") + std::string("{\"name\":\"") + piece.name +
                     "\",\"mesh\":" + std::to_string(i) + ",\"translation\":[" +
                     list({piece.at[0] * model_.scale, piece.at[1] * model_.scale,
                           piece.at[2] * model_.scale}) +
                     "]" + (children.empty() ? "" : ",\"children\":[" + children + "]") + "}";
            meshes += (i ? "," : "") + std::string("{\"primitives\":[{\"attributes\":{") +
                      "\"POSITION\":" + std::to_string(position) +
                      ",\"NORMAL\":" + std::to_string(normal) +
                      ",\"TEXCOORD_0\":" + std::to_string(coord) +
                      "},\"indices\":" + std::to_string(indices) +
                      ",\"material\":" + std::to_string(i) + "}]}";
            materials += (i ? "," : "") +
                         std::string("{\"pbrMetallicRoughness\":{\"baseColorFactor\":[") +
                         list({piece.color[0], piece.color[1], piece.color[2], 1}) +
                         "],\"metallicFactor\":0" +
                         (piece.pictured ? ",\"baseColorTexture\":{\"index\":0}" : "") + "}}";
        }
        const std::string camera = std::to_string(pieces.size());
        nodes += ",{\"name\":\"Camera\",\"camera\":0,\"translation\":[0," + number(model_.scale) +
                 "," + number(6 * model_.scale) + "]}";
        std::string image;
        if (holdsAll) {
            const std::string png = skinPng();
            image = "{\"bufferView\":" + std::to_string(view(png)) + ",\"mimeType\":\"image/png\"}";
        } else {
            image = "{\"uri\":\"textures/skin.png\"}";
        }
        const std::string json =
            "{\"asset\":{\"version\":\"2.0\"},\"scene\":0,\"scenes\":[{\"nodes\":[" + top + camera +
            "]}],\"nodes\":[" + nodes + "],\"meshes\":[" + meshes + "],\"materials\":[" +
            materials +
            "],\"cameras\":[{\"type\":\"perspective\",\"perspective\":{\"yfov\":0.8,"
            "\"znear\":0.1}}],\"textures\":[{\"source\":0}],\"images\":[" +
            image + "],\"buffers\":[{\"byteLength\":" + std::to_string(buffer_.size()) +
            (holdsAll ? "" : ",\"uri\":\"" + bufferUri + "\"") + "}],\"bufferViews\":[" + views_ +
            "],\"accessors\":[" + accessors_ + "]}";
        return {json, buffer_};
    }

private:
    static std::string list(std::initializer_list<float> xs) {
        std::string text;
        for (float x : xs)
            text += (text.empty() ? "" : ",") + number(x);
        return text;
    }

    int view(const std::string& bytes) {
        while (buffer_.size() % 4)
            buffer_ += '\0';
        views_ += (views_.empty() ? "" : ",") + std::string("{\"buffer\":0,\"byteOffset\":") +
                  std::to_string(buffer_.size()) +
                  ",\"byteLength\":" + std::to_string(bytes.size()) + "}";
        buffer_ += bytes;
        return viewCount_++;
    }

    int accessor(const std::vector<float>& values, const std::string& type, bool bounded) {
        const size_t width = type == "VEC3" ? 3 : 2;
        std::string bounds;
        if (bounded) {
            Vec3 low{1e30f, 1e30f, 1e30f}, high{-1e30f, -1e30f, -1e30f};
            for (size_t i = 0; i < values.size(); ++i) {
                low[i % 3] = std::min(low[i % 3], values[i]);
                high[i % 3] = std::max(high[i % 3], values[i]);
            }
            bounds = ",\"min\":[" + list({low[0], low[1], low[2]}) + "],\"max\":[" +
                     list({high[0], high[1], high[2]}) + "]";
        }
        const int at = view(std::string(reinterpret_cast<const char*>(values.data()),
                                        values.size() * sizeof(float)));
        accessors_ += (accessors_.empty() ? "" : ",") + std::string("{\"bufferView\":") +
                      std::to_string(at) +
                      ",\"componentType\":5126,\"count\":" + std::to_string(values.size() / width) +
                      ",\"type\":\"" + type + "\"" + bounds + "}";
        return accessorCount_++;
    }

    int indexAccessor(const std::vector<std::uint32_t>& indices) {
        const int at = view(std::string(reinterpret_cast<const char*>(indices.data()),
                                        indices.size() * sizeof(std::uint32_t)));
        accessors_ += ",{\"bufferView\":" + std::to_string(at) +
                      ",\"componentType\":5125,\"count\":" + std::to_string(indices.size()) +
                      ",\"type\":\"SCALAR\"}";
        return accessorCount_++;
    }

    const ThirdPartyModel& model_;
    std::string buffer_;
    std::string views_;
    std::string accessors_;
    int viewCount_ = 0;
    int accessorCount_ = 0;
};

} // namespace

ThirdPartyModel robot(float scale) {
    ThirdPartyModel model;
    model.scale = scale;
    model.pieces = {
        {"Body", -1, {0, 0.6f, 0}, {1.2f, 1.2f, 0.6f}, {1, 1, 1}, true},
        {"Head", 0, {0, 1.0f, 0}, {0.8f, 0.8f, 0.8f}, {0.75f, 0.75f, 0.75f}, false},
        {"Nose", 1, {0, 0, 0.55f}, {0.3f, 0.3f, 0.3f}, {1, 0, 0}, false},
        {"Tail", 0, {0, 0, -0.5f}, {0.3f, 0.3f, 0.4f}, {1, 0, 1}, false},
    };
    return model;
}

void writeObj(const ThirdPartyModel& model, const std::string& folder, const std::string& name) {
    std::string obj = "mtllib " + name + ".mtl\n", mtl;
    std::uint32_t first = 1;
    for (size_t i = 0; i < model.pieces.size(); ++i) {
        const Piece& piece = model.pieces[i];
        const Mesh mesh = boxMesh(middleOf(model, static_cast<int>(i)), piece.size, model.scale);
        const std::string material = "paint" + std::to_string(i);
        mtl += "newmtl " + material + "\nKa " +
               numbers({piece.color[0], piece.color[1], piece.color[2]}) + "\nKd " +
               numbers({piece.color[0], piece.color[1], piece.color[2]}) + "\n" +
               (piece.pictured ? "map_Kd textures/skin.png\n" : "");
        obj += "g " + piece.name + "\nusemtl " + material + "\n";
        for (size_t v = 0; v < mesh.points.size(); ++v) {
            const auto& [x, y, z] = mesh.points[v];
            const auto& [nx, ny, nz] = mesh.normals[v];
            obj += "v " + numbers({x, y, z}) + "\nvt " +
                   numbers({mesh.coords[v][0], mesh.coords[v][1]}) + "\nvn " +
                   numbers({nx, ny, nz}) + "\n";
        }
        for (size_t t = 0; t < mesh.triangles.size(); t += 3) {
            obj += "f";
            for (size_t k = 0; k < 3; ++k) {
                const std::string index = std::to_string(first + mesh.triangles[t + k]);
                obj += " " + index + "/" + index + "/" + index;
            }
            obj += "\n";
        }
        first += static_cast<std::uint32_t>(mesh.points.size());
    }
    writeFile(std::filesystem::path(folder) / (name + ".obj"), obj);
    writeFile(std::filesystem::path(folder) / (name + ".mtl"), mtl);
    writeSkin(folder);
}

void write3ds(const ThirdPartyModel& model, const std::string& folder, const std::string& name) {
    Chunks file;
    const size_t main = file.open(0x4D4D);
    const size_t version = file.open(0x0002);
    file.put(std::uint32_t{3});
    file.close(version);
    const size_t editor = file.open(0x3D3D);
    for (size_t i = 0; i < model.pieces.size(); ++i) {
        const Piece& piece = model.pieces[i];
        const size_t material = file.open(0xAFFF);
        const size_t materialName = file.open(0xA000);
        file.text("paint" + std::to_string(i));
        file.close(materialName);
        file.color(0xA010, piece.color);
        file.color(0xA020, piece.color);
        if (piece.pictured) {
            const size_t map = file.open(0xA200);
            const size_t mapName = file.open(0xA300);
            file.text("textures/skin.png");
            file.close(mapName);
            file.close(map);
        }
        file.close(material);
    }
    for (size_t i = 0; i < model.pieces.size(); ++i) {
        const Piece& piece = model.pieces[i];
        const Mesh mesh = boxMesh(middleOf(model, static_cast<int>(i)), piece.size, model.scale);
        const size_t object = file.open(0x4000);
        file.text(piece.name);
        const size_t triangles = file.open(0x4100);
        const size_t points = file.open(0x4110);
        file.put(static_cast<std::uint16_t>(mesh.points.size()));
        for (const Vec3& point : mesh.points) {
            for (float x : standingOnZ(point))
                file.put(x);
        }
        file.close(points);
        const size_t coords = file.open(0x4140);
        file.put(static_cast<std::uint16_t>(mesh.coords.size()));
        for (const auto& [s, t] : mesh.coords) {
            file.put(s);
            file.put(t);
        }
        file.close(coords);
        const size_t faces = file.open(0x4120);
        const auto faceCount = static_cast<std::uint16_t>(mesh.triangles.size() / 3);
        file.put(faceCount);
        for (size_t t = 0; t < mesh.triangles.size(); t += 3) {
            for (size_t k = 0; k < 3; ++k)
                file.put(static_cast<std::uint16_t>(mesh.triangles[t + k]));
            file.put(std::uint16_t{7});
        }
        const size_t painted = file.open(0x4130);
        file.text("paint" + std::to_string(i));
        file.put(faceCount);
        for (std::uint16_t f = 0; f < faceCount; ++f)
            file.put(f);
        file.close(painted);
        file.close(faces);
        // Where the piece is, as its program keeps it beside the points.
        const size_t matrix = file.open(0x4160);
        for (float x : {1.f, 0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 0.f, 1.f})
            file.put(x);
        for (float x : standingOnZ(middleOf(model, static_cast<int>(i))))
            file.put(x * model.scale);
        file.close(matrix);
        file.close(triangles);
        file.close(object);
    }
    const size_t cameraObject = file.open(0x4000);
    file.text("Camera01");
    const size_t camera = file.open(0x4700);
    for (float x : standingOnZ({0, model.scale, 6 * model.scale}))
        file.put(x);
    for (float x : standingOnZ({0, model.scale, 0}))
        file.put(x);
    file.put(0.0f);  // bank
    file.put(35.0f); // lens
    file.close(camera);
    file.close(cameraObject);
    file.close(editor);
    // The pieces' tree and their places in it, and the camera's, as the
    // animation keeps them.
    const size_t frames = file.open(0xB000);
    for (size_t i = 0; i <= model.pieces.size(); ++i) {
        const bool isCamera = i == model.pieces.size();
        const Piece piece = isCamera ? Piece{"Camera01", -1, {0, 1, 6}} : model.pieces[i];
        const size_t node = file.open(isCamera ? 0xB003 : 0xB002);
        const size_t id = file.open(0xB030);
        file.put(static_cast<std::uint16_t>(i));
        file.close(id);
        const size_t header = file.open(0xB010);
        file.text(piece.name);
        file.put(std::uint32_t{0}); // flags
        file.put(static_cast<std::uint16_t>(piece.parent < 0 ? 0xFFFF : piece.parent));
        file.close(header);
        const size_t track = file.open(0xB020);
        file.put(std::uint16_t{0});
        file.put(std::uint64_t{0});
        file.put(std::uint32_t{1}); // one key
        file.put(std::uint32_t{0}); // at frame 0
        file.put(std::uint16_t{0});
        for (float x : standingOnZ(piece.at))
            file.put(x * model.scale);
        file.close(track);
        file.close(node);
    }
    file.close(frames);
    file.close(main);
    writeFile(std::filesystem::path(folder) / (name + ".3ds"), file.bytes());
    writeSkin(folder);
}

void writeGltf(const ThirdPartyModel& model, const std::string& folder, const std::string& name) {
    const auto [json, buffer] = GltfWriter(model).write(false, name + ".bin");
    writeFile(std::filesystem::path(folder) / (name + ".gltf"), json);
    writeFile(std::filesystem::path(folder) / (name + ".bin"), buffer);
    writeSkin(folder);
}

void writeGlb(const ThirdPartyModel& model, const std::string& folder, const std::string& name) {
    auto [json, buffer] = GltfWriter(model).write(true, "");
    while (json.size() % 4)
        json += ' ';
    while (buffer.size() % 4)
        buffer += '\0';
    Chunks glb;                         // little-endian numbers, as the chunks of .3ds
    glb.put(std::uint32_t{0x46546C67}); // "glTF"
    glb.put(std::uint32_t{2});
    glb.put(static_cast<std::uint32_t>(12 + 8 + json.size() + 8 + buffer.size()));
    glb.put(static_cast<std::uint32_t>(json.size()));
    glb.put(std::uint32_t{0x4E4F534A}); // "JSON"
    std::string bytes = glb.bytes() + json;
    Chunks binary;
    binary.put(static_cast<std::uint32_t>(buffer.size()));
    binary.put(std::uint32_t{0x004E4942}); // "BIN"
    writeFile(std::filesystem::path(folder) / (name + ".glb"), bytes + binary.bytes() + buffer);
}

void writeFbx(const ThirdPartyModel& model, const std::string& folder, const std::string& name,
              bool inCentimeters) {
    const float unit = inCentimeters ? 100.0f : 1.0f;
    std::string objects, connections;
    const auto list = [](const auto& values) {
        std::string text;
        for (const auto& value : values)
            text += (text.empty() ? "" : ",") + number(static_cast<float>(value));
        return text;
    };
    for (size_t i = 0; i < model.pieces.size(); ++i) {
        const Piece& piece = model.pieces[i];
        const Mesh mesh = boxMesh({}, piece.size, model.scale * unit);
        std::vector<float> points, normals;
        std::vector<int> polygons;
        for (const Vec3& point : mesh.points)
            points.insert(points.end(), point.begin(), point.end());
        for (size_t t = 0; t < mesh.triangles.size(); ++t) {
            const auto index = static_cast<int>(mesh.triangles[t]);
            polygons.push_back(t % 3 == 2 ? -index - 1 : index); // a polygon's last is -1 - it
            normals.insert(normals.end(), mesh.normals[mesh.triangles[t]].begin(),
                           mesh.normals[mesh.triangles[t]].end());
        }
        const std::string geometry = std::to_string(1000 + i), piece_ = std::to_string(2000 + i),
                          paint = std::to_string(3000 + i);
        const Vec3 at = {piece.at[0] * model.scale * unit, piece.at[1] * model.scale * unit,
                         piece.at[2] * model.scale * unit};
        objects += "Geometry: " + geometry + ", \"Geometry::" + piece.name + "\", \"Mesh\" {\n" +
                   "Vertices: *" + std::to_string(points.size()) + " {\na: " + list(points) +
                   "\n}\nPolygonVertexIndex: *" + std::to_string(polygons.size()) +
                   " {\na: " + list(polygons) + "\n}\nGeometryVersion: 124\n" +
                   "LayerElementNormal: 0 {\nVersion: 101\nName: \"\"\n"
                   "MappingInformationType: \"ByPolygonVertex\"\n"
                   "ReferenceInformationType: \"Direct\"\nNormals: *" +
                   std::to_string(normals.size()) + " {\na: " + list(normals) + "\n}\n}\n" +
                   "LayerElementMaterial: 0 {\nVersion: 101\nName: \"\"\n"
                   "MappingInformationType: \"AllSame\"\n"
                   "ReferenceInformationType: \"IndexToDirect\"\nMaterials: *1 {\na: 0\n}\n}\n"
                   "Layer: 0 {\nVersion: 100\nLayerElement:  {\nType: \"LayerElementNormal\"\n"
                   "TypedIndex: 0\n}\nLayerElement:  {\nType: \"LayerElementMaterial\"\n"
                   "TypedIndex: 0\n}\n}\n}\n" +
                   "Model: " + piece_ + ", \"Model::" + piece.name + "\", \"Mesh\" {\n" +
                   "Version: 232\nProperties70:  {\n"
                   "P: \"Lcl Translation\", \"Lcl Translation\", \"\", \"A\"," +
                   list(at) + "\n}\n}\n" + "Material: " + paint + ", \"Material::paint" +
                   std::to_string(i) +
                   "\", \"\" {\nVersion: 102\nShadingModel: \"phong\"\nProperties70:  {\n"
                   "P: \"DiffuseColor\", \"Color\", \"\", \"A\"," +
                   list(piece.color) + "\n}\n}\n";
        const std::string parent = piece.parent < 0 ? "0" : std::to_string(2000 + piece.parent);
        connections += "C: \"OO\"," + piece_ + "," + parent + "\nC: \"OO\"," + geometry + "," +
                       piece_ + "\nC: \"OO\"," + paint + "," + piece_ + "\n";
    }
    writeFile(std::filesystem::path(folder) / (name + ".fbx"),
              "; FBX 7.4.0 project file\nFBXHeaderExtension:  {\nFBXHeaderVersion: 1003\n"
              "FBXVersion: 7400\n}\nGlobalSettings:  {\nVersion: 1000\nProperties70:  {\n"
              "P: \"UpAxis\", \"int\", \"Integer\", \"\",1\n"
              "P: \"FrontAxis\", \"int\", \"Integer\", \"\",2\n"
              "P: \"UnitScaleFactor\", \"double\", \"Number\", \"\"," +
                  number(inCentimeters ? 1.0f : 100.0f) + "\n}\n}\nObjects:  {\n" + objects +
                  "}\nConnections:  {\n" + connections + "}\n");
}

void writeStl(const ThirdPartyModel& model, const std::string& folder, const std::string& name) {
    std::string stl = "solid " + name + "\n";
    for (size_t i = 0; i < model.pieces.size(); ++i) {
        const Mesh mesh =
            boxMesh(middleOf(model, static_cast<int>(i)), model.pieces[i].size, model.scale);
        for (size_t t = 0; t < mesh.triangles.size(); t += 3) {
            const auto [nx, ny, nz] = standingOnZ(mesh.normals[mesh.triangles[t]]);
            stl += "facet normal " + numbers({nx, ny, nz}) + "\nouter loop\n";
            for (size_t k = 0; k < 3; ++k) {
                const auto [x, y, z] = standingOnZ(mesh.points[mesh.triangles[t + k]]);
                stl += "vertex " + numbers({x, y, z}) + "\n";
            }
            stl += "endloop\nendfacet\n";
        }
    }
    writeFile(std::filesystem::path(folder) / (name + ".stl"), stl + "endsolid " + name + "\n");
}

} // namespace vessa::samples
