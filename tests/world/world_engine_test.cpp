#include "world/open_world.h"

#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"
#include "support/recording_view.h"
#include "support/scripted_engine.h"
#include "world/script_fixture.h"
#include "world/script_run.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

// The open world over the real engine: what a world folder becomes in the trees.

namespace {

struct RealEngine {
    AppState state;
    EngineLink engine;
    RecordingErrorDisplay display;
    ThrowingProcessControl process;
    ErrorReporter reporter{state, display, process};
    OpenWorld world{state, engine, reporter};
    RecordingView view;
    QTemporaryDir folder;

    RealEngine() {
        state.ExitOnFatal = false;
        InterpreterRegistry registry;
        registerPythonEngine(registry, qEnvironmentVariable("PYTHONPATH"));
        engine.attach(registry.create(kEngineProgId));
        world.attachView(&view);
    }

    // Loads a world whose scene file holds these statements, and hands the engine's
    // records to the world as the main loop does.
    void load(const QStringList& statements) {
        QFile scene(folder.path() + QStringLiteral("/World_Scene.py"));
        ASSERT_TRUE(scene.open(QIODevice::WriteOnly));
        scene.write("# Vessa47 scene: read by the engine, never run.\r\n");
        scene.write(statements.join(QStringLiteral("\r\n")).toUtf8() + "\r\n");
        scene.close();
        EXPECT_TRUE(isSuccessResult(engine.call(QStringLiteral("LoadWorld"), {folder.path()})));
        world.HandleDifferences(engine.call(QStringLiteral("PollForMiscDifferences")));
        world.pollTreeDifferences();
    }

    // The object tree as shown, one line per node, indented by depth.
    QStringList objectTree() {
        QStringList lines;
        const std::function<void(const TreeNode*, int)> add = [&](const TreeNode* node, int depth) {
            for (; node; node = node->Next()) {
                lines << QString(depth * 2, QLatin1Char(' ')) + node->Text();
                add(node->Child(), depth + 1);
            }
        };
        add(world.trees().ObjectTree.FirstRoot(), 0);
        return lines;
    }
};

} // namespace

TEST(WorldsFromTheEngine, AWorldOfOnlyTheSceneComesIntoTheObjectTree) {
    RealEngine e;
    e.load({QStringLiteral("Object(kind='scene', name='Scene', parent=None, firstclass=True)")});
    EXPECT_EQ(e.objectTree(), QStringList{QStringLiteral("Scene")});
    EXPECT_TRUE(e.view.errors.isEmpty());
    EXPECT_TRUE(e.view.printed.isEmpty()) << e.view.printed.join(u'\n').toStdString();
}

TEST(WorldsFromTheEngine, ObjectsAndPartsComeUnderTheirOwners) {
    RealEngine e;
    e.load(
        {QStringLiteral("Object(kind='scene', name='Scene', parent=None, firstclass=True)"),
         QStringLiteral("Object(kind='camera', name='Camera', parent='Scene', firstclass=True)"),
         QStringLiteral("Object(kind='light', name='Lamp', parent='Camera', firstclass=False)")});
    EXPECT_EQ(e.objectTree(), (QStringList{QStringLiteral("Scene"), QStringLiteral("  Camera"),
                                           QStringLiteral("    Lamp")}));
    // An object wears its kind's image, a part the part form of it.
    const TreeNode* camera = e.world.trees().ObjectTree.FirstRoot()->Child();
    EXPECT_EQ(camera->Image(), object_images::Camera);
    EXPECT_EQ(camera->Child()->Image(), object_images::Light - 1);
}

TEST(WorldsFromTheEngine, GeneratedPythonMakesTheWorldDoWhatItsLinesSay) {
    RealEngine e;
    e.load({"Object(kind='scene', name='Scene', parent=None, firstclass=True)",
            "Object(kind='camera', name='Camera', parent='Scene', firstclass=True)",
            "Object(kind='model', name='Ground', parent='Scene', firstclass=True)"});
    ScriptFixture script;
    e.engine.call("UseManualClock");
    script.line(script.animation("Hop = DoInOrder"), "Camera.Move(Forward, 1, more...)");
    TreeNode* jump = script.animation("Jump = DoTogether");
    script.line(jump, "Ground.Move(Up, 2, more...)");
    TreeNode* walk = script.line(jump, "Walk : DoInOrder");
    script.line(walk, "Camera.Move(Up, 1, Duration=1/2, more...)");
    script.line(walk, "Camera.Move(Down, 1, Duration=1/2, more...)");
    script.line(script.animation("Slide = DoInOrder"), "Ground.Move(Right, 1, more...)");
    script.row("World Start", "- - -", "Hop");
    script.row(R"(KeyDown ("A" key))", "AnyWhere", "Jump");
    script.row("LeftMouseButtonDown", "Ground", "Slide");
    script.ArbitraryCodeBox.Text = "handWritten = Camera.GetName()";
    const ScriptRunResults ran = runPythonScript(e.engine, script.python());
    EXPECT_TRUE(isSuccessResult(ran.generated) && isSuccessResult(ran.handEdited));

    // Each second of the world's time, then what stands where.
    const auto second = [&] {
        e.engine.call("Loop");
        e.engine.call("AdvanceClock", {1});
        e.engine.call("Loop");
    };
    const auto holds = [&](const QString& condition) {
        const QVariant failure = e.engine.ExecuteCode("assert " + condition, "<Tool>");
        EXPECT_TRUE(isSuccessResult(failure)) << failure.toString().toStdString();
    };
    second(); // the World Start row's animation
    holds("Camera.GetPosition() == [0, 0, 1] and Ground.GetPosition() == [0, 0, 0]");
    holds("handWritten == 'Camera'");
    e.engine.call("KeyEvent", {"KeyDown", "B", 66});
    second();
    holds("Ground.GetPosition() == [0, 0, 0]");
    e.engine.call("KeyEvent", {"KeyDown", "A", 65});
    second();
    holds("Ground.GetPosition() == [0, 2, 0] and Camera.GetPosition() == [0, 0, 1]");
    e.engine.call("MouseEvent", {"LeftMouseDown", "Ground"});
    second();
    holds("Ground.GetPosition() == [1, 2, 0]");
    e.world.HandleDifferences(e.engine.call("PollForMiscDifferences"));
    EXPECT_TRUE(e.view.errors.isEmpty()) << e.view.output.join(u'\n').toStdString();
}
