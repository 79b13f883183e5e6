#include "gateway/error_report.h"

#include <QLocale>
#include <cmath>

namespace vessa {

namespace {

const QString kLf = QStringLiteral("\n");
const QString kCrLf = QStringLiteral("\r\n");

QString variantTypeWord(const QVariant& value) {
    if (!value.isValid() || value.isNull())
        return QStringLiteral("Null");
    switch (value.typeId()) {
    case QMetaType::Bool:
        return QStringLiteral("Boolean");
    case QMetaType::Double:
    case QMetaType::Float:
        return QStringLiteral("Double");
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return QStringLiteral("Long");
    default:
        return QString::fromLatin1(value.typeName());
    }
}

// The whole part of a line number as the engine sent it.
int integerPart(const QVariant& line) {
    bool ok = false;
    const double number = line.typeId() == QMetaType::QString
                              ? line.toString().trimmed().toDouble(&ok)
                              : line.toDouble(&ok);
    if (!ok)
        throw RunTimeError(
            RunTimeError::TypeMismatch,
            QStringLiteral("Type mismatch: \"%1\" is not a line number").arg(line.toString()));
    return static_cast<int>(std::floor(number));
}

bool isList(const QVariant& value) {
    return value.typeId() == QMetaType::QVariantList;
}

// A syntax error arrives as [message, [file, line, offset, source text]].
QString syntaxErrorSource(const QVariantList& detail) {
    if (detail.size() != 2 || !isList(detail[1]))
        return {};
    const QVariantList where = detail[1].toList();
    return where.size() == 4 ? where[3].toString() : QString();
}

} // namespace

QString reportBlock(ReportForm form, const QString& firstLine, const RunTimeError& error,
                    int errorLine, const QString& oldChain) {
    QString text = firstLine + kLf + QStringLiteral("<DESCRIPTION> ") + error.description() + kLf +
                   QStringLiteral("<SOURCE> ") + error.source() + kLf +
                   QStringLiteral("<NUMBER> ") + QString::number(error.number()) + kLf;
    switch (form) {
    case ReportForm::A:
        return text + kLf + oldChain + kLf + QStringLiteral("ErrorLine ") +
               QString::number(errorLine) + kLf;
    case ReportForm::B:
        return text + QStringLiteral("<ErrorLine> ") + QString::number(errorLine) + kLf + kLf +
               oldChain + kLf;
    case ReportForm::C:
        return text + kLf + oldChain;
    }
    return text;
}

QString ConvertLineEnds(const QString& value) {
    QString out;
    qsizetype position = 0;
    while (position < value.size()) {
        const qsizetype lf = value.indexOf(QLatin1Char('\n'), position);
        if (lf < 0)
            break;
        out += value.mid(position, lf - position) + kCrLf;
        position = lf + 1;
    }
    return position == 0 ? value : out;
}

ErrorFormContent internalErrorContent(const QString& versionText, const QString& message,
                                      const QString& result) {
    ErrorFormContent content;
    content.typeCaption =
        QStringLiteral("This is an internal Vessa error. Please copy this message to the "
                       "clipboard (with the button to the right), and then paste it into an "
                       "email to ") +
        kSupportAddress;
    content.labelText = QStringLiteral("Version: ") + versionText + kCrLf + message + kCrLf +
                        ConvertLineEnds(result);
    return content;
}

ErrorFormContent userErrorContent(const QVariant& message, const QVariant& detail,
                                  int errorLineOffset) {
    ErrorFormContent content;
    content.heightTwips = 1845;
    QString text = message.toString();
    if (text.isEmpty())
        text = QStringLiteral("Vessa does not understand what you typed.");
    // A list can't stand for a line, so it never gets the line suffix.
    if (isList(detail) || detail.toString() == QStringLiteral("-1"))
        content.typeCaption = text;
    else
        content.typeCaption = text + QStringLiteral(" on line ") +
                              QString::number(errorLineOffset + integerPart(detail));
    if (detail.typeId() == QMetaType::QString)
        content.labelText = ConvertLineEnds(detail.toString());
    else if (isList(detail))
        content.labelText = syntaxErrorSource(detail.toList());
    else
        content.labelText = variantTypeWord(detail);
    return content;
}

QString clipboardReport(const QString& versionText, const QDateTime& now,
                        const QString& typeCaption, const QString& labelText) {
    const QStringList lines = {
        QStringLiteral("This is a report of an Vessa47 error."),
        QStringLiteral("************ Start of Vessa47 error report *************"),
        QStringLiteral("Vessa47 Version: ") + versionText,
        QStringLiteral("Time: ") +
            QLocale::c().toString(now, QStringLiteral("MMM d yyyy hh:mm:ss")),
        QStringLiteral("Type: ") + typeCaption,
        QStringLiteral("Label:") + labelText,
        QStringLiteral("************ End of Vessa47 error report *************"),
        QString(),
    };
    return lines.join(kCrLf) + kCrLf;
}

} // namespace vessa
