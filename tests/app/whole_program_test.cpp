#include "app/program_run.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

// Starts the built program as a user would, headless, with a home folder and
// settings of its own, driven by the test driver plugin.

using namespace vessa::testing;

namespace {

// Where the engine had an object, each time the driver read it: place, then turn.
struct Placement {
    std::array<double, 3> at{};
    std::array<double, 4> turn{}; // w, x, y, z
};

std::vector<Placement> positionsOf(const QString& errors, const QString& name) {
    std::vector<Placement> found;
    const QString tag = QStringLiteral("driver: position: ") + name + QLatin1Char(' ');
    for (const QString& line : errors.split(QLatin1Char('\n'))) {
        if (!line.startsWith(tag))
            continue;
        const QStringList numbers = line.mid(tag.size()).split(QLatin1Char(' '));
        if (numbers.size() != 7)
            continue;
        Placement placement;
        for (int i = 0; i < 3; ++i)
            placement.at[static_cast<size_t>(i)] = numbers[i].toDouble();
        for (int i = 0; i < 4; ++i)
            placement.turn[static_cast<size_t>(i)] = numbers[i + 3].toDouble();
        found.push_back(placement);
    }
    return found;
}

// The object's own forward axis (its z) as its turn points it.
std::array<double, 3> forwardOf(const std::array<double, 4>& q) {
    const double w = q[0], x = q[1], y = q[2], z = q[3];
    return {2 * (x * z + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y)};
}

void expectNear(const std::array<double, 3>& seen, const std::array<double, 3>& wanted,
                const std::string& errors) {
    for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(seen[i], wanted[i], 1e-6) << "axis " << i << "\n" << errors;
}

// The lines the driver printed of the tree view name, in order.
QStringList dumpOf(const QString& errors, const QString& name) {
    QStringList lines;
    const QString tag = QStringLiteral("driver: ") + name + QStringLiteral(": ");
    for (const QString& line : errors.split(QLatin1Char('\n')))
        if (line.startsWith(tag))
            lines << line.mid(tag.size());
    return lines;
}

} // namespace

TEST(WholeProgram, ShowsTheDefaultWorldVisitsEachTabAndExitsThroughTheFileMenu) {
    const ProgramRun run =
        runProgram(QStringLiteral(VESSA_PROGRAM),
                   QStringLiteral("wait:300;dump:ObjectTree;tab:1;tab:2;tab:0;exit"));
    const std::string errors = run.errors.toStdString();
    ASSERT_TRUE(run.finished) << errors;
    EXPECT_EQ(run.exitCode, 0) << errors;
    EXPECT_TRUE(run.errors.contains(QStringLiteral("driver: main window shown"))) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("did not open"))) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("Traceback"))) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("driver: ErrorForm"))) << errors;
    // The default world reached the object tree through the engine's records.
    for (const char* line : {"driver: ObjectTree: Scene\n", "driver: ObjectTree:   Camera\n",
                             "driver: ObjectTree:   Light\n", "driver: ObjectTree:   Ground\n"})
        EXPECT_TRUE(run.errors.contains(QString::fromLatin1(line))) << line << errors;
}

TEST(WholeProgram, AScreenReaderHearsTheTitleAndTheWorldTabsAndTheKeyboardSwitchesThem) {
    const ProgramRun run =
        runProgram(QStringLiteral(VESSA_PROGRAM),
                   QStringLiteral("reader:MainForm;reader:SwitchTab;key:Ctrl+Tab;reader:SwitchTab;"
                                  "reader:RenderForm;exit"));
    const std::string errors = run.errors.toStdString();
    ASSERT_TRUE(run.finished) << errors;
    EXPECT_EQ(run.exitCode, 0) << errors;
    // The name is the title, with the engine's version in it.
    EXPECT_TRUE(run.errors.contains(QStringLiteral("driver: reader: MainForm window \"Vessa47 [")))
        << errors;
    for (const char* line :
         {"driver: reader: SwitchTab page-tab-list \"World tabs\" selected \"Opening Scene\"\n",
          "driver: reader: SwitchTab page-tab-list \"World tabs\" selected \"Animations\"\n",
          "driver: reader: RenderForm window \"Vessa - Camera\"\n"})
        EXPECT_TRUE(run.errors.contains(QString::fromLatin1(line))) << line << errors;
}

