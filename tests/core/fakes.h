#pragma once

#include "core/app_state.h"
#include "core/engine_link.h"
#include "core/error_display.h"
#include "core/error_reporter.h"
#include "core/interpreter.h"
#include "core/run_time_error.h"
#include "core/shell.h"

#include <QHash>
#include <QStringList>
#include <functional>

namespace vessa::testing {

// An engine that answers from a script and remembers every call.
class ScriptedInterpreter : public Interpreter {
public:
    struct Log {
        QStringList calls;
        QList<QVariantList> arguments;
    };

    explicit ScriptedInterpreter(Log& log) : log_(log) {}

    QVariant call(const QString& method, const QVariantList& args) override {
        log_.calls.append(method);
        log_.arguments.append(args);
        if (auto it = failures.constFind(method); it != failures.constEnd())
            throw RunTimeError(RunTimeError::AutomationError, *it, QStringLiteral("engine"));
        if (auto it = handlers.constFind(method); it != handlers.constEnd())
            return (*it)(args);
        return answers.value(method);
    }

    QHash<QString, QVariant> answers;
    QHash<QString, QString> failures; // method -> description of the error it raises
    QHash<QString, std::function<QVariant(const QVariantList&)>> handlers;

private:
    Log& log_;
};

// Thrown instead of ending the test process. Not a std::exception, so that no
// handler of the program mistakes it for a failure of its own.
struct ProcessEnded {
    int exitCode;
};

class ThrowingProcessControl : public ProcessControl {
public:
    [[noreturn]] void endProcess(int exitCode) override { throw ProcessEnded{exitCode}; }
};

class RecordingErrorDisplay : public ErrorDisplay {
public:
    void showModal(const ErrorFormContent& content) override { shown.append(content); }
    QList<ErrorFormContent> shown;
};

// Windows that only remember what was asked of them.
class RecordingShell : public Shell {
public:
    int displayBitsPerPixel() override { return bitsPerPixel; }
    void createSplash() override { events << QStringLiteral("createSplash"); }
    void showSplash() override { events << QStringLiteral("showSplash"); }
    void refreshSplash() override {}
    void unloadSplash() override { events << QStringLiteral("unloadSplash"); }
    void pumpEvents() override { ++pumps; }
    void pumpEventsWaiting(int maxWaitMs) override {
        waits << maxWaitMs;
        if (onPump)
            onPump();
    }
    void createMainForm() override { events << QStringLiteral("createMainForm"); }
    void createRenderForm() override { events << QStringLiteral("createRenderForm"); }
    double twipsPerPixelX() const override { return 15; }
    double twipsPerPixelY() const override { return 15; }
    void showMainForm() override { events << QStringLiteral("showMainForm"); }
    void setMainFormCaption(const QString& text) override { caption = text; }
    qint64 openingSceneHostId() const override { return 7; }
    QSize openingSceneSizeTwips() const override { return {6000, 4500}; }
    void showHelpPage(const QString& page) override { helpPages << page; }
    void SetSaveName(const QString& name) override {
        events << QStringLiteral("SetSaveName:") + name;
    }
    void setIdleTimerInterval(int ms) override { idleInterval = ms; }
    void markWorldClean() override { events << QStringLiteral("markWorldClean"); }
    bool HelpFormWanted() const override { return helpWanted; }
    void HandleDifferences(const QVariant& records) override { handled << records; }
    bool objectTreeVisible() const override { return treeVisible; }
    void LogMessage(const QString& text) override { logLines << text; }

    int bitsPerPixel = 32;
    bool helpWanted = false;
    bool treeVisible = false;
    int pumps = 0;
    int idleInterval = 0;
    QStringList events, helpPages, logLines;
    QString caption;
    QList<int> waits;
    QVariantList handled;
    std::function<void()> onPump;
};

// A running program's core around a scripted engine, past start-up: failed
// calls show the dialog and the program goes on.
struct ScriptedProgram {
    AppState state;
    EngineLink engine;
    ScriptedInterpreter::Log log;
    ScriptedInterpreter* scripted; // owned by the engine link
    RecordingErrorDisplay display;
    ThrowingProcessControl process;
    ErrorReporter reporter{state, display, process};

    ScriptedProgram() {
        state.ExitOnFatal = false;
        auto made = std::make_unique<ScriptedInterpreter>(log);
        scripted = made.get();
        engine.attach(std::move(made));
    }

    // The Python statements sent so far, in order.
    QStringList statements() const {
        QStringList sent;
        for (qsizetype i = 0; i < log.calls.size(); ++i)
            if (log.calls[i] == QStringLiteral("ExecuteCode"))
                sent << log.arguments[i][0].toString();
        return sent;
    }
};

} // namespace vessa::testing
