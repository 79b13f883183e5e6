#include "events/event_list.h"

#include "script/basic_text.h"
#include "script/script_host.h"
#include "script/script_line.h"
#include "script/script_model.h"

namespace vessa {

namespace {

const QString WorldStart = QStringLiteral("World Start");
const QString NoObject = QStringLiteral("- - -");
const QString LeftMouseButtonDown = QStringLiteral("LeftMouseButtonDown");
const QString AnyWhere = QStringLiteral("AnyWhere");

// The scene's object whose full name is name, case ignored, anywhere in the tree.
bool sceneHas(const TreeNode* node, const QString& name) {
    for (; node; node = node->Next())
        if (text::Same(node->Tag(), name) || sceneHas(node->Child(), name))
            return true;
    return false;
}

ScriptRequest Request(ScriptRequest::Kind what, int column, const QString& value) {
    ScriptRequest request;
    request.What = what;
    request.Number = column;
    request.Value = value;
    return request;
}

} // namespace

QString SpokenCondition(const QString& when) {
    const qsizetype bracket = when.indexOf(QStringLiteral(" ("));
    if (text::Like(when, u"Key*") && bracket > 0 && when.endsWith(u')')) {
        QString key = when.mid(bracket + 2, when.size() - bracket - 3);
        if (key.startsWith(u'"'))
            key = key.section(u'"', 1, 1);
        else
            key.remove(QStringLiteral("The ")).remove(u'\'').remove(QStringLiteral(" Key"));
        const QString way = when.left(bracket).mid(3).toLower();
        return QStringLiteral("Key ") + (key.isEmpty() ? QStringLiteral("(none)") : key) + u' ' +
               way;
    }
    if (when.contains(u' '))
        return when;
    // "LeftMouseButtonDown": a word at each capital, the first one's capital kept.
    QString spoken;
    for (QChar c : when) {
        if (c.isUpper() && !spoken.isEmpty())
            spoken += u' ' + c.toLower();
        else
            spoken += c;
    }
    return spoken;
}

EventList::EventList(ScriptModel& script)
    : script_(script), listView1_({QString(), QStringLiteral("When"), QStringLiteral("Happens To"),
                                   QStringLiteral("Do Animation")}) {
    InitEventList();
}

void EventList::InitEventList() {
    listView1_.Clear();
    listUndoLog_.Clear();
    // The script's records of this world go with it; left here, their rows' keys would
    // name rows of the next world.
    treeListUndoLog_.Clear();
    rowClipboard_.Clear();
    eventRowCounter_ = 0;
    currentRowKey_.clear();
    currentColumn_ = 0;
    const TreeNode* first = script_.TreeView1().FirstRoot();
    addRow(WorldStart, NoObject, first ? AnimationName(first->Text()) : QString());
}

ListRow* EventList::addRowKeyed(const QString& keyWord, const QString& when,
                                const QString& happensTo, const QString& animation) {
    ListRow* row = listView1_.Add(-1, keyWord + QString::number(eventRowCounter_));
    ++eventRowCounter_;
    setColumns(row, when, happensTo, animation);
    return row;
}

ListRow* EventList::addRow(const QString& when, const QString& happensTo,
                           const QString& animation) {
    return addRowKeyed(QStringLiteral("Key"), when, happensTo, animation);
}

void EventList::setColumns(ListRow* row, const QString& when, const QString& happensTo,
                           const QString& animation) {
    listView1_.SetSubItem(row, When, when);
    listView1_.SetSubItem(row, HappensTo, happensTo);
    listView1_.SetSubItem(row, DoAnimation, animation);
}

QString EventList::newestAnimation() const {
    const TreeNode* first = script_.TreeView1().FirstRoot();
    return AnimationName(first->LastSibling()->Text());
}

ListRow* EventList::MakeEvent() {
    if (!script_.TreeView1().FirstRoot())
        return nullptr;
    ListRow* row = addRow(LeftMouseButtonDown, AnyWhere, newestAnimation());
    LVUndoLog(listUndoLog_, EventUndoOperation::Added, row);
    listView1_.SetSelectedItem(row);
    return row;
}

ListRow* EventList::addDroppedObject(const QString& objectName) {
    if (!script_.TreeView1().FirstRoot())
        return nullptr;
    ListRow* row =
        addRowKeyed(QStringLiteral("key"), LeftMouseButtonDown, objectName, newestAnimation());
    listView1_.SetSelectedItem(row);
    return row;
}

void EventList::DeleteRow(const ListRow* row) {
    LVUndoLog(listUndoLog_, EventUndoOperation::Removed, row);
    listView1_.Remove(listView1_.PositionOf(row));
}

void EventList::CutRow(const ListRow* row) {
    rowClipboard_.Copy(*row);
    DeleteRow(row);
}

ListRow* EventList::PasteRow() {
    ListRow* row = addRow(rowClipboard_.Value(When), rowClipboard_.Value(HappensTo),
                          rowClipboard_.Value(DoAnimation));
    LVUndoLog(listUndoLog_, EventUndoOperation::Added, row);
    listView1_.SetSelectedItem(row);
    return row;
}

ScriptRequest EventList::ListView1_MouseUp(Qt::MouseButton button, ListRow* row, int column) {
    currentRowKey_ = row ? row->Key() : QString();
    // The list's own menu, wherever the right button falls.
    if (button == Qt::RightButton)
        return Request(ScriptRequest::Kind::EventListMenu, column, QString());
    if (button != Qt::LeftButton || !row || column < When || column > DoAnimation)
        return {};
    listView1_.SetSelectedItem(row);
    currentColumn_ = column;
    const QString value = row->SubItems(column);
    switch (column) {
    case When:
        return Request(ScriptRequest::Kind::EventConditionMenu, column, value);
    case HappensTo:
        // Nothing happens to a start row: its column is not to be chosen.
        if (text::Like(row->SubItems(When), WorldStart))
            return {};
        return Request(ScriptRequest::Kind::EventObjectPicker, column, value);
    default: {
        ScriptRequest menu = Request(ScriptRequest::Kind::EventResponseMenu, column, value);
        // One entry per name; with no animation, the one entry of an empty list.
        for (const QString& name : script_.AnimationNames().Text().split(u','))
            menu.Rows.push_back({name, true, true});
        return menu;
    }
    }
}

void EventList::ListviewReplaceString(const QString& find, const QString& replacement) {
    for (int position = 0; position < listView1_.Count(); ++position) {
        ListRow* row = listView1_.Row(position);
        for (int column : {HappensTo, DoAnimation})
            listView1_.SetSubItem(row, column,
                                  text::ReplaceName(row->SubItems(column), find, replacement));
    }
}

int EventList::ReplaceInListView(const QString& oldName, const QString& newName) {
    int changed = 0;
    for (int position = 0; position < listView1_.Count(); ++position) {
        ListRow* row = listView1_.Row(position);
        if (!text::Same(row->SubItems(DoAnimation), oldName))
            continue;
        LVUndoLog(treeListUndoLog_, EventUndoOperation::Changed, row);
        listView1_.SetSubItem(row, DoAnimation, newName);
        ++changed;
    }
    return changed;
}

bool EventList::FindInListView(const QString& name) const {
    for (int position = 0; position < listView1_.Count(); ++position)
        if (text::Same(listView1_.Row(position)->SubItems(DoAnimation), name))
            return true;
    return false;
}

int EventList::RemoveFromListView(const QString& name) {
    int removed = 0;
    // Backwards, so that a removal does not move the rows still to be looked at.
    for (int position = listView1_.Count() - 1; position >= 0; --position) {
        const ListRow* row = listView1_.Row(position);
        if (!text::Same(row->SubItems(DoAnimation), name))
            continue;
        LVUndoLog(treeListUndoLog_, EventUndoOperation::Removed, row);
        listView1_.Remove(position);
        ++removed;
    }
    return removed;
}

CellLook EventList::cellLook(const ListRow& row, int column) const {
    const QString text = row.SubItems(column);
    switch (column) {
    case When:
        return {SpokenCondition(text), {}};
    case HappensTo:
        if (text == NoObject)
            return {QStringLiteral("nothing"), {}};
        if (text::Same(text, AnyWhere))
            return {QStringLiteral("Anywhere"), {}};
        if (!sceneHas(script_.Host().sceneObjects().FirstRoot(), text))
            return {text, QStringLiteral("there is no object called ") + text +
                              QStringLiteral(" in the scene")};
        return {text, {}};
    case DoAnimation:
        if (text.isEmpty())
            return {QStringLiteral("no animation"), QStringLiteral("no animation is chosen")};
        if (!script_.TreeView1().NodeByKey(text.toLower()))
            return {text, QStringLiteral("there is no animation called ") + text};
        return {text, {}};
    default:
        return {text, {}};
    }
}

EventUndoRecord EventList::recordOf(EventUndoOperation operation, const ListRow* row) const {
    EventUndoRecord record;
    record.Operation = operation;
    record.Key = row->Key();
    if (operation != EventUndoOperation::Added) {
        record.When = row->SubItems(When);
        record.HappensTo = row->SubItems(HappensTo);
        record.DoAnimation = row->SubItems(DoAnimation);
    }
    return record;
}

void EventList::LVUndoLog(EventUndoLog& log, EventUndoOperation operation, const ListRow* row) {
    script_.Host().scriptModified();
    log.Push(recordOf(operation, row));
}

void EventList::LVUndoFromLog(EventUndoLog& log) {
    if (const std::optional<EventUndoRecord> record = log.Pop())
        log.PushUndone(replay(*record));
}

void EventList::LVRedoFromLog(EventUndoLog& log) {
    if (const std::optional<EventUndoRecord> record = log.PopRedo())
        log.PushRedone(replay(*record));
}

EventUndoRecord EventList::replay(const EventUndoRecord& record) {
    ListRow* row = listView1_.RowByKey(record.Key);
    if (!row && record.Operation != EventUndoOperation::Removed) {
        // The row went by a way no log knows of. The record stays the reverse of itself,
        // so that the logs that count on one reverse per record stay in step.
        if (notice_)
            notice_(QStringLiteral("The event this would change is no longer in the list, so "
                                   "nothing was changed."));
        return record;
    }
    switch (record.Operation) {
    case EventUndoOperation::Added: {
        EventUndoRecord reverse = recordOf(EventUndoOperation::Removed, row);
        listView1_.Remove(listView1_.PositionOf(row));
        return reverse;
    }
    case EventUndoOperation::Removed:
        // The counter stays ahead of the key, so it is free unless the row is back already.
        if (!row)
            row = listView1_.Add(-1, record.Key);
        setColumns(row, record.When, record.HappensTo, record.DoAnimation);
        return recordOf(EventUndoOperation::Added, row);
    case EventUndoOperation::Changed:
        break;
    }
    EventUndoRecord reverse = recordOf(EventUndoOperation::Changed, row);
    setColumns(row, record.When, record.HappensTo, record.DoAnimation);
    return reverse;
}

} // namespace vessa
