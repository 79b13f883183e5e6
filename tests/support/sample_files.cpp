#include "support/sample_files.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Material>
#include <osg/MatrixTransform>
#include <osg/Texture2D>
#include <osgDB/Registry>
#include <osgDB/WriteFile>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace vessa::samples {

namespace {

// A wavy sheet of cells x cells squares, two triangles each, with normals,
// colours and picture coordinates per vertex.
osg::Geometry* sheet(int cells, float size) {
    auto* points = new osg::Vec3Array;
    auto* normals = new osg::Vec3Array;
    auto* colors = new osg::Vec4Array;
    auto* coords = new osg::Vec2Array;
    for (int j = 0; j <= cells; ++j) {
        for (int i = 0; i <= cells; ++i) {
            const float u = static_cast<float>(i) / static_cast<float>(cells);
            const float v = static_cast<float>(j) / static_cast<float>(cells);
            points->push_back({u * size, 0.05f * std::sin(6 * u), v * size});
            normals->push_back({0, 1, 0});
            colors->push_back({u, v, 0.5f, 1});
            coords->push_back({u, v});
        }
    }
    auto* triangles = new osg::DrawElementsUInt(GL_TRIANGLES);
    const auto at = [cells](int i, int j) {
        return static_cast<unsigned>(j * (cells + 1) + i);
    };
    for (int j = 0; j < cells; ++j) {
        for (int i = 0; i < cells; ++i) {
            for (unsigned corner : {at(i, j), at(i + 1, j), at(i, j + 1), at(i + 1, j),
                                    at(i + 1, j + 1), at(i, j + 1)})
                triangles->push_back(corner);
        }
    }
    auto* geometry = new osg::Geometry;
    geometry->setVertexArray(points);
    geometry->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
    geometry->setColorArray(colors, osg::Array::BIND_PER_VERTEX);
    geometry->setTexCoordArray(0, coords, osg::Array::BIND_PER_VERTEX);
    geometry->addPrimitiveSet(triangles);
    return geometry;
}

// A strip of triangles drawn from the vertices in order.
osg::Geometry* strip() {
    auto* points = new osg::Vec3Array;
    for (int i = 0; i < 8; ++i)
        points->push_back({0.1f * static_cast<float>(i), static_cast<float>(i % 2), 0});
    auto* geometry = new osg::Geometry;
    geometry->setVertexArray(points);
    geometry->addPrimitiveSet(new osg::DrawArrays(GL_TRIANGLE_STRIP, 0, 8));
    return geometry;
}

osg::Geode* painted(osg::Geometry* geometry, const osg::Vec4& color) {
    auto* material = new osg::Material;
    material->setDiffuse(osg::Material::FRONT_AND_BACK, color);
    material->setAmbient(osg::Material::FRONT_AND_BACK, color);
    geometry->getOrCreateStateSet()->setAttribute(material);
    auto* geode = new osg::Geode;
    geode->addDrawable(geometry);
    return geode;
}

osg::Image* checkers(int side) {
    auto* image = new osg::Image;
    image->allocateImage(side, side, 1, GL_RGB, GL_UNSIGNED_BYTE);
    for (int t = 0; t < side; ++t) {
        for (int s = 0; s < side; ++s) {
            unsigned char* pixel = image->data(static_cast<unsigned>(s), static_cast<unsigned>(t));
            const unsigned char shade = (s + t) % 2 ? 230 : 40;
            pixel[0] = shade;
            pixel[1] = static_cast<unsigned char>(255 - shade);
            pixel[2] = 128;
        }
    }
    return image;
}

osg::MatrixTransform* part(const char* name, const osg::Matrixd& place, osg::Node* shape) {
    auto* transform = new osg::MatrixTransform(place);
    transform->setName(name);
    transform->addChild(shape);
    return transform;
}

void writeText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

bool looksLikeText(const Bytes& bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) {
        return c == '\n' || c == '\r' || c == '\t' || (c >= ' ' && c < 127);
    });
}

template <typename T> void writeOver(Bytes& bytes, size_t at, T value) {
    const auto* from = reinterpret_cast<const char*>(&value);
    for (size_t k = 0; k < sizeof value && at + k < bytes.size(); ++k)
        bytes[at + k] = from[k];
}

// Numbers in a text written over with ones no reader should believe.
void hugeNumbers(Bytes& text, std::mt19937& random) {
    static const std::vector<std::string> huge = {
        "4294967295", "99999999999999999999", "-2147483648", "1e999", "nan", "-0"};
    for (int n = 0; n < 4; ++n) {
        auto digit =
            std::find_if(text.begin() + static_cast<std::ptrdiff_t>(random() % text.size()),
                         text.end(), [](char c) { return c >= '0' && c <= '9'; });
        if (digit == text.end())
            continue;
        auto end = std::find_if(digit, text.end(), [](char c) { return c < '0' || c > '9'; });
        const std::string& number = huge[random() % huge.size()];
        digit = text.erase(digit, end);
        text.insert(digit, number.begin(), number.end());
    }
}

} // namespace

