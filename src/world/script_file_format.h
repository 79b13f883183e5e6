#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace vessa {

// The tree script file of a world (world_script.tv) as text, read into a plain value
// and checked before anything is built from it. The file has three sections split by
// lines "###": the script tree, four lines a node (text, depth, "1" or "0" for
// expanded, tag) in pre-order; the event rows, three lines a row (When, Happens To, Do
// Animation); and the hand-edited code. A file with an empty tree has no events
// section: its first line is "###" and the code follows.
//
// Files come from anywhere (a friend, a class's shared folder), so the reader trusts
// nothing: a file that does not follow the format is refused with the line at fault.
// Only Qt Core stands behind this, so that it can be built alone under the sanitizers.

namespace script_file {
constexpr qint64 MaxBytes = 32 * 1024 * 1024;
constexpr int MaxLineLength = 100'000; // characters
constexpr int MaxDepth = 100;
constexpr int MaxNodes = 200'000;
constexpr int MaxRows = 100'000;
inline const QString Separator = QStringLiteral("###");
inline const QString LineEnd = QStringLiteral("\r\n");
} // namespace script_file

// What is wrong with a file, for the user: which file, the line (from 1; 0 when it is
// about the file as a whole) and why. Empty when nothing is.
struct FileProblem {
    QString file;
    int line = 0;
    QString message;

    bool isEmpty() const { return message.isEmpty(); }
    // "<file> line <n>: <message>", or "<file>: <message>" without a line.
    QString text() const;
};

// One node of the script tree as its record says; the record begins at line.
struct ScriptFileNode {
    QString text;
    int depth = 1; // 1 for an animation, 2 for its lines, and so on
    bool expanded = false;
    QString tag;
    int line = 0;
};

// One event row; its record begins at line.
struct ScriptFileRow {
    QString when;
    QString happensTo;
    QString animation;
    int line = 0;
};

// A world's script as a file holds it.
struct ScriptFileContent {
    QList<ScriptFileNode> nodes; // in pre-order; depths rise by one at most
    QList<ScriptFileRow> rows;
    QString code; // every line with CR LF behind it, the empty one after the last included
};

struct ScriptFileRead {
    ScriptFileContent content; // what could be read, when problem is empty
    FileProblem problem;
    bool ok() const { return problem.isEmpty(); }
};

// The text of a tree script file; an empty one holds an empty script. fileName names
// the file in a problem.
ScriptFileRead parseScriptFile(const QByteArray& bytes, const QString& fileName);
// A world of plain Python without a tree script file: all of it becomes the code.
ScriptFileRead parsePythonScriptFile(const QByteArray& bytes, const QString& fileName);

// The bytes of a file, refused when it is no regular file, can't be read or is bigger
// than a script file can be.
struct FileBytes {
    QByteArray bytes;
    FileProblem problem;
};
FileBytes readScriptFileBytes(const QString& path);

// How the script files hold text: UTF-8. A file that is no valid UTF-8 is taken for
// the 8-bit text of an older world.
QByteArray scriptFileBytes(const QString& text);

} // namespace vessa
