#pragma once

#include <QStringList>
#include <QVariantList>

class QString;

namespace vessa {

class RunTimeError;
class TreeControl;

// What the script needs from the world around it.
class ScriptHost {
public:
    virtual ~ScriptHost() = default;

    // The script changed: the open world now holds unsaved work.
    virtual void scriptModified() = 0;
    // Undoes one record of the event list's log of what script edits did to its rows. A
    // tree change that renamed or removed event rows carries how many of their records
    // to undo before it.
    virtual void LVUndoFromLog() = 0;
    // Does again one record of that log that an undo reversed: a tree change undone and
    // done again carries its rows with it.
    virtual void LVRedoFromLog() = 0;
    // An animation was renamed: the event rows that do it follow, each recorded in that
    // log. Answers how many rows changed.
    virtual int ReplaceInListView(const QString& oldName, const QString& newName) = 0;
    // Whether an event row does the animation.
    virtual bool FindInListView(const QString& name) = 0;
    // An animation goes: the event rows that do it go too, each recorded in that log.
    // Answers how many rows went.
    virtual int RemoveFromListView(const QString& name) = 0;
    // A failure inside one of the script's handlers, for the program's error report.
    virtual void ReportError(const RunTimeError& error) = 0;

    // The scene's objects as the object tree shows them, the scene on top: what the
    // object picker offers.
    virtual const TreeControl& sceneObjects() = 0;
    // The names of the scene's sounds, in the order the sound tree shows them.
    virtual QStringList sceneSounds() = 0;
    // Whether the opening scene is the tab shown. An object's menu then acts on the
    // scene at once; on the other tabs its commands become lines of the script.
    virtual bool openingSceneShown() = 0;
    // What the engine tells of an object for its menu: the nine values of its
    // PrepareObjectMenu, in their order.
    virtual QVariantList objectMenuFacts(const QString& objectName) = 0;
    // Runs one of the menus' statements in the scene at once; a failure is reported
    // with failureMessage.
    virtual void runTool(const QString& statement, const QString& failureMessage) = 0;
    // Whether the engine takes name as the new name of an object.
    virtual bool isValidObjectName(const QString& name) = 0;
};

} // namespace vessa
