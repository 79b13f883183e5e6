// A program that saves a world over and over, for the test that kills it while it saves.
// It saves one of two worlds, A and B:
//   saving_child FOLDER A|B          saves that world into FOLDER once and ends
//   saving_child FOLDER A|B again    says "ready", then saves that world, the other, the
//                                    first again, ... into FOLDER until it is killed
//   saving_child ROOT A|B unsaved    makes that world without saving it, keeps a copy of
//                                    the unsaved work in the recovery folder ROOT, says
//                                    "kept" and waits to be killed
// The two differ in their script, rows, code and scene, so that a folder that mixed
// them, or held half a file, would not open as either.
#include "gateway/python_interpreter.h"
#include "world/autosave.h"
#include "world/open_world.h"
#include "world/recovery_store.h"
#include "world/world_files.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <cstdio>
#include <cstring>
#include <unistd.h>

using namespace vessa;

namespace {

// Nobody to ask or tell: a save that fails ends the program with what it said.
class SilentView : public DifferenceView, public WorldFilesView {
public:
    void appendOutput(const QString&, const QColor&) override {}
    void PrintOutput(const QString&) override {}
    void showUndoAvailable(bool) override {}
    void showWorldActive(bool) override {}
    bool cameraWindowOnTop() const override { return false; }
    void setRenderFormAlwaysOnTop(bool) override {}
    void pumpEvents() override {}
    void showUserError(const ErrorFormContent&) override {}
    void showMessage(const QString& title, const QString& text, const QString& details) override {
        std::fprintf(stderr, "%s: %s %s\n", qPrintable(title), qPrintable(text),
                     qPrintable(details));
        std::exit(2);
    }
    Answer askSaveChanges() override { return Answer::No; }
    Answer askOverwrite(const QString&) override { return Answer::Yes; }
    bool askBringBack(const RecoveredWork&) override { return false; }
    QString chooseWorldFolder(FolderUse, const QString&) override { return {}; }
    void SwitchToTab(int) override {}
    CameraFrame cameraFrame() const override { return {}; }
    void showHelpPage(const QString&) override {}
    void keepCameraWindowOnTop() override {}
};

class NoDisplay : public ErrorDisplay {
public:
    void showModal(const ErrorFormContent& content) override {
        std::fprintf(stderr, "%s\n", qPrintable(content.labelText));
        std::exit(3);
    }
};

class Exit : public ProcessControl {
public:
    [[noreturn]] void endProcess(int exitCode) override { std::exit(exitCode); }
};

struct Saver {
    AppState state;
    EngineLink engine;
    NoDisplay display;
    Exit process;
    ErrorReporter reporter{state, display, process};
    OpenWorld world{state, engine, reporter};
    SilentView view;
    QTemporaryDir recoveryRoot;
    RecoveryStore recovery;
    WorldFiles files{WorldContext{state, engine, reporter, world, view, {}}, recovery};
    bool markerMoved = false;

    explicit Saver(const QString& recoveryAt)
        : recovery(recoveryAt.isEmpty() ? recoveryRoot.path() : recoveryAt) {
        state.ExitOnFatal = false;
        state.HomeDir = qEnvironmentVariable("VESSA47_HOME");
        // Started two hundred times: the engine without its compiled backend starts
        // quickest, and saves in the same way but for the picture.
        ensurePythonStarted(qEnvironmentVariable("PYTHONPATH"));
        engine.attach(std::make_unique<PythonInterpreter>(QStringLiteral(QUICK_ENGINE_DIR),
                                                          QStringLiteral("quick_engine"),
                                                          QStringLiteral("QuickEngine")));
        world.attachView(&view);
        files.FileNewMenuButton_Click();
        engine.call(QStringLiteral("AddText"), {QStringLiteral("Marker")});
    }

    void run(const QString& code) {
        if (!isSuccessResult(engine.ExecuteCode(code, QStringLiteral("<Tool>"))))
            std::exit(4);
        engine.call(QStringLiteral("Loop"));
    }

    // The script, rows and code of world A or B, and its scene.
    void become(bool b) {
        world.emptyForNextWorld();
        TreeControl& tree = world.script().TreeView1();
        TreeNode* first = tree.FirstRoot();
        for (int line = 0; line < (b ? 40 : 25); ++line)
            tree.Add(first, Relation::Child, {},
                     QStringLiteral("Marker.Move(%1, %2, more...)")
                         .arg(b ? QStringLiteral("Up") : QStringLiteral("Down"))
                         .arg(line));
        world.events().addRow(QStringLiteral("LeftMouseButtonDown"), QStringLiteral("Marker"),
                              QStringLiteral("Action1"));
        world.ArbitraryCodeBox().Text = QStringLiteral("side = '%1'\r\n")
                                            .arg(b ? QStringLiteral("B") : QStringLiteral("A"))
                                            .repeated(b ? 200 : 100);
        if (b != markerMoved)
            run(QStringLiteral("Marker.Move(%1, 1, Duration=0)\nMarker.SetColor(%2, Duration=0)")
                    .arg(b ? QStringLiteral("Right") : QStringLiteral("Left"),
                         b ? QStringLiteral("Blue") : QStringLiteral("White")));
        markerMoved = b;
    }

    // Keeps copies of the unsaved work as the program does, only more often, until the
    // first is whole.
    void keepUnsaved(QCoreApplication& app) {
        world.status().markModified();
        Autosave autosave(engine, world, recovery, [](const QString& line) {
            std::fprintf(stderr, "%s\n", qPrintable(line));
            std::exit(6);
        });
        autosave.start(std::chrono::milliseconds(1));
        while (!readRecoveredWork(onlyCopy()).savedAt.isValid())
            app.processEvents(QEventLoop::WaitForMoreEvents);
        autosave.stop();
        recovery.waitForCopy();
    }

    QString onlyCopy() const {
        const QStringList copies =
            QDir(recovery.root()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        return copies.size() == 1 ? QDir(recovery.root()).filePath(copies[0]) : QString();
    }

    void save(const QString& folder) {
        if (files.SaveWorld(folder) != kYesSave)
            std::exit(5);
    }
};

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc < 3)
        return 1;
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const bool unsaved = argc > 3 && std::strcmp(argv[3], "unsaved") == 0;
    Saver saver(unsaved ? folder : QString());
    bool b = argc > 2 && argv[2][0] == 'B';
    if (unsaved) {
        saver.become(b);
        saver.keepUnsaved(app);
        std::printf("kept\n");
        std::fflush(stdout);
        for (;;)
            ::pause();
    }
    if (argc < 4) {
        saver.become(b);
        saver.save(folder);
        return 0;
    }
    std::printf("ready\n");
    std::fflush(stdout);
    for (;; b = !b) {
        saver.become(b);
        saver.save(folder);
        std::printf("saved\n");
        std::fflush(stdout);
    }
}
