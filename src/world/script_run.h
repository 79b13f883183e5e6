#pragma once

#include <QVariant>

namespace vessa {

class EngineLink;
struct PythonScript;

// The source tags under which a run hands the world's Python to the engine: an error
// report names the part in which its line stands.
inline const QString kGeneratedSourceTag = QStringLiteral("<treeview>");
inline const QString kHandEditedSourceTag = QStringLiteral("<Script Text>");

// What the engine answered for each part; failures of the user's code come as records.
struct ScriptRunResults {
    QVariant generated;
    QVariant handEdited;
};

// Runs a world's Python as a run does: the text, with a line feed behind it if it has
// none, goes to the engine twice, the generated lines under kGeneratedSourceTag and the
// hand-edited ones under kHandEditedSourceTag, each with lines counted from its first.
ScriptRunResults runPythonScript(EngineLink& engine, const PythonScript& script);

} // namespace vessa
