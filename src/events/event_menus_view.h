#pragma once

#include "events/event_menus.h"
#include "script/in_place_editors.h"

#include <QMenu>
#include <QObject>
#include <QPointer>

#include <functional>

namespace vessa {

class EventList;
class KeyCaptureForm;
class ObjectPickerPopup;

// The windows of the event menus: the conditions, the animations and the list's own
// menu as pop-up menus, the question for a key, and the object picker of the Happens To
// column. It answers those requests of the script's request routing for as long as it
// exists.
class EventMenusView : public QObject {
    Q_OBJECT
public:
    // parent owns the windows; the picker opens over anchor, the list.
    EventMenusView(EventList& list, QWidget& anchor, QWidget* parent);
    ~EventMenusView() override;

    EventMenus& menus() { return menus_; }
    // The pop-up menu open, if any.
    QMenu* openMenu() const { return menu_; }
    KeyCaptureForm& keyCapture() const { return *keyCapture_; }
    ObjectPickerPopup& objectPicker() const { return *pickerPopup_; }

    // Shows what request asks for at its screen point.
    void show(const ScriptRequest& request);

private:
    void popUp(const ScriptRequest& request);
    void guarded(const std::function<void()>& work);

    EventList& list_; // Not owned.
    QWidget& anchor_; // Not owned.
    EventMenus menus_;
    MenuState pickerState_; // the picker's; events keep no memory of choices
    ObjectPicker picker_;
    KeyCaptureForm* keyCapture_;     // Owned by Qt.
    ObjectPickerPopup* pickerPopup_; // Owned by Qt.
    QPointer<QMenu> menu_;
    QPoint lastPoint_; // where the last menu opened, for the question that follows it
};

} // namespace vessa
