#include "script/script_menus_view.h"

#include "base/run_time_error.h"
#include "script/menu_view.h"
#include "script/object_picker_popup.h"
#include "script/script_host.h"
#include "script/script_model.h"
#include "script/text_input_box_form.h"

#include <QCursor>
#include <QInputDialog>

namespace vessa {

namespace {

using Kind = ScriptRequest::Kind;

// The requests answered here.
constexpr Kind kAnswered[] = {Kind::ActionMenu,   Kind::ObjectMenu,  Kind::StarMenuAll,
                              Kind::StarMenuRow,  Kind::SoundList,   Kind::TextEditor,
                              Kind::ObjectPicker, Kind::ObjectRename};

// The control name and the title a screen reader reads of each menu.
std::pair<QString, QString> menuNames(const ScriptRequest& request) {
    switch (request.What) {
    case Kind::ActionMenu:
        return {QStringLiteral("mnuActionsMain"), QStringLiteral("Commands")};
    case Kind::ObjectMenu:
        return {QStringLiteral("ObjectMenuButton"), request.Value};
    case Kind::StarMenuAll:
        return {QStringLiteral("mnuStarAll"), QStringLiteral("More values")};
    case Kind::StarMenuRow:
        return {QStringLiteral("mnuStar"), request.Number == 20
                                               ? QStringLiteral("FileName")
                                               : ParameterKinds(request.Number).Name};
    default:
        return {QStringLiteral("mnuSoundListMain"), QStringLiteral("SoundList")};
    }
}

} // namespace

ScriptMenusView::ScriptMenusView(ScriptModel& model, QWidget& anchor,
                                 std::function<void(const ScriptRequest&)> showOther,
                                 QWidget* parent)
    : QObject(parent), model_(model), anchor_(anchor), showOther_(std::move(showOther)),
      menus_(model), textBox_(new TextInputBoxForm(menus_.textBox(), parent)),
      picker_(new ObjectPickerPopup(menus_.picker(), parent)),
      objectName_(new QInputDialog(parent)) {
    objectName_->setObjectName(QStringLiteral("ObjectRenameBox"));
    objectName_->setWindowTitle(QStringLiteral("Rename Object"));
    objectName_->setLabelText(QStringLiteral("Enter a new name:"));
    for (Kind kind : kAnswered)
        model_.requests().registerHandler(kind,
                                          [this](const ScriptRequest& request) { show(request); });
}

ScriptMenusView::~ScriptMenusView() {
    for (Kind kind : kAnswered)
        model_.requests().registerHandler(kind, {});
}

void ScriptMenusView::guarded(const std::function<void()>& work) {
    // A failure ends the choice and is reported; it never reaches the event loop.
    try {
        work();
    } catch (const RunTimeError& error) {
        model_.Host().ReportError(error);
    }
}

void ScriptMenusView::show(ScriptRequest request) {
    if (request.ScreenPoint.isNull())
        request.ScreenPoint = QCursor::pos();
    lastPoint_ = request.ScreenPoint;
    switch (request.What) {
    case Kind::None:
        return;
    case Kind::TextEditor:
        guarded([&] {
            menus_.textBox().BringUpTextWidget(request);
            textBox_->BringUpTextWidget(request.ScreenPoint, request.Title, request.Prompt,
                                        request.Value);
        });
        return;
    case Kind::ObjectPicker:
        guarded([&] {
            menus_.picker().StartTreeWidget(request);
            picker_->StartTreeWidget(request.ScreenPoint,
                                     QRect(anchor_.mapToGlobal(QPoint(0, 0)), anchor_.size()));
        });
        return;
    case Kind::ObjectRename:
        askForObjectName(request);
        return;
    case Kind::ActionMenu:
    case Kind::ObjectMenu:
    case Kind::StarMenuAll:
    case Kind::StarMenuRow:
    case Kind::SoundList:
        popUp(request);
        return;
    default:
        showOther_(request);
    }
}

void ScriptMenusView::popUp(const ScriptRequest& request) {
    std::vector<MenuRow> rows;
    guarded([&] { rows = menus_.menuRows(request); });
    if (rows.empty())
        return;
    popUpMenu(menu_, qobject_cast<QWidget*>(parent()), menuNames(request), rows,
              request.ScreenPoint, [this](int, const MenuRow& row) {
                  if (!row.Chosen)
                      return;
                  guarded([&] {
                      ScriptRequest next = row.Chosen();
                      next.ScreenPoint = lastPoint_;
                      show(next);
                  });
              });
}

void ScriptMenusView::askForObjectName(const ScriptRequest& request) {
    const QString object = request.Value;
    objectName_->setTextValue(object);
    objectName_->disconnect(this);
    connect(objectName_, &QInputDialog::textValueSelected, this,
            [this, object](const QString& name) {
                guarded([&] { show(menus_.actions().renameObject(object, name)); });
            });
    objectName_->open();
}

} // namespace vessa
