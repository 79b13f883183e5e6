#include "gateway/engine_link.h"
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"
#include "world/script_run.h"
#include "world/standalone_script.h"

#include "support/web_server.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

// The exported page in a real browser: Debian's Chromium, headless, drawing
// with software WebGL, the page served over the loopback address as a web
// site would serve it.

using namespace vessa;
using vessa::testing::WebServer;

namespace {

constexpr int kWaitMs = 180000;

// A world folder made from the default world's scene, with more objects and a
// script; kept when a test fails.
struct World {
    QTemporaryDir dir;
    QString folder;
    ~World() { dir.setAutoRemove(!::testing::Test::HasFailure()); }

    explicit World(const QString& name, const QByteArray& moreScene) {
        folder = dir.filePath(name);
        QDir().mkpath(folder);
        QFile scene(QStringLiteral(VESSA_HOME_DIR "/Worlds/Default/World_Scene.py"));
        EXPECT_TRUE(scene.open(QIODevice::ReadOnly));
        write(QStringLiteral("World_Scene.py"), scene.readAll() + moreScene);
    }
    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(QDir(folder).filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
};

const QByteArray kBox = "Object(kind='model', name='Box', parent='Scene', firstclass=True, "
                        "position=(0.0, 0.5, 0.0), color=(0.2, 0.4, 0.9))\n";

QString run(const QString& program, const QStringList& arguments, int* exitCode = nullptr) {
    QProcess process;
    process.start(program, arguments);
    const bool finished = process.waitForFinished(kWaitMs);
    if (!finished)
        process.kill();
    process.waitForFinished();
    if (exitCode)
        *exitCode =
            finished && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    const QString err = QString::fromUtf8(process.readAllStandardError());
    if (!err.trimmed().isEmpty())
        ADD_FAILURE() << program.toStdString() << ": " << err.toStdString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

// vessa47 export WORLD --web OUT, as a teacher runs it.
QString exportPage(const QString& world, const QString& out) {
    int exitCode = -1;
    const QString page =
        run(QStringLiteral(VESSA_PROGRAM),
            {QStringLiteral("export"), world, QStringLiteral("--web"), out}, &exitCode)
            .trimmed();
    EXPECT_EQ(exitCode, 0);
    return page;
}

QJsonObject browse(const QStringList& arguments) {
    const vessa::testing::Browsed browsed = vessa::testing::browsePage(arguments, kWaitMs);
    EXPECT_TRUE(browsed.errors.trimmed().isEmpty()) << browsed.errors.toStdString();
    return browsed.seen;
}

bool browserAtHand() {
    return QFileInfo::exists(QStringLiteral("/usr/bin/chromium")) &&
           QFileInfo::exists(QStringLiteral(VESSA_WEB_MODULES "/puppeteer-core"));
}

double y(const QJsonObject& state) {
    return state[QStringLiteral("position")].toArray().at(1).toDouble();
}

} // namespace

TEST(WebPage, AClickOnTheObjectStartsItsAnimationInTheBrowser) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    // "Hop" lifts the box a meter; a left click on the box starts it.
    World world(QStringLiteral("Hop"), kBox);
    world.write(QStringLiteral("world_script.tv"),
                "Hop = DoInOrder\r\n1\r\n1\r\n\r\nBox.Move(Up, 1, more...)\r\n2\r\n0\r\n\r\n"
                "###\r\nLeftMouseButtonDown\r\nBox\r\nHop\r\n###\r\n\r\n");
    QTemporaryDir site;
    ASSERT_EQ(exportPage(world.folder, site.path()), site.filePath(QStringLiteral("Hop.html")));
    WebServer server(site.path());
    ASSERT_TRUE(server.serving());

    const QString picture = site.filePath(QStringLiteral("clicked.png"));
    const QJsonObject seen =
        browse({QStringLiteral("click"), server.url(QStringLiteral("Hop.html")),
                QStringLiteral("Box"), picture});
    // Still before the click; a meter up (nearly) after it.
    EXPECT_DOUBLE_EQ(y(seen[QStringLiteral("before")].toObject()), 0.5);
    EXPECT_GT(y(seen[QStringLiteral("after")].toObject()), 1.4);
    EXPECT_GT(QFileInfo(picture).size(), 0);
    EXPECT_TRUE(seen[QStringLiteral("elsewhere")].toArray().isEmpty())
        << QJsonDocument(seen[QStringLiteral("elsewhere")].toArray()).toJson().toStdString();

