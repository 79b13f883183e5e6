#include "script/BasicText.h"

#include "controls/RuntimeError.h"

namespace vessa::text {

int InStr(int start, const QString& text, const QString& find) {
    if (start < 1)
        throw RuntimeError::Argument("InStr");
    if (start > text.size())
        return 0;
    return static_cast<int>(text.indexOf(find, start - 1, Qt::CaseInsensitive)) + 1;
}

int InStrRev(const QString& text, const QString& find) {
    return static_cast<int>(text.lastIndexOf(find, -1, Qt::CaseInsensitive)) + 1;
}

QString Mid(const QString& text, int start, int length) {
    if (start < 1 || length < 0)
        throw RuntimeError::Argument("Mid");
    return text.mid(start - 1, length);
}

QString Mid(const QString& text, int start) {
    if (start < 1)
        throw RuntimeError::Argument("Mid");
    return text.mid(start - 1);
}

QString Left(const QString& text, int count) {
    if (count < 0)
        throw RuntimeError::Argument("Left");
    return text.left(count);
}

bool Like(const QString& text, const QString& pattern) {
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

QString Replace(const QString& text, const QString& find, const QString& with) {
    if (find.isEmpty() || !text.contains(find, Qt::CaseInsensitive))
        return text;
    QString result = text;
    return result.replace(find, with, Qt::CaseInsensitive);
}

bool Same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString Before(const QString& text, const QString& separator) {
    const qsizetype at = text.indexOf(separator, 0, Qt::CaseInsensitive);
    return at < 0 ? text : text.left(at);
}

} // namespace vessa::text
