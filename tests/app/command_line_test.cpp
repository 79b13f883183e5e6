#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstring>

// The program's commands on world folders, run as a teacher runs them over SSH: the
// real program, no display, no X server, no platform named.

namespace {

struct ProgramRun {
    int exitCode = -1;
    QByteArray out;
    QString err;
};

ProgramRun RunProgram(const QStringList& arguments) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name :
         {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "VESSA47_HOME", "PYTHONPATH"})
        env.remove(QString::fromLatin1(name));
    QTemporaryDir config;
    env.insert("XDG_CONFIG_HOME", config.path());
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(VESSA_PROGRAM), arguments);
    ProgramRun run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    if (process.exitStatus() == QProcess::NormalExit)
        run.exitCode = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

// World folders with the default world's scene and a script of their own; kept when a
// test fails.
struct Worlds {
    QTemporaryDir dir;
    ~Worlds() { dir.setAutoRemove(!::testing::Test::HasFailure()); }

    QString make(const QString& name, const QByteArray& treeScript) {
        const QString folder = dir.filePath(name);
        EXPECT_TRUE(QDir().mkpath(folder));
        EXPECT_TRUE(QFile::copy(QStringLiteral(VESSA_HOME_DIR "/Worlds/Default/World_Scene.py"),
                                folder + "/World_Scene.py"));
        if (!treeScript.isEmpty()) {
            QFile file(folder + "/world_script.tv");
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(treeScript);
        }
        return folder;
    }
};

// The worked example's world: "Hop" moves the camera, the A key starts it.
const QByteArray HopScript = "Hop = DoInOrder\r\n1\r\n1\r\n\r\n"
                             "Camera.Move(Forward, 1, more...)\r\n2\r\n0\r\n\r\n"
                             "###\r\nKeyDown (\"A\" key)\r\nAnyWhere\r\nHop\r\n###\r\nx = 1\r\n";

// A World Start animation whose second step finds, three seconds in, that it would
// make a family its own parent: Light is Ground's child by then.
const QByteArray LateMistakeScript = "Late = DoInOrder\r\n1\r\n1\r\n\r\n"
                                     "Ground.BecomeChildOf(Light, more...)\r\n2\r\n0\r\n\r\n"
                                     "Camera.Move(Up, 1, Duration=3, more...)\r\n2\r\n0\r\n\r\n"
                                     "Light.BecomeChildOf(Ground, more...)\r\n2\r\n0\r\n\r\n"
                                     "###\r\nWorld Start\r\n- - -\r\nLate\r\n###\r\n\r\n";

} // namespace

