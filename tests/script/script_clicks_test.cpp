#include "script/script_clicks.h"
#include "script/script_model.h"
#include "script_test_support.h"
#include "support/qt_print.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;
using vessa::testing::FakeTreeGeometry;
using Kind = ScriptRequest::Kind;

namespace {

struct Clicks : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    TreeControl& tree = script.TreeView1();
    FakeTreeGeometry geometry{tree};
    ScriptClicks clicks{script};
    TreeNode* action1 = tree.FirstRoot();

    TreeNode* Line(const QString& text) {
        tree.SetExpanded(action1, true);
        return tree.Add(action1, Relation::Child, "", text);
    }

    ScriptRequest LeftAt(const TreeNode* node, int offset) {
        return clicks.TreeView1_MouseUp(Qt::LeftButton, geometry.AtCharacter(node, offset),
                                        geometry);
    }

    ScriptRequest RightAt(const TreeNode* node, int offset) {
        return clicks.TreeView1_MouseUp(Qt::RightButton, geometry.AtCharacter(node, offset),
                                        geometry);
    }

    static QStringList Visible(const ScriptRequest& menu) {
        QStringList captions;
        for (const MenuRow& row : menu.Rows)
            if (row.Visible)
                captions << row.Caption;
        return captions;
    }
};

} // namespace

TEST(RichCharNumOver, FindsTheCharacterUnderEachGlyphOfTheTreesFont) {
    const QFont font("DejaVu Sans", 12);
    const QString text = "Bunny.Turn(Left, 1/4, Duration=2, more...)";
    const QFontMetrics metrics(font);
    const QRect rect(40, 0, metrics.horizontalAdvance(text), 20);
    for (int offset = 0; offset < text.size(); ++offset) {
        const int middle = rect.left() + metrics.horizontalAdvance(text.left(offset)) +
                           metrics.horizontalAdvance(text.at(offset)) / 2;
        EXPECT_EQ(RichCharNumOver(text, font, rect, QPoint(middle, 7)), offset);
    }
    EXPECT_EQ(RichCharNumOver(text, font, rect, QPoint(5, 7)), 0);
}

TEST_F(Clicks, ALeftClickOpensWhatThePieceUnderThePointerAsksFor) {
    TreeNode* line = Line("Camera.PointAt(Bunny, Duration=2, more...)");
    const ScriptRequest object = LeftAt(line, 2);
    EXPECT_EQ(object.What, Kind::ObjectPicker);
    EXPECT_EQ(object.Value, "Camera");
    EXPECT_EQ(script.Parse().SelectedNode.Get(), line);
    EXPECT_EQ(LeftAt(line, 9).What, Kind::ActionMenu);
    EXPECT_EQ(LeftAt(line, 17).Value, "Bunny");
    const ScriptRequest duration = LeftAt(line, 30);
    EXPECT_EQ(duration.What, Kind::StarMenuRow);
    EXPECT_EQ(duration.Number, 17);
    const ScriptRequest more = LeftAt(line, 36);
    EXPECT_EQ(more.What, Kind::StarMenuAll);
    EXPECT_EQ(more.Number, 5);
    EXPECT_EQ(more.TreePoint, geometry.AtCharacter(line, 36));
    EXPECT_DOUBLE_EQ(script.LastClickX, more.TreePoint.x() * 15.0);
}

TEST_F(Clicks, BlocksSoundsAndPythonLinesHaveTheirOwnEditors) {
    const ScriptRequest name = LeftAt(action1, 3);
    EXPECT_EQ(name.What, Kind::TextEditor);
    EXPECT_EQ(name.Value, "Action1");
    EXPECT_EQ(name.Title, "(Re)Name Animation");
    EXPECT_EQ(name.Prompt, "Type a name for this animation:");
    EXPECT_EQ(LeftAt(Line("Walk : DoTogether"), 2).Value, "");
    EXPECT_EQ(LeftAt(Line("PlaySound(bell.wav)"), 12).What, Kind::SoundList);

    struct EditWatch : TreeObserver {
        TreeNode* edited = nullptr;
        void LabelEditRequested(TreeNode* node) override { edited = node; }
    } watch;
    tree.AddObserver(&watch);
    TreeNode* python = Line("print 'hi'");
    tree.SetTag(python, "1");
    EXPECT_EQ(LeftAt(python, 3).What, Kind::None);
    EXPECT_EQ(watch.edited, python);
    tree.RemoveObserver(&watch);
}