    // The up arrow held on the view drives the camera forward, as on the desktop.
    const QJsonObject driven =
        browse({QStringLiteral("key"), server.url(QStringLiteral("Hop.html")),
                QStringLiteral("ArrowUp"), QStringLiteral("1500")});
    const auto z = [](const QJsonValue& camera) {
        return camera.toObject()[QStringLiteral("position")].toArray().at(2).toDouble();
    };
    EXPECT_DOUBLE_EQ(z(driven[QStringLiteral("before")]), -8.0);
    EXPECT_GT(z(driven[QStringLiteral("after")]), -7.5);
}

// The desktop's engine through the gateway, on a clock that moves only when told.
class DesktopRun {
public:
    explicit DesktopRun(const QString& folder) {
        InterpreterRegistry registry;
        registerPythonEngine(registry, qEnvironmentVariable("PYTHONPATH"));
        engine_.attach(registry.create(kEngineProgId));
        engine_.call(QStringLiteral("UseManualClock"));
        EXPECT_TRUE(engine_.call(QStringLiteral("LoadWorld"), {folder}).isNull());
        StandaloneScript script;
        EXPECT_TRUE(script.LoadScriptFiles(folder).ok());
        runPythonScript(engine_, script.python());
    }
    ~DesktopRun() { engine_.call(QStringLiteral("Close")); }

    QJsonObject states() {
        return QJsonDocument::fromJson(
                   engine_.call(QStringLiteral("GetObjectStates")).toString().toUtf8())
            .object();
    }
    void step(double seconds) {
        engine_.call(QStringLiteral("AdvanceClock"), {seconds});
        EXPECT_TRUE(engine_.call(QStringLiteral("Loop")).isNull());
    }
    // The world through its camera, drawn offscreen on the chosen path.
    QImage picture(const QString& folder, int width, int height, bool highQuality) {
        engine_.call(QStringLiteral("SetAcceleration"), {highQuality ? 1 : 0});
        EXPECT_TRUE(
            engine_.call(QStringLiteral("SaveThumbnail"), {folder, width, height}).isNull());
        return QImage(QDir(folder).filePath(QStringLiteral("world_thumbnail.bmp")))
            .convertToFormat(QImage::Format_RGB32);
    }

private:
    EngineLink engine_;
};

// "Bunny.Tail at step 12: position 2 is 0.25 here, 0.2500004 in the page".
void expectSameStates(const QJsonObject& desktop, const QJsonObject& page, int step) {
    EXPECT_EQ(desktop.keys(), page.keys()) << "at step " << step;
    for (const QString& name : desktop.keys()) {
        const QJsonObject mine = desktop[name].toObject();
        const QJsonObject theirs = page[name].toObject();
        EXPECT_EQ(mine[QStringLiteral("visible")], theirs[QStringLiteral("visible")])
            << name.toStdString() << " at step " << step;
        for (const char* channel : {"position", "orientation", "size", "color"}) {
            const QJsonArray a = mine[QLatin1String(channel)].toArray();
            const QJsonArray b = theirs[QLatin1String(channel)].toArray();
            ASSERT_EQ(a.size(), b.size()) << name.toStdString() << " " << channel;
            for (qsizetype i = 0; i < a.size(); ++i)
                EXPECT_NEAR(a[i].toDouble(), b[i].toDouble(), 1e-6)
                    << name.toStdString() << " at step " << step << ": " << channel << " " << i;
        }
    }
}

TEST(WebPage, OneWorldDoesTheSameOnTheDesktopAndInThePage) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    // Moves, turns, a roll, a colour, hiding and showing, a resize, a new parent, an
    // object destroyed, the camera, and a gallery object of many parts walking while
    // its tail turns.
    World world(QStringLiteral("Dance"), kBox + "Object(kind='model', name='Bunny', "
                                                "parent='Scene', firstclass=True, "
                                                "position=(2.0, 0.0, 0.0), model='Bunny.mdl#0')\n");
    QFile::copy(QStringLiteral(VESSA_HOME_DIR "/Objects/Animals/Bunny.mdl"),
                QDir(world.folder).filePath(QStringLiteral("Bunny.mdl")));
    world.write(QStringLiteral("world_script.py"),
                "Dance = DoInOrder(\n"
                "    DoTogether(Box.Move(Up, 1), Box.Turn(Left, 0.25), Box.SetColor(Red)),\n"
                "    Box.Hide(),\n"
                "    DoTogether(Box.Roll(Right, 0.5, Duration=2), Camera.Move(Forward, 1, "
                "Duration=1.5, Style=abruptly)),\n"
                "    Box.Show(),\n"
                "    Box.Resize(InAllDirections, 2, Duration=0.5),\n"
                "    Box.BecomeChildOf(Bunny, Duration=0.5), Light.Destroy())\n"
                "Dance.Start()\n"
                "DoTogether(Bunny.Move(Left, 2, Duration=3), Bunny.Turn(Right, 0.5, Duration=3),\n"
                "           Bunny.Tail.Turn(Left, 2, Duration=2, Style=BeginGently)).Start()\n");
    QTemporaryDir site;
    exportPage(world.folder, site.path());
    ASSERT_TRUE(QFile::copy(QStringLiteral(VESSA_SOURCE_DIR "/tests/export/web/same_world.html"),
                            site.filePath(QStringLiteral("same_world.html"))));
    WebServer server(site.path());
    ASSERT_TRUE(server.serving());

