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

char16_t folded(char16_t c) {
    if (c < 0x80)
        return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
    return QChar::toCaseFolded(c);
}

} // namespace

qsizetype indexIgnoringCase(QStringView text, QStringView target, qsizetype from) {
    if (target.isEmpty())
        return -1;
    const char16_t first = folded(target[0].unicode());
    const qsizetype last = text.size() - target.size();
    for (qsizetype at = std::max<qsizetype>(from, 0); at <= last; ++at) {
        if (folded(text[at].unicode()) != first)
            continue;
        qsizetype matched = 1;
        while (matched < target.size() &&
               folded(text[at + matched].unicode()) == folded(target[matched].unicode()))
            ++matched;
        if (matched == target.size())
            return at;
    }
    return -1;
}

qsizetype findText(QStringView text, QStringView target, qsizetype from,
                   const FindOptions& options) {
    if (target.isEmpty())
        return -1;
    const auto next = [&](qsizetype start) {
        return options.MatchCase ? text.indexOf(target, start, Qt::CaseSensitive)
                                 : indexIgnoringCase(text, target, start);
    };
    for (qsizetype at = next(std::max<qsizetype>(from, 0)); at >= 0; at = next(at + 1))
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
