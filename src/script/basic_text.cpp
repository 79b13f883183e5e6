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

namespace {

// Python's identifier characters: letters, digits, the underscore and their Unicode kin.
bool IsNameCharacter(QChar c) {
    return c.isLetterOrNumber() || c.isMark() || c.category() == QChar::Punctuation_Connector;
}

// Every occurrence of find that whole(at) accepts, replaced by with; the search goes on
// behind each replacement and one character on after a refusal.
template <typename Whole>
QString ReplaceWhere(const QString& text, QStringView find, QStringView with, Whole whole) {
    if (find.isEmpty())
        return text;
    QString result;
    qsizetype done = 0;
    for (qsizetype at = text.indexOf(find, 0, Qt::CaseInsensitive); at >= 0;) {
        if (!whole(at)) {
            at = text.indexOf(find, at + 1, Qt::CaseInsensitive);
            continue;
        }
        result.append(QStringView(text).mid(done, at - done)).append(with);
        done = at + find.size();
        at = text.indexOf(find, done, Qt::CaseInsensitive);
    }
    return done == 0 ? text : result.append(QStringView(text).mid(done));
}

} // namespace

QString Replace(const QString& text, QStringView find, QStringView with) {
    return ReplaceWhere(text, find, with, [](qsizetype) { return true; });
}

QString ReplaceName(const QString& text, QStringView find, QStringView with) {
    const bool nameAtStart = !find.isEmpty() && IsNameCharacter(find.front());
    const bool nameAtEnd = !find.isEmpty() && IsNameCharacter(find.back());
    return ReplaceWhere(text, find, with, [&](qsizetype at) {
        const qsizetype end = at + find.size();
        return !(nameAtStart && at > 0 && IsNameCharacter(text[at - 1])) &&
               !(nameAtEnd && end < text.size() && IsNameCharacter(text[end]));
    });
}

bool Same(QStringView a, QStringView b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString Before(const QString& text, QStringView separator) {
    const qsizetype at = text.indexOf(separator, 0, Qt::CaseInsensitive);
    return at < 0 ? text : text.left(at);
}

} // namespace vessa::text
