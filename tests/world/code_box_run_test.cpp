// The code box's own runs and where the errors of every run are marked: the line of the
// right box, at the first and last line of each part of the text that ran.
#include "world/code_box_run.h"

#include "world/open_world.h"
#include "world/script_run.h"
#include "world/world_run.h"

#include "support/scripted_engine.h"

#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

// Remembers what a run showed of the boxes.
class BoxesView : public RunView {
public:
    void showSelectedTab(int) override {}
    void showTabPage(int) override {}
    void enableMenuItems(std::initializer_list<const char*>, bool) override {}
    void showCodeBox(bool shown) override { codeBoxShown = shown; }
    ViewHostPlace openingSceneHost() const override { return {}; }
    ViewHostPlace cameraWindowHost() const override { return {}; }
    void showCameraWindow(bool) override {}
    void focusCameraWindow() override { ++cameraFocused; }
    void showPerformPicture(PerformPicture) override {}
    void showLightPicture(LightPicture) override {}
    void PrintOutput(const QString&) override {}
    void showNotice(const QString&) override {}
    void showScriptText(const ScriptTextBox& box) override { scriptText = box; }
    void markCodeBoxLine(int line) override { codeBoxLine = line; }
    void LogMessage(const QString&) override {}

    bool codeBoxShown = false;
    int cameraFocused = 0;
    ScriptTextBox scriptText;
    int codeBoxLine = -1;
};

struct Boxes : ScriptedProgram {
    OpenWorld world{state, engine, reporter};
    BoxesView view;
    WorldRun run{state, engine, reporter, world, {}, view};
    CodeBoxRun codeBox{state, engine, reporter, world, run, view};

    QVariantList argumentsOf(const char* method) const {
        const qsizetype at = log.calls.lastIndexOf(QString::fromLatin1(method));
        return at < 0 ? QVariantList() : log.arguments[at];
    }
};

ScriptErrorPlace place(const QString& tag, int line, const QString& source) {
    return {tag, line, source};
}

} // namespace

TEST(ErrorMarks, EachPartOfWhatRanMapsToItsBoxFromItsFirstToItsLastLine) {
    using Box = ErrorMark::Box;
    const auto mark = [](const QString& tag, int line, RanText ran, int offset = 0) {
        return errorMark(place(tag, line, {}), ran, 14, offset);
    };
    const QString generated = kGeneratedSourceTag;
    const QString own = kHandEditedSourceTag;
    // A world's run: 14 generated lines, then the code box's from its own first line.
    EXPECT_EQ(mark(generated, 1, RanText::World), (ErrorMark{Box::ScriptText, 0}));
    EXPECT_EQ(mark(generated, 14, RanText::World), (ErrorMark{Box::ScriptText, 13}));
    EXPECT_EQ(mark(own, 1, RanText::World), (ErrorMark{Box::CodeBox, 0}));
    EXPECT_EQ(mark(own, 9, RanText::World), (ErrorMark{Box::CodeBox, 8}));
    // The script text as it stands runs as hand-edited from its first line (the run
    // gives 0 generated lines then).
    EXPECT_EQ(errorMark(place(own, 1, {}), RanText::ScriptTextAsItStands, 0, 0),
              (ErrorMark{Box::ScriptText, 0}));
    // Lines run by themselves count from the first of them.
    EXPECT_EQ(mark(own, 1, RanText::CodeBoxLines, 5), (ErrorMark{Box::CodeBox, 5}));
    EXPECT_EQ(mark(own, 3, RanText::CodeBoxLines, 5), (ErrorMark{Box::CodeBox, 7}));
    EXPECT_EQ(mark(own, 2, RanText::ScriptTextLines, 20), (ErrorMark{Box::ScriptText, 21}));
    // Code the boxes do not hold marks nothing: a line performed from the script after a
    // code box run, the command line, a button made on the fly.
    EXPECT_EQ(mark(generated, 1, RanText::CodeBoxLines), std::nullopt);
    EXPECT_EQ(mark(QStringLiteral("<Command Line>"), 1, RanText::World), std::nullopt);
    EXPECT_EQ(mark(QStringLiteral("<On The Fly>"), 1, RanText::World), std::nullopt);
    EXPECT_EQ(mark(own, 1, RanText::Other), std::nullopt);
}

