// A world at a hundred times the size people make by hand: 10,000 script lines in 500
// animations, 1,000 event rows and 1,000 lines of code. Targets: its Python generated
// under 5 ms; its world_script.tv written under 10 ms, and read into the controls (shown
// through Qt item models, as in the program) under 30 ms. And `vessa47 check` of the
// default world, the whole process, under 1 s.
#include "controls/list_item_model.h"
#include "controls/tree_item_model.h"
#include "world/standalone_script.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace vessa;

namespace {

struct BigWorld {
    StandaloneScript script;
    TreeItemModel shownTree{script.TreeView1};
    ListItemModel shownRows{script.ListView1};

    BigWorld() {
        TreeControl& tree = script.TreeView1;
        for (int animation = 1; animation <= 500; ++animation) {
            const QString name = QStringLiteral("Action%1").arg(animation);
            TreeNode* root = tree.AddRoot(name.toLower(), name + QStringLiteral(" = DoInOrder"));
            tree.SetExpanded(root, true);
            for (int line = 0; line < 15; ++line)
                tree.Add(root, Relation::Child, QString(),
                         line % 2 ? "Bunny.Move(Forward, 1, Duration=2, Style=abruptly, more...)"
                                  : "Camera.Turn(Left, 1/4, AsSeenBy=Bunny, more...)");
            TreeNode* block = tree.Add(root, Relation::Child, QString(), "Wave : DoTogether");
            for (int line = 0; line < 4; ++line)
                tree.Add(block, Relation::Child, QString(), "Bunny.Head.Roll(Left, 1/8, more...)");
        }
        const QString whens[] = {"LeftMouseButtonDown", R"(KeyDown ("A" key))",
                                 "KeyUp (Left Arrow Key)", "RightMouseButtonUp", "World Start"};
        for (int row = 0; row < 1000; ++row)
            script.targets().addRow(whens[row % 5], row % 2 ? "AnyWhere" : "Bunny",
                                    QStringLiteral("Action%1").arg(row % 500 + 1));
        QStringList code;
        for (int line = 0; line < 1000; ++line)
            code << QStringLiteral("print('line %1 of the code box')").arg(line);
        script.ArbitraryCodeBox.Text = code.join(QStringLiteral("\r\n"));
    }
};

BigWorld& Big() {
    static BigWorld big;
    return big;
}

void BM_MakePythonScript(benchmark::State& state) {
    BigWorld& big = Big();
    qsizetype size = 0;
    for (auto _ : state)
        size = big.script.python().text.size();
    state.counters["characters"] = static_cast<double>(size);
}
BENCHMARK(BM_MakePythonScript)->Unit(benchmark::kMillisecond);

void BM_MakeTVscript(benchmark::State& state) {
    BigWorld& big = Big();
    for (auto _ : state)
        benchmark::DoNotOptimize(MakeTVscript(big.script.TreeView1, big.script.ListView1,
                                              big.script.ArbitraryCodeBox.Text));
}
BENCHMARK(BM_MakeTVscript)->Unit(benchmark::kMillisecond);

// From the file on disk to the tree, rows and code in the controls.
void BM_LoadScriptFiles(benchmark::State& state) {
    BigWorld& big = Big();
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("world_script.tv")));
    if (!file.open(QIODevice::WriteOnly))
        state.SkipWithError("the file can't be written");
    file.write(scriptFileBytes(
        MakeTVscript(big.script.TreeView1, big.script.ListView1, big.script.ArbitraryCodeBox.Text)
            .text));
    file.close();
    BigWorld loaded;
    for (auto _ : state) {
        const ScriptFileRead read = loaded.script.LoadScriptFiles(folder.path());
        if (!read.ok())
            state.SkipWithError(qPrintable(read.problem.text()));
    }
    state.counters["nodes"] = loaded.script.TreeView1.Count();
}
BENCHMARK(BM_LoadScriptFiles)->Unit(benchmark::kMillisecond);

// The whole process, from its start to its exit, without a display.
void BM_CheckDefaultWorld(benchmark::State& state) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        env.remove(QString::fromLatin1(name));
    for (auto _ : state) {
        QProcess process;
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(VESSA_PROGRAM),
                      {QStringLiteral("check"), QStringLiteral(VESSA_HOME_DIR "/Worlds/Default")});
        if (!process.waitForFinished(30000) || process.exitCode() != 0) {
            state.SkipWithError("the check did not end cleanly");
            break;
        }
    }
}
BENCHMARK(BM_CheckDefaultWorld)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
