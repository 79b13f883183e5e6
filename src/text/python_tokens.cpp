#include "text/python_tokens.h"

#include <QSet>
#include <QString>

namespace vessa {

namespace {

bool isKeyword(QStringView word) {
    static const QSet<QString> keywords = {
        "False", "None",     "True",  "and",    "as",   "assert", "async",  "await",    "break",
        "class", "continue", "def",   "del",    "elif", "else",   "except", "finally",  "for",
        "from",  "global",   "if",    "import", "in",   "is",     "lambda", "nonlocal", "not",
        "or",    "pass",     "raise", "return", "try",  "while",  "with",   "yield"};
    return keywords.contains(word.toString());
}

bool startsName(QChar c) {
    return c.isLetter() || c == u'_';
}

bool inName(QChar c) {
    return c.isLetterOrNumber() || c == u'_';
}

// The letters that may stand before a string's quote: r, b, u, f and pairs of them.
bool isStringPrefix(QStringView word) {
    if (word.size() > 2)
        return false;
    for (QChar c : word)
        if (!QStringView(u"rRbBuUfF").contains(c))
            return false;
    return true;
}

// The end (one past the closing quote) of a string whose quotes begin at `at`, or the
// line's end when it does not close on this line; `closed` says which.
qsizetype stringEnd(QStringView line, qsizetype at, QStringView quotes, bool& closed) {
    qsizetype i = at + quotes.size();
    while (i < line.size()) {
        if (line[i] == u'\\') {
            i += 2;
            continue;
        }
        if (line.mid(i).startsWith(quotes)) {
            closed = true;
            return i + quotes.size();
        }
        ++i;
    }
    closed = false;
    return line.size();
}

qsizetype numberEnd(QStringView line, qsizetype start) {
    const QStringView digits = line.mid(start);
    const bool hex = digits.startsWith(u"0x") || digits.startsWith(u"0X");
    qsizetype i = start + 1;
    while (i < line.size()) {
        const QChar c = line[i];
        if (inName(c) || c == u'.') {
            ++i;
        } else if ((c == u'+' || c == u'-') && (line[i - 1] == u'e' || line[i - 1] == u'E') &&
                   !hex) {
            ++i;
        } else {
            break;
        }
    }
    return i;
}

} // namespace

std::vector<PythonToken> pythonTokens(QStringView line, int stateBefore, int& stateAfter) {
    std::vector<PythonToken> tokens;
    stateAfter = OrdinaryLine;
    qsizetype i = 0;
    if (stateBefore == InTripleSingleQuotes || stateBefore == InTripleDoubleQuotes) {
        // The string goes on from the line before: it began before this line's start.
        const QStringView quotes = stateBefore == InTripleSingleQuotes ? u"'''" : u"\"\"\"";
        bool closed = false;
        const qsizetype end = stringEnd(line, -quotes.size(), quotes, closed);
        tokens.push_back({0, end, PythonTokenKind::String});
        if (!closed) {
            stateAfter = stateBefore;
            return tokens;
        }
        i = end;
    }
    while (i < line.size()) {
        const QChar c = line[i];
        if (c == u'#') {
            tokens.push_back({i, line.size() - i, PythonTokenKind::Comment});
            break;
        }
        if (c == u'\'' || c == u'"') {
            const QStringView quotes =
                line.mid(i).startsWith(QString(3, c)) ? line.mid(i, 3) : line.mid(i, 1);
            bool closed = false;
            const qsizetype end = stringEnd(line, i, quotes, closed);
            tokens.push_back({i, end - i, PythonTokenKind::String});
            if (!closed && quotes.size() == 3)
                stateAfter = c == u'\'' ? InTripleSingleQuotes : InTripleDoubleQuotes;
            i = end;
            continue;
        }
        if (c.isDigit() || (c == u'.' && i + 1 < line.size() && line[i + 1].isDigit())) {
            const qsizetype end = numberEnd(line, i);
            tokens.push_back({i, end - i, PythonTokenKind::Number});
            i = end;
            continue;
        }
        if (startsName(c)) {
            qsizetype end = i + 1;
            while (end < line.size() && inName(line[end]))
                ++end;
            const QStringView word = line.mid(i, end - i);
            if (end < line.size() && (line[end] == u'\'' || line[end] == u'"') &&
                isStringPrefix(word)) {
                // The prefix belongs to the string after it.
                int after = OrdinaryLine;
                std::vector<PythonToken> rest = pythonTokens(line.mid(end), OrdinaryLine, after);
                PythonToken string = rest.front();
                tokens.push_back({i, end - i + string.length, PythonTokenKind::String});
                for (std::size_t k = 1; k < rest.size(); ++k)
                    tokens.push_back({rest[k].start + end, rest[k].length, rest[k].kind});
                stateAfter = after;
                return tokens;
            }
            tokens.push_back(
                {i, end - i, isKeyword(word) ? PythonTokenKind::Keyword : PythonTokenKind::Name});
            i = end;
            continue;
        }
        ++i;
    }
    return tokens;
}

} // namespace vessa
