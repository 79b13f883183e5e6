#include "world/python_generator.h"

#include "world/script_fixture.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

// The world's Python against the text that worlds already written depend on, line by
// line: CR LF, tabs, the forms of rows, and the line where the hand-edited code starts.

namespace {

const QString Marker = kHandEditedMarker;

// The world of the worked example: "Hop" moves the camera one meter forward.
struct HopWorld : ScriptFixture {
    TreeNode* hop = animation("Hop = DoInOrder");
    HopWorld() {
        line(hop, "Camera.Move(Forward, 1, more...)");
        ArbitraryCodeBox.Text = "x = 1";
    }
};

} // namespace

TEST(PythonGenerator, TheWorkedExampleVerbatim) {
    HopWorld world;
    world.row(R"(KeyDown ("A" key))", "AnyWhere", "Hop");
    const PythonScript script = world.python();
    EXPECT_EQ(
        script.text.toStdString(),
        CrLfLines({"", "def TVDef_KeyDown_Hop(ev):", "\tif ev.key == \"A\":", "\t\tDoInOrder(",
                   "\t\t\tCamera.Move(Forward, 1),", "\t\t)", "",
                   "Camera._Window.addresponse(KeyDown, TVDef_KeyDown_Hop)", "", "Hop = DoInOrder(",
                   "\tCamera.Move(Forward, 1),", ").stop()", "", Marker, "x = 1"})
            .toStdString());
    // Line 14, counted from 0, is the first hand-edited one.
    EXPECT_EQ(script.handEditedLine, 14);
    EXPECT_EQ(script.text.split("\r\n")[script.handEditedLine], "x = 1");
    EXPECT_TRUE(script.notices.isEmpty());
}

TEST(PythonGenerator, MouseRowsDefineTheAnimationOnceAndRespondBelowIt) {
    HopWorld world;
    world.row("LeftMouseButtonDown", "Bunny", "Hop");
    world.row("RightMouseButtonUp", "Ball", "Hop");
    world.row("World Start", "- - -", "Hop");
    world.row("LeftMouseButtonUp", "AnyWhere", "Hop");
    world.row("RightMouseButtonDown", "Anywhere", "Hop");
    const PythonScript script = world.python();
    EXPECT_EQ(
        script.text.toStdString(),
        CrLfLines({"", "Hop = DoInOrder(", "\tCamera.Move(Forward, 1),", ").stop()", "",
                   "Bunny.addresponse(LeftMouseDown, Hop)", "Ball.addresponse(RightMouseUp, Hop)",
                   "Hop.Copy().Start()", "Camera._Window.addresponse(LeftMouseUp, Hop)",
                   "Camera._Window.addresponse(RightMouseDown, Hop)", "", Marker, "x = 1"})
            .toStdString());
    EXPECT_EQ(script.handEditedLine, 12);
}

TEST(PythonGenerator, AnEmptyWorldIsTheMarkerAndTheCode) {
    ScriptFixture world;
    world.ArbitraryCodeBox.Text = "print(1)\r\nprint(2)";
    const PythonScript script = world.python();
    EXPECT_EQ(script.text, "\r\n" + Marker + "\r\nprint(1)\r\nprint(2)");
    EXPECT_EQ(script.handEditedLine, 2);
}

