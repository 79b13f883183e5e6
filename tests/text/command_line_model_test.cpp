// The command line's history and its completion, and how it runs a line in the engine.
#include "text/command_completion.h"
#include "text/command_history.h"
#include "text/command_line_runner.h"

#include "support/scripted_engine.h"

#include <gtest/gtest.h>

using namespace vessa;

namespace {

TEST(CommandHistory, TheNewestLineComesFirstAndTheLastLineRepeatedAddsNothing) {
    CommandHistory history;
    EXPECT_TRUE(history.remember("camera.move(forward)"));
    EXPECT_FALSE(history.remember("CAMERA.MOVE(FORWARD)"));
    EXPECT_EQ(history.lines(), QStringList{"camera.move(forward)"});
    EXPECT_TRUE(history.remember("Bunny.Hide()"));
    // A line further down comes again at the front.
    EXPECT_TRUE(history.remember("camera.move(forward)"));
    EXPECT_EQ(history.lines(),
              (QStringList{"camera.move(forward)", "Bunny.Hide()", "camera.move(forward)"}));
}

TEST(CommandHistory, UpAndDownWalkFromWhatIsTypedAndBack) {
    CommandHistory history;
    EXPECT_EQ(history.older("typed"), std::nullopt);
    history.remember("first");
    history.remember("second");
    EXPECT_EQ(history.newer(), std::nullopt);
    EXPECT_EQ(history.older("half a li"), "second");
    EXPECT_EQ(history.older("second"), "first");
    EXPECT_EQ(history.older("first"), std::nullopt);
    EXPECT_EQ(history.newer(), "second");
    EXPECT_EQ(history.newer(), "half a li");
    EXPECT_EQ(history.newer(), std::nullopt);
    // Typing ends a walk: the next one starts at the newest line.
    history.older("x");
    history.endWalk();
    EXPECT_EQ(history.older("y"), "second");
}

TEST(CommandCompletion, ObjectsCommandsAndValuesComeFromTheMenusWords) {
    const QStringList objects = {"Camera", "Bunny", "Bunny.Head", "BunnyTwo"};
    const auto complete = [&](const QString& line) {
        return completeCommandLine(line, static_cast<int>(line.size()), objects);
    };
    // The start of a line names an object.
    EXPECT_EQ(complete("cam").Text, "Camera");
    CommandCompletion several = complete("Bu");
    EXPECT_EQ(several.Text, "Bunny");
    EXPECT_EQ(several.Choices, (QStringList{"Bunny", "Bunny.Head", "BunnyTwo"}));
    // After the object's dot, its parts and the commands.
    EXPECT_EQ(complete("Bunny.H").Choices, (QStringList{"Bunny.Head", "Bunny.Hide"}));
    EXPECT_EQ(complete("Camera.Mo").Text, "Camera.Move");
    EXPECT_EQ(complete("Camera.PlayS").Text, "Camera.PlaySound");
    // A dot after something that is no object offers nothing.
    EXPECT_EQ(complete("Nobody.Mo").Text, "Nobody.Mo");
    // Inside the parentheses, the values of the place: Move's direction, then after the
    // essentials the optional values by name, and the values of a named one.
    EXPECT_EQ(complete("Camera.Move(For").Text, "Camera.Move(Forward");
    EXPECT_EQ(complete("Camera.Move(Forward, 1, Dur").Text, "Camera.Move(Forward, 1, Duration=");
    EXPECT_EQ(complete("Camera.Move(Forward, 1, Style=abr").Text,
              "Camera.Move(Forward, 1, Style=abruptly");
    EXPECT_EQ(complete("Camera.PointAt(Bun").Choices,
              (QStringList{"Bunny", "Bunny.Head", "BunnyTwo"}));
    // Completion in the middle of a line keeps what follows.
    const CommandCompletion middle = completeCommandLine("Camera.Mo(Forward)", 9, objects);
    EXPECT_EQ(middle.Text, "Camera.Move(Forward)");
    EXPECT_EQ(middle.Caret, 11);
    // Nothing to complete.
    EXPECT_EQ(complete("print(").Text, "print(");
    EXPECT_TRUE(complete("").Choices.size() == 4);
}

TEST(CommandLineRunner, ALineRunsTrimmedAsAtAPromptWithItsSound) {
    vessa::testing::ScriptedProgram program;
    CommandLineRunner runner(program.engine, program.reporter);
    EXPECT_EQ(runner.ExecuteCommandLine("  Camera.Move(Forward, 1)  "), "Camera.Move(Forward, 1)");
    ASSERT_GE(program.log.arguments.size(), 2);
    EXPECT_EQ(program.log.arguments[0],
              (QVariantList{"Camera.Move(Forward, 1)", "<Command Line>", "single"}));
    EXPECT_EQ(program.log.arguments[1].value(0).toString(), "PlaySystemSound('DoLine')");
    EXPECT_EQ(runner.history().lines(), QStringList{"Camera.Move(Forward, 1)"});
    // What the line does wrong is the engine's to tell; a sound that fails is the
    // program's own error.
    program.scripted->answers["ExecuteCode"] = "sound failed";
    runner.ExecuteCommandLine("1 + 1");
    ASSERT_EQ(program.display.shown.size(), 1);
}

} // namespace
