#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace vessa {

// What a record of an event log says happened to a row.
enum class EventUndoOperation : int {
    Added = 1,   // the row was added: undo removes it
    Removed = 2, // the row was removed: undo adds it again, at the end, under its key
    Changed = 3, // the row's columns changed: undo puts these values back
};

// One record: the row by its Key, which is its only stable identity, and its columns as
// they stood when the record was made.
struct EventUndoRecord {
    EventUndoOperation Operation = EventUndoOperation::Added;
    QString Key;
    QString When;
    QString HappensTo;
    QString DoAnimation;

    bool operator==(const EventUndoRecord&) const = default;
};

// A history of changes to event rows in two stacks: what can be undone, newest on top,
// and what was undone and can be done again. Both hold records of one kind: replaying a
// record reverses it and gives the record that reverses that in turn, which goes on the
// other stack. A new change empties the stack of what can be done again. The log lives
// in memory only and dies with the world. Each record keeps its columns apart, so a
// column that holds "," or ";" (a row of the comma key) comes back whole.
class EventUndoLog {
public:
    bool IsEmpty() const { return undo_.empty(); }
    bool CanRedo() const { return !redo_.empty(); }

    // A new change: recorded for undo, and nothing is left to redo.
    void Push(EventUndoRecord record);
    // The newest record to undo, taken off; none when there is none.
    std::optional<EventUndoRecord> Pop();
    // The newest record to redo, taken off; none when there is none.
    std::optional<EventUndoRecord> PopRedo();
    // What reverses an undo just done, for redo; what reverses a redo just done, for undo.
    void PushUndone(EventUndoRecord reverse);
    void PushRedone(EventUndoRecord reverse);
    void Clear();

    // Told after every change, with whether anything is left to undo and to redo.
    void setWatcher(std::function<void(bool canUndo, bool canRedo)> watcher) {
        watcher_ = std::move(watcher);
    }

private:
    void changed();

    std::vector<EventUndoRecord> undo_; // oldest first
    std::vector<EventUndoRecord> redo_; // oldest first
    std::function<void(bool, bool)> watcher_;
};

} // namespace vessa
