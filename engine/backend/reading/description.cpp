#include "reading/description.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace vessa::core {

namespace {

// Both ends of an answer are this program on this machine: numbers travel
// in the machine's own byte order.
class Writer {
public:
    explicit Writer(Answer kind) { bytes_.push_back(static_cast<char>(kind)); }

    template <typename T> void value(T v) {
        static_assert(std::is_arithmetic_v<T>);
        bytes_.append(reinterpret_cast<const char*>(&v), sizeof v);
    }
    template <typename T> void values(const std::vector<T>& v) {
        value(static_cast<std::uint32_t>(v.size()));
        if (!v.empty())
            bytes_.append(reinterpret_cast<const char*>(v.data()), v.size() * sizeof(T));
    }
    template <typename T, std::size_t N> void values(const std::array<T, N>& v) {
        for (T x : v)
            value(x);
    }
    void text(const std::string& s) {
        value(static_cast<std::uint32_t>(s.size()));
        bytes_ += s;
    }
    std::string take() { return std::move(bytes_); }

private:
    std::string bytes_;
};

// Every read checks that the bytes are there; a count is trusted only as
// far as the bytes that follow it could hold that many elements, so no
// count in an answer can make the program allocate more than the answer.
class Reader {
public:
    Reader(std::string_view bytes, Answer kind) : rest_(bytes) {
        ok_ = !rest_.empty() && rest_.front() == static_cast<char>(kind);
        if (ok_)
            rest_.remove_prefix(1);
    }

    template <typename T> T value() {
        T v{};
        if (!take(&v, sizeof v))
            return T{};
        if constexpr (std::is_floating_point_v<T>) {
            if (!std::isfinite(v))
                ok_ = false;
        }
        return v;
    }
    template <typename T> std::vector<T> values() {
        const auto count = value<std::uint32_t>();
        std::vector<T> v;
        if (!ok_ || count > rest_.size() / sizeof(T)) {
            ok_ = false;
            return v;
        }
        v.resize(count);
        take(v.data(), count * sizeof(T));
        if constexpr (std::is_floating_point_v<T>) {
            if (!std::all_of(v.begin(), v.end(), [](T x) { return std::isfinite(x); }))
                ok_ = false;
        }
        return v;
    }
    template <typename T, std::size_t N> std::array<T, N> array() {
        std::array<T, N> v{};
        for (T& x : v)
            x = value<T>();
        return v;
    }
    std::string text(std::size_t longest) {
        const auto size = value<std::uint32_t>();
        if (!ok_ || size > longest || size > rest_.size()) {
            ok_ = false;
            return {};
        }
        std::string s(rest_.substr(0, size));
        rest_.remove_prefix(size);
        return s;
    }
    // A count of elements of at least minimumBytes each.
    std::uint32_t count(std::size_t minimumBytes) {
        const auto n = value<std::uint32_t>();
        if (n > rest_.size() / minimumBytes)
            ok_ = false;
        return ok_ ? n : 0;
    }
    void require(bool condition) { ok_ = ok_ && condition; }
    bool ok() const { return ok_; }
    bool finished() const { return ok_ && rest_.empty(); }

private:
    bool take(void* to, std::size_t size) {
        if (!ok_ || rest_.size() < size) {
            ok_ = false;
            return false;
        }
        if (size > 0)
            std::memcpy(to, rest_.data(), size);
        rest_.remove_prefix(size);
        return true;
    }

    std::string_view rest_;
    bool ok_ = true;
};

// Bytes that are not well-formed UTF-8, and control characters, become "_".
std::string validUtf8(const std::string& s) {
    std::string out;
    out.reserve(s.size());
    size_t i = 0;
    while (i < s.size()) {
        const auto lead = static_cast<unsigned char>(s[i]);
        size_t length = lead < 0x80                    ? 1
                        : lead >= 0xC2 && lead <= 0xDF ? 2
                        : lead >= 0xE0 && lead <= 0xEF ? 3
                        : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                       : 0;
        bool valid = length > 0 && i + length <= s.size();
        for (size_t k = 1; valid && k < length; ++k)
            valid = (static_cast<unsigned char>(s[i + k]) & 0xC0) == 0x80;
        if (valid && length >= 3) {
            const auto second = static_cast<unsigned char>(s[i + 1]);
            valid = !(lead == 0xE0 && second < 0xA0) && !(lead == 0xED && second > 0x9F) &&
                    !(lead == 0xF0 && second < 0x90) && !(lead == 0xF4 && second > 0x8F);
        }
        if (!valid || (length == 1 && (lead < 0x20 || lead == 0x7F))) {
            out += '_';
            ++i;
        } else {
            out.append(s, i, length);
            i += length;
        }
    }
    return out;
}

} // namespace