    constexpr int kSteps = 50;
    constexpr double kSeconds = 0.125;
    const QJsonObject found =
        browse({QStringLiteral("steps"),
                server.url(QStringLiteral("same_world.html?world=Dance&steps=%1&seconds=%2")
                               .arg(kSteps)
                               .arg(kSeconds))});
    ASSERT_FALSE(found.contains(QStringLiteral("failure")))
        << found[QStringLiteral("failure")].toString().toStdString();
    const QJsonArray inPage = found[QStringLiteral("states")].toArray();
    ASSERT_EQ(inPage.size(), kSteps + 1);

    DesktopRun desktop(world.folder);
    for (int step = 0; step <= kSteps; ++step) {
        if (step > 0)
            desktop.step(kSeconds);
        expectSameStates(desktop.states(), inPage[step].toObject(), step);
    }
    // The world did move: the box ended twice its size, the bunny two meters on, the
    // light gone.
    const QJsonObject last = inPage[kSteps].toObject();
    EXPECT_FALSE(last.contains(QStringLiteral("Light")));
    EXPECT_NEAR(
        last[QStringLiteral("Box")].toObject()[QStringLiteral("size")].toArray()[0].toDouble(), 2.0,
        1e-9);
    EXPECT_GT(std::abs(last[QStringLiteral("Bunny")]
                           .toObject()[QStringLiteral("position")]
                           .toArray()[0]
                           .toDouble() -
                       2.0),
              1.9);
}

// -- what the page draws, beside what the desktop draws -----------------------

namespace {

constexpr int kViewWidth = 320; // the page's view as the export sizes it
constexpr int kViewHeight = 240;

// The page's view, drawn on the high-quality or the light path, once its
// pictures are decoded; a null picture when the page did not play. The page
// asks nothing of any other address.
QImage pageView(const WebServer& server, const QString& page, const QString& into, bool high) {
    const QJsonObject seen = browse({QStringLiteral("look"), server.url(page), into,
                                     high ? QStringLiteral("high") : QStringLiteral("low")});
    EXPECT_TRUE(seen[QStringLiteral("failure")].isNull())
        << seen[QStringLiteral("failure")].toString().toStdString();
    EXPECT_GT(seen[QStringLiteral("frames")].toInt(), 2);
    EXPECT_TRUE(seen[QStringLiteral("elsewhere")].toArray().isEmpty())
        << QJsonDocument(seen[QStringLiteral("elsewhere")].toArray()).toJson().toStdString();
    return QImage(into).convertToFormat(QImage::Format_RGB32);
}

// A world exported into a folder of its own and served on the loopback address.
struct ServedWorld {
    QTemporaryDir site;
    QString page; // the page's file name
    std::unique_ptr<WebServer> server;

