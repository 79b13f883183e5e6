#include "commandline/command_line.h"

#include "base/run_time_error.h"
#include "commandline/world_check.h"
#include "export/folder_copy.h"
#include "export/web_export.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "world/standalone_script.h"
#include "world/world_folder.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSize>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <optional>

namespace vessa {

namespace {

const QString Generate = QStringLiteral("generate");
const QString Check = QStringLiteral("check");
const QString Thumbnail = QStringLiteral("thumbnail");
const QString Export = QStringLiteral("export");

constexpr double DefaultSeconds = 10;
constexpr double MostSeconds = 24 * 60 * 60;
constexpr QSize DefaultThumbnail(320, 240);
constexpr int MostPixels = 4096;

void writeBytes(std::FILE* stream, const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
    std::fflush(stream);
}

void out(const QString& text) {
    writeBytes(stdout, text.toUtf8());
}

void err(const QString& text) {
    writeBytes(stderr, text.toUtf8());
}

const QString Overview = QStringLiteral(
    "Vessa47 makes interactive 3-D worlds. Started without a command it opens its window;\n"
    "with a command it works on world folders, without a window or a display:\n"
    "\n"
    "  generate WORLD      writes the world's Python, as saving the world writes\n"
    "                      world_script.py, to the standard output\n"
    "  check WORLD...      loads and runs each world and reports its errors\n"
    "  thumbnail WORLD...  draws each world's world_thumbnail.bmp through its camera\n"
    "  export WORLD --web OUT  writes the web page that plays the world into OUT\n"
    "\n"
    "'vessa47 COMMAND --help' tells a command's options. Exit status: 0 when all went\n"
    "well, 1 when a world has an error, 2 when the command line is wrong.");

struct Command {
    const QString& name;
    const char* description;
    const char* worlds;
};

const Command Commands[] = {
    {Generate,
     "Writes the world's Python to the standard output: exactly what saving the\n"
     "world writes as its world_script.py.",
     "WORLD"},
    {Check,
     "Loads each world, runs its Python as a run does, then runs the world for a\n"
     "while of its own time (its World Start animations play), as fast as it goes.\n"
     "Every error is reported with the world, the file and the line; the lines of\n"
     "world_script.py are those that 'vessa47 generate' writes.",
     "WORLD..."},
    {Thumbnail,
     "Draws each world through its camera into its world_thumbnail.bmp, the picture\n"
     "the world dialog shows.",
     "WORLD..."},
    {Export,
     "Writes the web page that plays the world, as Save As WWW Page does: WORLD.html,\n"
     "WORLD.ves and the player's files in the folder OUT (made if missing), all of\n"
     "which a web server serves as they are. The view is 320x240 pixels, centred.",
     "WORLD"},
};

const Command* commandNamed(const QString& name) {
    for (const Command& command : Commands) {
        if (command.name == name)
            return &command;
    }
    return nullptr;
}

int badArguments(const QString& why) {
    err(QStringLiteral("vessa47: %1\nRun 'vessa47 --help' to see how it is used.\n").arg(why));
    return ExitBadArguments;
}

// "world/file:line: message", as compilers and editors read it.
QString located(const QString& world, const WorldError& error) {
    if (error.file == world)
        return world + QStringLiteral(": ") + error.message;
    QString where = QDir(world).filePath(error.file);
    if (error.line > 0)
        where += u':' + QString::number(error.line);
    return where + QStringLiteral(": ") + error.message;
}

QByteArray jsonLine(const WorldReport& report) {
    QJsonArray errors;
    for (const WorldError& error : report.errors)
        errors.append(QJsonObject{{"file", error.file},
                                  {"line", error.line > 0 ? QJsonValue(error.line) : QJsonValue()},
                                  {"message", error.message}});
    return QJsonDocument(
               QJsonObject{{"world", report.world}, {"clean", report.clean()}, {"errors", errors}})
               .toJson(QJsonDocument::Compact) +
           '\n';
}

using MakeEngine = std::function<std::unique_ptr<Interpreter>()>;

// Starts the engine for check and thumbnail, hands it to work (which answers
// whether every world went well) and closes it; the exit code says how it went.
int withEngine(const MakeEngine& makeEngine, const std::function<bool(EngineLink&)>& work) {
    EngineLink link;
    try {
        asRunTimeError([&] {
            link.attach(makeEngine());
            link.call(QStringLiteral("SetHomeDirectory"),
                      {link.call(QStringLiteral("ReadRegistryHomeDir"))});
        });
    } catch (const RunTimeError& error) {
        link.release();
        err(QStringLiteral("vessa47: the engine could not be started: ") + error.description() +
            u'\n');
        return ExitWorldError;
    }
    const bool clean = work(link);
    try {
        link.call(QStringLiteral("Close"));
    } catch (const RunTimeError&) {
        // Closing is the last thing; what it says changes nothing now.
    }
    link.release();
    return clean ? ExitClean : ExitWorldError;
}

// The Python of the world in folder world, as a save writes it; none, and why on
// standard error, when world is no world or its script files can't be read.
std::optional<PythonScript> worldPython(const QString& world) {
    if (!isWorldFolder(world)) {
        err(notAWorldMessage(world) + u'\n');
        return std::nullopt;
    }
    StandaloneScript script;
    const ScriptFileRead read = script.LoadScriptFiles(world);
    if (!read.ok()) {
        err(read.problem.text() + u'\n');
        return std::nullopt;
    }
    return script.python();
}

int runGenerate(const QStringList& worlds) {
    if (worlds.size() != 1)
        return badArguments(QStringLiteral("generate takes one world folder"));
    const std::optional<PythonScript> python = worldPython(worlds.front());
    if (!python)
        return ExitWorldError;
    for (const ScriptNotice& notice : python->notices)
        err(worlds.front() + QStringLiteral(": ") + notice.message + u'\n');
    writeBytes(stdout, scriptFileBytes(python->text));
    return ExitClean;
}

int runCheck(const QStringList& worlds, double seconds, bool json, const MakeEngine& makeEngine) {
    return withEngine(makeEngine, [&](EngineLink& engine) {
        bool clean = true;
        for (const QString& world : worlds) {
            WorldReport report;
            report.world = world;
            try {
                asRunTimeError([&] {
                    engine.call(QStringLiteral("UseManualClock"));
                    report = WorldChecker(engine, seconds).check(world);
                });
            } catch (const RunTimeError& error) {
                report.errors.append(
                    {world, 0, QStringLiteral("the engine failed: ") + error.description()});
            }
            clean = clean && report.clean();
            if (json) {
                writeBytes(stdout, jsonLine(report));
                continue;
            }
            for (const WorldError& error : report.errors)
                out(located(world, error) + u'\n');
            if (report.clean())
                out(world + QStringLiteral(": no errors\n"));
        }
        return clean;
    });
}

int runThumbnail(const QStringList& worlds, QSize size, const MakeEngine& makeEngine) {
    return withEngine(makeEngine, [&](EngineLink& engine) {
        bool written = true;
        for (const QString& world : worlds) {
            QString failure;
            if (!isWorldFolder(world)) {
                failure = notAWorldMessage(world);
            } else {
                const QString folder = QFileInfo(world).absoluteFilePath();
                try {
                    asRunTimeError([&] {
                        QVariant result = engine.call(QStringLiteral("LoadWorld"), {folder});
                        if (isSuccessResult(result))
                            result = engine.call(QStringLiteral("SaveThumbnail"),
                                                 {folder, size.width(), size.height()});
                        failure = isSuccessResult(result) ? QString() : result.toString().trimmed();
                    });
                } catch (const RunTimeError& error) {
                    failure = QStringLiteral("the engine failed: ") + error.description();
                }
            }
            if (failure.isEmpty()) {
                out(fileInFolder(world, world_files::Thumbnail) + u'\n');
            } else {
                err(world + QStringLiteral(": ") + failure + u'\n');
                written = false;
            }
        }
        return written;
    });
}

// Exports a copy of the world, its Python freshly generated into it, so that the
// world folder itself is not changed.
int runExport(const QStringList& worlds, const QString& outFolder, const MakeEngine& makeEngine) {
    if (worlds.size() != 1)
        return badArguments(QStringLiteral("export takes one world folder"));
    if (outFolder.isEmpty())
        return badArguments(QStringLiteral("export needs --web OUT, the page's folder"));
    const QString& world = worlds.front();
    const std::optional<PythonScript> python = worldPython(world);
    if (!python)
        return ExitWorldError;
    const QString leaf = QFileInfo(QFileInfo(world).absoluteFilePath()).fileName();
    QTemporaryDir copies;
    const QString copy = copies.filePath(leaf);
    QString failure = copyFolderFiles(world, copy).failure;
    QFile pythonFile(fileInFolder(copy, world_files::Python));
    const QByteArray bytes = scriptFileBytes(python->text);
    if (failure.isEmpty() &&
        (!pythonFile.open(QIODevice::WriteOnly) || pythonFile.write(bytes) != bytes.size()))
        failure = QStringLiteral("the world's Python can't be written");
    pythonFile.close();
    if (failure.isEmpty() && !QDir().mkpath(outFolder))
        failure = QStringLiteral("%1 can't be made").arg(outFolder);
    if (!failure.isEmpty()) {
        err(world + QStringLiteral(": ") + failure + u'\n');
        return ExitWorldError;
    }
    const QString page = QDir(outFolder).absoluteFilePath(leaf + QStringLiteral(".html"));
    return withEngine(makeEngine, [&](EngineLink& engine) {
        WebExportResult result;
        try {
            asRunTimeError([&] {
                const QVariant loaded = engine.call(QStringLiteral("LoadWorld"), {copy});
                if (!isSuccessResult(loaded)) {
                    result.message = loaded.toString().trimmed();
                    return;
                }
                const QString home = engine.call(QStringLiteral("GetHomeDirectory")).toString();
                WebPageRequest request;
                request.worldFolder = copy;
                request.pageFile = page;
                result = WebExport(engine, QDir(home).filePath(QStringLiteral("WebPlayer")))
                             .run(request);
            });
        } catch (const RunTimeError& error) {
            result.message = QStringLiteral("the engine failed: ") + error.description();
        }
        if (result.outcome != WebExportResult::Written) {
            err(world + QStringLiteral(": ") + result.message + u'\n');
            return false;
        }
        out(page + u'\n');
        return true;
    });
}

} // namespace

bool isCommandLineCall(const QString& firstArgument) {
    static const QStringList ours = {QStringLiteral("-h"), QStringLiteral("--help"),
                                     QStringLiteral("--help-all"), QStringLiteral("-v"),
                                     QStringLiteral("--version")};
    return !firstArgument.isEmpty() &&
           (!firstArgument.startsWith(u'-') || ours.contains(firstArgument));
}

int runCommandLine(const QStringList& arguments,
                   const std::function<std::unique_ptr<Interpreter>()>& makeEngine) {
    const Command* command = commandNamed(arguments.value(1));
    QCommandLineParser parser;
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption seconds(
        QStringLiteral("seconds"),
        QStringLiteral("Runs each world for N seconds of its own time (%1 unless told).")
            .arg(DefaultSeconds),
        QStringLiteral("N"));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Prints one JSON object a world, a line each: "
                                                 "world, clean, errors (file, line, message)."));
    const QCommandLineOption size(
        QStringLiteral("size"),
        QStringLiteral("The picture's width and height in pixels (%1x%2 unless told).")
            .arg(DefaultThumbnail.width())
            .arg(DefaultThumbnail.height()),
        QStringLiteral("WxH"));
    const QCommandLineOption web(QStringLiteral("web"),
                                 QStringLiteral("The folder the page is written into."),
                                 QStringLiteral("OUT"));
    if (command) {
        parser.setApplicationDescription(QString::fromLatin1(command->description));
        parser.addPositionalArgument(command->name, QStringLiteral("The command."), command->name);
        parser.addPositionalArgument(QStringLiteral("WORLD"), QStringLiteral("A world folder."),
                                     QString::fromLatin1(command->worlds));
        if (command->name == Check)
            parser.addOptions({seconds, json});
        if (command->name == Thumbnail)
            parser.addOption(size);
        if (command->name == Export)
            parser.addOption(web);
    } else {
        parser.setApplicationDescription(Overview);
        parser.addPositionalArgument(QStringLiteral("COMMAND"),
                                     QStringLiteral("generate, check, thumbnail or export"));
    }
    if (!parser.parse(arguments))
        return badArguments(parser.errorText());
    if (parser.isSet(version)) {
        out(QStringLiteral("vessa47 ") + QCoreApplication::applicationVersion() + u'\n');
        return ExitClean;
    }
    if (parser.isSet(help)) {
        out(parser.helpText());
        return ExitClean;
    }
    if (!command)
        return badArguments(QStringLiteral("there is no command '%1'").arg(arguments.value(1)));
    QStringList worlds = parser.positionalArguments();
    worlds.removeFirst();
    if (worlds.isEmpty())
        return badArguments(QStringLiteral("%1 needs a world folder").arg(command->name));

    if (command->name == Generate)
        return runGenerate(worlds);
    if (command->name == Export)
        return runExport(worlds, parser.value(web), makeEngine);
    if (command->name == Check) {
        double runFor = DefaultSeconds;
        if (parser.isSet(seconds)) {
            bool number = false;
            runFor = parser.value(seconds).toDouble(&number);
            if (!number || !std::isfinite(runFor) || runFor < 0 || runFor > MostSeconds)
                return badArguments(QStringLiteral("--seconds wants a number of seconds from 0 to "
                                                   "%1, not '%2'")
                                        .arg(MostSeconds)
                                        .arg(parser.value(seconds)));
        }
        return runCheck(worlds, runFor, parser.isSet(json), makeEngine);
    }
    QSize pictureSize = DefaultThumbnail;
    if (parser.isSet(size)) {
        static const QRegularExpression form(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
        const QRegularExpressionMatch match = form.match(parser.value(size));
        pictureSize = match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt())
                                       : QSize();
        if (pictureSize.isEmpty() || pictureSize.width() > MostPixels ||
            pictureSize.height() > MostPixels)
            return badArguments(QStringLiteral("--size wants WIDTHxHEIGHT in pixels, 1 to %1 "
                                               "each, such as 320x240, not '%2'")
                                    .arg(MostPixels)
                                    .arg(parser.value(size)));
    }
    return runThumbnail(worlds, pictureSize, makeEngine);
}

} // namespace vessa
