// A model made by another program, a thousand meters tall and facing +z,
// as a user adds it to the default world, sees it, saves the world and
// opens it again: it shows its front, fits the view, wears its picture
// upright, and comes back with the same parts, names and look, its
// pictures kept in the world's folder.
#include "support/third_party_files.h"

#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>
#include <QWidget>
#include <gtest/gtest.h>
#include <pybind11/embed.h>
#include <pybind11/stl.h>

#include <filesystem>

namespace py = pybind11;
namespace samples = vessa::samples;

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr int kHostId = 2;

struct Colours {
    int red = 0, magenta = 0;          // the nose in front, the tail behind
    double yellowRow = 0, blueRow = 0; // where the picture's halves are, on average
    int yellow = 0, blue = 0;
};

Colours coloursOf(const QImage& image) {
    Colours found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            found.red += c.red() > 120 && c.green() < 50 && c.blue() < 50;
            found.magenta += c.red() > 120 && c.blue() > 120 && c.green() < 50;
            if (c.red() > 150 && c.green() > 140 && c.blue() < 80) {
                ++found.yellow;
                found.yellowRow += y;
            }
            if (c.blue() > 150 && c.red() < 90 && c.green() < 120) {
                ++found.blue;
                found.blueRow += y;
            }
        }
    }
    found.yellowRow /= std::max(found.yellow, 1);
    found.blueRow /= std::max(found.blue, 1);
    return found;
}

// Pixels that differ by more than a little in any colour.
int differentPixels(const QImage& a, const QImage& b) {
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y), q = b.pixelColor(x, y);
            count += std::abs(p.red() - q.red()) > 24 || std::abs(p.green() - q.green()) > 24 ||
                     std::abs(p.blue() - q.blue()) > 24;
        }
    }
    return count;
}

class ModelFilesView : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            GTEST_SKIP() << "drawing needs a display";
        host.setProperty("vessaHostId", kHostId);
        host.resize(kWidth, kHeight);
        host.show();
        engine = py::module_::import("vessa").attr("Interpreter")();
        ASSERT_TRUE(engine.attr("imagenavigator")(kWidth, kHeight, kHostId).is_none());
        const std::string home = qEnvironmentVariable("VESSA47_HOME").toStdString();
        ASSERT_TRUE(engine.attr("LoadWorld")(home + "Worlds/Default").is_none());
    }

    void TearDown() override {
        if (engine)
            engine.attr("Close")();
        engine = py::object();
    }

    QImage frame() {
        auto* view = host.findChild<QWidget*>(QStringLiteral("ImageNavigator"));
        const QImage image = view ? view->grab().toImage() : QImage();
        if (const char* folder = std::getenv("VESSA_DRAWING_OUTPUT"))
            image.save(QString::fromUtf8(folder) + "/" + GetParam() + QString::number(++frames_) +
                       ".png");
        return image;
    }

    std::string output() {
        engine.attr("flushout")();
        std::string text;
        for (const py::handle record : engine.attr("PollForMiscDifferences")()) {
            if (record[py::int_(0)].cast<std::string>() == "output")
                text += record[py::int_(1)].cast<std::string>();
        }
        return text;
    }

    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const py::handle thing : engine.attr("scene").attr("living")())
            found.push_back(thing.attr("name").cast<std::string>());
        std::sort(found.begin(), found.end());
        return found;
    }

    QWidget host;
    py::object engine;

private:
    int frames_ = 0;
};

TEST_P(ModelFilesView, AModelFromElsewhereFacesUsFitsTheViewAndComesBackFromItsWorldAsItWas) {
    const std::string kind = GetParam();
    QTemporaryDir scratch;
    const std::string downloads = scratch.filePath("zoo animals").toStdString();
    const samples::ThirdPartyModel robot = samples::robot(500); // a thousand meters tall
    if (kind == "obj")
        samples::writeObj(robot, downloads, "Big Robot");
    else if (kind == "3ds")
        samples::write3ds(robot, downloads, "Big Robot");
    else if (kind == "gltf")
        samples::writeGltf(robot, downloads, "Big Robot");
    else
        samples::writeGlb(robot, downloads, "Big Robot");
    output();
    ASSERT_TRUE(engine.attr("addobject")(downloads + "/Big Robot." + kind).is_none());
    EXPECT_NE(output().find("BigRobot is 1,000 meters across in its file"), std::string::npos);

    const QImage added = frame();
    const Colours seen = coloursOf(added);
    EXPECT_GT(seen.red, 150) << "its nose, in front, faces the camera";
    EXPECT_EQ(seen.magenta, 0) << "its tail, behind, is hidden";
    EXPECT_GT(seen.yellow, 300);
    EXPECT_GT(seen.blue, 300);
    EXPECT_LT(seen.yellowRow, seen.blueRow) << "the picture stands upright";
    const QColor top = added.pixelColor(kWidth / 2, 1);
    EXPECT_GT(top.blue(), top.red() + 40) << "the sky above: it fits the view";

    const std::vector<std::string> before = names();
    const std::string world = scratch.filePath("World").toStdString();
    std::filesystem::create_directory(world);
    ASSERT_TRUE(engine.attr("SaveScene")(world).is_none());
    EXPECT_EQ(output(), "");
    EXPECT_TRUE(std::filesystem::exists(world + "/Big Robot." + kind));
    EXPECT_EQ(std::filesystem::exists(world + "/textures/skin.png"), kind != "glb");
    EXPECT_LT(differentPixels(frame(), added), kWidth * kHeight / 200) << "as it looked";

    ASSERT_TRUE(engine.attr("LoadWorld")(world).is_none());
    EXPECT_EQ(output(), "");
    EXPECT_EQ(names(), before);
    EXPECT_LT(differentPixels(frame(), added), kWidth * kHeight / 200);
}

INSTANTIATE_TEST_SUITE_P(EachKind, ModelFilesView, ::testing::Values("obj", "3ds", "gltf", "glb"));

} // namespace
