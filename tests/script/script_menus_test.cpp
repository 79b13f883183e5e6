#include "script/menu_tables.h"
#include "script/script_clicks.h"
#include "script/script_menus.h"
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

// The facts the engine gives of a model with a camera in the scene: drawn lit, as lines,
// with its texture, and not first class.
QVariantList modelFacts() {
    return {true, "Bunny", "model", "7", true, false, -1, 64, 1};
}

struct Menus : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    TreeControl& tree = script.TreeView1();
    FakeTreeGeometry geometry{tree};
    ScriptClicks clicks{script};
    ScriptMenus menus{script};
    TreeNode* action1 = tree.FirstRoot();

    Menus() {
        TreeNode* scene = host.objects.AddRoot("", "Scene");
        host.objects.SetTag(scene, "Scene");
        for (const char* name : {"Bunny", "Sun"})
            host.objects.SetTag(host.objects.Add(scene, Relation::Child, "", name), name);
        host.facts = modelFacts();
    }

    TreeNode* Line(const QString& text) {
        tree.SetExpanded(action1, true);
        return tree.Add(action1, Relation::Child, "", text);
    }

    // A left click on the first character of the piece of node's line that begins with
    // piece, and the rows of the menu it asks for.
    std::vector<MenuRow> ClickOn(const TreeNode* node, const QString& piece) {
        return ClickAt(node, static_cast<int>(node->Text().indexOf(piece)));
    }

    std::vector<MenuRow> ClickAt(const TreeNode* node, int offset) {
        last =
            clicks.TreeView1_MouseUp(Qt::LeftButton, geometry.AtCharacter(node, offset), geometry);
        return menus.menuRows(last);
    }

    std::vector<MenuRow> ObjectMenu(const QString& object) {
        ScriptRequest request;
        request.What = Kind::ObjectMenu;
        request.Value = object;
        return menus.menuRows(request);
    }

    // Goes down the rows by their captions and chooses the last one.
    static ScriptRequest Choose(const std::vector<MenuRow>& rows, const QStringList& path) {
        const std::vector<MenuRow>* level = &rows;
        for (qsizetype step = 0; step < path.size(); ++step) {
            const auto row = std::find_if(level->begin(), level->end(), [&](const MenuRow& r) {
                return r.Caption == path[step] && r.Visible;
            });
            if (row == level->end()) {
                ADD_FAILURE() << "no row " << path[step].toStdString();
                return {};
            }
            if (step + 1 == path.size()) {
                EXPECT_TRUE(row->Chosen) << path[step].toStdString();
                return row->Chosen ? row->Chosen() : ScriptRequest();
            }
            level = &row->Rows;
        }
        return {};
    }

    static const MenuRow* Find(const std::vector<MenuRow>& rows, const QString& caption) {
        for (const MenuRow& row : rows) {
            if (row.Caption == caption)
                return &row;
            if (const MenuRow* below = Find(row.Rows, caption))
                return below;
        }
        return nullptr;
    }

    static QStringList Visible(const std::vector<MenuRow>& rows) {
        QStringList captions;
        for (const MenuRow& row : rows)
            if (row.Visible)
                captions << row.Caption;
        return captions;
    }

    // OK in the text box with text; the prompt it shows afterwards.
    EditorAnswer Type(const ScriptRequest& editor, const QString& text) {
        EXPECT_EQ(editor.What, Kind::TextEditor);
        menus.textBox().BringUpTextWidget(editor);
        return menus.textBox().OKButton_Click(text, editor.Prompt);
    }

    // The script's lines by depth; whether a block is open is no change of it.
    std::string Whole() {
        QString text;
        const std::function<void(const TreeNode*, int)> add = [&](const TreeNode* node, int depth) {
            for (; node; node = node->Next()) {
                text += QString(depth, u' ') + node->Text() + u'\n';
                add(node->Child(), depth + 1);
            }
        };
        add(tree.FirstRoot(), 0);
        return text.toStdString();
    }

    ScriptRequest last;
};

