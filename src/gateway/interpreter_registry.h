#pragma once

#include "gateway/interpreter.h"

#include <QHash>
#include <QString>
#include <functional>
#include <memory>

namespace vessa {

// Maps a ProgID to a way of making the interpreter object behind it. The program
// registers the engine under its two ProgIDs; tests remove or replace entries to
// play through the fallback and failures of start-up.
class InterpreterRegistry {
public:
    using Factory = std::function<std::unique_ptr<Interpreter>()>;

    void add(const QString& progId, Factory factory);
    void remove(const QString& progId);
    bool contains(const QString& progId) const;

    // Throws RunTimeError when the ProgID is unknown or its factory fails.
    std::unique_ptr<Interpreter> create(const QString& progId) const;

private:
    QHash<QString, Factory> factories_;
};

inline const QString kEngineProgId = QStringLiteral("Vessa47.Interpreter");
inline const QString kFallbackEngineProgId = QStringLiteral("Vessia.Interpreter");

} // namespace vessa
