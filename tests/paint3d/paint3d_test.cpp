// The paint tool's painting without a window: skins and brushes, objects
// laid onto their skins, strokes found on the surface, undo, and painted
// objects saved and read back by the engine's own reader.

#include "paint_support.h"

#include "models/model_reading.h"
#include "paint_session.h"
#include "painted_file.h"
#include "reading/reader_process.h"
#include "turntable.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <random>

namespace {

using namespace vessa::paint3d;
using vessa::core::ReaderProcess;

constexpr Rgba kPaint{10, 200, 40, 255};

PaintObject opened(const QString& path) {
    OpenedObject result = openForPainting(path.toStdString(), ReaderProcess::shared());
    EXPECT_TRUE(result.object) << result.refusal;
    return result.object ? std::move(*result.object) : PaintObject{};
}

// A ray from far in front of the object (+z) straight at the point (x, y).
Ray fromTheFront(double x, double y) {
    return {osg::Vec3d(x, y, 50.0), osg::Vec3d(0, 0, -1)};
}

double colorDistance(Rgba a, Rgba b) {
    return std::abs(a.r - b.r) + std::abs(a.g - b.g) + std::abs(a.b - b.b);
}

// What the surface shows where the ray meets it.
Rgba colorUnder(const PaintObject& object, const Ray& ray) {
    const auto hit = SurfacePicker(object).pick(ray);
    EXPECT_TRUE(hit);
    if (!hit)
        return {};
    return object.parts[static_cast<size_t>(hit->part)].skin.sample(hit->s, hit->t);
}

TEST(Skin, AHardBrushIsSolidToItsRimASoftOneFadesAndNeitherReachesPastIt) {
    Skin skin(64, 64, {255, 255, 255, 255});
    Brush brush{6.0, kPaint, false};
    stampBrush(skin, 0.5, 0.5, brush);
    EXPECT_EQ(skin.pixel(32, 32), kPaint);
    EXPECT_EQ(skin.pixel(36, 32), kPaint); // inside the rim
    EXPECT_EQ(skin.pixel(40, 32), (Rgba{255, 255, 255, 255}));
    brush.soft = true;
    stampBrush(skin, 0.25, 0.25, brush);
    const Rgba middle = skin.pixel(16, 16), nearRim = skin.pixel(20, 16);
    EXPECT_LT(colorDistance(middle, kPaint), colorDistance(nearRim, kPaint));
    EXPECT_GT(colorDistance(nearRim, kPaint), 0.0);
    EXPECT_EQ(skin.pixel(16, 24), (Rgba{255, 255, 255, 255}));
    // A dab at the skin's edge stays on the skin.
    stampBrush(skin, 0.0, 1.0, brush);
    EXPECT_EQ(brushRect(skin, 0.0, 1.0, brush).x0, 0);
    EXPECT_EQ(brushRect(skin, 0.0, 1.0, brush).y1, 64);
}

TEST(Skin, APictureLiesUprightAtItsSizeWhereItIsPut) {
    Skin picture(2, 2, {});
    picture.setPixel(0, 0, {255, 0, 0, 255}); // bottom left red
    picture.setPixel(1, 0, {255, 0, 0, 255});
    picture.setPixel(0, 1, {0, 0, 255, 255}); // top blue
    picture.setPixel(1, 1, {0, 0, 255, 255});
    Skin skin(100, 100, {255, 255, 255, 255});
    stampPicture(skin, 0.5, 0.5, picture, 20);
    EXPECT_EQ(skin.pixel(50, 42).r, 255); // below the middle: red
    EXPECT_EQ(skin.pixel(50, 42).b, 0);
    EXPECT_EQ(skin.pixel(50, 58).b, 255); // above: blue
    EXPECT_EQ(skin.pixel(50, 62), (Rgba{255, 255, 255, 255}));
    EXPECT_EQ(skin.pixel(38, 50), (Rgba{255, 255, 255, 255}));
}

TEST(PaintObject, EveryPartGetsASkinThatLooksAsTheObjectDidAndEveryVertexAPlaceOnIt) {
    QTemporaryDir folder;
    const QString file = copyOfGalleryObject(folder, QStringLiteral("Cube"));
    const auto original = vessa::core::readDescription(file.toStdString(), ReaderProcess::shared());
    const PaintObject cube = opened(file);
    ASSERT_FALSE(cube.parts.empty());
    for (const PaintPart& part : cube.parts) {
        EXPECT_LE(part.skin.width(), Skin::kLargestSide);
        for (const PaintMesh& mesh : part.meshes) {
            EXPECT_EQ(mesh.texCoords.size() / 2, mesh.positions.size() / 3);
            for (float c : mesh.texCoords) {
                EXPECT_GE(c, 0.0f);
                EXPECT_LE(c, 1.0f);
            }
            EXPECT_EQ(mesh.look.diffuse[0], 1.0f); // the skin carries the colour
        }
    }
    // The gallery's cube is one colour all over: so is every side of its skin.
    const auto diffuse = original.parts.front().meshes.front().look.diffuse;
    const Rgba colour{static_cast<std::uint8_t>(std::lround(diffuse[0] * 255)),
                      static_cast<std::uint8_t>(std::lround(diffuse[1] * 255)),
                      static_cast<std::uint8_t>(std::lround(diffuse[2] * 255)), 255};
    for (const Ray& ray : {fromTheFront(0.1, 0.5), Ray{{50, 0.5, 0.1}, {-1, 0, 0}},
                           Ray{{0.2, 50, -0.2}, {0, -1, 0}}, Ray{{0, 0.5, -50}, {0, 0, 1}},
                           Ray{{-50, 0.9, 0.4}, {1, 0, 0}}, Ray{{0.3, -50, 0.3}, {0, 1, 0}}})
        EXPECT_LE(colorDistance(colorUnder(cube, ray), colour), 3);
}

TEST(PaintObject, TwoSidesOfThePartNeverShareTexels) {
    QTemporaryDir folder;
    PaintSession session(opened(copyOfGalleryObject(folder, QStringLiteral("Cube"))));
    session.brush = Brush{20.0, kPaint, false};
    ASSERT_TRUE(session.beginStroke(fromTheFront(0.0, 0.5)));
    session.endStroke();
    EXPECT_LT(colorDistance(colorUnder(session.object(), fromTheFront(0.0, 0.5)), kPaint), 10);
    // The back, the sides, the top: untouched.
    for (const Ray& ray : {Ray{{0, 0.5, -50}, {0, 0, 1}}, Ray{{50, 0.5, 0}, {-1, 0, 0}},
                           Ray{{-50, 0.5, 0}, {1, 0, 0}}, Ray{{0, 50, 0}, {0, -1, 0}}})
        EXPECT_GT(colorDistance(colorUnder(session.object(), ray), kPaint), 100);
}

TEST(PaintSession, EachStrokeFillAndPictureIsUndoneOnItsOwnAndAMissIsNothingToUndo) {
    QTemporaryDir folder;
    PaintSession session(opened(copyOfGalleryObject(folder, QStringLiteral("Cube"))));
    const Ray front = fromTheFront(0.0, 0.5);
    const Rgba before = colorUnder(session.object(), front);
    EXPECT_FALSE(session.beginStroke(fromTheFront(5.0, 5.0))); // beside the cube
    session.endStroke();
    EXPECT_FALSE(session.canUndo());
    EXPECT_FALSE(session.changedSinceSave());

    session.brush = Brush{4.0, kPaint, false};
    ASSERT_TRUE(session.beginStroke(fromTheFront(-0.3, 0.5)));
    for (int k = 1; k <= 30; ++k)
        session.continueStroke(fromTheFront(-0.3 + 0.02 * k, 0.5));
    session.endStroke();
    const Rgba stroked = colorUnder(session.object(), front);
    EXPECT_EQ(stroked, colorUnder(session.object(), front));
    EXPECT_LT(colorDistance(stroked, kPaint), 10);

    session.brush.color = {250, 250, 0, 255};
    ASSERT_TRUE(session.fillPart(front));
    EXPECT_EQ(colorUnder(session.object(), Ray{{0, 0.5, -50}, {0, 0, 1}}), session.brush.color);
    EXPECT_TRUE(session.changedSinceSave());

    const Skin picture(4, 2, {0, 0, 250, 255});
    ASSERT_TRUE(session.placePicture(front, picture, 40.0));
    EXPECT_EQ(colorUnder(session.object(), front), (Rgba{0, 0, 250, 255}));
    EXPECT_EQ(colorUnder(session.object(), fromTheFront(0.3, 0.5)), session.brush.color);

    ASSERT_TRUE(session.undo()); // the picture
    EXPECT_EQ(colorUnder(session.object(), front), session.brush.color);
    ASSERT_TRUE(session.undo()); // the fill
    EXPECT_EQ(colorUnder(session.object(), front), stroked);
    ASSERT_TRUE(session.undo()); // the stroke, all of it
    EXPECT_EQ(colorUnder(session.object(), front), before);
    EXPECT_FALSE(session.canUndo());
    EXPECT_FALSE(session.undo());
}

TEST(PaintedFile, APaintedObjectSavedBesideItsFileIsReadBackByTheEngineWithItsPartsAndPaint) {
    QTemporaryDir folder;
    const QString given = copyOfGalleryObject(folder, QStringLiteral("Bunny"));
    const auto original =
        vessa::core::readDescription(given.toStdString(), ReaderProcess::shared());
    PaintSession session(opened(given));
    session.brush = Brush{12.0, kPaint, false};
    const Ray atTheBunny = fromTheFront(0.0, session.picker().centre().y());
    ASSERT_TRUE(session.beginStroke(atTheBunny));
    session.endStroke();

    const SavedObject first = savePainted(session.object(), given.toStdString());
    ASSERT_TRUE(first.failure.empty()) << first.failure;
    EXPECT_EQ(QFileInfo(QString::fromStdString(first.path)).absolutePath(),
              QFileInfo(given).absolutePath());
    const SavedObject second = savePainted(session.object(), given.toStdString());
    EXPECT_NE(second.path, first.path); // a new name each time, nothing overwritten
    QFile givenFile(given);
    ASSERT_TRUE(givenFile.open(QIODevice::ReadOnly));

    // The engine's reader reads the same parts, in the same order, at the same places...
    const auto painted = vessa::core::readDescription(first.path, ReaderProcess::shared());
    ASSERT_EQ(painted.parts.size(), original.parts.size());
    for (size_t k = 0; k < painted.parts.size(); ++k) {
        EXPECT_EQ(painted.parts[k].name, original.parts[k].name);
        EXPECT_EQ(painted.parts[k].parent, original.parts[k].parent);
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(painted.parts[k].position[c], original.parts[k].position[c], 1e-5);
    }
    // ...each with its skin inside the file, and the paint where it was put.
    EXPECT_TRUE(painted.files.empty());
    EXPECT_FALSE(painted.textures.empty());
    EXPECT_LT(colorDistance(colorUnder(paintableFrom(painted), atTheBunny), kPaint), 12);
    EXPECT_NO_THROW(vessa::core::readModel(first.path, ReaderProcess::shared()));
}

TEST(PaintedFile, AFolderGoneSinceIsToldAndNothingIsWritten) {
    QTemporaryDir folder;
    const QString given = copyOfGalleryObject(folder, QStringLiteral("Cube"));
    PaintSession session(opened(given));
    const SavedObject saved =
        savePainted(session.object(), folder.filePath("Gone/Cube.mdl").toStdString());
    EXPECT_TRUE(saved.path.empty());
    EXPECT_NE(saved.failure.find("could not be written to"), std::string::npos) << saved.failure;
    EXPECT_NE(saved.failure.find("No such file"), std::string::npos) << saved.failure;
}

TEST(OpenForPainting, AMissingDamagedOrStrangeFileIsRefusedWithWhy) {
    QTemporaryDir folder;
    const auto refusal = [](const QString& path) {
        const OpenedObject result = openForPainting(path.toStdString(), ReaderProcess::shared());
        EXPECT_FALSE(result.object) << path.toStdString();
        return QString::fromStdString(result.refusal);
    };
    EXPECT_TRUE(refusal(folder.filePath("Gone.mdl")).contains("There is no object file"));

    QFile text(folder.filePath("Letter.mdl"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("Dear friend, this is no object.\n");
    text.close();
    EXPECT_TRUE(refusal(text.fileName()).contains("is damaged"));

    // A gallery object with bytes flipped, seeded: refused or painted, never a crash.
    const QString good = copyOfGalleryObject(folder, QStringLiteral("Bunny"));
    QFile source(good);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const QByteArray bytes = source.readAll();
    std::mt19937 random(47);
    for (int round = 0; round < 20; ++round) {
        QByteArray damaged = bytes;
        for (int k = 0; k < 40; ++k)
            damaged[static_cast<int>(random() % damaged.size())] = static_cast<char>(random());
        QFile file(folder.filePath(QStringLiteral("Damaged%1.mdl").arg(round)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(damaged);
        file.close();
        const OpenedObject result =
            openForPainting(file.fileName().toStdString(), ReaderProcess::shared());
        EXPECT_TRUE(result.object.has_value() != !result.refusal.empty());
    }
}

TEST(Turntable, TheRayThroughTheMiddleOfTheViewMeetsTheObjectsMiddleFromEverySide) {
    QTemporaryDir folder;
    const PaintObject cube = opened(copyOfGalleryObject(folder, QStringLiteral("Cube")));
    const SurfacePicker picker(cube);
    Turntable turntable(picker.centre(), picker.radius());
    turntable.setSize(400, 300);
    for (int turn = 0; turn < 8; ++turn) {
        const Ray ray = turntable.rayAt(200, 150);
        const osg::Vec3d toCentre = picker.centre() - ray.origin;
        EXPECT_NEAR((toCentre ^ ray.direction).length(), 0.0, 1e-6);
        EXPECT_TRUE(picker.pick(ray));
        EXPECT_FALSE(picker.pick(turntable.rayAt(2, 2))); // the corner shows no cube
        turntable.turnBy(97, 31);
    }
}

} // namespace
