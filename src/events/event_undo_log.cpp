#include "events/event_undo_log.h"

namespace vessa {

void EventUndoLog::Push(EventUndoRecord record) {
    records_.push_back(std::move(record));
    changed();
}

std::optional<EventUndoRecord> EventUndoLog::Pop() {
    if (records_.empty())
        return std::nullopt;
    EventUndoRecord newest = std::move(records_.back());
    records_.pop_back();
    changed();
    return newest;
}

void EventUndoLog::Clear() {
    records_.clear();
    changed();
}

void EventUndoLog::changed() {
    if (watcher_)
        watcher_(!records_.empty());
}

} // namespace vessa