TEST(CodeBoxRun, CtrlPRunsAllTheTextFromTheWorldsStartWithOneLineFeedAtItsEnd) {
    Boxes b;
    b.world.ArbitraryCodeBox().Text = QStringLiteral("x = 1\r\nprint(x)");
    b.state.ErrorLineOffset = 7;
    b.codeBox.RunCodeBox();
    EXPECT_EQ(b.log.calls.first(), "ExecuteCode");
    EXPECT_EQ(b.log.arguments.first().first(), "RestoreHandbasket()");
    EXPECT_EQ(b.argumentsOf("ExecuteCode"),
              (QVariantList{"x = 1\r\nprint(x)\n", "<Script Text>", "exec"}));
    EXPECT_EQ(b.state.ErrorLineOffset, 0);
    EXPECT_EQ(b.view.cameraFocused, 1);
    // Text that ends in a line feed goes unchanged.
    b.world.ArbitraryCodeBox().Text = QStringLiteral("y = 2\n");
    b.codeBox.RunCodeBox();
    EXPECT_EQ(b.argumentsOf("ExecuteCode").first(), "y = 2\n");
    EXPECT_TRUE(b.display.shown.isEmpty());
}

TEST(CodeBoxRun, F5RunsTheCaretsLineAsAtAPromptOrTheSelectedLinesWithTheWholeText) {
    Boxes b;
    b.world.ArbitraryCodeBox().Text = QStringLiteral("a = 1\r\nb = 2\r\nc = 3");
    b.codeBox.RunCodeBoxSelection({1, 1, false});
    EXPECT_EQ(b.argumentsOf("ExecuteLines"),
              (QVariantList{"a = 1\r\nb = 2\r\nc = 3\n", 1, 1, "<Script Text>", "single"}));
    EXPECT_EQ(b.state.ErrorLineOffset, 1);
    b.codeBox.RunCodeBoxSelection({0, 2, true});
    EXPECT_EQ(b.argumentsOf("ExecuteLines").mid(1), (QVariantList{0, 2, "<Script Text>", "exec"}));
    EXPECT_EQ(b.state.ErrorLineOffset, 0);
    // Nothing of it puts the world back.
    EXPECT_FALSE(b.log.calls.contains("ExecuteCode"));
}

TEST(CodeBoxRun, AnErrorOfTheCodeBoxMarksItsLineAndShowsTheBoxAndOnlyWhenTheLineReadsSo) {
    Boxes b;
    b.world.ArbitraryCodeBox().Text = QStringLiteral("a = 1\r\nb = 2\r\nprint(zz)\r\n");
    b.codeBox.RunCodeBoxSelection({1, 2, true});
    b.run.markError(place(kHandEditedSourceTag, 2, QStringLiteral("print(zz)")));
    EXPECT_EQ(b.view.codeBoxLine, 2);
    EXPECT_TRUE(b.view.codeBoxShown);
    EXPECT_TRUE(b.world.ArbitraryCodeBox().Visible);
    // The box changed since the run: the line no longer reads as the error's.
    b.view.codeBoxLine = -1;
    b.world.ArbitraryCodeBox().Text = QStringLiteral("a = 1\r\nb = 2\r\nprint(9)\r\n");
    b.run.markError(place(kHandEditedSourceTag, 2, QStringLiteral("print(zz)")));
    EXPECT_EQ(b.view.codeBoxLine, -1);
}

TEST(CodeBoxRun, F5InTheScriptTextMarksItsLineThereAndF4UndoesTheEnginesStep) {
    Boxes b;
    const QString python = QStringLiteral("\r\nHop = DoInOrder(\r\n\tBunny.Move(Up, 1),\r\n)");
    b.codeBox.RunSelectedLine(python, {2, 2, false});
    EXPECT_EQ(b.argumentsOf("ExecuteLines"),
              (QVariantList{python + u'\n', 2, 2, "<Script Text>", "single"}));
    // The script text the run keeps is still empty: no line of it reads so.
    b.run.markError(place(kHandEditedSourceTag, 1, QStringLiteral("Bunny.Move(Up, 1),")));
    EXPECT_FALSE(b.view.scriptText.Visible);
    b.run.editScriptText(python); // as the user's box holds it
    b.run.markError(place(kHandEditedSourceTag, 1, QStringLiteral("Bunny.Move(Up, 1),")));
    EXPECT_TRUE(b.view.scriptText.Visible);
    EXPECT_EQ(b.view.scriptText.errorLine, 2);
    EXPECT_EQ(b.view.codeBoxLine, -1);

    b.log = {};
    b.codeBox.UndoKey();
    EXPECT_EQ(b.statements(), (QStringList{"undo()", "PlaySystemSound('Undo')"}));
}
