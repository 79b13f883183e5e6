#include "base/run_time_error.h"
#include "script/script_line.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace vessa;

namespace {

struct Piece {
    QString text;
    int kind;
    int slot;
    QString value;
};

ParseState Parsed(const QString& line, int position) {
    ParseState state;
    ParseString(state, line, position);
    return state;
}

int ErrorOf(const QString& line, int position) {
    try {
        Parsed(line, position);
    } catch (const RunTimeError& error) {
        return error.number();
    }
    return 0;
}

} // namespace

TEST(ParseString, ClassifiesEveryCharacterOfALine) {
    // A click on the comma or blank behind a value still hits that value.
    const std::vector<Piece> pieces = {
        {"Camera.", ObjectKind, -1, "Camera"},  {"Move(", 2, -1, "Move"},
        {"Forward, ", 5, 0, "Forward"},         {"1, ", 8, 1, "1"},
        {"Duration=2, ", 17, 2, "2"},           {"Style=abruptly, ", 19, 3, "abruptly"},
        {"more...)", MarkerKind, -1, "more..."}};
    QString line;
    for (const Piece& piece : pieces)
        line += piece.text;
    int position = 0;
    for (const Piece& piece : pieces) {
        for (int i = 0; i < piece.text.size(); ++i, ++position) {
            const ParseState state = Parsed(line, position);
            EXPECT_EQ(state.ClickedKind, piece.kind) << "at " << position;
            EXPECT_EQ(state.ClickedSlot, piece.slot) << "at " << position;
            EXPECT_EQ(state.ClickedValue, piece.value) << "at " << position;
        }
    }
    const ParseState state = Parsed(line, 0);
    EXPECT_EQ(state.ParsedCommand, MoveCommand);
    EXPECT_EQ(state.EssentialValue[0], "Forward");
    EXPECT_EQ(state.OptionalValue[0], UnsetValue);
    EXPECT_EQ(state.OptionalValue[1], "2");
    EXPECT_EQ(state.OptionalValue[2], "abruptly");
}

TEST(ParseString, WaitHasNoMarkerAndObjectsMayHoldDots) {
    // The whole list of a Wait line is its one value.
    for (int position = 12; position < 16; ++position) {
        const ParseState state = Parsed("Camera.Wait(1/2)", position);
        EXPECT_EQ(state.ClickedKind, 17);
        EXPECT_EQ(state.ClickedValue, "1/2");
    }
    const ParseState head = Parsed("Bunny.Head.Turn(Left, 1/4, more...)", 10);
    EXPECT_EQ(head.ParsedObject, "Bunny.Head");
    EXPECT_EQ(head.ClickedKind, ObjectKind);
    EXPECT_EQ(Parsed("Bunny.Head.Turn(Left, 1/4, more...)", 12).ClickedKind, 2);
    // Without essentials a click in the list is the marker; keywordless values land in
    // slot 0.
    EXPECT_EQ(Parsed("Camera.Hide(more...)", 14).ClickedKind, MarkerKind);
    const ParseState hide = Parsed("Camera.Hide(Yes, more...)", 13);
    EXPECT_EQ(hide.ClickedKind, 23);
    EXPECT_EQ(hide.OptionalValue[0], "Yes");
}

TEST(ParseString, AValueIsKnownByItsKeywordInAnyOrderAndCase) {
    const ParseState state =
        Parsed("Camera.Move(Forward, 1, style=abruptly, Duration=2, more...)", 44);
    EXPECT_EQ(state.ClickedKind, 17);
    EXPECT_EQ(UpdatedLine(state, "3"),
              "Camera.Move(Forward, 1, Duration=3, Style=abruptly, more...)");
}

TEST(ParseString, MalformedLinesFailAsTheRuntimeDoes) {
    EXPECT_EQ(ErrorOf("CameraMove(Forward, 1, more...)", 3), RunTimeError::InvalidArgument);
    EXPECT_EQ(ErrorOf("DoInOrder", 3), RunTimeError::InvalidArgument);
    EXPECT_EQ(ErrorOf("Camera.Fly(1, more...)", 3), RunTimeError::SubscriptOutOfRange);
    EXPECT_EQ(ErrorOf("Camera.Move(Forward, 1, Speed=2, more...)", 3),
              RunTimeError::SubscriptOutOfRange);
    // A blank inside a value shifts the count onto a value that is not there.
    EXPECT_EQ(ErrorOf("Camera.Move(Forward, 1 2, more...)", 23), RunTimeError::SubscriptOutOfRange);
}

TEST(ParseString, AnyTextFailsOnlyWithARuntimeError) {
    const QStringList tokens = {"Camera", ".",       "Move", "Wait", "Hide", "(",
                                ")",      ",",       ", ",   " ",    "=",    "Duration",
                                "Style",  "more...", "1/2",  "Yes"};
    QRandomGenerator random(2024);
    for (int round = 0; round < 20000; ++round) {
        QString line;
        for (int n = random.bounded(1, 12); n > 0; --n)
            line += tokens[random.bounded(int(tokens.size()))];
        ParseState state;
        try {
            ParseString(state, line, random.bounded(int(line.size()) + 2));
            state.ClickedSlot = random.bounded(-1, 4);
            UpdatedLine(state, "2");
            EditorForClick(state);
        } catch (const RunTimeError&) {
        }
    }
}

