// Cut, copy and paste of the script's lines, blocks and animations, and lines as plain
// text: where each paste lands, the names a pasted animation gets, one undo step for each,
// and text from elsewhere refused whole when any line of it is not a line of a script.
#include "script/script_clipboard.h"
#include "script/script_lines_text.h"
#include "script/script_model.h"
#include "script_test_support.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;

namespace {

// Action1 with a line and a DoTogether block of one line; Hop with two lines.
struct Clipboard : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    ScriptClipboard clipboard{script};
    TreeControl& tree = script.TreeView1();
    TreeNode* action1 = tree.FirstRoot();
    TreeNode *move, *together, *hop;

    void SetUp() override {
        move = tree.Add(action1, Relation::Child, "", "Bunny.Move(Forward, 1, more...)");
        together = tree.Add(action1, Relation::Child, "", "DoTogether");
        tree.Add(together, Relation::Child, "", "Bunny.Turn(Left, 1/4, Duration=2, more...)");
        hop = tree.AddRoot("hop", "Hop = DoInOrder");
        tree.Add(hop, Relation::Child, "", "Bunny.Move(Up, 1, more...)");
        tree.Add(hop, Relation::Child, "", "Bunny.Move(Down, 1, more...)");
        script.AnimationNames().Append("Hop");
        tree.SetSelectedItem(nullptr);
    }

    // The texts of node's children.
    static QStringList children(const TreeNode* node) {
        QStringList texts;
        for (const TreeNode* child = node->Child(); child; child = child->Next())
            texts << child->Text();
        return texts;
    }
    QStringList roots() const {
        QStringList texts;
        for (const TreeNode* root = tree.FirstRoot(); root; root = root->Next())
            texts << root->Text();
        return texts;
    }
    int records() const { return static_cast<int>(script.TreeUndoRecords().Text().count(u'\n')); }
    // The whole script as text, to see that nothing at all changed.
    QString whole() const {
        QString text;
        for (const TreeNode* root = tree.FirstRoot(); root; root = root->Next())
            text += ScriptLinesText(root) + root->Key() + u'\n';
        return text;
    }
};

} // namespace

TEST_F(Clipboard, ALineGoesAfterTheSelectedLineIntoTheSelectedBlockOrAtTheEndEachOneUndo) {
    clipboard.Copy(move);
    tree.SetSelectedItem(move);
    TreeNode* afterLine = clipboard.Paste();
    EXPECT_EQ(afterLine->Previous(), move);
    tree.SetSelectedItem(together);
    TreeNode* intoBlock = clipboard.Paste();
    EXPECT_EQ(intoBlock->Parent(), together);
    EXPECT_EQ(intoBlock->Image(), 9); // the together icon: its place's, not the copy's
    tree.SetSelectedItem(nullptr);
    TreeNode* atEnd = clipboard.Paste();
    EXPECT_EQ(atEnd->Parent(), hop);
    EXPECT_EQ(atEnd, hop->ChildAt(2));
    EXPECT_EQ(records(), 3);

    script.UndoFromLog();
    EXPECT_EQ(hop->Children(), 2);
    script.UndoFromLog();
    EXPECT_EQ(together->Children(), 1);
    script.UndoFromLog();
    EXPECT_EQ(children(action1), (QStringList{"Bunny.Move(Forward, 1, more...)", "DoTogether"}));
}

TEST_F(Clipboard, AnAnimationPastedTwiceWithNothingSelectedIsHop_1ThenHop_2) {
    clipboard.Copy(hop);
    TreeNode* first = clipboard.Paste();
    TreeNode* second = clipboard.Paste();
    EXPECT_EQ(first->Text(), "Hop_1 = DoInOrder");
    EXPECT_EQ(first->Key(), "hop_1");
    EXPECT_EQ(second->Text(), "Hop_2 = DoInOrder");
    EXPECT_EQ(second->Key(), "hop_2");
    EXPECT_EQ(children(second), children(hop));
    EXPECT_EQ(script.AnimationNames().Text(), "Action1,Hop,Hop_1,Hop_2");
    // The copy keeps its own name, for the pastes still to come.
    EXPECT_EQ(clipboard.Copied()->Text(), "Hop = DoInOrder");
    EXPECT_EQ(clipboard.Copied()->Key(), "hop");

    script.UndoFromLog();
    EXPECT_EQ(roots(),
              (QStringList{"Action1 = DoInOrder", "Hop = DoInOrder", "Hop_1 = DoInOrder"}));
    EXPECT_EQ(script.AnimationNames().Text(), "Action1,Hop,Hop_1");
}

