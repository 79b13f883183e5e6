#include "text/text_search.h"

namespace vessa {

namespace {

bool isWordCharacter(QChar c) {
    return c.isLetterOrNumber() || c == u'_';
}

bool standsAlone(QStringView text, qsizetype at, qsizetype length) {
    const qsizetype end = at + length;
    return (at == 0 || !isWordCharacter(text[at - 1])) &&
           (end == text.size() || !isWordCharacter(text[end]));
}

} // namespace

qsizetype findText(QStringView text, QStringView target, qsizetype from,
                   const FindOptions& options) {
    if (target.isEmpty())
        return -1;
    const Qt::CaseSensitivity sensitivity =
        options.MatchCase ? Qt::CaseSensitive : Qt::CaseInsensitive;
    for (qsizetype at = text.indexOf(target, std::max<qsizetype>(from, 0), sensitivity); at >= 0;
         at = text.indexOf(target, at + 1, sensitivity))
        if (!options.WholeWord || standsAlone(text, at, target.size()))
            return at;
    return -1;
}

bool isMatch(QStringView text, QStringView target, const FindOptions& options) {
    return text.size() == target.size() && findText(text, target, 0, options) == 0;
}

QString replaceText(const QString& text, QStringView target, const QString& with,
                    const FindOptions& options, int& replaced) {
    replaced = 0;
    qsizetype at = findText(text, target, 0, options);
    if (at < 0)
        return text;
    QString result;
    qsizetype copied = 0;
    for (; at >= 0; at = findText(text, target, at + target.size(), options)) {
        result += QStringView(text).mid(copied, at - copied);
        result += with;
        copied = at + target.size();
        ++replaced;
    }
    result += QStringView(text).mid(copied);
    return result;
}

} // namespace vessa
