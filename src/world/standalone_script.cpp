#include "world/standalone_script.h"

#include "world/world_folder.h"

namespace vessa {

StandaloneScript::StandaloneScript()
    : ListView1({QString(), QStringLiteral("When"), QStringLiteral("Happens To"),
                 QStringLiteral("Do Animation")}) {
}

ScriptTargets StandaloneScript::targets() {
    return {TreeView1, AnimationNames, [this] { ListView1.Clear(); },
            [this](const QString& when, const QString& happensTo, const QString& animation) {
                ListRow* row =
                    ListView1.Add(ListView1.Count(), QStringLiteral("Key%1").arg(rowCounter_++));
                ListView1.SetSubItem(row, 1, when);
                ListView1.SetSubItem(row, 2, happensTo);
                ListView1.SetSubItem(row, 3, animation);
            },
            ArbitraryCodeBox};
}

ScriptFileRead StandaloneScript::LoadScriptFiles(const QString& worldPath) {
    ScriptFileRead read = readTreeScript(fileInFolder(worldPath, world_files::TreeScript));
    if (read.ok())
        fillScriptControls(read.content, targets());
    return read;
}

PythonScript StandaloneScript::python() const {
    return MakePythonScript(TreeView1, ListView1, ArbitraryCodeBox.Text);
}

} // namespace vessa
