#include "world/script_run.h"

#include "gateway/engine_link.h"
#include "world/python_generator.h"

namespace vessa {

ScriptRunResults runPythonScript(EngineLink& engine, const PythonScript& script) {
    QString text = script.text;
    if (!text.endsWith(u'\n'))
        text += u'\n';
    const int lastLine = lineOfPosition(text, text.size() - 1);
    const QString method = QStringLiteral("ExecuteLines");
    const QString mode = QStringLiteral("exec");
    ScriptRunResults results;
    results.generated =
        engine.call(method, {text, 0, script.handEditedLine - 1, kGeneratedSourceTag, mode});
    results.handEdited =
        engine.call(method, {text, script.handEditedLine, lastLine, kHandEditedSourceTag, mode});
    return results;
}

} // namespace vessa
