#pragma once

#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "script/script_host.h"
#include "script/script_model.h"

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

// 500 animations, each with 16 lines and a DoTogether block of 4 more: 10,500 lines, a
// hundred times the script people make by hand.
inline void fillWithTenThousandLines(ScriptModel& script) {
    TreeControl& tree = script.TreeView1();
    for (int animation = 1; animation <= 500; ++animation) {
        TreeNode* root = animation == 1 ? tree.FirstRoot() : script.AddNewAnimation();
        for (int line = 0; line < 16; ++line)
            tree.Add(root, Relation::Child, "",
                     line % 2 ? "Bunny.Move(Forward, 1, Duration=2, Style=abruptly, more...)"
                              : "Camera.Turn(Left, 1/4, AsSeenBy=Bunny, more...)");
        TreeNode* block = tree.Add(root, Relation::Child, "", "Wave : DoTogether");
        for (int line = 0; line < 4; ++line)
            tree.Add(block, Relation::Child, "", "Bunny.Head.Roll(Left, 1/8, more...)");
    }
}

} // namespace vessa::bench
