// Find and Replace over the script's lines and over a box of code, without a window.
#include "script/script_model.h"
#include "text/code_text_find.h"
#include "text/script_find.h"
#include "text/script_replace.h"

#include "script/script_test_support.h"

#include <QTextDocument>
#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;

namespace {

const FindOptions AnyCase;

TEST(TextSearch, CaseAndWholeWordsAreChoices) {
    EXPECT_EQ(findText(u"Camera.Move(Forward)", u"camera", 0, AnyCase), 0);
    EXPECT_EQ(findText(u"Camera.Move(Forward)", u"camera", 0, {true, false}), -1);
    // A whole word neither follows nor runs on into a letter, a digit or "_".
    EXPECT_EQ(findText(u"Bunny2.Move(Bunny)", u"Bunny", 0, {false, true}), 12);
    EXPECT_EQ(findText(u"my_bunny bunny", u"bunny", 0, {false, true}), 9);
    EXPECT_EQ(findText(u"anything", u"", 0, AnyCase), -1);
    EXPECT_EQ(findText(u"Der ÄPFEL Baum", u"äpfel", 0, AnyCase), 4);
    EXPECT_EQ(findText(u"ab", u"abc", 0, AnyCase), -1);
    int replaced = 0;
    EXPECT_EQ(replaceText("aXa xa", u"a", "bb", AnyCase, replaced), "bbXbb xbb");
    EXPECT_EQ(replaced, 3);
    EXPECT_EQ(replaceText("cat Cat catalog", u"cat", "dog", {true, true}, replaced),
              "dog Cat catalog");
    EXPECT_EQ(replaced, 1);
}

// Two animations: Action1 with two lines and a block of one, Action2 with one line.
struct Script : ::testing::Test {
    FakeScriptHost host;
    ScriptModel model{host};
    TreeControl& tree = model.TreeView1();
    TreeNode* action1 = nullptr;
    TreeNode* move = nullptr;
    TreeNode* turn = nullptr;
    TreeNode* block = nullptr;
    TreeNode* inBlock = nullptr;
    TreeNode* walk = nullptr;
    TreeNode* walkLine = nullptr;
    ScriptFind find{tree};

    void SetUp() override {
        model.Initialize();
        action1 = tree.FirstRoot();
        move = tree.Add(action1, Relation::Child, "", "Camera.Move(Forward, 1, more...)");
        turn = tree.Add(action1, Relation::Child, "", "Bunny.Turn(Left, 1/4, more...)");
        block = tree.Add(action1, Relation::Child, "", "Hop : DoTogether");
        inBlock = tree.Add(block, Relation::Child, "", "Bunny.Move(Up, 1, Duration=2, more...)");
        walk = model.AddNewAnimation();
        walkLine = tree.Add(walk, Relation::Child, "", "Camera.Move(Back, 2, more...)");
        tree.SetSelectedItem(nullptr);
    }

