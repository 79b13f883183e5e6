#pragma once

#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"
#include "world/open_world.h"
#include "world/recovery_store.h"
#include "world/world_files.h"
#include "world/world_files_view.h"

#include "support/qt_print.h"
#include "support/recording_view.h"
#include "support/scripted_engine.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>

namespace vessa::testing {

// The windows as loading and saving see them: every box remembered, every question
// answered as the test says.
class RecordingFilesView : public RecordingView, public WorldFilesView {
public:
    struct Message {
        QString title, text, details;
    };

    void showMessage(const QString& title, const QString& text, const QString& details) override {
        messages.append({title, text, details});
    }
    Answer askSaveChanges() override {
        questions << QStringLiteral("save changes");
        return saveChanges;
    }
    Answer askOverwrite(const QString&) override {
        questions << QStringLiteral("overwrite");
        return overwrite;
    }
    bool askBringBack(const RecoveredWork& work) override {
        offered.append(work);
        return bringBack;
    }
    QString chooseWorldFolder(FolderUse, const QString&) override {
        return folders.isEmpty() ? QString() : folders.takeFirst();
    }
    void SwitchToTab(int tab) override { tabs << tab; }
    CameraFrame cameraFrame() const override { return {320, 240, 0}; }
    void showHelpPage(const QString& page) override { helpPages << page; }
    void keepCameraWindowOnTop() override {}
    void pumpEvents() override { RecordingView::pumpEvents(); }
    void PrintOutput(const QString& text) override { RecordingView::PrintOutput(text); }

    QList<Message> messages;
    QStringList questions, helpPages, folders;
    QList<int> tabs;
    QList<RecoveredWork> offered;
    Answer saveChanges = Answer::No;
    Answer overwrite = Answer::Yes;
    bool bringBack = true;
};

// The open world over the real engine, with its files: what the main window does with
// them, without the window. Copies of unsaved work go to a folder of the test's own
// unless it is given one.
struct WorldOnEngine {
    AppState state;
    EngineLink engine;
    RecordingErrorDisplay internalErrors;
    ThrowingProcessControl process;
    ErrorReporter reporter{state, internalErrors, process};
    OpenWorld world{state, engine, reporter};
    RecordingFilesView view;
    QTemporaryDir recoveryRoot;
    QString recoveryFolder;
    RecoveryStore recovery{recoveryFolder.isEmpty() ? recoveryRoot.path() : recoveryFolder};
    QStringList trusted;
    WorldFiles files{WorldContext{state, engine, reporter, world, view,
                                  [this](const QString& folder) {
                                      return trusted.contains(folder);
                                  }},
                     recovery};

    // recoveryAt: where copies of unsaved work are kept, when not in a folder of its own.
    explicit WorldOnEngine(const QString& recoveryAt = QString()) : recoveryFolder(recoveryAt) {
        state.ExitOnFatal = false;
        state.HomeDir = qEnvironmentVariable("VESSA47_HOME");
        InterpreterRegistry registry;
        registerPythonEngine(registry, qEnvironmentVariable("PYTHONPATH"));
        engine.attach(registry.create(kEngineProgId));
        world.attachView(&view);
        world.status().addObserver(view);
        files.FileNewMenuButton_Click();
        view.questions.clear();
    }
    ~WorldOnEngine() { world.status().removeObserver(view); }

    void run(const QString& code) {
        const QVariant failure = engine.ExecuteCode(code, QStringLiteral("<Tool>"));
        ASSERT_TRUE(isSuccessResult(failure)) << failure.toString().toStdString();
        engine.call(QStringLiteral("Loop"));
        poll();
    }

    // The engine's records, as the main loop hands them to the world.
    void poll() {
        engine.call(QStringLiteral("flushout"));
        world.HandleDifferences(engine.call(QStringLiteral("PollForMiscDifferences")));
        world.pollTreeDifferences();
    }

