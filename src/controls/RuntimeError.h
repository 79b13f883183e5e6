#pragma once

#include <QString>

#include <stdexcept>

namespace vessa {

// A routine's failure as the program reports it: a number, a description and the
// routine where it happened. Raised by the controls and the script when a caller asks
// for something that is not there; the event handler that started the work catches it.
class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int number, const QString& description, const QString& source);

    int Number() const { return number_; }
    const QString& Description() const { return description_; }
    const QString& Source() const { return source_; }

    // The errors of the runtime that the controls and the script raise.
    static constexpr int InvalidArgument = 5;
    static constexpr int SubscriptOutOfRange = 9;
    static constexpr int TypeMismatch = 13;
    static constexpr int KeyNotUnique = 35602;
    static constexpr int ElementNotFound = 35601;

    static RuntimeError Bounds(const QString& source);
    static RuntimeError Argument(const QString& source);
    static RuntimeError Conversion(const QString& source);

private:
    int number_;
    QString description_;
    QString source_;
};

} // namespace vessa
