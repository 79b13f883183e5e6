#pragma once

#include <QString>
#include <functional>
#include <vector>

namespace vessa {

// What the main window shows of the open world's status: its name in the caption,
// and " [modified]" after it.
class WorldStatusObserver {
public:
    virtual ~WorldStatusObserver() = default;
    // The world was given its folder: "" for an unnamed world and for the default one.
    virtual void worldNamed(const QString& worldSaveFile) = 0;
    // The first change since the world was last clean.
    virtual void worldModified() = 0;
};

// Whether the open world holds unsaved work, where it lives and which tab shows it.
// ScriptDirty stands for everything the front end changed since the last save: the
// editors' histories mark it, and only the first mark after a clean state is news.
class WorldStatus {
public:
    const QString& worldSaveFile() const { return worldSaveFile_; }
    bool ScriptDirty() const { return scriptDirty_; }
    // 0 the opening scene, 1 the animations, 2 the events.
    int SceneScriptTab() const { return sceneScriptTab_; }
    void setSceneScriptTab(int tab) { sceneScriptTab_ = tab; }

    // Names the world's folder and tells the observers.
    void setWorldSaveFile(const QString& folder);
    // A change the user made; the first since the world was clean tells the observers.
    void markModified();
    // The world is as its folder holds it: just saved, loaded or made new.
    void markClean() { scriptDirty_ = false; }

    // Tutorial and example worlds are never worth saving. Otherwise the front end's
    // changes count, and the engine's own mark on the opening-scene tab only: on the
    // script tabs running changes the scene all the time. The engine is asked only then.
    bool IsWorldDirty(const QString& homeDir, const std::function<bool()>& engineSceneDirty) const;

    // Observers are not owned; each removes itself before it goes.
    void addObserver(WorldStatusObserver& observer);
    void removeObserver(WorldStatusObserver& observer);

private:
    QString worldSaveFile_; // "" for an unnamed world and for the default one
    bool scriptDirty_ = false;
    int sceneScriptTab_ = 0;
    std::vector<WorldStatusObserver*> observers_;
};

} // namespace vessa
