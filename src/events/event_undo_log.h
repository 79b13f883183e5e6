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
};

// A history of changes to event rows, newest on top, with no redo. It lives in memory
// only and dies with the world. Each record keeps its columns apart, so a column that
// holds "," or ";" (a row of the comma key) comes back whole.
class EventUndoLog {
public:
    bool IsEmpty() const { return records_.empty(); }
    void Push(EventUndoRecord record);
    // The newest record, taken off the log; none when the log is empty.
    std::optional<EventUndoRecord> Pop();
    void Clear();
    // Told after every change, with whether anything is left to undo.
    void setWatcher(std::function<void(bool canUndo)> watcher) { watcher_ = std::move(watcher); }

private:
    void changed();

    std::vector<EventUndoRecord> records_; // oldest first
    std::function<void(bool)> watcher_;
};

} // namespace vessa
