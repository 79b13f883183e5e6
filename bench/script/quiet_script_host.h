#pragma once

#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "script/script_host.h"

namespace vessa::bench {

// The world around a script under measure: it hears of changes and does nothing.
class QuietHost : public ScriptHost {
public:
    void scriptModified() override {}
    void LVUndoFromLog() override {}
    void LVRedoFromLog() override {}
    int ReplaceInListView(const QString&, const QString&) override { return 0; }
    bool FindInListView(const QString&) override { return false; }
    int RemoveFromListView(const QString&) override { return 0; }
    void ReportError(const RunTimeError&) override {}
    const TreeControl& sceneObjects() override { return objects; }
    QStringList sceneSounds() override { return {}; }
    bool openingSceneShown() override { return false; }
    // A model, with a camera in the scene to point at it.
    QVariantList objectMenuFacts(const QString& name) override {
        return {true, name, "model", "7", true, false, -1, 128, 1};
    }
    void runTool(const QString&, const QString&) override {}
    bool isValidObjectName(const QString&) override { return false; }

    TreeControl objects;
};

} // namespace vessa::bench