TEST_F(Clipboard, AnAnimationPastedOnABlockOrLineComesInAsABlockLabelledWithItsName) {
    TreeNode* spin = tree.AddRoot("spin", "Spin = DoInOrder");
    TreeNode* roll = tree.Add(spin, Relation::Child, "", "Bunny.Roll(Left, 1, more...)");
    clipboard.Copy(hop);
    tree.SetSelectedItem(spin);
    TreeNode* first = clipboard.Paste();
    TreeNode* second = clipboard.Paste();
    EXPECT_EQ(children(spin),
              (QStringList{"Bunny.Roll(Left, 1, more...)", "DoInOrder : Hop", "DoInOrder : Hop"}));
    EXPECT_TRUE(first->Key().isEmpty());
    EXPECT_EQ(children(second), children(hop));
    tree.SetSelectedItem(roll);
    EXPECT_EQ(clipboard.Paste()->Previous(), roll);
    EXPECT_EQ(script.AnimationNames().Text(), "Action1,Hop"); // a block is no animation
    EXPECT_EQ(records(), 3);
}

TEST_F(Clipboard, ACutAnimationLeavesTheNamesAndComesBackUnderItsOwnName) {
    tree.SetSelectedItem(hop);
    clipboard.Cut(hop);
    EXPECT_EQ(roots(), QStringList{"Action1 = DoInOrder"});
    EXPECT_EQ(script.AnimationNames().Text(), "Action1");
    EXPECT_EQ(tree.SelectedItem(), nullptr);
    TreeNode* back = clipboard.Paste();
    EXPECT_EQ(back->Text(), "Hop = DoInOrder");
    EXPECT_EQ(back->Key(), "hop");
    EXPECT_EQ(children(back).size(), 2);
    EXPECT_EQ(script.AnimationNames().Text(), "Action1,Hop");
    // Two steps, undone one at a time: the paste, then the cut.
    script.UndoFromLog();
    EXPECT_EQ(tree.RootCount(), 1);
    script.UndoFromLog();
    EXPECT_EQ(roots(), (QStringList{"Action1 = DoInOrder", "Hop = DoInOrder"}));
    EXPECT_EQ(script.AnimationNames().Text(), "Action1,Hop");
}

TEST_F(Clipboard, NothingSelectedToCopyOrNowhereToPasteChangesNothing) {
    clipboard.Copy(move);
    clipboard.Copy(nullptr);
    EXPECT_EQ(clipboard.Copied()->Text(), "Bunny.Move(Forward, 1, more...)");
    tree.Clear();
    EXPECT_EQ(clipboard.Paste(), nullptr);
    EXPECT_EQ(tree.Count(), 0);
    EXPECT_TRUE(script.TreeUndoRecords().IsEmpty());
    EXPECT_FALSE(clipboard.PasteText("Bunny.Move(Forward, 1)").isEmpty());
}

TEST_F(Clipboard, LinesAsTextLoseTheirMarkersAndComeBackAsTheSameScript) {
    EXPECT_EQ(ScriptLinesText(action1), "Action1 = DoInOrder\n"
                                        "\tBunny.Move(Forward, 1)\n"
                                        "\tDoTogether\n"
                                        "\t\tBunny.Turn(Left, 1/4, Duration=2)\n");
    const QString before = ScriptLinesText(action1);
    tree.SetSelectedItem(nullptr);
    EXPECT_EQ(clipboard.PasteText(before), "");
    const TreeNode* pasted = tree.FirstRoot()->LastSibling();
    EXPECT_EQ(pasted->Text(), "Action1_1 = DoInOrder");
    EXPECT_EQ(children(pasted), children(action1));
    EXPECT_EQ(children(pasted->ChildAt(1)), children(together));
    EXPECT_EQ(clipboard.Copied(), nullptr); // text pastes leave the copy alone
    EXPECT_EQ(records(), 1);

    // Keywords in any case and commas without blanks, as people type them.
    EXPECT_EQ(ScriptLineOf("Bunny.Move(forward,2,duration=1/2)"),
              "Bunny.Move(forward, 2, Duration=1/2, more...)");
    EXPECT_EQ(ScriptLineOf("Camera.Wait(1)"), "Camera.Wait(1)");
    EXPECT_EQ(ScriptLineOf("Bunny.Hide()"), "Bunny.Hide(more...)");
    EXPECT_EQ(ScriptLineOf("Spin = dotogether"), "Spin = DoTogether");
    EXPECT_EQ(ScriptLineOf("NotDoInOrder = DoTogether"), "NotDoInOrder = DoTogether");
    EXPECT_EQ(ScriptLineOf("PlaySound(bell.wav)"), "PlaySound(bell.wav)");
}

