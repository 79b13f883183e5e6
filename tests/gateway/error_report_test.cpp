#include "gateway/error_report.h"
#include "gateway/output_limits.h"

#include <gtest/gtest.h>

using namespace vessa;

namespace {

const RunTimeError kInner(35601, QStringLiteral("Element not found"), QStringLiteral("TreeView"));

} // namespace

TEST(ConvertLineEnds, TurnsLineFeedsIntoCrLfAndDropsTheUnterminatedTail) {
    EXPECT_EQ(ConvertLineEnds(QStringLiteral("a\nb\n")), QStringLiteral("a\r\nb\r\n"));
    // The last line without a line feed is lost, as it always was.
    EXPECT_EQ(ConvertLineEnds(QStringLiteral("a\nb")), QStringLiteral("a\r\n"));
    EXPECT_EQ(ConvertLineEnds(QStringLiteral("no line feed")), QStringLiteral("no line feed"));
    EXPECT_EQ(ConvertLineEnds(QString()), QString());
    // CR LF gets its carriage return doubled.
    EXPECT_EQ(ConvertLineEnds(QStringLiteral("a\r\n")), QStringLiteral("a\r\r\n"));
}

TEST(ReportBlock, EachFormPlacesErrorLineAndOldChainItsOwnWay) {
    const QString head =
        QStringLiteral("First\n<DESCRIPTION> Element not found\n<SOURCE> TreeView\n"
                       "<NUMBER> 35601\n");
    EXPECT_EQ(
        reportBlock(ReportForm::A, QStringLiteral("First"), kInner, 42, QStringLiteral("old")),
        head + QStringLiteral("\nold\nErrorLine 42\n"));
    EXPECT_EQ(
        reportBlock(ReportForm::B, QStringLiteral("First"), kInner, 42, QStringLiteral("old")),
        head + QStringLiteral("<ErrorLine> 42\n\nold\n"));
    EXPECT_EQ(
        reportBlock(ReportForm::C, QStringLiteral("First"), kInner, 42, QStringLiteral("old")),
        head + QStringLiteral("\nold"));
}

TEST(ReportBlock, NestedFailureReadsOutermostFirstAndInnermostLast) {
    const QString inner = reportBlock(ReportForm::C, QStringLiteral("VB: HandleDifferences -Error"),
                                      kInner, 0, QString());
    const RunTimeError raised(kInner.number(), inner, kInner.source());
    const QString outer = reportBlock(
        ReportForm::B, QStringLiteral("VB:MainModule:Main() Error while running main loop"), raised,
        104, inner);
    EXPECT_TRUE(
        outer.startsWith(QStringLiteral("VB:MainModule:Main() Error while running main loop\n")));
    const qsizetype errorLineAt = outer.indexOf(QStringLiteral("<ErrorLine> 104"));
    EXPECT_GT(errorLineAt, outer.indexOf(QStringLiteral("<DESCRIPTION> VB: HandleDifferences")));
    EXPECT_GT(outer.lastIndexOf(QStringLiteral("Element not found")), errorLineAt);
}

TEST(UserErrorContent, LineIsMappedThroughTheOffsetAndDetailShownByItsType) {
    auto content = userErrorContent(QStringLiteral("NameError: name 'x' is not defined"),
                                    QStringLiteral("3"), 10);
    EXPECT_EQ(content.typeCaption, QStringLiteral("NameError: name 'x' is not defined on line 13"));
    EXPECT_EQ(content.labelText, QStringLiteral("3"));
    EXPECT_EQ(content.heightTwips, 1845);

    content = userErrorContent(QString(), QStringLiteral("-1"), 10);
    EXPECT_EQ(content.typeCaption, QStringLiteral("Vessa does not understand what you typed."));

    // A whole number shows the name of its type, not its value.
    content = userErrorContent(QStringLiteral("Oops"), 4.7, 0);
    EXPECT_EQ(content.typeCaption, QStringLiteral("Oops on line 4"));
    EXPECT_EQ(userErrorContent(QStringLiteral("Oops"), 4, 0).labelText, QStringLiteral("Long"));
}

TEST(UserErrorContent, SyntaxErrorShowsItsSourceLineWithoutLineSuffix) {
    const QVariantList where = {QStringLiteral("<Script Text>"), 2, 5, QStringLiteral("x = = 1")};
    const QVariantList detail = {QStringLiteral("invalid syntax"), QVariant(where)};
    const auto content = userErrorContent(QStringLiteral("SyntaxError"), QVariant(detail), 0);
    EXPECT_EQ(content.typeCaption, QStringLiteral("SyntaxError"));
    EXPECT_EQ(content.labelText, QStringLiteral("x = = 1"));
    // Any other list shape shows nothing rather than failing.
    EXPECT_EQ(userErrorContent(QStringLiteral("E"), QVariantList{1, 2, 3}, 0).labelText, QString());
}

TEST(UserErrorContent, TextThatIsNoLineNumberIsATypeMismatch) {
    try {
        userErrorContent(QStringLiteral("E"), QStringLiteral("line three"), 0);
        FAIL() << "expected a type mismatch";
    } catch (const RunTimeError& e) {
        EXPECT_EQ(e.number(), RunTimeError::TypeMismatch);
    }
}

TEST(ClipboardReport, DatesAreMonthNameDayWithoutZeroAnd24Hours) {
    const QDateTime when(QDate(2026, 3, 5), QTime(17, 4, 9));
    const QString report =
        clipboardReport(QStringLiteral("0.1.0"), when, QStringLiteral("T"), QStringLiteral("L"));
    EXPECT_EQ(report, QStringLiteral("This is a report of an Vessa47 error.\r\n"
                                     "************ Start of Vessa47 error report *************\r\n"
                                     "Vessa47 Version: 0.1.0\r\n"
                                     "Time: Mar 5 2026 17:04:09\r\n"
                                     "Type: T\r\n"
                                     "Label:L\r\n"
                                     "************ End of Vessa47 error report *************\r\n"
                                     "\r\n"));
}

TEST(InternalErrorContent, ShowsVersionMessageAndConvertedResult) {
    const auto content =
        internalErrorContent(QStringLiteral("0.1"), QStringLiteral("Caller failed"),
                             QStringLiteral("line one\nline two\n"));
    EXPECT_EQ(content.labelText,
              QStringLiteral("Version: 0.1\r\nCaller failed\r\nline one\r\nline two\r\n"));
    EXPECT_TRUE(content.typeCaption.contains(kSupportAddress));
    EXPECT_EQ(content.heightTwips, 5070);
    EXPECT_EQ(content.widthTwips, 8535);
}

TEST(CutLongLines, OnlyLinesPastTheLimitAreCutAndLineEndsStay) {
    EXPECT_EQ(cutLongLines(QStringLiteral("short\nlines\n"), 5), QStringLiteral("short\nlines\n"));
    EXPECT_EQ(cutLongLines(QStringLiteral("abcdefgh\nok"), 5),
              QStringLiteral("abcde [... 3 more characters]\nok"));
    EXPECT_EQ(cutLongLines(QStringLiteral("abcdefgh"), 5),
              QStringLiteral("abcde [... 3 more characters]"));
}