const QStringList kCommands = {"Move",     "Turn", "Roll", "Resize", "PointAt", "Destroy",
                               "SetColor", "Hide", "Show", "Wait",   "StandUp"};

} // namespace

TEST_F(Menus, AnObjectsMenuOnTheAnimationsTabOffersEveryCommandAndTheRowsThatActOnIt) {
    const std::vector<MenuRow> rows = ObjectMenu("Bunny");
    EXPECT_EQ(host.asked, QStringList{"Bunny"});
    QStringList expected = QStringList{"Bunny", "-"} + kCommands;
    expected << "-"
             << "Paint me..."
             << "&Point Camera At"
             << "&Get a Good Look At"
             << "&Copy"
             << "&Rename"
             << "Show Statistics"
             << "IsFirstClass"
             << "Display Style";
    EXPECT_EQ(Visible(rows), expected);
    EXPECT_TRUE(rows[0].Default);
    // How the model is drawn shows as checks.
    for (const auto& [row, checked] :
         std::vector<std::pair<QString, bool>>{{"Solid", false},
                                               {"Lines", true},
                                               {"Points", false},
                                               {"Lit", true},
                                               {"UnLit", false},
                                               {"On", true},
                                               {"Off", false},
                                               {"IsFirstClass", false}})
        EXPECT_EQ(Find(rows, row)->Checked, checked) << row.toStdString();

    // Painting is the main window's: the choice asks for it.
    const ScriptRequest paint = Choose(rows, {"Paint me..."});
    EXPECT_EQ(paint.What, ScriptRequest::Kind::PaintObject);
    EXPECT_EQ(paint.Value, "Bunny");
    Choose(rows, {"Display Style", "Filling Style", "Solid"});
    Choose(rows, {"IsFirstClass"});
    EXPECT_EQ(host.statements,
              (QStringList{"Bunny.SetFillingStyle(Solid)", "Bunny.becomefirstclass()"}));
    EXPECT_EQ(host.failures[0], "ActionMenu:ObjectSolidMenuButton_Click: Error on call to python.");
}

TEST_F(Menus, OnTheOpeningSceneOnlyAModelIsMovedAndAnythingTakesAColour) {
    host.openingScene = true;
    EXPECT_EQ(Visible(ObjectMenu("Bunny")).mid(2, 11),
              (QStringList{"Move", "Turn", "Roll", "Resize", "PointAt", "Destroy", "SetColor",
                           "Hide", "Show", "StandUp", "-"}));
    // A light without a camera in the scene.
    host.facts = {false, "Sun", "light", "3", false, false, 0, 128, 0};
    const std::vector<MenuRow> rows = ObjectMenu("Sun");
    EXPECT_EQ(Visible(rows).mid(0, 5),
              (QStringList{"Sun", "-", "SetColor", "-", "&Point Camera At"}))
        << "only a model is painted";
    for (const char* row :
         {"&Point Camera At", "&Get a Good Look At", "&Copy", "IsFirstClass", "Display Style"})
        EXPECT_FALSE(Find(rows, row)->Enabled) << row;
    EXPECT_TRUE(Find(rows, "&Rename")->Enabled);
}

