// The pieces of a line of Python that the code box colours, on the lines that trip a
// colourer up: strings in three quotes over several lines, quotes after backslashes,
// quotes inside comments and comments inside strings.
#include "text/python_tokens.h"

#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

using namespace vessa;

namespace {

using Kind = PythonTokenKind;

// "kind:text" of each piece, for readable failures.
QStringList pieces(const QString& line, int before = OrdinaryLine, int* after = nullptr) {
    int state = OrdinaryLine;
    QStringList out;
    for (const PythonToken& token : pythonTokens(line, before, state)) {
        static const char* names[] = {"keyword", "string", "comment", "number", "name"};
        out << QString::fromLatin1(names[int(token.kind)]) + u':' +
                   line.mid(token.start, token.length);
    }
    if (after)
        *after = state;
    return out;
}

} // namespace

TEST(PythonTokens, KeywordsNamesNumbersAndACommentAtTheEnd) {
    EXPECT_EQ(pieces(QStringLiteral("if x1 >= 0x1F and y == 1.5e-3: # hop 'not a string'")),
              QStringList({"keyword:if", "name:x1", "number:0x1F", "keyword:and", "name:y",
                           "number:1.5e-3", "comment:# hop 'not a string'"}));
    EXPECT_EQ(pieces(QStringLiteral("Bunny.Move(Up, .5)")),
              QStringList({"name:Bunny", "name:Move", "name:Up", "number:.5"}));
}

TEST(PythonTokens, EscapedQuotesDoNotEndAStringAndAHashInAStringIsNoComment) {
    EXPECT_EQ(pieces(QStringLiteral(R"(s = 'it\'s # here' + "say \"hi\"\\" # end)")),
              QStringList({"name:s", R"(string:'it\'s # here')", R"(string:"say \"hi\"\\")",
                           "comment:# end"}));
    // Prefixes belong to their strings; a name that only looks like one does not.
    EXPECT_EQ(pieces(QStringLiteral(R"(r'\d' + f"{x}" + rb'' + br)")),
              QStringList({R"(string:r'\d')", R"(string:f"{x}")", "string:rb''", "name:br"}));
}

TEST(PythonTokens, AStringInThreeQuotesGoesOnOverLinesUntilItsOwnQuotesClose) {
    int state = OrdinaryLine;
    EXPECT_EQ(pieces(QStringLiteral("text = '''first # no comment"), OrdinaryLine, &state),
              QStringList({"name:text", "string:'''first # no comment"}));
    ASSERT_EQ(state, InTripleSingleQuotes);
    // Other quotes, and its own after a backslash, do not close it.
    EXPECT_EQ(pieces(QStringLiteral(R"(middle """ ' \''' still)"), state, &state),
              QStringList({R"(string:middle """ ' \''' still)"}));
    ASSERT_EQ(state, InTripleSingleQuotes);
    EXPECT_EQ(pieces(QStringLiteral("last''' + 1 # done"), state, &state),
              QStringList({"string:last'''", "number:1", "comment:# done"}));
    EXPECT_EQ(state, OrdinaryLine);
    // Double quotes are their own kind; closed on the same line, nothing goes on.
    pieces(QStringLiteral(R"(doc = """one line""" ; more = """)"), OrdinaryLine, &state);
    EXPECT_EQ(state, InTripleDoubleQuotes);
}

TEST(PythonTokens, AnUnclosedStringInOneQuoteEndsWithItsLine) {
    int state = InTripleDoubleQuotes;
    EXPECT_EQ(pieces(QStringLiteral("x = 'open"), OrdinaryLine, &state),
              QStringList({"name:x", "string:'open"}));
    EXPECT_EQ(state, OrdinaryLine);
}
