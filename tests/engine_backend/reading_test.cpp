// What the reader program answers and what the program makes of it: an
// answer comes back as it was sent, and no damage to an answer makes the
// program crash, index outside an array or allocate beyond the answer. The
// reader program itself: missing, stalled, crashed, or asked for more
// memory than it may have, it costs a refusal and never the program.
#include "models/model_library.h"
#include "models/model_reading.h"
#include "reading/description.h"
#include "reading/reader_process.h"
#include "sound/sound_player.h"
#include "support/sample_files.h"

#include <gtest/gtest.h>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Texture>
#include <osgDB/Registry>
#include <sndfile.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <functional>
#include <limits>

namespace vessa::core {
namespace {

using samples::ScratchFolder;

// The reader program's answer about the sample object (parts Bunny, Head,
// LeftEar, Skin; Skin wears a picture and is big enough for a lighter copy).
const std::string& sampleAnswer() {
    static const std::string answer = [] {
        ScratchFolder folder;
        samples::writeModelFile(folder.file("Bunny.mdl"));
        return ReaderProcess::shared().read(FileKind::Model, folder.file("Bunny.mdl")).answer;
    }();
    return answer;
}

ModelDescription sampleModel() {
    return decodeModel(sampleAnswer()).value();
}

TEST(ModelAnswers, ComeBackAsTheyWereSentAndBecomePartsInTheEnginesFrame) {
    ModelDescription model = sampleModel();
    EXPECT_EQ(modelAnswer(model), sampleAnswer());
    model.parts[1].name = "Ear\xff\x01";
    EXPECT_EQ(decodeModel(modelAnswer(model))->parts[1].name, "Ear__"); // no broken text gets in
    model.files = {"Bunny.mtl", "textures/fur.png"};
    model.missing = {"C:\\fur\xff.png"};
    const auto named = decodeModel(modelAnswer(model));
    EXPECT_EQ(named->files, model.files);
    EXPECT_EQ(named->missing, std::vector<std::string>{"C:\\fur_.png"});

    const Model built = modelFrom(sampleModel(), "Fallback");
    ASSERT_EQ(built.parts.size(), 4u);
    EXPECT_EQ(built.parts[0].name, "Bunny");
    EXPECT_EQ(built.parts[2].parent, 1);
    EXPECT_DOUBLE_EQ(built.parts[1].position[0], -0.25); // OpenSceneGraph's +x is the engine's left
    EXPECT_NEAR(std::abs(built.parts[2].orientation[3]), std::sqrt(0.5), 1e-9);
    EXPECT_EQ(built.parts[3].faces, 512);
    osg::Node* skin = fullDetail(built.parts[3].shape.get());
    EXPECT_NE(skin, built.parts[3].shape.get()); // with a lighter copy
    EXPECT_NE(skin->asGeode()->getDrawable(0)->getStateSet()->getTextureAttribute(
                  0, osg::StateAttribute::TEXTURE),
              nullptr);
    ModelDescription unnamed = sampleModel();
    unnamed.name.clear();
    EXPECT_EQ(modelFrom(unnamed, "Fallback").parts[0].name, "Fallback");
}

TEST(ModelAnswers, AnswersThatDoNotHoldTogetherAreRefused) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    // Skin's mesh has normals, colours and picture places per vertex.
    const auto skin = [](ModelDescription& m) -> MeshDescription& {
        return m.parts[3].meshes[0];
    };
    const std::vector<std::pair<const char*, std::function<void(ModelDescription&)>>> breakages = {
        {"a triangle past the vertices",
         [&](auto& m) {
             skin(m).triangles[2] = 100000;
         }},
        {"a parent after its child",
         [](auto& m) {
             m.parts[1].parent = 2;
         }},
        {"a second object",
         [](auto& m) {
             m.parts[1].parent = -1;
         }},
        {"no parts at all",
         [](auto& m) {
             m.parts.clear();
         }},
        {"a place beyond any world",
         [](auto& m) {
             m.parts[1].position[1] = 1e30;
         }},
        {"a vertex beyond any world",
         [&](auto& m) {
             skin(m).positions[4] = 1e30f;
         }},
        {"a number that is none",
         [&](auto& m) {
             skin(m).normals[0] = nan;
         }},
        {"a turn of no length",
         [](auto& m) {
             m.parts[1].rotation = {0, 0, 0, 0};
         }},
        {"normals for some vertices",
         [&](auto& m) {
             skin(m).normals.resize(6);
         }},
        {"colours for some vertices",
         [&](auto& m) {
             skin(m).colors.resize(8);
         }},
        {"picture places for some",
         [&](auto& m) {
             skin(m).texCoords.resize(2);
         }},
        {"half a vertex",
         [&](auto& m) {
             skin(m).positions.pop_back();
         }},
        {"half a triangle",
         [&](auto& m) {
             skin(m).triangles.pop_back();
         }},
        {"a picture that is not there",
         [&](auto& m) {
             skin(m).look.texture = 1;
         }},
        {"a picture short of pixels",
         [](auto& m) {
             m.textures[0].rgba.pop_back();
         }},
        {"a named file out of its folder",
         [](auto& m) {
             m.files = {"textures/../../secret.png"};
         }},
        {"a named file anywhere",
         [](auto& m) {
             m.files = {"/home/someone/secret.png"};
         }},
        {"a named file with a back-slash",
         [](auto& m) {
             m.files = {"..\\secret.png"};
         }},
        {"a named file of no name",
         [](auto& m) {
             m.files = {""};
         }},
        {"a picture too wide",
         [](auto& m) {
             m.textures[0] = {5000, 1, std::vector<std::uint8_t>(20000)};
         }},
    };
    for (const auto& [what, breakage] : breakages) {
        ModelDescription broken = sampleModel();
        breakage(broken);
        EXPECT_FALSE(decodeModel(modelAnswer(broken))) << what;
    }
    EXPECT_FALSE(decodeModel(sampleAnswer() + "x"));
    EXPECT_FALSE(decodeModel(sampleAnswer().substr(0, sampleAnswer().size() - 1)));
    EXPECT_FALSE(decodeModel(soundAnswer({1, 22050, {1, 2, 3}})));
}

TEST(SoundAnswers, ComeBackAsTheyWereSentOrAreRefused) {
    const SoundDescription stereo{2, 44100, {1, -1, 300, -300}};
    const auto decoded = decodeSound(soundAnswer(stereo));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->samples, stereo.samples);
    EXPECT_EQ(decoded->rate, 44100u);
    EXPECT_FALSE(decodeSound(soundAnswer({3, 44100, {1, 2, 3}})));
    EXPECT_FALSE(decodeSound(soundAnswer({0, 44100, {}})));
    EXPECT_FALSE(decodeSound(soundAnswer({1, 0, {1}})));
    EXPECT_FALSE(decodeSound(soundAnswer({2, 44100, {1, 2, 3}}))); // half a frame
    EXPECT_FALSE(decodeSound(soundAnswer(stereo) + "x"));
    EXPECT_FALSE(decodeSound(sampleAnswer()));
}

