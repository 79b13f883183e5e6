#include "export/sketch_session.h"
#include "export/tool_process.h"
#include "export/tool_sessions.h"
#include "support/qt_print.h"
#include "support/scripted_engine.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// The paint and sketch tools' sessions with a tool program of the tests' own
// (fake_tool.cpp) started through a jview like the home folder's. The tool writes its
// answers to a file that stands for the clipboard; the tests tick the timers
// themselves and wait for the tool's own replies, never for time to pass.

namespace vessa {
namespace {

using testing::ScriptedProgram;

// Generous: a guard against a tool that never answers, not a measure of anything.
constexpr int kToolAnswerMs = 60'000;

class FileClipboard : public ToolClipboard {
public:
    explicit FileClipboard(QString path) : path_(std::move(path)) {}
    QString text() const override {
        QFile file(path_);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    void clear() override {
        QFile file(path_);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    }
    void set(const QString& text) {
        QFile file(path_);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text.toUtf8());
    }

private:
    QString path_;
};

class RecordingToolView : public ToolSessionsView {
public:
    void showMessage(const QString& title, const QString& text) override {
        messages << title + QStringLiteral(": ") + text;
    }
    void showToolMissing(const ErrorFormContent& content) override { missing << content; }
    int sceneScriptTab() const override { return tab; }
    void switchToTab(int to) override {
        switches << to;
        tab = to;
    }
    void setIdleTimerInterval(int ms) override { idle << ms; }

    QStringList messages;
    QList<ErrorFormContent> missing;
    QList<int> switches, idle;
    int tab = 0;
};

class ToolSessionsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        for (const QString& folder :
             {home + QStringLiteral("bin"), home + QStringLiteral("VessaPaint3D"),
              home + QStringLiteral("Teddy2"), temp})
            ASSERT_TRUE(QDir().mkpath(folder));
        writeJview(QStringLiteral("Paint3d|Teddy"));
        program.state.HomeDir = home;
        qputenv("VESSA_TEST_CLIPBOARD", clipboardPath().toLocal8Bit());
        // The engine writes the object where it is told to store it.
        program.scripted->handlers[QStringLiteral("ExecuteCode")] = [](const QVariantList& args) {
            static const QRegularExpression store(QStringLiteral(R"(\.store\('(.*)'\)$)"));
            const QRegularExpressionMatch match = store.match(args[0].toString());
            if (match.hasMatch()) {
                QFile file(match.captured(1));
                EXPECT_TRUE(file.open(QIODevice::WriteOnly));
            }
            return QVariant();
        };
    }

    void TearDown() override {
        for (const QPointer<QProcess>& process : processes)
            if (process && process->state() != QProcess::NotRunning) {
                process->write("exit 0\n");
                process->waitForFinished(kToolAnswerMs);
            }
    }

