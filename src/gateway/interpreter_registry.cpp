#include "gateway/interpreter_registry.h"

#include "base/run_time_error.h"

namespace vessa {

void InterpreterRegistry::add(const QString& progId, Factory factory) {
    factories_.insert(progId.toLower(), std::move(factory));
}

void InterpreterRegistry::remove(const QString& progId) {
    factories_.remove(progId.toLower());
}

bool InterpreterRegistry::contains(const QString& progId) const {
    return factories_.contains(progId.toLower());
}

std::unique_ptr<Interpreter> InterpreterRegistry::create(const QString& progId) const {
    auto it = factories_.constFind(progId.toLower());
    if (it == factories_.constEnd())
        throw RunTimeError(
            429, QStringLiteral("No engine is registered under the name %1.").arg(progId), progId);
    try {
        auto object = (*it)();
        if (!object)
            throw RunTimeError(429, QStringLiteral("The engine %1 could not be made.").arg(progId),
                               progId);
        return object;
    } catch (const RunTimeError&) {
        throw;
    } catch (const std::exception& e) {
        throw RunTimeError(429, QString::fromUtf8(e.what()), progId);
    }
}

} // namespace vessa
