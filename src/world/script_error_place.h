#pragma once

#include <QString>
#include <QVariant>
#include <optional>

namespace vessa {

// Where in the text it was given the engine found a mistake of the user's code: the
// source tag the text ran under, the line counted from 1 at the first line of that
// text, and the line itself as the engine read it.
struct ScriptErrorPlace {
    QString sourceTag;
    int line = 0;
    QString sourceLine;

    bool operator==(const ScriptErrorPlace&) const = default;
};

// Which text the engine ran last under the names of the world's own code: a world's
// Python (its generated part, then the code box's text), the script text run as it
// stands, lines of the code box or of the script text run by themselves, or other code.
enum class RanText { World, ScriptTextAsItStands, CodeBoxLines, ScriptTextLines, Other };

// A line (from 0) of one of the two boxes of Python.
struct ErrorMark {
    enum class Box { ScriptText, CodeBox };
    Box box = Box::ScriptText;
    int line = 0;

    bool operator==(const ErrorMark&) const = default;
};

// Where an error of the text that ran stands: an error of a world's generated part in
// the script text, after handEditedLine lines of it only the hand-edited part; an error
// of lines run by themselves counted from errorLineOffset, the first of them. None for
// code the boxes do not hold.
std::optional<ErrorMark> errorMark(const ScriptErrorPlace& place, RanText ran, int handEditedLine,
                                   int errorLineOffset);

// Whether line (from 0) of text reads as sourceLine, blanks around both aside.
bool lineReads(const QString& text, int line, const QString& sourceLine);

// The place of one error from what the engine tells of it: the text of its `error`
// records (a traceback of the user's own lines, or the form of a syntax error) and the
// detail item of its `popuperrordialog` record (the line as text, "-1", or a syntax
// error's [message, [file, line, offset, source line]]). None when the detail names no
// line or the traceback names no line of that number.
std::optional<ScriptErrorPlace> scriptErrorPlace(const QString& errorText, const QVariant& detail);

} // namespace vessa
