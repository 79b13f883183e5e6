#include "script/basic_text.h"

#include "base/run_time_error.h"

namespace vessa::text {

int InStr(int start, QStringView text, QStringView find) {
    if (start < 1)
        throw RunTimeError::Argument("InStr");
    if (start > text.size())
        return 0;
    return static_cast<int>(text.indexOf(find, start - 1, Qt::CaseInsensitive)) + 1;
}

QString Mid(const QString& text, int start, int length) {
    if (start < 1 || length < 0)
        throw RunTimeError::Argument("Mid");
    return text.mid(start - 1, length);
}

QString Mid(const QString& text, int start) {
    if (start < 1)
        throw RunTimeError::Argument("Mid");
    return text.mid(start - 1);
}

QString Left(const QString& text, int count) {
    if (count < 0)
        throw RunTimeError::Argument("Left");
    return text.left(count);
}

bool Like(QStringView text, QStringView pattern) {
    // Greedy match that backs up to the last "*" on a mismatch.
    qsizetype t = 0, p = 0, starText = -1, starPattern = -1;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            starPattern = p++;
            starText = t;
        } else if (p < pattern.size() &&
                   (pattern[p] == u'?' || pattern[p].toCaseFolded() == text[t].toCaseFolded())) {
            ++p;
            ++t;
        } else if (starPattern >= 0) {
            p = starPattern + 1;
            t = ++starText;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

QString Replace(const QString& text, QStringView find, QStringView with) {
    qsizetype at = find.isEmpty() ? -1 : text.indexOf(find, 0, Qt::CaseInsensitive);
    if (at < 0)
        return text;
    QString result;
    result.reserve(text.size() + with.size());
    qsizetype done = 0;
    for (; at >= 0; at = text.indexOf(find, done, Qt::CaseInsensitive)) {
        result.append(QStringView(text).mid(done, at - done)).append(with);
        done = at + find.size();
    }
    return result.append(QStringView(text).mid(done));
}

bool Same(QStringView a, QStringView b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString Before(const QString& text, QStringView separator) {
    const qsizetype at = text.indexOf(separator, 0, Qt::CaseInsensitive);
    return at < 0 ? text : text.left(at);
}

} // namespace vessa::text