    ServedWorld(const World& world, const QString& name) : page(name + QStringLiteral(".html")) {
        exportPage(world.folder, site.path());
        server = std::make_unique<WebServer>(site.path());
    }
    // The page's view on the high-quality or the light path, kept as `file`.
    QImage view(bool high, const QString& file = QStringLiteral("page.png")) const {
        return pageView(*server, page, site.filePath(file), high);
    }
};

// The desktop's picture of the world, at the page's size.
QImage desktopView(const World& world, bool high) {
    return DesktopRun(world.folder).picture(world.folder, kViewWidth, kViewHeight, high);
}

using PixelTest = bool (*)(QRgb);

QList<QPoint> pixelsWhere(const QImage& image, PixelTest test) {
    QList<QPoint> found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (test(image.pixel(x, y)))
                found.append({x, y});
        }
    }
    return found;
}

// How much two sets of pixels overlap: 1 the same pixels, 0 none in common.
double overlap(const QList<QPoint>& a, const QList<QPoint>& b) {
    QSet<quint64> inA;
    for (const QPoint& p : a)
        inA.insert(quint64(p.x()) << 32 | quint64(p.y()));
    qsizetype both = 0;
    for (const QPoint& p : b)
        both += inA.contains(quint64(p.x()) << 32 | quint64(p.y()));
    const qsizetype either = a.size() + b.size() - both;
    return either == 0 ? 1.0 : double(both) / double(either);
}

bool reddish(QRgb c) {
    return qRed(c) > qGreen(c) + 50 && qRed(c) > qBlue(c) + 50;
}
bool yellowish(QRgb c) {
    return qRed(c) > qBlue(c) + 60 && qGreen(c) > qBlue(c) + 60 &&
           std::abs(qRed(c) - qGreen(c)) < 50;
}
bool greyish(QRgb c) {
    return qMin(qRed(c), qMin(qGreen(c), qBlue(c))) > 60 &&
           qMax(qRed(c), qMax(qGreen(c), qBlue(c))) - qMin(qRed(c), qMin(qGreen(c), qBlue(c))) < 30;
}
bool magentaish(QRgb c) {
    return qRed(c) > qGreen(c) + 60 && qBlue(c) > qGreen(c) + 60;
}

// The pixels that the high-quality path draws clearly darker than the light one.
QList<QPoint> darkened(const QImage& light, const QImage& high) {
    QList<QPoint> found;
    for (int y = 0; y < light.height(); ++y) {
        for (int x = 0; x < light.width(); ++x) {
            if (qGray(high.pixel(x, y)) < qGray(light.pixel(x, y)) * 0.85)
                found.append({x, y});
        }
    }
    return found;
}

// Each channel's average difference, 0 to 255, over a disc of the view.
double meanDifference(const QImage& a, const QImage& b, QPoint centre, int radius) {
    double sum = 0;
    int count = 0;
    for (int y = centre.y() - radius; y <= centre.y() + radius; ++y) {
        for (int x = centre.x() - radius; x <= centre.x() + radius; ++x) {
            if ((QPoint(x, y) - centre).manhattanLength() > radius)
                continue;
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                   std::abs(qBlue(p) - qBlue(q));
            ++count;
        }
    }
    return sum / (3.0 * count);
}

// A cube two meters a side standing on the ground, its sides showing a
// picture, in a material of its own colour (r g b).
void writeTexturedCube(const World& world, const QByteArray& picture, const QByteArray& color) {
    world.write(QStringLiteral("Crate.obj"),
                "mtllib Crate.mtl\n"
                "v -1 0 -1\nv 1 0 -1\nv 1 2 -1\nv -1 2 -1\nv -1 0 1\nv 1 0 1\nv 1 2 1\nv -1 2 1\n"
                "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nusemtl skin\n"
                "f 1/1 4/4 3/3 2/2\nf 5/1 6/2 7/3 8/4\nf 1/1 5/2 8/3 4/4\n"
                "f 2/1 3/4 7/3 6/2\nf 4/1 8/2 7/3 3/4\nf 1/1 2/2 6/3 5/4\n");
    world.write(QStringLiteral("Crate.mtl"), "newmtl skin\nKd " + color + "\nmap_Kd Crate.png\n");
    world.write(QStringLiteral("Crate.png"), picture);
}

