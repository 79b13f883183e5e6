#include "world/world_script_file.h"

#include "script/script_icons.h"
#include "world/script_fixture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <random>

using namespace vessa;
using namespace vessa::testing;

// world_script.tv written and read back: the same tree, rows and code, the forms older
// worlds hold, and files that are damaged or not ours, refused whole.

namespace {

// Everything a node shows, one line a node in pre-order.
QStringList Dump(const TreeControl& tree) {
    QStringList lines;
    const std::function<void(const TreeNode*)> add = [&](const TreeNode* node) {
        for (; node; node = node->Next()) {
            lines << QStringLiteral("%1|%2|key=%3|tag=%4|image=%5|fore=%6|back=%7|%8")
                         .arg(node->Depth())
                         .arg(node->Text(), node->Key(), node->Tag())
                         .arg(node->Image())
                         .arg(node->ForeColor().isValid() ? node->ForeColor().name() : "-",
                              node->BackColor().isValid() ? node->BackColor().name() : "-",
                              node->Expanded() ? "open" : "closed");
            add(node->Child());
        }
    };
    add(tree.FirstRoot());
    return lines;
}

QStringList Rows(const ListControl& list) {
    QStringList rows;
    for (int position = 0; position < list.Count(); ++position)
        rows << list.Row(position)->SubItems(1) + "|" + list.Row(position)->SubItems(2) + "|" +
                    list.Row(position)->SubItems(3);
    return rows;
}

// A world folder in a temporary folder, kept when a test fails.
struct Folder {
    QTemporaryDir dir;
    ~Folder() { dir.setAutoRemove(!::testing::Test::HasFailure()); }
    QString path(const QString& name) const { return dir.filePath(name); }
    QString write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path(name);
    }
};

QString Blue() {
    return QColor(0, 0, 0xC0).name();
}

// A script as the editors make it, drawn by a seeded generator: animations of both
// kinds, lines, labelled and nested blocks, Python lines, opened and closed blocks.
void RandomScript(ScriptFixture& script, std::mt19937& random) {
    const auto pick = [&](int n) {
        return static_cast<int>(random() % static_cast<unsigned>(n));
    };
    const QStringList lines = {"Camera.Move(Forward, 1, more...)",
                               "Bunny.Turn(Left, 1/4, more...)",
                               "Bunny.Say('Hello, ### world', more...)",
                               "PlaySound(bell.wav)",
                               "Camera.PointAt(Bunny, AsSeenBy=Ground, more...)",
                               "Ground.Hide()"};
    TreeControl& tree = script.TreeView1;
    QStringList names;
    const int animations = 1 + pick(6);
    for (int a = 0; a < animations; ++a) {
        const QString name = QStringLiteral("Action%1").arg(a + 1);
        names << name;
        TreeNode* root = script.animation(name + (pick(2) ? " = DoInOrder" : " = DoTogether"));
        tree.SetForeColor(root, QColor(0, 0, 0xC0));
        tree.SetImage(root, icons::Together);
        std::vector<TreeNode*> blocks = {root};
        const int count = pick(12);
        for (int n = 0; n < count; ++n) {
            TreeNode* parent = blocks[static_cast<size_t>(pick(static_cast<int>(blocks.size())))];
            switch (pick(5)) {
            case 0:
                blocks.push_back(script.line(parent, pick(2) ? "Walk : DoTogether" : "DoInOrder"));
                break;
            case 1:
                script.pythonLine(parent, QStringLiteral("x = %1 # a comment").arg(n));
                break;
            default:
                script.line(parent, lines[pick(static_cast<int>(lines.size()))]);
            }
        }
        for (TreeNode* block : blocks)
            tree.SetExpanded(block, pick(2) != 0);
    }
    tree.SetExpanded(tree.FirstRoot(), true);
    RefreshTreeIcons(tree.FirstRoot());
    script.AnimationNames.SetText(names.join(','));
    const QStringList whens = {"LeftMouseButtonDown", "RightMouseButtonUp", "World Start",
                               R"(KeyDown ("A" key))", "KeyUp (Left Arrow Key)"};
    const int rows = pick(8);
    for (int r = 0; r < rows; ++r)
        script.row(whens[pick(static_cast<int>(whens.size()))], pick(2) ? "AnyWhere" : "Bunny",
                   names[pick(static_cast<int>(names.size()))]);
    QStringList code;
    const int codeLines = pick(4);
    for (int c = 0; c < codeLines; ++c)
        code << QStringLiteral("print(%1)").arg(c);
    script.ArbitraryCodeBox.Text = code.join("\r\n");
}