TEST_F(Menus, CommandsChosenOnTheOpeningSceneRunAtOnceAndOtherAsksForTheValue) {
    host.openingScene = true;
    Choose(ObjectMenu("Bunny"), {"Move", "Forward", "1 (meter)"});
    Choose(ObjectMenu("Bunny"), {"Resize", "FrontToBack", "1/2 (Half as Deep)"});
    Choose(ObjectMenu("Bunny"), {"Hide"});
    EXPECT_EQ(host.statements, (QStringList{"Bunny.Move(Forward, 1)",
                                            "Bunny.Resize(FrontToBack, 1/2)", "Bunny.Hide()"}));
    // This handler reports in the words of another.
    EXPECT_EQ(host.failures[0],
              "ActionMenu:ObjectGoodLookMenuButton_Click: Error on call to python.");

    const ScriptRequest other = Choose(ObjectMenu("Bunny"), {"Turn", "Left", "Other..."});
    EXPECT_TRUE(other.OneShot);
    EXPECT_EQ(other.Prompt, "Type New Amount:");
    const EditorAnswer refused = Type(other, "a lot");
    EXPECT_FALSE(refused.Close);
    EXPECT_EQ(refused.Label, "Invalid Number\nType New Amount:");
    EXPECT_EQ(host.statements.size(), 3);
    EXPECT_TRUE(menus.textBox().OKButton_Click("3", refused.Label).Close);
    EXPECT_EQ(host.statements.last(), "Bunny.Turn(Left, 3)");
    EXPECT_EQ(menus.state().History.entries(), QStringList{"3"});
    EXPECT_FALSE(menus.state().gOneShots);

    // An object can't point at itself.
    const ScriptRequest picker = Choose(ObjectMenu("Bunny"), {"PointAt", "Other Object..."});
    ASSERT_EQ(picker.What, Kind::ObjectPicker);
    menus.picker().StartTreeWidget(picker);
    EXPECT_FALSE(menus.picker().pickByName("bunny").Close);
    EXPECT_FALSE(menus.picker().pickByName("Moon").Close);
    EXPECT_TRUE(menus.picker().pickByName("Sun").Close);
    EXPECT_EQ(host.statements.last(), "Bunny.PointAt(Sun)");
}

TEST_F(Menus, TheObjectsMenuOnTheAnimationsTabWritesANewLineThatOneUndoTakesAway) {
    TreeNode* first = Line("Camera.Turn(Left, 1/4, more...)");
    tree.SetSelectedItem(first);
    const std::string before = Whole();
    Choose(ObjectMenu("Bunny"), {"Move", "Forward", "1 (meter)"});
    ASSERT_EQ(action1->Children(), 2);
    EXPECT_EQ(first->Next()->Text(), "Bunny.Move(Forward, 1, more...)");
    // The next line follows it.
    Choose(ObjectMenu("Bunny"), {"SetColor", "Blue"});
    EXPECT_EQ(action1->Child()->LastSibling()->Text(), "Bunny.SetColor(Blue, more...)");
    script.UndoFromLog();
    script.UndoFromLog();
    EXPECT_EQ(Whole(), before);
    EXPECT_TRUE(script.TreeUndoRecords().IsEmpty());
}

TEST_F(Menus, TheCascadeOnALinesCommandRewritesTheLineAndKeepsOptionalValuesOnlyForTheSameCommand) {
    TreeNode* turn = Line("Camera.Turn(Left, 1/4, Duration=2, more...)");
    Choose(ClickOn(turn, "Turn"), {"Move", "Left", "2 (meters)"});
    EXPECT_EQ(turn->Text(), "Camera.Move(Left, 2, more...)");

    TreeNode* move = Line("Camera.Move(Back, 1, Duration=2, more...)");
    Choose(ClickOn(move, "Move"), {"Move", "Up", "1/2 (meter)"});
    EXPECT_EQ(move->Text(), "Camera.Move(Up, 1/2, Duration=2, more...)");

    TreeNode* resize = Line("Camera.Resize(LeftToRight, 2, more...)");
    Choose(ClickOn(resize, "Resize"), {"Resize", "FrontToBack", "1/2 (Half as Deep)"});
    EXPECT_EQ(resize->Text(), "Camera.Resize(FrontToBack, 1/2, more...)");
    EXPECT_EQ(host.statements, QStringList{}); // nothing ran
}