TEST(WholeProgram, WithoutAnEngineItSaysWhyInABoxAndEnds) {
    // The program alone in a folder: no engine package beside it under either name.
    QTemporaryDir alone;
    const QString program = alone.path() + QStringLiteral("/vessa47");
    ASSERT_TRUE(QFile::copy(QStringLiteral(VESSA_PROGRAM), program));
    const ProgramRun run = runProgram(program, QStringLiteral("exit"));
    const std::string errors = run.errors.toStdString();
    ASSERT_TRUE(run.finished) << errors;
    EXPECT_EQ(run.exitCode, 1) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("driver: main window shown"))) << errors;
    const qsizetype box = run.errors.indexOf(QStringLiteral("driver: ErrorForm: "));
    ASSERT_GE(box, 0) << errors;
    const QString shown = run.errors.mid(box).section(QLatin1Char('\n'), 0, 0);
    EXPECT_TRUE(shown.contains(QStringLiteral("Please copy this message to the clipboard (with "
                                              "the button to the right)")))
        << shown.toStdString();
    EXPECT_FALSE(shown.contains(QStringLiteral("Windows"))) << shown.toStdString();
    EXPECT_TRUE(shown.contains(QStringLiteral("Error Creating COM server object")))
        << shown.toStdString();
    EXPECT_TRUE(shown.contains(QStringLiteral("Vessia.Interpreter"))) << shown.toStdString();
}

TEST(WholeProgram, WindowsAndDividersComeBackWhereTheUserLeftThemAfterARestart) {
    QTemporaryDir config;
    const ProgramRun first =
        runProgram(QStringLiteral(VESSA_PROGRAM),
                   QStringLiteral("place:MainForm,40,30,700,560;place:RenderForm,460,50,300,260;"
                                  "divide:SplitterV,0.3;divide:SplitterH1,0.7;wait:100;exit"),
                   config.path());
    ASSERT_TRUE(first.finished) << first.errors.toStdString();
    ASSERT_EQ(first.exitCode, 0) << first.errors.toStdString();
    const ProgramRun second = runProgram(
        QStringLiteral(VESSA_PROGRAM),
        QStringLiteral("where:MainForm;where:RenderForm;where:SplitterV;where:SplitterH1;exit"),
        config.path());
    const std::string errors = second.errors.toStdString();
    ASSERT_TRUE(second.finished) << errors;
    for (const char* line :
         {"driver: where: MainForm 40 30 700 560\n", "driver: where: RenderForm 460 50 300 260\n"})
        EXPECT_TRUE(second.errors.contains(QString::fromLatin1(line))) << line << errors;
    // A divider's share comes back to within a pixel or two of the panes' sizes.
    const auto share = [&](const QString& divider) {
        const QString tag = QStringLiteral("driver: where: ") + divider + QLatin1Char(' ');
        const qsizetype at = second.errors.indexOf(tag);
        return at < 0
                   ? -1.0
                   : second.errors.mid(at + tag.size()).section(QLatin1Char('\n'), 0, 0).toDouble();
    };
    EXPECT_NEAR(share(QStringLiteral("SplitterV")), 0.3, 0.015) << errors;
    EXPECT_NEAR(share(QStringLiteral("SplitterH1")), 0.7, 0.015) << errors;
}

TEST(WholeProgram, TheBunnyFromTheGalleryMovesByALineMadeWithTheMenusAndComesBack) {
    const ProgramRun run = runProgram(
        QStringLiteral(VESSA_PROGRAM),
        QStringLiteral(
            // Add Object, "bunny" in the search, Enter.
            "click:AddObjectButton;type:bunny;key:Return;item:ObjectTree,Bunny;position:Bunny;"
            // Its menu in the object tree: Move, Forward, 1 (meter).
            "tab:1;itemmenu:ObjectTree,Bunny;choose:Move;choose:Forward;choose:1 (meter);"
            // From the keyboard to the line's distance, and its star menu: 2 (meters).
            "click:TreeView1;key:Down;key:Down;key:Right;key:Right;key:Right;key:Return;"
            "choose:2 (meters);dump:TreeView1;"
            // Run until it has ended, then the traffic light.
            "click:PerformScriptButton;until:TrafficLightImage,Reset;position:Bunny;"
            "click:TrafficLightImage;position:Bunny;exit;answer:No"));
    const std::string errors = run.errors.toStdString();
    ASSERT_TRUE(run.finished) << errors;
    EXPECT_EQ(run.exitCode, 0) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("driver: gave up"))) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("driver: ErrorForm"))) << errors;
    EXPECT_TRUE(run.errors.contains(
        QStringLiteral("driver: TreeView1:   Bunny.Move(Forward, 2, more...)\n")))
        << errors;
    const std::vector<Placement> placements = positionsOf(run.errors, QStringLiteral("Bunny"));
    ASSERT_EQ(placements.size(), 3u) << errors;
    const Placement& start = placements[0];
    const std::array<double, 3> forward = forwardOf(start.turn);
    expectNear(
        placements[1].at,
        {start.at[0] + 2 * forward[0], start.at[1] + 2 * forward[1], start.at[2] + 2 * forward[2]},
        errors);
    expectNear(placements[2].at, start.at, errors);
}

