#pragma once

class QString;

namespace vessa {

class RunTimeError;

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
};

} // namespace vessa