TEST(PythonGenerator, AnimationsWithoutRowsAreDefinedStoppedInTreeOrder) {
    ScriptFixture world;
    TreeNode* hop = world.animation("Hop = DoInOrder");
    TreeNode* walk = world.line(hop, "Walk : DoTogether");
    world.line(walk, "Bunny.Turn(Left, 1/4, Style=BeginGently-EndAbruptly, more...)");
    world.pythonLine(walk, "print('hi')");
    TreeNode* inner = world.line(walk, "DoInOrder");
    world.line(inner, "Camera.Move(more...)");
    world.line(hop, "Bunny.Move(Up, 1, Style=BeginAbruptly-EndGently, more...)");
    world.animation("Spin = DoTogether");
    TreeNode* last = world.animation("Last = DoInOrder");
    world.line(last, "Bunny.Hide()");
    EXPECT_EQ(world.python().text.toStdString(),
              CrLfLines({"",
                         "Hop = DoInOrder(",
                         "\tDoTogether(",
                         "\t\tBunny.Turn(Left, 1/4, Style=BeginGently),",
                         "\t\tprint('hi'),",
                         "\t\tDoInOrder(",
                         "\t\t\tCamera.Move(),",
                         "\t\t),",
                         "\t),",
                         "\tBunny.Move(Up, 1, Style=BeginAbruptly),",
                         ").stop()",
                         "",
                         "Spin = DoTogether(",
                         ").stop()",
                         "",
                         "Last = DoInOrder(",
                         "\tBunny.Hide(),",
                         ").stop()",
                         "",
                         Marker,
                         ""})
                  .toStdString());
}

TEST(PythonGenerator, KeyRowsOfOneEventAndAnimationShareOneFunction) {
    HopWorld world;
    world.ArbitraryCodeBox.Text.clear();
    world.row(R"(KeyDown ("A" key))", "AnyWhere", "Hop");
    world.row("KeyDown (The 'Enter' Key)", "Bunny", "Hop");
    world.row("KeyUp (Space Bar)", "AnyWhere", "Hop");
    const PythonScript script = world.python();
    EXPECT_EQ(script.text.toStdString(),
              CrLfLines({"",
                         "def TVDef_KeyDown_Hop(ev):",
                         "\tif ev.key == \"A\" or ev.rawkey == 40:",
                         "\t\tDoInOrder(",
                         "\t\t\tCamera.Move(Forward, 1),",
                         "\t\t)",
                         "",
                         "Camera._Window.addresponse(KeyDown, TVDef_KeyDown_Hop)",
                         "Bunny.addresponse(KeyDown, TVDef_KeyDown_Hop)",
                         "",
                         "def TVDef_KeyUp_Hop(ev):",
                         "\tif ev.rawkey == 38:",
                         "\t\tDoInOrder(",
                         "\t\t\tCamera.Move(Forward, 1),",
                         "\t\t)",
                         "",
                         "Camera._Window.addresponse(KeyUp, TVDef_KeyUp_Hop)",
                         "",
                         "Hop = DoInOrder(",
                         "\tCamera.Move(Forward, 1),",
                         ").stop()",
                         "",
                         Marker,
                         ""})
                  .toStdString());
}

TEST(PythonGenerator, NamedKeysTestTheLastWordFoundInTheWholeCondition) {
    // "Down" of KeyDown and "Up" of KeyUp are found after the key's own word.
    const std::pair<const char*, int> keys[] = {
        {"KeyDown (Left Arrow Key)", 40}, {"KeyUp (Left Arrow Key)", 38},
        {"KeyUp (Down Arrow Key)", 40},   {"KeyUp (Right Arrow Key)", 38},
        {"KeyDown (Up Arrow Key)", 40},   {"KeyUp (The 'Enter' Key)", 38},
        {"KeyDown (Space Bar)", 40},      {"KeyUp (Up Arrow Key)", 38},
    };
    for (const auto& [when, code] : keys) {
        HopWorld world;
        world.row(when, "AnyWhere", "Hop");
        EXPECT_TRUE(
            world.python().text.contains(QStringLiteral("\tif ev.rawkey == %1:\r\n").arg(code)))
            << when;
    }
    // A condition with none of the words keeps the code of the row before it.
    HopWorld world;
    world.row("KeyPress (The 'Enter' Key)", "AnyWhere", "Hop");
    world.row("KeyPress (F1 Key)", "Bunny", "Hop");
    EXPECT_TRUE(world.python().text.contains("\tif ev.rawkey == 13 or ev.rawkey == 13:\r\n"));
}

