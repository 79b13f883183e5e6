#include "gateway/python_interpreter.h"

#include "base/run_time_error.h"
#include "gateway/variant_conversion.h"

#include <pybind11/embed.h>

namespace py = pybind11;

namespace vessa {

namespace {

QString describePythonError(const py::error_already_set& error) {
    return QString::fromUtf8(error.what());
}

} // namespace

void ensurePythonStarted(const QString& pythonDir) {
    if (!Py_IsInitialized()) {
        // No signal handlers: Ctrl+C belongs to the program, not to the engine.
        py::initialize_interpreter(false);
        // The interface thread takes the lock per call (see Instance).
        PyEval_SaveThread();
    }
    py::gil_scoped_acquire gil;
    py::list path = py::module_::import("sys").attr("path");
    const py::str dir(pythonDir.toStdString());
    if (!path.contains(dir))
        path.insert(0, dir);
}

struct PythonInterpreter::Instance {
    py::object object;
};

PythonInterpreter::PythonInterpreter(const QString& pythonDir, const QString& module,
                                     const QString& className)
    : instance_(std::make_unique<Instance>()) {
    ensurePythonStarted(pythonDir);
    py::gil_scoped_acquire gil;
    try {
        py::module_ engine = py::module_::import(module.toUtf8().constData());
        instance_->object = engine.attr(className.toUtf8().constData())();
    } catch (py::error_already_set& e) {
        throw RunTimeError(RunTimeError::AutomationError, describePythonError(e),
                           module + QLatin1Char('.') + className);
    }
}

PythonInterpreter::~PythonInterpreter() {
    py::gil_scoped_acquire gil;
    instance_->object = py::object();
}

QVariant PythonInterpreter::call(const QString& method, const QVariantList& args) {
    py::gil_scoped_acquire gil;
    try {
        py::tuple pyArgs(args.size());
        for (qsizetype i = 0; i < args.size(); ++i)
            pyArgs[static_cast<size_t>(i)] = toPython(args[i]);
        py::object bound = instance_->object.attr(method.toUtf8().constData());
        return fromPython(bound(*pyArgs));
    } catch (py::error_already_set& e) {
        throw RunTimeError(RunTimeError::AutomationError, describePythonError(e),
                           QStringLiteral("Vessa47.Interpreter.") + method);
    }
}

} // namespace vessa
