#include "world/open_world.h"

#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"
#include "support/recording_view.h"
#include "support/scripted_engine.h"

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