// Decodes the answer and, when it holds together, builds the parts: true
// when it did. What was taken never exceeds what the answer holds.
bool takesNoMoreThanItHolds(const std::string& answer) {
    const auto model = decodeModel(answer);
    if (!model)
        return false;
    size_t bytes = 0;
    for (const auto& part : model->parts) {
        for (const auto& mesh : part.meshes)
            bytes += 4 * (mesh.positions.size() + mesh.normals.size() + mesh.colors.size() +
                          mesh.texCoords.size() + mesh.triangles.size());
    }
    for (const auto& texture : model->textures)
        bytes += texture.rgba.size();
    EXPECT_LE(bytes, answer.size());
    EXPECT_EQ(modelFrom(*model, "Fallback").parts.size(), model->parts.size());
    return true;
}

TEST(ModelAnswers, NoDamageMakesTheProgramTakeMoreThanTheAnswerHolds) {
    // A count no answer could hold, at every place a count could be before
    // the first big array.
    const std::string& answer = sampleAnswer();
    for (size_t at = 0; at + 4 <= std::min<size_t>(answer.size(), 2048); ++at) {
        for (std::uint32_t huge : {0xFFFFFFFFu, 0x7FFFFFFFu, 0x40000000u, 0x00010000u}) {
            std::string copy = answer;
            std::memcpy(copy.data() + at, &huge, sizeof huge);
            takesNoMoreThanItHolds(copy);
        }
    }
    // Damage of every kind; some of it (to numbers) leaves an answer that
    // still holds together.
    const samples::Bytes bytes(answer.begin(), answer.end());
    int held = 0;
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        const samples::Bytes copy = samples::damaged(bytes, seed);
        held += takesNoMoreThanItHolds(std::string(copy.begin(), copy.end()));
    }
    EXPECT_GT(held, 0);
}

class ReaderProcessTest : public ::testing::Test {
protected:
    std::string modelFile() {
        const std::string path = folder.file("Good.mdl");
        samples::writeModelFile(path);
        return path;
    }
    static std::string refusal(ModelLibrary& library, const std::string& path) {
        try {
            library.load(path);
        } catch (const ModelError& e) {
            return e.what();
        }
        return {};
    }

    ScratchFolder folder;
};

TEST_F(ReaderProcessTest, WithoutItsProgramFilesAreRefusedAndTheProgramGoesOn) {
    for (const char* program : {"/nonexistent/vessa_reader", "/bin/false"}) {
        ReaderProcess missing(program);
        ModelLibrary library(missing);
        EXPECT_NE(refusal(library, modelFile()).find("file reader is missing"), std::string::npos);
        SoundPlayer player(SoundPlayer::Output::Loopback, missing);
        samples::writeSoundFile(folder.file("Tone.wav"), SF_FORMAT_WAV, 1);
        EXPECT_NE(player.check(folder.file("Tone.wav")).find("file reader is missing"),
                  std::string::npos);
    }
}