float sensible(float value, float highest) {
    return std::isfinite(value) ? std::clamp(value, 0.0f, highest) : 0.0f;
}

bool isPathInside(const std::string& path) {
    if (path.empty() || path.size() > kMaxFileNameBytes || validUtf8(path) != path ||
        path.find('\\') != std::string::npos)
        return false;
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view part = std::string_view(path).substr(start, end - start);
        if (part.empty() || part == "." || part == "..")
            return false;
        start = end + 1;
    }
    return true;
}

namespace {

bool within(const std::vector<float>& v, double bound) {
    return std::all_of(v.begin(), v.end(), [bound](float x) { return std::abs(x) <= bound; });
}

void writeLook(Writer& out, const LookDescription& look) {
    out.value(static_cast<std::uint8_t>((look.hasMaterial ? 1 : 0) |
                                        (look.litVertexColors ? 2 : 0) | (look.blended ? 4 : 0)));
    out.values(look.diffuse);
    out.values(look.ambient);
    out.values(look.specular);
    out.values(look.emission);
    out.value(look.shininess);
    out.value(look.texture);
}

LookDescription readLook(Reader& in, size_t textures) {
    LookDescription look;
    const auto flags = in.value<std::uint8_t>();
    in.require(flags < 8);
    look.hasMaterial = flags & 1;
    look.litVertexColors = flags & 2;
    look.blended = flags & 4;
    for (auto* color : {&look.diffuse, &look.ambient, &look.specular, &look.emission}) {
        *color = in.array<float, 4>();
        for (float& c : *color)
            c = std::clamp(c, 0.0f, 1.0f);
    }
    look.shininess = std::clamp(in.value<float>(), 0.0f, 128.0f);
    look.texture = in.value<std::int32_t>();
    in.require(look.texture >= -1 && look.texture < static_cast<std::int64_t>(textures));
    return look;
}

void writeMesh(Writer& out, const MeshDescription& mesh) {
    writeLook(out, mesh.look);
    out.values(mesh.positions);
    out.values(mesh.normals);
    out.values(mesh.colors);
    out.values(mesh.texCoords);
    out.values(mesh.triangles);
}

MeshDescription readMesh(Reader& in, size_t textures) {
    MeshDescription mesh;
    mesh.look = readLook(in, textures);
    mesh.positions = in.values<float>();
    mesh.normals = in.values<float>();
    mesh.colors = in.values<float>();
    mesh.texCoords = in.values<float>();
    mesh.triangles = in.values<std::uint32_t>();
    const size_t vertices = mesh.positions.size() / 3;
    auto oneOrEach = [vertices](size_t size, size_t width) {
        return size == 0 || size == width || size == width * vertices;
    };
    in.require(mesh.positions.size() % 3 == 0 && oneOrEach(mesh.normals.size(), 3) &&
               oneOrEach(mesh.colors.size(), 4) &&
               (mesh.texCoords.empty() || mesh.texCoords.size() == 2 * vertices) &&
               mesh.triangles.size() % 3 == 0);
    in.require(within(mesh.positions, kMaxCoordinate) && within(mesh.normals, kMaxCoordinate) &&
               within(mesh.texCoords, kMaxCoordinate));
    in.require(std::all_of(mesh.triangles.begin(), mesh.triangles.end(),
                           [vertices](std::uint32_t i) { return i < vertices; }));
    for (float& c : mesh.colors)
        c = std::clamp(c, 0.0f, 1.0f);
    return mesh;
}

// The smallest a mesh, a part and a picture can be written in.
constexpr size_t kLookBytes = 1 + 17 * sizeof(float) + sizeof(std::int32_t);
constexpr size_t kMeshBytes = kLookBytes + 5 * sizeof(std::uint32_t);
constexpr size_t kPartBytes = 3 * sizeof(std::uint32_t) + 7 * sizeof(double);
constexpr size_t kTextureBytes = 2 * sizeof(std::uint32_t) + 4;

PartDescription readPart(Reader& in, size_t index, size_t textures) {
    PartDescription part;
    part.name = validUtf8(in.text(kMaxNameBytes));
    part.parent = in.value<std::int32_t>();
    in.require(index == 0 ? part.parent == -1
                          : part.parent >= 0 && static_cast<size_t>(part.parent) < index);
    part.position = in.array<double, 3>();
    part.rotation = in.array<double, 4>();
    in.require(std::all_of(part.position.begin(), part.position.end(),
                           [](double x) { return std::abs(x) <= kMaxCoordinate; }));
    double length = 0.0;
    for (double x : part.rotation)
        length += x * x;
    in.require(length > 1e-12 && length < 1e12);
    const auto meshes = in.count(kMeshBytes);
    for (std::uint32_t m = 0; m < meshes && in.ok(); ++m)
        part.meshes.push_back(readMesh(in, textures));
    return part;
}

TextureDescription readTexture(Reader& in) {
    TextureDescription texture;
    texture.width = in.value<std::uint32_t>();
    texture.height = in.value<std::uint32_t>();
    in.require(texture.width >= 1 && texture.width <= kMaxTextureSide && texture.height >= 1 &&
               texture.height <= kMaxTextureSide);
    if (in.ok())
        texture.rgba = in.values<std::uint8_t>();
    in.require(texture.rgba.size() == size_t{4} * texture.width * texture.height);
    return texture;
}

} // namespace