TEST(WholeProgram, AWorldMadeAndSavedComesBackWholeAfterARestartAndRuns) {
    QTemporaryDir worlds;
    // The folder a user would make in the folder dialog.
    const QString world = worlds.path() + QStringLiteral("/Garden");
    ASSERT_TRUE(QDir().mkpath(world));
    const QString showWorld =
        QStringLiteral("tab:0;seen:ObjectTree,Chair;dump:ObjectTree;"
                       "tab:1;seen:TreeView1,Chair.Turn(Left, 1/4, more...);dump:TreeView1;"
                       "tab:2;seen:ListView1, | LeftMouseButtonDown | AnyWhere | Action1;"
                       "dump:ListView1;position:Bunny;position:Chair;");
    const ProgramRun made = runProgram(
        QStringLiteral(VESSA_PROGRAM),
        QStringLiteral(
            "click:AddObjectButton;type:bunny;key:Return;item:ObjectTree,Bunny;"
            "click:AddObjectButton;type:chair;key:Return;item:ObjectTree,Chair;"
            "tab:1;itemmenu:ObjectTree,Bunny;choose:Move;choose:Forward;choose:1 (meter);"
            "itemmenu:ObjectTree,Chair;choose:Turn;choose:Left;choose:1/4 (Revolution);"
            "tab:2;click:MakeEvent;") +
            showWorld + QStringLiteral("menu:File;choose:Save As...;folder:") + world +
            QStringLiteral(";wait:300;exit"));
    const std::string madeErrors = made.errors.toStdString();
    ASSERT_TRUE(made.finished) << madeErrors;
    ASSERT_EQ(made.exitCode, 0) << madeErrors;
    ASSERT_FALSE(made.errors.contains(QStringLiteral("driver: gave up"))) << madeErrors;
    ASSERT_TRUE(QFile::exists(world + QStringLiteral("/World_Scene.py"))) << madeErrors;

    const ProgramRun opened = runProgram(
        QStringLiteral(VESSA_PROGRAM),
        QStringLiteral("menu:File;choose:Open World...;folder:") + world + QLatin1Char(';') +
            showWorld +
            QStringLiteral("tab:1;click:PerformScriptButton;until:TrafficLightImage,Reset;"
                           "position:Bunny;position:Chair;click:TrafficLightImage;"
                           "position:Bunny;position:Chair;exit"));
    const std::string errors = opened.errors.toStdString();
    ASSERT_TRUE(opened.finished) << errors;
    EXPECT_EQ(opened.exitCode, 0) << errors;
    EXPECT_FALSE(opened.errors.contains(QStringLiteral("driver: gave up"))) << errors;
    EXPECT_FALSE(opened.errors.contains(QStringLiteral("driver: ErrorForm"))) << errors;
    // The same objects, lines and rows as were made.
    for (const char* tree : {"ObjectTree", "TreeView1", "ListView1"}) {
        const QString name = QString::fromLatin1(tree);
        EXPECT_EQ(dumpOf(opened.errors, name), dumpOf(made.errors, name)) << tree << errors;
    }
    EXPECT_TRUE(dumpOf(opened.errors, QStringLiteral("TreeView1"))
                    .contains(QStringLiteral("  Bunny.Move(Forward, 1, more...)")))
        << errors;
    EXPECT_TRUE(dumpOf(opened.errors, QStringLiteral("ListView1"))
                    .contains(QStringLiteral(" | World Start | - - - | Action1")))
        << errors;

    const std::vector<Placement> bunnyMade = positionsOf(made.errors, QStringLiteral("Bunny"));
    const std::vector<Placement> chairMade = positionsOf(made.errors, QStringLiteral("Chair"));
    const std::vector<Placement> bunny = positionsOf(opened.errors, QStringLiteral("Bunny"));
    const std::vector<Placement> chair = positionsOf(opened.errors, QStringLiteral("Chair"));
    ASSERT_EQ(bunnyMade.size(), 1u) << madeErrors;
    ASSERT_EQ(chairMade.size(), 1u) << madeErrors;
    ASSERT_EQ(bunny.size(), 3u) << errors;
    ASSERT_EQ(chair.size(), 3u) << errors;
    // Where they were put, then run: the bunny a meter forward, the chair a quarter
    // turn round; then stopped: back.
    expectNear(bunny[0].at, bunnyMade[0].at, errors);
    expectNear(chair[0].at, chairMade[0].at, errors);
    const std::array<double, 3> forward = forwardOf(bunny[0].turn);
    expectNear(
        bunny[1].at,
        {bunny[0].at[0] + forward[0], bunny[0].at[1] + forward[1], bunny[0].at[2] + forward[2]},
        errors);
    double alike = 0; // |cos| of half the angle between the chair's turns
    for (size_t i = 0; i < 4; ++i)
        alike += chair[0].turn[i] * chair[1].turn[i];
    EXPECT_NEAR(std::abs(alike), std::cos(M_PI / 4), 1e-6) << errors;
    expectNear(bunny[2].at, bunny[0].at, errors);
    expectNear(chair[2].at, chair[0].at, errors);
    for (size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(chair[2].turn[i], chair[0].turn[i], 1e-6) << errors;
}

TEST(WholeProgram, ViewOnlineHelpOpensTheFirstExampleWorldBesideItsPageOfTheGuide) {
    const ProgramRun run = runProgram(
        QStringLiteral(VESSA_PROGRAM),
        QStringLiteral("wait:300;menu:Help;choose:View Online Help...;seen:ObjectTree,Bunny;"
                       "dump:ObjectTree;reader:frmVessaHelp;reader:MainForm;exit"));
    const std::string errors = run.errors.toStdString();
    ASSERT_TRUE(run.finished) << errors;
    EXPECT_EQ(run.exitCode, 0) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("driver: gave up"))) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("driver: ErrorForm"))) << errors;
    // The world's objects, its page in the help window, its name in the caption.
    for (const char* line : {"driver: ObjectTree:   Bunny\n", "driver: ObjectTree:   Tree\n",
                             "driver: reader: frmVessaHelp window \"Vessa's Illustrated Guide to "
                             "Brightmere\"\n"})
        EXPECT_TRUE(run.errors.contains(QString::fromLatin1(line))) << line << errors;
    EXPECT_TRUE(run.errors.contains(QStringLiteral("Example1 - First World"))) << errors;
}