// Every value of every kind's menu, chosen on a line with a parameter of that kind,
// stands in the line where the click was and leaves a line that reads again.
TEST_F(Menus, EveryValueOfEveryKindGoesIntoALineThatReadsAgain) {
    const std::vector<std::pair<int, QString>> lines = {
        {4, "Camera.Resize(LeftToRight, 2, more...)"},
        {5, "Camera.Move(Forward, 1, more...)"},
        {6, "Camera.Turn(Left, 1/4, more...)"},
        {7, "Camera.Roll(Left, 1/4, more...)"},
        {8, "Camera.Move(Forward, 1, more...)"},
        {9, "Camera.Turn(Left, 1/4, more...)"},
        {10, "Camera.Resize(LeftToRight, 2, more...)"},
        {12, "Camera.SetColor(Red, more...)"},
        {17, "Camera.Move(Forward, 1, Duration=2, more...)"},
        {19, "Camera.Move(Forward, 1, Style=Gently, more...)"},
    };
    for (const auto& [kind, text] : lines) {
        TreeNode* line = Line(text);
        const int at = text.indexOf(u'(') + 1;
        // The kind's value stands first, or after its keyword.
        const int offset = text.contains(u'=')                    ? text.indexOf(u'=') + 1
                           : kind == 8 || kind == 9 || kind == 10 ? text.indexOf(u',') + 2
                                                                  : at;
        for (const MenuRow& row : menus::starValueRows(kind, "LeftToRight", {})) {
            if (!row.Visible || row.IsSeparator() || menus::opensEditor(row.Caption))
                continue;
            tree.SetText(line, text);
            last = clicks.TreeView1_MouseUp(Qt::LeftButton, geometry.AtCharacter(line, offset),
                                            geometry);
            ASSERT_EQ(last.What, Kind::StarMenuRow) << text.toStdString();
            ASSERT_EQ(last.Number, kind);
            Choose(menus.menuRows(last), {row.Caption});
            const QString value = menus::valueOfCaption(row.Caption);
            EXPECT_EQ(line->Text().mid(offset, value.size()), value) << line->Text().toStdString();
            ParseState again;
            EXPECT_NO_THROW(ParseString(again, line->Text(), 0)) << line->Text().toStdString();
        }
    }
}

TEST_F(Menus, NumberMenusOfferOtherAndTheNumbersTypedNewestFirst) {
    const auto numbers = [&](int kind) {
        QStringList shown;
        for (const MenuRow& row :
             menus::starValueRows(kind, "InAllDirections", menus.state().History))
            if (row.Visible)
                shown << row.Caption;
        return shown;
    };
    EXPECT_EQ(numbers(8), (QStringList{"1/2 (meter)", "1 (meter)", "2 (meters)", "-", "Other..."}));
    EXPECT_EQ(numbers(10).mid(0, 3), (QStringList{"1/4", "1/2 (Half as Big)", "2 (Twice as Big)"}));
    for (const char* typed : {"3", "4", "5", "3", "6", "7", "8"})
        menus.state().History.add(typed);
    const QStringList history = {"-", "8", "7", "6", "3", "5"};
    EXPECT_EQ(numbers(17).mid(5), QStringList{"Other..."} + history);
    EXPECT_EQ(numbers(9).mid(5), QStringList{"Other..."} + history);
    // Speed and volume have no history.
    EXPECT_EQ(numbers(21), (QStringList{"0", "1/4", "1/2", "1", "-", "Other..."}));

    TreeNode* move = Line("Camera.Move(Forward, 1, more...)");
    Choose(ClickOn(move, "1"), {"8"});
    EXPECT_EQ(move->Text(), "Camera.Move(Forward, 8, more...)");
}

