#include "world/script_error_place.h"

#include "world/script_run.h"

#include <QRegularExpression>

namespace vessa {

namespace {

// A syntax error's detail: [message, [file, line, offset, source line]].
std::optional<ScriptErrorPlace> syntaxErrorPlace(const QVariantList& detail) {
    if (detail.size() != 2 || detail[1].typeId() != QMetaType::QVariantList)
        return std::nullopt;
    const QVariantList where = detail[1].toList();
    if (where.size() != 4 || where[1].toInt() < 1)
        return std::nullopt;
    return ScriptErrorPlace{where[0].toString(), where[1].toInt(), where[3].toString().trimmed()};
}

} // namespace

std::optional<ScriptErrorPlace> scriptErrorPlace(const QString& errorText, const QVariant& detail) {
    if (detail.typeId() == QMetaType::QVariantList)
        return syntaxErrorPlace(detail.toList());
    bool isNumber = false;
    const int line = detail.toString().toInt(&isNumber);
    if (!isNumber || line < 1)
        return std::nullopt;
    // Each frame of the user's code: its file and line, then the line's text indented by four.
    static const QRegularExpression frame(
        QString::fromLatin1(R"re(^  File "([^"]*)", line (\d+)[^\n]*\n(    (?! )[^\n]*)?)re"),
        QRegularExpression::MultilineOption);
    std::optional<ScriptErrorPlace> place;
    for (const QRegularExpressionMatch& match : frame.globalMatch(errorText))
        if (match.captured(2).toInt() == line)
            place = ScriptErrorPlace{match.captured(1), line, match.captured(3).trimmed()};
    return place;
}

std::optional<ErrorMark> errorMark(const ScriptErrorPlace& place, RanText ran, int handEditedLine,
                                   int errorLineOffset) {
    using Box = ErrorMark::Box;
    const int fromFirst = place.line - 1;
    if (place.sourceTag == kGeneratedSourceTag)
        return ran == RanText::World ? std::optional(ErrorMark{Box::ScriptText, fromFirst})
                                     : std::nullopt;
    if (place.sourceTag != kHandEditedSourceTag)
        return std::nullopt;
    switch (ran) {
    case RanText::World:
        // The code box's text runs from the box's first line.
        return ErrorMark{Box::CodeBox, fromFirst};
    case RanText::ScriptTextAsItStands:
        return ErrorMark{Box::ScriptText, handEditedLine + fromFirst};
    case RanText::CodeBoxLines:
        return ErrorMark{Box::CodeBox, errorLineOffset + fromFirst};
    case RanText::ScriptTextLines:
        return ErrorMark{Box::ScriptText, errorLineOffset + fromFirst};
    case RanText::Other:
        break;
    }
    return std::nullopt;
}

bool lineReads(const QString& text, int line, const QString& sourceLine) {
    static const QRegularExpression lineEnd(QStringLiteral("\r\n|\r|\n"));
    const QStringList lines = text.split(lineEnd);
    return line >= 0 && line < lines.size() && lines[line].trimmed() == sourceLine.trimmed();
}

} // namespace vessa
