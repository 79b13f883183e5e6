#pragma once

#include "base/run_time_error.h"
#include "gateway/interpreter.h"

#include <memory>

namespace vessa {

// The program's hold on the interpreter object. Releasing it is how the program
// ends: the main loop stops once it sees the link empty, and no call is made
// after that.
class EngineLink {
public:
    void attach(std::unique_ptr<Interpreter> interpreter) { interpreter_ = std::move(interpreter); }
    void release() { interpreter_.reset(); }
    bool isSet() const { return interpreter_ != nullptr; }

    QVariant call(const QString& method, const QVariantList& args = {}) {
        if (!interpreter_)
            throw RunTimeError(RunTimeError::ObjectRequired,
                               QStringLiteral("Object required: the engine has been closed"));
        return interpreter_->call(method, args);
    }

    QVariant ExecuteCode(const QString& code, const QString& sourceTag,
                         const QString& mode = QStringLiteral("exec")) {
        return call(QStringLiteral("ExecuteCode"), {code, sourceTag, mode});
    }

private:
    std::unique_ptr<Interpreter> interpreter_;
};

// Whether the engine takes name as the name of an object or a sound. Its answer is
// compared to 1 without regard to case or type.
inline bool acceptsName(EngineLink& engine, const QString& name) {
    const QString answer = engine.call(QStringLiteral("isvalidname"), {name}).toString();
    return answer == QStringLiteral("1") || answer.toLower() == QStringLiteral("true");
}

} // namespace vessa
