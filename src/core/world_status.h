#pragma once

#include <QString>

namespace vessa {

// What decides whether the open world holds unsaved work.
struct WorldStatus {
    QString worldSaveFile; // the world's folder; "" for an unnamed world and the default
    bool ScriptDirty = false;
    int SceneScriptTab = 0; // 0 opening scene, 1 animations, 2 events
};

// Tutorial and example worlds are never worth saving. The engine's own mark
// counts only on the opening-scene tab: on the script tabs running changes the
// scene all the time.
bool IsWorldDirty(const WorldStatus& world, const QString& homeDir, bool engineSceneDirty);

} // namespace vessa