TEST_F(ReaderProcessTest, AReadingThatStallsIsStoppedAtItsTimeLimitAndTheNextFileIsRead) {
    ReaderProcess reader(ReaderProcess::defaultProgram(), {std::chrono::seconds(2)});
    ModelLibrary library(reader);
    // Its materials come from a pipe that nobody writes to.
    ASSERT_EQ(mkfifo(folder.file("Waiting.mtl").c_str(), 0600), 0);
    std::ofstream(folder.file("Waiting.obj")) << "mtllib Waiting.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\n"
                                                 "f 1 2 3\n";
    EXPECT_NE(refusal(library, folder.file("Waiting.obj")).find("Waiting.obj took too long"),
              std::string::npos);
    EXPECT_EQ(refusal(library, modelFile()), "");
    // Refused, the file is not read again (and waited for again) until it changes.
    std::filesystem::remove(folder.file("Waiting.mtl"));
    std::ofstream(folder.file("Waiting.mtl")) << "newmtl plain\nKd 1 1 1\n";
    EXPECT_NE(refusal(library, folder.file("Waiting.obj")), "");
    std::ofstream(folder.file("Waiting.obj"), std::ios::app) << "usemtl plain\n";
    EXPECT_EQ(refusal(library, folder.file("Waiting.obj")), "");
}

TEST_F(ReaderProcessTest, APictureIsReadOnlyFromBesideItsModel) {
    std::filesystem::create_directory(folder.file("World"));
    samples::writeObjFile(folder.file("World"), "Lamp");
    std::filesystem::copy_file(folder.file("World/Lamp.png"), folder.file("Outside.png"));
    const auto wearsAPicture = [](const std::string& obj) {
        const auto lamp = ModelLibrary().load(obj);
        const osg::StateSet* look =
            fullDetail(lamp->parts[1].shape.get())->asGeode()->getDrawable(0)->getStateSet();
        return look->getTextureAttribute(0, osg::StateAttribute::TEXTURE) != nullptr;
    };
    EXPECT_TRUE(wearsAPicture(folder.file("World/Lamp.obj")));
    for (const std::string& elsewhere :
         {std::string("../Outside.png"), folder.file("Outside.png")}) {
        std::ofstream(folder.file("World/Lamp.mtl")) << "newmtl skin\nmap_Kd " << elsewhere << "\n";
        EXPECT_FALSE(wearsAPicture(folder.file("World/Lamp.obj"))) << elsewhere;
    }
}

TEST_F(ReaderProcessTest, AReadingThatCrashesCostsOnlyItsFile) {
    ReaderProcess reader(ReaderProcess::defaultProgram());
    const samples::Bytes good = samples::readBytes(modelFile());
    int crashed = 0;
    for (std::uint32_t seed = 0; seed < 200 && crashed == 0; seed += 5) {
        samples::writeBytes(folder.file("Bad.mdl"), samples::damaged(good, seed));
        crashed += reader.read(FileKind::Model, folder.file("Bad.mdl")).outcome == Outcome::Failed;
    }
    EXPECT_GT(crashed, 0) << "no damage crashed the reader: the test shows nothing";
    EXPECT_EQ(reader.read(FileKind::Model, folder.file("Good.mdl")).outcome, Outcome::Answered);
}

TEST_F(ReaderProcessTest, AHugeCountInAFileTakesNoMemoryFromTheProgram) {
    // A shape of 777 vertices, the first at (1234.5, 0, 0), whose count in
    // the file is then made two thousand million.
    osg::ref_ptr<osg::Geode> shape = new osg::Geode;
    auto* geometry = new osg::Geometry;
    auto* points = new osg::Vec3Array(777);
    (*points)[0] = {1234.5f, 0, 0};
    geometry->setVertexArray(points);
    shape->addDrawable(geometry);
    {
        std::ofstream out(folder.file("Huge.mdl"), std::ios::binary);
        osgDB::Registry::instance()->getReaderWriterForExtension("osgb")->writeNode(*shape, out);
    }
    samples::Bytes bytes = samples::readBytes(folder.file("Huge.mdl"));
    const std::uint32_t count = 777;
    const float first = 1234.5f;
    char pattern[8];
    std::memcpy(pattern, &count, 4);
    std::memcpy(pattern + 4, &first, 4);
    auto at = std::search(bytes.begin(), bytes.end(), pattern, pattern + 8);
    ASSERT_NE(at, bytes.end());
    const std::uint32_t huge = 2'000'000'000;
    std::memcpy(&*at, &huge, 4);
    samples::writeBytes(folder.file("Huge.mdl"), bytes);

    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    ModelLibrary library;
    EXPECT_NE(refusal(library, folder.file("Huge.mdl")).find("Huge.mdl"), std::string::npos);
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 100 * 1024); // kilobytes
}

} // namespace
} // namespace vessa::core