// What a load of the script file of the folder gives, with the problem.
struct Loaded {
    ScriptFixture script;
    FileProblem problem;
};

void Load(Loaded& loaded, const QString& fileName) {
    loaded.problem = BuildTreeFromFile(fileName, loaded.script.targets());
}

} // namespace

TEST(TreeScriptFile, RandomScriptsComeBackAsTheyWereSaved) {
    std::mt19937 random(20240611);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        ScriptFixture saved;
        RandomScript(saved, random);
        const ScriptFileText file =
            MakeTVscript(saved.TreeView1, saved.ListView1, saved.ArbitraryCodeBox.Text);
        EXPECT_TRUE(file.notices.isEmpty());
        Folder folder;
        const QString name = folder.write("world_script.tv", scriptFileBytes(file.text));
        Loaded loaded;
        Load(loaded, name);
        ASSERT_TRUE(loaded.problem.isEmpty()) << loaded.problem.text().toStdString();
        EXPECT_EQ(Dump(loaded.script.TreeView1), Dump(saved.TreeView1));
        EXPECT_EQ(Rows(loaded.script.ListView1), Rows(saved.ListView1));
        EXPECT_EQ(loaded.script.AnimationNames.Text(), saved.AnimationNames.Text());
        // Each load gains one line end: the empty text behind the file's last one.
        const QString code = saved.ArbitraryCodeBox.Text;
        EXPECT_EQ(loaded.script.ArbitraryCodeBox.Text, code.isEmpty() ? "" : code + "\r\n\r\n");
        EXPECT_EQ(loaded.script.ArbitraryCodeBox.Visible, !code.isEmpty());
        // Saved again, the tree and the rows are written as before.
        const QString again = MakeTVscript(loaded.script.TreeView1, loaded.script.ListView1,
                                           loaded.script.ArbitraryCodeBox.Text)
                                  .text;
        const qsizetype codeStart = file.text.lastIndexOf("###\r\n");
        EXPECT_EQ(again.left(codeStart), file.text.left(codeStart));
    }
}

TEST(TreeScriptFile, TheFileIsLaidOutAsOlderWorldsHoldIt) {
    ScriptFixture world;
    TreeNode* hop = world.animation("Hop = DoInOrder");
    world.TreeView1.SetExpanded(hop, true);
    world.line(hop, "Camera.Move(Forward, 1, more...)");
    world.row(R"(KeyDown ("A" key))", "AnyWhere", "Hop");
    EXPECT_EQ(
        MakeTVscript(world.TreeView1, world.ListView1, "x = 1").text.toStdString(),
        CrLfLines({"Hop = DoInOrder", "1", "1", "", "Camera.Move(Forward, 1, more...)", "2", "0",
                   "", "###", R"(KeyDown ("A" key))", "AnyWhere", "Hop", "###", "x = 1", ""})
            .toStdString());
}

TEST(TreeScriptFile, WhatTheFileCannotHoldIsSavedChangedOrLeftOutAndNamed) {
    ScriptFixture world;
    world.row("World Start", "- - -", "Hop");
    // Without animations the file has no rows.
    ScriptFileText file = MakeTVscript(world.TreeView1, world.ListView1, "x = 1");
    EXPECT_EQ(file.text, "###\r\nx = 1\r\n");
    ASSERT_EQ(file.notices.size(), 1);
    EXPECT_TRUE(file.notices[0].contains("rows were not saved"));

    TreeNode* hop = world.animation("Hop = DoInOrder");
    world.pythonLine(hop, "###"); // would end the tree in the file
    world.pythonLine(hop, "x = 1\ny = 2");
    file = MakeTVscript(world.TreeView1, world.ListView1, "");
    EXPECT_EQ(file.notices.size(), 2);
    Folder folder;
    Loaded loaded;
    Load(loaded, folder.write("world_script.tv", scriptFileBytes(file.text)));
    ASSERT_TRUE(loaded.problem.isEmpty()) << loaded.problem.text().toStdString();
    EXPECT_EQ(loaded.script.TreeView1.FirstRoot()->ChildAt(0)->Text(), "### ");
    EXPECT_EQ(loaded.script.TreeView1.FirstRoot()->ChildAt(1)->Text(), "x = 1 y = 2");
    EXPECT_EQ(Rows(loaded.script.ListView1), QStringList{"World Start|- - -|Hop"});
}

