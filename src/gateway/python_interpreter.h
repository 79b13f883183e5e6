#pragma once

#include "gateway/interpreter.h"

#include <QString>
#include <memory>

namespace vessa {

// The engine as a Python object inside this process. The embedded CPython is
// started once, on first use, with `pythonDir` in front of its module path; the
// user-interface thread holds the interpreter lock only during a call, so that
// the engine's own threads (its watchdog) run between calls.
class PythonInterpreter : public Interpreter {
public:
    // Imports `module` and makes an instance of `className` with no arguments.
    // Throws RunTimeError when the module or class can't be loaded.
    PythonInterpreter(const QString& pythonDir, const QString& module, const QString& className);
    ~PythonInterpreter() override;

    PythonInterpreter(const PythonInterpreter&) = delete;
    PythonInterpreter& operator=(const PythonInterpreter&) = delete;

    QVariant call(const QString& method, const QVariantList& args = {}) override;

private:
    struct Instance;
    std::unique_ptr<Instance> instance_;
};

// Starts the embedded interpreter if needed and puts `pythonDir` first on its
// module path. Safe to call more than once.
void ensurePythonStarted(const QString& pythonDir);

} // namespace vessa