TEST_F(Clicks, ALineThatDoesNotParseStaysAsItIsAndTheUserIsToldWhichAndWhatToDo) {
    // No dot, an unknown command, an unknown keyword: a click anywhere says so.
    TreeNode* unreadable = nullptr;
    for (const QString& text :
         {QString("Camera Move(Forward, 1, more...)"), QString("Camera.Fly(Forward, 1, more...)"),
          QString("Camera.Move(Forward, 1, Speed=2, more...)")}) {
        TreeNode* line = Line(text);
        unreadable = line;
        for (int offset = 0; offset < text.size(); ++offset) {
            const ScriptRequest told = LeftAt(line, offset);
            EXPECT_EQ(told.What, Kind::Message) << text.toStdString() << offset;
            EXPECT_TRUE(told.Value.contains(text)) << told.Value.toStdString();
        }
        EXPECT_EQ(line->Text(), text);
    }
    EXPECT_TRUE(
        LeftAt(unreadable, 3).Value.contains("\"Type Programming Language Code (Python)\""));
    // A value with a blank: the piece behind the blank is no value at all.
    TreeNode* blank = Line("Camera.Move(Forward, 1 2, more...)");
    EXPECT_EQ(LeftAt(blank, 23).What, Kind::Message);
    EXPECT_EQ(RightAt(blank, 23).Rows[ScriptClicks::RemoveValue].Visible, false);
    EXPECT_TRUE(script.TreeUndoRecords().IsEmpty());
}

TEST_F(Clicks, APressSelectsAnyNodeButArmsADragForALineOnly) {
    TreeNode* line = Line("Camera.Wait(1)");
    tree.SetSelectedItem(nullptr);
    clicks.TreeView1_MouseDown(Qt::LeftButton, geometry.AtCharacter(action1, 1), geometry);
    EXPECT_EQ(script.DragNode.Get(), action1);
    EXPECT_EQ(tree.SelectedItem(), action1);
    EXPECT_EQ(script.DragButton, Qt::NoButton);
    clicks.TreeView1_MouseDown(Qt::LeftButton, geometry.AtCharacter(line, 1), geometry);
    EXPECT_EQ(script.DragNode.Get(), line);
    EXPECT_EQ(script.DragButton, Qt::LeftButton);
    EXPECT_EQ(tree.SelectedItem(), line);
    clicks.TreeView1_MouseDown(Qt::LeftButton, QPoint(5, 500), geometry);
    EXPECT_EQ(script.DragNode.Get(), nullptr);
}

TEST_F(Clicks, TheNodeMenuShowsTheRowsThatFitTheNode) {
    const ScriptRequest block = RightAt(action1, 2);
    EXPECT_EQ(block.What, Kind::NodeMenu);
    EXPECT_EQ(Visible(block),
              QStringList({"Perform this Line", "-", "Cut Line", "Copy Line", "Delete Line", "-",
                           "Change to DoTogether", "(Re)Name Line..."}));
    EXPECT_EQ(tree.SelectedItem(), action1);

    EXPECT_EQ(Visible(RightAt(Line("PlaySound(bell.wav)"), 3)),
              QStringList({"Perform this Line", "-", "Cut Line", "Copy Line", "Delete Line", "-",
                           "Type Programming Language Code (Python)"}));

    TreeNode* line = Line("Camera.Move(Forward, 1, Duration=2, more...)");
    const ScriptRequest onDuration = RightAt(line, 28);
    EXPECT_EQ(onDuration.Rows[ScriptClicks::RemoveValue].Caption, "Remove Duration");
    EXPECT_TRUE(onDuration.Rows[ScriptClicks::RemoveValue].Visible);
    EXPECT_TRUE(onDuration.Rows[ScriptClicks::RemoveValue].Enabled);
    // An essential value cannot be removed; the object, command and marker offer nothing.
    const ScriptRequest onDistance = RightAt(line, 21);
    EXPECT_EQ(onDistance.Rows[ScriptClicks::RemoveValue].Caption, "Remove Value");
    EXPECT_FALSE(onDistance.Rows[ScriptClicks::RemoveValue].Enabled);
    EXPECT_FALSE(RightAt(line, 2).Rows[ScriptClicks::RemoveValue].Visible);
    EXPECT_FALSE(RightAt(line, 38).Rows[ScriptClicks::RemoveValue].Visible);

    const ScriptRequest blank = clicks.TreeView1_MouseUp(Qt::RightButton, {5, 900}, geometry);
    EXPECT_EQ(blank.What, Kind::BlankMenu);
    EXPECT_EQ(Visible(blank), QStringList({"Add New Action", "Add Python Code Box"}));
}

