#pragma once

#include <QVariant>
#include <pybind11/pytypes.h>

namespace vessa {

// Variants and Python values, both ways: null and None, booleans, whole numbers,
// reals, text and (nested) lists. Python tuples arrive as lists; a whole number
// too big for 64 bits arrives as a real; any other Python value arrives as its
// text. Both functions need the interpreter lock.
pybind11::object toPython(const QVariant& value);
QVariant fromPython(pybind11::handle value);

} // namespace vessa
