#pragma once

#include "base/run_time_error.h"
#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_display.h"
#include "gateway/error_reporter.h"
#include "gateway/interpreter.h"

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

// The program's gateway around a scripted engine, past start-up: failed
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
