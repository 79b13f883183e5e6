#pragma once

#include <QString>

namespace vessa {

class RunTimeError;
struct ScriptRequest;

// What the script needs from the window and the world around it.
class ScriptHost {
public:
    virtual ~ScriptHost() = default;

    // ScriptDirty of the open world: the scripts changed since the last save.
    virtual bool ScriptDirty() const = 0;
    virtual void SetScriptDirty(bool dirty) = 0;
    // The main window's caption, which gets " [modified]" at the first change.
    virtual QString Caption() const = 0;
    virtual void SetCaption(const QString& caption) = 0;
    // Undoes one record of the event list's log. A tree change that renamed event rows
    // carries how many of their records to undo before it.
    virtual void LVUndoFromLog() = 0;
    // Shows what a click asked for: the menus, editors and commands that other parts
    // of the program provide. Requests it does not know it may ignore.
    virtual void Dispatch(const ScriptRequest& request) = 0;
    // A failure inside one of the script's handlers, for the program's error report.
    virtual void ReportError(const RunTimeError& error) = 0;
};

} // namespace vessa
