#pragma once

#include <QStringView>
#include <vector>

namespace vessa {

// What a piece of a line of Python is, for colouring it.
enum class PythonTokenKind { Keyword, String, Comment, Number, Name };

struct PythonToken {
    qsizetype start = 0;
    qsizetype length = 0;
    PythonTokenKind kind = PythonTokenKind::Name;

    bool operator==(const PythonToken&) const = default;
};

// Where a line ends, for the line after it: in ordinary code, or inside a string in
// three quotes that goes on.
enum PythonLineState { OrdinaryLine = 0, InTripleSingleQuotes = 1, InTripleDoubleQuotes = 2 };

// The keywords, strings, comments, numbers and names of one line of Python, left to
// right; stateBefore says whether the line begins inside a string in three quotes.
// Operators and blanks are left out. A quote after a backslash does not end a string.
std::vector<PythonToken> pythonTokens(QStringView line, int stateBefore, int& stateAfter);

} // namespace vessa