    bool press(const QString& target, FindOptions options = {}) {
        return find.FindButton_Click(target, options);
    }
};

TEST_F(Script, FindGoesThroughTheLinesInOrderRoundTheEndAndStopsWhereItBegan) {
    tree.SetSelectedItem(turn);
    EXPECT_EQ(find.step(), ScriptFind::Step::Find);
    // From behind the selected line: the block's line, then round the end to the top.
    ASSERT_TRUE(press("MOVE"));
    EXPECT_EQ(tree.SelectedItem(), inBlock);
    EXPECT_EQ(tree.DropHighlight(), inBlock);
    EXPECT_EQ(find.step(), ScriptFind::Step::FindNext);
    ASSERT_TRUE(press("MOVE"));
    EXPECT_EQ(tree.SelectedItem(), walkLine);
    ASSERT_TRUE(press("MOVE"));
    EXPECT_EQ(tree.SelectedItem(), move);
    // Back at the line selected when the round began: nothing more, and it is selected.
    EXPECT_FALSE(press("MOVE"));
    EXPECT_EQ(tree.SelectedItem(), turn);
    EXPECT_EQ(find.step(), ScriptFind::Step::FindAgain);
    // A new round from there.
    ASSERT_TRUE(press("MOVE"));
    EXPECT_EQ(tree.SelectedItem(), inBlock);
    // A change of the text starts a round again.
    find.restart();
    EXPECT_EQ(ScriptFind::Caption(find.step()), "Find");
}

TEST_F(Script, OneMatchIsFoundOnceAndTheNextPressSaysThereIsNoMore) {
    ASSERT_TRUE(press("bunny.turn"));
    EXPECT_EQ(tree.SelectedItem(), turn);
    EXPECT_EQ(ScriptFind::Caption(find.step()), "Find Next");
    EXPECT_FALSE(press("bunny.turn"));
    EXPECT_EQ(ScriptFind::Caption(find.step()), "Find Again");
    // With nothing selected the round began at the top: that is where it ends.
    EXPECT_EQ(tree.SelectedItem(), action1);
}

TEST_F(Script, TheMarkerIsNeverFoundAndLinesAreSearchedAsShown) {
    EXPECT_FALSE(press("more"));
    find.restart();
    // As shown the line reads "Camera.Move(Back, 2)".
    ASSERT_TRUE(press("Back, 2)"));
    EXPECT_EQ(tree.SelectedItem(), walkLine);
    EXPECT_EQ(lineAsShown("Bunny.Hide(more...)"), "Bunny.Hide()");
}

TEST_F(Script, MatchCaseAndWholeWordNarrowTheFind) {
    EXPECT_FALSE(press("camera", {true, false}));
    find.restart();
    tree.SetSelectedItem(nullptr);
    EXPECT_FALSE(press("Cam", {false, true}));
    find.restart();
    tree.SetSelectedItem(nullptr);
    ASSERT_TRUE(press("Camera", {true, true}));
    EXPECT_EQ(tree.SelectedItem(), move);
}

TEST_F(Script, ALineDeletedWhileFindingEndsTheRoundAfterOneWholeRound) {
    tree.SetSelectedItem(turn);
    ASSERT_TRUE(press("Camera"));
    EXPECT_EQ(tree.SelectedItem(), walkLine);
    tree.Remove(turn->Index());
    ASSERT_TRUE(press("Camera"));
    EXPECT_EQ(tree.SelectedItem(), move);
    // Nothing more to find and no stop node to come back to: the round still ends.
    EXPECT_FALSE(press("Turn"));
    EXPECT_EQ(find.step(), ScriptFind::Step::FindAgain);
}

TEST_F(Script, ReplaceAllChangesEveryLineAndOneUndoTakesItAllBack) {
    ScriptReplace replace(model);
    const ScriptReplaceResult result = replace.ReplaceAll("camera", "Bunny", AnyCase);
    EXPECT_EQ(result.Lines, 2);
    EXPECT_TRUE(result.Refused.isEmpty());
    // The marker stays where it was.
    EXPECT_EQ(move->Text(), "Bunny.Move(Forward, 1, more...)");
    EXPECT_EQ(walkLine->Text(), "Bunny.Move(Back, 2, more...)");
    EXPECT_GT(host.modifications, 0);

    model.UndoFromLog();
    EXPECT_EQ(tree.FirstRoot()->Child()->Text(), "Camera.Move(Forward, 1, more...)");
    EXPECT_EQ(tree.FirstRoot()->Next()->Child()->Text(), "Camera.Move(Back, 2, more...)");
    EXPECT_TRUE(model.TreeUndoRecords().CanRedo());
    // Redone as one step as well, and undone again.
    model.RedoFromLog();
    EXPECT_EQ(tree.FirstRoot()->Child()->Text(), "Bunny.Move(Forward, 1, more...)");
    EXPECT_EQ(tree.FirstRoot()->Next()->Child()->Text(), "Bunny.Move(Back, 2, more...)");
    model.UndoFromLog();
    EXPECT_EQ(tree.FirstRoot()->Next()->Child()->Text(), "Camera.Move(Back, 2, more...)");
    // The log held only the two animations' making and these changes.
    model.UndoFromLog();
    EXPECT_EQ(tree.RootCount(), 1);
}

TEST_F(Script, AReplaceThatBreaksALineOrTheKindOfALineIsRefused) {
    ScriptReplace replace(model);
    // "Move(" would become "Hop(": no command of that name.
    ScriptReplaceResult result = replace.ReplaceAll("Move", "Hop", {true, true});
    EXPECT_EQ(result.Lines, 0);
    EXPECT_EQ(result.Refused.size(), 3);
    EXPECT_EQ(move->Text(), "Camera.Move(Forward, 1, more...)");
    // A block stays a block of its kind, and a name stays a name.
    result = replace.ReplaceAll("Together", "InOrder", AnyCase);
    EXPECT_EQ(result.Refused, QStringList{"Hop : DoInOrder"});
    result = replace.ReplaceAll("Hop", "Hop_2", AnyCase);
    EXPECT_EQ(result.Refused, QStringList{"Hop_2 : DoTogether"});
    result = replace.ReplaceAll("Hop", "", AnyCase);
    EXPECT_EQ(result.Refused, QStringList{" : DoTogether"});
    // An animation can't take a name another one has.
    result = replace.ReplaceAll("Action2", "action1", AnyCase);
    EXPECT_EQ(result.Refused, QStringList{"action1 = DoInOrder"});
    EXPECT_EQ(walk->Text(), "Action2 = DoInOrder");
    EXPECT_TRUE(model.TreeUndoRecords().Text().count(u'\n') == 1); // only Action2's making
}

TEST_F(Script, ReplaceRenamesAnimationsWithTheirEventsAndBlocksAsOneUndoStep) {
    ScriptReplace replace(model);
    host.eventRowsOfRenamedAnimation = 2;
    ScriptReplaceResult result = replace.ReplaceAll("Action2", "Stroll About", AnyCase);
    EXPECT_EQ(result.Lines, 1);
    EXPECT_EQ(walk->Text(), "Stroll About = DoInOrder");
    EXPECT_EQ(walk->Key(), "stroll about");
    EXPECT_EQ(host.animationRenames, QStringList{"Action2 -> Stroll About"});
    EXPECT_TRUE(model.AnimationNames().Text().contains("Stroll About"));
    result = replace.ReplaceAll("Hop", "Skip", AnyCase);
    EXPECT_EQ(result.Lines, 1);
    EXPECT_EQ(block->Text(), "Skip : DoTogether");

    model.UndoFromLog();
    EXPECT_EQ(block->Text(), "Hop : DoTogether");
    model.UndoFromLog();
    EXPECT_EQ(walk->Text(), "Action2 = DoInOrder");
    EXPECT_FALSE(model.AnimationNames().Text().contains("Stroll"));
    EXPECT_EQ(host.eventUndos, 2); // the rows renamed with it came back too
}

TEST_F(Script, ReplaceChangesTheSelectedLineOnlyAndAPythonLineTakesAnyText) {
    ScriptReplace replace(model);
    tree.SetSelectedItem(turn);
    EXPECT_EQ(replace.ReplaceInSelected("Left", "Right", AnyCase).Lines, 1);
    EXPECT_EQ(turn->Text(), "Bunny.Turn(Right, 1/4, more...)");
    EXPECT_EQ(move->Text(), "Camera.Move(Forward, 1, more...)");
    TreeNode* python = tree.Add(action1, Relation::Child, "", "print('Left')");
    tree.SetTag(python, PythonLineTag);
    tree.SetSelectedItem(python);
    EXPECT_EQ(replace.ReplaceInSelected("Left')", "(", AnyCase).Lines, 1);
    EXPECT_EQ(python->Text(), "print('(");
    model.UndoFromLog();
    EXPECT_EQ(python->Text(), "print('Left')");
}

TEST(CodeTextFind, FindsOnFromTheLastFindAndStartsAtTheTopAfterTheLast) {
    QTextDocument document("x = 1\nprint(X)\nx += 1\n");
    QTextCursor cursor(&document);
    CodeTextFind find;
    ASSERT_TRUE(find.ArbitraryCodeBox_FindText(cursor, "x", AnyCase));
    EXPECT_EQ(cursor.selectionStart(), 0);
    ASSERT_TRUE(find.ArbitraryCodeBox_FindText(cursor, "x", AnyCase));
    EXPECT_EQ(cursor.selectionStart(), 12);
    ASSERT_TRUE(find.ArbitraryCodeBox_FindText(cursor, "x", AnyCase));
    EXPECT_EQ(cursor.selectionStart(), 15);
    EXPECT_FALSE(find.ArbitraryCodeBox_FindText(cursor, "x", AnyCase));
    EXPECT_EQ(find.SearchPos, 0);
    ASSERT_TRUE(find.ArbitraryCodeBox_FindText(cursor, "x", {true, false}));
    EXPECT_EQ(cursor.selectionStart(), 0);
    ASSERT_TRUE(find.ArbitraryCodeBox_FindText(cursor, "x", {true, false}));
    EXPECT_EQ(cursor.selectionStart(), 15);
}

TEST(CodeTextFind, ReplaceAndReplaceAllGoThroughTheTextsOwnUndo) {
    QTextDocument document("speed = 1\nspeed2 = speed\n");
    QTextCursor cursor(&document);
    CodeTextFind find;
    ASSERT_TRUE(find.ArbitraryCodeBox_FindText(cursor, "speed", {false, true}));
    // The selection is replaced, and the next whole word selected.
    ASSERT_TRUE(find.Replace(cursor, "speed", "pace", {false, true}));
    EXPECT_EQ(document.toPlainText(), "pace = 1\nspeed2 = speed\n");
    EXPECT_EQ(cursor.selectedText(), "speed");
    EXPECT_EQ(cursor.selectionStart(), 18);

    EXPECT_EQ(CodeTextFind::ReplaceAll(document, "SPEED", "v", AnyCase), 2);
    EXPECT_EQ(document.toPlainText(), "pace = 1\nv2 = v\n");
    document.undo();
    EXPECT_EQ(document.toPlainText(), "pace = 1\nspeed2 = speed\n");
    EXPECT_EQ(CodeTextFind::ReplaceAll(document, "nothing", "v", AnyCase), 0);
}

} // namespace