QByteArray yellowOverMagenta() {
    QImage picture(64, 64, QImage::Format_RGB32);
    picture.fill(QColor(255, 230, 0));
    for (int y = 32; y < 64; ++y) {
        for (int x = 0; x < 64; ++x)
            picture.setPixel(x, y, qRgb(230, 0, 230));
    }
    QByteArray png;
    QBuffer out(&png);
    out.open(QIODevice::WriteOnly);
    picture.save(&out, "PNG");
    return png;
}

const QByteArray kCrate = "Object(kind='model', name='Crate', parent='Scene', firstclass=True, "
                          "position=(0.0, 0.0, 0.0), model='Crate.obj#0')\n";

} // namespace

TEST(WebPageDrawing, TextsStandAsSolidLettersWhereTheDesktopDrawsThem) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    // Red letters facing the camera; beside them a text of no words, in magenta.
    World world(QStringLiteral("Sign"),
                "Object(kind='model', name='Sign', parent='Scene', firstclass=True, "
                "position=(0.0, 1.0, 0.0), orientation=(0, 0, 1, 0), color=(1.0, 0.0, 0.0), "
                "model='text:HELLO')\n"
                "Object(kind='model', name='Blank', parent='Scene', firstclass=True, "
                "position=(0.0, 2.5, 0.0), color=(1.0, 0.0, 1.0), model='text:')\n");
    ServedWorld served(world, QStringLiteral("Sign"));
    ASSERT_TRUE(served.server->serving());

    const QImage page = served.view(false);
    const QImage desktop = desktopView(world, false);
    const QList<QPoint> letters = pixelsWhere(page, reddish);
    // Letters most of a meter high, eight meters away, stand in the view
    // where the desktop draws its own; the text of no words draws nothing.
    EXPECT_GT(letters.size(), 500);
    EXPECT_GT(overlap(letters, pixelsWhere(desktop, reddish)), 0.7);
    EXPECT_TRUE(pixelsWhere(page, magentaish).isEmpty());
}