TEST(CommandLine, HelpVersionAndWrongCommandLinesNeedNoDisplay) {
    const ProgramRun version = RunProgram({"--version"});
    EXPECT_EQ(version.exitCode, 0) << version.err.toStdString();
    EXPECT_EQ(version.out, "vessa47 0.1.0\n");
    const ProgramRun help = RunProgram({"--help"});
    EXPECT_EQ(help.exitCode, 0) << help.err.toStdString();
    for (const char* command : {"generate WORLD", "check WORLD...", "thumbnail WORLD..."})
        EXPECT_TRUE(help.out.contains(command)) << command;
    const ProgramRun checkHelp = RunProgram({"check", "--help"});
    EXPECT_EQ(checkHelp.exitCode, 0);
    EXPECT_TRUE(checkHelp.out.contains("--seconds <N>") && checkHelp.out.contains("--json"));

    const QStringList wrong[] = {{"frobnicate"},
                                 {"check"},
                                 {"generate", "a", "b"},
                                 {"check", "--seconds", "-1", "World"},
                                 {"check", "--seconds", "soon", "World"},
                                 {"check", "--bogus", "World"},
                                 {"thumbnail", "--size", "320", "World"},
                                 {"thumbnail", "--size", "5000x10", "World"}};
    for (const QStringList& arguments : wrong) {
        const ProgramRun run = RunProgram(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments.join(' ').toStdString();
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_TRUE(run.err.contains("vessa47 --help")) << run.err.toStdString();
    }
}

TEST(CommandLine, GenerateWritesTheWorldsPythonAndNothingElse) {
    Worlds worlds;
    const ProgramRun run = RunProgram({"generate", worlds.make("Hop", HopScript)});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString();
    EXPECT_EQ(run.out.toStdString(),
              "\r\ndef TVDef_KeyDown_Hop(ev):\r\n\tif ev.key == \"A\":\r\n\t\tDoInOrder(\r\n"
              "\t\t\tCamera.Move(Forward, 1),\r\n\t\t)\r\n\r\n"
              "Camera._Window.addresponse(KeyDown, TVDef_KeyDown_Hop)\r\n\r\n"
              "Hop = DoInOrder(\r\n\tCamera.Move(Forward, 1),\r\n).stop()\r\n\r\n"
              "### Everything below this line is hand-edited Python Code ###\r\nx = 1\r\n\r\n");

    const ProgramRun notAWorld = RunProgram({"generate", worlds.dir.path()});
    EXPECT_EQ(notAWorld.exitCode, 1);
    EXPECT_TRUE(notAWorld.out.isEmpty());
    EXPECT_TRUE(notAWorld.err.contains("is not a valid world folder."))
        << notAWorld.err.toStdString();
}

TEST(CommandLine, CheckRunsEachWorldInItsOwnTimeAndReportsErrorsWithFileAndLine) {
    Worlds worlds;
    const QString hop = worlds.make("Hop", HopScript);
    const QString late = worlds.make("Late", LateMistakeScript);
    const QString damaged =
        worlds.make("Damaged", "Hop = DoInOrder\r\n1\r\n1\r\n\r\nx\r\n3\r\n0\r\n\r\n###\r\n");
    const QString broken = worlds.make("Broken", "###\r\nx = 1\r\ny = 2 +\r\n");

    // One second of the late world's time is not enough to reach its mistake.
    const ProgramRun early = RunProgram({"check", "--seconds", "1", hop, late});
    EXPECT_EQ(early.exitCode, 0) << early.out.toStdString() << early.err.toStdString();
    EXPECT_EQ(early.out, (hop + ": no errors\n" + late + ": no errors\n").toUtf8());

    const ProgramRun run =
        RunProgram({"check", "--json", hop, late, damaged, broken, worlds.dir.filePath("Missing")});
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    const QList<QByteArray> lines = run.out.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 5) << run.out.toStdString();
    const auto report = [&](int index) {
        return QJsonDocument::fromJson(lines[index]).object();
    };
    const auto firstError = [&](int index) {
        return report(index)["errors"].toArray().first().toObject();
    };
    EXPECT_EQ(report(0)["world"].toString(), hop);
    EXPECT_TRUE(report(0)["clean"].toBool());
    EXPECT_TRUE(report(0)["errors"].toArray().isEmpty());

    EXPECT_FALSE(report(1)["clean"].toBool());
    // Line 5 of world_script.py, as generate writes it, made the step.
    EXPECT_EQ(firstError(1)["file"].toString(), "world_script.py");
    EXPECT_EQ(firstError(1)["line"].toInt(), 5);
    EXPECT_EQ(firstError(1)["message"].toString(), "Light can't become a child of Ground.");

    EXPECT_EQ(firstError(2)["file"].toString(), "world_script.tv");
    EXPECT_EQ(firstError(2)["line"].toInt(), 6);

    // The hand-edited code starts on line 3; its error stands on line 4.
    EXPECT_EQ(firstError(3)["file"].toString(), "world_script.py");
    EXPECT_EQ(firstError(3)["line"].toInt(), 4);
    EXPECT_TRUE(firstError(3)["message"].toString().startsWith("SyntaxError"))
        << firstError(3)["message"].toString().toStdString();

    EXPECT_TRUE(firstError(4)["line"].isNull());
    EXPECT_TRUE(firstError(4)["message"].toString().endsWith("is not a valid world folder."));

    const ProgramRun text = RunProgram({"check", late});
    EXPECT_EQ(text.exitCode, 1);
    EXPECT_EQ(text.out,
              (late + "/world_script.py:5: Light can't become a child of Ground.\n").toUtf8());
}

TEST(CommandLine, CheckStopsCodeThatRunsAwayInRealTime) {
    Worlds worlds;
    const QString spin = worlds.make("Spin", "###\r\nwhile True: pass\r\n");
    const ProgramRun run = RunProgram({"check", spin});
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    EXPECT_EQ(run.out, (spin + "/world_script.py:3: Your code took too long (more than 5 seconds) "
                               "and was stopped\n")
                           .toUtf8());
}

TEST(CommandLine, ThumbnailDrawsEachWorldThroughItsCameraWithoutADisplay) {
    Worlds worlds;
    const QString hop = worlds.make("Hop", HopScript);
    const ProgramRun run =
        RunProgram({"thumbnail", hop, "--size", "64x48", worlds.dir.filePath("Missing")});
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("Missing is not a valid world folder.")) << run.err.toStdString();
    EXPECT_EQ(run.out, (hop + "/world_thumbnail.bmp\n").toUtf8());
    QFile picture(hop + "/world_thumbnail.bmp");
    ASSERT_TRUE(picture.open(QIODevice::ReadOnly));
    const QByteArray header = picture.read(26);
    ASSERT_EQ(header.left(2), "BM");
    const auto int32At = [&](int offset) {
        int value = 0;
        std::memcpy(&value, header.constData() + offset, sizeof value);
        return value;
    };
    EXPECT_EQ(int32At(18), 64);
    EXPECT_EQ(int32At(22), 48);
}
