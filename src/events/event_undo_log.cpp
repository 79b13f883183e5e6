#include "events/event_undo_log.h"

namespace vessa {

namespace {

std::optional<EventUndoRecord> takeNewest(std::vector<EventUndoRecord>& records) {
    if (records.empty())
        return std::nullopt;
    EventUndoRecord newest = std::move(records.back());
    records.pop_back();
    return newest;
}

} // namespace

void EventUndoLog::Push(EventUndoRecord record) {
    undo_.push_back(std::move(record));
    redo_.clear();
    changed();
}

std::optional<EventUndoRecord> EventUndoLog::Pop() {
    std::optional<EventUndoRecord> newest = takeNewest(undo_);
    changed();
    return newest;
}

std::optional<EventUndoRecord> EventUndoLog::PopRedo() {
    std::optional<EventUndoRecord> newest = takeNewest(redo_);
    changed();
    return newest;
}

void EventUndoLog::PushUndone(EventUndoRecord reverse) {
    redo_.push_back(std::move(reverse));
    changed();
}

void EventUndoLog::PushRedone(EventUndoRecord reverse) {
    undo_.push_back(std::move(reverse));
    changed();
}

void EventUndoLog::Clear() {
    undo_.clear();
    redo_.clear();
    changed();
}

void EventUndoLog::changed() {
    if (watcher_)
        watcher_(!undo_.empty(), !redo_.empty());
}

} // namespace vessa