TEST(WebPageDrawing, AModelsPictureIsOnItsSidesAndABrokenOneLeavesItsColour) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    World world(QStringLiteral("Crate"), kCrate);
    writeTexturedCube(world, yellowOverMagenta(), "1 1 1");
    ServedWorld served(world, QStringLiteral("Crate"));
    ASSERT_TRUE(served.server->serving());

    // The picture the right way up, where the desktop puts it.
    const QImage page = served.view(false);
    const QImage desktop = desktopView(world, false);
    EXPECT_GT(pixelsWhere(page, yellowish).size(), 1000);
    EXPECT_GT(overlap(pixelsWhere(page, yellowish), pixelsWhere(desktop, yellowish)), 0.7);
    EXPECT_GT(overlap(pixelsWhere(page, magentaish), pixelsWhere(desktop, magentaish)), 0.7);

    // A picture the browser can't decode, and one named by an address, which
    // is not fetched: the page plays on, the cube in its material's white
    // where the picture was.
    QFile shapes(served.site.filePath(QStringLiteral("Crate.models.json")));
    ASSERT_TRUE(shapes.open(QIODevice::ReadOnly));
    const QString exported = QString::fromUtf8(shapes.readAll());
    shapes.close();
    static const QRegularExpression picture(QStringLiteral(R"("data:image/png;base64,[^"]*")"));
    ASSERT_TRUE(picture.match(exported).hasMatch());
    const QList<QPoint> cube = pixelsWhere(page, yellowish) + pixelsWhere(page, magentaish);
    for (const QString& instead : {QStringLiteral(R"("data:image/png;base64,iVBORw0KGgoAAAA")"),
                                   QStringLiteral(R"("http://192.0.2.1/Crate.png")")}) {
        ASSERT_TRUE(shapes.open(QIODevice::WriteOnly | QIODevice::Truncate));
        shapes.write(QString(exported).replace(picture, instead).toUtf8());
        shapes.close();
        const QImage broken = served.view(false, QStringLiteral("broken.png"));
        EXPECT_TRUE(pixelsWhere(broken, yellowish).isEmpty()) << instead.toStdString();
        EXPECT_TRUE(pixelsWhere(broken, magentaish).isEmpty()) << instead.toStdString();
        EXPECT_GT(overlap(cube, pixelsWhere(broken, greyish)), 0.8) << instead.toStdString();
    }
}

TEST(WebPageDrawing, APictureFileThatIsNotOneLeavesTheModelColoured) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    World world(QStringLiteral("Crate"), kCrate);
    writeTexturedCube(world, QByteArray("\x89PNG\r\n\x1a\n") + QByteArray(500, '\x7f'),
                      "0.2 0.3 1.0");
    ServedWorld served(world, QStringLiteral("Crate"));
    ASSERT_TRUE(served.server->serving());
    const QImage page = served.view(false);
    EXPECT_GT(pixelsWhere(page, [](QRgb c) { return qBlue(c) > qRed(c) + 80; }).size(), 1000);
}

TEST(WebPageDrawing, ShadowsAndLightAsOnTheDesktop) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    // A box standing on the ground and a ball floating beside it, under the world's light.
    World world(QStringLiteral("Shade"),
                kBox + "Object(kind='model', name='Ball', parent='Scene', firstclass=True, "
                       "position=(-2.0, 1.5, 0.0), color=(0.9, 0.8, 0.2), model='Ball.mdl#0')\n");
    QFile::copy(QStringLiteral(VESSA_HOME_DIR "/Objects/Shapes/Ball.mdl"),
                QDir(world.folder).filePath(QStringLiteral("Ball.mdl")));
    ServedWorld served(world, QStringLiteral("Shade"));
    ASSERT_TRUE(served.server->serving());
    const QImage pageLight = served.view(false, QStringLiteral("light.png"));
    const QImage pageHigh = served.view(true, QStringLiteral("high.png"));
    DesktopRun desktop(world.folder);
    const QImage desktopLight = desktop.picture(world.folder, kViewWidth, kViewHeight, false);
    const QImage desktopHigh = desktop.picture(world.folder, kViewWidth, kViewHeight, true);

    // The objects' shadows darken the same stretch of ground, only on the
    // high-quality path.
    const QList<QPoint> shade = darkened(pageLight, pageHigh);
    EXPECT_GT(shade.size(), 300);
    EXPECT_GT(overlap(shade, darkened(desktopLight, desktopHigh)), 0.6);
}

TEST(WebPageDrawing, ABallIsLitAsOnTheDesktop) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    // A ball two meters across, three meters before the camera, in the middle of the view.
    World world(QStringLiteral("Lit"),
                "Object(kind='model', name='Ball', parent='Scene', firstclass=True, "
                "position=(0.0, 0.5, -5.0), size=(2.0, 2.0, 2.0), model='Ball.mdl#0')\n");
    QFile::copy(QStringLiteral(VESSA_HOME_DIR "/Objects/Shapes/Ball.mdl"),
                QDir(world.folder).filePath(QStringLiteral("Ball.mdl")));
    ServedWorld served(world, QStringLiteral("Lit"));
    ASSERT_TRUE(served.server->serving());
    const QImage page = served.view(false);
    const QImage desktop = desktopView(world, false);
    // Its colours, its light and dark sides and its highlight as the desktop's, give
    // or take the rounding of two different drawings.
    EXPECT_LT(meanDifference(page, desktop, {kViewWidth / 2, kViewHeight / 2}, 70), 8.0);
}

TEST(WebPageDrawing, LargeFlatFacesAreLitAtTheirCornersAsOnTheDesktop) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    // The default world's ground, and a board two meters wide, its back to
    // the world's light, with a lamp half a meter before its middle: far from
    // their corners, a light barely brightens such faces on the desktop,
    // however near their middles it is.
    World world(QStringLiteral("Board"),
                "Object(kind='model', name='Board', parent='Scene', firstclass=True, "
                "position=(0.0, 1.5, -4.5), size=(2.0, 1.2, 0.1), color=(0.8, 0.8, 0.8))\n"
                "Object(kind='light', name='Lamp', parent='Scene', firstclass=True, "
                "position=(0.0, 1.5, -5.05))\n");
    ServedWorld served(world, QStringLiteral("Board"));
    ASSERT_TRUE(served.server->serving());
    const QImage page = served.view(false);
    const QImage desktop = desktopView(world, false);
    const QPoint board(kViewWidth / 2, kViewHeight / 2);
    const QPoint ground(kViewWidth / 2, kViewHeight * 7 / 8);
    EXPECT_LT(meanDifference(page, desktop, board, 40), 6.0);
    EXPECT_LT(meanDifference(page, desktop, ground, 25), 6.0);
}

