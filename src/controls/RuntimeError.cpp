#include "controls/RuntimeError.h"

namespace vessa {

RuntimeError::RuntimeError(int number, const QString& description, const QString& source)
    : std::runtime_error((source + ": " + description).toStdString()), number_(number),
      description_(description), source_(source) {
}

RuntimeError RuntimeError::Bounds(const QString& source) {
    return RuntimeError(SubscriptOutOfRange, "Subscript out of range", source);
}

RuntimeError RuntimeError::Argument(const QString& source) {
    return RuntimeError(InvalidArgument, "Invalid procedure call or argument", source);
}

RuntimeError RuntimeError::Conversion(const QString& source) {
    return RuntimeError(TypeMismatch, "Type mismatch", source);
}

} // namespace vessa
