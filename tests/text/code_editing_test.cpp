// How the code box indents and what it lets a paste bring in.
#include "text/code_editing.h"

#include <gtest/gtest.h>

using namespace vessa;

TEST(CodeEditing, EnterKeepsTheIndentationAndAddsAStepAfterALineThatOpensABlock) {
    EXPECT_EQ(indentationAfterEnter(u"x = 1"), "");
    EXPECT_EQ(indentationAfterEnter(u"    x = 1"), "    ");
    EXPECT_EQ(indentationAfterEnter(u"\tx = 1"), "\t");
    EXPECT_EQ(indentationAfterEnter(u"    if x:"), "        ");
    EXPECT_EQ(indentationAfterEnter(u"def hop():   # the rabbit hops"), "    ");
    // A colon in a string or a comment opens nothing.
    EXPECT_EQ(indentationAfterEnter(u"print('a:')"), "");
    EXPECT_EQ(indentationAfterEnter(u"x = 1  # note:"), "");
    EXPECT_EQ(indentationAfterEnter(u"s = '''see:"), "");
}

TEST(CodeEditing, TabGoesToTheNextStepAndShiftTabTakesOneStepAway) {
    EXPECT_EQ(blanksToNextStep(0), "    ");
    EXPECT_EQ(blanksToNextStep(5), "   ");
    EXPECT_EQ(blanksToNextStep(8), "    ");
    EXPECT_EQ(unindentWidth(u"        x"), 4);
    EXPECT_EQ(unindentWidth(u"  x"), 2);
    EXPECT_EQ(unindentWidth(u"\t  x"), 1);
    EXPECT_EQ(unindentWidth(u"x    "), 0);
}

TEST(CodeEditing, APasteOfBytesThatAreNoTextOrOfTooMuchIsRefused) {
    EXPECT_EQ(judgePaste(u"print('hi')\r\n\tx = 1\f", 0, 0), PasteVerdict::Take);
    EXPECT_EQ(judgePaste(QString(QStringLiteral("ab") + QChar(0) + u'c'), 0, 0),
              PasteVerdict::NotText);
    // What was not UTF-8 comes out of the clipboard as the replacement character.
    EXPECT_EQ(judgePaste(QString::fromUtf8("caf\xc3\x28"), 0, 0), PasteVerdict::NotText);
    EXPECT_EQ(judgePaste(u"\x1b[31m", 0, 0), PasteVerdict::NotText);
    const QString megabyte(1 << 20, u'x');
    EXPECT_EQ(judgePaste(megabyte, 0, 0), PasteVerdict::TooLong);
    // The limit counts the box as it will be: what the paste replaces goes.
    const QString half(kCodeBoxMaxCharacters / 2, u'x');
    EXPECT_EQ(judgePaste(half, kCodeBoxMaxCharacters / 2, 0), PasteVerdict::Take);
    EXPECT_EQ(judgePaste(half, kCodeBoxMaxCharacters / 2 + 1, 0), PasteVerdict::TooLong);
    EXPECT_EQ(judgePaste(half, kCodeBoxMaxCharacters / 2 + 1, 1), PasteVerdict::Take);
    EXPECT_TRUE(pasteRefusal(PasteVerdict::TooLong, megabyte.size()).contains("1,048,576"));
    EXPECT_TRUE(pasteRefusal(PasteVerdict::Take, 0).isEmpty());
}