namespace {

// What the desktop's engine tells the user when `statement`, run in the
// world's namespace, runs away: the text of its error dialog.
QString desktopStopMessage(const QString& folder, const QString& statement) {
    InterpreterRegistry registry;
    registerPythonEngine(registry, qEnvironmentVariable("PYTHONPATH"));
    EngineLink engine;
    engine.attach(registry.create(kEngineProgId));
    EXPECT_TRUE(engine.call(QStringLiteral("LoadWorld"), {folder}).isNull());
    StandaloneScript script;
    EXPECT_TRUE(script.LoadScriptFiles(folder).ok());
    runPythonScript(engine, script.python());
    engine.call(QStringLiteral("ExecuteCode"),
                {statement, QStringLiteral("<Command Line>"), QStringLiteral("exec")});
    engine.call(QStringLiteral("flushout"));
    QString told;
    for (const QVariant& record : engine.call(QStringLiteral("PollForMiscDifferences")).toList()) {
        const QVariantList fields = record.toList();
        if (fields.value(0).toString() == QStringLiteral("popuperrordialog"))
            told = fields.value(1).toString();
    }
    engine.call(QStringLiteral("Close"));
    return told;
}

// A mono 16-bit WAV file of `frames` samples at `rate` a second.
QByteArray wav(quint32 frames, quint32 rate) {
    QByteArray bytes;
    const auto put = [&bytes](quint32 value, int size) {
        for (int i = 0; i < size; ++i)
            bytes.append(static_cast<char>((value >> (8 * i)) & 0xff));
    };
    bytes.append("RIFF");
    put(36 + frames * 2, 4);
    bytes.append("WAVEfmt ");
    put(16, 4);
    put(1, 2); // PCM
    put(1, 2); // one channel
    put(rate, 4);
    put(rate * 2, 4);
    put(2, 2);
    put(16, 2);
    bytes.append("data");
    put(frames * 2, 4);
    for (quint32 i = 0; i < frames; ++i)
        put((i % 50) * 400, 2);
    return bytes;
}

} // namespace

TEST(WebPage, CodeThatRunsAwayInThePageIsStoppedAndTheWorldGoesOn) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    // A click on Box spins for ever; one on Stone spins inside a loop whose bare
    // `except:` catches everything; one on Ball lifts it a meter.
    World world(QStringLiteral("Spin"),
                "Object(kind='model', name='Box', parent='Scene', firstclass=True, "
                "position=(-1.5, 0.5, 0.0))\n"
                "Object(kind='model', name='Stone', parent='Scene', firstclass=True, "
                "position=(0.0, 0.5, 0.0))\n"
                "Object(kind='model', name='Ball', parent='Scene', firstclass=True, "
                "position=(1.5, 0.5, 0.0))\n");
    world.write(QStringLiteral("world_script.tv"),
                "Hop = DoInOrder\r\n1\r\n1\r\n\r\nBall.Move(Up, 1, more...)\r\n2\r\n0\r\n\r\n"
                "###\r\nLeftMouseButtonDown\r\nBall\r\nHop\r\n###\r\n"
                "def spin(event):\r\n    while True: pass\r\n\r\n"
                "def swallow(event):\r\n    while True:\r\n        try:\r\n"
                "            while True: pass\r\n        except:\r\n            pass\r\n\r\n"
                "Box.addresponse(LeftMouseDown, spin)\r\n"
                "Stone.addresponse(LeftMouseDown, swallow)\r\n");
    ServedWorld served(world, QStringLiteral("Spin"));
    ASSERT_TRUE(served.server->serving());

    const QString desktopSays = desktopStopMessage(world.folder, QStringLiteral("spin(None)"));
    ASSERT_TRUE(desktopSays.contains(QStringLiteral("took too long"))) << desktopSays.toStdString();
    for (const QString& spinner : {QStringLiteral("Box"), QStringLiteral("Stone")}) {
        // The page tells the stop in the desktop's words, goes on drawing, and
        // the next click runs its animation.
        const QJsonObject seen =
            browse({QStringLiteral("stop"), served.server->url(QStringLiteral("Spin.html")),
                    spinner, QStringLiteral("Ball")});
        EXPECT_EQ(seen[QStringLiteral("told")].toString(), desktopSays) << spinner.toStdString();
        EXPECT_DOUBLE_EQ(y(seen[QStringLiteral("before")].toObject()), 0.5);
        EXPECT_GT(y(seen[QStringLiteral("after")].toObject()), 1.4) << spinner.toStdString();
        EXPECT_GT(seen[QStringLiteral("framesSince")].toInt(), 0);
    }
}

