#include "gateway/variant_conversion.h"

#include "base/run_time_error.h"

#include <QStringList>
#include <limits>
#include <pybind11/pybind11.h>

namespace py = pybind11;

namespace vessa {

namespace {

py::str toPythonText(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    return py::str(utf8.constData(), static_cast<size_t>(utf8.size()));
}

QString fromPythonText(py::handle text) {
    Py_ssize_t size = 0;
    const char* data = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
    if (!data)
        throw py::error_already_set();
    return QString::fromUtf8(data, static_cast<qsizetype>(size));
}

QVariant fromPythonInteger(py::handle value) {
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(value.ptr(), &overflow);
    if (overflow != 0)
        return PyLong_AsDouble(value.ptr());
    if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
        return static_cast<int>(number);
    return number;
}

} // namespace

py::object toPython(const QVariant& value) {
    if (!value.isValid() || value.isNull())
        return py::none();
    switch (value.typeId()) {
    case QMetaType::Bool:
        return py::bool_(value.toBool());
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Char:
    case QMetaType::SChar:
        return py::int_(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UChar:
        return py::int_(value.toULongLong());
    case QMetaType::Double:
    case QMetaType::Float:
        return py::float_(value.toDouble());
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QChar:
        return toPythonText(value.toString());
    case QMetaType::QStringList: {
        py::list list;
        for (const QString& item : value.toStringList())
            list.append(toPythonText(item));
        return list;
    }
    case QMetaType::QVariantList: {
        py::list list;
        for (const QVariant& item : value.toList())
            list.append(toPython(item));
        return list;
    }
    default:
        throw RunTimeError(RunTimeError::TypeMismatch,
                           QStringLiteral("A value of type %1 can't be passed to the engine.")
                               .arg(QString::fromLatin1(value.typeName())));
    }
}

QVariant fromPython(py::handle value) {
    if (value.is_none())
        return {};
    if (PyBool_Check(value.ptr()))
        return value.ptr() == Py_True;
    if (PyLong_Check(value.ptr()))
        return fromPythonInteger(value);
    if (PyFloat_Check(value.ptr()))
        return PyFloat_AsDouble(value.ptr());
    if (PyUnicode_Check(value.ptr()))
        return fromPythonText(value);
    if (PyBytes_Check(value.ptr()))
        return QString::fromUtf8(PyBytes_AsString(value.ptr()),
                                 static_cast<qsizetype>(PyBytes_Size(value.ptr())));
    if (PyList_Check(value.ptr()) || PyTuple_Check(value.ptr())) {
        QVariantList list;
        for (py::handle item : value)
            list.append(fromPython(item));
        return list;
    }
    return fromPythonText(py::str(value));
}

} // namespace vessa