    // The scene as a copy of it would be written: every object and value, by name.
    QString sceneText() {
        engine.call(QStringLiteral("StartSceneCopy"), {0});
        QString text;
        for (QString part;
             !(part = engine.call(QStringLiteral("NextSceneCopyPart"), {1000}).toString())
                  .isEmpty();)
            text += part;
        return text;
    }

    // Everything of the world the user sees and a save keeps, a line each; the code's line
    // ends shown as "<CRLF>".
    QString shown() {
        QStringList lines;
        const std::function<void(const TreeNode*, int)> add = [&](const TreeNode* node, int depth) {
            for (; node; node = node->Next()) {
                lines << QStringLiteral("%1%2 [%3%4]")
                             .arg(QString(depth * 2, u' '), node->Text(),
                                  node->Expanded() ? QStringLiteral("open")
                                                   : QStringLiteral("shut"),
                                  node->Tag().isEmpty() ? QString() : u' ' + node->Tag());
                add(node->Child(), depth + 1);
            }
        };
        add(world.script().TreeView1().FirstRoot(), 0);
        const ListControl& rows = world.events().ListView1();
        for (int i = 0; i < rows.Count(); ++i)
            lines << QStringLiteral("row %1 | %2 | %3")
                         .arg(rows.Row(i)->SubItems(1), rows.Row(i)->SubItems(2),
                              rows.Row(i)->SubItems(3));
        lines << QStringLiteral("code: ") +
                     QString(world.ArbitraryCodeBox().Text)
                         .replace(QStringLiteral("\r\n"), QStringLiteral("<CRLF>"));
        lines << QStringLiteral("names: ") + world.script().AnimationNames().Text();
        const std::function<void(const TreeNode*)> objects = [&](const TreeNode* node) {
            for (; node; node = node->Next()) {
                lines << QStringLiteral("object ") + node->Text();
                objects(node->Child());
            }
        };
        objects(world.trees().ObjectTree.FirstRoot());
        lines << sceneText().split(QStringLiteral("\r\n"));
        return lines.join(u'\n');
    }
};

inline QString homeFile(const QString& path) {
    return qEnvironmentVariable("VESSA47_HOME") + path;
}

// A world as a user makes one: objects added through the engine, lines, rows and code
// through the models.
inline void buildWorld(WorldOnEngine& w) {
    ASSERT_TRUE(isSuccessResult(w.engine.call(
        QStringLiteral("addobject"), {homeFile(QStringLiteral("Objects/Animals/Bunny.mdl"))})));
    ASSERT_TRUE(isSuccessResult(w.engine.call(QStringLiteral("AddText"), {QStringLiteral("Hi")})));
    w.run(QStringLiteral("Bunny.Move(Left, 2, Duration=0)\nHi.Turn(Right, 1/4, Duration=0)\n"
                         "Hi.SetColor(Red, Duration=0)"));
    ScriptModel& script = w.world.script();
    TreeControl& tree = script.TreeView1();
    TreeNode* hop = tree.FirstRoot();
    tree.SetExpanded(hop, true);
    tree.Add(hop, Relation::Child, {}, QStringLiteral("Bunny.Move(Forward, 1, more...)"));
    TreeNode* both = tree.Add(hop, Relation::Child, {}, QStringLiteral("Both : DoTogether"));
    tree.Add(both, Relation::Child, {}, QStringLiteral("Hi.Turn(Left, 1, more...)"));
    TreeNode* python = tree.Add(both, Relation::Child, {}, QStringLiteral("print('hop')"));
    tree.SetTag(python, PythonLineTag);
    TreeNode* spin = script.AddNewAnimation();
    tree.Add(spin, Relation::Child, {}, QStringLiteral("Hi.Turn(Left, 2, more...)"));
    tree.SetExpanded(spin, false);
    w.world.events().addRow(QStringLiteral(R"(KeyDown ("A" key))"), QStringLiteral("AnyWhere"),
                            QStringLiteral("Action2"));
    w.world.ArbitraryCodeBox().Text = QStringLiteral("greeting = Hi.GetName()\r\n");
    w.poll();
}

inline QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

} // namespace vessa::testing