TEST(WebPage, TheWorldsSoundsAreDecodedFromItsFilesAndStarted) {
    if (!browserAtHand())
        GTEST_SKIP() << "no Chromium or puppeteer-core (tools/install-deps.sh installs them)";
    // The world starts Crack (a damaged file) and Wind at half volume; a click on
    // Box plays Pop at a quarter.
    World world(QStringLiteral("Chime"), kBox + "Sound(name='Pop', file='Pop.wav')\n"
                                                "Sound(name='Wind', file='Wind.wav')\n"
                                                "Sound(name='Crack', file='Crack.wav')\n");
    world.write(QStringLiteral("Pop.wav"), wav(11025, 22050));
    world.write(QStringLiteral("Wind.wav"), wav(24000, 16000));
    QByteArray damaged = wav(8000, 16000);
    damaged.replace(0, 16, QByteArray(16, '\x7f')); // no header a reader knows
    world.write(QStringLiteral("Crack.wav"), damaged);
    world.write(
        QStringLiteral("world_script.tv"),
        "Chime = DoInOrder\r\n1\r\n1\r\n\r\nBox.PlaySound(Pop, Volume=0.25)\r\n2\r\n0\r\n\r\n"
        "Breeze = DoInOrder\r\n1\r\n1\r\n\r\nBox.PlaySound(Crack, more...)\r\n2\r\n0\r\n\r\n"
        "Box.PlaySound(Wind, Volume=0.5)\r\n2\r\n0\r\n\r\n"
        "###\r\nLeftMouseButtonDown\r\nBox\r\nChime\r\nWorld Start\r\n- - -\r\nBreeze\r\n"
        "###\r\n\r\n");
    ServedWorld served(world, QStringLiteral("Chime"));
    ASSERT_TRUE(served.server->serving());

    const QJsonObject heard =
        browse({QStringLiteral("sound"), served.server->url(QStringLiteral("Chime.html")),
                QStringLiteral("Box"), QStringLiteral("2")});
    const auto expectStarted = [](const QJsonValue& sound, const char* file, double seconds,
                                  double volume) {
        const QJsonObject s = sound.toObject();
        EXPECT_EQ(s[QStringLiteral("path")].toString(), QStringLiteral("/world/") + file);
        EXPECT_NEAR(s[QStringLiteral("seconds")].toDouble(), seconds, 1e-3) << file;
        EXPECT_DOUBLE_EQ(s[QStringLiteral("volume")].toDouble(), volume) << file;
        EXPECT_EQ(s[QStringLiteral("loop")], QJsonValue(false)) << file;
    };
    // Before the click: Wind plays, 1.5 s as its file is long; Crack is refused.
    const QJsonObject before = heard[QStringLiteral("beforeClick")].toObject();
    const QJsonArray startedBefore = before[QStringLiteral("started")].toArray();
    ASSERT_EQ(startedBefore.size(), 1);
    expectStarted(startedBefore[0], "Wind.wav", 1.5, 0.5);
    EXPECT_EQ(before[QStringLiteral("unplayable")].toArray(),
              QJsonArray{QStringLiteral("/world/Crack.wav")});
    // The click plays Pop, half a second, and the page's audio runs.
    const QJsonObject after = heard[QStringLiteral("afterClick")].toObject();
    const QJsonArray startedAfter = after[QStringLiteral("started")].toArray();
    ASSERT_EQ(startedAfter.size(), 2);
    expectStarted(startedAfter[1], "Pop.wav", 0.5, 0.25);
    EXPECT_EQ(after[QStringLiteral("state")].toString(), QStringLiteral("running"));
}