TEST(PythonGenerator, KeyFunctionsHoldTheirOwnCopyAndPlainRowsStillDefine) {
    ScriptFixture world;
    TreeNode* fly = world.animation("Fly Away = DoInOrder");
    world.line(fly, "Bunny.Move(Up, 2, more...)");
    world.row(R"(KeyDown ("F" key))", "Bunny", "Fly Away");
    world.row("LeftMouseButtonDown", "Bunny", "Fly Away");
    // A row naming what a row has defined needs no animation of that name.
    world.row("RightMouseButtonDown", "Ball", "Fly_Away");
    // The plain row defines "Fly_Away"; the tree walk looks for "Fly Away", does not
    // find it among the names defined, and defines it under that name again.
    EXPECT_EQ(world.python().text.toStdString(),
              CrLfLines({"",
                         "def TVDef_KeyDown_Fly_Away(ev):",
                         "\tif ev.key == \"F\":",
                         "\t\tDoInOrder(",
                         "\t\t\tBunny.Move(Up, 2),",
                         "\t\t)",
                         "",
                         "Bunny.addresponse(KeyDown, TVDef_KeyDown_Fly_Away)",
                         "",
                         "Fly_Away = DoInOrder(",
                         "\tBunny.Move(Up, 2),",
                         ").stop()",
                         "",
                         "Bunny.addresponse(LeftMouseDown, Fly_Away)",
                         "Ball.addresponse(RightMouseDown, Fly_Away)",
                         "",
                         "Fly Away = DoInOrder(",
                         "\tBunny.Move(Up, 2),",
                         ").stop()",
                         "",
                         Marker,
                         ""})
                  .toStdString());
}

TEST(PythonGenerator, WhatWouldBreakTheWorldIsLeftOutAndNamed) {
    HopWorld world;
    world.row("LeftMouseButtonDown", "Bunny", "Jump"); // no such animation
    world.row("KeyDown", "AnyWhere", "Hop");           // no key
    world.row(R"(KeyUp ("" key))", "AnyWhere", "Hop"); // the key box was cancelled
    world.row("World Start", "- - -", "Hop");
    world.animation("Nameless DoInOrder");
    const PythonScript script = world.python();
    EXPECT_EQ(script.text.toStdString(),
              CrLfLines({"", "Hop = DoInOrder(", "\tCamera.Move(Forward, 1),", ").stop()", "",
                         "Hop.Copy().Start()", "", Marker, "x = 1"})
                  .toStdString());
    ASSERT_EQ(script.notices.size(), 4);
    EXPECT_EQ(script.notices[0].row, 1);
    EXPECT_TRUE(script.notices[0].message.contains("Jump"))
        << script.notices[0].message.toStdString();
    EXPECT_TRUE(script.notices[0].message.contains("does not have"));
    EXPECT_EQ(script.notices[1].row, 2);
    EXPECT_TRUE(script.notices[1].message.contains("names no key"));
    EXPECT_EQ(script.notices[2].row, 3);
    EXPECT_EQ(script.notices[3].row, 0);
    EXPECT_TRUE(script.notices[3].message.contains("Nameless DoInOrder"));
}

TEST(PythonGenerator, LinesAreCountedWhereTheEngineSplitsThem) {
    EXPECT_EQ(lineOfPosition("a\r\nb\nc\rd", 9), 3);
    EXPECT_EQ(lineOfPosition("a\r\nb", 2), 0); // between CR and LF: still the first line
    EXPECT_EQ(lineOfPosition("a\r\nb", 3), 1);
    ScriptFixture world;
    world.pythonLine(world.animation("Hop = DoInOrder"), "x = 1 \r y = 2");
    const PythonScript script = world.python();
    EXPECT_EQ(script.text.split(QRegularExpression("\r\n|\r|\n"))[script.handEditedLine - 1],
              Marker);
}