    // A jview that starts the tests' tool for the names given, as "NAME ARGUMENTS...".
    void writeJview(const QString& names) {
        QFile jview(home + QStringLiteral("bin/jview"));
        ASSERT_TRUE(jview.open(QIODevice::WriteOnly | QIODevice::Truncate));
        jview.write(
            QStringLiteral("#!/bin/sh\ncase \"$1\" in %1) exec '%2' \"$@\" ;; esac\nexit 127\n")
                .arg(names, QStringLiteral(VESSA_FAKE_TOOL))
                .toUtf8());
        jview.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QString clipboardPath() const { return dir.path() + QStringLiteral("/clipboard.txt"); }

    // The line the tool began with: where it runs and with what.
    QString started(QtToolProcess& tool) {
        QProcess& process = tool.process();
        while (!process.canReadLine())
            if (!process.waitForReadyRead(kToolAnswerMs))
                return {};
        return QString::fromUtf8(process.readLine()).trimmed();
    }

    // The tool puts text on the clipboard.
    void say(QtToolProcess& tool, const QString& text) {
        QProcess& process = tool.process();
        process.write((QStringLiteral("say ") + text + u'\n').toUtf8());
        for (;;) {
            while (!process.canReadLine())
                ASSERT_TRUE(process.waitForReadyRead(kToolAnswerMs));
            if (process.readLine().trimmed() == "said")
                return;
        }
    }

    void end(QtToolProcess& tool, int exitCode) {
        tool.process().write(QStringLiteral("exit %1\n").arg(exitCode).toUtf8());
        ASSERT_TRUE(tool.process().waitForFinished(kToolAnswerMs));
    }

    QString file(const QString& name) {
        const QString path = temp + u'/' + name;
        QFile made(path);
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
        return path;
    }

    QStringList callsOf(const QString& method) const {
        QStringList found;
        for (qsizetype i = 0; i < program.log.calls.size(); ++i)
            if (program.log.calls[i] == method) {
                QStringList args;
                for (const QVariant& arg : program.log.arguments[i])
                    args << arg.toString();
                found << args.join(u'|');
            }
        return found;
    }

    QTemporaryDir dir;
    QString home = dir.path() + QStringLiteral("/home/");
    QString temp = dir.path() + QStringLiteral("/temp");
    ScriptedProgram program;
    FileClipboard clipboard{clipboardPath()};
    RecordingToolView view;
    QList<QtToolProcess*> tools;         // owned by the sessions; those that started live on
    QList<QPointer<QProcess>> processes; // of each tool, while it is there
    ToolSessions sessions{program.state,
                          program.engine,
                          program.reporter,
                          view,
                          clipboard,
                          [this] {
                              auto made =
                                  std::make_unique<QtToolProcess>(QtToolProcess::Channels::Piped);
                              tools << made.get();
                              processes << &made->process();
                              return made;
                          },
                          temp};
};

TEST_F(ToolSessionsTest, PaintStoresTheObjectSavesAsOftenAsAskedAndEndsWithSaveAndExit) {
    program.state.RunEngineLoop = true;
    view.tab = 2;
    sessions.mnuPaint_Click(QStringLiteral("Bunny"));
    const QString stored = temp + QStringLiteral("/Bunny.mdl");
    EXPECT_EQ(program.statements(), QStringList{QStringLiteral("Bunny.store('") + stored + "')"});
    ASSERT_EQ(tools.size(), 1);
    EXPECT_EQ(started(*tools[0]),
              QStringLiteral("started ") + home + QStringLiteral("VessaPaint3D Paint3d ") + stored);
    EXPECT_TRUE(sessions.PaintTimer().isActive());
    EXPECT_EQ(sessions.PaintTimer().interval(), 100);
    EXPECT_FALSE(program.state.RunEngineLoop);
    EXPECT_EQ(view.idle, QList<int>{42});

    // Anything else on the clipboard is passed over.
    clipboard.set(QStringLiteral("a shopping list"));
    sessions.PaintTimer_Timer();
    EXPECT_TRUE(callsOf(QStringLiteral("replaceobject")).isEmpty());

    say(*tools[0], QStringLiteral("PAINT3D_SAVE ") + stored);
    sessions.PaintTimer_Timer();
    EXPECT_EQ(view.switches, QList<int>{0}) << "the scene's tab first";
    EXPECT_EQ(clipboard.text(), QString());
    say(*tools[0], QStringLiteral("Paint3d_Save ") + stored);
    sessions.PaintTimer_Timer();
    sessions.PaintTimer_Timer(); // the clipboard was cleared: nothing again
    EXPECT_TRUE(sessions.PaintTimer().isActive()) << "the tool goes on after a save";

    // The longer message is read as itself, not as a save with a strange path.
    say(*tools[0], QStringLiteral("paint3d_save_and_exit ") + stored);
    sessions.PaintTimer_Timer();
    const QString replaced = QStringLiteral("Bunny|") + stored;
    EXPECT_EQ(callsOf(QStringLiteral("replaceobject")),
              QStringList({replaced, replaced, replaced}));
    EXPECT_FALSE(sessions.PaintTimer().isActive());
    EXPECT_TRUE(program.state.RunEngineLoop);
    EXPECT_EQ(view.idle, QList<int>({42, 1}));
    EXPECT_EQ(clipboard.text(), QString());
    end(*tools[0], 0);
    EXPECT_EQ(view.idle, QList<int>({42, 1})) << "the end of a finished session changes nothing";
    EXPECT_TRUE(view.missing.isEmpty());
}

TEST_F(ToolSessionsTest, DiscardEndsThePaintWithoutTouchingTheObjectAndASecondPaintWaitsForIt) {
    sessions.mnuPaint_Click(QStringLiteral("Bunny"));
    sessions.mnuPaint_Click(QStringLiteral("Rock"));
    EXPECT_EQ(view.messages,
              QStringList{QStringLiteral("Paint Tool Already Running: Sorry, but "
                                         "you can only paint one object at a time.")});
    EXPECT_EQ(program.statements().size(), 1) << "the second paint touches nothing";
    EXPECT_EQ(tools.size(), 1);
    EXPECT_EQ(sessions.PaintObjectName(), QStringLiteral("Bunny"));

    say(*tools[0], QStringLiteral("PAINT3D_DISCARD_AND_EXIT"));
    sessions.PaintTimer_Timer();
    EXPECT_FALSE(sessions.PaintTimer().isActive());
    EXPECT_TRUE(callsOf(QStringLiteral("replaceobject")).isEmpty());
    EXPECT_EQ(clipboard.text(), QString());
    end(*tools[0], 0);

    sessions.mnuPaint_Click(QStringLiteral("Rock"));
    EXPECT_EQ(tools.size(), 2);
    EXPECT_TRUE(sessions.PaintTimer().isActive());
    EXPECT_EQ(sessions.PaintObjectName(), QStringLiteral("Rock"));
}

TEST_F(ToolSessionsTest, AMessageNamingAFileTheToolWasNotGivenIsPassedOver) {
    sessions.mnuPaint_Click(QStringLiteral("Bunny"));
    QTemporaryDir elsewhere;
    QFile(elsewhere.filePath(QStringLiteral("Bunny.mdl"))).open(QIODevice::WriteOnly);
    QDir().mkpath(temp + QStringLiteral("/inner"));
    QFile(temp + QStringLiteral("/inner/Bunny.mdl")).open(QIODevice::WriteOnly);
    for (const QString& path :
         {elsewhere.filePath(QStringLiteral("Bunny.mdl")),
          temp + QStringLiteral("/inner/Bunny.mdl"),
          temp + QStringLiteral("/inner/../../home/bin/jview"), temp + QStringLiteral("/Gone.mdl"),
          QStringLiteral("Bunny.mdl"), QString()}) {
        say(*tools[0], QStringLiteral("PAINT3D_SAVE_AND_EXIT ") + path);
        sessions.PaintTimer_Timer();
        EXPECT_TRUE(sessions.PaintTimer().isActive()) << path.toStdString();
    }
    EXPECT_TRUE(callsOf(QStringLiteral("replaceobject")).isEmpty());
    // Another file the tool made in its folder is its own.
    say(*tools[0], QStringLiteral("PAINT3D_SAVE ") + file(QStringLiteral("Bunny_painted.mdl")));
    sessions.PaintTimer_Timer();
    EXPECT_EQ(callsOf(QStringLiteral("replaceobject")).size(), 1);
}

TEST_F(ToolSessionsTest, AToolThatEndsWithoutAMessageEndsItsSession) {
    sessions.mnuPaint_Click(QStringLiteral("Bunny"));
    end(*tools[0], 3);
    EXPECT_FALSE(sessions.PaintTimer().isActive());
    EXPECT_TRUE(program.state.RunEngineLoop);
    EXPECT_EQ(view.idle, QList<int>({42, 1}));
    EXPECT_TRUE(view.missing.isEmpty());

    // Its last answer, left on the clipboard as it went, still counts.
    sessions.mnuPaint_Click(QStringLiteral("Bunny"));
    say(*tools[1], QStringLiteral("PAINT3D_SAVE_AND_EXIT ") + temp + QStringLiteral("/Bunny.mdl"));
    end(*tools[1], 0);
    EXPECT_EQ(callsOf(QStringLiteral("replaceobject")).size(), 1);
    EXPECT_FALSE(sessions.PaintTimer().isActive());
}

TEST_F(ToolSessionsTest, SketchToolAddsItsObjectAndLeavesItsMessageOnTheClipboard) {
    view.tab = 1;
    sessions.StartSketchTool();
    ASSERT_EQ(tools.size(), 1);
    EXPECT_EQ(started(*tools[0]),
              QStringLiteral("started ") + home + QStringLiteral("Teddy2 Teddy"));
    EXPECT_TRUE(sessions.TeddyTimer().isActive());
    EXPECT_EQ(view.idle, QList<int>{42});

    // Where the real sketch tool writes: a folder of its own in the temporary folder.
    const QString made = newSketchObjectPath();
    ASSERT_FALSE(made.isEmpty());
    const auto removeFolder =
        qScopeGuard([&] { QDir(QFileInfo(made).absolutePath()).removeRecursively(); });
    QFile object(made);
    ASSERT_TRUE(object.open(QIODevice::WriteOnly));
    object.close();
    say(*tools[0], QStringLiteral("TEDDY_SAVE_AND_EXIT ") + made);
    sessions.TeddyTimer_Timer();
    EXPECT_EQ(callsOf(QStringLiteral("loadteddyobject")), QStringList{made});
    EXPECT_EQ(view.switches, QList<int>{0});
    EXPECT_FALSE(sessions.TeddyTimer().isActive());
    EXPECT_EQ(view.idle, QList<int>({42, 1}));
    EXPECT_EQ(clipboard.text(), QStringLiteral("TEDDY_SAVE_AND_EXIT ") + made);
    end(*tools[0], 0);

    sessions.StartSketchTool();
    EXPECT_EQ(clipboard.text(), QString()) << "an old answer is not taken for the new one";
    say(*tools[1], QStringLiteral("TEDDY_DISCARD_AND_EXIT"));
    sessions.TeddyTimer_Timer();
    EXPECT_FALSE(sessions.TeddyTimer().isActive());
    EXPECT_EQ(callsOf(QStringLiteral("loadteddyobject")).size(), 1);
}

TEST_F(ToolSessionsTest, EachToolHearsOnlyItsOwnMessagesWhileBothRun) {
    sessions.mnuPaint_Click(QStringLiteral("Bunny"));
    sessions.StartSketchTool();
    ASSERT_EQ(tools.size(), 2);
    const QString made = file(QStringLiteral("Sketch.mdl"));
    say(*tools[1], QStringLiteral("TEDDY_SAVE_AND_EXIT ") + made);
    sessions.PaintTimer_Timer();
    EXPECT_TRUE(sessions.PaintTimer().isActive());
    EXPECT_TRUE(callsOf(QStringLiteral("replaceobject")).isEmpty());
    sessions.TeddyTimer_Timer();
    EXPECT_EQ(callsOf(QStringLiteral("loadteddyobject")), QStringList{made});
    EXPECT_TRUE(sessions.PaintTimer().isActive()) << "the paint goes on";

    say(*tools[0], QStringLiteral("PAINT3D_DISCARD_AND_EXIT"));
    end(*tools[1], 0);
    sessions.TeddyTimer_Timer();
    sessions.PaintTimer_Timer();
    EXPECT_FALSE(sessions.PaintTimer().isActive());
}

TEST_F(ToolSessionsTest, AToolThatIsMissingIsToldWithTheSupportAddress) {
    // jview knows the paint tool only: the sketch tool's start ends at once as missing.
    writeJview(QStringLiteral("Paint3d"));
    sessions.StartSketchTool();
    ASSERT_EQ(tools.size(), 1);
    ASSERT_TRUE(tools[0]->process().waitForFinished(kToolAnswerMs));
    EXPECT_FALSE(sessions.TeddyTimer().isActive());
    ASSERT_EQ(view.missing.size(), 1);
    EXPECT_TRUE(view.missing[0].typeCaption.startsWith(QStringLiteral("System file missing.")));
    EXPECT_TRUE(view.missing[0].typeCaption.endsWith(kSupportAddress));
    EXPECT_TRUE(view.missing[0].labelText.startsWith(QStringLiteral("Version: ") +
                                                     program.state.VersionText + "\r\n"));

    // Without jview neither tool starts: the paint tool would have stood in.
    const QList<int> idle = view.idle;
    QFile::remove(home + QStringLiteral("bin/jview"));
    sessions.StartSketchTool();
    sessions.mnuPaint_Click(QStringLiteral("Bunny"));
    EXPECT_EQ(view.missing.size(), 3);
    EXPECT_FALSE(sessions.TeddyTimer().isActive());
    EXPECT_FALSE(sessions.PaintTimer().isActive());
    EXPECT_EQ(view.idle, idle);
}

TEST_F(ToolSessionsTest, AnObjectThatCanNotBeStoredIsNotPainted) {
    program.scripted->handlers.remove(QStringLiteral("ExecuteCode"));
    program.scripted->answers[QStringLiteral("ExecuteCode")] = QStringLiteral("no such object");
    sessions.mnuPaint_Click(QStringLiteral("Bunny"));
    ASSERT_EQ(program.display.shown.size(), 1);
    EXPECT_TRUE(program.display.shown[0].labelText.contains(
        QStringLiteral("MainForm:mnuPaint_Click: Error storing object for painting.")));
    EXPECT_TRUE(tools.isEmpty());
    EXPECT_FALSE(sessions.PaintTimer().isActive());
}

} // namespace
} // namespace vessa
