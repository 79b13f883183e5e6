#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vessa::core {

// What the reader program (reading/reader_main.cpp) answers about a file:
// plain numbers, never a scene graph. The program decodes every answer with
// the checks below before it builds anything from it, so a reader that was
// led astray by a crafted file can at worst describe a strange object.
//
// Geometry is in OpenSceneGraph's axes, in the frame of the part it belongs
// to; a part's place is relative to its parent.

struct LookDescription {
    bool hasMaterial = false;
    std::array<float, 4> diffuse{};
    std::array<float, 4> ambient{};
    std::array<float, 4> specular{};
    std::array<float, 4> emission{};
    float shininess = 0.0f;       // 0 to 128
    bool litVertexColors = false; // the vertex colours stand for the material's
    bool blended = false;         // see-through
    std::int32_t texture = -1;    // index into ModelDescription::textures, or -1

    auto operator<=>(const LookDescription&) const = default;
};

struct MeshDescription {
    std::vector<float> positions;         // x y z per vertex
    std::vector<float> normals;           // none, one for all (3 numbers) or x y z per vertex
    std::vector<float> colors;            // none, one for all (4 numbers) or r g b a per vertex
    std::vector<float> texCoords;         // none, or s t per vertex
    std::vector<std::uint32_t> triangles; // three vertex indices each
    LookDescription look;
};

// A picture as 8-bit red, green, blue and alpha, bottom row first.
struct TextureDescription {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> rgba;
};

struct PartDescription {
    std::string name;
    std::int32_t parent = -1;                   // an earlier part; -1 for the first part only
    std::array<double, 3> position{};           // relative to the parent
    std::array<double, 4> rotation{0, 0, 0, 1}; // x y z w, relative to the parent
    std::vector<MeshDescription> meshes;
};

struct ModelDescription {
    std::string name;
    std::vector<PartDescription> parts; // the object itself first
    std::vector<TextureDescription> textures;
    // The files the model named and that were read with it, relative to its
    // folder, "/" between folders: what goes with the model when it is
    // copied. Never absolute, never leading out of the folder.
    std::vector<std::string> files;
    // The names of files it named that are not in its folder, as it gives them.
    std::vector<std::string> missing;
};

// Sixteen-bit samples, channels interleaved.
struct SoundDescription {
    std::uint32_t channels = 0;
    std::uint32_t rate = 0; // frames per second
    std::vector<std::int16_t> samples;
};

// The first byte of every answer of the reader program.
enum class Answer : char {
    Model = 'M',
    Sound = 'S',
    NoReader = 'U',        // no reader knows files with this ending
    NotRead = 'D',         // the format's reader refused the bytes
    TooManyChannels = 'C', // a sound of more than two channels
    TooBig = 'B',          // its description would be longer than kMaxAnswerBytes
};

// Beyond these an answer, a picture or a coordinate counts as damage.
constexpr std::size_t kMaxAnswerBytes = std::size_t{256} << 20;
constexpr std::uint32_t kMaxTextureSide = 4096;
constexpr double kMaxCoordinate = 1e7;
constexpr std::size_t kMaxNameBytes = 256;
constexpr std::size_t kMaxFileNameBytes = 1024;
constexpr std::size_t kMaxNamedFiles = 4096;

std::string modelAnswer(const ModelDescription& model);
std::string soundAnswer(const SoundDescription& sound);
std::string refusalAnswer(Answer why);

// A number of a material, which a damaged file is no reason to refuse:
// finite, from 0 to highest.
float sensible(float value, float highest);

// A path inside a folder as an answer may give it: parts between "/" that
// are names (not "", "." or ".."), in valid UTF-8 without control characters.
bool isPathInside(const std::string& path);

std::optional<Answer> answerKind(std::string_view answer);
// nullopt unless the answer is a complete, consistent description: every
// count within the bytes that follow it, every index within its array,
// every number finite and within bounds, every file the model read a
// plain path inside its folder. Names come back as valid UTF-8.
std::optional<ModelDescription> decodeModel(std::string_view answer);
std::optional<SoundDescription> decodeSound(std::string_view answer);

} // namespace vessa::core
