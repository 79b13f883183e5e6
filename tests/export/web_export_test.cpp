#include "export/ves_archive.h"
#include "export/web_export.h"
#include "gateway/engine_link.h"
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <zip.h>

// Writing a world as a web page and as an archive, with the real engine, into
// temporary folders that are kept when a test fails.

using namespace vessa;

namespace {

QStringList entriesOf(const QString& archive) {
    int error = 0;
    zip_t* zip = zip_open(QFile::encodeName(archive).constData(), ZIP_RDONLY, &error);
    if (!zip)
        return {QStringLiteral("<not an archive>")};
    QStringList names;
    for (zip_int64_t i = 0; i < zip_get_num_entries(zip, 0); ++i)
        names << QString::fromUtf8(zip_get_name(zip, static_cast<zip_uint64_t>(i), 0));
    zip_close(zip);
    names.sort();
    return names;
}

QByteArray entry(const QString& archive, const QString& name) {
    int error = 0;
    zip_t* zip = zip_open(QFile::encodeName(archive).constData(), ZIP_RDONLY, &error);
    QByteArray bytes;
    if (zip_file_t* file = zip ? zip_fopen(zip, name.toUtf8().constData(), 0) : nullptr) {
        char buffer[4096];
        zip_int64_t got = 0;
        while ((got = zip_fread(file, buffer, sizeof buffer)) > 0)
            bytes.append(buffer, static_cast<qsizetype>(got));
        zip_fclose(file);
    }
    if (zip)
        zip_close(zip);
    return bytes;
}

QStringList everythingIn(const QString& folder) {
    QStringList found;
    QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext())
        found << QDir(folder).relativeFilePath(all.next());
    found.sort();
    return found;
}

void write(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

class Export : public ::testing::Test {
protected:
    Export() {
        dir.setAutoRemove(true);
        world = dir.filePath(QStringLiteral("My World"));
        QDir().mkpath(world);
        QFile::copy(QStringLiteral(VESSA_HOME_DIR "/Worlds/Default/World_Scene.py"),
                    world + QStringLiteral("/World_Scene.py"));
        write(world + QStringLiteral("/world_script.py"), "Camera.Move(Up, 1)\r\n");
        site = dir.filePath(QStringLiteral("site"));
        QDir().mkpath(site);
        InterpreterRegistry registry;
        registerPythonEngine(registry, qEnvironmentVariable("PYTHONPATH"));
        engine.attach(registry.create(kEngineProgId));
        EXPECT_TRUE(engine.call(QStringLiteral("LoadWorld"), {world}).isNull());
    }
    ~Export() override {
        engine.call(QStringLiteral("Close"));
        dir.setAutoRemove(!HasFailure());
    }

    WebPageRequest request(const QString& page) const {
        WebPageRequest asked;
        asked.worldFolder = world;
        asked.pageFile = page;
        asked.width = 640;
        asked.height = 480;
        asked.position = QStringLiteral("Right");
        asked.navigator = true;
        return asked;
    }

    QTemporaryDir dir;
    QString world;
    QString site;
    EngineLink engine;
};

} // namespace

TEST_F(Export, ThePageItsArchiveAndThePlayerStandTogetherInTheFolder) {
    WebExport web(engine, QStringLiteral(VESSA_HOME_DIR "/WebPlayer"));
    QStringList steps;
    const WebExportResult result = web.run(request(site + QStringLiteral("/page.HTM")),
                                           [&](double fraction, const QString& step) {
                                               EXPECT_GE(fraction, 0.0);
                                               EXPECT_LE(fraction, 1.0);
                                               if (steps.isEmpty() || steps.last() != step)
                                                   steps << step;
                                               return true;
                                           });
    ASSERT_EQ(result.outcome, WebExportResult::Written) << result.message.toStdString();
    EXPECT_EQ(steps, (QStringList{"Writing the page", "Copying the player", "Packing the world",
                                  "Putting the files in place"}));
    const QStringList written = everythingIn(site);
    for (const char* name :
         {"page.HTM", "page.ves", "page.models.json", "vessa47_player/player.js",
          "vessa47_player/pyodide/pyodide.asm.wasm", "vessa47_player/three/three.module.min.js",
          "vessa47_player/vessa.zip"})
        EXPECT_TRUE(written.contains(QLatin1String(name))) << name;
    EXPECT_FALSE(
        written.join(u' ').contains(QStringLiteral(".vessa47-export"))); // no work folder left

    // The page asks for what the user chose and names the files beside it.
    QFile page(site + QStringLiteral("/page.HTM"));
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QString html = QString::fromUtf8(page.readAll());
    EXPECT_TRUE(html.contains(QStringLiteral("width=\"640\" height=\"480\"")));
    EXPECT_TRUE(html.contains(QStringLiteral("text-align: right")));
    EXPECT_TRUE(html.contains(QStringLiteral("\"page.ves\"")));
    EXPECT_TRUE(html.contains(QStringLiteral("./vessa47_player/player.js")));
    EXPECT_FALSE(html.contains(QStringLiteral("id=\"vessa47-navigator\" hidden")));

    // The archive: the world's files and the manifest with the program's version.
    const QString archive = site + QStringLiteral("/page.ves");
    EXPECT_EQ(entriesOf(archive),
              (QStringList{"World_Scene.py", kArchiveManifest, "world_script.py"}));
    EXPECT_TRUE(entry(archive, kArchiveManifest).startsWith("Vessa47 world archive"));
    QFile scene(world + QStringLiteral("/World_Scene.py"));
    ASSERT_TRUE(scene.open(QIODevice::ReadOnly));
    EXPECT_EQ(entry(archive, QStringLiteral("World_Scene.py")), scene.readAll());
}

TEST_F(Export, ACancelledExportLeavesTheFolderAsItWas) {
    write(site + QStringLiteral("/page.html"), "the page from before");
    const QStringList before = everythingIn(site);
    WebExport web(engine, QStringLiteral(VESSA_HOME_DIR "/WebPlayer"));
    // Cancelled at each step in turn: nothing new, nothing changed, no work folder.
    for (const QString& at :
         {QStringLiteral("Writing the page"), QStringLiteral("Copying the player"),
          QStringLiteral("Packing the world"), QStringLiteral("Putting the files in place")}) {
        const WebExportResult result =
            web.run(request(site + QStringLiteral("/page.html")),
                    [&](double, const QString& step) { return step != at; });
        EXPECT_EQ(result.outcome, WebExportResult::Cancelled) << at.toStdString();
        EXPECT_EQ(everythingIn(site), before) << at.toStdString();
    }
    QFile page(site + QStringLiteral("/page.html"));
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    EXPECT_EQ(page.readAll(), "the page from before");
}

TEST_F(Export, APageSavedInTheWorldsOwnFolderIsNotPackedIntoItsArchive) {
    WebExport web(engine, QStringLiteral(VESSA_HOME_DIR "/WebPlayer"));
    // Twice, so that the second archive would hold the first page, player and archive.
    for (int round = 0; round < 2; ++round) {
        const WebExportResult result = web.run(request(world + QStringLiteral("/My World.html")));
        ASSERT_EQ(result.outcome, WebExportResult::Written) << result.message.toStdString();
    }
    EXPECT_EQ(entriesOf(world + QStringLiteral("/My World.ves")),
              (QStringList{"World_Scene.py", kArchiveManifest, "world_script.py"}));
}
