#include "world/script_file_format.h"

#include <gtest/gtest.h>

#include <random>

using namespace vessa;

// The reader of world_script.tv against damaged files, seeded so that every run damages
// alike. Built also alone under AddressSanitizer and UndefinedBehaviorSanitizer, which
// see what a test can't: every file must be refused with a line that is in it, or read
// into a script that keeps the format's rules and is read back the same when written
// out again.

namespace {

const QByteArray Sound = "Hop = DoInOrder\r\n1\r\n1\r\n\r\n"
                         "Camera.Move(Forward, 1, more...)\r\n2\r\n0\r\n\r\n"
                         "Walk : DoTogether\r\n2\r\n1\r\n\r\n"
                         "x = 1\r\n3\r\n0\r\n1\r\n"
                         "DoInOrder\r\n3\r\n1\r\n\r\n"
                         "Bunny.Turn(Left, 1/4, more...)\r\n4\r\n0\r\n\r\n"
                         "Spin = DoTogether\r\n1\r\n0\r\n\r\n"
                         "###\r\n"
                         "KeyDown (\"A\" key)\r\nAnyWhere\r\nHop\r\n"
                         "World Start\r\n- - -\r\nSpin\r\n"
                         "###\r\nprint('hi')\r\nx = 2\r\n";

const char* const Pieces[] = {"###", "\r\n", "\n",   "\r",       "0",           "1",
                              "-1",  "2",    "100",  "101",      "99999999999", "True",
                              "x",   "",     "\xC3", "\xFF\xFE", "\t"};

QByteArray Damaged(QByteArray bytes, std::mt19937& random) {
    const auto below = [&](qsizetype n) {
        return n <= 0 ? qsizetype(0) : static_cast<qsizetype>(random() % static_cast<unsigned>(n));
    };
    const int changes = 1 + static_cast<int>(random() % 4);
    for (int change = 0; change < changes; ++change) {
        const qsizetype at = below(bytes.size() + 1);
        switch (random() % 6) {
        case 0: // a flipped bit
            if (!bytes.isEmpty())
                bytes[below(bytes.size())] ^= static_cast<char>(1 << (random() % 8));
            break;
        case 1: // cut short
            bytes.truncate(at);
            break;
        case 2: // a piece of the format's own, anywhere
            bytes.insert(at, Pieces[random() % std::size(Pieces)]);
            break;
        case 3: // a stretch gone
            bytes.remove(at, below(40));
            break;
        case 4: // a stretch twice
            bytes.insert(at, bytes.mid(at, below(60)));
            break;
        default: // a random byte
            bytes.insert(at, static_cast<char>(random() % 256));
        }
    }
    return bytes;
}

int LineCount(const QByteArray& bytes) {
    return static_cast<int>(bytes.count('\n')) + 1;
}

// The content written out in the format again.
QByteArray Written(const ScriptFileContent& content) {
    QString text;
    for (const ScriptFileNode& node : content.nodes)
        text += node.text + "\r\n" + QString::number(node.depth) + "\r\n" +
                (node.expanded ? "1" : "0") + "\r\n" + node.tag + "\r\n";
    text += "###\r\n";
    for (const ScriptFileRow& row : content.rows)
        text += row.when + "\r\n" + row.happensTo + "\r\n" + row.animation + "\r\n";
    return (text + "###\r\n").toUtf8();
}

void ExpectKeepsTheRules(const ScriptFileContent& content, int lines) {
    int previous = 0;
    for (const ScriptFileNode& node : content.nodes) {
        ASSERT_GE(node.depth, 1);
        ASSERT_LE(node.depth, previous + 1);
        ASSERT_LE(node.depth, script_file::MaxDepth);
        ASSERT_TRUE(node.line >= 1 && node.line <= lines);
        previous = node.depth;
    }
    for (const ScriptFileRow& row : content.rows)
        ASSERT_TRUE(row.line >= 1 && row.line <= lines);
    ASSERT_TRUE(content.code.isEmpty() || content.code.endsWith("\r\n"));
}

} // namespace

TEST(TreeScriptFileFuzz, DamagedFilesAreRefusedAtALineOfThemOrReadWithinTheRules) {
    std::mt19937 random(47);
    int read = 0, refused = 0;
    for (int round = 0; round < 20000; ++round) {
        const QByteArray bytes = Damaged(Sound, random);
        const ScriptFileRead result = parseScriptFile(bytes, "fuzz.tv");
        if (!result.ok()) {
            ++refused;
            ASSERT_FALSE(result.problem.message.isEmpty());
            ASSERT_TRUE(result.problem.line >= 1 && result.problem.line <= LineCount(bytes))
                << result.problem.text().toStdString();
            continue;
        }
        ++read;
        ExpectKeepsTheRules(result.content, LineCount(bytes));
        if (result.content.nodes.isEmpty())
            continue;
        // Read again from what it was read as, it is the same script.
        const ScriptFileRead again = parseScriptFile(Written(result.content), "again.tv");
        ASSERT_TRUE(again.ok()) << again.problem.text().toStdString();
        ASSERT_EQ(again.content.nodes.size(), result.content.nodes.size());
        for (qsizetype n = 0; n < again.content.nodes.size(); ++n) {
            ASSERT_EQ(again.content.nodes[n].text, result.content.nodes[n].text);
            ASSERT_EQ(again.content.nodes[n].depth, result.content.nodes[n].depth);
            ASSERT_EQ(again.content.nodes[n].expanded, result.content.nodes[n].expanded);
            ASSERT_EQ(again.content.nodes[n].tag, result.content.nodes[n].tag);
        }
        ASSERT_EQ(again.content.rows.size(), result.content.rows.size());
    }
    // Both kinds of outcome were met, not only one.
    EXPECT_GT(read, 1000);
    EXPECT_GT(refused, 1000);
}