ScratchFolder::ScratchFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "vessa-samples-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder");
    path_ = name;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Bytes readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeBytes(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void writeModelFile(const std::string& path) {
    osg::ref_ptr<osg::Group> bunny = new osg::Group;
    bunny->setName("Bunny");
    bunny->addChild(painted(sheet(3, 0.5f), {1, 1, 1, 1}));
    auto* head = part("Head", osg::Matrixd::translate(0.25, 0.5, 0),
                      painted(sheet(2, 0.2f), {0.5f, 0.5f, 0.5f, 1}));
    head->addChild(part("LeftEar", osg::Matrixd::rotate(osg::PI_2, osg::Vec3d(0, 0, 1)),
                        painted(strip(), {1, 0.7f, 0.7f, 1})));
    bunny->addChild(head);
    osg::Geode* skin = painted(sheet(16, 1.0f), {1, 1, 1, 1});
    skin->getDrawable(0)->getOrCreateStateSet()->setTextureAttributeAndModes(
        0, new osg::Texture2D(checkers(8)));
    bunny->addChild(part("Skin", osg::Matrixd::translate(0, 0, 0.3), skin));
    std::ofstream out(path, std::ios::binary);
    osg::ref_ptr<osgDB::Options> options = new osgDB::Options("WriteImageHint=IncludeData");
    osgDB::Registry::instance()->getReaderWriterForExtension("osgb")->writeNode(*bunny, out,
                                                                                options.get());
}

void writeObjFile(const std::string& folder, const std::string& name) {
    const std::string base = folder + "/" + name;
    osgDB::writeImageFile(*osg::ref_ptr<osg::Image>(checkers(16)), base + ".png");
    writeText(base + ".mtl", "newmtl skin\nKa 0.2 0.2 0.2\nKd 0.9 0.5 0.3\nKs 0.1 0.1 0.1\n"
                             "Ns 20\nd 0.8\nmap_Kd " +
                                 name + ".png\n");
    std::string obj = "mtllib " + name + ".mtl\n";
    for (int y = 0; y < 2; ++y) {
        for (int z = 0; z < 2; ++z) {
            for (int x = 0; x < 2; ++x)
                obj += "v " + std::to_string(x) + " " + std::to_string(y * 2) + " " +
                       std::to_string(z) + "\n";
        }
    }
    obj += "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvn 0 -1 0\nvn 0 1 0\n";
    obj += "g Base\nusemtl skin\nf 1/1/1 2/2/1 4/3/1\nf 1/1/1 4/3/1 3/4/1\n";
    obj += "g Top\nf 5/1/2 7/4/2 8/3/2 6/2/2\n";
    writeText(base + ".obj", obj);
}

void write3dsFile(const std::string& path) {
    osg::ref_ptr<osg::Group> mast = new osg::Group;
    mast->setName("Mast");
    osg::Geode* pole = painted(sheet(2, 0.1f), {0.6f, 0.4f, 0.2f, 1});
    pole->setName("Pole");
    osg::Geode* flag = painted(sheet(4, 0.5f), {1, 0, 0, 1});
    flag->setName("Flag");
    mast->addChild(pole);
    mast->addChild(flag);
    osgDB::writeNodeFile(*mast, path);
}

void writeSoundFile(const std::string& path, int format, int channels) {
    SF_INFO info{};
    info.samplerate = 22050;
    info.channels = channels;
    info.format = format | (format == SF_FORMAT_OGG ? SF_FORMAT_VORBIS : SF_FORMAT_PCM_16);
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file)
        throw std::runtime_error("cannot write " + path);
    std::vector<short> samples(static_cast<size_t>(info.samplerate * channels));
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<short>(8000 * std::sin(0.06 * static_cast<double>(i)));
    sf_writef_short(file, samples.data(), info.samplerate);
    sf_close(file);
}

Bytes damaged(const Bytes& original, std::uint32_t seed) {
    std::mt19937 random(seed);
    Bytes copy = original;
    if (copy.empty())
        return copy;
    const auto anywhere = [&] {
        return static_cast<size_t>(random() % copy.size());
    };
    switch (seed % 5) {
    case 0: // bits turned over
        for (unsigned n = 1 + random() % 64; n > 0; --n) {
            const size_t at = anywhere();
            copy[at] = static_cast<char>(copy[at] ^ (1 << random() % 8));
        }
        break;
    case 1: // cut short
        copy.resize(anywhere());
        break;
    case 2: // nothing but noise
        for (char& c : copy)
            c = static_cast<char>(random());
        break;
    case 3: // counts no file could hold
        for (unsigned n = 1 + random() % 4; n > 0; --n) {
            static const std::uint32_t huge[] = {0xFFFFFFFF, 0x7FFFFFFF, 0x80000000, 0x40000000,
                                                 0x0FFFFFFF};
            writeOver(copy, anywhere(), huge[random() % std::size(huge)]);
        }
        break;
    default:
        if (looksLikeText(copy))
            hugeNumbers(copy, random);
        else
            writeOver(copy, anywhere(), std::uint64_t{0x7FFFFFFFFFFFFFFF});
    }
    return copy;
}

} // namespace vessa::samples
