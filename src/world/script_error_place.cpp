#include "world/script_error_place.h"

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

} // namespace vessa
