// Damaged files of every kind the readers take (the engine's object files
// with their pictures inside, .obj with its materials and pictures, .3ds,
// .glb, .gltf, .fbx, sounds): bits turned over, cut short, noise, counts no file could hold.
// Each is refused with a message that names it, or loaded; none crashes
// the program or keeps it past the time limit. The same damage every run.
#include "models/model_library.h"
#include "models/model_reading.h"
#include "reading/reader_process.h"
#include "sound/sound_player.h"
#include "support/sample_files.h"
#include "support/third_party_files.h"

#include <gtest/gtest.h>
#include <osg/Geode>
#include <osg/Texture>
#include <sndfile.h>

namespace vessa::core {
namespace {

using samples::Bytes;

constexpr std::uint32_t kCopies = 40; // of each file, every kind of damage alike

class DamagedFiles : public ::testing::Test {
protected:
    // Damaged copies of the file at original, written in turn under its own
    // name (where what names it expects it) or each under a name of its own.
    // Counts what was refused and what was loaded.
    template <typename Read>
    void tryCopies(const std::string& original, bool sameName, const Read& read,
                   std::uint32_t copies = kCopies) {
        const Bytes good = samples::readBytes(original);
        const std::filesystem::path source(original);
        for (std::uint32_t seed = 0; seed < copies; ++seed) {
            const std::string path =
                sameName ? original
                         : folder.file(source.stem().string() + std::to_string(seed) +
                                       source.extension().string());
            samples::writeBytes(path, samples::damaged(good, seed));
            const std::string failure = read(path);
            if (failure.empty()) {
                ++loaded;
                continue;
            }
            ++refused;
            EXPECT_NE(failure.find(std::filesystem::path(path).filename().string()),
                      std::string::npos)
                << failure;
            // Readers that go round in circles are stopped long before the limit.
            EXPECT_EQ(failure.find("took too long"), std::string::npos) << failure;
        }
        samples::writeBytes(original, good);
    }

    // Read by a library of its own, so that every copy is read anew: "" or
    // why it was refused.
    std::string loadModel(const std::string& file) {
        ModelLibrary library(reader);
        try {
            EXPECT_FALSE(library.load(file)->parts.empty());
        } catch (const ModelError& refusal) {
            return refusal.what();
        }
        return {};
    }

    samples::ScratchFolder folder;
    ReaderProcess reader{ReaderProcess::defaultProgram()};
    int refused = 0;
    int loaded = 0;
};

TEST_F(DamagedFiles, TheEnginesObjectFilesAndThePicturesInside) {
    const std::string file = folder.file("Bunny.mdl");
    samples::writeModelFile(file);
    ModelLibrary library(reader);
    const auto bunny = library.load(file);
    ASSERT_EQ(bunny->parts.size(), 4u);
    EXPECT_EQ(bunny->parts[2].name, "LeftEar");
    EXPECT_EQ(bunny->parts[2].faces, 6); // a strip of eight vertices
    const osg::StateSet* skin =
        fullDetail(bunny->parts[3].shape.get())->asGeode()->getDrawable(0)->getStateSet();
    EXPECT_NE(skin->getTextureAttribute(0, osg::StateAttribute::TEXTURE), nullptr); // held inside

    tryCopies(file, false, [this](const std::string& path) { return loadModel(path); });
    EXPECT_GT(refused, 0);
}

TEST_F(DamagedFiles, ObjFilesTheirMaterialsAndTheirPictures) {
    samples::writeObjFile(folder.file(""), "Lamp");
    ModelLibrary library(reader);
    ASSERT_EQ(library.load(folder.file("Lamp.obj"))->parts.size(), 3u);
    tryCopies(folder.file("Lamp.obj"), false,
              [this](const std::string& path) { return loadModel(path); });
    // Damaged materials and pictures come with an object that is whole.
    for (const char* named : {"Lamp.mtl", "Lamp.png"}) {
        tryCopies(folder.file(named), true, [this](const std::string&) {
            const std::string failure = loadModel(folder.file("Lamp.obj"));
            EXPECT_EQ(failure, "");
            return failure;
        });
    }
    EXPECT_GT(refused, 0);
}

TEST_F(DamagedFiles, ThreeDsFiles) {
    samples::write3dsFile(folder.file("Mast.3ds"));
    ModelLibrary library(reader);
    ASSERT_EQ(library.load(folder.file("Mast.3ds"))->parts.size(), 3u);
    // Among these, damage that once sent lib3ds round in circles.
    tryCopies(
        folder.file("Mast.3ds"), false, [this](const std::string& path) { return loadModel(path); },
        100);
    EXPECT_GT(refused, 0);
}

TEST_F(DamagedFiles, FilesOfOtherPrograms) {
    const samples::ThirdPartyModel robot = samples::robot();
    samples::writeGlb(robot, folder.file(""), "Robot");
    samples::writeFbx(robot, folder.file(""), "Robot", true);
    samples::writeGltf(robot, folder.file(""), "Drawn");
    samples::write3ds(robot, folder.file(""), "Kept");
    for (const char* file : {"Robot.glb", "Robot.fbx", "Drawn.gltf", "Kept.3ds"}) {
        ASSERT_EQ(loadModel(folder.file(file)), "") << file;
        tryCopies(folder.file(file), false,
                  [this](const std::string& path) { return loadModel(path); });
    }
    // A damaged picture costs only the picture.
    tryCopies(folder.file("textures/skin.png"), true, [this](const std::string&) {
        const std::string failure = loadModel(folder.file("Drawn.gltf"));
        EXPECT_EQ(failure, "");
        return failure;
    });
    EXPECT_GT(refused, 0);
}

TEST_F(DamagedFiles, SoundsOfEveryKind) {
    SoundPlayer player(SoundPlayer::Output::Loopback, reader);
    const std::pair<const char*, int> kinds[] = {{"Tone.wav", SF_FORMAT_WAV},
                                                 {"Tone.flac", SF_FORMAT_FLAC},
                                                 {"Tone.ogg", SF_FORMAT_OGG},
                                                 {"Tone.aiff", SF_FORMAT_AIFF}};
    for (const auto& [name, format] : kinds) {
        samples::writeSoundFile(folder.file(name), format, 2);
        ASSERT_EQ(player.check(folder.file(name)), "") << name;
        EXPECT_NEAR(player.seconds(folder.file(name)), 1.0, 0.01) << name;
        tryCopies(folder.file(name), false,
                  [&player](const std::string& path) { return player.check(path); });
    }
    EXPECT_GT(refused, 0);
}

} // namespace
} // namespace vessa::core
