// Model files of other programs through the reader program: a part for
// each node of the file that holds surfaces, with the file's tree, names
// and pivots, the file's front (+z) toward the engine's front, pictures
// from beside the file or from inside it, and the files it named told for
// the copy a saved world keeps.
#include "models/model_library.h"
#include "models/model_reading.h"
#include "reading/reader_process.h"
#include "support/sample_files.h"
#include "support/third_party_files.h"

#include <gtest/gtest.h>
#include <osg/ComputeBoundsVisitor>
#include <osg/Geode>
#include <osg/Texture>

#include <filesystem>
#include <fstream>

namespace vessa::core {
namespace {

class ModelFiles : public ::testing::Test {
protected:
    // Read by a library of its own, so that every file is read anew.
    std::shared_ptr<const Model> load(const std::string& name) {
        return ModelLibrary(reader).load(folder.file(name));
    }
    std::string refusal(const std::string& name) {
        try {
            load(name);
        } catch (const ModelError& e) {
            return e.what();
        }
        return {};
    }

    samples::ScratchFolder folder;
    ReaderProcess reader{ReaderProcess::defaultProgram()};
};

std::vector<std::string> namesOf(const Model& model) {
    std::vector<std::string> names;
    for (const ModelPart& part : model.parts)
        names.push_back(part.name);
    return names;
}

std::vector<int> parentsOf(const Model& model) {
    std::vector<int> parents;
    for (const ModelPart& part : model.parts)
        parents.push_back(part.parent);
    return parents;
}

bool wearsAPicture(const ModelPart& part) {
    const osg::Geode* shape = fullDetail(part.shape.get())->asGeode();
    return shape && shape->getNumDrawables() > 0 &&
           shape->getDrawable(0)->getStateSet()->getTextureAttribute(
               0, osg::StateAttribute::TEXTURE) != nullptr;
}

void expectNear(const ChannelValue& value, std::array<double, 3> expected,
                const std::string& what) {
    for (size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(value[k], expected[k], 1e-4) << what << " [" << k << "]";
}

TEST_F(ModelFiles, TreesOfNodesBecomeTreesOfPartsWithTheFilesNamesPivotsAndFront) {
    const samples::ThirdPartyModel robot = samples::robot();
    samples::writeGlb(robot, folder.file(""), "Robot");
    samples::writeGltf(robot, folder.file(""), "Drawn");
    samples::write3ds(robot, folder.file(""), "Kept");
    samples::writeFbx(robot, folder.file(""), "Exchanged", true); // in centimeters
    for (const char* file : {"Robot.glb", "Drawn.gltf", "Kept.3ds", "Exchanged.fbx"}) {
        const auto model = load(file);
        // The file's top and its camera make no parts; its body is the object.
        const std::string object = std::filesystem::path(file).stem().string();
        EXPECT_EQ(namesOf(*model), (std::vector<std::string>{object, "Head", "Tail", "Nose"}))
            << file;
        EXPECT_EQ(parentsOf(*model), (std::vector<int>{-1, 0, 0, 1})) << file;
        if (model->parts.size() != 4)
            continue;
        expectNear(model->parts[1].position, {0, 1.6, 0}, std::string(file) + " head");
        // The nose in front of the head is in front in the engine too.
        expectNear(model->parts[3].position, {0, 0, 0.55}, std::string(file) + " nose");
        EXPECT_EQ(model->parts[3].faces, 12) << file;
    }
}

TEST_F(ModelFiles, FilesWithoutTreesGiveOnePartForEachGroupTurningAboutItsMiddle) {
    const samples::ThirdPartyModel robot = samples::robot();
    samples::writeObj(robot, folder.file(""), "Robot");
    const auto obj = load("Robot.obj");
    EXPECT_EQ(namesOf(*obj), (std::vector<std::string>{"Robot", "Body", "Head", "Nose", "Tail"}));
    EXPECT_EQ(parentsOf(*obj), (std::vector<int>{-1, 0, 0, 0, 0}));
    expectNear(obj->parts[3].position, {0, 1.6, 0.55}, "nose");

    // One surface, standing up: an .stl file stands on z.
    samples::writeStl(robot, folder.file(""), "Robot");
    const auto stl = load("Robot.stl");
    ASSERT_EQ(stl->parts.size(), 1u);
    osg::ComputeBoundsVisitor measure;
    stl->parts[0].shape->accept(measure);
    const osg::BoundingBox box = measure.getBoundingBox();
    EXPECT_NEAR(box.yMin(), 0.0, 1e-4);
    EXPECT_NEAR(box.yMax(), 2.0, 1e-4);
    EXPECT_NEAR(box.zMax(), 0.7, 1e-4); // the nose, in front
}

TEST_F(ModelFiles, AnObjGroupIsOnePartHoweverTheFileSpreadsIt) {
    // Zahn comes twice, with two materials, two smoothing groups and a line.
    std::ofstream(folder.file("Gebiss.mtl")) << "newmtl white\nKd 1 1 1\nnewmtl red\nKd 1 0 0\n";
    std::ofstream(folder.file("Gebiss.obj"))
        << "mtllib Gebiss.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nv 4 0 0\nv 5 0 0\nv 4 1 0\n"
           "o Spider\n"
           "g Zahn\nusemtl white\ns 1\nf 1 2 3\ns 2\nf 1 3 4\nl 1 2\n"
           "g Zahn2\nf 5 6 7\n"
           "g Zahn\nusemtl red\nf 1 2 4\n";
    const auto teeth = load("Gebiss.obj");
    // The empty object Spider makes no part; the file's names are kept as they are.
    EXPECT_EQ(namesOf(*teeth), (std::vector<std::string>{"Gebiss", "Zahn", "Zahn2"}));
    ASSERT_EQ(teeth->parts.size(), 3u);
    EXPECT_EQ(teeth->parts[1].faces, 3);
    expectNear(teeth->parts[1].position, {-0.5, 0.5, 0.5}, "one pivot for all of Zahn");
    expectNear(teeth->parts[2].position, {-4.5, 0.5, 0}, "Zahn2");
}

TEST_F(ModelFiles, PicturesComeFromBesideTheFileOrFromInsideItAndWhatItNamedIsTold) {
    const samples::ThirdPartyModel robot = samples::robot();
    samples::writeObj(robot, folder.file(""), "Robot");
    samples::writeGltf(robot, folder.file(""), "Robot");
    samples::writeGlb(robot, folder.file(""), "Held");
    const auto obj = load("Robot.obj");
    EXPECT_EQ(obj->files, (std::vector<std::string>{"Robot.mtl", "textures/skin.png"}));
    EXPECT_TRUE(wearsAPicture(obj->parts[1]));
    EXPECT_FALSE(wearsAPicture(obj->parts[2]));
    const auto gltf = load("Robot.gltf");
    EXPECT_EQ(gltf->files, (std::vector<std::string>{"Robot.bin", "textures/skin.png"}));
    EXPECT_TRUE(wearsAPicture(gltf->parts[0]));
    const auto glb = load("Held.glb");
    EXPECT_TRUE(glb->files.empty());
    EXPECT_TRUE(wearsAPicture(glb->parts[0]));

    // A name written on another computer is found inside the folder.
    const samples::Bytes bytes = samples::readBytes(folder.file("Robot.mtl"));
    std::string mtl(bytes.begin(), bytes.end());
    mtl.replace(mtl.find("textures/skin.png"), 17, "C:\\Models\\Robot\\TEXTURES\\Skin.PNG");
    std::ofstream(folder.file("Robot.mtl")) << mtl;
    EXPECT_EQ(load("Robot.obj")->files,
              (std::vector<std::string>{"Robot.mtl", "textures/skin.png"}));
    // A missing picture is told, and the object comes without it.
    std::filesystem::remove(folder.file("textures/skin.png"));
    const auto bare = load("Robot.obj");
    EXPECT_EQ(bare->missing, (std::vector<std::string>{"C:\\Models\\Robot\\TEXTURES\\Skin.PNG"}));
    EXPECT_FALSE(wearsAPicture(bare->parts[1]));
}

TEST_F(ModelFiles, FilesWithNothingToSeeOrOfUnknownKindsAreRefusedWithAMessage) {
    std::ofstream(folder.file("Lines.obj")) << "v 0 0 0\nv 1 0 0\nv 0 1 0\nl 1 2 3\n";
    EXPECT_NE(refusal("Lines.obj").find("Lines.obj has nothing Vessa47 can show"),
              std::string::npos);
    std::ofstream(folder.file("Eye.gltf"))
        << R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],)"
           R"("nodes":[{"name":"Eye","camera":0}],)"
           R"("cameras":[{"type":"perspective","perspective":{"yfov":1,"znear":0.1}}]})";
    EXPECT_NE(refusal("Eye.gltf").find("has nothing Vessa47 can show"), std::string::npos);
    std::ofstream(folder.file("Old.x")) << "xof 0303txt 0032\n";
    EXPECT_NE(refusal("Old.x").find("objects come as .mdl, .gltf, .glb, .fbx, .dae, .obj, .3ds, "
                                    ".ply or .stl files"),
              std::string::npos);
}

} // namespace
} // namespace vessa::core
