#pragma once

#include <QString>

#include <ostream>

// Qt's strings as test failures show them: their text, not their bytes.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