TEST_F(Clicks, NodeMenuRowsChangeTheLineOrPassTheRequestOn) {
    TreeNode* line = Line("Camera.Move(Forward, 1, Duration=2, more...)");
    RightAt(line, 28);
    EXPECT_EQ(clicks.mnuNodeRightB_Click(ScriptClicks::RemoveValue).What, Kind::None);
    EXPECT_EQ(line->Text(), "Camera.Move(Forward, 1, more...)");

    RightAt(action1, 2);
    clicks.mnuNodeRightB_Click(ScriptClicks::ChangeBlock);
    EXPECT_EQ(action1->Text(), "Action1 = DoTogether");
    EXPECT_EQ(line->Image(), 9);
    EXPECT_EQ(clicks.mnuNodeRightB_Click(ScriptClicks::RenameLine).Value, "Action1");

    const ScriptRequest cut = clicks.mnuNodeRightB_Click(ScriptClicks::CutLine);
    EXPECT_EQ(cut.What, Kind::NodeCommand);
    EXPECT_EQ(cut.Number, ScriptClicks::CutLine);

    // Perform this Line asks for the Python of what was clicked and all below it, blocks
    // by their bare word.
    TreeNode* hop = tree.Add(action1, Relation::Child, "", "DoInOrder : Hop");
    tree.Add(hop, Relation::Child, "", "Camera.Turn(Left, 1/4, more...)");
    RightAt(line, 2);
    const ScriptRequest oneLine = clicks.mnuNodeRightB_Click(ScriptClicks::PerformLine);
    EXPECT_EQ(oneLine.What, Kind::PerformLine);
    EXPECT_EQ(oneLine.Value, "Camera.Move(Forward, 1),\r\n");
    TreeNode* python = tree.Add(action1, Relation::Child, "", "x = 5");
    tree.SetTag(python, "1");
    RightAt(python, 1);
    EXPECT_EQ(clicks.mnuNodeRightB_Click(ScriptClicks::PerformLine).Value, "x = 5\r\n");
    tree.Remove(python->Index());
    RightAt(action1, 2);
    EXPECT_EQ(clicks.mnuNodeRightB_Click(ScriptClicks::PerformLine).Value,
              "DoTogether(\r\n"
              "\tCamera.Move(Forward, 1),\r\n"
              "\tDoInOrder(\r\n"
              "\t\tCamera.Turn(Left, 1/4),\r\n"
              "\t),\r\n"
              ")\r\n");
    tree.Remove(hop->Index());

    script.UndoFromLog();
    script.UndoFromLog();
    EXPECT_EQ(action1->Text(), "Action1 = DoInOrder");
    EXPECT_EQ(line->Text(), "Camera.Move(Forward, 1, Duration=2, more...)");

    EXPECT_EQ(clicks.mnuBlankRightB_Click(ScriptClicks::AddNewAction).What, Kind::None);
    EXPECT_EQ(tree.RootCount(), 2);
    EXPECT_EQ(clicks.mnuBlankRightB_Click(ScriptClicks::AddCodeBox).What, Kind::BlankCommand);
}

TEST_F(Clicks, TheCommandLinesTreeOpensTheSameEditorsForItsOneLine) {
    TreeControl& commandLine = script.CommandLineTreeview();
    FakeTreeGeometry commandGeometry(commandLine);
    TreeNode* line = commandLine.FirstRoot();
    const ScriptRequest request = clicks.CommandLineTreeview_MouseUp(
        Qt::LeftButton, commandGeometry.AtCharacter(line, 13), commandGeometry);
    EXPECT_EQ(request.What, Kind::StarMenuRow);
    EXPECT_EQ(request.Number, 5);
    EXPECT_EQ(script.Parse().SelectedNode.Get(), line);
    script.UpdateNode(line, "Up");
    EXPECT_EQ(line->Text(), "Camera.Move(Up, 1, more...)");
    EXPECT_TRUE(script.TreeUndoRecords().IsEmpty());
}

// Whatever a user types into a node, clicks and menu rows never fail out of the script.
TEST_F(Clicks, AnyTextInANodeSurvivesEveryClickAndMenuRow) {
    const QStringList tokens = {"Camera",  ".",         "Move", "Hide", "Wait", "(",
                                ")",       ", ",        ",",    " ",    "=",    "Duration",
                                "more...", "DoInOrder", "1",    "x"};
    QRandomGenerator random(99);
    TreeNode* line = Line("");
    for (int round = 0; round < 300; ++round) {
        QString text;
        for (int n = random.bounded(1, 10); n > 0; --n)
            text += tokens[random.bounded(int(tokens.size()))];
        tree.SetText(line, text);
        for (int offset = 0; offset < text.size(); ++offset) {
            LeftAt(line, offset);
            const ScriptRequest menu = RightAt(line, offset);
            for (int row : {int(ScriptClicks::RemoveValue), int(ScriptClicks::ChangeBlock)})
                if (menu.Rows[size_t(row)].Visible && menu.Rows[size_t(row)].Enabled) {
                    clicks.mnuNodeRightB_Click(row);
                    script.UndoFromLog();
                    ASSERT_EQ(line->Text(), text);
                }
        }
    }
}