TEST(TreeScriptFile, OlderFormsAreReadAsTheyAlwaysWere) {
    Folder folder;
    // Line feeds alone, "True" and "False", a root's tag, a depth that falls by three,
    // a closed first animation, no closing "###" behind the rows.
    const QString name = folder.write(
        "world_script.tv",
        "Hop = DoInOrder\n1\nFalse\n1\nWalk : DoTogether\n2\nTrue\n\nDoInOrder\n3\n0\n\n"
        "DoInOrder\n4\n1\n\nBunny.Hide()\n5\n0\n1\nSpin = DoTogether\n1\n0\n\n###\n"
        "World Start\n- - -\nNoSuchAnimation\nLeftMouseButtonDown\nBunny\nSpin\n");
    Loaded loaded;
    Load(loaded, name);
    ASSERT_TRUE(loaded.problem.isEmpty()) << loaded.problem.text().toStdString();
    const QString grey = PythonLineBack.name();
    EXPECT_EQ(Dump(loaded.script.TreeView1),
              QStringList(
                  {"1|Hop = DoInOrder|key=hop|tag=|image=9|fore=" + Blue() + "|back=-|open",
                   "2|Walk : DoTogether|key=|tag=|image=11|fore=-|back=-|open",
                   "3|DoInOrder|key=|tag=|image=9|fore=-|back=-|closed",
                   "4|DoInOrder|key=|tag=|image=11|fore=-|back=-|open",
                   "5|Bunny.Hide()|key=|tag=1|image=11|fore=-|back=" + grey + "|closed",
                   "1|Spin = DoTogether|key=spin|tag=|image=9|fore=" + Blue() + "|back=-|closed"}));
    EXPECT_EQ(Rows(loaded.script.ListView1),
              QStringList({"World Start|- - -|NoSuchAnimation", "LeftMouseButtonDown|Bunny|Spin"}));
    EXPECT_EQ(loaded.script.AnimationNames.Text(), "Hop,Spin");
    EXPECT_EQ(loaded.script.ArbitraryCodeBox.Text, "");
    EXPECT_FALSE(loaded.script.ArbitraryCodeBox.Visible);
}

TEST(TreeScriptFile, AnEmptyTreeOrAWorldOfPlainPythonOpensWithCodeAlone) {
    Folder folder;
    Loaded loaded;
    loaded.script.animation("Old = DoInOrder");
    Load(loaded, folder.write("world_script.tv", "###\r\nLeftMouseButtonDown\r\nx = 1\r\n"));
    ASSERT_TRUE(loaded.problem.isEmpty()) << loaded.problem.text().toStdString();
    EXPECT_EQ(loaded.script.TreeView1.Count(), 0);
    EXPECT_EQ(loaded.script.ListView1.Count(), 0);
    EXPECT_EQ(loaded.script.ArbitraryCodeBox.Text, "LeftMouseButtonDown\r\nx = 1\r\n\r\n");
    EXPECT_TRUE(loaded.script.ArbitraryCodeBox.Visible);

    // Without a tree script file, the Python file, in any case, is all code.
    QFile::remove(folder.path("world_script.tv"));
    folder.write("World_Script.PY", "print(1)\nprint(2)\n");
    loaded.problem = LoadScriptFiles(folder.dir.path(), loaded.script.targets());
    ASSERT_TRUE(loaded.problem.isEmpty()) << loaded.problem.text().toStdString();
    EXPECT_EQ(loaded.script.ArbitraryCodeBox.Text, "print(1)\r\nprint(2)\r\n\r\n");
    // An empty tree script file, as saving leaves one it could not write, is no script.
    Load(loaded, folder.write("empty.tv", ""));
    EXPECT_TRUE(loaded.problem.isEmpty());
    EXPECT_EQ(loaded.script.ArbitraryCodeBox.Text, "");
    // With neither file the script is empty.
    QFile::remove(folder.path("World_Script.PY"));
    loaded.problem = LoadScriptFiles(folder.dir.path(), loaded.script.targets());
    EXPECT_TRUE(loaded.problem.isEmpty());
    EXPECT_EQ(loaded.script.ArbitraryCodeBox.Text, "");
}