TEST_F(Menus, MoreShowsTheOptionalParametersAndAValueChosenThereTakesItsPlace) {
    TreeNode* move = Line("Camera.Move(Forward, 1, Style=Abruptly, more...)");
    const std::vector<MenuRow> more = ClickOn(move, "more...");
    EXPECT_EQ(Visible(more), (QStringList{"AsSeenBy", "Duration", "Style", "-", "Show All..."}));
    Choose(more, {"Duration", "2 (seconds)"});
    EXPECT_EQ(move->Text(), "Camera.Move(Forward, 1, Duration=2, Style=Abruptly, more...)");
    Choose(ClickOn(move, "more..."), {"Style", "BeginGently-EndAbruptly"});
    EXPECT_EQ(move->Text(),
              "Camera.Move(Forward, 1, Duration=2, Style=BeginGently-EndAbruptly, more...)");
}

TEST_F(Menus, LikeRubberNoTakesTheFlagOffAndLeavesALineWithoutItAsItWas) {
    TreeNode* line = Line("Camera.Move(Forward, 1, more...)");
    const QString text = line->Text();
    const std::vector<MenuRow> more = ClickOn(line, "more...");
    if (const MenuRow* rubber = Find(more, "LikeRubber")) {
        Choose(rubber->Rows, {"No"});
        EXPECT_EQ(line->Text(), text);
    }
    TreeNode* resize = Line("Camera.Resize(LeftToRight, 2, LikeRubber, more...)");
    Choose(ClickOn(resize, "LikeRubber"), {"No"});
    EXPECT_EQ(resize->Text(), "Camera.Resize(LeftToRight, 2, more...)");
    EXPECT_EQ(line->Text(), text);
}

TEST_F(Menus, AValueThatDoesNotFitItsKindIsRefusedInWordsAndTheLineStays) {
    TreeNode* move = Line("Camera.Move(Forward, 1, more...)");
    const ScriptRequest other = Choose(ClickOn(move, "1"), {"Other..."});
    EXPECT_EQ(other.Prompt, "Type New Distance:");
    for (const char* bad : {"far", "1.2.3", "-1", "1/", "/2"}) {
        const EditorAnswer answer = Type(other, bad);
        EXPECT_FALSE(answer.Close) << bad;
        EXPECT_TRUE(answer.Label.startsWith("Invalid Number\n")) << bad;
        EXPECT_EQ(move->Text(), "Camera.Move(Forward, 1, more...)");
    }
    // A second refusal does not stack the same message.
    const EditorAnswer first = Type(other, "far");
    EXPECT_EQ(menus.textBox().OKButton_Click("far", first.Label).Label, first.Label);
    EXPECT_TRUE(Type(other, "0.25").Close);
    EXPECT_EQ(move->Text(), "Camera.Move(Forward, 0.25, more...)");
    EXPECT_EQ(menus.state().History.entries(), QStringList{"0.25"});
    // An empty text closes and changes nothing.
    EXPECT_TRUE(Type(other, "").Close);
    EXPECT_EQ(move->Text(), "Camera.Move(Forward, 0.25, more...)");

    // An object the scene does not have.
    TreeNode* point = Line("Camera.PointAt(Bunny, more...)");
    ClickOn(point, "Bunny");
    const ScriptRequest picker = last;
    ASSERT_EQ(picker.What, Kind::ObjectPicker);
    menus.picker().StartTreeWidget(picker);
    const EditorAnswer unknown = menus.picker().pickByName("Moon");
    EXPECT_FALSE(unknown.Close);
    EXPECT_EQ(unknown.Label, "There is no object called Moon in the scene.");
    EXPECT_EQ(point->Text(), "Camera.PointAt(Bunny, more...)");
    EXPECT_TRUE(menus.picker().pickByName("sun").Close);
    EXPECT_EQ(point->Text(), "Camera.PointAt(Sun, more...)");
}

