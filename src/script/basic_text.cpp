#include "script/basic_text.h"

#include "base/run_time_error.h"

#include <algorithm>

namespace vessa::text {

namespace {

// Case is ignored as Unicode folds it. Text in ASCII, which nearly all of a script
// is, is compared by ASCII's own folding, which gives the same answers many times
// faster; a character beyond ASCII takes the long way.
char16_t asciiFolded(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
}

bool sameLetter(QChar a, QChar b) {
    if (a.unicode() < 0x80 && b.unicode() < 0x80)
        return asciiFolded(a.unicode()) == asciiFolded(b.unicode());
    return a.toCaseFolded() == b.toCaseFolded();
}

// Position of the first find at or after from, case ignored; -1 when there is none.
qsizetype findNoCase(QStringView text, QStringView find, qsizetype from) {
    if (find.isEmpty() || from < 0 || from > text.size() || !QtPrivate::isAscii(find) ||
        !QtPrivate::isAscii(text.sliced(from)))
        return text.indexOf(find, from, Qt::CaseInsensitive);
    // Where the first letter stands in either case, found by the quick search for a
    // character; then the rest compared.
    const char16_t folded = asciiFolded(find.front().unicode());
    const QChar lower(folded);
    const QChar upper(
        folded >= u'a' && folded <= u'z' ? static_cast<char16_t>(folded - (u'a' - u'A')) : folded);
    qsizetype low = text.indexOf(lower, from);
    qsizetype high = upper == lower ? -1 : text.indexOf(upper, from);
    for (;;) {
        const qsizetype candidate = low < 0 ? high : (high < 0 ? low : std::min(low, high));
        if (candidate < 0 || candidate + find.size() > text.size())
            return -1;
        qsizetype matched = 1;
        while (matched < find.size() && asciiFolded(text[candidate + matched].unicode()) ==
                                            asciiFolded(find[matched].unicode()))
            ++matched;
        if (matched == find.size())
            return candidate;
        // Only the letter that stood there is looked for again.
        if (candidate == low)
            low = text.indexOf(lower, candidate + 1);
        else
            high = text.indexOf(upper, candidate + 1);
    }
}

} // namespace

int InStr(int start, QStringView text, QStringView find) {
    if (start < 1)
        throw RunTimeError::Argument("InStr");
    if (start > text.size())
        return 0;
    return static_cast<int>(findNoCase(text, find, start - 1)) + 1;
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
    // "*word*", as most patterns here are, is a search.
    if (pattern.size() >= 2 && pattern.front() == u'*' && pattern.back() == u'*') {
        const QStringView word = pattern.sliced(1, pattern.size() - 2);
        if (!word.contains(u'*') && !word.contains(u'?'))
            return findNoCase(text, word, 0) >= 0;
    }
    // Greedy match that backs up to the last "*" on a mismatch.
    qsizetype t = 0, p = 0, starText = -1, starPattern = -1;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            starPattern = p++;
            starText = t;
        } else if (p < pattern.size() && (pattern[p] == u'?' || sameLetter(pattern[p], text[t]))) {
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
QString replaceWhere(const QString& text, QStringView find, QStringView with, Whole whole) {
    if (find.isEmpty())
        return text;
    QString result;
    qsizetype done = 0;
    for (qsizetype at = findNoCase(text, find, 0); at >= 0;) {
        if (!whole(at)) {
            at = findNoCase(text, find, at + 1);
            continue;
        }
        if (result.isNull())
            result.reserve(text.size() - find.size() + with.size());
        result.append(QStringView(text).mid(done, at - done)).append(with);
        done = at + find.size();
        at = findNoCase(text, find, done);
    }
    return done == 0 ? text : result.append(QStringView(text).mid(done));
}

} // namespace

QString Replace(const QString& text, QStringView find, QStringView with) {
    return replaceWhere(text, find, with, [](qsizetype) { return true; });
}

QString ReplaceName(const QString& text, QStringView find, QStringView with) {
    const bool nameAtStart = !find.isEmpty() && IsNameCharacter(find.front());
    const bool nameAtEnd = !find.isEmpty() && IsNameCharacter(find.back());
    return replaceWhere(text, find, with, [&](qsizetype at) {
        const qsizetype end = at + find.size();
        return !(nameAtStart && at > 0 && IsNameCharacter(text[at - 1])) &&
               !(nameAtEnd && end < text.size() && IsNameCharacter(text[end]));
    });
}

bool Same(QStringView a, QStringView b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString Before(const QString& text, QStringView separator) {
    const qsizetype at = findNoCase(text, separator, 0);
    return at < 0 ? text : text.left(at);
}

} // namespace vessa::text
