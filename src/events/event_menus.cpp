#include "events/event_menus.h"

#include "events/event_list.h"
#include "script/basic_text.h"
#include "script/script_model.h"

namespace vessa {

namespace {

using Kind = ScriptRequest::Kind;

const QString WorldStart = QStringLiteral("World Start");
const QString NoObject = QStringLiteral("- - -");
const QString AnyWhere = QStringLiteral("AnyWhere");
const QString Others = QStringLiteral("Others...");

// The keys a row can wait for by name; the generator knows them by these words.
const char* const kNamedKeys[] = {"The 'Enter' Key", "Space Bar",    "Left Arrow Key",
                                  "Right Arrow Key", "Up Arrow Key", "Down Arrow Key"};

MenuRow Row(const QString& caption, std::function<ScriptRequest()> chosen) {
    MenuRow row;
    row.Caption = caption;
    row.Chosen = std::move(chosen);
    return row;
}

} // namespace

std::vector<MenuRow> EventMenus::menuRows(const ScriptRequest& request) {
    switch (request.What) {
    case Kind::EventConditionMenu:
        return mnuConditions();
    case Kind::EventResponseMenu:
        return mnuResponses(request.Rows);
    case Kind::EventListMenu:
        return mnuListViewMain();
    default:
        return {};
    }
}

std::vector<MenuRow> EventMenus::mnuConditions() {
    std::vector<MenuRow> rows;
    for (const char* caption : {"LeftMouseButtonDown", "LeftMouseButtonUp", "RightMouseButtonDown",
                                "RightMouseButtonUp", "KeyDown", "KeyUp", "World Start"}) {
        const QString text = QString::fromLatin1(caption);
        MenuRow row = Row(text, [this, text] {
            mnuConditions_Click(text);
            return ScriptRequest{};
        });
        if (text.startsWith(QStringLiteral("Key")))
            row.Rows = keyRows(text);
        const ListRow* current = list_.CurrentRow();
        row.Default = current && current->SubItems(EventList::When) == text;
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<MenuRow> EventMenus::keyRows(const QString& keyEvent) {
    std::vector<MenuRow> rows;
    for (const char* key : kNamedKeys) {
        const QString caption = QString::fromLatin1(key);
        rows.push_back(Row(
            caption, [this, keyEvent, caption] { return mnuKeyDown_Click(keyEvent, caption); }));
    }
    rows.push_back({QStringLiteral("-")});
    rows.push_back(Row(Others, [this, keyEvent] { return mnuKeyDown_Click(keyEvent, Others); }));
    return rows;
}

std::vector<MenuRow> EventMenus::mnuResponses(const std::vector<MenuRow>& names) {
    std::vector<MenuRow> rows = names;
    const ListRow* current = list_.CurrentRow();
    for (MenuRow& row : rows) {
        const QString name = row.Caption;
        row.Default = current && current->SubItems(EventList::DoAnimation) == name;
        row.Chosen = [this, name] {
            mnuResponses_Click(name);
            return ScriptRequest{};
        };
    }
    return rows;
}

std::vector<MenuRow> EventMenus::mnuListViewMain() {
    MenuRow make = Row(QStringLiteral("Make Event"), [this] {
        list_.MakeEvent();
        return ScriptRequest{};
    });
    make.Enabled = list_.Script().TreeView1().RootCount() > 0;
    make.Name = QStringLiteral("mnuMakeEvent");
    return {make};
}

void EventMenus::changeWhen(const QString& when) {
    ListRow* row = list_.CurrentRow();
    const QString old = row->SubItems(EventList::When);
    list_.LVUndoLog(list_.ListUndoLog(), EventUndoOperation::Changed, row);
    ListControl& rows = list_.ListView1();
    if (text::Like(row->SubItems(EventList::HappensTo), NoObject) && text::Like(old, WorldStart))
        rows.SetSubItem(row, EventList::HappensTo, AnyWhere);
    else if (text::Like(when, WorldStart))
        rows.SetSubItem(row, EventList::HappensTo, NoObject);
    rows.SetSubItem(row, EventList::When, when);
}

void EventMenus::mnuConditions_Click(const QString& caption) {
    const ListRow* row = list_.CurrentRow();
    if (!row || list_.CurrentColumn() != EventList::When)
        return;
    if (caption == row->SubItems(EventList::When) || text::Like(caption, u"Key*"))
        return;
    changeWhen(caption);
}

ScriptRequest EventMenus::mnuKeyDown_Click(const QString& keyEvent, const QString& caption) {
    if (!list_.CurrentRow() || list_.CurrentColumn() != EventList::When)
        return {};
    if (caption != Others) {
        changeWhen(keyEvent + QStringLiteral(" (") + caption + u')');
        return {};
    }
    ScriptRequest question;
    question.What = Kind::EventKeyCapture;
    question.Title = keyEvent;
    question.Prompt = kKeyPrompt;
    return question;
}

void EventMenus::keyPressed(const QString& keyEvent, const QString& answer) {
    if (!list_.CurrentRow() || list_.CurrentColumn() != EventList::When)
        return;
    changeWhen(keyEvent + QStringLiteral(" (\"") + answer.left(1).toUpper() +
               QStringLiteral("\" key)"));
}

void EventMenus::objectPicked(const QString& objectName) {
    ListRow* row = list_.CurrentRow();
    if (!row || list_.CurrentColumn() != EventList::HappensTo ||
        row->SubItems(EventList::HappensTo) == objectName)
        return;
    list_.LVUndoLog(list_.ListUndoLog(), EventUndoOperation::Changed, row);
    list_.ListView1().SetSubItem(row, EventList::HappensTo, objectName);
}

void EventMenus::mnuResponses_Click(const QString& caption) {
    ListRow* row = list_.CurrentRow();
    if (!row || list_.CurrentColumn() != EventList::DoAnimation ||
        row->SubItems(EventList::DoAnimation) == caption)
        return;
    list_.LVUndoLog(list_.ListUndoLog(), EventUndoOperation::Changed, row);
    list_.ListView1().SetSubItem(row, EventList::DoAnimation, caption);
}

} // namespace vessa
