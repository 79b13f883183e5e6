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

// The place of one error from what the engine tells of it: the text of its `error`
// records (a traceback of the user's own lines, or the form of a syntax error) and the
// detail item of its `popuperrordialog` record (the line as text, "-1", or a syntax
// error's [message, [file, line, offset, source line]]). None when the detail names no
// line or the traceback names no line of that number.
std::optional<ScriptErrorPlace> scriptErrorPlace(const QString& errorText, const QVariant& detail);

} // namespace vessa
