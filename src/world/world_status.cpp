#include "world/world_status.h"

#include <algorithm>

namespace vessa {

namespace {

bool isUnder(const QString& path, const QString& homeDir, const QString& folder) {
    const QString prefix = (homeDir + folder).toLower();
    return path.left(prefix.size()).toLower() == prefix;
}

} // namespace

void WorldStatus::setWorldSaveFile(const QString& folder) {
    worldSaveFile_ = folder;
    // A copy: an observer may come or go while it is told.
    for (WorldStatusObserver* observer : std::vector(observers_))
        observer->worldNamed(worldSaveFile_);
}

void WorldStatus::markModified() {
    if (scriptDirty_)
        return;
    scriptDirty_ = true;
    for (WorldStatusObserver* observer : std::vector(observers_))
        observer->worldModified();
}

bool WorldStatus::IsWorldDirty(const QString& homeDir,
                               const std::function<bool()>& engineSceneDirty) const {
    if (isUnder(worldSaveFile_, homeDir, QStringLiteral("worlds/tutorial")) ||
        isUnder(worldSaveFile_, homeDir, QStringLiteral("worlds/examples")))
        return false;
    return scriptDirty_ || (sceneScriptTab_ == 0 && engineSceneDirty());
}

void WorldStatus::addObserver(WorldStatusObserver& observer) {
    observers_.push_back(&observer);
}

void WorldStatus::removeObserver(WorldStatusObserver& observer) {
    std::erase(observers_, &observer);
}

} // namespace vessa