TEST(WholeProgram, CodeTypedInTheCodeBoxIsSavedWithTheWorldAndComesBackAfterARestart) {
    QTemporaryDir worlds;
    QTemporaryDir config;
    const QString world = worlds.path() + QStringLiteral("/Typed");
    ASSERT_TRUE(QDir().mkpath(world));
    // The user asked for the code box before: it shows on the animations tab.
    {
        QSettings stored(config.path() + QStringLiteral("/Halden Institute/Vessa47.ini"),
                         QSettings::IniFormat);
        stored.setValue(
            QStringLiteral("Software/Halden Institute/Vessa47/1.00.000/Preferences/CodeBoxVisible"),
            QStringLiteral("True"));
    }
    const ProgramRun made = runProgram(
        QStringLiteral(VESSA_PROGRAM),
        QStringLiteral("tab:1;click:ArbitraryCodeBox;type:def hop():;key:Return;"
                       "type:return 42;text:ArbitraryCodeBox;menu:File;choose:Save As...;folder:") +
            world + QStringLiteral(";wait:300;exit"),
        config.path());
    const std::string madeErrors = made.errors.toStdString();
    ASSERT_TRUE(made.finished) << madeErrors;
    ASSERT_EQ(made.exitCode, 0) << madeErrors;
    EXPECT_FALSE(made.errors.contains(QStringLiteral("driver: gave up"))) << madeErrors;
    // Enter kept the block's indentation, one step in.
    EXPECT_TRUE(made.errors.contains(
        QStringLiteral("driver: text: ArbitraryCodeBox def hop():/    return 42")))
        << madeErrors;
    QFile python(world + QStringLiteral("/world_script.py"));
    ASSERT_TRUE(python.open(QIODevice::ReadOnly)) << madeErrors;
    EXPECT_TRUE(python.readAll().endsWith("def hop():\r\n    return 42")) << madeErrors;

    const ProgramRun opened =
        runProgram(QStringLiteral(VESSA_PROGRAM),
                   QStringLiteral("menu:File;choose:Open World...;folder:") + world +
                       QStringLiteral(";tab:1;text:ArbitraryCodeBox;exit"),
                   config.path());
    const std::string errors = opened.errors.toStdString();
    ASSERT_TRUE(opened.finished) << errors;
    EXPECT_EQ(opened.exitCode, 0) << errors;
    EXPECT_FALSE(opened.errors.contains(QStringLiteral("driver: ErrorForm"))) << errors;
    // The file keeps a line end after the code, which the box shows.
    EXPECT_TRUE(opened.errors.contains(
        QStringLiteral("driver: text: ArbitraryCodeBox def hop():/    return 42/")))
        << errors;
}
