// A skin the paint tool painted, back in the world: the engine, over its
// compiled backend, draws the object anew from the file the tool saved, as
// the program asks it to when the tool answers, and the world's picture,
// drawn offscreen, shows the paint where the object stands.

#include "paint_support.h"

#include "paint_session.h"
#include "painted_file.h"
#include "reading/reader_process.h"

#include <QApplication>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <pybind11/embed.h>

namespace py = pybind11;

namespace {

using namespace vessa::paint3d;

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr Rgba kRed{220, 20, 20, 255};

bool isRed(const QColor& color) {
    return color.red() > 60 && color.red() > 2 * color.green() && color.red() > 2 * color.blue();
}

// The gallery's cube with its one part filled red by the tool's Fill, saved
// by the tool's own save beside the copy it was given; the path written.
std::string paintedRed(const QString& given) {
    OpenedObject opened =
        openForPainting(given.toStdString(), vessa::core::ReaderProcess::shared());
    EXPECT_TRUE(opened.object) << opened.refusal;
    if (!opened.object)
        return {};
    PaintSession session(std::move(*opened.object));
    session.brush.color = kRed;
    const osg::Vec3d middle = session.picker().centre();
    EXPECT_TRUE(session.fillPart({{middle.x(), middle.y(), 50.0}, {0, 0, -1}}));
    const SavedObject saved = savePainted(session.object(), given.toStdString());
    EXPECT_EQ(saved.failure, "");
    return saved.path;
}

class PaintedInTheWorld : public ::testing::Test {
protected:
    void SetUp() override {
        engine = py::module_::import("vessa").attr("Interpreter")();
        engine.attr("LoadWorld")(qEnvironmentVariable("VESSA47_HOME").toStdString() +
                                 "Worlds/Default");
    }
    void TearDown() override {
        if (engine)
            engine.attr("Close")();
        engine = py::object();
    }

    // The world through its camera, drawn offscreen without a view.
    QImage picture() {
        QTemporaryDir into;
        const py::object failure =
            engine.attr("SaveThumbnail")(into.path().toStdString(), kWidth, kHeight);
        EXPECT_TRUE(failure.is_none()) << py::str(failure).cast<std::string>();
        return QImage(into.filePath(QStringLiteral("world_thumbnail.bmp")));
    }

    QTemporaryDir folder;
    py::object engine;
};

TEST_F(PaintedInTheWorld, TheObjectRedrawnFromThePaintedFileShowsThePaintWhereItStands) {
    const QString given = copyOfGalleryObject(folder, QStringLiteral("Cube"));
    const std::string painted = paintedRed(given);
    ASSERT_FALSE(painted.empty());

    const QImage empty = picture();
    ASSERT_TRUE(engine.attr("addobject")(given.toStdString()).is_none());
    const QImage unpainted = picture();
    ASSERT_TRUE(engine.attr("replaceobject")("Cube", painted).is_none());
    const QImage repainted = picture();
    ASSERT_EQ(empty.size(), QSize(kWidth, kHeight));
    ASSERT_EQ(unpainted.size(), empty.size());
    ASSERT_EQ(repainted.size(), empty.size());
    if (const char* output = std::getenv("VESSA_DRAWING_OUTPUT"))
        repainted.save(QString::fromUtf8(output) + QStringLiteral("/painted_cube.png"));

    // The object's area: where the world looks otherwise once it stands there.
    int area = 0, redBefore = 0, redAfter = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            if (empty.pixel(x, y) == unpainted.pixel(x, y))
                continue;
            ++area;
            redBefore += isRed(unpainted.pixelColor(x, y));
            redAfter += isRed(repainted.pixelColor(x, y));
        }
    }
    ASSERT_GT(area, kWidth * kHeight / 100) << "the cube is not in the picture";
    EXPECT_LT(redBefore, area / 20);
    EXPECT_GT(redAfter, area * 9 / 10) << redAfter << " of " << area << " pixels red";
}

} // namespace

int main(int argc, char** argv) {
    // No display: the picture is drawn through EGL, as the program's
    // command-line tools draw theirs.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    py::scoped_interpreter python;
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