TEST_F(Clipboard, SeveralLinesAtTheTopComeInOneBlockThatOneUndoTakesAway) {
    tree.SetSelectedItem(move);
    EXPECT_EQ(clipboard.PasteText("  Bunny.Move(Up, 1)\r\n\r\n  Spin = DoInOrder\r\n"
                                  "    Bunny.Turn(Left, 1)\r\n  Camera.Wait(1)\r\n"),
              "");
    TreeNode* block = move->Next();
    EXPECT_EQ(block->Text(), "DoInOrder");
    EXPECT_EQ(children(block),
              (QStringList{"Bunny.Move(Up, 1, more...)", "DoInOrder : Spin", "Camera.Wait(1)"}));
    EXPECT_EQ(script.AnimationNames().Text(), "Action1,Hop");
    script.UndoFromLog();
    EXPECT_EQ(children(action1), (QStringList{"Bunny.Move(Forward, 1, more...)", "DoTogether"}));
}

TEST_F(Clipboard, TextThatIsNotAllScriptLinesIsRefusedWholeWithNothingChanged) {
    clipboard.Copy(move);
    const QString script0 = whole();
    QByteArray bytes(4096, '\0');
    QRandomGenerator random(47);
    for (char& byte : bytes)
        byte = static_cast<char>(random.bounded(256));
    const QString line = QStringLiteral("Bunny.Move(Forward, 1)\n");
    const struct {
        const char* what;
        QString text;
        const char* told;
    } refused[] = {
        {"binary", QString::fromLatin1(bytes), "not"},
        {"a megabyte", line.repeated(50'000), "longer"},
        {"100,000 lines", QStringLiteral("A.Wait(1)\n").repeated(99'999), "more lines"},
        {"a control character", QStringLiteral("Bunny.Move(Forward, 1\a)"), "not text"},
        {"an unknown command", QStringLiteral("Bunny.Fly(Up, 1)"), "Line 1"},
        {"Python hidden in a value",
         QStringLiteral("Bunny.Move(Forward, __import__('os').system('x'))"), "Line 1"},
        {"a missing value", QStringLiteral("Bunny.Move(Forward)"), "Line 1"},
        {"an unknown keyword", QStringLiteral("Bunny.Move(Forward, 1, Colour=Red)"), "Line 1"},
        {"a line under a line", QStringLiteral("Bunny.Move(Up, 1)\n\tBunny.Move(Down, 1)"),
         "not a DoInOrder"},
        {"a step back to no level",
         QStringLiteral("DoInOrder\n\t\tCamera.Wait(1)\n\tCamera.Wait(2)"), "not indented"},
        {"less than the first line", QStringLiteral("  Camera.Wait(1)\nCamera.Wait(2)"),
         "not indented"},
        {"too deep",
         [] {
             QString deep;
             for (int level = 0; level < 150; ++level)
                 deep += QString(level, u'\t') + QStringLiteral("DoInOrder\n");
             return deep;
         }(),
         "deeper"},
        {"blanks only", QStringLiteral(" \n\t\n"), "no lines"},
    };
    for (const auto& text : refused) {
        const QString told = clipboard.PasteText(text.text);
        EXPECT_TRUE(told.contains(QString::fromLatin1(text.told)))
            << text.what << ": " << told.toStdString();
        EXPECT_TRUE(told.endsWith("Nothing was pasted.")) << text.what;
        EXPECT_EQ(whole(), script0) << text.what;
    }
    EXPECT_TRUE(script.TreeUndoRecords().IsEmpty());
    EXPECT_EQ(clipboard.Copied()->Text(), "Bunny.Move(Forward, 1, more...)");
}
