#pragma once

#include <QString>
#include <stdexcept>

namespace vessa {

// A failure of a routine, as it climbs from routine to routine. Handlers add a
// report block to the application's error chain and raise again with the chain
// as description, so the outermost handler shows the whole story.
class RunTimeError : public std::runtime_error {
public:
    // Numbers of the failures the program itself raises.
    enum Number : int {
        InvalidArgument = 5,
        SubscriptOutOfRange = 9,
        TypeMismatch = 13,
        InternalError = 51,
        ObjectRequired = 424,
        AutomationError = 440,
        ElementNotFound = 35601,
        KeyNotUnique = 35602,
    };

    RunTimeError(int number, QString description, QString source = QStringLiteral("Vessa47"))
        : std::runtime_error(description.toStdString()), number_(number),
          description_(std::move(description)), source_(std::move(source)) {}

    // The common failures of a caller asking for what is not there.
    static RunTimeError Bounds(const QString& source) {
        return {SubscriptOutOfRange, QStringLiteral("Subscript out of range"), source};
    }
    static RunTimeError Argument(const QString& source) {
        return {InvalidArgument, QStringLiteral("Invalid procedure call or argument"), source};
    }
    static RunTimeError Conversion(const QString& source) {
        return {TypeMismatch, QStringLiteral("Type mismatch"), source};
    }

    int number() const { return number_; }
    const QString& description() const { return description_; }
    const QString& source() const { return source_; }

private:
    int number_;
    QString description_;
    QString source_;
};

} // namespace vessa