TEST(TreeScriptFile, ADamagedOrForeignFileIsRefusedWithItsLineAndChangesNothing) {
    const QByteArray node = "Hop = DoInOrder\r\n1\r\n1\r\n\r\n";
    const std::pair<QByteArray, int> damaged[] = {
        {node + "Camera.Move()\r\n2\r\n", 5},                  // cut inside the tree
        {node, 5},                                             // no "###" after the tree
        {node + "###\r\nWorld Start\r\n- - -", 6},             // cut inside a row
        {node + "###\r\nWorld Start", 6},                      // cut inside the last row
        {node + "Bunny.Hide()\r\n3\r\n0\r\n\r\n###\r\n", 6},   // a depth that jumps by two
        {node + "Bunny.Hide()\r\ntwo\r\n0\r\n\r\n###\r\n", 6}, // a depth that is no number
        {node + "Bunny.Hide()\r\n2\r\nmaybe\r\n\r\n###\r\n", 7},
        {"Hop = DoInOrder\r\n2\r\n1\r\n\r\n###\r\n", 2}, // the first at depth 2
        {node + "Bunny.Hide()\r\n0\r\n0\r\n\r\n###\r\n", 6},
        {node + "Hop = DoTogether\r\n1\r\n0\r\n\r\n###\r\n", 5}, // a second Hop
        {node + "Spin DoTogether\r\n1\r\n0\r\n\r\n###\r\n", 5},  // no name
        {node + "Bunny.Hide(" + QByteArray(1, '\0') + ")\r\n", 5},
        {node + "###\r\n" + QByteArray(100'001, 'x') + "\r\n", 6},
    };
    for (const auto& [bytes, line] : damaged) {
        SCOPED_TRACE(bytes.left(120).toStdString());
        Folder folder;
        const QString name = folder.write("world_script.tv", bytes);
        Loaded loaded;
        loaded.script.animation("Old = DoInOrder");
        loaded.script.row("World Start", "- - -", "Old");
        loaded.script.ArbitraryCodeBox.Text = "old code";
        const QStringList before = Dump(loaded.script.TreeView1);
        Load(loaded, name);
        EXPECT_EQ(loaded.problem.file, name);
        EXPECT_EQ(loaded.problem.line, line) << loaded.problem.text().toStdString();
        EXPECT_TRUE(loaded.problem.text().startsWith(name + " line "))
            << loaded.problem.text().toStdString();
        EXPECT_EQ(Dump(loaded.script.TreeView1), before);
        EXPECT_EQ(loaded.script.ListView1.Count(), 1);
        EXPECT_EQ(loaded.script.ArbitraryCodeBox.Text, "old code");
    }
}

TEST(TreeScriptFile, ScriptsDeeperThanAHundredLevelsOrFilesTooBigAreRefused) {
    QByteArray deep = "Hop = DoInOrder\r\n1\r\n1\r\n\r\n";
    for (int depth = 2; depth <= 101; ++depth)
        deep += "DoInOrder\r\n" + QByteArray::number(depth) + "\r\n1\r\n\r\n";
    Folder folder;
    Loaded loaded;
    Load(loaded, folder.write("world_script.tv", deep + "###\r\n"));
    EXPECT_EQ(loaded.problem.line, 402);
    EXPECT_TRUE(loaded.problem.message.contains("100 levels"));

    // A file over 32 MB is refused before it is read (it takes no room on the disk).
    QFile big(folder.path("big.tv"));
    ASSERT_TRUE(big.open(QIODevice::WriteOnly));
    ASSERT_TRUE(big.resize(script_file::MaxBytes + 1));
    big.close();
    Load(loaded, folder.path("big.tv"));
    EXPECT_EQ(loaded.problem.line, 0);
    EXPECT_TRUE(loaded.problem.message.contains("too big")) << loaded.problem.text().toStdString();
    EXPECT_EQ(loaded.script.TreeView1.Count(), 0);
}
