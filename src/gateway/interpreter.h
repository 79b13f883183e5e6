#pragma once

#include <QString>
#include <QVariant>

namespace vessa {

// The gateway to the engine: one late-bound object whose methods are called by
// name with variant arguments. Variants crossing it are text, integers, reals,
// booleans, null and (nested) lists. A call that raises inside the engine throws
// RunTimeError with number AutomationError; it is an error of the caller.
class Interpreter {
public:
    virtual ~Interpreter() = default;
    virtual QVariant call(const QString& method, const QVariantList& args = {}) = 0;
};

// Calls that can fail answer null or "" on success and the failure text otherwise.
inline bool isSuccessResult(const QVariant& result) {
    if (result.isNull() || !result.isValid())
        return true;
    return result.typeId() == QMetaType::QString && result.toString().isEmpty();
}

} // namespace vessa
