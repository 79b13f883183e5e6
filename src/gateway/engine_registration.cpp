#include "gateway/engine_registration.h"

#include "gateway/python_interpreter.h"

namespace vessa {

void registerPythonEngine(InterpreterRegistry& registry, const QString& pythonDir) {
    const auto factory = [pythonDir]() -> std::unique_ptr<Interpreter> {
        return std::make_unique<PythonInterpreter>(pythonDir, QStringLiteral("vessa"),
                                                   QStringLiteral("Interpreter"));
    };
    registry.add(kEngineProgId, factory);
    registry.add(kFallbackEngineProgId, factory);
}

} // namespace vessa
