#pragma once

#include "base/run_time_error.h"

#include <QDateTime>
#include <QString>
#include <QVariant>

namespace vessa {

// How a handler lays out what comes after the <NUMBER> line of its report block.
enum class ReportForm {
    A, // empty line, old chain, "ErrorLine n"
    B, // "<ErrorLine> n", empty line, old chain
    C, // empty line, old chain
};

// The block a handler puts in front of the error chain. Lines end in a line feed
// alone; the innermost report ends up at the bottom.
QString reportBlock(ReportForm form, const QString& firstLine, const RunTimeError& error,
                    int errorLine, const QString& oldChain);

// Every line feed becomes CR LF. Kept as the program always did it: when the text
// has at least one line feed, whatever follows the last one is dropped, and a CR LF
// already present gets a doubled carriage return.
QString ConvertLineEnds(const QString& value);

// What ErrorForm shows.
struct ErrorFormContent {
    QString typeCaption;
    QString labelText;
    int heightTwips = 5070;
    int widthTwips = 8535;

    bool operator==(const ErrorFormContent&) const = default;
};

inline const QString kSupportAddress = QStringLiteral("support@vessa47.org");

// An internal failure: a call that should not fail did.
ErrorFormContent internalErrorContent(const QString& versionText, const QString& message,
                                      const QString& result);

// A failure in the user's own code, from the engine's message and its line or
// detail item. `errorLineOffset` maps the engine's line back to the code box.
// Throws RunTimeError(TypeMismatch) when a text detail is not a line number.
ErrorFormContent userErrorContent(const QVariant& message, const QVariant& detail,
                                  int errorLineOffset);

// The text the copy button of ErrorForm puts on the clipboard.
QString clipboardReport(const QString& versionText, const QDateTime& now,
                        const QString& typeCaption, const QString& labelText);

} // namespace vessa