TEST_F(Menus, BlockNamesTakeLettersDigitsAndBlanksAndAnAnimationNameOnlyOnce) {
    TreeNode* block = Line("DoTogether");
    TreeNode* action2 = script.AddNewAnimation();
    script.Parse().SelectedNode = NodeRef::To(tree, block);
    ScriptRequest name;
    name.What = Kind::TextEditor;
    const EditorAnswer bad = Type(name, "my_hop");
    EXPECT_EQ(bad.Label, "Invalid Name: Use only letters and numbers\n");
    EXPECT_TRUE(Type(name, "Hop 2").Close);
    EXPECT_EQ(block->Text(), "Hop 2 : DoTogether");
    script.Parse().SelectedNode = NodeRef::To(tree, action2);
    EXPECT_EQ(Type(name, "ACTION1").Label, "Invalid Name: Already used\n");
    EXPECT_TRUE(Type(name, "Walk").Close);
    EXPECT_EQ(action2->Text(), "Walk = DoInOrder");
}

// Random choices from the menus and the editors on random lines, then as many undos as
// records: the script reads as before.
TEST_F(Menus, AnyRunOfMenuAndEditorChangesIsUndoneToTheSameScript) {
    const QStringList texts = {"Camera.Move(Forward, 1, Duration=2, more...)",
                               "Bunny.Turn(Left, 1/4, more...)",
                               "Camera.Resize(LeftToRight, 2, LikeRubber, more...)",
                               "Camera.SetColor(Red, more...)", "Hop : DoTogether"};
    for (const QString& text : texts)
        Line(text);
    QRandomGenerator random(11);
    int changedRuns = 0;
    for (int run = 0; run < 60; ++run) {
        const std::string before = Whole();
        const int steps = random.bounded(1, 12);
        for (int step = 0; step < steps; ++step) {
            TreeNode* line = action1->ChildAt(random.bounded(action1->Children()));
            const QString text = line->Text();
            switch (IsBlock(text) ? 3 : random.bounded(4)) {
            case 0: { // a command and its values from the cascade
                std::vector<MenuRow> rows = ClickAt(line, text.indexOf(u'.') + 1);
                const MenuRow& command = rows[random.bounded(static_cast<int>(rows.size()))];
                QStringList path{command.Caption};
                const MenuRow* level = &command;
                while (!level->Rows.empty()) {
                    std::vector<const MenuRow*> shown;
                    for (const MenuRow& row : level->Rows)
                        if (row.Visible && !row.IsSeparator() && !menus::opensEditor(row.Caption))
                            shown.push_back(&row);
                    if (shown.empty())
                        break;
                    level = shown[random.bounded(static_cast<int>(shown.size()))];
                    path << level->Caption;
                }
                if (!level->Rows.empty())
                    break; // only an editor's row below
                Choose(rows, path);
                break;
            }
            case 1: { // a value of the second parameter, or one typed
                std::vector<MenuRow> rows = ClickAt(line, text.indexOf(u',') + 2);
                if (rows.empty())
                    break;
                const MenuRow& row = rows[random.bounded(static_cast<int>(rows.size()))];
                if (row.IsSeparator() || !row.Visible || !row.Chosen)
                    break;
                const ScriptRequest editor = row.Chosen();
                if (editor.What == Kind::TextEditor)
                    Type(editor, random.bounded(2) ? QString::number(random.bounded(1, 9))
                                                   : QStringLiteral("x"));
                break;
            }
            case 2: { // a value behind "more..."
                const std::vector<MenuRow> more = ClickOn(line, "more...");
                if (more.empty() || more[0].Rows.empty())
                    break;
                const MenuRow& value = more[0].Rows[0];
                if (value.Chosen && !menus::opensEditor(value.Caption))
                    value.Chosen();
                break;
            }
            default: { // the object's menu adds a line
                tree.SetSelectedItem(line);
                Choose(ObjectMenu("Bunny"), {"Move", "Back", "2 (meters)"});
                break;
            }
            }
        }
        changedRuns += Whole() != before;
        while (!script.TreeUndoRecords().IsEmpty())
            script.UndoFromLog();
        ASSERT_EQ(Whole(), before) << "run " << run;
    }
    EXPECT_GT(changedRuns, 40);
    EXPECT_EQ(host.statements, QStringList{});
}
