#pragma once

#include "gateway/interpreter_registry.h"

namespace vessa {

// Registers the Python engine under both of its ProgIDs; its package is looked
// for in `pythonDir`.
void registerPythonEngine(InterpreterRegistry& registry, const QString& pythonDir);

} // namespace vessa
