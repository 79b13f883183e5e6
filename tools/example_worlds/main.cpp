// Makes the example worlds of the home folder with the program's own engine and file
// writers:
//   vessa_example_worlds RECIPES HOME
// RECIPES holds a folder per kind of example ("Examples", "Python Examples"), and in
// it a folder per world with
//   scene.txt            what the world's scene holds, a line each: "object
//                        Folder/Name" adds the gallery's object, "sound Name" the
//                        gallery's sound, and any other line is a statement the engine
//                        runs (to place, turn, colour or name what was added)
//   world_script.tv      the world's script tree, event rows and code
//   World_VessaHelp.html the world's page of the guide
// Each world is built on HOME's default world and written into HOME/Worlds/<kind>/<world>
// as the program saves a world: the engine's scene with the model and sound files it
// uses, the script files written the way a save writes them, and the world's picture.
#include "gateway/engine_link.h"
#include "gateway/engine_registration.h"
#include "gateway/error_reporter.h"
#include "gateway/interpreter.h"
#include "gateway/interpreter_registry.h"
#include "world/standalone_script.h"
#include "world/world_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <cstdio>

namespace {

using namespace vessa;

// Long enough for what a scene line starts (a move or a turn of no duration) to end.
constexpr double kSettleSeconds = 2.0;

[[noreturn]] void fail(const QString& why) {
    std::fprintf(stderr, "vessa_example_worlds: %s\n", qPrintable(why));
    std::exit(1);
}

void succeed(const QVariant& result, const QString& what) {
    if (!isSuccessResult(result))
        fail(what + QStringLiteral(": ") + result.toString());
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        fail(QStringLiteral("can't write ") + path);
}

QStringList sceneLines(const QString& recipe) {
    QFile file(recipe + QStringLiteral("/scene.txt"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        fail(QStringLiteral("can't read ") + file.fileName());
    QStringList lines;
    QTextStream in(&file);
    while (!in.atEnd())
        if (const QString line = in.readLine().trimmed(); !line.isEmpty())
            lines << line;
    return lines;
}

void buildScene(EngineLink& engine, const QString& home, const QString& recipe) {
    succeed(engine.call(QStringLiteral("LoadWorld"), {home + QStringLiteral("Worlds/Default")}),
            QStringLiteral("the default world"));
    for (const QString& line : sceneLines(recipe)) {
        QVariant result;
        if (line.startsWith(QStringLiteral("object ")))
            result =
                engine.call(QStringLiteral("addobject"), {home + QStringLiteral("Objects/") +
                                                          line.mid(7) + QStringLiteral(".mdl")});
        else if (line.startsWith(QStringLiteral("sound ")))
            result =
                engine.call(QStringLiteral("AddSound"), {home + QStringLiteral("Sounds/") +
                                                         line.mid(6) + QStringLiteral(".wav")});
        else
            result = engine.ExecuteCode(line, QStringLiteral("<Tool>"));
        succeed(result, recipe + QStringLiteral(": ") + line);
        // What the statement started runs to its end in the engine's own time.
        succeed(engine.call(QStringLiteral("AdvanceClock"), {kSettleSeconds}), line);
        succeed(engine.call(QStringLiteral("Loop")), line);
        // A statement's mistakes come as records, not as the call's answer.
        engine.call(QStringLiteral("flushout"));
        for (const QVariant& record :
             engine.call(QStringLiteral("PollForMiscDifferences")).toList()) {
            const QVariantList items = record.toList();
            if (!items.isEmpty() && (items[0] == QStringLiteral("error") ||
                                     items[0] == QStringLiteral("popuperrordialog")))
                fail(recipe + QStringLiteral(": ") + line + QStringLiteral(": ") +
                     items.value(1).toString());
        }
        engine.call(QStringLiteral("PollForTreeDifferences"));
    }
}

void makeWorld(EngineLink& engine, const QString& home, const QString& recipe,
               const QString& world) {
    QDir(world).removeRecursively();
    if (!QDir().mkpath(world))
        fail(QStringLiteral("can't make ") + world);
    buildScene(engine, home, recipe);
    succeed(engine.call(QStringLiteral("SaveScene"), {world}), world);
    // The picture the world dialog shows; a build without drawing goes without.
    engine.call(QStringLiteral("SaveThumbnail"), {world, 320, 240});

    StandaloneScript script;
    const ScriptFileRead read = script.LoadScriptFiles(recipe);
    if (!read.ok())
        fail(read.problem.text());
    const ScriptFileText tv =
        MakeTVscript(script.TreeView1, script.ListView1, script.ArbitraryCodeBox.Text);
    if (!tv.notices.isEmpty())
        fail(recipe + QStringLiteral(": ") + tv.notices.join(u' '));
    writeFile(world + u'/' + world_files::TreeScript, scriptFileBytes(tv.text));
    const PythonScript python = script.python();
    if (!python.notices.isEmpty())
        fail(recipe + QStringLiteral(": a row the Python had to leave out"));
    writeFile(world + u'/' + world_files::Python, scriptFileBytes(python.text));
    const QString page = recipe + QStringLiteral("/World_VessaHelp.html");
    if (QFile::exists(page) && !QFile::copy(page, world + QStringLiteral("/World_VessaHelp.html")))
        fail(QStringLiteral("can't copy ") + page);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() != 3)
        fail(QStringLiteral("usage: vessa_example_worlds RECIPES HOME"));
    const QString recipes = QDir(arguments[1]).absolutePath();
    const QString home = QDir(arguments[2]).absolutePath() + u'/';
    qputenv("VESSA47_HOME", home.toLocal8Bit());

    InterpreterRegistry registry;
    registerPythonEngine(registry, QStringLiteral(VESSA_PYTHON_DIR));
    EngineLink engine;
    try {
        asRunTimeError([&] {
            engine.attach(registry.create(kEngineProgId));
            succeed(engine.call(QStringLiteral("SetHomeDirectory"), {home}), home);
            succeed(engine.call(QStringLiteral("UseManualClock")), QStringLiteral("the clock"));
            int made = 0;
            for (const QString& kind : QDir(recipes).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
                const QDir worlds(recipes + u'/' + kind);
                for (const QString& name : worlds.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
                    makeWorld(engine, home, worlds.filePath(name),
                              home + QStringLiteral("Worlds/") + kind + u'/' + name);
                    ++made;
                }
            }
            std::printf("vessa_example_worlds: %d worlds made\n", made);
            engine.call(QStringLiteral("Close"));
        });
    } catch (const RunTimeError& error) {
        fail(error.description());
    }
    engine.release();
    return 0;
}