TEST(UpdatedLine, PutsTheNewValueInPlaceAndOptionalValuesInCanonicalOrder) {
    ParseState state = Parsed("Camera.Move(Forward, 1, Style=abruptly, more...)", 14);
    EXPECT_EQ(UpdatedLine(state, "Left"), "Camera.Move(Left, 1, Style=abruptly, more...)");

    // Duration chosen from the list of optional values goes before Style.
    state.OptionalValue[1] = "2";
    state.ClickedKind = 17;
    state.ClickedSlot = -1;
    EXPECT_EQ(UpdatedLine(state, "2"),
              "Camera.Move(Forward, 1, Duration=2, Style=abruptly, more...)");

    // A blank unsets a value.
    state.OptionalValue[2] = UnsetValue;
    EXPECT_EQ(UpdatedLine(state, ""), "Camera.Move(Forward, 1, Duration=2, more...)");

    // A new object keeps every value; keywordless kinds are written bare.
    state = Parsed("Camera.Destroy(ObjectOnly, Duration=2, more...)", 2);
    EXPECT_EQ(UpdatedLine(state, "Bunny"), "Bunny.Destroy(ObjectOnly, Duration=2, more...)");
    state = Parsed("Camera.Wait(1/2)", 13);
    EXPECT_EQ(UpdatedLine(state, "2"), "Camera.Wait(2)");
}

TEST(UpdatedLine, ANewCommandStartsFromItsDefaultLine) {
    const ParseState state = Parsed("Camera.Move(Forward, 1, Duration=2, more...)", 8);
    EXPECT_EQ(UpdatedLine(state, "Turn"), "Camera.Turn(Left, 1/4, more...)");
    EXPECT_EQ(UpdatedLine(state, "move"), "Camera.Move(Forward, 1, Duration=2, more...)");
    EXPECT_THROW(UpdatedLine(state, "Fly"), RunTimeError);
}

TEST(DefaultLine, OfEveryCommandThatMenusOffer) {
    const std::vector<std::pair<QString, QString>> lines = {
        {"Move", "Camera.Move(Forward, 1, more...)"},
        {"Turn", "Camera.Turn(Left, 1/4, more...)"},
        {"Roll", "Camera.Roll(Left, 1/4, more...)"},
        {"Resize", "Camera.Resize(InAllDirections, 1/2, more...)"},
        {"PointAt", "Camera.PointAt(Scene, more...)"},
        {"SetColor", "Camera.SetColor(Black, more...)"},
        {"Place", "Camera.Place(OnTopOf, Scene, more...)"},
        {"AlignWith", "Camera.AlignWith(Scene, more...)"},
        {"BecomeChildOf", "Camera.BecomeChildOf(Scene, more...)"},
        {"Hide", "Camera.Hide(more...)"},
        {"Show", "Camera.Show(more...)"},
        {"Destroy", "Camera.Destroy(more...)"},
        {"StandUp", "Camera.StandUp(more...)"},
        // Not tested for Wait: the marker stays until the line is next rewritten.
        {"Wait", "Camera.Wait(1/4, more...)"},
        {"PlaySound", "Camera.PlaySound(\"c:\\pickme.wav\", more...)"}};
    for (const auto& [command, line] : lines)
        EXPECT_EQ(DefaultLine("Camera", command), line);
}

TEST(NormalizeLine, DropsTheMarkerAndShortensTheLongStyles) {
    EXPECT_EQ(NormalizeLine("Camera.Move(Forward, 1, more...)"), "Camera.Move(Forward, 1)");
    EXPECT_EQ(NormalizeLine("Camera.Hide(more...)"), "Camera.Hide()");
    EXPECT_EQ(NormalizeLine("Camera.Move(more...)"), "Camera.Move()");
    EXPECT_EQ(NormalizeLine("A.Turn(Left, 1, Style=BeginGently-EndAbruptly, MORE...)"),
              "A.Turn(Left, 1, Style=BeginGently)");
    EXPECT_EQ(NormalizeLine("A.Turn(Left, 1, Style=beginabruptly-endgently)"),
              "A.Turn(Left, 1, Style=BeginAbruptly)");
}

TEST(BlockPatterns, TellBlocksAndAnimationsByTextAlone) {
    EXPECT_TRUE(IsBlock("Walk : DoTogether"));
    EXPECT_TRUE(IsBlock("doinorder"));
    EXPECT_FALSE(IsBlock("Camera.Move(Forward, 1, more...)"));
    EXPECT_EQ(BareBlockWord("Walk = DoTogether"), "DoTogether");
    EXPECT_TRUE(IsAnimationText("Fly Away = DoInOrder"));
    EXPECT_FALSE(IsAnimationText("Walk : DoInOrder"));
    EXPECT_FALSE(IsAnimationText("Walk = DoInOrder extra"));
    EXPECT_EQ(AnimationName("Fly Away = DoInOrder"), "Fly Away");
    // Delete needs no blank before "="; a file's line may carry more after the word.
    EXPECT_TRUE(IsAnimationToDelete("Walk= DoTogether"));
    EXPECT_FALSE(IsAnimationToDelete("Walk = DoTogether(x)"));
    EXPECT_TRUE(IsAnimationInFile("Walk = DoTogether(x)"));
    EXPECT_FALSE(IsAnimationInFile("Walk : DoTogether"));
    EXPECT_TRUE(IsSoundLine("PlaySound"));
    EXPECT_FALSE(IsBareSoundLine("PlaySound(bell.wav) "));
    EXPECT_TRUE(IsBareSoundLine(SoundLine("bell.wav")));
    EXPECT_EQ(LabelledBlock("Walk", "DoTogether"), "Walk : DoTogether");
    EXPECT_TRUE(IsAnimationText(AnimationText("Fly Away")));
}
