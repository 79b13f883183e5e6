#include "core/world_status.h"

namespace vessa {

namespace {

bool isUnder(const QString& path, const QString& homeDir, const QString& folder) {
    const QString prefix = (homeDir + folder).toLower();
    return path.left(prefix.size()).toLower() == prefix;
}

} // namespace

bool IsWorldDirty(const WorldStatus& world, const QString& homeDir, bool engineSceneDirty) {
    if (isUnder(world.worldSaveFile, homeDir, QStringLiteral("worlds/tutorial")) ||
        isUnder(world.worldSaveFile, homeDir, QStringLiteral("worlds/examples")))
        return false;
    return world.ScriptDirty || (world.SceneScriptTab == 0 && engineSceneDirty);
}

} // namespace vessa