std::string modelAnswer(const ModelDescription& model) {
    Writer out(Answer::Model);
    out.text(model.name);
    out.value(static_cast<std::uint32_t>(model.textures.size()));
    for (const TextureDescription& texture : model.textures) {
        out.value(texture.width);
        out.value(texture.height);
        out.values(texture.rgba);
    }
    out.value(static_cast<std::uint32_t>(model.parts.size()));
    for (const PartDescription& part : model.parts) {
        out.text(part.name);
        out.value(part.parent);
        out.values(part.position);
        out.values(part.rotation);
        out.value(static_cast<std::uint32_t>(part.meshes.size()));
        for (const MeshDescription& mesh : part.meshes)
            writeMesh(out, mesh);
    }
    for (const auto* names : {&model.files, &model.missing}) {
        out.value(static_cast<std::uint32_t>(names->size()));
        for (const std::string& name : *names)
            out.text(name);
    }
    return out.take();
}

std::string soundAnswer(const SoundDescription& sound) {
    Writer out(Answer::Sound);
    out.value(sound.channels);
    out.value(sound.rate);
    out.values(sound.samples);
    return out.take();
}

std::string refusalAnswer(Answer why) {
    return std::string(1, static_cast<char>(why));
}

std::optional<Answer> answerKind(std::string_view answer) {
    if (answer.empty())
        return std::nullopt;
    switch (static_cast<Answer>(answer.front())) {
    case Answer::Model:
    case Answer::Sound:
    case Answer::NoReader:
    case Answer::NotRead:
    case Answer::TooManyChannels:
    case Answer::TooBig:
        return static_cast<Answer>(answer.front());
    }
    return std::nullopt;
}

std::optional<ModelDescription> decodeModel(std::string_view answer) {
    Reader in(answer, Answer::Model);
    ModelDescription model;
    model.name = validUtf8(in.text(kMaxNameBytes));
    const auto textures = in.count(kTextureBytes);
    for (std::uint32_t t = 0; t < textures && in.ok(); ++t)
        model.textures.push_back(readTexture(in));
    const auto parts = in.count(kPartBytes);
    in.require(parts >= 1);
    for (std::uint32_t p = 0; p < parts && in.ok(); ++p)
        model.parts.push_back(readPart(in, p, model.textures.size()));
    const auto files = in.count(sizeof(std::uint32_t));
    in.require(files <= kMaxNamedFiles);
    for (std::uint32_t f = 0; f < files && in.ok(); ++f) {
        model.files.push_back(in.text(kMaxFileNameBytes));
        in.require(isPathInside(model.files.back()));
    }
    const auto missing = in.count(sizeof(std::uint32_t));
    in.require(missing <= kMaxNamedFiles);
    for (std::uint32_t m = 0; m < missing && in.ok(); ++m)
        model.missing.push_back(validUtf8(in.text(kMaxFileNameBytes)));
    if (!in.finished())
        return std::nullopt;
    return model;
}

std::optional<SoundDescription> decodeSound(std::string_view answer) {
    Reader in(answer, Answer::Sound);
    SoundDescription sound;
    sound.channels = in.value<std::uint32_t>();
    sound.rate = in.value<std::uint32_t>();
    in.require(sound.channels >= 1 && sound.channels <= 2 && sound.rate >= 1 &&
               sound.rate <= 1'000'000);
    if (in.ok()) {
        sound.samples = in.values<std::int16_t>();
        in.require(sound.samples.size() % sound.channels == 0);
    }
    if (!in.finished())
        return std::nullopt;
    return sound;
}

} // namespace vessa::core
