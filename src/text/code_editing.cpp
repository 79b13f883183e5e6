#include "text/code_editing.h"

#include "text/python_tokens.h"

#include <QLocale>

namespace vessa {

QString indentationAfterEnter(QStringView lineBeforeCaret) {
    qsizetype blanks = 0;
    while (blanks < lineBeforeCaret.size() &&
           (lineBeforeCaret[blanks] == u' ' || lineBeforeCaret[blanks] == u'\t'))
        ++blanks;
    QString indentation = lineBeforeCaret.left(blanks).toString();
    int after = OrdinaryLine;
    const std::vector<PythonToken> tokens = pythonTokens(lineBeforeCaret, OrdinaryLine, after);
    qsizetype codeEnd = lineBeforeCaret.size();
    if (!tokens.empty() && tokens.back().kind == PythonTokenKind::Comment)
        codeEnd = tokens.back().start;
    if (after == OrdinaryLine && lineBeforeCaret.left(codeEnd).trimmed().endsWith(u':'))
        indentation += QString(kIndentWidth, u' ');
    return indentation;
}

int unindentWidth(QStringView line) {
    if (line.startsWith(u'\t'))
        return 1;
    int blanks = 0;
    while (blanks < kIndentWidth && blanks < line.size() && line[blanks] == u' ')
        ++blanks;
    return blanks;
}

QString blanksToNextStep(int column) {
    return QString(kIndentWidth - column % kIndentWidth, u' ');
}

PasteVerdict judgePaste(QStringView pasted, qsizetype boxLength, qsizetype selected) {
    // Bytes that were no text come out of the clipboard as NULs, other control
    // characters, or the replacement character for what was not UTF-8.
    for (QChar c : pasted) {
        const char16_t u = c.unicode();
        if (u == 0xFFFD || (u < 0x20 && u != u'\t' && u != u'\n' && u != u'\r' && u != u'\f'))
            return PasteVerdict::NotText;
    }
    if (boxLength - selected + pasted.size() > kCodeBoxMaxCharacters)
        return PasteVerdict::TooLong;
    return PasteVerdict::Take;
}

QString pasteRefusal(PasteVerdict verdict, qsizetype pastedLength) {
    switch (verdict) {
    case PasteVerdict::NotText:
        return QStringLiteral("What you tried to paste is not plain text (it holds characters "
                              "that can't be part of Python code), so nothing was pasted.");
    case PasteVerdict::TooLong: {
        const QLocale inThousands(QLocale::English, QLocale::UnitedStates);
        return QStringLiteral("What you tried to paste is %1 characters long: with it the code "
                              "box would hold more than %2 characters, so nothing was pasted.")
            .arg(inThousands.toString(qlonglong(pastedLength)),
                 inThousands.toString(qlonglong(kCodeBoxMaxCharacters)));
    }
    case PasteVerdict::Take:
        break;
    }
    return {};
}

} // namespace vessa
