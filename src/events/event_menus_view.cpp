#include "events/event_menus_view.h"

#include "base/run_time_error.h"
#include "events/event_list.h"
#include "events/key_capture_form.h"
#include "script/menu_view.h"
#include "script/object_picker_popup.h"
#include "script/script_host.h"
#include "script/script_model.h"

namespace vessa {

namespace {

using Kind = ScriptRequest::Kind;

constexpr Kind kAnswered[] = {Kind::EventConditionMenu, Kind::EventResponseMenu,
                              Kind::EventListMenu, Kind::EventKeyCapture, Kind::EventObjectPicker};

// The control name and the title a screen reader reads of each menu.
std::pair<QString, QString> menuNames(Kind kind) {
    switch (kind) {
    case Kind::EventConditionMenu:
        return {QStringLiteral("mnuConditions"), QStringLiteral("Conditions")};
    case Kind::EventResponseMenu:
        return {QStringLiteral("mnuResponses"), QStringLiteral("Responses")};
    default:
        return {QStringLiteral("mnuListViewMain"), QStringLiteral("List Menu")};
    }
}

} // namespace

EventMenusView::EventMenusView(EventList& list, QWidget& anchor, QWidget* parent)
    : QObject(parent), list_(list), anchor_(anchor), menus_(list),
      picker_(list.Script(), pickerState_), keyCapture_(new KeyCaptureForm(parent)),
      pickerPopup_(new ObjectPickerPopup(picker_, parent)) {
    connect(keyCapture_, &KeyCaptureForm::answered, this,
            [this](const QString& keyEvent, const QString& character) {
                guarded([&] { menus_.keyPressed(keyEvent, character); });
            });
    for (Kind kind : kAnswered)
        list_.Script().requests().registerHandler(
            kind, [this](const ScriptRequest& request) { show(request); });
}

EventMenusView::~EventMenusView() {
    for (Kind kind : kAnswered)
        list_.Script().requests().registerHandler(kind, {});
}

void EventMenusView::guarded(const std::function<void()>& work) {
    // A failure ends the choice and is reported; it never reaches the event loop.
    try {
        work();
    } catch (const RunTimeError& error) {
        list_.Script().Host().ReportError(error);
    }
}

void EventMenusView::show(const ScriptRequest& request) {
    if (!request.ScreenPoint.isNull())
        lastPoint_ = request.ScreenPoint;
    if (request.What == Kind::EventKeyCapture) {
        keyCapture_->ask(request.Title, request.Prompt, lastPoint_);
    } else if (request.What == Kind::EventObjectPicker) {
        guarded([&] {
            picker_.StartTreeWidget(request,
                                    [this](const QString& name) { menus_.objectPicked(name); });
            pickerPopup_->StartTreeWidget(lastPoint_,
                                          QRect(anchor_.mapToGlobal(QPoint(0, 0)), anchor_.size()));
        });
    } else if (request.What != Kind::None) {
        popUp(request);
    }
}

void EventMenusView::popUp(const ScriptRequest& request) {
    std::vector<MenuRow> rows;
    guarded([&] { rows = menus_.menuRows(request); });
    if (rows.empty())
        return;
    popUpMenu(menu_, qobject_cast<QWidget*>(parent()), menuNames(request.What), rows,
              request.ScreenPoint, [this](int, const MenuRow& row) {
                  if (row.Chosen)
                      guarded([&] { show(row.Chosen()); });
              });
}

} // namespace vessa
